"""The class of each shader and source, made from its table. `_shaders.pyi` says the same to type checkers."""

from __future__ import annotations

import json

from . import _native
from ._classes import make_class
from ._shader import Shader
from ._tables import classes, sources, table_of

__all__ = []

for _name in (*classes(), *sources()):
    _class = make_class(table_of(_name), json.loads(_native.describe(_name))["purpose"], "fernwick")
    globals()[_class.__name__] = _class
    __all__.append(_class.__name__)


def class_of(name: str) -> type[Shader]:
    """The class of shaders of a class or source of the tables."""
    found: type[Shader] = globals()[name[0].upper() + name[1:]]
    return found

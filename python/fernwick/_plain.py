"""Python's values as those of JSON: NumPy's numbers and arrays, tuples and paths are taken too."""

from __future__ import annotations

import json
import math
import os
from collections.abc import Callable, Mapping
from typing import Any

from ._errors import GraphError
from ._numpy import is_array, is_scalar

Json = Any
_LINE = 100  # columns
NOT_SPECIAL = object()
Special = Callable[[Any, str], Any]
"""Gives a value's JSON at a place, or NOT_SPECIAL for any value that it doesn't know."""


def plain(value: Any, place: str, special: Special) -> Json:
    """A value as JSON has it. Raises TypeError and GraphError, which name the place."""
    if value is None or isinstance(value, (bool, str)):
        return value
    if isinstance(value, int):
        return int(value)
    if isinstance(value, float):
        if not math.isfinite(value):
            raise GraphError(f"{place}: expected a number, got {value}")
        return float(value)
    found = special(value, place)
    if found is not NOT_SPECIAL:
        return found
    if is_scalar(value) or is_array(value):
        if value.dtype.kind not in "biufU":
            raise TypeError(f"{place}: no graph holds an array of {value.dtype}")
        return plain(value.tolist(), place, special)
    if isinstance(value, os.PathLike):
        return os.fspath(value)
    if isinstance(value, Mapping):
        members = {}
        for key, member in value.items():
            if not isinstance(key, str):
                raise TypeError(f"{place or 'the document'}: expected texts as keys, got {key!r}")
            members[key] = plain(member, f"{place}.{key}" if place else key, special)
        return members
    if isinstance(value, (list, tuple)):
        return [plain(member, f"{place}[{i}]", special) for i, member in enumerate(value)]
    raise TypeError(f"{place or 'the document'}: no graph holds a value of the type {type(value).__name__}")


def dumps(value: Json) -> str:
    return json.dumps(value, ensure_ascii=False, allow_nan=False)


def pretty(value: Json, indent: int = 0) -> str:
    """JSON as one writes it: what is short stands in one line."""
    line = dumps(value)
    if len(line) + indent <= _LINE or not value or not isinstance(value, (dict, list)):
        return line
    inner = indent + 4
    if isinstance(value, dict):
        parts = [f"{dumps(key)}: {pretty(member, inner)}" for key, member in value.items()]
    else:
        parts = [pretty(member, inner) for member in value]
    opening, closing = ("{", "}") if isinstance(value, dict) else ("[", "]")
    lines = ",\n".join(" " * inner + part for part in parts)
    return f"{opening}\n{lines}\n{' ' * indent}{closing}"

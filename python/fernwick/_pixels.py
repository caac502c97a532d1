"""Arrays and meshes that stand in a graph where a document names a file."""

from __future__ import annotations

import functools
import hashlib
from typing import Any

from . import _native
from ._errors import GraphError
from ._numpy import numpy, own, text


class Pixels:
    """The pixels of a picture in memory. Never changes."""

    array_token = "picture:"  # stands for any array where only the kind matters

    def __init__(self, array: Any) -> None:
        """:param array: read-only, as `_native.Picture` takes it"""
        self.array = array
        self.native = _native.Picture(array)

    @classmethod
    def of(cls, array: Any, place: str) -> Pixels:
        """A copy of an array of height x width, or height x width x 1 to 4; uint8, uint16 or floats."""
        if array.dtype.kind == "f":
            dtype = "float32"
        elif array.dtype.name in ("uint8", "uint16"):
            dtype = array.dtype.name
        else:
            raise GraphError(f"{place}: expected an array of uint8, uint16 or floats, got {text(array)}")
        if array.ndim not in (2, 3) or (array.ndim == 3 and not 1 <= array.shape[2] <= 4) or 0 in array.shape:
            raise GraphError(f"{place}: expected an array of height x width, or that x 1 to 4, got {text(array)}")
        try:
            return cls(own(array, dtype))
        except (TypeError, ValueError) as error:
            raise GraphError(f"{place}: {error}") from error

    @functools.cached_property
    def token(self) -> str:
        """What documents call the picture: the same for the same pixels."""
        return f"picture:{digest(self.array)}"

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Pixels):
            return NotImplemented
        return self.array.dtype == other.array.dtype and bool(numpy().array_equal(self.array, other.array))

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        return f"<array {text(self.array)}>"

    def __reduce__(self) -> tuple[Any, ...]:
        return _remake, (self.array,)


def _remake(array: Any) -> Pixels:
    array.flags.writeable = False
    return Pixels(array)


def digest(*arrays: Any) -> str:
    """16 hexadecimal digits of the arrays' types, shapes and bytes."""
    hashed = hashlib.sha256()
    for array in arrays:
        hashed.update(text(array).encode())
        hashed.update(array.data if array.size else b"")
    return hashed.hexdigest()[:16]

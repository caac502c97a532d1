"""Checks of what callers give: each error names the argument, what is expected and what came."""

from __future__ import annotations

import math
import operator
import os
from collections.abc import Callable, Iterable, Sequence
from typing import Any

from . import _native
from ._errors import hint

_LONGEST_SIDE = 65536  # of a picture, in pixels

Progress = Callable[[float], object]
"""Is called with the share of the work that is done, 0 to 1. What it raises ends the work."""
Region = Sequence[int]
"""Left, top, right and bottom in pixels; the right and lower ends aren't in it."""
PathLike = str | os.PathLike[str]


def shown(value: object) -> str:
    """A value in messages, of at most a line."""
    if hasattr(value, "dtype") and hasattr(value, "shape") and value.shape:
        return f"an array {tuple(value.shape)} of {value.dtype}"
    text = repr(value)
    return text if len(text) <= 60 else text[:57] + "..."


def integer(name: str, value: object, minimum: int, maximum: int) -> int:
    try:
        if isinstance(value, bool):
            raise TypeError
        number = operator.index(value)  # type: ignore[arg-type]
    except TypeError:
        raise TypeError(f"{name}: expected an integer, got {shown(value)}") from None
    if not minimum <= number <= maximum:
        raise ValueError(f"{name}: expected {minimum} to {maximum}, got {number}")
    return number


def number(name: str, value: Any, minimum: float = -math.inf, *, above: bool = False) -> float:
    """A finite number from `minimum`, or above it."""
    try:
        if isinstance(value, (str, bytes, bool)):
            raise TypeError
        converted = float(value)
    except TypeError:
        raise TypeError(f"{name}: expected a number, got {shown(value)}") from None
    if not math.isfinite(converted) or converted < minimum or (above and converted == minimum):
        least = "" if minimum == -math.inf else f" {'above' if above else 'from'} {minimum:g}"
        raise ValueError(f"{name}: expected a finite number{least}, got {shown(value)}")
    return converted


def frame(name: str, value: Any) -> float:
    """A number of a frame, an int where it is whole."""
    converted = number(name, value)
    return int(converted) if converted.is_integer() else converted


def flag(name: str, value: object) -> bool:
    if value is True or value is False or type(value).__name__ == "bool_":
        return bool(value)
    raise TypeError(f"{name}: expected True or False, got {shown(value)}")


def text(name: str, value: object) -> str:
    if not isinstance(value, str):
        raise TypeError(f"{name}: expected a text, got {shown(value)}")
    return value


def choice(name: str, value: object, known: Sequence[str]) -> str:
    if not isinstance(value, str):
        raise TypeError(f"{name}: expected one of {', '.join(map(repr, known))}, got {shown(value)}")
    if value not in known:
        listed = ", ".join(map(repr, known))
        raise ValueError(f"{name}: expected one of {listed}, got {value!r}{hint(value, known)}")
    return value


def choices(name: str, value: object, known: Sequence[str], *, none: bool = False) -> list[str]:
    """One or several of known names, each once, or none where that means something."""
    if isinstance(value, str):
        return [choice(name, value, known)]
    if not isinstance(value, Iterable):
        raise TypeError(f"{name}: expected a name or several, got {shown(value)}")
    names = [choice(name, each, known) for each in value]
    if not names and not none:
        raise ValueError(f"{name}: expected a name or several, got none")
    if len(set(names)) < len(names):
        raise ValueError(f"{name}: expected each name once, got {names!r}")
    return names


def path(name: str, value: object) -> str:
    try:
        converted = os.fspath(value)  # type: ignore[call-overload]
    except TypeError:
        raise TypeError(f"{name}: expected a file's name, got {shown(value)}") from None
    if not isinstance(converted, str):
        raise TypeError(f"{name}: expected a file's name, got {shown(value)}")
    if not converted or "\0" in converted:
        raise ValueError(f"{name}: expected a file's name, got {shown(value)}")
    return utf8(name, converted)


def utf8(name: str, text: str) -> str:
    """A text that isn't one of half characters, as the names of some files are."""
    if any("\ud800" <= letter <= "\udfff" for letter in text):
        raise ValueError(f"{name}: expected a name in UTF-8, got {text!r}; give the file another one")
    return text


def size(width: object, height: object, of_model: bool = False) -> tuple[int, int]:
    """Width and height of a picture, in pixels; a height of None is the width."""
    longest = _native.longest_side_onto if of_model else _LONGEST_SIDE
    columns = integer("width", width, 1, longest)
    return columns, columns if height is None else integer("height", height, 1, longest)


def region(value: object, width: int, height: int) -> tuple[int, int, int, int] | None:
    if value is None:
        return None
    try:
        edges = [operator.index(each) for each in value]  # type: ignore[attr-defined]
    except TypeError as error:
        raise TypeError(f"region: expected left, top, right and bottom as integers, got {shown(value)}") from error
    if len(edges) != 4:
        raise ValueError(f"region: expected left, top, right and bottom, got {shown(value)}")
    left, top, right, bottom = edges
    if not (0 <= left < right <= width and 0 <= top < bottom <= height):
        raise ValueError(f"region: expected a pixel or more within {width} x {height}, got {shown(value)}")
    return left, top, right, bottom


def threads(value: object) -> int:
    return integer("threads", value, 0, 1024)


def samples(value: object) -> int:
    return integer("samples", value, 1, 4096)


def progress(value: object) -> Progress | None:
    if value is not None and not callable(value):
        raise TypeError(f"progress: expected something to call, got {shown(value)}")
    return value

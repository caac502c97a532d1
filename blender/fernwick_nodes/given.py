"""Checks of what scripts give to a bake: each refusal names what is expected and what came."""

from __future__ import annotations

import operator
import os
from collections.abc import Callable, Sequence
from typing import Any

import bpy

from .errors import Refusal, sentence

LONGEST_SIDE = 32768  # of a picture onto an object, in pixels


def size(value: Any) -> tuple[int, int]:
    try:
        width, height = (value, value) if not isinstance(value, Sequence) else value
        sides = operator.index(width), operator.index(height)
        if all(1 <= side <= LONGEST_SIDE for side in sides):
            return sides
    except (TypeError, ValueError):
        pass
    raise Refusal(f"The size is a number of pixels from 1 to {LONGEST_SIDE}, or two of them: not {value!r}")


def options(**named: Any) -> dict[str, Any]:
    known = ("samples", "margin", "green", "threads")
    for name in named:
        if name not in known:
            raise Refusal(f'A bake takes no "{name}", only {", ".join(known)} and what the function names')
    return named


def object_name(thing: Any) -> str:
    if not isinstance(thing, bpy.types.Object):
        raise Refusal(f"What is baked onto is an object of Blender: not {thing!r}")
    return name_of(thing)


def name_of(block: bpy.types.ID) -> str:
    try:
        return block.name
    except ReferenceError:
        raise Refusal(f"The {'object' if issubclass(type(block), bpy.types.Object) else 'tree'} is gone") from None


def text(what: str, value: Any) -> str:
    made = os.fspath(value) if isinstance(value, os.PathLike) else value
    if not isinstance(made, str):
        raise Refusal(f"The {what} is a text: not {value!r}")
    return made


def whole(what: str, value: Any) -> int:
    try:
        return operator.index(value)
    except TypeError:
        raise Refusal(f"{what} is a whole number: not {value!r}") from None


def checked(call: Callable[..., Any], *arguments: Any, **named: Any) -> Any:
    """Calls the package, whose texts tell which argument is wrong."""
    import fernwick

    try:
        return call(*arguments, **named)
    except (ValueError, TypeError) as error:
        if isinstance(error, fernwick.Error):
            raise
        raise Refusal(sentence(error)) from error

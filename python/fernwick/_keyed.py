"""Values that change from frame to frame."""

from __future__ import annotations

from collections.abc import Callable, Iterable, Mapping
from typing import Any

from . import _arguments
from ._errors import GraphError

BETWEEN = ("linear", "smooth", "step")


class Keyed:
    """A value over frames, for any field or part of one: `Keyed({1: 0, 24: 0.34}, between="smooth")`.

    Before the first and behind the last key the value holds. Numbers, vectors and colours go from key to key as
    `between` says: "linear" evenly, "smooth" starting and stopping gently, "step" at the next key. All else steps.

    :param keys: the value at each frame, or pairs of both; frames rise
    :param between: None for what is usual of the field
    """

    __slots__ = ("_keys", "_between")

    def __init__(
        self, keys: Mapping[int, Any] | Mapping[float, Any] | Iterable[tuple[float, Any]], between: str | None = None
    ) -> None:
        try:
            pairs = [(frame, value) for frame, value in (keys.items() if isinstance(keys, Mapping) else keys)]
        except (TypeError, ValueError):
            raise TypeError(f"keys: expected values by frame, got {_arguments.shown(keys)}") from None
        self._keys = tuple((_arguments.frame("keys", frame), value) for frame, value in pairs)
        self._between = None if between is None else _arguments.choice("between", between, BETWEEN)
        frames = [frame for frame, _ in self._keys]
        if not frames:
            raise GraphError("keys: expected one or more")
        if any(left >= right for left, right in zip(frames, frames[1:])):
            raise GraphError(f"keys: expected frames that rise, got {frames}")

    @property
    def keys(self) -> tuple[tuple[float, Any], ...]:
        """Each frame with its value."""
        return self._keys

    @property
    def between(self) -> str | None:
        return self._between

    def map(self, change: Callable[[Any], Any]) -> Keyed:
        """The same frames with changed values."""
        return Keyed([(frame, change(value)) for frame, value in self._keys], self._between)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Keyed):
            return NotImplemented
        return self._keys == other._keys and self._between == other._between

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        keys = ", ".join(f"{frame}: {value!r}" for frame, value in self._keys)
        return f"Keyed({{{keys}}}" + (f", between={self._between!r})" if self._between else ")")

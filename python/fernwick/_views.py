"""Arrays and records of a shader, in place: what is set here is set there."""

from __future__ import annotations

from collections.abc import Mapping, Sequence
from typing import TYPE_CHECKING, Any, TypeVar, overload

from ._errors import hint
from ._tables import Row

if TYPE_CHECKING:
    from ._shader import Shader

Item = TypeVar("Item")


class View:
    """What an address of a shader holds."""

    __slots__ = ("_shader", "_address", "_row")
    __hash__ = None  # type: ignore[assignment]

    _shader: Shader
    _address: str
    _row: Row

    def __init__(self, shader: Shader, address: str, row: Row) -> None:
        for name, value in (("_shader", shader), ("_address", address), ("_row", row)):
            object.__setattr__(self, name, value)

    def __reduce__(self) -> tuple[Any, ...]:
        return type(self), (self._shader, self._address, self._row)

    def values(self) -> Any:
        """As they are now, apart from the shader."""
        raise NotImplementedError


class Array(View, Sequence[Item]):
    """The elements of an array of a shader, in place: what is set here is set there."""

    __slots__ = ()

    def __len__(self) -> int:
        return self._row.counts[0]

    @overload
    def __getitem__(self, index: int) -> Item:
        ...

    @overload
    def __getitem__(self, index: slice) -> list[Item]:
        ...

    def __getitem__(self, index: int | slice) -> Any:
        if isinstance(index, slice):
            return [self[i] for i in range(*index.indices(len(self)))]
        return self._shader[self._at(index)]

    def __setitem__(self, index: int | slice, value: Any) -> None:
        if isinstance(index, slice):
            raise TypeError(f"{self._address}: elements are set one by one, or all at once")
        self._shader[self._at(index)] = value

    def __delitem__(self, index: int) -> None:
        del self._shader[self._at(index)]

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Sequence) or isinstance(other, str):
            return NotImplemented
        return len(self) == len(other) and all(mine == yours for mine, yours in zip(self, other))

    def __repr__(self) -> str:
        return repr(self.values())

    def values(self) -> list[Item]:
        return list(self)

    def _at(self, index: int) -> str:
        try:
            return f"{self._address}[{range(len(self))[index]}]"
        except IndexError:
            raise IndexError(f"{self._address} has {len(self)} elements, and none {index}") from None


class Record(View):
    """A nested record of a shader, in place: `location.fAxes[0].fEdgeB = 1`."""

    __slots__ = ()

    def __getattr__(self, field: str) -> Any:
        if field not in self._row.rows:
            raise AttributeError(f'{self._address} has no field "{field}"{hint(field, self._row.rows)}')
        return self._shader[f"{self._address}.{field}"]

    def __setattr__(self, field: str, value: Any) -> None:
        if field not in self._row.rows:
            raise AttributeError(f'{self._address} has no field "{field}"{hint(field, self._row.rows)}')
        self._shader[f"{self._address}.{field}"] = value

    def __dir__(self) -> list[str]:
        return list(self._row.rows)

    def __eq__(self, other: object) -> bool:
        if isinstance(other, (Record, Mapping)):
            return self.values() == (other.values() if isinstance(other, Record) else other)
        return NotImplemented

    def __repr__(self) -> str:
        return repr(self.values())

    def values(self) -> dict[str, Any]:
        return {field: getattr(self, field) for field in self._row.rows}

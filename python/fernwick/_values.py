"""Values of fields: what users give, settled by the rows of the tables and taken apart into single fields."""

from __future__ import annotations

import os
import struct
from collections.abc import Iterable, Iterator, Mapping
from typing import Any

from . import _native
from ._arguments import shown
from ._errors import GraphError
from ._keyed import Keyed
from ._numpy import is_array
from ._pixels import Pixels
from ._plain import NOT_SPECIAL, plain
from ._tables import Row
from ._views import View


class Pluggable:
    """What slots take."""

    __slots__ = ()


class HexColor(tuple[float, ...]):
    """The numbers of a colour that was given as the web writes it."""

    text: str


def settle(row: Row, value: Any, place: str) -> Any:
    """A value for a row as it is kept: arrays as lists, records as dictionaries, vectors and colours as tuples. Refuses
    what no document could say; what else is wrong with it is for the reader of documents.

    :param place: for errors
    """
    if isinstance(value, Keyed):
        return value.map(lambda at_key: settle(row, at_key, place))
    if isinstance(value, View):
        value = value.values()
    if row.counts:
        return _settle_array(row, value, place)
    if row.rows:
        return _settle_record(row, value, place)
    kind = row.field.type
    if kind == "shader":
        return _slot(value, place)
    if kind == "file":
        return Pixels.of(value, place) if is_array(value) else _file(value, place)
    if kind == "colors" and isinstance(value, (list, tuple)):
        return tuple(_color(member, f"{place}[{i}]", 4) for i, member in enumerate(value))
    if kind in ("rgb", "rgba"):
        return _color(value, place, len(kind))
    return _settle_numbers(value, place)


def at_each_key(value: Any) -> Iterable[Any]:
    """A value as it is at its first key, its second, and so on; by itself without keys."""
    most = _count_keys(value)
    return [_at_key(value, i) for i in range(most)] if most else [value]


def spread(address: str, row: Row, value: Any) -> Iterator[tuple[str, Any]]:
    """A settled value as those of single fields, by address."""
    if row.counts:
        for i in range(row.counts[0]):
            yield from spread(f"{address}[{i}]", row.element, _part(value, i))
    elif row.rows:
        for name in _names_in(address, value):
            yield from spread(f"{address}.{name}", row.rows[name], _part(value, name))
    else:
        yield address, value


def gather(address: str, row: Row, settings: Mapping[str, Any]) -> Any:
    """The reverse, of an array whose fields are all set."""
    if not row.counts:
        return settings[address]
    return [gather(f"{address}[{i}]", row.element, settings) for i in range(row.counts[0])]


def plugged_in(value: Any) -> Iterator[Any]:
    """The shaders in a settled value."""
    if isinstance(value, Pluggable):
        yield value
        return
    if isinstance(value, Keyed):
        value = [at_key for _, at_key in value.keys]
    for member in value.values() if isinstance(value, dict) else value if isinstance(value, list) else ():
        yield from plugged_in(member)


def _settle_array(row: Row, value: Any, place: str) -> Any:
    element = row.element
    if row.field.type == "shader" and not row.rows and (value is None or isinstance(value, Pluggable)):
        return [settle(element, value, place)] * row.counts[0]
    if is_array(value):
        value = value.tolist()
    if isinstance(value, (list, tuple)):
        return [settle(element, member, f"{place}[{i}]") for i, member in enumerate(value)]
    return _settle_numbers(value, place)  # no array: for the reader to refuse


def _settle_record(row: Row, value: Any, place: str) -> Any:
    if not isinstance(value, Mapping):
        return _settle_numbers(value, place)
    return {
        name: settle(row.rows[name], member, f"{place}.{name}") if name in row.rows else member
        for name, member in value.items()
    }


def _slot(value: Any, place: str) -> Any:
    if value is not None and not isinstance(value, Pluggable):
        mend = f"; write fernwick.Color({value!r})" if isinstance(value, str) and value.startswith("#") else ""
        raise GraphError(f"{place}: expected a shader or None, got {shown(value)}{mend}")
    return value


def _file(value: Any, place: str) -> str:
    try:
        return os.fspath(value)  # type: ignore[no-any-return]
    except TypeError:
        raise GraphError(f"{place}: expected a file's name or an array, got {shown(value)}") from None


def _color(value: Any, place: str, count: int) -> Any:
    if isinstance(value, HexColor):
        return value
    if not isinstance(value, str):
        return _settle_numbers(value, place)
    numbers = _native.hex_color(value)
    if numbers is None or (count == 3 and numbers[3] != 1):
        forms = "#rgb or #rrggbb" if count == 3 else "#rgb, #rrggbb, #rgba or #rrggbbaa"
        raise GraphError(f"{place}: expected {forms}, or numbers in linear light, got {value!r}")
    given = 4 if len(value) in (5, 9) else 3  # without an alpha it stays unsaid
    color = HexColor(map(_shortest, numbers[: min(count, given)]))
    color.text = value
    return color


def _shortest(number: float) -> float:
    """The number of the fewest digits that is the same float32."""
    bits = struct.pack("f", number)
    shorter = (float(f"{number:.{digits}g}") for digits in range(6, 10))
    return next(each for each in shorter if struct.pack("f", each) == bits)


def _settle_numbers(value: Any, place: str) -> Any:
    return _tuples(plain(value, place, lambda part, _: part if isinstance(part, (Keyed, Pluggable)) else NOT_SPECIAL))


def _tuples(value: Any) -> Any:
    return tuple(map(_tuples, value)) if isinstance(value, list) else value


def _count_keys(value: Any) -> int:
    if isinstance(value, Keyed):
        return max(len(value.keys), *(_count_keys(at_key) for _, at_key in value.keys))
    members = value.values() if isinstance(value, dict) else value if isinstance(value, (list, tuple)) else ()
    return max(map(_count_keys, members), default=0)


def _at_key(value: Any, index: int) -> Any:
    if isinstance(value, Keyed):
        return _at_key(value.keys[min(index, len(value.keys) - 1)][1], index)
    if isinstance(value, dict):
        return {name: _at_key(member, index) for name, member in value.items()}
    return [_at_key(member, index) for member in value] if isinstance(value, (list, tuple)) else value


def _names_in(address: str, value: Any) -> list[str]:
    if not isinstance(value, Keyed):
        return list(value)
    first, *others = (list(at_key) for _, at_key in value.keys)
    if any(set(other) != set(first) for other in others):
        raise GraphError(f"{address}: expected the same fields at each key")
    return first


def _part(value: Any, key: Any) -> Any:
    return value.map(lambda at_key: at_key[key]) if isinstance(value, Keyed) else value[key]

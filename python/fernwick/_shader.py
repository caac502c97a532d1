"""What all shaders and sources have in common: fields that are checked where they are set."""

from __future__ import annotations

from collections.abc import Iterator
from typing import TYPE_CHECKING, Any, ClassVar

from . import _arguments, _native
from ._errors import GraphError, hint
from ._keyed import Keyed
from ._pixels import Pixels
from ._plain import NOT_SPECIAL, dumps, plain
from ._tables import Row, Table
from ._values import HexColor, Pluggable, at_each_key, gather, plugged_in, settle, spread
from ._views import Array, Record

_DEEPEST_TEXT = 6  # of shaders in the text of another


class Shader(Pluggable):
    """A shader of a graph: an object of one of the classes such as `Weave` or `Color`.

    Fields are set by keyword, by attribute or by address, `weave["fWarpWidth[2]"] = 8`, and are checked there and then:
    GraphError names the field, what is expected and what came. A field that wasn't set reads as its default, and `del`
    gives it back. A slot takes another shader or None, an array of slots each its own or one for all of them. Any field
    takes `Keyed` values.

    Two shaders are equal when they have the same class, name and settings. Objects copy and pickle; a graph takes
    what they hold when it is made.

    :param name: what documents and messages call the shader; without one it is called after its class
    """

    _table: ClassVar[Table]
    _name: str | None
    _settings: dict[str, Any]  # by the address of a single field; Keyed, shaders and pixels among them
    __slots__ = ("_name", "_settings")
    __hash__ = None  # type: ignore[assignment]

    def __init__(self, *first: Any, name: str | None = None, **fields: Any) -> None:
        table = getattr(type(self), "_table", None)
        if table is None:
            raise TypeError("Shader is what all classes have in common; make a Weave, a Color or another one")
        object.__setattr__(self, "_name", None)
        object.__setattr__(self, "_settings", {})
        self.name = name
        leading = next(iter(table.rows)) if table.is_source else ""
        if len(first) > (1 if table.is_source else 0):
            taken = f"one field by position, {leading}" if leading else "fields by keyword"
            raise TypeError(f"{type(self).__name__} takes {taken}; got {len(first)}")
        if first:
            if leading in fields:
                raise TypeError(f'{type(self).__name__}() got "{leading}" twice')
            fields = {leading: first[0], **fields}
        for keyword, value in fields.items():
            address = table.address_of(keyword)
            if table.at(address) is None:
                raise TypeError(
                    f'{type(self).__name__}() got an unexpected keyword argument "{keyword}"'
                    + hint(keyword, [row.keyword for row in table.rows.values()])
                )
            self._set_field(address, value, is_new=True)

    @property
    def name(self) -> str | None:
        """What documents call the shader; None for a name after its class."""
        return self._name

    @name.setter
    def name(self, name: str | None) -> None:
        if name is not None and not isinstance(name, str):
            raise TypeError(f"{type(self).__name__}: name: expected a text or None, got {name!r}")
        if name == "":
            raise GraphError(f"{type(self).__name__}: name: expected a text that isn't empty")
        if name is not None:
            _arguments.utf8(f"{type(self).__name__}: name", name)
        object.__setattr__(self, "_name", name)

    def __getitem__(self, address: str) -> Any:
        """The value at an address, such as "fRange[3]": what was set there, or the default."""
        if not isinstance(address, str):
            raise TypeError(f"{type(self).__name__}: expected the address of a field, got {address!r}")
        row = self._table.at(address)
        if row is None:
            raise KeyError(f'{type(self).__name__} has no field "{address}"{hint(address, self._table.leaves)}')
        if row.counts:
            return Array(self, address, row)
        if row.rows:
            return Record(self, address, row)
        if address not in self._settings:
            return self._table.default(address)
        return _outward(self._settings[address])

    def __setitem__(self, address: str, value: Any) -> None:
        self._set_field(address, value)

    def _set_field(self, address: str, value: Any, *, is_new: bool = False) -> None:
        """Sets a field of a shader, which nothing can hold yet when it is new."""
        row = self._table.at(address)
        place = f"{type(self).__name__}.{address}"
        if row is None:
            known = self._table.leaves + list(self._table.rows)
            raise GraphError(f"{place}: there is no such field{hint(address, known)}")
        value = settle(row, value, place)
        if not is_new and any(_reaches(shader, self) for shader in plugged_in(value)):
            raise GraphError(f"{place}: the shader would plug in itself")
        for each in at_each_key(value):
            self._check(address, each)
        self._settings.update(spread(address, row, value))

    def __delitem__(self, address: str) -> None:
        """Gives the field, or all under the address, its default again."""
        row = self._table.at(address)
        if row is None:
            raise KeyError(f'{type(self).__name__} has no field "{address}"{hint(address, self._table.leaves)}')
        for leaf in row.leaves(address):
            self._settings.pop(leaf, None)

    if not TYPE_CHECKING:  # or type checkers would let any attribute be set

        def __setattr__(self, attribute: str, value: Any) -> None:
            if not hasattr(type(self), attribute):
                known = [row.keyword for row in self._table.rows.values()]
                raise AttributeError(f'{type(self).__name__} has no field "{attribute}"{hint(attribute, known)}')
            object.__setattr__(self, attribute, value)

    @property
    def settings(self) -> dict[str, Any]:
        """What was set, by address: a field by itself, an array that is set as a whole as nested lists."""
        return {
            address: _outward(value)
            for name, row in self._table.rows.items()
            for address, value in self._set(name, row)
        }

    @property
    def shaders(self) -> list[Shader]:
        """What is plugged in, in the order of the fields, each once."""
        found: dict[int, Shader] = {}
        for address in self._table.leaves:
            for shader in plugged_in(self._settings.get(address)):
                found[id(shader)] = shader
        return list(found.values())

    def copy(self) -> Shader:
        """Another shader with the same settings. What is plugged in is the same objects."""
        return _remake(type(self), self._name, dict(self._settings))

    __copy__ = copy

    def __reduce__(self) -> tuple[Any, ...]:
        return _remake, (type(self), self._name, self._settings)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Shader):
            return NotImplemented
        return _are_equal(self, other, set())

    def __repr__(self) -> str:
        return self._text(0)

    def _text(self, depth: int) -> str:
        if depth > _DEEPEST_TEXT:
            return f"{type(self).__name__}(...)"
        leading = next(iter(self._table.rows)) if self._table.is_source else ""
        parts, others = [], []
        for name, row in self._table.rows.items():
            for address, value in self._set(name, row):
                text = _value_text(value, depth)
                if address == leading:
                    parts.append(text)
                elif address == name:
                    parts.append(f"{row.keyword}={text}")
                else:
                    others.append(f"{address!r}: {text}")
        if others:
            parts.append("**{" + ", ".join(others) + "}")
        if self._name is not None:
            parts.append(f"name={self._name!r}")
        return f"{type(self).__name__}({', '.join(parts)})"

    def _set(self, name: str, row: Row) -> Iterator[tuple[str, Any]]:
        """What is set of a row: the whole, where all of an array is, or single fields."""
        leaves = row.leaves(name)
        if row.counts and not row.rows and all(leaf in self._settings for leaf in leaves):
            yield name, gather(name, row, self._settings)
        else:
            yield from ((leaf, self._settings[leaf]) for leaf in leaves if leaf in self._settings)

    def _check(self, address: str, value: Any) -> None:
        """Throws what the document's reader has against a value."""
        names: list[str] = []

        def name_of(value: Any, place: str) -> Any:
            if isinstance(value, Shader):
                names.append(f"shader{len(names)}")
                return names[-1]
            return value.array_token if isinstance(value, Pixels) else NOT_SPECIAL

        place = f"{type(self).__name__}.{address}"
        json = dumps(plain(value, place, name_of))
        try:
            _native.check_field(self._table.name, address, json, names)
        except GraphError as error:
            raise GraphError(f"{type(self).__name__}.{error}") from None


def _reaches(start: Shader, target: Shader) -> bool:
    waiting, seen = [start], set()
    while waiting:
        shader = waiting.pop()
        if shader is target:
            return True
        if id(shader) not in seen:
            seen.add(id(shader))
            waiting += [each for value in shader._settings.values() for each in plugged_in(value)]
    return False


def _outward(value: Any) -> Any:
    """A value as users have given it."""
    if isinstance(value, Keyed):
        return value.map(_outward)
    return value.array if isinstance(value, Pixels) else value


def _remake(made: type[Shader], name: str | None, settings: dict[str, Any]) -> Shader:
    shader = made.__new__(made)
    object.__setattr__(shader, "_name", name)
    object.__setattr__(shader, "_settings", settings)
    return shader


def _are_equal(left: Any, right: Any, known: set[tuple[int, int]]) -> bool:
    """Whether shaders, or values of theirs, are equal; pairs that are known to be aren't compared again."""
    if isinstance(left, Keyed) and isinstance(right, Keyed):
        return (
            left.between == right.between
            and [frame for frame, _ in left.keys] == [frame for frame, _ in right.keys]
            and all(_are_equal(mine, yours, known) for (_, mine), (_, yours) in zip(left.keys, right.keys))
        )
    if not (isinstance(left, Shader) and isinstance(right, Shader)):
        return bool(left == right)
    if left is right or (id(left), id(right)) in known:
        return True
    if type(left) is not type(right) or left._name != right._name or left._settings.keys() != right._settings.keys():
        return False
    table = left._table
    for address, value in left._settings.items():
        mine, yours = (_chosen(table, address, each) for each in (value, right._settings[address]))
        if not _are_equal(mine, yours, known):
            return False
    known.add((id(left), id(right)))
    return True


def _chosen(table: Table, address: str, value: Any) -> Any:
    """The value of a choice that is given by its label."""
    row = table.at(address)
    if isinstance(value, str) and row is not None:
        for choice in row.field.choices:
            if choice.label == value:
                return choice.value
    return value


def _value_text(value: Any, depth: int) -> str:
    if isinstance(value, Shader):
        return value._text(depth + 1)
    if isinstance(value, list):
        flat = list(_flat(value))
        if flat and isinstance(flat[0], Shader) and all(member is flat[0] for member in flat):
            return _value_text(flat[0], depth)
        return "[" + ", ".join(_value_text(member, depth) for member in value) + "]"
    return repr(value.text) if isinstance(value, HexColor) else repr(value)


def _flat(value: list[Any]) -> Iterator[Any]:
    for member in value:
        yield from _flat(member) if isinstance(member, list) else (member,)

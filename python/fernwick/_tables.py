"""The parameter tables: which classes there are and what their fields are."""

from __future__ import annotations

import dataclasses
import functools
import json
import keyword
import re
import textwrap
from collections.abc import Iterator, Mapping
from dataclasses import dataclass
from typing import Any

from . import _native
from ._errors import hint
from ._library import library

Default = None | bool | int | float | str | tuple[Any, ...]


@dataclass(frozen=True)
class Choice:
    """A settled value of a field: the value and its label, either of which a field takes."""

    value: int | str
    label: str


@dataclass(frozen=True)
class FieldDescription:
    """One field of a class or source; each element of an array is one by itself."""

    name: str  #: as shaders and documents address it, such as "fRange[3]"
    type: str
    """float, int32, bool, code, vector2, vector3, rgb, rgba, string, shader, file or colors"""
    label: str
    help: str
    default: Default = None  #: None of a slot, and where nothing can be read
    unit: str = ""
    minimum: float | None = None
    maximum: float | None = None
    loose: bool = False  #: the shader takes values outside the range too
    choices: tuple[Choice, ...] = ()
    only_with: tuple[str, int | str] | None = None  #: the field and its value without which this one doesn't count
    derived: bool = False  #: written by the shader, not to be set

    @property
    def notes(self) -> str:
        """Default, unit, range and choices in a line."""
        parts = []
        if self.derived:
            parts.append("derived by the shader")
        elif self.type != "shader" and self.default not in (None, ""):
            parts.append(f"default {_text(self.default)}")
        if self.minimum is not None or self.maximum is not None:
            parts.append(_range_text(self.minimum, self.maximum) + (", loose" if self.loose else ""))
        if self.unit:
            parts.append(self.unit)
        if self.choices:
            parts.append(" or ".join(f"{choice.value!r} ({choice.label})" for choice in self.choices))
        if self.only_with:
            parts.append(f"only with {self.only_with[0]} = {self.only_with[1]!r}")
        return "; ".join(parts)


@dataclass(frozen=True, repr=False)
class ClassDescription:
    """A class of the library, or a source of the host. Its text is a table of its fields."""

    name: str
    purpose: str
    outputs: tuple[str, ...]  #: of value, color, vector and surface
    fields: tuple[FieldDescription, ...]
    is_source: bool = False
    identifiers: tuple[str, ...] = ()  #: of a class; none without a route
    needs: tuple[str, ...] = ()  #: what a class reads of a sample
    record_size: int | None = None  #: in bytes, of a class

    def __getitem__(self, name: str) -> FieldDescription:
        """The field of a name."""
        for field in self.fields:
            if field.name == name:
                return field
        raise KeyError(f'{self.name} has no field "{name}"{hint(name, [field.name for field in self.fields])}')

    def __iter__(self) -> Iterator[FieldDescription]:
        return iter(self.fields)

    def __repr__(self) -> str:
        return f"<{self.name}: {len(self.fields)} fields, {' and '.join(self.outputs)}>"

    def __str__(self) -> str:
        lines = [f"{self.name}: {self.purpose}", "", f"Outputs  {', '.join(self.outputs)}"]
        if self.needs:
            lines.append(f"Needs    {', '.join(self.needs)}")
        lines.append("")
        width = max((len(field.name) for field in self.fields), default=0) + 2
        for field in self.fields:
            words = f"{field.type}. {field.help}" + (f" ({field.notes})" if field.notes else "")
            head = field.name.ljust(width)
            lines += textwrap.wrap(words, 100, initial_indent=head, subsequent_indent=" " * width)
        return "\n".join(lines)


@dataclass(frozen=True)
class Row:
    """A line of a table: a field, an array of fields, or nested records."""

    name: str
    counts: tuple[int, ...]  #: of an array, outer dimension first
    field: FieldDescription  #: of an array the first element's; without a default
    rows: Mapping[str, Row]  #: of nested records

    def leaves(self, address: str) -> list[str]:
        """The addresses of all single fields at an address of this row."""
        if self.counts:
            element = self.element
            return [leaf for i in range(self.counts[0]) for leaf in element.leaves(f"{address}[{i}]")]
        if self.rows:
            return [leaf for name, row in self.rows.items() for leaf in row.leaves(f"{address}.{name}")]
        return [address]

    @property
    def keyword(self) -> str:
        """The name in Python, which has words of its own, such as `from`."""
        return f"{self.name}_" if keyword.iskeyword(self.name) else self.name

    @functools.cached_property
    def element(self) -> Row:
        """What an array is made of."""
        return dataclasses.replace(self, counts=self.counts[1:])


@dataclass(frozen=True)
class Table:
    """The rows of a class or source."""

    name: str
    is_source: bool
    rows: Mapping[str, Row]

    def at(self, address: str) -> Row | None:
        """The row, or the part of one, at an address such as `fAxes[2].fEdgeA`; None when nothing is there."""
        parts = re.findall(r"\[\d+\]|\.?[^.\[\]]+", address)
        if not parts or "".join(parts) != address:
            return None
        row = self.rows.get(parts[0])
        for part in parts[1:]:
            if row is None:
                return None
            if part.startswith("["):
                row = row.element if row.counts and int(part[1:-1]) < row.counts[0] else None
            else:
                row = row.rows.get(part[1:]) if part.startswith(".") and not row.counts else None
        return row

    def address_of(self, keyword: str) -> str:
        """The name in documents."""
        return keyword[:-1] if keyword.endswith("_") and keyword[:-1] in self.rows else keyword

    @functools.cached_property
    def leaves(self) -> list[str]:
        """The addresses of all fields, in order."""
        return [leaf for name, row in self.rows.items() for leaf in row.leaves(name)]

    def default(self, address: str) -> Default:
        """Of a single field; the library is loaded for it."""
        return _described_fields(self.name)[address].default


@functools.cache
def classes() -> tuple[str, ...]:
    """The names of all classes of the library."""
    return tuple(dict.fromkeys(_native.class_names()))


@functools.cache
def sources() -> tuple[str, ...]:
    """The names of the host's own sources, which have classes such as `Color` too."""
    return tuple(_native.source_names())


def describe(name: str | type | object) -> ClassDescription:
    """All about a class or source: outputs and fields with type, default, unit, range, choices and help.

    :param name: such as "Weave" or "color", or a class or an object of it
    Raises KeyError for any other name and LibraryError when the library, which the defaults are read from, isn't found.
    """
    if not isinstance(name, str):
        table = getattr(name, "_table", None)
        if not isinstance(table, Table):
            raise TypeError(f"name: expected a class's name, got {type(name).__name__}")
        name = table.name
    known = classes() + sources()
    if name not in known and name.lower() in sources():
        name = name.lower()  # a source goes by its class here
    if name not in known:
        raise KeyError(f'there is no class "{name}"{hint(name, known)}')
    return _described(name)


@functools.cache
def _described(name: str) -> ClassDescription:
    library()
    json_text = json.loads(_native.describe(name))
    return ClassDescription(
        json_text["name"],
        json_text["purpose"],
        tuple(json_text["outputs"]),
        tuple(_field(field) for field in json_text["fields"]),
        "identifiers" not in json_text,
        tuple(json_text.get("identifiers", ())),
        tuple(json_text.get("needs", ())),
        json_text.get("recordSize"),
    )


@functools.cache
def _described_fields(name: str) -> dict[str, FieldDescription]:
    return {field.name: field for field in _described(name).fields}


@functools.cache
def table_of(name: str) -> Table:
    """The table of an existing class or source; the library isn't needed for it."""
    return Table(name, name in sources(), _rows(json.loads(_native.layout(name))))


def _rows(layout: list[dict[str, Any]]) -> Mapping[str, Row]:
    return {
        row["name"]: Row(row["name"], tuple(row["counts"]), _field(row.get("field") or {}), _rows(row.get("rows", [])))
        for row in layout
    }


def _field(members: dict[str, Any]) -> FieldDescription:
    only_with = members.get("onlyWith")
    return FieldDescription(
        members.get("name", ""),
        members.get("type", ""),
        members.get("label", ""),
        members.get("help", ""),
        _frozen(members.get("default")),
        members.get("unit", ""),
        members.get("minimum"),
        members.get("maximum"),
        members.get("loose", False),
        tuple(Choice(choice["value"], choice["label"]) for choice in members.get("choices", ())),
        (only_with["field"], only_with["value"]) if only_with else None,
        members.get("derived", False),
    )


def _frozen(value: Any) -> Any:
    return tuple(_frozen(each) for each in value) if isinstance(value, list) else value


def _text(value: Default) -> str:
    return repr(value) if not isinstance(value, tuple) else "(" + ", ".join(map(_text, value)) + ")"


def _range_text(minimum: float | None, maximum: float | None) -> str:
    if minimum is None:
        return f"{maximum:g} or less"
    return f"{minimum:g} or more" if maximum is None else f"{minimum:g} to {maximum:g}"

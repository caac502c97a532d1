"""Classes of shaders, made from the parameter tables."""

from __future__ import annotations

import inspect
from typing import Any, Generic, TypeVar, overload

from ._shader import Shader
from ._tables import Row, Table

Got = TypeVar("Got")
Given = TypeVar("Given")


class Field(Generic[Got, Given]):
    """A field of a class of shaders, as a property."""

    def __init__(self, row: Row) -> None:
        self._name = row.name
        self.__doc__ = field_text(row)

    @overload
    def __get__(self, shader: None, owner: type) -> Field[Got, Given]:
        ...

    @overload
    def __get__(self, shader: Shader, owner: type) -> Got:
        ...

    def __get__(self, shader: Shader | None, owner: type) -> Any:
        return self if shader is None else shader[self._name]

    def __set__(self, shader: Shader, value: Given) -> None:
        shader[self._name] = value

    def __delete__(self, shader: Shader) -> None:
        del shader[self._name]


class _Unset:
    """The default of a field, in signatures."""

    def __repr__(self) -> str:
        return "..."


_UNSET = _Unset()


def make_class(table: Table, purpose: str, module: str) -> type[Shader]:
    """The class of shaders that a table describes."""
    body: dict[str, Any] = {"__slots__": (), "__module__": module, "_table": table}
    for row in table.rows.values():
        body[row.keyword] = Field(row)
    settable = [row for row in table.rows.values() if not row.field.derived]
    lines = [purpose, "", *(f":param {row.keyword}: {field_text(row)}" for row in settable)]
    body["__doc__"] = "\n".join([*lines, ":param name: what documents call the shader"])
    made = type(table.name[0].upper() + table.name[1:], (Shader,), body)
    parameters = [inspect.Parameter(row.keyword, inspect.Parameter.KEYWORD_ONLY, default=_UNSET) for row in settable]
    if table.is_source:
        parameters[0] = parameters[0].replace(kind=inspect.Parameter.POSITIONAL_OR_KEYWORD)
    parameters.append(inspect.Parameter("name", inspect.Parameter.KEYWORD_ONLY, default=None))
    made.__signature__ = inspect.Signature(parameters)  # type: ignore[attr-defined]
    return made


def field_text(row: Row) -> str:
    """A row in a line: of a nested record its fields."""
    size = " x ".join(map(str, row.counts))
    if row.rows:
        text = "; ".join(f"{name}: {field_text(inner)}" for name, inner in row.rows.items())
        return f"{size} records of {text}" if size else f"A record of {text}"
    field = row.field
    words = f"{field.label}. {field.help}" + (f" ({field.notes})" if field.notes else "")
    return f"{size} values, the first: {words}" if size else words

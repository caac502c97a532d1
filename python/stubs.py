#!/usr/bin/env python3
"""stubs.py OUT: writes the type stubs of all shaders, made from the parameter tables like the classes themselves.

The package has to be importable, its compiled part and the library with it. Defaults are read from new objects.
"""

from __future__ import annotations

import sys
import textwrap
from pathlib import Path
from typing import Any

sys.path.pop(0)  # beside this file the package lies without its compiled part

import fernwick  # noqa: E402
from fernwick import FieldDescription  # noqa: E402
from fernwick._classes import field_text  # noqa: E402
from fernwick._tables import Row, table_of  # noqa: E402

HEADER = '''"""All shaders and sources. Made from the parameter tables by stubs.py."""

import os
from collections.abc import Mapping, Sequence
from typing import Any, Literal, TypedDict

import numpy as np
from numpy.typing import NDArray

from fernwick._classes import Field
from fernwick._keyed import Keyed
from fernwick._shader import Shader
from fernwick._views import Array, Record

Number = float | np.floating[Any] | np.integer[Any] | Keyed
Integer = int | np.integer[Any] | Keyed
Flag = bool | np.bool_ | Keyed
Vector2 = tuple[float, float]
Vector3 = tuple[float, float, float]
Color4 = tuple[float, ...]
"""In linear light: red, green, blue and, if it was given, alpha."""
Numbers = Sequence[float] | Sequence[Number] | NDArray[Any] | Keyed
ColorLike = str | Numbers
"""#rrggbb, #rrggbbaa, #rgb or #rgba (sRGB), or numbers in linear light; without an alpha opaque."""
File = str | os.PathLike[str] | NDArray[Any] | Keyed
Slot = Shader | Keyed | None

def class_of(name: str) -> type[Shader]: ...
'''

# What a field of a type gives, and what it takes.
TYPES = {
    "float": ("float", "Number"),
    "int32": ("int", "Integer"),
    "bool": ("bool", "Flag"),
    "code": ("str | int", "str | int | Keyed"),
    "vector2": ("Vector2", "Numbers"),
    "vector3": ("Vector3", "Numbers"),
    "rgb": ("Color4", "ColorLike"),
    "rgba": ("Color4", "ColorLike"),
    "string": ("str", "str | Keyed"),
    "shader": ("Shader | None", "Slot"),
    "file": ("str | NDArray[Any]", "File"),
    "colors": ("tuple[Color4, ...]", "Sequence[ColorLike] | NDArray[Any] | Keyed"),
}


def types_of(field: FieldDescription) -> tuple[str, str]:
    got, given = TYPES[field.type]
    if not field.choices:
        return got, given
    texts = dict.fromkeys(text for choice in field.choices for text in (choice.value, choice.label))
    quoted = ", ".join(f'"{text}"' if isinstance(text, str) else str(text) for text in texts)
    literal = f"Literal[{quoted}]"
    return "str | int", f"{literal} | {given}" if field.type == "code" else f"{literal} | str | {given}"


def row_types(row: Row, record: str) -> tuple[str, str]:
    """What a row gives and takes. `record` is the name of its dictionary, where it has nested records."""
    got, given = ("Record", f"{record} | Mapping[str, Any]") if row.rows else types_of(row.field)
    is_slot = row.field.type == "shader"
    is_number = not row.rows and row.field.type in ("float", "int32", "bool", "vector2", "vector3", "rgb", "rgba")
    for _ in row.counts:
        got, given = f"Array[{got}]", f"Sequence[{given}]"
    if row.counts:
        given += (" | Slot" if is_slot else " | NDArray[Any]" if is_number else "") + ("" if is_slot else " | Keyed")
    return got, given


def doc(text: str, indent: str) -> list[str]:
    return textwrap.wrap(f'"""{text}"""', 110, initial_indent=indent, subsequent_indent=indent)


def class_lines(name: str) -> list[str]:
    table = table_of(name)
    description = fernwick.describe(name)
    made = name[0].upper() + name[1:]
    records, fields, parameters = [], [], []
    for row in table.rows.values():
        record = f"{made}_{row.name}"
        if row.rows:
            members = [f"    {inner.name}: {types_of(inner.field)[1]}" for inner in row.rows.values()]
            records += ["", f"class {record}(TypedDict, total=False):", *members]
        got, given = row_types(row, record)
        fields.append(f"    {row.keyword}: Field[{got}, {given}]")
        fields += doc(field_text(described(row, description)), "    ")
        if not row.field.derived:
            parameters.append(f"{row.keyword}: {given} = ...")
    star = [parameters.pop(0)] if table.is_source else []
    parameters = ["self", *star, "*", *parameters, "name: str | None = None"]
    arguments = [f"        {parameter}," for parameter in parameters]
    return [
        *records, "", f"class {made}(Shader):", *doc(description.purpose, "    "), "", *fields,
        "    def __init__(", *arguments, "    ) -> None: ...", f"    def copy(self) -> {made}: ...",
    ]  # fmt: skip


def described(row: Row, description: fernwick.ClassDescription) -> Row:
    """The row with its default, where it is one field."""
    if row.rows or row.counts:
        return row
    return Row(row.name, row.counts, description[row.name], row.rows)


def main() -> None:
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    names = [*fernwick.classes(), *fernwick.sources()]
    lines: list[str] = [HEADER.rstrip("\n")]
    for name in names:
        lines += class_lines(name)
    listed: list[Any] = [name[0].upper() + name[1:] for name in names]
    lines += ["", f"__all__ = {listed!r}".replace("'", '"')]
    Path(sys.argv[1]).write_text("\n".join(lines) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()

"""The fields of the parameter tables as properties of nodes, and their values in documents."""

from __future__ import annotations

import functools
import keyword
import re
import struct
from collections.abc import Callable, Iterator, Mapping
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any

import bpy

if TYPE_CHECKING:
    import fernwick

NUMBERS = {"float": 1, "vector2": 2, "vector3": 3, "rgb": 3, "rgba": 4}  # of float fields
UNSHOWN = object()
"""In place of a value that no property can hold; the document's own text is kept for it."""
_LONGEST_TEXT = 255  # of a name, as the shaders hold it
_WHOLE = 2**31 - 1


@dataclass(frozen=True)
class Leaf:
    """A single field, which is a property of a node unless it is a slot."""

    address: str  # such as "fAxes[2].fEdgeA"
    property: str  # such as "fAxes_2_fEdgeA"
    field: fernwick.FieldDescription
    default: Any  # as the property shows it

    @property
    def is_slot(self) -> bool:
        return self.field.type == "shader"

    @property
    def base(self) -> str:
        """The name of the array or record that the field is part of, or its own."""
        return re.split(r"[.\[]", self.address, maxsplit=1)[0]

    @property
    def components(self) -> int:
        """How many numbers can be animated by themselves; 0 for what has no F-curves."""
        if self.field.type in NUMBERS:
            return NUMBERS[self.field.type]
        return 1 if self.field.type in ("int32", "bool", "code") else 0

    @property
    def steps(self) -> bool:
        """Whether the value changes all at once from key to key."""
        return self.field.type not in NUMBERS


@functools.cache
def leaves(table: str) -> Mapping[str, Leaf]:
    """All fields of a class or source that can be set, by address, in order."""
    import fernwick

    made = {}
    for field in fernwick.describe(table):
        if not field.derived:
            made[field.name] = Leaf(field.name, _property_name(field.name), field, _default(field))
    return made


def groups(table: str) -> Mapping[str, list[Leaf]]:
    """The properties of a class by array or record, or by themselves."""
    made: dict[str, list[Leaf]] = {}
    for leaf in leaves(table).values():
        if not leaf.is_slot:
            made.setdefault(leaf.base, []).append(leaf)
    return made


def make_property(leaf: Leaf, update: Callable[[Any, bpy.types.Context], None], colors: type) -> Any:
    """The property of a node for a field.

    :param colors: the class of the items of lists of colours
    """
    field = leaf.field
    arguments: dict[str, Any] = {"name": field.label, "description": _help(field), "update": update}
    if field.type == "colors":
        del arguments["update"]
        return bpy.props.CollectionProperty(type=colors, **arguments)
    arguments["default"] = leaf.default
    if field.choices:
        arguments["items"] = [
            (str(choice.value), choice.label[:1].upper() + choice.label[1:], "", i)
            for i, choice in enumerate(field.choices)
        ]
        return bpy.props.EnumProperty(**arguments)
    if field.type == "bool":
        return bpy.props.BoolProperty(**arguments)
    if field.type in ("string", "file"):
        if field.type == "file":
            return bpy.props.StringProperty(subtype="FILE_PATH", **arguments)
        return bpy.props.StringProperty(maxlen=_LONGEST_TEXT, **arguments)
    arguments |= _range(field)
    if field.type in ("int32", "code"):
        return bpy.props.IntProperty(**arguments)
    if field.type == "float":
        return bpy.props.FloatProperty(precision=3, step=_step(field), **arguments)
    count = NUMBERS[field.type]
    if field.type in ("rgb", "rgba"):
        return bpy.props.FloatVectorProperty(size=count, subtype="COLOR", soft_min=0, soft_max=1, **arguments)
    return bpy.props.FloatVectorProperty(size=count, precision=3, **arguments)


def show(leaf: Leaf, value: Any) -> Any:
    """A value of a document as the property shows it, or UNSHOWN. Slots show the name of what is plugged in."""
    kind = leaf.field.type
    if leaf.is_slot:
        return value or None if value is None or isinstance(value, str) else UNSHOWN
    if leaf.field.choices:
        for choice in leaf.field.choices:
            if value == choice.label or (value == choice.value and not isinstance(value, bool)):
                return str(choice.value)
        return UNSHOWN
    if kind == "bool":
        return value if isinstance(value, bool) else UNSHOWN
    if kind in ("int32", "code"):
        return value if isinstance(value, int) and abs(value) <= _WHOLE else UNSHOWN
    if kind in ("string", "file"):
        return value if isinstance(value, str) and "\0" not in value else UNSHOWN
    if kind == "colors":
        colors = [_numbers("rgba", member) for member in value] if isinstance(value, list) else [UNSHOWN]
        return UNSHOWN if any(color is UNSHOWN for color in colors) else tuple(colors)
    return _numbers(kind, value)


def tell(leaf: Leaf, shown: Any) -> Any:
    """What a property shows as a document has it."""
    if leaf.field.choices:
        return next((choice.value for choice in leaf.field.choices if str(choice.value) == shown), shown)
    if leaf.field.type == "colors":
        return [[shortest(number) for number in color] for color in shown]
    if isinstance(shown, tuple):
        return [shortest(number) for number in shown]
    return shortest(shown) if isinstance(shown, float) else shown


def read(node: bpy.types.Node, leaf: Leaf) -> Any:
    """What the property of a node shows now."""
    value = getattr(node, leaf.property)
    kind = leaf.field.type
    if kind == "colors":
        return tuple(tuple(item.color) for item in value) or leaf.default
    return tuple(value) if kind in NUMBERS and kind != "float" else value


def set_properties(node: bpy.types.Node) -> set[str]:
    """The properties that aren't at their defaults, or may not be."""
    if bpy.app.version < (5, 0, 0):
        return set(node.keys())  # much faster than to ask for each
    return {
        leaf.property
        for leaf in leaves(node.table).values()
        if not leaf.is_slot and node.is_property_set(leaf.property)
    }


def write(node: bpy.types.Node, leaf: Leaf, shown: Any) -> None:
    if leaf.field.type == "colors":
        items = getattr(node, leaf.property)
        items.clear()
        for color in shown:
            items.add().color = color
    else:
        setattr(node, leaf.property, shown)


def shortest(number: float) -> float | int:
    """The number of the fewest digits that is the same float of 32 bits; whole ones without a point."""
    if not -3.4e38 < number < 3.4e38:
        return number
    bits = struct.pack("f", number)
    made = next(
        each for each in (float(f"{number:.{digits}g}") for digits in range(6, 10)) if struct.pack("f", each) == bits
    )
    return int(made) if made.is_integer() and abs(made) < 1e6 and struct.pack("f", int(made)) == bits else made


def single(number: float) -> float:
    """The nearest float of 32 bits."""
    return struct.unpack("f", struct.pack("f", number))[0]  # type: ignore[no-any-return]


def spread(table: str, address: str, value: Any) -> Iterator[tuple[str, Any]]:
    """A member of a shader as its single fields; keys of an array or record become keys of each field."""
    known = leaves(table)
    if address in known:
        yield address, value
    elif is_keyed(value):
        first = value["keys"][0][1]
        names = range(len(first)) if isinstance(first, list) else list(first) if isinstance(first, dict) else []
        for name in names:
            parts = {**value, "keys": [[frame, at_key[name]] for frame, at_key in value["keys"]]}
            yield from spread(table, f"{address}[{name}]" if isinstance(name, int) else f"{address}.{name}", parts)
    elif isinstance(value, list):
        for i, member in enumerate(value):
            yield from spread(table, f"{address}[{i}]", member)
    elif isinstance(value, dict):
        for name, member in value.items():
            yield from spread(table, f"{address}.{name}", member)


def is_keyed(value: Any) -> bool:
    return isinstance(value, dict) and isinstance(value.get("keys"), list) and bool(value["keys"])


def holds_keys(value: Any) -> bool:
    members = value.values() if isinstance(value, dict) else value if isinstance(value, list) else ()
    return is_keyed(value) or any(map(holds_keys, members))


def _numbers(kind: str, value: Any) -> Any:
    """Floats as a property holds them; a colour without an alpha is opaque."""
    if kind == "float":
        return single(value) if _is_number(value) else UNSHOWN
    count = NUMBERS[kind]
    if isinstance(value, list) and kind == "rgba" and len(value) == 3:
        value = [*value, 1]
    if not (isinstance(value, list) and len(value) == count and all(map(_is_number, value))):
        return UNSHOWN
    return tuple(map(single, value))


def _is_number(value: Any) -> bool:
    return isinstance(value, (int, float)) and not isinstance(value, bool) and abs(value) < 3.4e38


def _property_name(address: str) -> str:
    name = re.sub(r"[.\[]", "_", address).replace("]", "")
    taken = bpy.types.Node.bl_rna.properties
    return f"{name}_" if keyword.iskeyword(name) or name in taken else name


def _default(field: fernwick.FieldDescription) -> Any:
    value = field.default
    if field.choices:
        known = [str(choice.value) for choice in field.choices]
        return str(value) if str(value) in known else known[0]
    if field.type in NUMBERS:
        if field.type == "float":
            return single(float(value or 0))
        return tuple(single(number) for number in value)
    if field.type == "colors":
        return tuple(tuple(color) for color in value)
    return {"bool": False, "string": "", "file": "", "int32": 0, "code": 0}.get(field.type) if value is None else value


def _help(field: fernwick.FieldDescription) -> str:
    text = field.help + (f" ({field.notes})" if field.notes else "")
    return text.rstrip(".")  # Blender ends it


def _range(field: fernwick.FieldDescription) -> dict[str, Any]:
    names = ("soft_min", "soft_max") if field.loose else ("min", "max")
    whole = field.type in ("int32", "code")
    limits = {}
    for name, limit in zip(names, (field.minimum, field.maximum)):
        if limit is not None:
            limits[name] = int(limit) if whole else limit
    if field.unit == "%" and field.type in ("float", "int32"):
        limits["subtype"] = "PERCENTAGE"
        limits.setdefault("soft_min", -100 if field.minimum is None else int(field.minimum))
        limits.setdefault("soft_max", 100)
    return limits


def _step(field: fernwick.FieldDescription) -> int:
    """Of a drag, in hundredths."""
    return 100 if field.unit in ("%", "degrees", "nm", "K") else 1

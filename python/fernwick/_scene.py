"""Scenes in Python's terms. What their numbers may be is checked when a graph takes them."""

from __future__ import annotations

import dataclasses
from collections.abc import Mapping, Sequence
from dataclasses import dataclass, field
from typing import Any

from ._arguments import PathLike
from ._keyed import Keyed
from ._mesh import Mesh
from ._shader import Shader

Number = float | Keyed
Numbers = Sequence[Number] | Keyed
"""Of positions, sizes and colours. NumPy's arrays are taken too."""
ShaderName = Shader | str | Keyed
"""A shader, or the name that a shader of the graph has."""


class _Part:
    """A part of a scene: its document has what isn't None, under names as documents have them."""

    _kind: str | None = None  # of shapes

    def members(self) -> dict[str, Any]:
        """What a document has, with shaders, arrays and parts as they are."""
        members: dict[str, Any] = {} if self._kind is None else {"kind": self._kind}
        for each in dataclasses.fields(self):
            value = getattr(self, each.name)
            if value is not None and not (each.metadata.get("empty") and _is_empty(value)):
                members[_camel(each.name)] = value
        return members

    def __repr__(self) -> str:
        parts = []
        for each in dataclasses.fields(self):
            value = getattr(self, each.name)
            is_needed = each.default is dataclasses.MISSING and each.default_factory is dataclasses.MISSING
            if is_needed:
                parts.append(repr(value))
            elif value is not None and not (each.metadata.get("empty") and _is_empty(value)):
                parts.append(f"{each.name}={value!r}")
        return f"{type(self).__name__}({', '.join(parts)})"


def _is_empty(value: object) -> bool:
    return isinstance(value, (Sequence, Mapping)) and not value


def _camel(name: str) -> str:
    first, *others = name.split("_")
    return first + "".join(each.capitalize() for each in others)


def _empty(factory: type) -> Any:
    return field(default_factory=factory, metadata={"empty": True})


@dataclass(repr=False)
class Sphere(_Part):
    """A sphere around the element's origin."""

    _kind = "sphere"
    radius: Number | None = None  #: 1


@dataclass(repr=False)
class Torus(_Part):
    """A ring about the Y axis."""

    _kind = "torus"
    radius: Number | None = None  #: of the ring, 1
    tube: Number | None = None  #: its tube's radius, a quarter of the ring's


@dataclass(repr=False)
class Saddle(_Part):
    """A surface that rises along one axis and falls along the other."""

    _kind = "saddle"
    size: Number | None = None  #: 2
    height: Number | None = None  #: 0.5


@dataclass(repr=False)
class Plane(_Part):
    """A rectangle across the Z axis."""

    _kind = "plane"
    size: Numbers | None = None  #: two lengths, (2, 2)


@dataclass(repr=False)
class Box(_Part):
    """A box around the element's origin."""

    _kind = "box"
    size: Numbers | None = None  #: three lengths, (2, 2, 2)


@dataclass(repr=False)
class Model(_Part):
    """All meshes of a file as one shape, or a `Mesh`."""

    _kind = "model"
    file: PathLike | Mesh
    up: str | None = None  #: the axis that points up in the file, "Y" or "Z"
    scale: Number | None = None  #: of its lengths
    radius: Number | None = None  #: instead of a scale, of a sphere around it at the origin


Shape = Sphere | Torus | Saddle | Plane | Box | Model


@dataclass(repr=False)
class Light(_Part):
    """A light at its element; a spot and a distant light shine along its -Z axis."""

    kind: str | None = None  #: "point", "spot" or "distant"
    color: Numbers | None = None  #: three numbers of linear light, white
    brightness: Number | None = None  #: 1
    range: Numbers | None = None  #: where it begins to fade and where it ends
    cone: Numbers | None = None  #: of a spot the same in degrees from its axis


@dataclass(repr=False)
class Camera(_Part):
    """A camera at its element, along its -Z axis."""

    field_of_view: Number | None = None  #: degrees from the lower to the upper edge, 1 to 170


@dataclass(repr=False)
class Element(_Part):
    """A part of a scene with a place of its own."""

    name: str
    shape: Shape | Mesh | None = None
    shader: ShaderName | None = None  #: of its shape and what lies below it; without any, the graph's output
    position: Numbers | None = None  #: three lengths, in its parent
    rotation: Numbers | None = None  #: degrees about X, then Y, then Z
    look_at: Numbers | None = None  #: instead: the point of the parent that its -Z axis aims at
    hot_point: Numbers | None = None  #: offset from its origin
    shading: str | Keyed | None = None  #: "plain", or "lit" by a lamp beside the camera
    light: Light | None = None
    camera: Camera | None = None
    children: Sequence[Element] = _empty(list)  #: elements below it

    def members(self) -> dict[str, Any]:
        members = super().members()
        if isinstance(self.shape, Mesh):
            members["shape"] = Model(self.shape)
        return members


@dataclass(repr=False)
class SceneFile(_Part):
    """A file of a scene, with how it lies."""

    path: PathLike | Mesh
    up: str | None = None  #: the axis that points up in it, "Y" or "Z"
    scale: Number | None = None  #: of its lengths
    position: Numbers | None = None
    rotation: Numbers | None = None


@dataclass(repr=False)
class Look(_Part):
    """How a node of a file looks."""

    shader: ShaderName | None = None
    shading: str | Keyed | None = None
    hot_point: Numbers | None = None


@dataclass(repr=False)
class Shaded(_Part):
    """The instance that baked samples lie on."""

    name: str | None = None
    position: Numbers | None = None
    rotation: Numbers | None = None
    look_at: Numbers | None = None
    hot_point: Numbers | None = None


@dataclass(repr=False)
class Scene(_Part):
    """What lies around the shaded object. Numbers and names are checked by the graph that takes it."""

    elements: Sequence[Element] = _empty(list)
    file: PathLike | Mesh | SceneFile | None = None  #: its nodes are the first elements
    camera: str | Keyed | None = None  #: the element that renders; without one the first camera
    background: Numbers | None = None  #: red, green and blue; transparent without
    shaded: Shaded | None = None
    materials: Mapping[str, ShaderName] = _empty(dict)  #: shaders of the materials of the file
    nodes: Mapping[str, ShaderName | Look] = _empty(dict)  #: how named elements look

"""Blender's scene as the shaders see it.

Coordinates are Blender's own, Z up: nothing is turned, and the axes of a Location or the angles of an Iridescent are
those of Blender's world. A place of the shaders has no scale, so scale and shear go into the mesh, and the coordinates
of an object are in lengths of the world.
"""

from __future__ import annotations

import math
from collections.abc import Iterable, Mapping
from typing import TYPE_CHECKING, Any

import bpy
import numpy as np

from .meshes import HAVE_MESHES, arrays_of, rigid_of

if TYPE_CHECKING:
    import fernwick

HOT_POINT = "fernwick_hot_point"
"""A custom property of an object: three lengths from its origin."""
BRIGHTNESS = "fernwick_brightness"
"""A custom property of a light's data; 1 without it. Watts don't count: the shaders know no falloff but the range."""
_SURFACES = {("Curvature", "fSurfaceName")}  # fields that name what rays are cast at


def scene_of(
    depsgraph: bpy.types.Depsgraph,
    document: Mapping[str, Any] | None = None,
    meshes: Mapping[str, fernwick.Mesh | None] | None = None,
) -> fernwick.Scene:
    """Objects with their places, lights and cameras.

    :param document: of the graph that will ask: only what it names is taken, with the lights, the cameras and the
        shapes of the surfaces it casts rays at. None takes all, without shapes
    :param meshes: shapes by the names of objects, which are taken in any case; None for one that comes later
    """
    import fernwick

    meshes = meshes or {}
    names = None if document is None else set(texts(document))
    surfaces = set() if document is None else set(texts(document, _SURFACES))
    elements: dict[str, fernwick.Element] = {}
    for thing in _wanted(depsgraph.scene, names, meshes):
        if thing.name in elements:
            continue
        mesh = meshes.get(thing.name)
        if thing.name not in meshes and thing.name in surfaces and thing.type in HAVE_MESHES:
            evaluated = thing.evaluated_get(depsgraph)
            mesh = arrays_of(thing, depsgraph).mesh(rigid_of(evaluated)[2])
        elements[thing.name] = element_of(thing, depsgraph, mesh)
    camera = depsgraph.scene.camera
    return fernwick.Scene(list(elements.values()), camera=camera.name if camera and camera.name in elements else None)


def element_of(
    thing: bpy.types.Object, depsgraph: bpy.types.Depsgraph, mesh: fernwick.Mesh | None = None
) -> fernwick.Element:
    import fernwick

    evaluated = thing.evaluated_get(depsgraph)
    position, rotation, _ = rigid_of(evaluated)
    element = fernwick.Element(thing.name, mesh, position=position, rotation=rotation)
    hot_point = thing.get(HOT_POINT)
    if hot_point is not None and len(hot_point) == 3:
        element.hot_point = [float(number) for number in hot_point]
    if thing.type == "LIGHT":
        element.light = _light(evaluated.data)
    elif thing.type == "CAMERA":
        element.camera = fernwick.Camera(_field_of_view(evaluated.data, depsgraph.scene))
    return element


def texts(document: Mapping[str, Any], fields: Iterable[tuple[str, str]] | None = None) -> Iterable[str]:
    """The texts in the fields of a document's shaders, such as names of objects.

    :param fields: the only ones that are looked at, each a class and a field
    """
    for shader in document.get("shaders", {}).values():
        for name, value in shader.items():
            if name in ("class", "source") or (fields is not None and (shader.get("class"), name) not in fields):
                continue
            yield from _texts_in(value)


def _wanted(scene: bpy.types.Scene, names: set[str] | None, also: Iterable[str]) -> list[bpy.types.Object]:
    """The objects whose names begin as some of `names`, of which groups are made, with the lights and the cameras;
    those of libraries last. Quick for thousands of others."""
    objects = scene.objects
    kinds = np.empty(len(objects), np.int32)
    objects.foreach_get("type", kinds)
    always = {bpy.types.Object.bl_rna.properties["type"].enum_items[kind].value for kind in ("LIGHT", "CAMERA")}
    beginnings = None if names is None else (*names, *also)
    found = [
        objects[i]
        for i, (name, kind) in enumerate(zip(objects.keys(), kinds.tolist()))
        if beginnings is None or kind in always or name.startswith(beginnings)
    ]
    return sorted(found, key=lambda thing: thing.library is not None)


def _texts_in(value: Any) -> Iterable[str]:
    if isinstance(value, str):
        if value:
            yield value
    elif isinstance(value, Mapping):
        for member in value.values():
            yield from _texts_in(member)
    elif isinstance(value, (list, tuple)):
        for member in value:
            yield from _texts_in(member)


def _light(light: bpy.types.Light) -> fernwick.Light:
    import fernwick

    made = fernwick.Light("point", tuple(light.color), float(light.get(BRIGHTNESS, 1.0)))
    if light.type == "SUN":
        made.kind = "distant"
        return made
    if light.type == "SPOT":
        made.kind = "spot"
        outer = math.degrees(light.spot_size) / 2
        made.cone = (outer * (1 - light.spot_blend), outer)
    elif light.type == "AREA":  # shines to its front alone, the less the farther aside
        made.kind = "spot"
        made.cone = (0, 90)
    if getattr(light, "use_custom_distance", False):
        made.range = (0, light.cutoff_distance)
    return made


def _field_of_view(camera: bpy.types.Camera, scene: bpy.types.Scene) -> float:
    """Degrees from the lower to the upper edge of the picture."""
    if camera.type != "PERSP":
        return 40
    corners = camera.view_frame(scene=scene)
    top = max(corner.y for corner in corners)
    bottom = min(corner.y for corner in corners)
    depth = abs(corners[0].z)
    angle = math.degrees(math.atan2(top, depth) - math.atan2(bottom, depth))
    return min(max(angle, 1), 170)

"""Bowls, water, mugs and what is printed onto them."""

from __future__ import annotations

import math
from typing import Any

import bpy
import fernwick
import looks
import numpy as np
import shapes
import textures

WATER = ((1.33283, 1e-5, 0.01794),) * 3
BOWL_LEVEL, BOWL_RADIUS = 0.98, 1.93  # of the water in a bowl of `bowl`


def bowl() -> list[bpy.types.Object]:
    """A glazed bowl on Z 0, 4.6 wide: a Location lets the glaze end above the foot, a Spoke paints the inside."""
    outside = [
        (0.0, 0.06),
        (0.86, 0.06),
        (0.9, 0.0, 0.02),
        (1.0, 0.0, 0.02),
        (1.02, 0.14),
        (1.10, 0.2),
        (1.6, 0.42),
        (2.0, 0.85),
        (2.24, 1.5),
        (2.28, 1.56),
        (2.22, 1.6),
    ]
    body = shapes.lathe("Bowl", shapes.smooth_profile(outside, 10), 192)
    fleck = textures.noise(1024, 1024, (0.03, 0.03), 8, 0.5)
    run = textures.noise(1024, 1024, (0.5, 0.05), 9, 1.2)
    height = fernwick.Location(fUseSubShader=True, fDisturbPercent=22, fSubShader=looks.picture(run))
    height.fAxes[2].fEnabled, height.fAxes[2].fEdgeA, height.fAxes[2].fEdgeB = True, 0.0, 1.9
    height.fAxes[2].fDirection = "Rising"
    glaze = looks.ramp(
        height,
        [
            (0.23, 0.12, 0.06),
            (0.20, 0.10, 0.045),
            (0.10, 0.14, 0.11),
            (0.16, 0.29, 0.26),
            (0.22, 0.38, 0.35),
            (0.30, 0.46, 0.43),
            (0.38, 0.52, 0.48),
            (0.30, 0.24, 0.14),
        ],
        looks.picture(fleck),
        12,
    )
    looks.cover(body, looks.bake(body, glaze, (2048, 1024), "color"), Roughness=0.14, Specular=0.5)

    inner = [(2.22, 1.6), (2.14, 1.54), (1.9, 0.92), (1.5, 0.48), (0.9, 0.24), (0.0, 0.17)]
    inside = shapes.lathe("Bowl inside", shapes.smooth_profile(inner, 12), 192)
    flat_uv(inside, 2.3)
    petals = fernwick.Spoke(
        fCount=20,
        fWidth=7,
        fSoftness=0.3,
        fTaper=-6,
        fInnerRadius=0.09,
        fInnerFade=0.11,
        fOuterRadius=0.43,
        fOuterFade=0.37,
    )
    rings = fernwick.Drip(
        fRippled=False,
        fRingStart=0.44,
        fRingWidth=0.012,
        fAmplitude=1,
        fSecondRing=True,
        fSecondStart=0.16,
        fSecondAmplitude=1,
    )
    clay = looks.ramp(
        looks.picture(fleck), [(0.50, 0.60, 0.55), (0.56, 0.65, 0.60), (0.60, 0.68, 0.62), (0.40, 0.47, 0.40)]
    )
    indigo = fernwick.Color((0.028, 0.085, 0.27))
    with_rings = looks.switch(rings, clay, indigo)
    painted = looks.switch(petals, with_rings, indigo)
    looks.cover(inside, looks.bake(inside, painted, 2048, "color", samples=4), Roughness=0.12, Specular=0.5)
    return [body, inside]


def flat_uv(thing: bpy.types.Object, reach: float) -> None:
    """UV as seen from above, the origin in the middle."""
    mesh = thing.data
    points = np.empty(len(mesh.vertices) * 3, np.float32)
    mesh.vertices.foreach_get("co", points)
    corners = np.empty(len(mesh.loops), np.int32)
    mesh.loops.foreach_get("vertex_index", corners)
    uv = points.reshape(-1, 3)[corners, :2] / (2 * reach) + 0.5
    mesh.uv_layers[0].data.foreach_set("uv", uv.astype(np.float32).ravel())


def water(drop: Any, radius: float = BOWL_RADIUS, depth: float = 0.1) -> bpy.types.Object:
    """A round of water at Z 0, moved by the baked heights of a Drip.

    :param depth: what a height of 1 stands for
    """
    rings, around = 500, 500
    r = np.linspace(0.001, 1, rings)[:, None] * radius
    angle = np.linspace(0, 2 * math.pi, around, endpoint=False)
    points = np.stack([r * np.cos(angle), r * np.sin(angle), np.zeros((rings, around))], -1)
    surface = shapes.surface("Water", points[::-1], closed_u=True)
    flat_uv(surface, radius)
    heights = looks.bake(surface, drop, 1024, "value", samples=4)["value"]
    shapes.displace(surface, heights, depth, 0.5)
    looks_like_water(surface)
    return surface


def looks_like_water(thing: bpy.types.Object) -> None:
    """Mirrors by the strip of Fresnel for water; what isn't mirrored is bent for the camera, and goes straight for the
    light, so that no caustics are needed to see the ground."""
    material = bpy.data.materials.new(thing.name)
    material.use_nodes = True
    tree = material.node_tree
    tree.nodes.remove(tree.nodes["Principled BSDF"])
    path = tree.nodes.new("ShaderNodeLightPath")
    through = tree.nodes.new("ShaderNodeBsdfTransparent")
    through.inputs["Color"].default_value = (0.93, 0.97, 0.97, 1)
    bent = tree.nodes.new("ShaderNodeBsdfRefraction")
    bent.inputs["IOR"].default_value = 1.333
    bent.inputs["Roughness"].default_value = 0.0
    bent.inputs["Color"].default_value = (0.93, 0.97, 0.97, 1)
    inner = tree.nodes.new("ShaderNodeMixShader")
    tree.links.new(path.outputs["Is Camera Ray"], inner.inputs[0])
    tree.links.new(through.outputs[0], inner.inputs[1])
    tree.links.new(bent.outputs[0], inner.inputs[2])
    mirror = tree.nodes.new("ShaderNodeBsdfGlossy")
    mirror.inputs["Roughness"].default_value = 0.0
    outer = tree.nodes.new("ShaderNodeMixShader")
    tree.links.new(looks.strip_node(tree, looks.angle_of_view(tree), "Water", WATER), outer.inputs[0])
    tree.links.new(inner.outputs[0], outer.inputs[1])
    tree.links.new(mirror.outputs[0], outer.inputs[2])
    tree.links.new(outer.outputs[0], tree.nodes["Material Output"].inputs["Surface"])
    thing.data.materials.clear()
    thing.data.materials.append(material)


def badge(size: int = 1024) -> Any:
    """A printed badge before a green cloth that is lit unevenly: (size, size, 3), linear light, row 0 at the top."""
    y, x = np.meshgrid(*[(np.arange(size) + 0.5) / size * 2 - 1] * 2, indexing="ij")
    y = -y
    unit = 3.0 / size

    def inside(distance: Any) -> Any:
        return np.clip(0.5 - distance / unit, 0, 1)[..., None]

    folds = textures.noise(size, size, (0.6, 0.25), 3, 2.2) - 0.5
    image = np.array((0.04, 0.5, 0.09)) * (1 + 0.34 * folds[..., None])
    radius = np.hypot(x, y)

    def paint(mask: Any, color: Any) -> None:
        nonlocal image
        image = image * (1 - mask) + np.array(color) * mask

    navy, cream, red, ochre = (0.014, 0.035, 0.085), (0.84, 0.76, 0.60), (0.56, 0.07, 0.03), (0.75, 0.36, 0.05)
    paint(inside(radius - 0.9), navy)
    paint(inside(np.abs(radius - 0.845) - 0.014), cream)
    paint(inside(radius - 0.78), (0.80, 0.50, 0.22))
    disc = inside(radius - 0.78)
    angle = np.arctan2(y - 0.1, x)
    paint(
        disc * inside((np.abs(((angle / (2 * math.pi) * 26) % 1) - 0.5) - 0.25) * 0.1) * inside(-y - 0.12),
        (0.84, 0.60, 0.30),
    )
    paint(disc * inside(np.hypot(x, y - 0.12) - 0.30), red)
    ridge = 0.42 - 0.95 * np.abs(x + 0.30) + 0.05 * np.abs(((x * 9) % 1) - 0.5)
    ridge2 = 0.30 - 0.85 * np.abs(x - 0.34) + 0.05 * np.abs(((x * 7 + 0.3) % 1) - 0.5)
    paint(disc * inside((y + 0.18) - ridge2 + 0.02) * inside(-(y + 0.9)), (0.10, 0.16, 0.22))
    paint(disc * inside((y + 0.18) - ridge) * inside(-(y + 0.9)), (0.03, 0.07, 0.12))
    snow = 0.20 + 0.05 * np.abs(((x * 8) % 1) - 0.5) * 2
    paint(disc * inside((y + 0.18) - ridge) * inside(-(y - snow + 0.12)), cream)
    for k, color in enumerate((navy, cream, ochre, cream, navy)):
        top = -0.30 - 0.105 * k + 0.025 * np.sin(x * 15 + k * 1.7)
        paint(disc * inside(y - top), color)
    return image.astype(np.float32)


def keyed(picture: Any) -> Any:
    """The badge without its green."""
    return fernwick.Key(
        fMode="Cut-out",
        fKeyColor=(0.04, 0.5, 0.09),
        fRedRange=(-4, 6),
        fGreenRange=(-16, 18),
        fBlueRange=(-8, 8),
        fSubShader=looks.picture(picture),
    )


def mug(name: str, enamel: Any, rim: Any, height: float = 2.1, radius: float = 1.0) -> list[bpy.types.Object]:
    """An enamelled mug on Z 0 with its handle along X: a Location draws the rim, noise chips it."""
    outline = [
        (0.0, 0.04),
        (radius * 0.92, 0.03, 0.03),
        (radius * 0.97, 0.07),
        (radius, 0.2),
        (radius, height * 0.5),
        (radius, height - 0.08),
        (radius + 0.05, height, 0.02),
        (radius + 0.02, height + 0.03, 0.02),
        (radius - 0.03, height - 0.03),
        (radius - 0.04, height * 0.5),
        (radius - 0.05, 0.25),
        (radius * 0.8, 0.1),
        (0.0, 0.09),
    ]
    body = shapes.lathe(name, shapes.smooth_profile(outline, 10), 128)
    spots = textures.noise(1024, 1024, (0.012, 0.012), 21, 0.8)
    top = fernwick.Location(fSpace="Object")
    top.fAxes[2].fEnabled, top.fAxes[2].fEdgeA, top.fAxes[2].fEdgeB = True, height - 0.11, height - 0.10
    top.fAxes[2].fDirection = "Rising"
    white = looks.ramp(looks.picture(spots), [enamel, enamel, enamel, tuple(0.93 * c for c in enamel)])
    graph = looks.switch(top, white, fernwick.Color(rim))
    looks.cover(body, looks.bake(body, graph, 1024, "color", samples=4), Roughness=0.1, Specular=0.5, Clearcoat=0.4)
    t = np.linspace(-0.5, 0.5, 40) * math.pi
    line = np.stack([radius - 0.05 + 0.62 * np.cos(t) ** 0.8, 0 * t, height * 0.5 + 0.62 * np.sin(t)], -1)
    handle = shapes.tube(f"{name} handle", shapes.catmull([tuple(p) for p in line], 3), 0.115, 20)
    handle.scale.y = 1.4
    looks.plain(handle, rim, Roughness=0.1)
    return [body, handle]


def wrap(name: str, radius: float, height: float, middle: float, width: float, turn: float) -> bpy.types.Object:
    """A sheet on a cylinder around Z for a decal, turned so far about Z from -Y."""
    angle = np.linspace(-width / 2, width / 2, 48) / radius - math.pi / 2 + turn
    z = np.linspace(-height / 2, height / 2, 24) + middle
    points = np.stack(np.broadcast_arrays(radius * np.cos(angle), radius * np.sin(angle), z[:, None]), -1)
    return shapes.surface(name, points)

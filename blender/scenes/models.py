"""The things that stand on the stage: their shapes, their graphs and their materials."""

from __future__ import annotations

import math
from typing import Any

import bpy
import fernwick
import looks
import numpy as np
import shapes
import textures


def wooden_top(size: tuple[float, float], boards: int = 5, tint: float = 1.0, seed: int = 5) -> bpy.types.Object:
    """A table of boards along X with its top at Z 0: a Super_mixer gives long noise the colours of wood."""
    table = shapes.plane("Table", size)
    n = 2048
    grain = textures.noise(n, n, (0.012, 0.5), seed, 0.5)
    warp = textures.noise(n, n, (0.2, 0.9), seed + 1, 1.6)
    rings = (warp * 14 + 0.35 * grain) % 1
    fine = textures.noise(n, n, (0.0015, 0.12), seed + 2, 0.3)
    wood = 0.35 * grain + 0.4 * rings + 0.25 * fine
    row = np.arange(n) * boards // n
    generator = np.random.default_rng(seed)
    shift = generator.integers(0, n, boards)
    wood = np.stack([np.roll(wood[y], shift[row[y]]) for y in range(n)])
    wood = wood * 0.75 + 0.25 * generator.random(boards)[row][:, None]
    edge = np.abs(((np.arange(n) + 0.5) * boards / n) % 1 - 0.5) > 0.5 - 1.5 * boards / n
    wood[edge] *= 0.1
    colors = [
        tuple(tint * c for c in color)
        for color in ((0.028, 0.013, 0.006), (0.12, 0.055, 0.022), (0.22, 0.11, 0.045), (0.31, 0.17, 0.075))
    ]
    pictures = looks.bake(table, looks.ramp(looks.picture(wood), colors), 3072, "color")
    pictures["height"] = looks.image("boards", wood.astype(np.float32), "value")
    looks.cover(table, pictures, height=0.012, Roughness=0.42, Specular=0.35)
    return table


def yarn_weave(
    colors: tuple[tuple[Any, ...], tuple[Any, ...]],
    repeat: tuple[int, int],
    width: int = 13,
    plies: int = 3,
    pattern: Any = None,
    gap: Any = (0.008, 0.006, 0.005),
) -> Any:
    """A Weave of twisted threads.

    :param colors: of the warp threads and the weft threads of a tile
    """
    bright, _ = textures.yarn(256, plies)
    return _weave(
        colors,
        repeat,
        width,
        pattern,
        gap,
        1.7,
        lambda color: looks.picture(np.array(color, np.float32) * (0.25 + 0.9 * bright[..., None])),
    )


def weave_height(
    counts: tuple[int, int], repeat: tuple[int, int], width: int = 13, plies: int = 3, pattern: Any = None
) -> Any:
    """The same Weave in heights: what it darkens is the round of a thread."""
    _, height = textures.yarn(256, plies)
    white = tuple(tuple([None] * count) for count in counts)
    return _weave(white, repeat, width, pattern, (0, 0, 0), 1.12, lambda _: looks.picture(0.6 + 0.4 * height))


def _weave(colors: Any, repeat: Any, width: int, pattern: Any, gap: Any, profile: float, thread: Any) -> Any:
    weave = fernwick.Weave(
        fWeaveMode="Free",
        fRepeatU=repeat[0],
        fRepeatV=repeat[1],
        fWarpWidth=[width] * 5,
        fWeftWidth=[width] * 5,
        fRoundAcross=True,
        fRoundAlong=True,
        fProfileAcross=profile,
        fProfileAlong=profile,
        fAcrossUV=True,
        fAlongUV=True,
        fGapSubShader=fernwick.Color(gap),
    )
    for j in range(5):
        for i in range(5):
            weave.fPattern[j][i] = pattern(i, j) if pattern else (i + j) % 2 == 1
    made = {color: thread(color) for color in {*colors[0], *colors[1]}}
    weave.fWarpSubShader = [made[color] for color in colors[0]] + [None] * (5 - len(colors[0]))
    weave.fWeftSubShader = [made[color] for color in colors[1]] + [None] * (5 - len(colors[1]))
    return weave


def relief(thing: bpy.types.Object, graph: Any, size: Any, name: str = "relief") -> tuple[Any, bpy.types.Image]:
    """The baked height of a weave, as an array and as an image."""
    raw = looks.arrays(thing, graph, size, "color")["color"][..., 0]
    height = (np.clip(raw, 0, None) ** 0.6).astype(np.float32)
    return height, looks.image(f"{thing.name} {name}", height, "value")


def cushion(size: float = 4.0, thickness: float = 1.0) -> tuple[bpy.types.Object, list[bpy.types.Object]]:
    """A cushion flat on Z 0's plane, its front up; the second are the back and the welt."""
    count = 321
    v, u = np.meshgrid(np.linspace(-1, 1, count), np.linspace(-1, 1, count), indexing="ij")
    # Evenly spaced in the middle, denser at the seam.
    u, v = np.sin(u * math.pi / 2 * 0.92) / math.sin(math.pi / 2 * 0.92), np.sin(v * math.pi / 2 * 0.92) / math.sin(
        math.pi / 2 * 0.92
    )
    bulge = ((1 - u**2) * (1 - v**2)) ** 0.42
    x = u * (1 - 0.085 * (1 - v**2)) * size / 2
    y = v * (1 - 0.085 * (1 - u**2)) * size / 2
    edge = np.maximum(np.abs(u), np.abs(v))
    corner = np.clip(np.abs(u) * np.abs(v), 0, 1)
    angle = np.arctan2(v, u)
    folds = np.sin(angle * 28 + 3 * np.sin(angle * 5)) * 0.018 + np.sin(angle * 17 + 1.3) * 0.014
    folds *= np.clip((edge - 0.45) / 0.3, 0, 1) * np.clip((1 - edge) / 0.12, 0, 1) * (1 + 1.5 * corner)
    soft = (textures.noise(count, count, (0.45, 0.45), 11, 2.4) - 0.5) * 0.10 * bulge
    dent = -0.16 * np.exp(-((u - 0.05) ** 2 / 0.25 + (v - 0.62) ** 2 / 0.05)) * bulge
    front = np.stack([x, y, thickness * (bulge * (1 + dent) + folds + soft)], -1)
    face = shapes.surface("Cushion", front)
    back = shapes.surface("Cushion back", front[:, ::-1] * (1, 1, -0.8))
    ring = np.concatenate([front[0, :-1], front[:-1, -1], front[-1, :0:-1], front[:0:-1, 0]])[::3]
    welt = shapes.tube("Welt", ring, 0.05 * size / 4, 16, closed=True)
    return face, [back, welt]


def basket(radius: float = 1.5, height: float = 2.2, mouth: float = 1.25) -> list[bpy.types.Object]:
    """A basket of straw, which stands at the origin on Z 0: body, rim and two handles."""
    profile = [(0.0, 0.04), (radius * 0.98, 0.04)]
    profile += [
        (radius * (1 + (mouth - 1) * math.sin(t * math.pi / 2 * 0.9) - 0.05 * (1 - t) ** 8), 0.04 + t * height)
        for t in np.linspace(0.01, 1, 60)
    ]
    outer = profile[1:]
    body = shapes.lathe("Basket", outer, 192)
    repeat = (20, 7)
    straw = tuple((0.58, 0.37, 0.15) for _ in range(2)), ((0.62, 0.40, 0.16), (0.50, 0.29, 0.10))
    size = (4096, 2048)
    color = looks.bake(body, yarn_weave(straw, repeat, plies=2), size, "color")["color"]
    _, relief_image = relief(body, weave_height((2, 2), repeat, plies=2), size)
    looks.cover(body, {"color": color, "height": relief_image}, height=0.02, Roughness=0.62, Specular=0.3)
    shapes.subdivide(body, 3 if looks.SIZE_FACTOR > 0.6 else 2, smooth=False)
    shapes.displace(body, relief_image, 0.1)
    inside = shapes.lathe("Basket inside", [(r - 0.05, z) for r, z in reversed(profile)], 96)
    looks.plain(inside, (0.22, 0.12, 0.045), Roughness=0.8)
    parts = [body, inside]
    top = radius * mouth
    for turn, offset in ((0, 0), (math.pi, 0)):
        angle = np.linspace(0, 2 * math.pi, 720, endpoint=False)
        wind = angle * 26 + turn
        line = np.stack(
            [
                (top + 0.075 * np.cos(wind)) * np.cos(angle),
                (top + 0.075 * np.cos(wind)) * np.sin(angle),
                height + 0.05 + 0.075 * np.sin(wind),
            ],
            -1,
        )
        rim = shapes.tube(f"Rim {turn:.0f}", line, 0.085, 12, closed=True)
        looks.plain(rim, (0.50, 0.30, 0.11), Roughness=0.6)
        parts.append(rim)
    for side in (-1, 1):
        for turn in (0, math.pi):
            t = np.linspace(0, 1, 160)
            arc = np.pi * t
            wind = t * 60 + turn
            r = 0.055
            line = np.stack(
                [
                    side * (top + 0.18 * np.sin(arc) + r * np.cos(wind)),
                    0.55 * np.cos(arc) + r * np.sin(wind) * 0.6,
                    height - 0.1 + 0.75 * np.sin(arc) + r * np.sin(wind),
                ],
                -1,
            )
            handle = shapes.tube(f"Handle {side} {turn:.0f}", line, 0.062, 12)
            looks.plain(handle, (0.46, 0.27, 0.095), Roughness=0.6)
            parts.append(handle)
    return parts


def ball(name: str, radius: float, color: tuple[float, ...], turns: int = 70, seed: int = 1) -> bpy.types.Object:
    """A ball of yarn: one thread, wound in layers that cross."""
    points = []
    generator = np.random.default_rng(seed)
    thread = radius * 0.052
    for layer in range(5):
        axis = generator.standard_normal(3)
        axis /= np.linalg.norm(axis)
        side = np.cross(axis, generator.standard_normal(3))
        side /= np.linalg.norm(side)
        up = np.cross(axis, side)
        rounds = turns // 5
        t = np.linspace(0, 1, rounds * 48)
        around = 2 * math.pi * rounds * t
        lift = 0.72 * np.sin(math.pi * (t - 0.5)) if layer < 3 else 0.35 * np.sin(2 * math.pi * t)
        flat = np.sqrt(1 - lift**2)
        line = flat[:, None] * (np.cos(around)[:, None] * side + np.sin(around)[:, None] * up) + lift[:, None] * axis
        points.append(line * (radius + thread * (0.5 * layer - 1)))
    path = np.concatenate(points)
    wound = shapes.tube(name, path, thread, 10)
    # The thread is a Weave of one thread along V: its picture of twisted strands repeats along the tube.
    material = looks.plain(wound, color, Roughness=0.9, Specular=0.15, Sheen=0.4)
    bright, height = textures.yarn(128, 3)
    tree = material.node_tree
    scale = tree.nodes.new("ShaderNodeMapping")
    place = tree.nodes.new("ShaderNodeUVMap")
    scale.inputs["Scale"].default_value = (2, len(path) / 6, 1)
    tree.links.new(place.outputs[0], scale.inputs[0])
    strand = looks.texture(tree, looks.image(f"{name} strand", bright, "color"))
    tree.links.new(scale.outputs[0], strand.inputs[0])
    mix = tree.nodes.new("ShaderNodeVectorMath")
    mix.operation = "MULTIPLY"
    mix.inputs[1].default_value = [1.35 * c for c in color]
    tree.links.new(strand.outputs["Color"], mix.inputs[0])
    tree.links.new(mix.outputs[0], tree.nodes["Principled BSDF"].inputs["Base Color"])
    return wound

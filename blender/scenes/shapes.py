"""Objects made of rows of points, with UV."""

from __future__ import annotations

import math
from collections.abc import Callable, Sequence
from typing import Any

import bpy
import numpy as np

Points = Any  # (rows, columns, 3) of floats


def surface(
    name: str, points: Points, closed_u: bool = False, closed_v: bool = False, uv: Any = None, smooth: bool = True
) -> bpy.types.Object:
    """A surface through rows of points; U runs along a row, V from the first row to the last.

    The front is where U x V points to.

    :param closed_u: whether a row ends where it begins; then its first point isn't given again
    :param uv: (rows + closed_v, columns + closed_u, 2); without, both go from 0 to 1 by the number of points
    """
    points = np.asarray(points, float)
    rows, columns = points.shape[:2]
    across, along = columns - (not closed_u), rows - (not closed_v)
    j, i = np.meshgrid(np.arange(along), np.arange(across), indexing="ij")
    corners = [(j, i), (j, i + 1), (j + 1, i + 1), (j + 1, i)]
    faces = np.stack([(b % rows) * columns + a % columns for b, a in corners], -1).reshape(-1, 4)
    if uv is None:
        v, u = np.meshgrid(np.linspace(0, 1, along + 1), np.linspace(0, 1, across + 1), indexing="ij")
        uv = np.stack([u, v], -1)
    by_corner = np.stack([uv[b, a] for b, a in corners], -2).reshape(-1, 2)
    return link(name, _mesh(name, points.reshape(-1, 3), faces, by_corner, smooth))


def _mesh(name: str, points: Any, faces: Any, uv: Any, smooth: bool) -> bpy.types.Mesh:
    """A mesh of faces of four corners, with UV by corner."""
    mesh = bpy.data.meshes.new(name)
    mesh.vertices.add(len(points))
    mesh.vertices.foreach_set("co", points.astype(np.float32).ravel())
    mesh.loops.add(faces.size)
    mesh.loops.foreach_set("vertex_index", faces.astype(np.int32).ravel())
    mesh.polygons.add(len(faces))
    mesh.polygons.foreach_set("loop_start", np.arange(0, faces.size, 4, dtype=np.int32))
    mesh.polygons.foreach_set("loop_total", np.full(len(faces), 4, np.int32))
    mesh.uv_layers.new(name="UVMap").data.foreach_set("uv", uv.astype(np.float32).ravel())
    mesh.polygons.foreach_set("use_smooth", np.full(len(faces), smooth))
    mesh.update(calc_edges=True)
    return mesh


def link(name: str, mesh: bpy.types.Mesh) -> bpy.types.Object:
    thing = bpy.data.objects.new(name, mesh)
    bpy.context.scene.collection.objects.link(thing)
    return thing


def lathe(name: str, profile: Sequence[tuple[float, float]], segments: int = 128) -> bpy.types.Object:
    """A turned thing: a profile of radius and height, from below up on the outside, around Z.

    U goes once around, V along the profile by its length.
    """
    outline = np.asarray(profile, float)
    length = np.concatenate([[0], np.cumsum(np.hypot(*np.diff(outline, axis=0).T))])
    angle = np.linspace(0, 2 * math.pi, segments, endpoint=False)
    radius = np.maximum(outline[:, 0], 1e-5)
    points = np.stack(
        [radius[:, None] * np.cos(angle), radius[:, None] * np.sin(angle), np.repeat(outline[:, 1:], segments, 1)], -1
    )
    v, u = np.meshgrid(length / length[-1], np.linspace(0, 1, segments + 1), indexing="ij")
    return surface(name, points, closed_u=True, uv=np.stack([u, v], -1))


def smooth_profile(
    knots: Sequence[tuple[float, ...]], steps: int = 10, bevel: float = 0.03
) -> list[tuple[float, float]]:
    """Points on a line through knots. A knot of two numbers is passed smoothly, one with a third is a corner, which is
    rounded by that radius, or by `bevel` where the third is negative."""
    result: list[tuple[float, float]] = []
    run: list[tuple[float, float]] = []

    def end_run() -> None:
        result.extend(catmull(run, steps) if len(run) > 2 else run)

    count = len(knots)
    for index, knot in enumerate(knots):
        here = np.array(knot[:2], float)
        if len(knot) > 2 and 0 < index < count - 1:
            radius = knot[2] if knot[2] >= 0 else bevel
            before = run[-1] if run else result[-1]
            back, ahead = np.array(before) - here, np.array(knots[index + 1][:2]) - here
            a = here + back / np.linalg.norm(back) * min(radius, np.linalg.norm(back) * 0.45)
            b = here + ahead / np.linalg.norm(ahead) * min(radius, np.linalg.norm(ahead) * 0.45)
            run.append(tuple(a))
            end_run()
            for t in np.linspace(0, 1, 8)[1:-1]:
                result.append(tuple((1 - t) ** 2 * a + 2 * t * (1 - t) * here + t**2 * b))
            run = [tuple(b)]
        else:
            run.append(tuple(here))
    end_run()
    return result


def catmull(points: Sequence[tuple[float, ...]], steps: int, closed: bool = False) -> list[tuple[float, ...]]:
    """A smooth line through all points, with so many steps from each to the next."""
    knots = [np.array(point, float) for point in points]
    count = len(knots)
    knots = [knots[-1], *knots, knots[0], knots[1]] if closed else [knots[0], *knots, knots[-1]]
    line: list[tuple[float, ...]] = []
    for k in range(count if closed else count - 1):
        a, b, c, d = knots[k : k + 4]
        for t in np.arange(steps) / steps:
            line.append(
                tuple(
                    0.5
                    * (2 * b + (c - a) * t + (2 * a - 5 * b + 4 * c - d) * t**2 + (3 * b - a - 3 * c + d) * t**3)
                )
            )
    return line if closed else [*line, tuple(knots[-2])]


def tube(
    name: str,
    line: Sequence[Sequence[float]],
    radius: float | Callable[[float], float],
    sides: int = 24,
    closed: bool = False,
) -> bpy.types.Object:
    """A tube along a line; U goes around it, V along.

    :param radius: everywhere, or by the share of the way, 0 to 1
    """
    path = np.asarray(line, float)
    count = len(path)
    ahead = np.roll(path, -1, 0) - np.roll(path, 1, 0) if closed else np.gradient(path, axis=0)
    ahead /= np.linalg.norm(ahead, axis=1, keepdims=True)
    side = np.cross(ahead[0], (0.0, 0.0, 1.0) if abs(ahead[0][2]) < 0.9 else (1.0, 0.0, 0.0))
    rings = []
    angle = np.linspace(0, 2 * math.pi, sides, endpoint=False)
    for k in range(count):
        side = side - ahead[k] * np.dot(side, ahead[k])
        side /= np.linalg.norm(side)
        up = np.cross(ahead[k], side)
        r = radius(k / max(count - 1, 1)) if callable(radius) else radius
        rings.append(path[k] + r * (np.cos(angle)[:, None] * side + np.sin(angle)[:, None] * up))
    return surface(name, np.array(rings), closed_u=True, closed_v=closed)


def plane(name: str, size: tuple[float, float], cuts: tuple[int, int] = (1, 1)) -> bpy.types.Object:
    """A rectangle at Z 0 around the origin, facing up, with its UV from the lower left."""
    y, x = np.meshgrid(
        np.linspace(-size[1] / 2, size[1] / 2, cuts[1] + 1),
        np.linspace(-size[0] / 2, size[0] / 2, cuts[0] + 1),
        indexing="ij",
    )
    return surface(name, np.stack([x, y, 0 * x], -1))


def subdivide(thing: bpy.types.Object, levels: int, smooth: bool = True) -> None:
    """Divides each face into 4 so many times; if `smooth`, rounds it too."""
    modifier = thing.modifiers.new("Subdivision", "SUBSURF")
    modifier.subdivision_type = "CATMULL_CLARK" if smooth else "SIMPLE"
    modifier.levels = modifier.render_levels = levels


def displace(thing: bpy.types.Object, image: bpy.types.Image, strength: float, middle: float = 0.0) -> None:
    """Moves the surface outward by a baked picture, by so much where it is 1."""
    texture = bpy.data.textures.new(thing.name, "IMAGE")
    texture.image = image
    texture.extension = "EXTEND"
    modifier = thing.modifiers.new("Displace", "DISPLACE")
    modifier.texture = texture
    modifier.texture_coords = "UV"
    modifier.strength, modifier.mid_level = strength, middle


def fibres(name: str, lines: Points, roots: Any, radius: float) -> bpy.types.Object:
    """Thin threads of three sides, all of whose UV is that of their root.

    :param lines: (threads, points, 3)
    :param roots: (threads, 2)
    """
    threads, count = lines.shape[:2]
    angle = np.arange(3) * 2 * math.pi / 3
    taper = radius * np.linspace(1, 0.3, count)[None, :, None, None]
    ahead = np.gradient(lines, axis=1)
    side = np.cross(ahead, (0.0, 0.0, 1.0))
    side /= np.linalg.norm(side, axis=2, keepdims=True) + 1e-9
    up = np.array((0.0, 0.0, 1.0))
    ring = np.cos(angle)[None, None, :, None] * side[:, :, None] + np.sin(angle)[None, None, :, None] * up
    points = (lines[:, :, None] + taper * ring).reshape(-1, 3)
    k, j, i = np.meshgrid(np.arange(threads), np.arange(count - 1), np.arange(3), indexing="ij")
    corners = [(j, i), (j, (i + 1) % 3), (j + 1, (i + 1) % 3), (j + 1, i)]
    faces = np.stack([(k * count + b) * 3 + a for b, a in corners], -1).reshape(-1, 4)
    uv = np.repeat(roots, (count - 1) * 3 * 4, 0)
    return link(name, _mesh(name, points, faces, uv, True))

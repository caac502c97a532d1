"""A beetle, and the leaf that it sits on."""

from __future__ import annotations

import math
from typing import Any

import bpy
import fernwick
import looks
import numpy as np
import shapes
import textures

# Green at the middle, gold and copper where the surface turns away, violet at its rim.
JEWEL = [
    (0.00, 0.30, 0.07),
    (0.04, 0.42, 0.06),
    (0.32, 0.42, 0.02),
    (0.72, 0.26, 0.02),
    (0.66, 0.06, 0.07),
    (0.30, 0.03, 0.42),
    (0.03, 0.08, 0.55),
]


def iridescent(colors: Any, eye: str, moved: Any = None) -> Any:
    """Bands of colour by the angle at which an object of the scene sees the surface: one that falls as the next rises.

    :param moved: a picture from 0 to 1 that moves the angle by up to half a radian to either side
    """
    film = fernwick.Iridescent(fReferenceMode="Object", fObjectName=eye, fHoldLastBand=True)
    for band, (color, center) in enumerate(zip(colors, (4, 19, 33, 47, 60, 73, 86))):
        film.fBands[band].fColor, film.fBands[band].fCenter, film.fBands[band].fWidth = (*color, 0), center, 4.0
    if moved is not None:
        film.fMixStyle, film.fSubShader = "Moved by the shader", moved
    return film


def beetle(eye: str) -> list[bpy.types.Object]:
    """Some 4.4 long along Y with its head at -Y, standing on Z 0. `colour_beetle` gives it its colours."""
    parts = []
    for side in (-1, 1):
        v, u = np.meshgrid(np.linspace(0, 1, 240), np.linspace(0, 1, 160), indexing="ij")
        along = v**0.9
        width = 1.32 * np.clip(np.sin(math.pi * (0.17 + 0.83 * along)), 0, 1) ** 0.52 * (1 - 0.10 * along)
        width *= np.clip(0.35 + along / 0.03, 0, 1) ** 0.4
        angle = u * math.pi * 0.56
        lift = (
            1.18
            * np.clip(np.sin(math.pi * (0.22 + 0.78 * along)), 0, 1) ** 0.6
            * np.clip(0.35 + along / 0.03, 0, 1) ** 0.35
        )
        furrows = 0.022 * np.abs(np.sin(u * math.pi * 9)) ** 0.5 * np.clip(np.sin(math.pi * along), 0, 1) ** 0.4
        pits = 0.010 * textures.noise(240, 160, (0.02, 0.02), 5 + side, 0.8) * np.clip(np.sin(math.pi * along), 0, 1)
        radius = 1 + furrows - pits - 0.045 * np.exp(-((u / 0.03) ** 2))
        x = side * (width * np.sin(angle) * radius + 0.012)
        z = 0.55 + lift * np.cos(angle) * radius
        y = -0.92 + 3.15 * along
        points = np.stack([x, y, z], -1)
        parts.append(shapes.surface(f"Wing case {side}", points if side > 0 else points[:, ::-1]))

    def dome(name: str, center: Any, size: Any, power: float = 1.0, flat: float = 0.0) -> None:
        v, u = np.meshgrid(np.linspace(0, 1, 90), np.linspace(0, 2 * math.pi, 120, endpoint=False), indexing="ij")
        polar = v * math.pi
        x = np.sign(np.cos(u)) * np.abs(np.cos(u)) ** power * np.sin(polar) ** 0.75
        y = np.sign(np.sin(u)) * np.abs(np.sin(u)) ** power * np.sin(polar) ** 0.75
        z = -np.cos(polar)
        pits = 1 - 0.012 * textures.noise(90, 120, (0.03, 0.03), 9, 0.8) * np.sin(polar) ** 2
        points = np.stack([x * size[0] * (1 - flat * y) * pits, y * size[1] * pits, z * size[2] * pits], -1)
        part = shapes.surface(name, points + np.array(center), closed_u=True)
        parts.append(part)

    dome("Shield", (0, -1.18, 0.80), (1.12, 0.66, 0.62), 0.75, -0.22)
    dome("Head", (0, -1.92, 0.66), (0.62, 0.46, 0.42), 0.85, 0.1)
    dome("Horn plate", (0, -2.26, 0.62), (0.40, 0.24, 0.16), 0.7, 0.2)
    dome("Belly", (0, 0.5, 0.55), (1.15, 1.75, 0.40), 0.9)
    dome("Scutum", (0, -0.72, 1.50), (0.22, 0.30, 0.13), 0.8, 0.5)
    for side in (-1, 1):
        dome(f"Eye {side}", (side * 0.52, -1.98, 0.74), (0.13, 0.16, 0.15))
        feeler = shapes.catmull(
            [(side * 0.36, -2.2, 0.66), (side * 0.75, -2.55, 0.95), (side * 1.05, -2.9, 1.0), (side * 1.2, -3.1, 0.9)],
            16,
        )
        parts.append(shapes.tube(f"Feeler {side}", feeler, _feeler_radius))
        for pair, (root, knee, ankle, foot) in enumerate(
            [
                ((0.75, -1.25, 0.5), (1.75, -1.85, 0.95), (2.25, -2.35, 0.10), (2.45, -2.85, 0.06)),
                ((0.95, -0.2, 0.45), (2.05, 0.0, 1.0), (2.75, 0.2, 0.10), (3.2, 0.15, 0.06)),
                ((0.9, 0.9, 0.45), (1.95, 1.6, 0.95), (2.5, 2.4, 0.10), (2.75, 2.9, 0.06)),
            ]
        ):
            joints = [
                (0.45 * side, root[1], root[2]),
                *(tuple(np.array(p) * (side, 1, 1)) for p in (root, knee, ankle, foot)),
            ]
            line = shapes.catmull(joints, 14)
            parts.append(shapes.tube(f"Leg {side} {pair}", line, _leg_radius, 20))
    return parts


def _feeler_radius(t: float) -> float:
    """Thin, with a club at its end."""
    return (
        0.045
        if t < 0.82
        else max(0.001, 0.045 * (1 - (t - 0.82) / 0.18) + 0.09 * math.sin((t - 0.82) / 0.18 * math.pi))
    )


def _leg_radius(t: float) -> float:
    """Thigh, shin and foot: thick in their middles."""
    if t < 0.5:
        return 0.085 + 0.085 * math.sin(math.pi * t / 0.5)
    if t < 0.78:
        return 0.062 + 0.045 * math.sin(math.pi * (t - 0.5) / 0.28)
    return 0.05 + 0.012 * math.sin(6 * math.pi * (t - 0.78) / 0.22) - 0.02 * (t - 0.78) / 0.22


def colour_beetle(parts: list[bpy.types.Object], eye: str) -> None:
    """Bakes the film of colour as the eye sees the parts where they stand."""
    grain = looks.picture(0.36 + 0.28 * textures.noise(512, 512, (0.5, 0.4), 14, 1.6))
    film = iridescent(JEWEL, eye, grain)
    for part in parts:
        small = part.name.split()[0] in ("Leg", "Feeler", "Belly")
        if part.name.startswith("Eye"):
            looks.plain(part, (0.006, 0.005, 0.005), Roughness=0.08)
            continue
        size = 128 if small else 1024
        pictures = looks.bake(part, film, size, "color")
        looks.cover(
            part, pictures, Metallic=0.92, Roughness=0.30 if small else 0.24, Clearcoat=1.0, Clearcoat_Roughness=0.03
        )


def leaf(length: float = 13.0, width: float = 6.4) -> bpy.types.Object:
    """A leaf along Y, its veins drawn by a Spoke whose spokes have parallel sides, and by noise between them."""
    v, u = np.meshgrid(np.linspace(0, 1, 320), np.linspace(-1, 1, 240), indexing="ij")
    half = width / 2 * np.sin(math.pi * np.clip(v, 0, 1) ** 0.85) ** 0.75 + 0.02
    side = np.abs(((v * 13 - np.abs(u) * 3.2) % 1) - 0.5) * 2  # 1 in a side vein, 0 halfway to the next
    bulge = 0.085 * (1 - side**3) * (1 - np.abs(u) ** 3) * np.clip(np.abs(u) / 0.12, 0, 1)
    z = (
        bulge
        + 0.55 * np.abs(u) ** 1.6 * half / (width / 2)
        - 0.5 * (2 * v - 1) ** 2
        - 0.10 * np.exp(-((u / 0.05) ** 2))
    )
    z += 0.06 * np.sin(v * 23) * np.abs(u) ** 4
    points = np.stack([u * half, (v - 0.5) * length, z], -1)
    thing = shapes.surface("Leaf", points)
    fine = textures.noise(1024, 1024, (0.012, 0.012), 17, 0.7)
    y, x = np.meshgrid(1 - (np.arange(1024) + 0.5) / 1024, (np.arange(1024) + 0.5) / 512 - 1, indexing="ij")
    vein = np.abs(((y * 13 - np.abs(x) * 3.2) % 1) - 0.5) * 2
    light = np.maximum(np.clip((vein - 0.93) / 0.07, 0, 1) * (1 - np.abs(x)), np.exp(-((x / 0.022) ** 2)))
    control = 0.10 + 0.42 * fine + 0.18 * textures.noise(1024, 1024, (0.3, 0.3), 18, 1.4)
    control = np.clip(control * (1 - light) + 0.95 * light, 0, 1)
    greens = looks.ramp(
        looks.picture(control), [(0.010, 0.045, 0.014), (0.022, 0.085, 0.022), (0.045, 0.14, 0.03), (0.16, 0.27, 0.07)]
    )
    pictures = looks.bake(thing, greens, 2048, "color")
    pictures["height"] = looks.image("leaf height", fine, "value")
    looks.cover(thing, pictures, height=0.012, Roughness=0.32, Specular=0.45)
    return thing

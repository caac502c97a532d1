"""Ripples in a bowl: the heights of a `Drip` move the water.

The water mirrors by the table of `Fresnel`. The bowl is glazed by a `Location` that noise disturbs, and painted by a
`Spoke` and the flat rings of a second `Drip`, which a `Super_mixer` lays over each other.
"""

import math
import sys
from pathlib import Path

sys.path[:0] = [str(Path(__file__).parent)]

import fernwick
import looks
import models
import numpy as np
import shapes
import ware
from stage import Stage

stage = Stage("ripples", aspect=1.5, samples=52, exposure=0.45)
looks.SIZE_FACTOR = stage.options.maps
stage.world(top=(0.5, 0.62, 0.75), horizon=(0.62, 0.62, 0.6), below=(0.05, 0.04, 0.035), strength=0.3)
ware.bowl()
drop = fernwick.Drip(
    fCenterU=0.47,
    fCenterV=0.52,
    fBaseLevel=0.5,
    fAmplitude=0.5,
    fWaves=9,
    fRingStart=0.015,
    fRingWidth=0.40,
)
pond = ware.water(drop, depth=0.17)
pond.location.z = ware.BOWL_LEVEL
center = np.array([(0.47 - 0.5) * 2 * ware.BOWL_RADIUS, (0.52 - 0.5) * 2 * ware.BOWL_RADIUS])
bead = shapes.lathe(
    "Bead",
    [
        (0.001, -0.16),
        *[
            (0.16 * math.sin(a) * (1 - 0.12 * (1 - math.cos(a))), -0.16 * math.cos(a) + max(0, a - 2) * 0.06)
            for a in np.linspace(0.1, math.pi, 40)
        ],
    ],
    48,
)
bead.location = (*center, ware.BOWL_LEVEL + 0.95)
ware.looks_like_water(bead)

generator = np.random.default_rng(6)
for index, (x, y, z) in enumerate(
    [
        (-1.25, -0.55, 1.02),
        (-0.9, -1.05, 1.02),
        (1.2, 0.75, 1.02),
        (3.2, -1.6, 0.04),
        (-3.3, -1.2, 0.04),
        (2.7, -2.3, 0.04),
        (-2.2, 2.6, 0.04),
    ]
):
    v, u = np.meshgrid(np.linspace(0, 1, 16), np.linspace(-1, 1, 16), indexing="ij")
    half = 0.17 * np.sin(np.pi * np.clip(v, 0, 1) ** 0.7) ** 0.8 + 0.002
    petal = np.stack(
        [u * half, v * 0.5 - 0.04 * np.exp(-(u**2) * 18) * v**6, 0.10 * (v - 0.4) ** 2 * 2 + 0.07 * u**2], -1
    )
    thing = shapes.surface(f"Petal {index}", petal)
    thing.location = (x, y, z)
    thing.rotation_euler = (generator.uniform(-0.1, 0.1), generator.uniform(-0.15, 0.15), generator.uniform(0, 6.3))
    blush = looks.ramp(
        fernwick.Ramp("v"), [(0.62, 0.12, 0.2), (0.82, 0.42, 0.48), (0.88, 0.66, 0.68), (0.88, 0.70, 0.72)]
    )
    looks.cover(thing, looks.bake(thing, blush, 128, "color"), Roughness=0.5, Subsurface=0.0)

table = models.wooden_top((18, 12), boards=6, tint=0.55, seed=9)
table.location.y = 1.0
table.rotation_euler.z = math.radians(8)
stage.camera((0.4, -6.7, 6.3), (0.0, 0.05, 0.85), lens=56, fstop=1.0, focus=(-0.1, -0.35, 1.05))
stage.softbox("Window", (-4.5, 5.5, 5.0), (0, 0, 0.8), (5, 4.5), 620, (1.0, 0.95, 0.88))
stage.softbox("Room", (6, -5, 5), (0, 0, 0.5), 5, 110, (0.8, 0.9, 1.0), mirrored=False)
stage.render()

"""A still life of the pack: cloth and basket of `Weave`, gold by `Fresnel`, a bowl with `Drip`, `Spoke` and `Location`,
a mug with a decal by `Key`, a beetle of `Iridescent`, and a table that a `Super_mixer` gives the colours of wood.
"""

import math
import sys
from pathlib import Path

sys.path[:0] = [str(Path(__file__).parent)]

import creatures
import fernwick
import looks
import models
import numpy as np
import shapes
import ware
from mathutils import Matrix
from stage import Stage

stage = Stage("stilllife", aspect=1.5, samples=36, exposure=0.3)
looks.SIZE_FACTOR = stage.options.maps
stage.world(top=(0.30, 0.36, 0.45), horizon=(0.35, 0.33, 0.30), below=(0.05, 0.04, 0.03), strength=0.22)
stage.camera((0.45, -10.8, 4.5), (0.1, 0, 1.12), lens=46, fstop=0.9, focus=(0.2, -1.3, 0.9))


def put(parts, place, turn=0.0, scale=1.0):
    for part in parts:
        part.matrix_world = (
            Matrix.Translation(place)
            @ Matrix.Rotation(math.radians(turn), 4, "Z")
            @ Matrix.Scale(scale, 4)
            @ part.matrix_world
        )


table = models.wooden_top((20, 9), boards=6, tint=0.8, seed=22)
table.location.y = -0.8

# A runner across the table, which hangs in folds.
v, u = np.meshgrid(np.linspace(0, 1, 260), np.linspace(0, 1, 420), indexing="ij")
folds = 0.05 * np.sin(u * 31 + 4 * v + 2 * np.sin(v * 5)) * np.clip(np.sin(u * 7 + 1) + 0.3, 0, 1) + 0.10 * np.exp(
    -(((u - 0.55 - 0.1 * v) / 0.02) ** 2)
)
runner = shapes.surface(
    "Runner",
    np.stack(
        [(u - 0.5) * 11 + 0.25 * np.sin(v * 4), (v - 0.5) * 3.4 + 0.12 * np.sin(u * 9), 0.035 + np.abs(folds)], -1
    ),
)
LINEN, MADDER, INDIGO = (0.74, 0.66, 0.53), (0.42, 0.07, 0.04), (0.05, 0.10, 0.22)
stripes = models.yarn_weave(((LINEN, LINEN, INDIGO, LINEN, LINEN), (LINEN, MADDER, LINEN, LINEN, INDIGO)), (24, 8))
pictures = looks.bake(runner, stripes, (4096, 1536), ["color", "normal"])
looks.cover(runner, pictures, relief=0.6, Roughness=0.9, Specular=0.1, Sheen=0.3)
runner.location.y = -1.9
runner.rotation_euler.z = math.radians(-5)

put(models.basket(1.3, 1.9, 1.22), (-2.45, 0.5, 0), 20)
for index, (at, radius, color) in enumerate(
    [
        ((-3.0, 0.1, 1.95), 0.70, (0.55, 0.14, 0.05)),
        ((-1.85, 0.25, 1.9), 0.66, (0.72, 0.60, 0.42)),
        ((-2.4, 1.1, 2.05), 0.70, (0.07, 0.15, 0.20)),
        ((-0.75, -1.75, 0.48), 0.42, (0.62, 0.32, 0.05)),
    ]
):
    models.ball(f"Ball {index}", radius, color, seed=index + 2).location = at

put(ware.bowl(), (0.95, -1.45, 0.06), 0, 0.60)
drop = fernwick.Drip(
    fCenterU=0.46, fCenterV=0.5, fBaseLevel=0.5, fAmplitude=0.5, fWaves=7, fRingStart=0.02, fRingWidth=0.36
)
put([ware.water(drop, depth=0.15)], (0.95, -1.45, 0.06 + 0.6 * ware.BOWL_LEVEL), 0, 0.60)

goblet = shapes.lathe(
    "Goblet",
    shapes.smooth_profile(
        [
            (0.0, 0.0),
            (0.78, 0.0, 0.03),
            (0.80, 0.06, 0.03),
            (0.5, 0.16),
            (0.16, 0.34),
            (0.11, 0.7),
            (0.13, 1.0),
            (0.24, 1.08, 0.02),
            (0.24, 1.16, 0.02),
            (0.12, 1.24),
            (0.14, 1.4),
            (0.40, 1.62),
            (0.72, 2.0),
            (0.80, 2.5),
            (0.74, 3.05, 0.02),
            (0.70, 3.05, 0.02),
            (0.74, 2.5),
            (0.66, 2.02),
            (0.36, 1.70),
            (0.0, 1.62),
        ],
        10,
    ),
    160,
)
looks.metal(goblet, looks.GOLD, 0.14, 1.5)
goblet.location = (0.2, 0.7, 0)
jug = shapes.lathe(
    "Jug",
    shapes.smooth_profile(
        [
            (0.0, 0.0),
            (0.62, 0.0, 0.04),
            (0.70, 0.10),
            (1.02, 0.7),
            (1.06, 1.25),
            (0.80, 1.95),
            (0.44, 2.45),
            (0.36, 2.8),
            (0.42, 3.2),
            (0.56, 3.42, 0.02),
            (0.52, 3.42, 0.02),
            (0.37, 3.18),
            (0.31, 2.8),
            (0.0, 2.6),
        ],
        10,
    ),
    160,
)
looks.metal(jug, looks.COPPER, 0.2, 0)
jug.location = (1.75, 1.6, 0)
handle = shapes.tube(
    "Jug handle",
    shapes.catmull([(0.40, 0, 3.2), (0.85, 0, 3.28), (1.18, 0, 2.85), (1.2, 0, 2.2), (0.93, 0, 1.7)], 16),
    0.085,
)
looks.metal(handle, looks.COPPER, 0.2, 0)
put([handle], (1.75, 1.6, 0), 12)

mug = ware.mug("Mug", (0.80, 0.77, 0.70), (0.014, 0.035, 0.085))
decal = ware.wrap("Decal", 1.004, 1.6, 1.08, 1.6, 0)
put([*mug, decal], (3.15, 0.1, 0), -14, 0.85)
looks.cover(decal, looks.bake(decal, ware.keyed(ware.badge()), 1024, ["color", "alpha"], samples=4), Roughness=0.3)

insect = creatures.beetle("Camera")
put(insect, (-1.95, -2.5, 0.05), -30, 0.25)
creatures.colour_beetle(insect, "Camera")

wall = shapes.plane("Wall", (34, 16))
wall.matrix_world = Matrix.Translation((0, 3.4, 7)) @ Matrix.Rotation(math.radians(90), 4, "X")
looks.plain(wall, (0.075, 0.085, 0.076), Roughness=0.9, Specular=0.1)
stage.softbox("Window", (-7.5, -3.0, 6.0), (0, 0, 0.9), (4, 4), 1000, (1.0, 0.92, 0.80))
stage.softbox("Room", (8, -6, 5), (0.5, 0, 1), 6, 110, (0.78, 0.88, 1.0))
stage.softbox("Above", (1, 0, 8), (0.5, -0.5, 0), (5, 3), 120)
stage.render()

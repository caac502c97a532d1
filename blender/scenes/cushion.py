"""A woven cushion and a basket in a window's light.

`Weave` three times: the cloth of the cushion in two wools, with the bent normals of its threads; the basket, whose
baked heights move the mesh; and the threads themselves are pictures that follow each thread along and across. The floor
is a `Super_mixer` that gives noise the colours of wood.
"""

import math
import sys
from pathlib import Path

sys.path[:0] = [str(Path(__file__).parent)]

import looks
import models
import shapes
from mathutils import Matrix
from stage import Stage

stage = Stage("cushion", aspect=1.5, samples=44, exposure=0.35)
looks.SIZE_FACTOR = stage.options.maps
stage.world(top=(0.6, 0.68, 0.8), horizon=(0.95, 0.88, 0.8), strength=0.24)

WOOL, RUST, SLATE = (0.80, 0.70, 0.54), (0.50, 0.13, 0.045), (0.07, 0.13, 0.16)
face, others = models.cushion(4.4, 1.05)
twill = lambda i, j: (i + 2 * j) % 5 in (0, 2)  # noqa: E731
graph = models.yarn_weave(((WOOL,) * 5, (RUST, RUST, SLATE, RUST, WOOL)), (9, 9), pattern=twill)
pictures = looks.bake(face, graph, 4096, ["color", "normal"])
_, height = models.relief(face, models.weave_height((5, 5), (9, 9), pattern=twill), 4096)
pictures["height"] = height
cloth = looks.cover(face, pictures, relief=0.5, height=0.05, Roughness=0.9, Specular=0.15, Sheen=0.5)
others[0].data.materials.append(cloth)
looks.plain(others[1], RUST, Roughness=0.9, Sheen=0.4, Specular=0.1)
lean = (
    Matrix.Translation((-1.0, 0.55, 2.02))
    @ Matrix.Rotation(math.radians(14), 4, "Z")
    @ Matrix.Rotation(math.radians(66), 4, "X")
    @ Matrix.Rotation(math.radians(4), 4, "Z")
)
for part in [face, *others]:
    part.matrix_world = lean @ part.matrix_world

place = Matrix.Translation((2.75, 0.55, 0))
for part in models.basket(1.3, 1.9, 1.22):
    part.matrix_world = place @ Matrix.Rotation(math.radians(60), 4, "Z") @ part.matrix_world
for index, (at, radius, color) in enumerate(
    [
        ((2.25, 0.2, 1.95), 0.72, (0.55, 0.16, 0.06)),
        ((3.35, 0.35, 1.85), 0.66, (0.10, 0.19, 0.22)),
        ((2.8, 1.2, 2.0), 0.70, (0.80, 0.66, 0.45)),
        ((1.05, -1.35, 0.5), 0.5, (0.66, 0.38, 0.07)),
    ]
):
    wound = models.ball(f"Ball {index}", radius, color, seed=index + 2)
    wound.location = at

floor = models.wooden_top((20, 11), boards=8)
floor.location.y = -2
wall = shapes.plane("Wall", (40, 20))
wall.matrix_world = Matrix.Translation((0, 3.1, 8)) @ Matrix.Rotation(math.radians(90), 4, "X")
looks.plain(wall, (0.30, 0.36, 0.35), Roughness=0.95, Specular=0.1)
stage.camera((0.9, -10.8, 3.9), (0.55, 0, 1.78), lens=45, fstop=1.0, focus=(0, -1.0, 1.8))
stage.softbox("Window", (-7.5, -4, 6.5), (0.5, 0, 1), (4, 5), 1150, (1.0, 0.93, 0.84))
stage.softbox("Room", (7, -8, 6), (0.5, 0, 1), 7, 130, (0.82, 0.9, 1.0))
stage.render()

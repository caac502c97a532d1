"""A jewel beetle on a leaf: `Iridescent`, seen from where the camera stands.

The seven bands of `Iridescent` go from green over gold and copper to violet, by the angle between the surface and the
direction to the scene's camera; a smooth noise moves the angle. So the bake holds what this camera sees: move the
camera, and bake again. The leaf is a `Super_mixer` of greens.
"""

import math
import sys
from pathlib import Path

sys.path[:0] = [str(Path(__file__).parent)]

import creatures
import looks
import shapes
from mathutils import Matrix
from stage import Stage

stage = Stage("beetle", aspect=1.5, samples=44, exposure=0.35)
looks.SIZE_FACTOR = stage.options.maps
stage.world(top=(0.35, 0.45, 0.42), horizon=(0.30, 0.36, 0.22), below=(0.02, 0.04, 0.02), strength=0.35)
stage.camera((-6.7, -7.6, 7.1), (0.0, -0.3, 0.55), lens=56, fstop=0.55, focus=(-0.5, -1.0, 1.2))

creatures.leaf().matrix_world = Matrix.Translation((0.2, 0.6, -0.08)) @ Matrix.Rotation(math.radians(-52), 4, "Z")
parts = creatures.beetle("Camera")
turn = Matrix.Translation((0, 0, 0.12)) @ Matrix.Rotation(math.radians(-8), 4, "Z")
for part in parts:
    part.matrix_world = turn @ part.matrix_world
creatures.colour_beetle(parts, "Camera")

for place, turn, scale in (((-4.5, 8.5, -2.2), 30, 1.2), ((7.5, 7.0, -3.0), -70, 1.3), ((5.5, -3.5, -2.6), 100, 1.0)):
    other = creatures.leaf()
    other.matrix_world = (
        Matrix.Translation(place) @ Matrix.Rotation(math.radians(turn), 4, "Z") @ Matrix.Scale(scale, 4)
    )
ground = shapes.plane("Ground", (90, 90))
ground.location.z = -5
looks.plain(ground, (0.012, 0.028, 0.014), Roughness=0.9)
stage.softbox("Sky", (-2.5, 3.5, 8.5), (0, 0, 0.8), (7, 5), 700, (1.0, 0.98, 0.94))
stage.softbox("Side", (-9, -2, 4), (0, 0, 0.8), (3, 6), 260, (0.85, 0.95, 1.0))
stage.softbox("Warm", (8, -4, 5), (0, 0, 0.5), 4, 260, (1.0, 0.85, 0.6))
stage.render()

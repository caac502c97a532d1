"""A printed badge, keyed out of its green and put onto a mug and a notebook.

`Key` in its cut-out mode finds the unevenly lit green of the photographed print and answers an alpha of 0 there; the
print that leans behind shows the picture as it was. The mug's rim is drawn by a `Location`, the cover of the notebook
is a `Weave`.
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
import textures
import ware
from mathutils import Matrix
from stage import Stage

stage = Stage("decal", aspect=1.5, samples=36, exposure=0.3)
looks.SIZE_FACTOR = stage.options.maps
stage.world(top=(0.6, 0.66, 0.75), horizon=(0.9, 0.86, 0.8), strength=0.25)

badge = ware.badge(1024)


def stick(sheet, size):
    looks.cover(
        sheet, looks.bake(sheet, ware.keyed(badge), size, ["color", "alpha"], samples=4), Roughness=0.35, Specular=0.4
    )


parts = ware.mug("Mug", (0.80, 0.77, 0.70), (0.014, 0.035, 0.085))
sheet = ware.wrap("Decal", 1.004, 1.6, 1.08, 1.6, 0)
for part in [*parts, sheet]:
    part.matrix_world = (
        Matrix.Translation((1.55, -0.3, 0)) @ Matrix.Rotation(math.radians(-8), 4, "Z") @ part.matrix_world
    )
stick(sheet, 1024)
second = ware.mug("Second mug", (0.05, 0.15, 0.15), (0.015, 0.03, 0.03))
for part in second:
    part.matrix_world = (
        Matrix.Translation((3.6, 1.6, 0)) @ Matrix.Rotation(math.radians(30), 4, "Z") @ part.matrix_world
    )
other = ware.wrap("Second decal", 1.004, 1.6, 1.08, 1.6, 0)
other.matrix_world = Matrix.Translation((3.6, 1.6, 0)) @ Matrix.Rotation(math.radians(22), 4, "Z")
stick(other, 1024)

# The print as it was, leaning on the wall, and a notebook with another decal in front.
frame = (
    Matrix.Translation((-1.35, 1.75, 1.66))
    @ Matrix.Rotation(math.radians(10), 4, "Z")
    @ Matrix.Rotation(math.radians(80), 4, "X")
)
card = shapes.plane("Card", (3.5, 3.5))
card.matrix_world = frame
looks.plain(card, (0.78, 0.76, 0.72), Roughness=0.5)
photo = shapes.plane("Print", (3.1, 3.1))
photo.matrix_world = frame @ Matrix.Translation((0, 0, 0.006))
looks.cover(photo, looks.bake(photo, looks.picture(badge), 1024, "color"), Roughness=0.25, Specular=0.5)

book = Matrix.Translation((-1.3, -1.15, 0)) @ Matrix.Rotation(math.radians(13), 4, "Z")
angle = np.linspace(0, 2 * math.pi, 160, endpoint=False) + math.pi / 4


def slab(name, width, depth, low, high, corner, matrix):
    """A flat box with round corners and edges, its UV from above."""
    square = np.stack(
        [
            np.sign(np.cos(angle)) * np.abs(np.cos(angle)) ** 0.12 * width / 2,
            np.sign(np.sin(angle)) * np.abs(np.sin(angle)) ** 0.12 * depth / 2,
        ],
        -1,
    )
    rows = []
    for z, inset in (
        (low, corner),
        (low + corner, 0),
        (high - corner, 0),
        (high - corner * 0.3, corner * 0.3),
        (high, corner),
    ):
        rows.append([(*(point * (1 - inset / (width / 2))), z) for point in square])
    rows.append([(0, 0, high)] * len(angle))
    thing = shapes.surface(name, rows, closed_u=True)
    ware.flat_uv(thing, max(width, depth) / 2)
    thing.matrix_world = matrix
    return thing


pages = slab("Pages", 2.34, 3.1, 0.05, 0.33, 0.01, book @ Matrix.Translation((0.02, 0, 0)))
looks.plain(pages, (0.78, 0.72, 0.60), Roughness=0.8)
for low in (0.0, 0.33):
    cover = slab(f"Cover {low}", 2.46, 3.24, low, low + 0.055, 0.02, book)
    linen = models.yarn_weave((((0.30, 0.085, 0.05),) * 2, ((0.26, 0.07, 0.045),) * 2), (64, 64))
    pictures = looks.bake(cover, linen, 2048, ["color", "normal"])
    looks.cover(cover, pictures, relief=0.35, Roughness=0.75, Specular=0.2)
label = shapes.plane("Label", (1.5, 1.5))
label.matrix_world = book @ Matrix.Translation((0, 0.35, 0.388))
stick(label, 1024)
pencil = shapes.lathe("Pencil", [(0.0, 0.0), (0.075, 0.0), (0.075, 2.5), (0.02, 2.78), (0.0, 2.84)], 6)
pencil.matrix_world = (
    Matrix.Translation((0.35, -2.05, 0.07))
    @ Matrix.Rotation(math.radians(75), 4, "Z")
    @ Matrix.Rotation(math.radians(90), 4, "X")
)
tip = fernwick.Location(fSpace="Object")
tip.fAxes[2].fEnabled, tip.fAxes[2].fEdgeA, tip.fAxes[2].fEdgeB, tip.fAxes[2].fDirection = True, 2.48, 2.5, "Rising"
lead = fernwick.Location(fSpace="Object")
lead.fAxes[2].fEnabled, lead.fAxes[2].fEdgeA, lead.fAxes[2].fEdgeB, lead.fAxes[2].fDirection = (
    True,
    2.70,
    2.71,
    "Rising",
)
wood = looks.switch(lead, fernwick.Color((0.55, 0.34, 0.17)), fernwick.Color((0.01, 0.01, 0.012)))
looks.cover(
    pencil, looks.bake(pencil, looks.switch(tip, fernwick.Color((0.72, 0.36, 0.04)), wood), 512, "color"), Roughness=0.3
)

table = models.wooden_top((18, 12), boards=6, tint=1.3, seed=15)
table.location.y = 0.5
wall = shapes.plane("Wall", (30, 14))
wall.matrix_world = Matrix.Translation((0, 2.6, 6.5)) @ Matrix.Rotation(math.radians(90), 4, "X")
plaster = textures.noise(1024, 1024, (0.02, 0.01), 51, 0.5)
looks.cover(
    wall,
    looks.bake(
        wall,
        looks.ramp(looks.picture(plaster), [(0.16, 0.23, 0.22), (0.19, 0.27, 0.255), (0.21, 0.29, 0.275)]),
        1024,
        "color",
    ),
    Roughness=0.9,
    Specular=0.1,
)
stage.camera((0.75, -10.4, 4.4), (0.55, 0, 1.18), lens=51, fstop=0.9, focus=(0.9, -1.2, 1.0))
stage.softbox("Window", (-6.5, -3.5, 6.5), (0.5, 0, 0.8), (4, 4), 620, (1.0, 0.94, 0.86))
stage.softbox("Room", (7, -6, 5), (0.5, 0, 1), 6, 120, (0.82, 0.9, 1.0))
stage.render()

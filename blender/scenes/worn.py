"""A painted hydrant, worn where it is round and rusty around its bolts.

`Curvature` measures the mesh: domes and rims answer red, hollows blue, flat and straight parts black. That controls a
`Super_mixer` of paint, undercoat and bare metal, which noise shifts, so that paint chips off what sticks out.
`Proximity` finds the nearest of all objects whose names begin with "Bolt", moved by noise: there it rusts. A `Location`
rusts the foot. The same graph is baked a second time with a flat colour for each layer, which tells the material where
it is rough and where it is metal.
"""

import math
import sys
from pathlib import Path

sys.path[:0] = [str(Path(__file__).parent)]

import bpy
import fernwick
import looks
import numpy as np
import shapes
import textures
from mathutils import Matrix
from stage import Stage

stage = Stage("worn", aspect=1.5, samples=48, exposure=0.2)
looks.SIZE_FACTOR = stage.options.maps
stage.world(top=(0.45, 0.55, 0.7), horizon=(0.8, 0.72, 0.62), below=(0.15, 0.13, 0.12), strength=0.32)

chips = looks.picture(textures.noise(1024, 1024, (0.10, 0.07), 31, 0.55))
spots = looks.picture(textures.noise(1024, 1024, (0.05, 0.04), 32, 0.5))
cloud = looks.picture(textures.noise(1024, 1024, (0.3, 0.3), 33, 0.9))


def wear(name, paint, undercoat, steel, rust):
    """The graph of a part, by the colours of its layers."""
    mixer = fernwick.Super_mixer(
        fMixStyle="Moved by the shader", fShiftAmount=26, fSmooth=True, fSmoothWidth=1, fLinearEdge=True
    )
    mixer.fSubShader[0], mixer.fSubShader[1] = fernwick.Curvature(fSurfaceName=name, fObjectName=name), chips
    painted = looks.ramp(cloud, list(paint))
    mixer.fSubShader[2], mixer.fSubShader[3], mixer.fSubShader[4] = (
        painted,
        fernwick.Color(undercoat),
        fernwick.Color(steel),
    )
    mixer.fRange[0], mixer.fRange[1], mixer.fRange[2] = [-100, 15.5], [15.5, 18], [18, 118]
    bolts = fernwick.Proximity(
        fTargetName="Bolt",
        fSingleObject=False,
        fMaxDistance=0.9,
        fFalloff=0.75,
        fUseShader=True,
        fShaderStrength=1,
        fSubShader=spots,
    )
    ground = fernwick.Location(fUseSubShader=True, fDisturbPercent=70, fSubShader=spots)
    ground.fAxes[2].fEnabled, ground.fAxes[2].fEdgeA, ground.fAxes[2].fEdgeB = True, -0.9, 1.5
    oxide = looks.ramp(spots, list(rust))
    near_bolts = looks.switch(bolts, mixer, oxide, 46, 14)
    return looks.switch(ground, near_bolts, oxide, 60, 20)


PAINT = ((0.50, 0.035, 0.018), (0.56, 0.045, 0.022), (0.44, 0.030, 0.016))
RUST = ((0.055, 0.020, 0.010), (0.16, 0.055, 0.02), (0.27, 0.095, 0.03), (0.20, 0.07, 0.025))


def weather(part, size, paint=PAINT):
    name = part.name
    pictures = looks.bake(part, wear(name, paint, (0.62, 0.55, 0.42), (0.42, 0.40, 0.38), RUST), size, "color")
    # Which layer shows: paint in red, undercoat in green, steel in blue, rust in black.
    red, green, blue, black = (1, 0, 0), (0, 1, 0), (0, 0, 1), (0, 0, 0)
    layers = looks.arrays(part, wear(name, (red,) * 3, green, blue, (black,) * 4), size, "color")["color"]
    paint, undercoat, steel = (layers[..., channel] for channel in range(3))
    rust = 1 - paint - undercoat - steel
    for channel, picture in (
        ("roughness", 0.30 * paint + 0.6 * undercoat + 0.34 * steel + 0.88 * rust),
        ("metallic", steel),
        ("height", paint + 0.8 * undercoat + 0.6 * steel + 0.75 * rust),
    ):
        pictures[channel] = looks.image(f"{name} {channel}", picture.astype(np.float32), "value")
    looks.cover(part, pictures, height=0.02, Specular=0.5)


def turned(name, knots, matrix=None, segments=144):
    part = shapes.lathe(name, shapes.smooth_profile(knots, 12), segments)
    if matrix is not None:
        part.matrix_world = matrix
    return part


def bolts(count, radius, z, size=0.15, matrix=None, first=0):
    for index in range(count):
        angle = 2 * math.pi * (index + 0.5) / count
        outline = [(0.0, -0.02), (size, -0.02), (size, 0.12), (size * 0.8, 0.17), (0.0, 0.19)]
        head = shapes.lathe(f"Bolt {first + index}", outline, 6)
        head.data.polygons.foreach_set("use_smooth", [False] * len(head.data.polygons))
        bevel = head.modifiers.new("Bevel", "BEVEL")
        bevel.width, bevel.segments = 0.012, 2
        place = Matrix.Translation((radius * math.cos(angle), radius * math.sin(angle), z)) @ Matrix.Rotation(
            angle, 4, "Z"
        )
        head.matrix_world = (matrix @ place) if matrix else place
        looks.plain(head, (0.17, 0.075, 0.035), Roughness=0.7, Metallic=0.35)


barrel = turned(
    "Barrel",
    [
        (0.0, 0.0),
        (2.15, 0.0, 0.08),
        (2.15, 0.34, 0.10),
        (1.62, 0.36, 0.12),
        (1.42, 0.75),
        (1.36, 1.3),
        (1.34, 3.6),
        (1.34, 4.3),
        (1.46, 4.62),
        (1.5, 4.68, 0.05),
        (1.92, 4.72, 0.08),
        (1.92, 5.02, 0.08),
        (1.2, 5.02),
    ],
)
bonnet = turned(
    "Bonnet",
    [
        (1.2, 5.04),
        (1.92, 5.04, 0.08),
        (1.92, 5.30, 0.09),
        (1.52, 5.32, 0.12),
        (1.46, 5.5),
        (1.42, 5.9),
        (1.25, 6.5),
        (0.86, 6.98),
        (0.62, 7.12, 0.06),
        (0.62, 7.34, 0.07),
        (0.42, 7.36, 0.05),
        (0.36, 7.4),
        (0.0, 7.42),
    ],
)
nut = shapes.lathe("Nut", [(0.0, 7.3), (0.30, 7.3), (0.24, 7.86), (0.0, 7.88)], 5)
nut.data.polygons.foreach_set("use_smooth", [False] * len(nut.data.polygons))
edge = nut.modifiers.new("Bevel", "BEVEL")
edge.width, edge.segments = 0.03, 3
looks.plain(nut, (0.30, 0.28, 0.26), Metallic=1.0, Roughness=0.38)
bolts(10, 1.73, 5.30)
bolts(8, 1.88, 0.34, 0.17, first=20)
sides = []
for index, (turn, size) in enumerate([(-90, 1.0), (-8, 0.78), (188, 0.78)]):
    out = (
        Matrix.Rotation(math.radians(turn), 4, "Z")
        @ Matrix.Translation((0, 0, 3.35))
        @ Matrix.Rotation(math.radians(90), 4, "Y")
    )
    out = out @ Matrix.Diagonal((size, size, 1, 1))
    neck = turned(
        f"Neck {index}",
        [
            (1.02, 0.9),
            (0.96, 1.35),
            (0.92, 1.62),
            (0.94, 1.66, 0.03),
            (1.12, 1.70, 0.06),
            (1.12, 1.92, 0.06),
            (0.7, 1.93),
        ],
        out,
    )
    cap = turned(
        f"Cap {index}",
        [
            (0.7, 1.95),
            (1.04, 1.95, 0.05),
            (1.06, 2.22, 0.09),
            (0.82, 2.30, 0.08),
            (0.72, 2.36),
            (0.45, 2.46),
            (0.36, 2.48, 0.03),
            (0.34, 2.54, 0.02),
            (0.0, 2.56),
        ],
        out,
    )
    knob = shapes.lathe(f"Knob {index}", [(0.0, 2.5), (0.27, 2.5), (0.22, 2.95), (0.0, 2.97)], 5)
    knob.data.polygons.foreach_set("use_smooth", [False] * len(knob.data.polygons))
    edge = knob.modifiers.new("Bevel", "BEVEL")
    edge.width, edge.segments = 0.03, 3
    knob.matrix_world = out
    looks.plain(knob, (0.30, 0.28, 0.26), Metallic=1.0, Roughness=0.38)
    bolts(6, 1.0, 1.94 - 0.04, 0.09, out, 40 + 10 * index)
    sides += [(neck, 512), (cap, 1024)]

weather(barrel, (2560, 1536))
weather(bonnet, (2560, 1280), ((0.62, 0.33, 0.03), (0.68, 0.38, 0.04), (0.55, 0.28, 0.025)))
for part, size in sides:
    weather(
        part,
        (2 * size, size),
        PAINT if part.name.startswith("Neck") else ((0.62, 0.33, 0.03), (0.68, 0.38, 0.04), (0.55, 0.28, 0.025)),
    )

# Further ones stand in a row, as copies that are turned.
parts = [thing for thing in bpy.data.objects if thing.type == "MESH"]
for turn, place in ((100, (-9.0, 12.0, 0)), (220, (-20.0, 27.0, 0))):
    for part in parts:
        copy = part.copy()
        copy.name = f"Copy of {part.name}"
        bpy.context.scene.collection.objects.link(copy)
        copy.matrix_world = Matrix.Translation(place) @ Matrix.Rotation(math.radians(turn), 4, "Z") @ part.matrix_world

ground = shapes.plane("Ground", (60, 60))
stones = (
    textures.noise(2048, 2048, (0.003, 0.003), 41, 0.2) * 0.6 + textures.noise(2048, 2048, (0.2, 0.2), 42, 1.2) * 0.4
)
slabs = looks.ramp(
    looks.picture(stones), [(0.07, 0.066, 0.06), (0.14, 0.132, 0.12), (0.20, 0.19, 0.175), (0.30, 0.29, 0.265)]
)
joints = fernwick.Weave(fMask=True, fRepeatU=5, fRepeatV=5, fWarpWidth=[70] * 5, fWeftWidth=[70] * 5)
paved = looks.switch(joints, fernwick.Color((0.03, 0.028, 0.026)), slabs)
pictures = looks.bake(ground, paved, 4096, "color")
pictures["height"] = looks.image("stones", stones.astype(np.float32), "value")
looks.cover(ground, pictures, height=0.05, Roughness=0.8, Specular=0.25)
ground.rotation_euler.z = math.radians(28)
ground.location = (-2, 14, 0)

stage.camera((4.6, -18.5, 7.6), (-1.9, 0, 3.95), lens=56, fstop=0.28, focus=(0.8, -1.6, 4.4))
backdrop = stage.sweep((0.16, 0.22, 0.21), width=200, front=20, back=55, bend=12, height=60)
backdrop.location.z = -0.05
stage.softbox("Sun", (-11, -9, 14), (0, 0, 3.5), (6, 6), 4600, (1.0, 0.88, 0.72))
stage.softbox("Sky", (12, -5, 11), (0, 0, 3), 11, 1000, (0.70, 0.83, 1.0))
stage.softbox("Rim", (7, 12, 10), (0, 0, 5), 6, 1800, (1.0, 0.85, 0.7))
stage.softbox("Far", (-12, 12, 24), (-14, 24, 3), 16, 6000, (1.0, 0.92, 0.8))
stage.render()

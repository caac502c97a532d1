"""Yarn, close up: a twill of `Weave` whose threads are pictures of twisted strands.

The same graph is baked three times: once in colour, and twice with the heights of the strands in place of their
colours. Where a thread is rounded the shader darkens it by the square of an ellipse, so that the root of a baked height
is the round of the thread: that moves the mesh, and its finer part bends the light.
"""

import sys
from pathlib import Path

sys.path[:0] = [str(Path(__file__).parent)]

import fernwick
import looks
import numpy as np
import shapes
import textures
from stage import Stage

stage = Stage("yarn", aspect=1.5, samples=44, exposure=0.5)
looks.SIZE_FACTOR = stage.options.maps
stage.world(strength=0.25)

# A 3 x 3 twill, in tiles of five threads each way.
COLORS = {
    "indigo": (0.028, 0.07, 0.19),
    "madder": (0.44, 0.06, 0.035),
    "wool": (0.82, 0.71, 0.53),
    "weld": (0.66, 0.34, 0.05),
}
WARP = ["wool", "wool", "wool", "wool", "wool"]
WEFT = ["indigo", "indigo", "madder", "weld", "madder"]
bright, height = textures.yarn(768, plies=5, slant=2.4)


def cloth(thread, across, along, gap):
    weave = fernwick.Weave(
        fWeaveMode="Free",
        fRepeatU=3,
        fRepeatV=3,
        fWarpWidth=[13] * 5,
        fWeftWidth=[13] * 5,
        fRoundAcross=True,
        fRoundAlong=True,
        fProfileAcross=across,
        fProfileAlong=along,
        fAcrossUV=True,
        fAlongUV=True,
    )
    for weft in range(5):
        for warp in range(5):
            weave.fPattern[weft][warp] = (warp + 2 * weft) % 5 in (0, 2)
    weave.fWarpSubShader = [thread(name) for name in WARP]
    weave.fWeftSubShader = [thread(name) for name in WEFT]
    weave.fGapSubShader = fernwick.Color(gap)
    return weave


def dyed(name):
    fleck = textures.noise(768, 768, (0.06, 0.012), seed=len(name), roughness=0.7)[..., None]
    color = np.array(COLORS[name], np.float32)
    return looks.picture(color * (0.15 + 1.15 * bright[..., None]) * (0.75 + 0.5 * fleck))


def relief(_):
    return looks.picture(0.40 + 0.60 * height)


patch = shapes.plane("Cloth", (15, 15))
color = looks.bake(patch, cloth(dyed, 1.9, 1.9, (0.01, 0.008, 0.006)), 4096, "color")["color"]
raw = looks.arrays(patch, cloth(relief, 1.04, 1.22, (0, 0, 0)), 4096, "color")["color"][..., 0]
round_ = (np.clip(raw, 0, None) ** 0.6).astype(np.float32)
looks.cover(
    patch,
    {"color": color, "height": looks.image("height", round_, "value")},
    height=0.10,
    Roughness=0.85,
    Specular=0.25,
    Sheen=0.6,
    Sheen_Tint=0.7,
)
coarse = looks.image("coarse", round_[::2, ::2], "value")
shapes.subdivide(patch, 10 if stage.options.maps > 0.6 else 9, smooth=False)
shapes.displace(patch, coarse, 0.62)


# Loose fibres, in the colours of what they stand on.
generator = np.random.default_rng(7)
count, steps = 26000, 6
root = generator.random((count, 2)) * (0.9, 0.72) + (0.05, 0.02)
size = round_.shape[0]
rise = 0.62 * round_[((1 - root[:, 1]) * size).astype(int), (root[:, 0] * size).astype(int)]
heading = generator.random(count) * 2 * np.pi
bend = generator.normal(0, 2.2, count)
length = 0.14 + 0.20 * generator.random(count)
t = np.linspace(0, 1, steps)[None, :]
way = heading[:, None] + bend[:, None] * t
lift = np.sin(np.pi * np.clip(t * generator.uniform(0.5, 1.1, (count, 1)), 0, 1)) * generator.uniform(
    0.02, 0.13, (count, 1)
)
step = length[:, None] / (steps - 1)
place = np.stack([np.cumsum(np.cos(way) * step, 1), np.cumsum(np.sin(way) * step, 1), lift], -1)
place += np.stack([(root[:, 0] - 0.5) * 15, (root[:, 1] - 0.5) * 15, rise - 0.015], -1)[:, None]
looks.wear_color(shapes.fibres("Fuzz", place, root, 0.0045), color, 1.5)

stage.camera((1.6, -9.6, 6.2), (0.15, -0.65, 0.35), lens=66, fstop=0.25, focus=(0.1, -1.2, 0.4))
stage.softbox("Window", (-9, 3, 7), (0, 0, 0), (6, 8), 1150, (1.0, 0.93, 0.84))
stage.softbox("Fill", (8, -6, 8), (0, 0, 0), 9, 160, (0.8, 0.88, 1.0))
stage.render()

"""Metals under lacquer: chess pieces whose colours are tables of `Fresnel`.

What a metal reflects depends on the angle that one looks from, which no picture baked onto it can hold while a camera
moves. So `Fresnel` is asked for strips: its reflectance at 256 angles from 0 to 90 degrees, at a red, a green and a
blue wavelength with the dispersion of its row, or with measured indices where that is closer. The material finds its
place on the strip by the angle between the normal and the view. Over most pieces lies a coat of lacquer, whose share
is a strip too. The board is a bake of the pack: a checker that a `Super_mixer` gives veins.
"""

import math
import sys
from pathlib import Path

sys.path[:0] = [str(Path(__file__).parent)]

import fernwick
import looks
import shapes
import textures
from stage import Stage

stage = Stage("coats", aspect=1.5, samples=44)
looks.SIZE_FACTOR = stage.options.maps
stage.world(top=(0.05, 0.07, 0.10), horizon=(0.10, 0.13, 0.16), below=(0.01, 0.01, 0.012), strength=0.6)


def piece(name, knots, at, metal, turn=0.0, scale=1.0, roughness=0.12, lacquer=1.5):
    thing = shapes.lathe(name, shapes.smooth_profile(knots, 8), 160)
    thing.location, thing.scale, thing.rotation_euler.z = at, (scale,) * 3, turn
    looks.metal(thing, metal, roughness, lacquer)
    return thing


BASE = [(0, 0), (0.62, 0, 0.05), (0.64, 0.16, 0.06), (0.56, 0.22, 0.03), (0.56, 0.28, 0.03), (0.47, 0.40)]
PAWN = [
    *BASE,
    (0.28, 0.62),
    (0.20, 1.0),
    (0.19, 1.18, 0.02),
    (0.34, 1.22, 0.02),
    (0.34, 1.28, 0.02),
    (0.19, 1.34, 0.02),
    (0.30, 1.44),
    (0.37, 1.62),
    (0.30, 1.82),
    (0.16, 1.93),
    (0.0, 1.97),
]
BISHOP = [
    *BASE,
    (0.30, 0.7),
    (0.20, 1.25),
    (0.19, 1.62, 0.02),
    (0.38, 1.67, 0.02),
    (0.38, 1.73, 0.02),
    (0.20, 1.80, 0.02),
    (0.26, 1.90),
    (0.34, 2.12),
    (0.27, 2.42),
    (0.10, 2.66),
    (0.06, 2.70, 0.01),
    (0.10, 2.78),
    (0.06, 2.86),
    (0, 2.88),
]
QUEEN = [
    *BASE,
    (0.31, 0.75),
    (0.21, 1.5),
    (0.20, 2.0, 0.02),
    (0.42, 2.06, 0.02),
    (0.42, 2.13, 0.02),
    (0.22, 2.20, 0.02),
    (0.24, 2.34),
    (0.34, 2.66),
    (0.44, 2.86, 0.02),
    (0.36, 2.88, 0.02),
    (0.22, 2.92),
    (0.10, 3.0, 0.01),
    (0.12, 3.08),
    (0.08, 3.17),
    (0, 3.19),
]
ROOK = [
    *BASE,
    (0.36, 0.66),
    (0.29, 1.1),
    (0.29, 1.42, 0.03),
    (0.43, 1.5, 0.02),
    (0.43, 1.92, 0.03),
    (0.33, 1.92, 0.02),
    (0.33, 1.74, 0.02),
    (0, 1.74),
]

piece("Queen", QUEEN, (0.05, 0.4, 0), looks.GOLD, scale=1.08)
piece("Bishop", BISHOP, (-1.85, 0.25, 0), looks.BLUED)
piece("Rook", ROOK, (1.75, 0.15, 0), looks.COPPER, scale=1.05)
piece("Pawn", PAWN, (-0.95, -1.45, 0), looks.SILVER, lacquer=0)
piece("Pawn violet", PAWN, (0.95, -1.55, 0), looks.VIOLET)
piece("Bishop bronze", BISHOP, (3.4, 1.7, 0), looks.BRONZE)
piece("Pawn gold", PAWN, (-3.3, 1.5, 0), looks.GOLD)
piece("Rook silver", ROOK, (-1.0, 2.7, 0), looks.SILVER)
piece("Queen blued", QUEEN, (1.4, 3.0, 0), looks.BLUED)

board = shapes.plane("Board", (19.2, 19.2))
board.location = (0, 1.6, 0)
board.rotation_euler.z = math.radians(24)
veins = textures.noise(2048, 2048, (0.12, 0.2), 4, 1.1)
veins = 1 - abs(2 * veins - 1) ** 0.35
dark = looks.ramp(looks.picture(veins), ["#08090b", "#0c0e11", "#15181c", "#5a5148"])
light = looks.ramp(looks.picture(veins), ["#b9b1a4", "#ada392", "#958a78", "#4a4239"])
mixer = fernwick.Super_mixer(fDistribution="Automatic")
mixer.fSubShader[0] = fernwick.Checker("#000000", odd="#ffffff", countU=12, countV=12)
mixer.fSubShader[2], mixer.fSubShader[3] = dark, light
pictures = looks.bake(board, mixer, 3072, "color", samples=4)
looks.cover(board, pictures, Roughness=0.16, Specular=0.5)

stage.camera((0.5, -10.6, 4.1), (0.05, 0.2, 1.42), lens=58, fstop=0.9, focus=(0, -0.4, 1.4))
stage.softbox("Left", (-6.5, -2.5, 5.5), (0, 0, 1.2), (2.2, 7), 420, (1.0, 0.95, 0.9))
stage.softbox("Right", (7, 0.5, 4), (0, 0, 1), (2.5, 6), 260, (0.85, 0.92, 1.0))
stage.softbox("Top", (0, 2, 9), (0, 0, 0), (8, 3), 260)
stage.softbox("Back", (0, 13, 4), (0, 2, 2), (16, 6), 300, (0.35, 0.55, 0.8))
stage.render()

"""Cloth in ten lines: python3 cloth.py FOLDER writes cloth.png."""

import sys

import matplotlib.pyplot as plt

import fernwick

folder = sys.argv[1] if len(sys.argv) > 1 else "."

cloth = fernwick.Weave(fRepeatU=5, fRepeatV=5, fRoundAcross=True, fWarpWidth=[6] * 5, fWeftWidth=[6] * 5)
cloth.fWarpSubShader = fernwick.Color("#c83c14")
cloth.fWeftSubShader = fernwick.Color("#f0e0b0")
picture = fernwick.Graph(cloth).bake(512, output="lit")
plt.imshow(fernwick.to_srgb(picture), extent=(0, 1, 0, 1))
plt.xlabel("U")
plt.ylabel("V")
plt.savefig(f"{folder}/cloth.png", dpi=80)

"""All classes on one sheet: python3 contact_sheet.py FOLDER, in the root of the tree, writes contact_sheet.png."""

import sys
from typing import Any

import matplotlib.pyplot as plt

import fernwick as fw

folder = sys.argv[1] if len(sys.argv) > 1 else "."

rust, checker, photo = fw.Color("#c83c14"), fw.Checker("#222", odd="#ddd"), fw.Picture("examples/backdrop.png")
mixed = dict(fDistribution="Automatic", fSubShader=[fw.Ramp(), None, rust, checker, photo, *[None] * 7])
named = dict(fLightName="Lamp", fObjectName="Lamp", fTargetName="Lamp", fCameraName="Eye", fSurfaceName="Ring")
flat = {"Gray", "Super_mixer", "Drip", "MultiPassControl", "Key", "Spoke"}  # the others are seen on a ring
told: dict[str, dict[str, Any]] = {
    "Weave": dict(fRepeatU=12, fRepeatV=6, fRoundAcross=True, fWarpSubShader=rust, fWeftSubShader=fw.Color("#fe9")),
    "Super_mixer": mixed, "Super_mixer_top": mixed, "Gray": dict(fSubShader=photo), "Spoke": dict(fCount=12),
    "MultiPassManager": dict(fSubShader=[fw.Ramp("v"), *[rust, checker] * 5]), "Corners": dict(fWidthPercent=60),
    "MultiPassControl": dict(fSubShader=fw.Ramp()), "Shadow_pass": dict(fSubShader=checker),
    "Location": dict(fAxes=[dict(fEnabled=True, fEdgeA=-1, fEdgeB=1), {}, {}]), "Proximity": dict(fMaxDistance=4),
    "Key": dict(fMode="Cut-out", fKeyColor=(0.04, 0.5, 0.09), fRedRange=(-4, 20), fGreenRange=(-24, 50),
                fBlueRange=(-9, 20), fSubShader=photo), "Coordinate_Shift": dict(fSubShader=checker),
    "Translucent": dict(fAngleRange=(0.4, 1.6)), "Drip": dict(fWaves=5, fRingStart=0.1, fRingWidth=0.35),
    "Lit": dict(fAngleRange=(0, 1.57)),
}  # fmt: skip
ring = fw.Element("Ring", fw.Torus(1, 0.4), rotation=(90, 0, 0))
lamp = fw.Element("Lamp", position=(2, 3, 3), light=fw.Light("point"))
eye = fw.Element("Eye", position=(0, 2.5, 3), look_at=(0, -0.1, 0), camera=fw.Camera(42))

figure, axes = plt.subplots(4, 5, figsize=(8, 7), layout="tight")
for axis, name in zip(axes.flat, fw.classes()):
    names = {field.name: named[field.name] for field in fw.describe(name) if field.name in named}
    graph = fw.Graph(getattr(fw, name)(**names, **told.get(name, {})), fw.Scene([ring, lamp, eye]))
    axis.imshow(fw.to_srgb(graph.bake(144, samples=9) if name in flat else graph.render(144, samples=9)))
    axis.set_title(name, fontsize=8)
for axis in axes.flat:
    axis.set_axis_off()
figure.savefig(f"{folder}/contact_sheet.png", dpi=90)

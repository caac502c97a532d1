"""All classes on one sheet: python3 contact_sheet.py FOLDER, in the root of the tree, writes contact_sheet.png."""

import sys
from typing import Any

import matplotlib.pyplot as plt

import fernwick as fw

rust, cream, checker, ramp = fw.Color("#c83c14"), fw.Color("#f0e0b0"), fw.Checker("#222", odd="#ddd"), fw.Ramp()
photo = fw.Picture("examples/backdrop.png")
layers = [ramp, None, rust, checker, *[None] * 8]
green = {"fKeyColor": (0.04, 0.5, 0.09), "fRedRange": (-4, 20), "fGreenRange": (-24, 50), "fBlueRange": (-9, 20)}
threads = {"fRepeatU": 4, "fRepeatV": 4, "fRoundAcross": True, "fRoundAlong": True}
on_torus: dict[str, dict[str, Any]] = {
    "Location": {"fAxes": [{"fEnabled": True, "fEdgeA": -1, "fEdgeB": 1}, {}, {}]},
    "Proximity": {"fTargetName": "Lamp", "fMaxDistance": 4},
    "Translucent": {"fCameraName": "Eye", "fLightName": "Lamp", "fAngleRange": (0.4, 1.6)},
    "Lit": {"fLightName": "Lamp", "fAngleRange": (0, 1.57)},
    "Fresnel": {"fCameraName": "Eye"}, "Iridescent": {}, "Corners": {"fWidthPercent": 60},
    "Curvature": {"fSurfaceName": "Torus", "fObjectName": "Lamp"},
}  # fmt: skip
on_square: dict[str, dict[str, Any]] = {
    "Weave": {**threads, "fWarpSubShader": rust, "fWeftSubShader": cream},
    "Gray": {"fSubShader": photo}, "Key": {**green, "fMode": "Cut-out", "fSubShader": photo},
    "Super_mixer": {"fDistribution": "Automatic", "fSubShader": layers},
    "Super_mixer_top": {"fDistribution": "Automatic", "fSubShader": layers},
    "MultiPassControl": {"fSubShader": ramp}, "Coordinate_Shift": {"fSubShader": checker},
    "MultiPassManager": {"fSubShader": [ramp, rust, checker, cream, ramp, rust, checker, cream, ramp, rust, checker]},
    "Drip": {"fWaves": 5, "fRingStart": 0.1, "fRingWidth": 0.35}, "Spoke": {"fCount": 12},
    "Shadow_pass": {"fSubShader": checker},
}  # fmt: skip
lamp = fw.Element("Lamp", position=(2, 3, 3), light=fw.Light("point"))
eye = fw.Element("Eye", position=(0, 2.5, 3), look_at=(0, -0.1, 0), camera=fw.Camera(42))
scene = fw.Scene([fw.Element("Torus", fw.Torus(1, 0.4), rotation=(90, 0, 0)), lamp, eye])

figure, axes = plt.subplots(4, 5, figsize=(8, 7), layout="tight")
for axis in axes.flat:
    axis.set_axis_off()
for axis, name in zip(axes.flat, fw.classes()):
    settings = on_torus.get(name) or on_square.get(name) or {}
    graph = fw.Graph(getattr(fw, name)(**settings), scene)
    picture = graph.render(144) if name in on_torus else graph.bake(144, output="lit" if name == "Weave" else "color")
    axis.imshow(fw.to_srgb(picture))
    axis.set_title(name, fontsize=8)
figure.savefig(f"{sys.argv[1]}/contact_sheet.png", dpi=90)

"""A knot of cloth, whose mesh comes from arrays: python3 knot.py FOLDER writes knot.png and knot.exr."""

import sys

import numpy as np

import fernwick as fw

folder = sys.argv[1] if len(sys.argv) > 1 else "."

# A tube along a trefoil knot: rings of points across its axis, U along it and V around.
along, around = 480, 32
u, v = np.meshgrid(np.linspace(0, 1, along + 1), np.linspace(0, 1, around + 1), indexing="ij")
t = 2 * np.pi * u[:, 0]
axis = np.stack([np.sin(t) + 2 * np.sin(2 * t), np.cos(t) - 2 * np.cos(2 * t), -np.sin(3 * t)], axis=-1)
tangent = np.gradient(np.concatenate([axis[-3:-1], axis, axis[1:3]]), axis=0)[2:-2]
side = np.cross(tangent, (0, 0, 1))
side /= np.linalg.norm(side, axis=-1, keepdims=True)
up = np.cross(side, tangent)
up /= np.linalg.norm(up, axis=-1, keepdims=True)
angle = 2 * np.pi * v[..., None]
normals = np.cos(angle) * side[:, None] + np.sin(angle) * up[:, None]
points = axis[:, None] + 0.55 * normals

corner = np.arange(along)[:, None] * (around + 1) + np.arange(around)
quads = np.stack([corner, corner + around + 1, corner + around + 2, corner + 1], axis=-1).reshape(-1, 4)
triangles = np.concatenate([quads[:, [0, 2, 1]], quads[:, [0, 3, 2]]])
uvs = np.stack([u, v], axis=-1).reshape(-1, 2)
mesh = fw.Mesh(points.reshape(-1, 3), triangles, uvs, normals.reshape(-1, 3))

cloth = fw.Weave(fRepeatU=72, fRepeatV=9, fRoundAcross=True, fRoundAlong=True)
cloth.fWarpSubShader = fw.Color("#c83c14")
cloth.fWeftSubShader = fw.Color("#f0e0b0")
scene = fw.Scene(
    [
        fw.Element("Knot", mesh, cloth, shading="lit"),
        fw.Element("Eye", position=(0, 0, 11), look_at=(0, 0, 0), camera=fw.Camera(40)),
    ],
    background=(0.02, 0.02, 0.03),
)
picture = fw.Graph(cloth, scene).render(400, samples=16)
fw.save(f"{folder}/knot.png", picture)
fw.save(f"{folder}/knot.exr", picture)

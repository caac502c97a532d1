"""What several tests need."""

import contextlib
import io
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import bpy
import fernwick
import numpy as np
from fernwick_nodes import document, meshes, preview

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples"
CLOTH = {
    "shaders": {
        "cloth": {"class": "Weave", "fRepeatU": 6, "fRepeatV": 5, "fRoundAcross": True,
                  "fWarpSubShader[0]": "red", "fWeftSubShader[0]": "lamp"},
        "red": {"source": "color", "color": [0.58, 0.05, 0.01]},
        "lamp": {"class": "Lit", "fLightName": "Lamp", "fUseLightColor": True, "fAngleRange": [0, 1.57]},
    },
    "output": "cloth",
}  # fmt: skip


class Case(unittest.TestCase):
    """Each test begins with an empty file, and ends without a word on stderr."""

    def setUp(self) -> None:
        bpy.ops.wm.read_homefile(use_empty=True, use_factory_startup=True)
        bpy.ops.preferences.addon_enable(module="fernwick_nodes")
        self.folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.words = self.enterContext(contextlib.redirect_stderr(io.StringIO()))

    def tearDown(self) -> None:
        preview.forget()
        self.assertNotIn("Traceback", self.words.getvalue())

    def cloth(self) -> bpy.types.NodeTree:
        return document.from_document(CLOTH, "", "Cloth")

    def assertBits(self, left: np.ndarray, right: np.ndarray) -> None:
        """That two arrays hold the same bits; and something."""
        self.assertEqual(left.shape, right.shape)
        self.assertGreater(float(np.nanmax(np.abs(left))), 0)
        different = np.ascontiguousarray(left).view(np.uint32) != np.ascontiguousarray(right).view(np.uint32)
        self.assertEqual(int(different.sum()), 0, f"{left[different][:4]} and {right[different][:4]}")


def scene_with_lamp() -> bpy.types.Object:
    """A turned, stretched and bevelled box with UV, in the light of a lamp and before a camera."""
    bpy.ops.object.light_add(type="SPOT", location=(2, -1, 4), rotation=(0.5, 0.3, 0))
    lamp = bpy.context.object
    lamp.name = "Lamp"
    lamp.data.color = (1, 0.8, 0.5)
    lamp.data.spot_size = 1.2
    bpy.ops.object.camera_add(location=(0, -6, 2), rotation=(1.2, 0, 0))
    bpy.context.object.name = "Eye"
    bpy.context.scene.camera = bpy.context.object
    bpy.ops.mesh.primitive_cube_add(location=(0.25, 0.5, 0), rotation=(0.2, 0.4, 0.6), scale=(1, 0.75, 1.5))
    box = bpy.context.object
    box.name = "Box"
    box.modifiers.new("Bevel", "BEVEL").segments = 3
    return box


def write_ply(path: Path, arrays: meshes.Arrays) -> None:
    """A mesh as a file with every bit of its numbers, a vertex a corner."""
    names = "".join(f"property float {name}\n" for name in ("x", "y", "z", "nx", "ny", "nz", "s", "t"))
    rows = np.concatenate([arrays.points, arrays.normals, arrays.uvs[0]], axis=1).astype("<f4")
    faces = np.zeros(len(arrays.corners), [("count", "u1"), ("corners", "<i4", 3)])
    faces["count"], faces["corners"] = 3, arrays.corners
    header = (
        f"ply\nformat binary_little_endian 1.0\nelement vertex {len(rows)}\n{names}"
        f"element face {len(faces)}\nproperty list uchar int vertex_indices\nend_header\n"
    )
    path.write_bytes(header.encode() + rows.tobytes() + faces.tobytes())


def pixels(image: bpy.types.Image) -> np.ndarray:
    flat = np.empty(image.size[0] * image.size[1] * image.channels, np.float32)
    image.pixels.foreach_get(flat)
    return flat.reshape(image.size[1], image.size[0], image.channels)


def command(*arguments: object) -> str:
    """Runs the command `fernwick` and returns what it tells."""
    program = sys.argv[sys.argv.index("--") + 2]
    run = subprocess.run([program, *map(str, arguments)], capture_output=True, text=True, check=False)
    if run.returncode:
        raise AssertionError(run.stderr)
    return run.stderr


def other_blender(script: str, enable: bool, **environment: str) -> str:
    """Runs lines of Python in another Blender and returns all that it prints; it has to end well.

    :param enable: whether it has the add-on that is installed here; else it knows nothing of it
    """
    lines = "import bpy\n" + ('bpy.ops.preferences.addon_enable(module="fernwick_nodes")\n' if enable else "") + script
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder, "script.py")
        path.write_text(lines)
        own = {} if enable else {f"BLENDER_USER_{name}": folder for name in ("CONFIG", "SCRIPTS", "DATAFILES")}
        line = [bpy.app.binary_path, "-b", "--factory-startup", "--python-exit-code", "1", "-P", str(path)]
        run = subprocess.run(
            line, capture_output=True, text=True, check=False, env={**os.environ, **own, **environment}
        )
    text = run.stdout + run.stderr
    if run.returncode or re.search("Traceback|Error: Python", text):
        raise AssertionError(text)
    return text


__all__ = [
    "CLOTH", "Case", "EXAMPLES", "ROOT", "command", "other_blender", "pixels", "scene_with_lamp", "write_ply",
]  # fmt: skip

"""The stage that all scenes share: what the command line asks for, camera, lights, backdrop and the render.

Light comes from few large areas and an even world, with few bounces and without caustics, so that a picture has
little noise after few samples; `quiet` takes out what is left.
"""

from __future__ import annotations

import argparse
import math
import sys
import time
from collections.abc import Sequence
from pathlib import Path

import bpy
import fernwick
import numpy as np
import quiet
from mathutils import Vector

Triple = Sequence[float]


def arguments(name: str) -> argparse.Namespace:
    """What stands behind `--` on Blender's command line."""
    parser = argparse.ArgumentParser(prog=f"{name}.py")
    parser.add_argument("--size", type=int, default=1600, help="width of the picture in pixels")
    parser.add_argument("--samples", type=int, help="most samples of a pixel")
    parser.add_argument("--output", type=Path, default=Path(f"{name}.jpg"), help="the picture, a .jpg or .png")
    parser.add_argument("--maps", type=float, default=1.0, help="factor of the sizes of baked pictures, 0.1 to 1")
    return parser.parse_args(sys.argv[sys.argv.index("--") + 1 :] if "--" in sys.argv else [])


class Stage:
    """An empty scene for Cycles, and the few things that every picture needs."""

    def __init__(self, name: str, aspect: float = 1.5, samples: int = 192, exposure: float = 0.0) -> None:
        """
        :param aspect: width over height
        :param samples: of a pixel, at most; flat parts end earlier
        :param exposure: in stops
        """
        self.options = arguments(name)
        bpy.ops.wm.read_factory_settings(use_empty=True)
        self.scene = scene = bpy.context.scene
        scene.render.engine = "CYCLES"
        width = self.options.size
        scene.render.resolution_x, scene.render.resolution_y = width, round(width / aspect / 2) * 2
        scene.render.resolution_percentage = 100
        cycles = scene.cycles
        cycles.device = "CPU"
        cycles.samples = self.options.samples or samples
        cycles.use_adaptive_sampling = True
        cycles.adaptive_threshold = 0.03
        cycles.use_denoising = False
        cycles.max_bounces, cycles.diffuse_bounces, cycles.glossy_bounces = 6, 2, 4
        cycles.transmission_bounces, cycles.transparent_max_bounces = 6, 12
        cycles.caustics_reflective = cycles.caustics_refractive = False
        cycles.blur_glossy = 1.0
        cycles.sample_clamp_indirect = 1.5
        cycles.sample_clamp_direct = 12.0
        cycles.filter_width = 1.6
        scene.view_settings.view_transform = "Filmic"
        scene.view_settings.look = "Medium High Contrast"
        scene.view_settings.exposure = exposure
        self.world()

    def world(
        self,
        top: Triple = (0.5, 0.6, 0.75),
        horizon: Triple = (0.9, 0.85, 0.8),
        below: Triple = (0.25, 0.22, 0.2),
        strength: float = 0.4,
    ) -> None:
        """Even light from all around, from the horizon up and down."""
        world = bpy.data.worlds.new("World")
        self.scene.world = world
        world.use_nodes = True
        tree = world.node_tree
        tree.nodes.clear()
        place = tree.nodes.new("ShaderNodeTexCoord")
        part = tree.nodes.new("ShaderNodeSeparateXYZ")
        ramp = tree.nodes.new("ShaderNodeValToRGB")
        background = tree.nodes.new("ShaderNodeBackground")
        output = tree.nodes.new("ShaderNodeOutputWorld")
        shift = tree.nodes.new("ShaderNodeMath")
        shift.operation = "MULTIPLY_ADD"
        shift.inputs[1].default_value = shift.inputs[2].default_value = 0.5
        stops = ramp.color_ramp.elements
        stops[0].position, stops[0].color = 0.3, (*below, 1)
        stops[1].position, stops[1].color = 1.0, (*top, 1)
        middle = stops.new(0.55)
        middle.color = (*horizon, 1)
        background.inputs["Strength"].default_value = strength
        tree.links.new(place.outputs["Generated"], part.inputs[0])
        tree.links.new(part.outputs["Z"], shift.inputs[0])
        tree.links.new(shift.outputs[0], ramp.inputs[0])
        tree.links.new(ramp.outputs["Color"], background.inputs["Color"])
        tree.links.new(background.outputs[0], output.inputs[0])
        world.cycles.sampling_method = "MANUAL"
        world.cycles.sample_map_resolution = 256

    def camera(
        self,
        at: Triple,
        toward: Triple,
        lens: float = 50.0,
        fstop: float = 0.0,
        focus: Triple | None = None,
        name: str = "Camera",
    ) -> bpy.types.Object:
        """The camera that renders.

        :param lens: focal length in mm, on a sensor 36 mm wide
        :param fstop: 0 without depth of field
        :param focus: the point that is sharp; else the one it looks at
        """
        data = bpy.data.cameras.new(name)
        eye = bpy.data.objects.new(name, data)
        self.scene.collection.objects.link(eye)
        eye.location = at
        eye.rotation_euler = _aim(at, toward)
        data.lens = lens
        data.clip_start, data.clip_end = 0.01, 1000
        if fstop:
            data.dof.use_dof = True
            data.dof.aperture_fstop = fstop
            ahead = (Vector(toward) - Vector(at)).normalized()
            data.dof.focus_distance = (Vector(focus or toward) - Vector(at)).dot(ahead)
        self.scene.camera = eye
        return eye

    def softbox(
        self,
        name: str,
        at: Triple,
        toward: Triple,
        size: float | tuple[float, float],
        power: float,
        color: Triple = (1, 1, 1),
        mirrored: bool = True,
    ) -> bpy.types.Object:
        """A rectangular lamp.

        :param size: of its sides
        :param power: in watts
        :param mirrored: whether polished things show it
        """
        data = bpy.data.lights.new(name, "AREA")
        data.shape = "RECTANGLE"
        data.size, data.size_y = (size, size) if isinstance(size, (int, float)) else size
        data.energy, data.color = power, color
        lamp = bpy.data.objects.new(name, data)
        self.scene.collection.objects.link(lamp)
        lamp.location = at
        lamp.rotation_euler = _aim(at, toward)
        lamp.visible_glossy = mirrored
        lamp.visible_camera = False
        return lamp

    def sweep(
        self,
        color: Triple,
        width: float = 40,
        front: float = 12,
        back: float = 12,
        bend: float = 4,
        height: float = 20,
        roughness: float = 0.9,
    ) -> bpy.types.Object:
        """A seamless backdrop: a floor at Z 0 that bends up behind the scene."""
        angles = np.linspace(0, math.pi / 2, 24)
        floor = [(-front, 0.0), *((back + bend * math.sin(a), bend - bend * math.cos(a)) for a in angles)]
        floor.append((back + bend, height))
        vertices = [(x, y, z) for x in (-width / 2, width / 2) for y, z in floor]
        count = len(floor)
        faces = [(i, i + count, i + count + 1, i + 1) for i in range(count - 1)]
        mesh = bpy.data.meshes.new("Sweep")
        mesh.from_pydata(vertices, [], faces)
        mesh.polygons.foreach_set("use_smooth", [True] * len(faces))
        backdrop = bpy.data.objects.new("Sweep", mesh)
        self.scene.collection.objects.link(backdrop)
        material = bpy.data.materials.new("Sweep")
        material.use_nodes = True
        principled = material.node_tree.nodes["Principled BSDF"]
        principled.inputs["Base Color"].default_value = (*color, 1)
        principled.inputs["Roughness"].default_value = roughness
        principled.inputs["Specular"].default_value = 0.2
        mesh.materials.append(material)
        return backdrop

    def render(self, strength: float = 0.6) -> None:
        """Renders into the file that was asked for: twice with half the samples, of which `quiet` makes the picture.

        :param strength: how strongly noise is taken out; 0 leaves it
        """
        begin = time.monotonic()
        scene = self.scene
        path = self.options.output.absolute()
        scene.render.use_persistent_data = True
        scene.cycles.samples = max(4, scene.cycles.samples // 2)
        scene.cycles.adaptive_min_samples = min(8, scene.cycles.samples)
        settings = scene.render.image_settings
        settings.file_format, settings.color_depth, settings.exr_codec = "OPEN_EXR", "32", "ZIP"
        halves = []
        for seed in (1, 2):
            scene.cycles.seed = seed
            half = path.with_suffix(f".{seed}.exr")
            scene.render.filepath = str(half)
            bpy.ops.render.render(write_still=True)
            halves.append(fernwick.load_picture(half)[..., :3])
            half.unlink()
        rendered = time.monotonic()
        clean = quiet.filtered(*halves, strength=strength) if strength else (halves[0] + halves[1]) / 2
        height, width = clean.shape[:2]
        picture = bpy.data.images.new("Picture", width, height, float_buffer=True)
        pixels = np.ones((height, width, 4), np.float32)
        pixels[..., :3] = clean[::-1]
        picture.pixels.foreach_set(pixels.ravel())
        settings.file_format = "PNG" if path.suffix == ".png" else "JPEG"
        settings.quality, settings.color_mode = 88, "RGB"
        if path.suffix == ".png":
            settings.color_depth = "8"
        picture.save_render(str(path), scene=scene)
        print(
            f"{path.name}: 2 x {scene.cycles.samples} samples in {rendered - begin:.0f} s,"
            f" noise taken out in {time.monotonic() - rendered:.0f} s"
        )


def _aim(at: Triple, toward: Triple) -> object:
    return (Vector(toward) - Vector(at)).to_track_quat("-Z", "Y").to_euler()

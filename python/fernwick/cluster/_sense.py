"""What options don't go together, told as the command tells it."""

from __future__ import annotations

import argparse
import os

from .. import _native
from .._errors import FileError
from . import _plan
from ._values import LONGEST_SIDE


class UsageError(Exception):
    """A command line that can be read but makes no sense."""


def require_sense(options: argparse.Namespace) -> None:
    """Raises UsageError, and FileError for a picture that can't be written."""
    if options.command == "bake":
        _require_outputs(options)
        _require_model(options)
    frames = options.frames or [1]
    is_strip = options.command == "render" and options.strip
    if len(frames) > 1 and not is_strip and not _plan.has_frame_mark(options.picture):
        raise UsageError(f"--picture: {len(frames)} frames need a number in the name, as in ripple.####.png")
    if is_strip:
        _require_strip(options)
    if options.command == "bake" and options.gltf and len(frames) > 1:
        raise UsageError("--gltf writes a model of one frame; it doesn't go with several")
    _require_target(options, frames[0])


def model_and_node(onto: str) -> tuple[str, str]:
    """The parts of MODEL#NODE; a file that is there may have a # in its name."""
    if "#" not in onto or os.path.exists(onto):
        return onto, ""
    model, _, node = onto.rpartition("#")
    return model, node


def _require_outputs(options: argparse.Namespace) -> None:
    if options.lit:
        other = next((each for each in options.outputs if each not in ("color", "lit")), None)
        if other is not None:
            raise UsageError(f'--lit bakes the channel "lit"; it can\'t be "{other}" too')
        options.outputs = ["lit"]
    outputs = options.outputs
    if options.directx and "normal" not in outputs:
        raise UsageError("--directx is for a normal map; it goes with --output normal")
    if options.over and not any(map(_native.has_ground, outputs)):
        raise UsageError(f'--over lies under a colour; the channel "{outputs[0]}" has none')
    for i, output in enumerate(outputs):
        if output in outputs[:i]:
            raise UsageError(f'the output "{output}" is asked for twice')
    if len(outputs) > 1 and "{output}" not in options.picture:
        raise UsageError(
            f"{len(outputs)} outputs need a file each; put {{output}} into the name of the picture, "
            "as in key.{output}.png"
        )


def _require_model(options: argparse.Namespace) -> None:
    maps = {"--gltf-roughness": options.gltf_roughness, "--gltf-occlusion": options.gltf_occlusion}
    if not options.onto:
        if options.margin != 16 or options.uv_set != 0 or options.gltf:
            raise UsageError("--margin, --uv-set and --gltf are for a model; name it by --onto")
        if "{udim}" in options.picture:
            raise UsageError("{udim} is for the tiles of a model; name it by --onto")
    elif max(options.size) > _native.longest_side_onto:
        size = "{}x{}".format(*options.size)
        longest = _native.longest_side_onto
        raise UsageError(f"--size {size}: onto a model a picture has up to {longest} pixels a side")
    if not options.gltf:
        if any(maps.values()):
            raise UsageError("--gltf-roughness and --gltf-occlusion are for the material of --gltf")
        return
    if not options.picture.endswith(".png"):
        raise UsageError("--gltf puts the pictures into the model as PNG; name them .png")
    if options.directx:
        raise UsageError("the green of a glTF file's normals points up; leave --directx out")
    for option, shader in maps.items():
        if shader and "{output}" not in options.picture:
            raise UsageError(f"{option} makes a picture too; put {{output}} into the name of the picture")


def _require_strip(options: argparse.Namespace) -> None:
    count, width = len(options.frames), options.size[0]
    if count * width > LONGEST_SIDE:
        told = f"{count} frames side by side are {count * width} pixels wide, which no picture is"
        raise UsageError(f"--strip: {told}")
    if options.layers != ["none"]:
        raise UsageError("--strip: a strip has no layers; leave --layers out")


def _require_target(options: argparse.Namespace, frame: float) -> None:
    first = options.outputs[0] if options.command == "bake" else None
    name = _plan.named(options.picture, frame=frame if options.frames else None, output=first)
    try:
        _native.require_fit(name, options.bits, options.straight, options.tiled, options.compression)
    except FileError as error:
        raise UsageError(str(error)) from None
    if options.region is not None:
        width, height = options.size
        if options.region[2] > width or options.region[3] > height:
            told = ",".join(map(str, options.region))
            raise UsageError(f"--region {told} is beyond the picture of {width}x{height}")
    if options.command == "render" and options.layers != ["none"] and not _native.holds_layers(name):
        raise UsageError("--layers is for an .exr")
    _native.require_writable(name)

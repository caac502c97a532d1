"""Pictures as images of Blender."""

from __future__ import annotations

import os
from collections.abc import Mapping
from pathlib import Path
from typing import TYPE_CHECKING

import bpy
import numpy as np

from .errors import Refusal

if TYPE_CHECKING:
    from numpy.typing import NDArray

    Floats = NDArray[np.float32]

COLORS = {"color", "main", "second", "third", "fourth", "lit"}
NAME = "fernwick_name"
"""A custom property of images that bakes have made: the name that was asked for, which Blender may have cut or numbered."""


def pixels_of(picture: Floats, channel: str) -> Floats:
    """(height, width, 4) with row 0 at the bottom, as images have them: numbers as greys, normals from 0 to 1."""
    if picture.ndim == 2:
        grey = picture[::-1, :, None]
        return np.concatenate([grey, grey, grey, np.ones_like(grey)], axis=2)
    pixels = np.ascontiguousarray(picture[::-1])
    if channel == "normal":
        pixels = pixels.copy()
        pixels[..., :3] = pixels[..., :3] * np.float32(0.5) + np.float32(0.5)
        pixels[pixels[..., 3] == 0] = (0.5, 0.5, 1, 0)
    return pixels


def store(name: str, picture: Floats, channel: str, folder: str = "") -> bpy.types.Image:
    """Makes an image of floats, in linear light with a straight alpha, or replaces the one that was made for the name.

    :param folder: where it is a file; without one it is packed into the .blend
    """
    height, width = picture.shape[:2]
    image = _made(name)
    if image is not None and image.source == "TILED":
        del image[NAME]
        image = None
    if image is None:
        image = bpy.data.images.new(name, width, height, alpha=True, float_buffer=True, is_data=channel not in COLORS)
        image[NAME] = name
    elif not image.is_float or image.source != "GENERATED" or tuple(image.size) != (width, height):
        renew(image, width, height)
    describe(image, channel)
    fill(image, pixels_of(picture, channel))
    if folder:
        _write(image, folder, name, picture, channel)
    else:
        image.pack()
    return image


def store_tiles(name: str, pictures: Mapping[int, Floats], channel: str, folder: str = "") -> bpy.types.Image:
    """Makes a tiled image or replaces that of the name; its files are put into the folder, else beside the .blend."""
    folder = folder or "//fernwick"
    root = _folder(folder)
    stem = _file_name(name)
    for number, picture in pictures.items():
        _save(root / f"{stem}.{number}.exr", picture, channel)
    image = _made(name) or _loaded(root / f"{stem}.{min(pictures)}.exr", name)
    image.source = "TILED"
    image.filepath = _kept(root / f"{stem}.<UDIM>.exr", folder)
    known = {tile.number for tile in image.tiles}
    for number in sorted(set(pictures) - known):
        image.tiles.new(number)
    for tile in [tile for tile in image.tiles if tile.number not in pictures and len(image.tiles) > 1]:
        image.tiles.remove(tile)
    describe(image, channel)
    image.reload()
    return image


def fill(image: bpy.types.Image, pixels: Floats) -> None:
    """Gives an image of floats its pixels, (height, width, 4) with row 0 at the bottom."""
    image.pixels.foreach_set(np.ascontiguousarray(pixels, np.float32).reshape(-1))
    image.update()


def frame_path(folder: str, name: str, channel: str, frame: int, ending: str = "exr") -> Path:
    return _folder(folder) / f"{_file_name(name)}.{channel}.{frame:04d}.{ending}"


def save_frame(folder: str, name: str, channel: str, frame: int, picture: Floats) -> Path:
    """Writes one picture of a sequence."""
    path = frame_path(folder, name, channel, frame)
    _save(path, picture, channel)
    return path


def sequence(name: str, channel: str, path: Path, folder: str, first: int, count: int) -> bpy.types.Image:
    """The image of a sequence of files in a folder, made or replaced."""
    image = _made(name) or _loaded(path, name)
    image.filepath = _kept(path, folder)
    if image.packed_file:
        image.unpack(method="REMOVE")
    image.source = "SEQUENCE"
    image["fernwick_first"], image["fernwick_frames"] = first, count
    describe(image, channel)
    image.reload()
    return image


def renew(image: bpy.types.Image, width: int, height: int) -> None:
    """Makes an image one of generated floats, without leaving what uses it."""
    if image.packed_file:
        image.unpack(method="REMOVE")
    image.filepath = ""
    image.source = "GENERATED"
    image.generated_width, image.generated_height = width, height
    image.use_generated_float = True
    image.generated_type = "BLANK"


def _made(name: str) -> bpy.types.Image | None:
    """The image that was made for a name. One that the user has called so is another."""
    return next((each for each in bpy.data.images if each.library is None and each.get(NAME) == name), None)


def _loaded(path: Path, name: str) -> bpy.types.Image:
    image = bpy.data.images.load(str(path))
    image.name = image[NAME] = name
    return image


def _kept(path: Path, folder: str) -> str:
    """How the .blend names a file: beside it where the folder was named so, and then they may move together."""
    return bpy.path.relpath(str(path)) if folder.startswith("//") else str(path)


def describe(image: bpy.types.Image, channel: str) -> None:
    """Tells Blender what the numbers of a channel are: linear light or plain numbers, with a straight alpha."""
    image.alpha_mode = "CHANNEL_PACKED"
    names = [item.identifier for item in image.colorspace_settings.bl_rna.properties["name"].enum_items]
    linear = next((each for each in ("Linear", "Linear Rec.709") if each in names), "Non-Color")
    image.colorspace_settings.name = linear if channel in COLORS else "Non-Color"


def _write(image: bpy.types.Image, folder: str, name: str, picture: Floats, channel: str) -> None:
    path = _folder(folder) / f"{_file_name(name)}.exr"
    _save(path, picture, channel)
    if image.packed_file:
        image.unpack(method="REMOVE")
    image.filepath = _kept(path, folder)
    image.source = "FILE"
    image.reload()


def _save(path: Path, picture: Floats, channel: str) -> None:
    import fernwick

    pixels = np.ascontiguousarray(pixels_of(picture, channel)[::-1])
    fernwick.save(path, pixels, bits=32, straight=True)


def _folder(folder: str) -> Path:
    if folder.startswith("//") and not bpy.data.filepath:
        raise Refusal("Save the .blend first: the pictures are put beside it")
    path = Path(bpy.path.abspath(folder))
    os.makedirs(path, exist_ok=True)
    return path


def _file_name(name: str) -> str:
    return bpy.path.clean_name(name).strip("_") or "picture"

"""Pictures as images of Blender."""

from __future__ import annotations

import hashlib
import os
import re
from collections.abc import Mapping, Set
from dataclasses import dataclass
from pathlib import Path
from typing import TYPE_CHECKING

import bpy
import numpy as np

from .errors import Refusal

if TYPE_CHECKING:
    from numpy.typing import NDArray

    Floats = NDArray[np.float32]

COLORS = {"color", "main", "second", "third", "fourth", "lit"}
BESIDE = "//fernwick"
"""Where files go without a folder: beside the .blend."""
NAME, FIRST, FRAMES = "fernwick_name", "fernwick_first", "fernwick_frames"
"""Custom properties of images that bakes have made: the name that was asked for, which Blender may have cut or
numbered; of sequences the first frame, and how many there are."""
_UNSAFE = re.compile(r"^[.\s]|[^\w .,()+=@~-]")
_ENDING = re.compile(r"(\.(\d+|<UDIM>))?\.exr$")  # of a still, a frame or a tile
_LONGEST = 180  # bytes of a name, so that channel, number and ending find room


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


@dataclass(frozen=True)
class Place:
    """Where the pictures of a bake go: images called after a title, and files if there is a folder."""

    title: str
    folder: str = ""
    thing: bpy.types.Object | None = None  # that is baked onto
    shared: bool = True  # whether an image that other objects show too is replaced


def store(place: Place, channel: str, picture: Floats) -> bpy.types.Image:
    """Makes an image of floats, in linear light with a straight alpha, or replaces the one that was made for the place.

    Without a folder it is packed into the .blend.
    """
    name = f"{place.title} {channel}"
    old = _made(place, name)
    if place.folder:
        path = Path(f'{stem_of(place, channel, "_", old)}.exr')
        _save(path, picture, channel)
        image = old if old is not None and _is_file(old) else replace(old, _loaded(path, name))
        image.source = "FILE"
        image.filepath = _kept(path, place.folder)
        describe(image, channel)
        image.reload()
        return image
    height, width = picture.shape[:2]
    image = of_floats(old, name)
    image[NAME] = name
    describe(image, channel)
    resize(image, width, height)
    fill(image, pixels_of(picture, channel))
    image.pack()
    return image


def store_tiles(place: Place, channel: str, pictures: Mapping[int, Floats]) -> bpy.types.Image:
    """Makes a tiled image or replaces that of the place; without a folder its files are put beside the .blend."""
    folder = place.folder or BESIDE
    name = f"{place.title} {channel}"
    old = _made(place, name)
    stem = stem_of(place, channel, "_", old)
    for number, picture in pictures.items():
        _save(Path(f"{stem}.{number}.exr"), picture, channel)
    image = old if old is not None and old.source == "TILED" else None
    if image is None:
        image = replace(old, _loaded(Path(f"{stem}.{min(pictures)}.exr"), name))
        image.source = "TILED"
    image.filepath = _kept(Path(f"{stem}.<UDIM>.exr"), folder)
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


def sequence_stem(place: Place, channel: str) -> str:
    """How the files of a sequence begin."""
    return stem_of(place, channel, ".", _made(place, _sequence_name(place, channel)))


def save_frame(stem: str, channel: str, number: int, picture: Floats) -> None:
    """Writes one picture of a sequence.

    :param number: from 0; Blender reads no others
    """
    _save(_frame_path(stem, number), picture, channel)


def sequence(place: Place, channel: str, stem: str, first: int, count: int) -> bpy.types.Image:
    """The image of a sequence of files, made or replaced.

    :param first: the frame that shows the first file, whose number is `number_of` that
    """
    name = _sequence_name(place, channel)
    path = _frame_path(stem, number_of(first, first))
    image = _made(place, name)
    if image is None or not _is_file(image):
        image = replace(image, _loaded(path, name))
    image.filepath = _kept(path, place.folder)
    image.source = "SEQUENCE"
    image[FIRST], image[FRAMES] = first, count
    describe(image, channel)
    image.reload()
    return image


def number_of(frame: int, first: int) -> int:
    """The number of a frame's file: its own, or counted from 0 where the first frame of the sequence is below."""
    return frame - min(first, 0)


def file_name(title: str) -> str:
    """A name for files, another one for each title."""
    cut = _UNSAFE.sub("_", title).encode()[:_LONGEST].decode(errors="ignore")
    if cut == title and cut:
        return cut
    return f"{cut}-{hashlib.sha1(title.encode(errors='surrogatepass')).hexdigest()[:8]}"


def of_floats(image: bpy.types.Image | None, name: str) -> bpy.types.Image:
    """An image that can be filled with floats: that one, or one that takes its place."""
    is_packed = image is not None and image.packed_file is not None and image.source == "FILE"
    if image is None or not image.is_float or not (image.source == "GENERATED" or is_packed):
        return replace(image, bpy.data.images.new(name, 8, 8, alpha=True, float_buffer=True))
    return image


def resize(image: bpy.types.Image, width: int, height: int) -> None:
    """Behind all that describes the image, at which Blender reads it again."""
    if tuple(image.size) != (width, height):
        image.scale(width, height)


def replace(old: bpy.types.Image | None, image: bpy.types.Image) -> bpy.types.Image:
    """Gives an image the name and the users of another one, which goes: Blender unpacks none without a word to the
    console."""
    if old is not None:
        name = old.name
        image.use_fake_user = image.use_fake_user or old.use_fake_user
        old.user_remap(image)
        bpy.data.images.remove(old)
        image.name = name
    return image


def stem_of(place: Place, channel: str, joint: str, image: bpy.types.Image | None) -> str:
    """How the files of an image begin, as those of no other image of this .blend do."""
    base = os.path.normpath(_folder(place.folder or BESIDE) / f"{file_name(place.title)}{joint}{channel}")
    taken = {
        _ENDING.sub("", os.path.normpath(bpy.path.abspath(other.filepath, library=other.library)))
        for other in bpy.data.images
        if other != image and other.filepath
    }
    stem, i = base, 2
    while stem in taken:
        stem, i = f"{base}-{i}", i + 1
    return stem


def shown_by(materials: Set[bpy.types.Material]) -> set[bpy.types.Object]:
    """The objects that have one of some materials in a slot."""
    return {
        thing
        for thing in bpy.data.objects
        if thing.users and any(slot.material in materials for slot in thing.material_slots)
    }


def _made(place: Place, name: str) -> bpy.types.Image | None:
    """The image that was made for a name. One that the user has called so is another, and so is that of an object
    which has had the name before."""
    for each in bpy.data.images:
        if each.library is None and each.get(NAME) == name and not _is_of_others(each, place):
            return each
    return None


def _is_of_others(image: bpy.types.Image, place: Place) -> bool:
    if place.thing is None:
        return False
    users = bpy.data.user_map(subset={image}).get(image, ())
    shown = shown_by({user for user in users if isinstance(user, bpy.types.Material)})
    return bool(shown) and (place.thing not in shown if place.shared else shown != {place.thing})


def _is_file(image: bpy.types.Image) -> bool:
    return image.source in ("FILE", "SEQUENCE") and image.packed_file is None


def _sequence_name(place: Place, channel: str) -> str:
    return f"{place.title} {channel} sequence"


def _frame_path(stem: str, number: int) -> Path:
    return Path(f"{stem}.{number:04d}.exr")


def _loaded(path: Path, name: str) -> bpy.types.Image:
    image = bpy.data.images.load(str(path))
    room = bpy.data.images.new(name, 1, 1)  # Blender would take a name from the image that has it
    free = room.name
    bpy.data.images.remove(room)
    image.name, image[NAME] = free, name
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


def _save(path: Path, picture: Floats, channel: str) -> None:
    import fernwick

    pixels = np.ascontiguousarray(pixels_of(picture, channel)[::-1])
    fernwick.save(path, pixels, bits=32, straight=True)


def _folder(folder: str) -> Path:
    if folder.startswith("//") and not bpy.data.filepath:
        raise Refusal("Save the .blend first: the pictures are put beside it")
    path = Path(bpy.path.abspath(folder))
    try:
        os.makedirs(path, exist_ok=True)
    except OSError as error:
        raise Refusal(f"There can't be a folder {path}: {error.strerror}") from error
    return path

"""Pictures in files."""

from __future__ import annotations

from typing import TYPE_CHECKING

from . import _arguments, _native
from ._numpy import floats, numpy, text

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import ArrayLike, NDArray

CONTENTS = ("color", "value", "normal")


def save(
    path: _arguments.PathLike,
    array: ArrayLike,
    content: str | None = None,
    bits: int = 0,
    *,
    straight: bool = False,
    tiled: bool = False,
    compression: str = "",
    threads: int = 0,
) -> None:
    """Writes a picture as the command does; the ending of the name, .png, .tif, .exr or .tx, tells the format.

    :param array: (height, width) or (height, width, 1 to 4) of floats: numbers, numbers and an alpha, colours without
        and with a straight alpha, in linear light
    :param content: what the numbers are, which tells how they become integers: "color" (encoded as sRGB), "value" (0
        to 1) or "normal" (-1 to 1); without it values for one number a pixel, and else colours
    :param bits: of a channel, 8, 16 or 32 by the format; 0 for the usual
    :param straight: leaves the colours of floats as they are, not multiplied by the alpha
    :param tiled: in tiles of 64 x 64 pixels, of an .exr or .tif
    :param compression: of an .exr, .tx or .tif, such as "piz"; "" for zip
    :param threads: 0 for one a processor

    The file appears whole or not at all. Raises FileError, ValueError and TypeError.
    """
    name = _arguments.path("path", path)
    pixels = _picture(array)
    shape = numpy().shape(array)
    is_number = len(shape) == 2 or shape[2] < 3
    kind = ("value" if is_number else "color") if content is None else _arguments.choice("content", content, CONTENTS)
    arguments = (
        kind,
        _arguments.integer("bits", bits, 0, 32),
        _arguments.flag("straight", straight),
        _arguments.flag("tiled", tiled),
        _arguments.text("compression", compression),
        _arguments.threads(threads),
    )
    _native.write_picture(name, pixels, *arguments)


def to_srgb(array: ArrayLike) -> NDArray[np.uint8]:
    """Colours as screens and `matplotlib.pyplot.imshow` take them: the integers that a PNG of 8 bits holds.

    :param array: (height, width), or (height, width, 1 to 4), as of `save`, in linear light with a straight alpha
    :return: uint8 (height, width, 4), encoded as sRGB
    """
    return _native.encode(_picture(array), "color")


def load_picture(path: _arguments.PathLike, encoding: str = "", alpha: str = "") -> NDArray[np.float32]:
    """A picture as a `Picture` source reads it: float32 (height, width, 4), linear light with a straight alpha.

    :param encoding: what the file's integers are, "srgb" or "linear"; "" for what the file says
    :param alpha: "straight", or "premultiplied" where the file's colours are multiplied by it; "" for what the file says

    Raises FileError.
    """
    numpy()
    return _native.read_picture(
        _arguments.path("path", path),
        _arguments.choice("encoding", encoding, ("", "srgb", "linear")),
        _arguments.choice("alpha", alpha, ("", "straight", "premultiplied")),
    )


def _picture(array: ArrayLike) -> NDArray[np.float32]:
    """Red, green, blue and alpha of each pixel; one number is all three colours, and a missing alpha 1."""
    np = numpy()
    if hasattr(array, "dtype") and array.dtype.kind in "iub":
        raise TypeError(f"array: expected floats, 0 to 1 in linear light, got {text(array)}")
    pixels = floats("array", array)
    if pixels.ndim == 2:
        pixels = pixels[..., None]
    if pixels.ndim != 3 or not 1 <= pixels.shape[2] <= 4 or 0 in pixels.shape:
        raise ValueError(f"array: expected height x width, or that x 1 to 4, got {text(pixels)}")
    count = pixels.shape[2]
    if count == 4:
        return pixels
    four = np.ones((*pixels.shape[:2], 4), np.float32)
    four[..., :3] = pixels[..., : 3 if count == 3 else 1]
    if count == 2:
        four[..., 3] = pixels[..., 1]
    return four  # type: ignore[no-any-return]

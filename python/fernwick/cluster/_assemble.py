"""Pictures out of units: rows go to the files as soon as all above are there."""

from __future__ import annotations

import dataclasses
from typing import TYPE_CHECKING, Any

from .. import _native
from .._numpy import numpy
from .._pictures import _picture
from ._plan import Picture, Unit

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

_ROWS = 64  # are put together at a time; so many has a tile of a file


@dataclasses.dataclass(frozen=True)
class Layout:
    """How files are laid out; as of `fernwick.save`."""

    bits: int = 0
    straight: bool = False
    tiled: bool = False
    compression: str = ""


class PictureFiles:
    """The files of one picture, which appear when it is whole, and not at all when it is abandoned."""

    def __init__(self, picture: Picture, layout: Layout) -> None:
        """Raises FileError when a file can't be written."""
        self._picture = picture
        self._writers: dict[str, Any] = {}
        try:
            for output, file in picture.files.items():
                self._writers[output] = _native.RowWriter(
                    str(file), picture.width, picture.height, picture.region, _content(output),
                    _native.layers(picture.layers), layout.bits, layout.straight, layout.tiled, layout.compression, 0,
                )  # fmt: skip
        except BaseException:
            self.abandon()
            raise

    def write(self, band: list[Unit], arrays: dict[Unit, dict[str, NDArray[np.float32]]]) -> None:
        """The next band, which is taken from the arrays. Raises FileError."""
        height = band[0].region[3] - band[0].region[1]
        ordered = [arrays[unit] for unit in sorted(band, key=lambda unit: unit.column)]
        for output, writer in self._writers.items():
            names = [output, *self._picture.layers]
            pieces = {name: [piece.pop(name) for piece in ordered] for name in names}
            for top in range(0, height, _ROWS):
                rows = [_rows(pieces[name], top) for name in names]
                writer.write(_picture(rows[0]), [layer for group in rows[1:] for layer in _parted(group)])

    def finish(self) -> None:
        """Raises FileError."""
        for writer in self._writers.values():
            writer.finish()

    def abandon(self) -> None:
        for writer in self._writers.values():
            writer.abandon()


def require_files(picture: Picture, layout: Layout) -> None:
    """Whether a picture can be written. Raises FileError."""
    for file in map(str, picture.files.values()):
        _native.require_fit(file, layout.bits, layout.straight, layout.tiled, layout.compression)
        _native.require_writable(file)


def _rows(pieces: list[NDArray[np.float32]], top: int) -> NDArray[np.float32]:
    joined: NDArray[np.float32] = numpy().concatenate([piece[top : top + _ROWS] for piece in pieces], axis=1)
    return joined


def _parted(group: NDArray[np.float32]) -> list[NDArray[np.float32]]:
    """The layers of a group, as a file has them."""
    return [group] if group.ndim == 2 else [numpy().ascontiguousarray(group[..., i]) for i in range(group.shape[2])]


def _content(output: str) -> str:
    if output in ("alpha", "coverage", "value"):
        return "value"
    return "normal" if output == "normal" else "color"

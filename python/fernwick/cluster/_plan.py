"""What is to be made, in units of work."""

from __future__ import annotations

import dataclasses
import math
from collections.abc import Iterator, Sequence
from pathlib import Path
from typing import Any

from .. import _arguments, _native

Size = tuple[int, int]
Region = tuple[int, int, int, int]  # left, top, right, bottom

SHADED_TILE = {"bake": 128, "render": 64}  # pixels a side; regions that lie on them shade nothing twice
USUAL_TILE: dict[str, Size] = {"bake": (2048, 256), "render": (512, 512)}


@dataclasses.dataclass(frozen=True)
class Unit:
    """One task: a region of one frame, all outputs of it."""

    frame: float
    region: Region
    udim: int  # 0 for the only one
    picture: int  # index in the plan
    column: int  # of the file where the region lies, which isn't its left side in a strip or of a part of a picture

    @property
    def name(self) -> str:
        """For logs and errors."""
        udim = f", UDIM tile {self.udim}" if self.udim else ""
        return f"frame {self.frame}{udim}, tile {','.join(map(str, self.region))}"

    @property
    def pixels(self) -> int:
        left, top, right, bottom = self.region
        return (right - left) * (bottom - top)


@dataclasses.dataclass(frozen=True)
class Picture:
    """The files of one pass, by output, and the bands of units that they are made of, from the top."""

    files: dict[str, Path]
    width: int
    height: int
    region: Region | None  # the only part that there is
    layers: tuple[str, ...]  # groups beside the colour, of a rendered picture
    bands: list[list[Unit]]

    @property
    def units(self) -> list[Unit]:
        return [unit for band in self.bands for unit in band]


@dataclasses.dataclass(frozen=True)
class Job:
    """What a worker has to know for a unit: travels once to each."""

    kind: str  # "bake" or "render"
    width: int
    height: int
    graph: tuple[Any, ...]  # text, folder, name and files in memory
    over: tuple[Any, ...] | None
    onto: Any  # a file's name, a mesh or None
    options: dict[str, Any]  # of Graph.bake and Graph.render, but for the above
    files: dict[float, dict[str, str]]  # by frame: hashes by name
    facts: dict[str, str]  # of the client's program and processor

    def bytes_of(self, unit: Unit) -> int:
        """As a unit's pixels travel."""
        if self.kind == "bake":
            numbers = sum(1 if output in ("alpha", "coverage", "value") else 4 for output in self.options["output"])
        else:
            numbers = 4 + len(_native.layers(self.options["layers"]))
        return unit.pixels * 4 * numbers

    def identity(self, unit: Unit) -> str:
        """All that the pixels of a unit depend on, the same in every process."""
        onto = self.onto if self.onto is None or isinstance(self.onto, str) else self.onto.token
        over = None if self.over is None else _steady(self.over)
        what = (self.kind, self.width, self.height, _steady(self.graph), over, onto, sorted(self.options.items()))
        return repr((what, sorted(self.files[unit.frame].items()), self.facts, unit.frame, unit.region, unit.udim))


def _steady(graph: tuple[Any, ...]) -> tuple[Any, ...]:
    text, folder, _, files, _ = graph
    return text, str(folder), sorted((name, file.token) for name, file in files.items())


def tile(value: Size | None, kind: str) -> Size:
    """Width and height of a unit. Raises ValueError."""
    if value is None:
        return USUAL_TILE[kind]
    step = SHADED_TILE[kind]
    width, height = _arguments.size(*value)
    if width % step or height % step:
        raise ValueError(f"tile: expected multiples of {step} pixels, got {width}x{height}")
    return width, height


def bands(region: Region, tile: Size, frames: Sequence[float], udim: int, picture: int) -> list[list[Unit]]:
    """The units of a picture, or of a part of it, in which some frames lie side by side, by rows from the top."""
    left, top, right, bottom = region
    columns = [
        (frame, *span, i * (right - left) + span[0] - left)
        for i, frame in enumerate(frames)
        for span in _spans(left, right, tile[0])
    ]
    return [
        [Unit(frame, (first, upper, last, lower), udim, picture, column) for frame, first, last, column in columns]
        for upper, lower in _spans(top, bottom, tile[1])
    ]


def _spans(first: int, last: int, step: int) -> list[tuple[int, int]]:
    """Parts of a range that end at multiples of a step, as tiles of the whole picture do."""
    cuts = [first, *range(first - first % step + step, last, step), last]
    return list(zip(cuts, cuts[1:]))


def named(
    name: str, *, frame: float | None = None, output: str | None = None, udim: int = 0, is_one_of_several: bool = False
) -> str:
    """A picture's name as the command makes it: ####, {frame}, {output} and {udim} stand for what they say.

    :param is_one_of_several: UDIM tiles, whose numbers stand before the ending where the name has no place for them
    """
    if frame is not None:
        name = "".join(_numbered(name, frame))
    if output is not None:
        name = name.replace("{output}", output)
    if "{udim}" in name and udim:
        return name.replace("{udim}", str(udim))
    path = Path(name)
    return str(path.with_suffix(f".{udim}{path.suffix}")) if is_one_of_several else name


def has_frame_mark(name: str) -> bool:
    return "#" in name or "{frame}" in name


def _numbered(name: str, frame: float) -> Iterator[str]:
    while name:
        if name.startswith("#"):
            rest = name.lstrip("#")
            yield f"{frame:0{len(name) - len(rest)}}"
        elif name.startswith("{frame}"):
            rest = name[len("{frame}") :]
            yield str(frame)
        else:
            rest = name[1:]
            yield name[0]
        name = rest


def frames(text: str) -> list[float]:
    """The frames of a text such as 1-24, 1-24x2 or 1,5,9-12, each once, in ascending order. Raises ValueError."""
    found: set[int] = set()
    for part in text.split(","):
        ends, _, step = part.partition("x")
        first, dash, last = ends.partition("-")
        numbers = [first, last if dash else first, step if "x" in part else "1"]
        if not all(number.isascii() and number.isdigit() and len(number) < 7 for number in numbers):
            raise ValueError(f'"{text}" names no frames; frames are like 12, 1-24, 1-24x2 or 1,5,9-12')
        start, end, stride = map(int, numbers)
        if end < start or stride < 1 or ("x" in part and not dash):
            raise ValueError(f'"{text}" names no frames; frames are like 12, 1-24, 1-24x2 or 1,5,9-12')
        found.update(range(start, end + 1, stride))
    return [*sorted(found)]


def megabytes(count: float) -> str:
    return f"{math.ceil(count / 2**20)} MiB"

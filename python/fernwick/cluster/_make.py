"""From what a caller asks for to a job that runs."""

from __future__ import annotations

import dataclasses
import os
from collections.abc import Iterable
from pathlib import Path
from typing import Any

from .. import _arguments, _native
from .._arguments import PathLike, Progress, Region
from .._errors import GraphError
from .._graph import Graph
from .._mesh import Mesh
from ._assemble import Layout, require_files
from ._dask import Client
from ._facts import facts
from ._files import hashes
from ._output import Settings, require_memory
from ._plan import Job, Picture, Size, bands, has_frame_mark, named, tile as checked_tile
from ._resume import Parts
from ._run import Run

MEMORY = 2**30  # bytes of pixels on the client


@dataclasses.dataclass(frozen=True)
class Wanted:
    """What is to be seen, but for the graph and its frames."""

    kind: str  # "bake" or "render"
    size: Size
    options: dict[str, Any]  # of Graph.bake or Graph.render, checked
    region: Region | None = None
    over: Graph | None = None
    onto: str | Mesh | None = None
    udims: list[int] = dataclasses.field(default_factory=lambda: [0])  # 0 where there is no model
    strip: bool = False

    @property
    def outputs(self) -> list[str]:
        return list(self.options.get("output", ["color"]))


@dataclasses.dataclass(frozen=True)
class Means:
    """How it is made; as of `bake`."""

    tile: Size | None
    memory: int
    timeout: float
    resume: PathLike | None
    progress: Progress | None


@dataclasses.dataclass(frozen=True)
class Plan:
    """A job that is checked, and can run."""

    job: Job
    pictures: list[Picture]
    sources: dict[str, str]  # the files that it needs: names by hash
    settings: Settings

    def run(self, client: Client) -> list[Path]:
        """Answers the files."""
        Run(client, self.job, self.pictures, self.sources, self.settings).run()
        return [file for picture in self.pictures for file in picture.files.values()]


def plan(
    graph: Graph, path: PathLike, wanted: Wanted, frames: Iterable[float] | None, layout: Layout, means: Means
) -> Plan:
    """Of what is wanted. Raises what `bake` and `render` raise before the work."""
    given = [graph.frame] if frames is None else frames
    chosen = sorted({_arguments.frame("frames", frame) for frame in given})
    pictures = _pictures(_arguments.path("path", path), wanted, means, chosen, frames is not None)
    known: dict[str, str] = {}
    files = {frame: hashes(_read(graph, wanted, frame), known) for frame in chosen}
    over = None if wanted.over is None else wanted.over.__reduce__()[1]
    job = Job(wanted.kind, *wanted.size, graph.__reduce__()[1], over, wanted.onto, wanted.options, files, facts())
    require_memory(job, pictures, _arguments.integer("memory", means.memory, 1, 2**60))
    for picture in pictures:
        require_files(picture, layout)
    parts = None if means.resume is None else Parts(Path(_arguments.path("resume", means.resume)))
    timeout = _arguments.number("timeout", means.timeout, 0, above=True)
    settings = Settings(layout, means.memory, timeout, parts, _arguments.progress(means.progress))
    return Plan(job, pictures, {each: file for file, each in known.items()}, settings)


def _pictures(name: str, wanted: Wanted, means: Means, frames: list[float], is_sequence: bool) -> list[Picture]:
    outputs, strip = wanted.outputs, wanted.strip
    layers = tuple(dict.fromkeys(name.partition(".")[0] for name in _native.layers(wanted.options.get("layers", []))))
    if not frames:
        raise ValueError("frames: expected one or more")
    if len(frames) > 1 and not strip and not has_frame_mark(name):
        raise ValueError(f"path: {len(frames)} frames need a number in the name, as in ripple.####.png")
    if len(outputs) > 1 and "{output}" not in name:
        raise ValueError(
            f"{len(outputs)} outputs need a file each; put {{output}} into the name of the picture, "
            "as in key.{output}.png"
        )
    if strip and layers:
        raise ValueError("strip: a strip has no layers; leave them out")
    if layers and not _native.holds_layers(name):
        raise ValueError("layers: only an .exr holds them")
    tile = checked_tile(means.tile, wanted.kind)
    width, height = wanted.size
    region = _arguments.region(wanted.region, width, height)
    part = region or (0, 0, width, height)
    if strip:
        width, height, region = len(frames) * (part[2] - part[0]), part[3] - part[1], None
        _arguments.size(width, height)
    pictures: list[Picture] = []
    for group in [frames] if strip else [[frame] for frame in frames]:
        for udim in wanted.udims:
            frame = group[0] if is_sequence and not strip else None
            several = len(wanted.udims) > 1
            paths = {
                each: Path(named(name, frame=frame, output=each, udim=udim, is_one_of_several=several))
                for each in outputs
            }
            units = bands(part, tile, group, udim if several else 0, len(pictures))
            pictures.append(Picture(paths, width, height, region, layers, units))
    return pictures


def _read(graph: Graph, wanted: Wanted, frame: float) -> list[str]:
    """The files that are read for a frame."""
    found = [*graph.at(frame)._document.files]
    if wanted.over is not None:
        found += wanted.over.at(frame)._document.files
    onto = wanted.onto
    if isinstance(onto, str):
        scene = {"shaders": {"any": {"source": "checker"}}, "output": "any", "scene": {"file": onto}}
        found += Graph(scene)._document.files
        if onto not in [os.path.normpath(each) for each in found]:
            raise GraphError(f"onto: {onto}: the file isn't read as a model")
    return found

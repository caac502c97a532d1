"""Bakes and renders on more than one machine, by Dask distributed.

    import distributed
    import fernwick
    import fernwick.cluster

    client = distributed.Client("tcp://scheduler:8786")  # or distributed.Client() for this machine
    graph = fernwick.Graph.load("cloth.json")
    fernwick.cluster.bake(client, graph, "cloth.{output}.png", 16384, output=["color", "normal"])
    fernwick.cluster.render(client, graph, "pond.####.png", 1920, 1080, frames=range(1, 241))

`python -m fernwick.cluster --help` tells the same for the command line.
"""

from __future__ import annotations

import os
from collections.abc import Iterable
from pathlib import Path
from typing import Any

from .. import _arguments
from .._arguments import PathLike, Progress
from .._errors import GraphError
from .._graph import Graph, Names
from .._library import library
from .._mesh import Mesh
from ._assemble import Layout, try_files
from ._dask import Client
from ._facts import facts
from ._files import hashes
from ._plan import Job, Picture, Size, bands, has_frame_mark, named, tile as checked_tile
from ._resume import Parts
from ._run import Run, Settings, require_memory

__all__ = ["bake", "render"]

MEMORY = 2**30


def bake(
    client: Client,
    graph: Graph,
    path: PathLike,
    width: int = 512,
    height: int | None = None,
    output: str | Names = "color",
    *,
    frames: Iterable[float] | None = None,
    samples: int = 1,
    onto: PathLike | Mesh | None = None,
    node: str = "",
    uv_set: int = 0,
    margin: int = 16,
    over: Graph | None = None,
    green: str = "up",
    bits: int = 0,
    straight: bool = False,
    tiled: bool = False,
    compression: str = "",
    tile: Size | None = None,
    memory: int = MEMORY,
    timeout: float = 600,
    resume: PathLike | None = None,
    progress: Progress | None = None,
) -> list[Path]:
    """Bakes into files, to the bit what `Graph.bake` and `fernwick.save` make.

    :param client: a `distributed.Client`
    :param path: of the pictures: #### or {frame} stands for the frame, {output} for the output, {udim} for the UDIM tile
    :param width: and what follows, as of `Graph.bake`
    :param frames: a picture of each; without them one of the graph's frame
    :param bits: and what follows, as of `fernwick.save`
    :param tile: width and height of what a worker shades at a time, multiples of 128 pixels; without it 2048 x 256
    :param memory: in bytes, for pixels that this process holds, which is a row of tiles or more
    :param timeout: in seconds, of a tile; then the worker is restarted, and another one tries
    :param resume: a folder that keeps finished tiles, so that none is shaded again when the call is repeated
    :param progress: is called with the share that is done
    :return: the files

    Raises what `Graph.bake` and `fernwick.save` raise; LibraryError when no worker is like this machine; Error when
    workers die or hang at a tile again and again, and when the scheduler is gone. Then, and at Ctrl-C, all tasks are
    cancelled, and no file is half written.
    """
    columns, rows = _arguments.size(width, height)
    names = _arguments.choices("output", output, graph.outputs)
    if over is not None and not isinstance(over, Graph):
        raise TypeError(f"over: expected a Graph, got {type(over).__name__}")
    options = {
        "output": names,
        "samples": _arguments.samples(samples),
        "node": _arguments.text("node", node),
        "uv_set": _arguments.integer("uv_set", uv_set, 0, 255),
        "margin": _arguments.integer("margin", margin, 0, 128),
        "green": _arguments.choice("green", green, ("up", "down")),
    }
    target = os.path.abspath(_arguments.path("onto", onto)) if onto is not None and not isinstance(onto, Mesh) else onto
    udims = [0]
    if target is not None or node:
        udims = graph.tiles(target, node=node, uv_set=uv_set, width=columns, height=rows)
        udims = [0] if len(udims) == 1 else udims
    return _make(
        client, graph, path, "bake", (columns, rows), options, over, target, udims, frames, False,
        Layout(bits, straight, tiled, compression), tile, memory, timeout, resume, progress,
    )  # fmt: skip


def render(
    client: Client,
    graph: Graph,
    path: PathLike,
    width: int = 512,
    height: int | None = None,
    *,
    frames: Iterable[float] | None = None,
    strip: bool = False,
    camera: str = "",
    samples: int = 4,
    bits: int = 0,
    straight: bool = False,
    tiled: bool = False,
    compression: str = "",
    tile: Size | None = None,
    memory: int = MEMORY,
    timeout: float = 600,
    resume: PathLike | None = None,
    progress: Progress | None = None,
) -> list[Path]:
    """Renders into files, to the bit what `Graph.render` and `fernwick.save` make; arguments as of it and of `bake`.

    :param strip: puts all frames side by side in one picture
    :param tile: width and height of what a worker shades at a time, multiples of 64 pixels; without it 512 x 512
    """
    size = _arguments.size(width, height)
    if camera:
        _arguments.choice("camera", camera, graph.cameras)
    options = {"samples": _arguments.samples(samples), "camera": _arguments.text("camera", camera)}
    return _make(
        client, graph, path, "render", size, options, None, None, [0], frames, strip,
        Layout(bits, straight, tiled, compression), tile, memory, timeout, resume, progress,
    )  # fmt: skip


def _make(
    client: Client,
    graph: Graph,
    path: PathLike,
    kind: str,
    size: Size,
    options: dict[str, Any],
    over: Graph | None,
    onto: str | Mesh | None,
    udims: list[int],
    frames: Iterable[float] | None,
    strip: bool,
    layout: Layout,
    tile: Size | None,
    memory: int,
    timeout: float,
    resume: PathLike | None,
    progress: Progress | None,
) -> list[Path]:
    name = _arguments.path("path", path)
    chosen = [graph.frame] if frames is None else sorted({_arguments.number("frames", frame) for frame in frames})
    outputs = list(options.get("output", ["color"]))
    pictures = _pictures(name, size, checked_tile(tile, kind), chosen, outputs, udims, strip, frames is not None)
    require_memory(pictures, outputs, _arguments.integer("memory", memory, 1, 2**60))
    _arguments.number("timeout", timeout, 0, above=True)
    library()
    known: dict[str, str] = {}
    files = {frame: hashes(_read(graph, over, onto, frame), known) for frame in chosen}
    for picture in pictures:
        try_files(picture, layout)
    job = Job(
        kind, *size, graph.__reduce__()[1], None if over is None else over.__reduce__()[1], onto, options, files, facts()
    )
    parts = None if resume is None else Parts(Path(_arguments.path("resume", resume)))
    settings = Settings(layout, memory, timeout, parts, _arguments.progress(progress))
    Run(client, job, pictures, {each: file for file, each in known.items()}, settings).run()
    return [file for picture in pictures for file in picture.files.values()]


def _pictures(
    name: str, size: Size, tile: Size, frames: list[float], outputs: list[str], udims: list[int], strip: bool, many: bool
) -> list[Picture]:
    if not frames:
        raise ValueError("frames: expected one or more")
    if len(frames) > 1 and not strip and not has_frame_mark(name):
        raise ValueError(f"path: {len(frames)} frames need a number in the name, as in ripple.####.png")
    if len(outputs) > 1 and "{output}" not in name:
        raise ValueError(f"path: {len(outputs)} outputs need a file each; put {{output}} into the name, as in key.{{output}}.png")
    groups = [frames] if strip else [[frame] for frame in frames]
    pictures: list[Picture] = []
    for group in groups:
        for udim in udims:
            frame = group[0] if many and not strip else None
            files = {each: Path(named(name, frame=frame, output=each, udim=udim)) for each in outputs}
            width = _arguments.size(size[0] * len(group), size[1])[0]
            pictures.append(Picture(files, width, size[1], bands(size, tile, group, udim, len(pictures))))
    return pictures


def _read(graph: Graph, over: Graph | None, onto: str | Mesh | None, frame: float) -> list[str]:
    """The files that are read for a frame."""
    found = [*graph.at(frame)._document.files]
    if over is not None:
        found += over.at(frame)._document.files
    if isinstance(onto, str):
        scene = {"shaders": {"any": {"source": "checker"}}, "output": "any", "scene": {"file": onto}}
        found += Graph(scene)._document.files
        if onto not in [os.path.normpath(each) for each in found]:
            raise GraphError(f"onto: {onto}: the file isn't read as a model")
    return found

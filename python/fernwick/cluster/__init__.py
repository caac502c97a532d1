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

from .. import _arguments, _native
from .._arguments import PathLike, Progress, Region
from .._graph import Graph, Names
from .._mesh import Mesh
from ._assemble import Layout
from ._dask import Client
from ._make import MEMORY, Means, Wanted, make
from ._plan import Size

__all__ = ["MEMORY", "bake", "render"]


def bake(
    client: Client,
    graph: Graph,
    path: PathLike,
    width: int = 512,
    height: int | None = None,
    output: str | Names = "color",
    *,
    frames: Iterable[float] | None = None,
    region: Region | None = None,
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
    :param path: of the pictures: #### or {frame} is the frame, {output} the output, {udim} the UDIM tile
    :param width: and what follows, as of `Graph.bake`
    :param frames: a picture of each; without them one of the graph's frame
    :param region: left, top, right and bottom of the only part that is made, as of the command's --region
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
    wanted = Wanted("bake", (columns, rows), options, region=region, over=over, onto=target, udims=udims)
    layout = Layout(bits, straight, tiled, compression)
    return make(client, graph, path, wanted, frames, layout, Means(tile, memory, timeout, resume, progress))


def render(
    client: Client,
    graph: Graph,
    path: PathLike,
    width: int = 512,
    height: int | None = None,
    *,
    frames: Iterable[float] | None = None,
    region: Region | None = None,
    strip: bool = False,
    camera: str = "",
    samples: int = 4,
    layers: str | Names | None = None,
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
    :param layers: groups of layers, or "all", that an .exr has beside the colour, as of the command's --layers
    :param tile: width and height of what a worker shades at a time, multiples of 64 pixels; without it 512 x 512
    """
    size = _arguments.size(width, height)
    if camera:
        _arguments.choice("camera", camera, graph.cameras)
    groups = _native.layer_groups()
    chosen = () if layers is None else layers
    options = {
        "samples": _arguments.samples(samples),
        "camera": _arguments.text("camera", camera),
        "layers": groups if layers == "all" else _arguments.choices("layers", chosen, groups, none=True),
    }
    wanted = Wanted("render", size, options, region=region, strip=_arguments.flag("strip", strip))
    layout = Layout(bits, straight, tiled, compression)
    return make(client, graph, path, wanted, frames, layout, Means(tile, memory, timeout, resume, progress))

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
import sys
from collections.abc import Iterable
from pathlib import Path

try:
    from ._dask import Client, connected
except ImportError as _error:
    if sys.argv[:1] == ["-m"] and __name__ in sys.orig_argv:
        sys.exit(f"fernwick: {_error}")  # the command line has no other place to say it in a line
    raise
from .. import _arguments, _native
from .._arguments import PathLike, Progress, Region
from .._graph import Graph, Names
from .._library import library
from .._mesh import Mesh
from ._assemble import Layout
from ._make import MEMORY, Means, Wanted, plan
from ._model import bake_model, material, require_outputs, require_view, udims
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
    gltf: PathLike | None = None,
    gltf_roughness: str = "",
    gltf_occlusion: str = "",
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
    :param gltf: a .glb file that gets the model, with the pictures of color, normal and the next two in it
    :param gltf_roughness: a shader of the graph whose value is the roughness: a picture too, of the output "roughness"
    :param gltf_occlusion: the same for the occlusion
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
    target: str | Mesh | None = None
    if onto is not None:
        target = onto if isinstance(onto, Mesh) else _arguments.path("onto", onto)
    has_model = target is not None or bool(_arguments.text("node", node))
    columns, rows = _arguments.size(width, height, has_model)
    names = _arguments.choices("output", output, _native.channel_names())
    if over is not None and not isinstance(over, Graph):
        raise TypeError(f"over: expected a Graph, got {type(over).__name__}")
    options = {
        "output": names,
        "samples": _arguments.samples(samples),
        "node": node,
        "uv_set": _arguments.integer("uv_set", uv_set, 0, 255),
        "margin": _arguments.integer("margin", margin, 0, _native.widest_margin),
        "green": _arguments.choice("green", green, ("up", "down")),
    }
    name = _arguments.path("path", path)
    made = material(gltf, gltf_roughness, gltf_occlusion, name, green)
    if made is not None and not has_model:
        raise ValueError("gltf: is for models; see onto")
    library()
    tiles = udims(graph, target, node, uv_set, (columns, rows), one=made is not None)
    model = os.path.abspath(target) if isinstance(target, str) else target  # which is its name on workers too
    wanted = Wanted("bake", (columns, rows), options, region=region, over=over, onto=model, udims=tiles)
    require_outputs(graph, wanted)
    layout = Layout(bits, straight, tiled, compression)
    chosen = None if frames is None else list(frames)
    means = Means(tile, memory, timeout, resume, _arguments.progress(progress))
    if made is not None:
        return bake_model(client, graph, name, wanted, chosen, layout, means, made)
    planned = plan(graph, name, wanted, chosen, layout, means)
    with connected(client) as running:
        return planned.run(running)


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
    groups = _native.layer_groups()
    chosen = () if layers is None else layers
    options = {
        "samples": _arguments.samples(samples),
        "camera": _arguments.text("camera", camera),
        "layers": groups if layers == "all" else _arguments.choices("layers", chosen, groups, none=True),
    }
    library()
    require_view(graph, camera)
    wanted = Wanted("render", size, options, region=region, strip=_arguments.flag("strip", strip))
    layout = Layout(bits, straight, tiled, compression)
    planned = plan(graph, path, wanted, frames, layout, Means(tile, memory, timeout, resume, progress))
    with connected(client) as running:
        return planned.run(running)

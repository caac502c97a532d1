"""What is baked onto, and the .glb file of it with the pictures in it."""

from __future__ import annotations

import contextlib
import dataclasses
import json
import os
from collections.abc import Iterator
from pathlib import Path

from .. import _arguments, _native
from .._arguments import PathLike
from .._errors import BakeError, GraphError, RenderError
from .._graph import Graph, _remake, _target
from .._mesh import Mesh
from ._assemble import Layout
from ._dask import Client, connected
from ._make import Means, Wanted, plan
from ._plan import Size


@dataclasses.dataclass(frozen=True)
class Material:
    """A .glb file, and the shaders whose values are maps of it beside the outputs, by what they show."""

    path: str
    shaders: dict[str, str]


def material(gltf: PathLike | None, roughness: str, occlusion: str, name: str, green: str) -> Material | None:
    """:param name: of the pictures"""
    given = {"roughness": roughness, "occlusion": occlusion}
    shaders = {each: _arguments.text(f"gltf_{each}", shader) for each, shader in given.items() if shader}
    if gltf is None:
        if shaders:
            raise ValueError(f"gltf_{next(iter(shaders))}: is for the material of gltf")
        return None
    path = _arguments.path("gltf", gltf)
    if not path.endswith(".glb"):
        raise ValueError(f"gltf: {path}: a model's name ends in .glb")
    if not name.endswith(".png"):
        raise ValueError("gltf: puts the pictures into the model as PNG; name them .png")
    if green == "down":
        raise ValueError("green: of a glTF file's normals it points up")
    for each in shaders:
        if "{output}" not in name:
            raise ValueError(f"gltf_{each}: makes a picture too; put {{output}} into the name of the picture")
    return Material(path, shaders)


@contextlib.contextmanager
def told_of(graph: Graph) -> Iterator[None]:
    """Puts the name of a graph's file before what is wrong with what is wanted of it."""
    try:
        yield
    except (BakeError, GraphError, RenderError) as error:
        raise type(error)(f"{graph._name}: {error}" if graph._name else str(error)) from None


def udims(graph: Graph, onto: PathLike | Mesh | None, node: str, uv_set: int, size: Size, *, one: bool) -> list[int]:
    """The tiles that a model lies on; [0] without a model.

    :param one: is what a material takes
    """
    if onto is None and not node:
        return [0]
    model = "mesh" if isinstance(onto, Mesh) else "" if onto is None else os.fspath(onto)
    told = f"{model}#{node}" if node else model
    with told_of(graph):
        tiles = graph.tiles(onto, node=node, uv_set=uv_set, width=size[0], height=size[1])
        if not tiles:
            raise BakeError(f"{told}: no texel of the picture is covered")
    if one and len(tiles) > 1:
        raise ValueError(f'gltf: a material takes one tile, and "{told}" lies on {len(tiles)}')
    return tiles


def require_outputs(graph: Graph, wanted: Wanted) -> None:
    """Raises BakeError where a graph, or what lies under it, can't give an output."""
    with told_of(graph):
        _native.require_channels(graph._document, wanted.outputs)
    if wanted.over is not None:
        with told_of(wanted.over):
            _native.require_ground(wanted.over._document, wanted.outputs)


def require_view(graph: Graph, camera: str) -> None:
    """Raises RenderError where a graph has nothing to render."""
    with told_of(graph):
        _native.require_view(graph._document, camera)


def bake_model(
    client: Client,
    graph: Graph,
    name: str,
    wanted: Wanted,
    frames: list[float] | None,
    layout: Layout,
    means: Means,
    made: Material,
) -> list[Path]:
    """Bakes the outputs, the maps that a model takes beside them, and the model.

    :param name: of the pictures
    """
    onto, node, uv_set = wanted.onto, wanted.options["node"], wanted.options["uv_set"]
    if frames is not None and len(set(frames)) > 1:
        raise ValueError("gltf: writes a model of one frame; it doesn't go with several")
    count = 1 + len(made.shaders)
    plans = [plan(graph, name, wanted, frames, layout, _part(means, 0, count))]
    grey = dataclasses.replace(layout, bits=8)
    valued = dataclasses.replace(wanted, options=wanted.options | {"output": ["value"], "green": "up"}, over=None)
    for output, shader in made.shaders.items():
        other = _with_output(graph, shader, f"gltf_{output}")
        file = name.replace("{output}", output)
        plans.append(plan(other, file, valued, frames, grey, _part(means, len(plans), count)))
    _native.require_writable(made.path)
    with connected(client) as running:
        files = [file for each in plans for file in each.run(running)]
    pictures = [*zip([*wanted.outputs, *made.shaders], map(str, files))]
    target = _target(onto, node)
    assert target is not None
    document = (graph if frames is None else graph.at(frames[0]))._document
    _native.write_model(document, made.path, target, node, uv_set, pictures)
    return [*files, Path(made.path)]


def _part(means: Means, index: int, count: int) -> Means:
    """Of one of several jobs."""
    whole = means.progress
    if whole is None:
        return means
    return dataclasses.replace(means, progress=lambda share: whole((index + share) / count))


def _with_output(graph: Graph, shader: str, argument: str) -> Graph:
    """A graph with another one of its shaders as the output, which has to have a value."""
    document = graph.to_dict()
    if shader not in document["shaders"]:
        hint = _native.nearest_hint(shader, list(document["shaders"]))
        raise ValueError(f'{argument}: there is no shader "{shader}"{hint}')
    text = json.dumps(document | {"output": shader})
    other = _remake(text, graph.folder, graph._name, graph._files, graph.frame)
    with told_of(graph):
        try:
            _native.require_channels(other._document, ["value"])
        except BakeError as error:
            raise BakeError(f"{argument}: {error}") from None
    return other

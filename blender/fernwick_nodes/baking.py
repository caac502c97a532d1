"""Bakes graphs onto objects, for scripts and for the buttons of the interface."""

from __future__ import annotations

import json
import os
from collections.abc import Callable, Mapping, Sequence
from dataclasses import dataclass
from pathlib import Path
from typing import TYPE_CHECKING, Any

import bpy

from . import images, materials
from .errors import Refusal
from .meshes import Arrays, active_uv, arrays_of, rigid
from .scene import scene_of

if TYPE_CHECKING:
    import fernwick
    import numpy as np
    from numpy.typing import NDArray

    Pictures = dict[str, NDArray[np.float32]]

Progress = Callable[[float], object]
MATERIAL_CHANNELS = ("color", "alpha", "normal")


@dataclass
class Job:
    """All that a bake onto an object needs, away from Blender's data: any thread may run it."""

    document: Mapping[str, Any]
    scene: fernwick.Scene
    folder: str
    files: Mapping[str, Any]
    name: str  # of the object
    arrays: Arrays
    linear: NDArray[np.float64]
    frame: float

    def graph(self) -> fernwick.Graph:
        import fernwick

        for element in self.scene.elements:
            if element.name == self.name:
                element.shape = self.arrays.mesh(self.linear)
        return fernwick.Graph(self.document, self.scene, self.folder, frame=self.frame, files=self.files)


def bake(
    thing: bpy.types.Object,
    graph: Any,
    size: int | tuple[int, int] = 1024,
    channels: str | Sequence[str] | None = None,
    *,
    samples: int = 1,
    margin: int = 16,
    uv_layer: str = "",
    tile: int | None = None,
    green: str = "up",
    threads: int = 0,
    progress: Progress | None = None,
) -> Pictures:
    """Shades the evaluated mesh of an object, in the scene as it stands at the current frame, into arrays.

    :param thing: the object; its modifiers count, and so do the places of all others, the lights and the camera
    :param graph: a tree of nodes, a shader or graph of the package `fernwick`, a document, or the file of one
    :param size: in pixels, width and height or both in one
    :param channels: such as "color", "alpha", "normal", "value"; without any, those of a material that the graph offers
    :param samples: of each pixel
    :param margin: continues what is covered by so many pixels
    :param uv_layer: the UV map that lays the picture out; without a name the one that Blender renders with
    :param tile: which UDIM tile, if there are several
    :param green: whether the green of normal maps points "up" or "down"
    :return: float32 by channel: (height, width, 4), or (height, width) of alpha, coverage and value. Row 0 is the top

    Raises Refusal and the errors of `fernwick`.
    """
    made = prepare(thing, graph, uv_layer).graph()
    width, height = _size(size)
    wanted = _channels(made, channels)
    return made.bake(
        width, height, wanted, node=thing.name, samples=samples, margin=margin, tile=tile, green=green,
        threads=threads, progress=progress,
    )  # fmt: skip


def tiles(thing: bpy.types.Object, graph: Any, uv_layer: str = "") -> list[int]:
    """The UDIM tiles that an object is laid out on, 1001 and so on."""
    return prepare(thing, graph, uv_layer).graph().tiles(node=thing.name)


def bake_images(
    thing: bpy.types.Object,
    graph: Any,
    size: int | tuple[int, int] = 1024,
    channels: str | Sequence[str] | None = None,
    *,
    name: str = "",
    folder: str = "",
    uv_layer: str = "",
    **arguments: Any,
) -> dict[str, bpy.types.Image]:
    """Bakes into images of Blender by channel, which are made or replaced. Several UDIM tiles become tiled images.

    :param name: begins the names of the images; without one that of the object
    :param folder: where files are put; without one images are kept in the .blend, and those of tiles beside it
    :param arguments: further ones of `bake`
    """
    made = prepare(thing, graph, uv_layer).graph()
    wanted = _channels(made, channels)
    width, height = _size(size)
    numbers = made.tiles(node=thing.name)
    if not numbers:
        raise Refusal(f'"{thing.name}" covers nothing of the picture: look at its UV map')
    pictures = {
        number: made.bake(width, height, wanted, node=thing.name, tile=number, **arguments) for number in numbers
    }
    title = name or thing.name
    if numbers == [1001]:
        return {
            channel: images.store(f"{title} {channel}", pictures[1001][channel], channel, folder) for channel in wanted
        }
    return {
        channel: images.store_tiles(
            f"{title} {channel}", {number: pictures[number][channel] for number in numbers}, channel, folder
        )
        for channel in wanted
    }


def bake_material(
    thing: bpy.types.Object,
    graph: Any,
    size: int | tuple[int, int] = 1024,
    *,
    name: str = "",
    uv_layer: str = "",
    **arguments: Any,
) -> bpy.types.Material:
    """Bakes what a Principled material takes, and makes or updates the material of the object with it.

    :param arguments: further ones of `bake_images`
    """
    baked = bake_images(thing, graph, size, None, name=name, uv_layer=uv_layer, **arguments)
    return materials.make(thing, baked, uv_layer or active_uv(thing), name)


def prepare(thing: bpy.types.Object, graph: Any, uv_layer: str = "") -> Job:
    """Takes from Blender all that a bake needs. On the main thread."""
    document, folder, files = document_of(graph)
    if thing.name not in bpy.context.scene.objects:
        raise Refusal(f'"{thing.name}" is not in this scene')
    depsgraph = bpy.context.evaluated_depsgraph_get()
    evaluated = thing.evaluated_get(depsgraph)
    linear = rigid(evaluated.matrix_world)[2]
    if abs(float(_determinant(linear))) < 1e-12:
        raise Refusal(f'"{thing.name}" has a scale of 0')
    arrays = arrays_of(thing, depsgraph, uv_layer, need_uv=True)
    scene = scene_of(depsgraph, document, {thing.name: None})  # type: ignore[dict-item]
    return Job(document, scene, folder, files, thing.name, arrays, linear, bpy.context.scene.frame_current)


def document_of(graph: Any) -> tuple[Mapping[str, Any], str, Mapping[str, Any]]:
    """The document of a graph in any form, without its scene, with its folder and the arrays and meshes it names."""
    import fernwick

    if isinstance(graph, bpy.types.NodeTree):
        from . import document

        return document.shading_document(graph), document.folder_of(graph), {}
    if isinstance(graph, (str, os.PathLike)):
        if not Path(graph).is_file():
            raise Refusal(f"There is no graph {graph}")
        graph = fernwick.Graph.load(graph)
    folder = os.getcwd()
    files: Mapping[str, Any] = {}
    if isinstance(graph, fernwick.Shader):
        graph = fernwick.Graph(graph)
    if isinstance(graph, fernwick.Graph):
        folder, files = str(graph.folder), graph.files
        graph = graph.to_dict()
    members = json.loads(json.dumps(graph)) if isinstance(graph, Mapping) else graph
    if not isinstance(members, dict):
        raise Refusal("A graph is a tree of nodes, a shader or graph of fernwick, a document or its file")
    members.pop("scene", None)
    return members, folder, files


def _channels(graph: fernwick.Graph, channels: str | Sequence[str] | None) -> list[str]:
    if channels is not None:
        return [channels] if isinstance(channels, str) else list(channels)
    offered = graph.outputs
    wanted = [channel for channel in MATERIAL_CHANNELS if channel in offered]
    if "color" not in offered:  # a surface's own colour, or a number as a grey
        wanted[:0] = [channel for channel in ("main", "value") if channel in offered][:1]
    return wanted


def _size(size: int | tuple[int, int]) -> tuple[int, int]:
    return (size, size) if isinstance(size, int) else (size[0], size[1])


def _determinant(linear: Any) -> Any:
    import numpy as np

    return np.linalg.det(linear)

"""Bakes graphs onto objects, for scripts and for the buttons of the interface."""

from __future__ import annotations

import functools
import json
import os
from collections.abc import Callable, Mapping, Sequence
from dataclasses import dataclass
from pathlib import Path
from typing import TYPE_CHECKING, Any

import bpy

from . import images, materials, tasks
from .errors import Refusal
from .meshes import Arrays, arrays_of, kept_arrays_of, rigid
from .scene import scene_of

if TYPE_CHECKING:
    import fernwick
    import numpy as np
    from numpy.typing import NDArray

    Pictures = dict[str, NDArray[np.float32]]

Progress = Callable[[float], object]
Channels = str | Sequence[str] | Callable[[tuple[str, ...]], list[str]] | None
"""Names of channels; or what chooses them of those that a graph offers; or None for those of a material."""
MOST_FACES = 50_000  # of a preview: reading more would be felt
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
    progress: Progress | None = None,
    **arguments: Any,
) -> dict[str, bpy.types.Image]:
    """Bakes into images of Blender by channel, which are made or replaced. Several UDIM tiles become tiled images.

    :param arguments: further ones of `images_task`
    """
    return tasks.run(images_task(thing, graph, size, channels, **arguments), progress)


def bake_material(
    thing: bpy.types.Object,
    graph: Any,
    size: int | tuple[int, int] = 1024,
    *,
    name: str = "",
    uv_layer: str = "",
    progress: Progress | None = None,
    **arguments: Any,
) -> bpy.types.Material:
    """Bakes what a Principled material takes, and makes or updates the material of the object with it.

    :param arguments: further ones of `images_task`
    """
    baked = bake_images(thing, graph, size, name=name, uv_layer=uv_layer, progress=progress, **arguments)
    return materials.make(thing, baked, uv_layer, name)


def bake_sequence(
    thing: bpy.types.Object,
    graph: Any,
    first: int,
    last: int,
    size: int | tuple[int, int] = 1024,
    channels: str | Sequence[str] | None = None,
    *,
    progress: Progress | None = None,
    **arguments: Any,
) -> dict[str, bpy.types.Image]:
    """Bakes the frames from the first to the last one into files, which become images of sequences by channel.

    :param arguments: further ones of `sequence_task`
    """
    return tasks.run(sequence_task(thing, graph, first, last, size, channels, **arguments), progress)


def images_task(
    thing: bpy.types.Object,
    graph: Any,
    size: int | tuple[int, int] = 1024,
    channels: Channels = None,
    *,
    name: str = "",
    folder: str = "",
    uv_layer: str = "",
    **arguments: Any,
) -> tasks.Task[dict[str, bpy.types.Image]]:
    """What `bake_images` does.

    :param name: begins the names of the images; without one that of the object
    :param folder: where files are put; without one images are kept in the .blend, and those of tiles beside it
    :param arguments: further ones of `bake`: samples, margin, green, threads
    """
    job = prepare(thing, graph, uv_layer)
    title = name or thing.name
    pictures: dict[int, Pictures] = yield lambda progress: _all_tiles(job, size, channels, progress, arguments)
    if list(pictures) == [1001]:
        only = pictures[1001]
        return {channel: images.store(f"{title} {channel}", only[channel], channel, folder) for channel in only}
    wanted = next(iter(pictures.values()))
    return {
        channel: images.store_tiles(
            f"{title} {channel}", {number: several[channel] for number, several in pictures.items()}, channel, folder
        )
        for channel in wanted
    }


def sequence_task(
    thing: bpy.types.Object,
    graph: Any,
    first: int,
    last: int,
    size: int | tuple[int, int] = 1024,
    channels: Channels = None,
    *,
    name: str = "",
    folder: str = "//fernwick",
    uv_layer: str = "",
    **arguments: Any,
) -> tasks.Task[dict[str, bpy.types.Image]]:
    """What `bake_sequence` does. The scene ends at the frame where it was."""
    if last < first:
        raise Refusal("The last frame comes before the first")
    before = bpy.context.scene.frame_current
    thing_name, tree_name = thing.name, graph.name if isinstance(graph, bpy.types.NodeTree) else ""
    title = name or thing_name
    paths: dict[str, Path] = {}
    try:
        for frame in range(first, last + 1):
            bpy.context.scene.frame_set(frame)
            job = prepare(object_of(thing_name), _tree_of(tree_name) if tree_name else graph, uv_layer)
            pictures: dict[int, Pictures] = yield functools.partial(_frame_tiles, job, size, channels, arguments)
            if len(pictures) > 1:
                raise Refusal("Sequences of several UDIM tiles aren't baked: choose a UV map within one tile")
            for channel, picture in next(iter(pictures.values())).items():
                path = images.save_frame(folder, title, channel, frame, picture)
                paths.setdefault(channel, path)
    finally:
        bpy.context.scene.frame_set(before)
    count = last - first + 1
    return {
        channel: images.sequence(f"{title} {channel} sequence", channel, path, folder, first, count)
        for channel, path in paths.items()
    }


def _frame_tiles(job: Job, size: Any, channels: Channels, arguments: Any, progress: Progress) -> dict[int, Pictures]:
    return _all_tiles(job, size, channels, progress, arguments)


def _all_tiles(
    job: Job, size: int | tuple[int, int], channels: Channels, progress: Progress, arguments: Mapping[str, Any]
) -> dict[int, Pictures]:
    """The pictures of all tiles that an object is laid out on. In any thread."""
    graph = job.graph()
    wanted = _channels(graph, channels)
    if not wanted:
        raise Refusal("There is nothing to bake: choose colour, alpha or normal")
    width, height = _size(size)
    numbers = graph.tiles(node=job.name, width=width, height=height)
    if not numbers:
        raise Refusal(f'"{job.name}" covers nothing of the picture: look at its UV map')

    def of_tile(i: int) -> Progress:
        return lambda share: progress((i + share) / len(numbers))

    return {
        number: graph.bake(width, height, wanted, node=job.name, tile=number, progress=of_tile(i), **arguments)
        for i, number in enumerate(numbers)
    }


def object_of(name: str) -> bpy.types.Object:
    """An object that was there a while ago: others may have come in between, and all that was held of Blender's data is
    gone after an undo."""
    thing = bpy.data.objects.get(name)
    if thing is None:
        raise Refusal(f'"{name}" is gone')
    return thing


def _tree_of(name: str) -> bpy.types.NodeTree:
    tree = bpy.data.node_groups.get(name)
    if tree is None:
        raise Refusal(f'The tree "{name}" is gone')
    return tree


def prepare(thing: bpy.types.Object, graph: Any, uv_layer: str = "", is_preview: bool = False) -> Job:
    """Takes from Blender all that a bake needs. On the main thread.

    :param is_preview: the mesh is that of the last time, if it hasn't changed, and may not be large
    """
    document, folder, files = document_of(graph)
    if thing.name not in bpy.context.scene.objects:
        raise Refusal(f'"{thing.name}" is not in this scene')
    depsgraph = bpy.context.evaluated_depsgraph_get()
    evaluated = thing.evaluated_get(depsgraph)
    linear = rigid(evaluated.matrix_world)[2]
    if abs(float(_determinant(linear))) < 1e-12:
        raise Refusal(f'"{thing.name}" has a scale of 0, or next to it: apply it')
    if is_preview:
        faces = len(getattr(evaluated.data, "polygons", ()))
        if faces > MOST_FACES:
            raise Refusal(f'"{thing.name}" has {faces} faces, too many to follow live: bake it, or show the UV square')
        arrays = kept_arrays_of(thing, depsgraph, uv_layer)
    else:
        arrays = arrays_of(thing, depsgraph, uv_layer, need_uv=True)
    scene = scene_of(depsgraph, document, {thing.name: None})
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


def _channels(graph: fernwick.Graph, channels: Channels) -> list[str]:
    if callable(channels):
        return channels(graph.outputs)
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

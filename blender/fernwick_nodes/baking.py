"""Bakes graphs onto objects, for scripts and for the buttons of the interface."""

from __future__ import annotations

import functools
import os
import sys
import warnings
from collections.abc import Callable, Mapping, Sequence
from dataclasses import dataclass, field
from pathlib import Path
from typing import TYPE_CHECKING, Any

import bpy

from . import given, images, materials, messages, tasks, tree as trees
from .errors import BakeWarning, Refusal
from .meshes import Arrays, arrays_of, kept_arrays_of, rigid_of, unwrapping
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
_FOLDER = str(Path(__file__).parent) + os.sep


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
    unwrapping: str  # how the object gets another UV map
    remarks: list[str] = field(default_factory=list)  # what there is to say of the pictures in the end

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
    options = given.options(samples=samples, margin=margin, green=green, threads=threads)
    job = prepare(thing, graph, uv_layer)

    def chosen(tiles: list[int]) -> list[int]:
        if tile is not None and tile not in tiles:
            raise Refusal(f'"{job.name}" lies on no tile {tile}, only on {_listed(tiles)}')
        if tile is None and len(tiles) > 1:
            raise Refusal(f'"{job.name}" lies on {_listed(tiles)}: choose one, or use bake_images for all')
        return tiles if tile is None else [tile]

    pictures = _pictures(job, size, channels, progress or _unheeded, options, chosen)
    _warn(job.remarks)
    return next(iter(pictures.values()))


def tiles(thing: bpy.types.Object, graph: Any, uv_layer: str = "") -> list[int]:
    """The UDIM tiles that an object is laid out on, 1001 and so on."""
    job = prepare(thing, graph, uv_layer)
    return job.graph().tiles(node=job.name)


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
    remarks: list[str] = []
    made = tasks.run(images_task(thing, graph, size, channels, remarks=remarks, **arguments), progress)
    _warn(remarks)
    return made


def bake_material(
    thing: bpy.types.Object,
    graph: Any,
    size: int | tuple[int, int] = 1024,
    *,
    name: str = "",
    uv_layer: str = "",
    shared: bool = False,
    progress: Progress | None = None,
    **arguments: Any,
) -> bpy.types.Material:
    """Bakes what a Principled material takes, and makes or updates the material of the object with it.

    :param shared: all objects that share the mesh or the material get it; else the others keep theirs
    :param arguments: further ones of `images_task`
    """
    remarks: list[str] = []
    made = tasks.run(
        images_task(
            thing, graph, size, name=name, uv_layer=uv_layer, shared=shared, remarks=remarks, **arguments
        ),
        progress,
    )  # fmt: skip
    material = materials.make(thing, made, uv_layer, name, shared)
    _warn(remarks + materials.remarks(thing, material))
    return material


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
    remarks: list[str] = []
    made = tasks.run(sequence_task(thing, graph, first, last, size, channels, remarks=remarks, **arguments), progress)
    _warn(remarks)
    return made


def images_task(
    thing: bpy.types.Object,
    graph: Any,
    size: int | tuple[int, int] = 1024,
    channels: Channels = None,
    *,
    name: str = "",
    folder: str | os.PathLike[str] = "",
    uv_layer: str = "",
    shared: bool = True,
    remarks: list[str] | None = None,
    **arguments: Any,
) -> tasks.Task[dict[str, bpy.types.Image]]:
    """What `bake_images` does.

    :param name: begins the names of the images; without one that of the object
    :param folder: where files are put; without one images are kept in the .blend, and those of tiles beside it
    :param shared: whether images that other objects show too are replaced, or stay beside new ones
    :param remarks: gets what there is to say
    :param arguments: further ones of `bake`: samples, margin, green, threads
    """
    options = given.options(**arguments)
    where = given.text("folder", folder)
    job = prepare(thing, graph, uv_layer)
    title = given.text("name", name) or job.name
    pictures: dict[int, Pictures] = yield lambda progress: _pictures(job, size, channels, progress, options)
    if remarks is not None:
        remarks += job.remarks
    place = images.Place(title, where, object_of(job.name), shared)
    if list(pictures) == [1001]:
        only = pictures[1001]
        return {channel: images.store(place, channel, only[channel]) for channel in only}
    wanted = next(iter(pictures.values()))
    return {
        channel: images.store_tiles(place, channel, {number: made[channel] for number, made in pictures.items()})
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
    folder: str | os.PathLike[str] = images.BESIDE,
    uv_layer: str = "",
    shared: bool = True,
    remarks: list[str] | None = None,
    **arguments: Any,
) -> tasks.Task[dict[str, bpy.types.Image]]:
    """What `bake_sequence` does. The scene ends at the frame where it was."""
    options = given.options(**arguments)
    first, last = given.whole("The first frame", first), given.whole("The last frame", last)
    if last < first:
        raise Refusal("The last frame comes before the first")
    before = bpy.context.scene.frame_current
    thing_name, tree_name = (
        given.object_name(thing),
        given.name_of(graph) if isinstance(graph, bpy.types.NodeTree) else "",
    )
    title, where = given.text("name", name) or thing_name, given.text("folder", folder) or images.BESIDE
    stems: dict[str, str] = {}
    try:
        for frame in range(first, last + 1):
            bpy.context.scene.frame_set(frame)
            job = prepare(object_of(thing_name), _tree_of(tree_name) if tree_name else graph, uv_layer)
            pictures: dict[int, Pictures] = yield functools.partial(_frame_pictures, job, size, channels, options)
            if remarks is not None:
                remarks += [text for text in job.remarks if text not in remarks]
            place = images.Place(title, where, object_of(thing_name), shared)
            for channel, picture in next(iter(pictures.values())).items():
                if channel not in stems:
                    stems[channel] = images.sequence_stem(place, channel)
                images.save_frame(stems[channel], channel, images.number_of(frame, first), picture)
    finally:
        bpy.context.scene.frame_set(before)
    count = last - first + 1
    return {channel: images.sequence(place, channel, stem, first, count) for channel, stem in stems.items()}


def _frame_pictures(job: Job, size: Any, channels: Channels, options: Any, progress: Progress) -> dict[int, Pictures]:
    def only(tiles: list[int]) -> list[int]:
        if len(tiles) > 1:
            raise Refusal(
                f'Blender has no sequences of tiles, and "{job.name}" lies on {_listed(tiles)}: choose a UV map within '
                "one tile, or bake stills with Images"
            )
        return tiles

    return _pictures(job, size, channels, progress, options, only)


def _pictures(
    job: Job,
    size: int | tuple[int, int],
    channels: Channels,
    progress: Progress,
    options: Mapping[str, Any],
    chosen: Callable[[list[int]], list[int]] = list,
) -> dict[int, Pictures]:
    """The pictures of the tiles that are chosen of those that an object is laid out on. In any thread."""
    if not callable(progress):
        raise Refusal("The progress is a function of a share from 0 to 1")
    width, height = given.size(size)
    with messages.heard() as heard:
        graph = job.graph()
        wanted = _channels(graph, channels)
        numbers = graph.tiles(node=job.name, width=width, height=height)
        left_out = job.arrays.left_out(width, height)
        if not numbers:
            raise Refusal(left_out or f'"{job.name}" covers nothing of the picture: {job.unwrapping}')
        numbers = chosen(numbers)

        def of_tile(i: int) -> Progress:
            return lambda share: progress((i + share) / len(numbers))

        made = {
            number: given.checked(
                graph.bake, width, height, wanted, node=job.name, tile=number, progress=of_tile(i), **options
            )
            for i, number in enumerate(numbers)
        }
    job.remarks += [*([left_out] if left_out else []), *heard]
    return made


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
    given.object_name(thing)
    document, folder, files = document_of(graph)
    given.text("uv_layer", uv_layer)
    if thing.name not in bpy.context.scene.objects:
        raise Refusal(f'"{thing.name}" is not in this scene')
    depsgraph = bpy.context.evaluated_depsgraph_get()
    evaluated = thing.evaluated_get(depsgraph)
    linear = rigid_of(evaluated)[2]
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
    return Job(
        document, scene, folder, files, thing.name, arrays, linear, bpy.context.scene.frame_current, unwrapping(thing)
    )


def document_of(graph: Any) -> tuple[Mapping[str, Any], str, Mapping[str, Any]]:
    """The document of a graph in any form, without its scene, with its folder and the arrays and meshes it names."""
    import fernwick

    if isinstance(graph, bpy.types.NodeTree):
        from . import document

        given.name_of(graph)
        if graph.bl_idname != trees.FernwickTree.bl_idname:
            raise Refusal(f'"{graph.name}" is no tree of Fernwick')
        return document.shading_document(graph), document.folder_of(graph), {}
    if isinstance(graph, (str, os.PathLike)):
        if not os.path.isfile(graph):
            raise Refusal(f"There is no graph {graph}")
        graph = fernwick.Graph.load(graph)
    if isinstance(graph, Mapping):
        graph = given.checked(fernwick.Graph, {key: value for key, value in graph.items() if key != "scene"})
    if isinstance(graph, fernwick.Shader):
        graph = fernwick.Graph(graph)
    if not isinstance(graph, fernwick.Graph):
        raise Refusal("A graph is a tree of nodes, a shader or graph of fernwick, a document or its file")
    members = graph.to_dict()
    members.pop("scene", None)
    return members, str(graph.folder), graph.files


def _channels(graph: fernwick.Graph, channels: Channels) -> list[str]:
    offered = graph.outputs
    if callable(channels):
        wanted = channels(offered)
        if not wanted:
            raise Refusal("There is nothing to bake: choose colour, alpha or normal")
        return wanted
    if channels is not None:
        names = [channels] if isinstance(channels, str) else list(channels) if isinstance(channels, Sequence) else []
        unknown = [name for name in names if name not in offered]
        if unknown or not names or len(set(names)) < len(names):
            asked = f": not {unknown[0]!r}" if unknown else ""
            raise Refusal(f"The channels are some of {', '.join(offered)}, each once{asked}")
        return names
    wanted = [channel for channel in MATERIAL_CHANNELS if channel in offered]
    if "color" not in offered:  # a surface's own colour, or a number as a grey
        wanted[:0] = [channel for channel in ("main", "value") if channel in offered][:1]
    return wanted


def _warn(remarks: list[str]) -> None:
    """Tells a script what there is to say, at its own line."""
    level, frame = 1, sys._getframe()
    while frame.f_back is not None and frame.f_code.co_filename.startswith(_FOLDER):
        level, frame = level + 1, frame.f_back
    for text in remarks:
        warnings.warn(text, BakeWarning, stacklevel=level)


def _listed(tiles: list[int]) -> str:
    return f"the tile{'s' * (len(tiles) > 1)} {', '.join(map(str, tiles[:8]))}{' and more' if len(tiles) > 8 else ''}"


def _unheeded(share: float) -> None:
    pass


def _determinant(linear: Any) -> Any:
    import numpy as np

    return np.linalg.det(linear)

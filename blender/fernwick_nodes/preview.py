"""The live preview: trees are read on the main thread, shaded in a thread of their own, and shown by a timer.

The newest change counts: it replaces one that waits, and ends one that is being shaded. What runs on the main thread is
short, and `slowest` tells how long it was at most.
"""

from __future__ import annotations

import threading
import time
from collections.abc import Callable
from dataclasses import dataclass, field
from typing import TYPE_CHECKING, Any

import bpy
import numpy as np

from . import baking, document, images, looks, meshes, messages, settings, tree as trees
from .errors import Refusal
from .scene import scene_of
from .tasks import Stopped

if TYPE_CHECKING:
    import fernwick
    from numpy.typing import NDArray

    Floats = NDArray[np.float32]

_PAUSE = 0.03  # seconds between two looks at what is to be done
_ICON = 256  # pixels of the longer side
_FIRST = 4  # a picture is first shaded this many times smaller, to be seen at once
_IMAGE = "Fernwick preview"
_MOST_DOUBTS = 2  # that are told


@dataclass
class _Result:
    tree: str
    pixels: Floats | None = None  # as images of Blender have them
    icon: NDArray[np.int32] | None = None
    icon_size: tuple[int, int] = (0, 0)
    seconds: float = 0
    error: str = ""
    doubts: tuple[str, ...] = ()
    is_whole: bool = True  # of the size that is wanted


@dataclass
class _Job:
    tree: str
    shade: Callable[[int, Callable[[float], None]], tuple[Floats, str]]
    size: int
    doubts: dict[str, None] = field(default_factory=dict)  # that were told of it


class _Worker:
    """Shades one job after the other in a thread that ends when nothing is left to do."""

    def __init__(self) -> None:
        self._lock = threading.Lock()
        self._waiting: dict[str, _Job] = {}  # by tree; the newest was added last
        self._running: _Job | None = None
        self._results: dict[str, _Result] = {}
        self._thread: threading.Thread | None = None

    def submit(self, job: _Job) -> None:
        with self._lock:
            self._waiting.pop(job.tree, None)
            self._waiting[job.tree] = job
            if self._thread is None:
                self._thread = threading.Thread(target=self._run, name="fernwick preview", daemon=True)
                self._thread.start()

    def take(self) -> list[_Result]:
        with self._lock:
            results, self._results = list(self._results.values()), {}
        return results

    @property
    def is_busy(self) -> bool:
        with self._lock:
            return self._thread is not None or bool(self._results)

    def stop(self) -> None:
        with self._lock:
            self._waiting.clear()
            self._running = None
            self._results.clear()
            thread = self._thread
        if thread is not None:
            thread.join()

    def _run(self) -> None:
        while True:
            with self._lock:
                if not self._waiting:
                    self._thread = self._running = None
                    return
                job = self._running = self._waiting.pop(list(self._waiting)[-1])
            small = max(job.size // _FIRST, 32)
            for size in ([small] if small < job.size else []) + [job.size]:
                if not self._shade(job, size):
                    break

    def _shade(self, job: _Job, size: int) -> bool:
        def progress(share: float) -> None:
            with self._lock:
                if self._running is not job or job.tree in self._waiting:
                    raise Stopped

        start = time.perf_counter()
        try:
            with messages.heard() as doubts:
                picture, channel = job.shade(size, progress)
            result = _result(job.tree, picture, channel, time.perf_counter() - start)
            job.doubts |= dict.fromkeys(doubts)
            result.doubts = tuple(job.doubts)
            result.is_whole = size == job.size
        except Stopped:
            return False
        except Exception as error:
            result = _Result(job.tree, error=messages.explained(error))
        with self._lock:
            if self._running is job:
                self._results[job.tree] = result
        return not result.error


_worker = _Worker()
_changed: dict[str, None] = {}  # trees by name that wait to be read; the newest was added last
_icons: Any = None  # of bpy.utils.previews
_asked: set[str] = set()  # trees that were drawn before they had a preview
_seconds: dict[str, float] = {}  # that the last preview of a tree took
slowest: dict[str, float] = {"read": 0.0, "show": 0.0}
"""The longest stays on the main thread, in seconds of its processor time."""


def changed(tree: bpy.types.NodeTree) -> None:
    """Has a tree, and all that use it as a group, shaded anew, soon."""
    from . import nodes

    for each in trees.trees():
        if each == tree or nodes.reaches(each, tree):
            _mark(each)
    _wake()


def scene_changed(only_animated: bool = False) -> None:
    """Has those trees shaded anew that look at the scene."""
    for tree in trees.trees():
        is_animated = tree.animation_data is not None
        if is_animated if only_animated else tree.settings.mode == "OBJECT" or _asks_scene(tree):
            _mark(tree)
    _wake()


def step() -> bool:
    """Does what is due on the main thread. Returns whether more is to come."""
    for name in list(_changed)[-1:]:
        del _changed[name]
        tree = bpy.data.node_groups.get(name)
        if tree is not None and tree.bl_idname == trees.FernwickTree.bl_idname:
            _timed("read", lambda: _read(tree))
    for result in _worker.take():
        _timed("show", lambda: _show(result))
    return bool(_changed) or _worker.is_busy


def finish(timeout: float = 60) -> None:
    """Waits until everything is shaded and shown."""
    end = time.monotonic() + timeout
    while step():
        if time.monotonic() > end:
            raise TimeoutError("the preview takes too long")
        time.sleep(0.002)


def image_of(tree: bpy.types.NodeTree) -> bpy.types.Image | None:
    """The image that holds the preview, for other editors and for materials."""
    return bpy.data.images.get(f"{_IMAGE} {tree.name}")


def draw(tree: bpy.types.NodeTree, layout: bpy.types.UILayout, scale: float, width: float) -> None:
    """The preview with what there is to say."""
    for text in messages.told(tree):
        draw_text(layout, text, width)
    if tree.name not in _seconds and tree.name not in _asked:
        _asked.add(tree.name)  # once: what can't be shaded isn't tried at each redraw
        changed(tree)
    if _icons is not None and tree.name in _icons:
        layout.template_icon(icon_value=_icons[tree.name].icon_id, scale=scale)
    if tree.name in _seconds:
        layout.label(text=f"{tree.settings.size} pixels in {_seconds[tree.name] * 1000:.0f} ms")


def draw_doubts(tree: bpy.types.NodeTree, layout: bpy.types.UILayout, width: float) -> None:
    if text := messages.doubts(tree):
        draw_text(layout, text, width, "INFO")


def register() -> None:
    global _icons
    import bpy.utils.previews

    _icons = bpy.utils.previews.new()


def unregister() -> None:
    global _icons
    _worker.stop()
    _changed.clear()
    if bpy.app.timers.is_registered(_tick):
        bpy.app.timers.unregister(_tick)
    if _icons is not None:
        bpy.utils.previews.remove(_icons)
        _icons = None
    _seconds.clear()


def forget() -> None:
    """For another file: nothing of the last one is shown."""
    _worker.stop()
    meshes.forget()
    _changed.clear()
    _seconds.clear()
    _asked.clear()
    if _icons is not None:
        _icons.clear()


def _mark(tree: bpy.types.NodeTree) -> None:
    _changed.pop(tree.name, None)
    _changed[tree.name] = None


def _wake() -> None:
    if not bpy.app.background and not bpy.app.timers.is_registered(_tick):
        bpy.app.timers.register(_tick, first_interval=_PAUSE)


def _tick() -> float | None:
    try:
        return _PAUSE if step() else None
    except Exception as error:  # a timer that throws prints a trace and is gone
        for tree in trees.trees():
            messages.tell(tree, "preview", messages.explained(error))
        return None


def _timed(what: str, work: Callable[[], None]) -> None:
    start = time.thread_time()
    work()
    slowest[what] = max(slowest[what], time.thread_time() - start)


def _read(tree: bpy.types.NodeTree) -> None:
    if not tree.settings.live:
        return
    if not _is_shown(tree):  # it is asked for when it is drawn again
        _asked.discard(tree.name)
        _seconds.pop(tree.name, None)
        return
    try:
        _worker.submit(_job(tree))
    except Exception as error:
        messages.tell(tree, "preview", messages.explained(error))
        _redraw()


def _is_shown(tree: bpy.types.NodeTree) -> bool:
    """Whether anybody sees the preview; without a window all count as seen."""
    if bpy.app.background:
        return True
    for window in bpy.context.window_manager.windows:
        for area in window.screen.areas:
            space = area.spaces.active
            if area.type == "NODE_EDITOR" and any(level.node_tree == tree for level in space.path):
                return True
            if area.type == "VIEW_3D" and space.show_region_ui and window.scene.fernwick_tree == tree:
                return True
    image = image_of(tree)
    return image is not None and image.users > 0


def _drop_images() -> None:
    """Takes away the previews of trees that are gone, unless somebody uses them."""
    names = {f"{_IMAGE} {tree.name}" for tree in trees.trees()}
    for image in [image for image in bpy.data.images if image.name.startswith(_IMAGE + " ")]:
        if image.name not in names and image.users == 0:
            bpy.data.images.remove(image)


def _job(tree: bpy.types.NodeTree) -> _Job:
    import fernwick

    choice = tree.settings
    size, wanted = int(choice.size), choice.channel
    if choice.mode == "OBJECT":
        thing = settings.target_of(tree)
        if thing is None:
            raise Refusal("Choose an object to bake onto")
        job = baking.prepare(thing, tree, choice.uv_layer, is_preview=True)
        return _Job(tree.name, _Onto(job, wanted), size)
    has_scene = "scene" in document.rest_of(tree)
    is_rendered = choice.mode == "SCENE"
    if is_rendered and not has_scene:
        raise Refusal("The tree comes from no document with a scene: show it on the UV square or on an object")
    use_own = is_rendered or (choice.own_scene and has_scene)
    members = document.shading_document(tree, with_scene=use_own)
    scene = None if use_own else scene_of(bpy.context.evaluated_depsgraph_get(), members)
    folder, frame = document.folder_of(tree), bpy.context.scene.frame_current

    def shade(side: int, progress: Callable[[float], None]) -> tuple[Floats, str]:
        graph = fernwick.Graph(members, scene, folder, frame=frame)
        if is_rendered:
            return graph.render(side, side, samples=4, progress=progress), "color"
        channel = _channel(graph, wanted)
        return graph.bake(side, side, channel, progress=progress), channel

    return _Job(tree.name, shade, size)


class _Onto:
    """Shades what would be baked onto an object; its mesh is made once for all sizes."""

    def __init__(self, job: baking.Job, wanted: str) -> None:
        self._job = job
        self._wanted = wanted
        self._graph: fernwick.Graph | None = None

    def __call__(self, side: int, progress: Callable[[float], None]) -> tuple[Floats, str]:
        if self._graph is None:
            self._graph = self._job.graph()
        channel = _channel(self._graph, self._wanted)
        tiles = self._graph.tiles(node=self._job.name)
        if not tiles:
            raise Refusal(f'"{self._job.name}" covers nothing of the picture: {self._job.unwrapping}')
        if text := self._job.arrays.left_out(side, side):
            messages.hear(text)
        picture = self._graph.bake(side, side, channel, node=self._job.name, tile=tiles[0], margin=2, progress=progress)
        return picture, channel


def _channel(graph: fernwick.Graph, wanted: str) -> str:
    offered = graph.outputs
    if wanted == "AUTO":
        return next((name for name in ("color", "main", "value") if name in offered), offered[0])
    if wanted not in offered:
        raise Refusal(f'The tree gives no "{wanted}", only {", ".join(offered)}')
    return wanted


def _asks_scene(tree: bpy.types.NodeTree) -> bool:
    return any(getattr(node, "table", "") in _SCENE_CLASSES for node in tree.nodes)


_SCENE_CLASSES = {
    "Lit", "Translucent", "Proximity", "Fresnel", "Iridescent", "Curvature", "Coordinate_Shift",
}  # fmt: skip


def _result(tree: str, picture: Floats, channel: str, seconds: float) -> _Result:
    """Makes a picture ready to be shown, away from the main thread."""
    import fernwick

    pixels = images.pixels_of(picture, channel)
    height, width = pixels.shape[:2]
    stride = max(1, -(-max(width, height) // _ICON))
    small = np.ascontiguousarray(pixels[::stride, ::stride])
    is_data = channel not in images.COLORS
    shown = np.rint(small * 255).clip(0, 255).astype(np.uint8) if is_data else fernwick.to_srgb(small)
    rows, columns = shown.shape[:2]
    if shown.shape[2] == 3:
        shown = np.concatenate([shown, np.full((rows, columns, 1), 255, np.uint8)], axis=2)
    alpha = shown[..., 3:].astype(np.uint16)
    checks = ((np.add.outer(np.arange(rows) // 8, np.arange(columns) // 8) % 2) * 30 + 60)[..., None]
    flat = ((shown[..., :3] * alpha + checks * (255 - alpha)) // 255).astype(np.uint8)
    opaque = np.concatenate([flat, np.full((rows, columns, 1), 255, np.uint8)], axis=2)
    packed = np.ascontiguousarray(opaque).view(np.int32).reshape(-1)
    return _Result(tree, pixels, packed, (columns, rows), seconds)


def _show(result: _Result) -> None:
    tree = bpy.data.node_groups.get(result.tree)
    if tree is None:
        return
    messages.tell(tree, "preview", result.error)
    messages.tell(tree, messages.DOUBTS, "; ".join(result.doubts[:_MOST_DOUBTS]))
    if result.pixels is not None and result.icon is not None:
        if result.is_whole:  # a size that comes and goes would cost more than the picture
            images.fill(_image(tree, *result.pixels.shape[1::-1]), result.pixels)
            _seconds[tree.name] = result.seconds
        if _icons is not None:
            icon = _icons[tree.name] if tree.name in _icons else _icons.new(tree.name)
            icon.image_size = result.icon_size
            icon.image_pixels.foreach_set(result.icon)
    _redraw()


def _image(tree: bpy.types.NodeTree, width: int, height: int) -> bpy.types.Image:
    image = image_of(tree)
    made = images.of_floats(image, f"{_IMAGE} {tree.name}")
    if made != image:
        _drop_images()
        made.alpha_mode = "CHANNEL_PACKED"
    images.resize(made, width, height)
    return made


def _redraw() -> None:
    for window in bpy.context.window_manager.windows:
        for area in window.screen.areas:
            if area.type in ("NODE_EDITOR", "IMAGE_EDITOR"):
                area.tag_redraw()
            elif area.type == "VIEW_3D":  # the scene needs no new look
                for region in area.regions:
                    if region.type == "UI":
                        region.tag_redraw()


def draw_text(layout: bpy.types.UILayout, text: str, width: float, sign: str = "ERROR") -> None:
    """A text in as many lines as it needs; only the first has the sign."""
    column = layout.column(align=True)
    column.scale_y = 0.8
    for i, line in enumerate(looks.wrapped(text, width - 24)):
        column.label(text=line, icon=sign if i == 0 else "BLANK1")

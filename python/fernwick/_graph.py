"""Graphs of shaders, and what is shaded with them."""

from __future__ import annotations

import json
import threading
from collections.abc import Iterator, Mapping
from pathlib import Path
from types import MappingProxyType
from typing import TYPE_CHECKING, Any, overload

from . import _arguments, _native
from ._arguments import PathLike, Progress, Region
from ._document import DocumentBuilder, File, names_relative_file
from ._errors import GraphError, GraphWarning, report, warn
from ._library import library
from ._mesh import Mesh
from ._numpy import is_array, numpy
from ._pixels import Pixels
from ._plain import dumps, pretty
from ._samples import Given, shade
from ._scene import Scene
from ._shader import Shader

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import ArrayLike, NDArray

    Floats = NDArray[np.float32]

Names = list[str] | tuple[str, ...]


class Graph:
    """A graph of shaders, ready to shade. It never changes, and any number of threads may use it.

    :param document: the shader whose answers are wanted, with all that is plugged in below it; or a document as
        mapping or JSON text, in which shaders, arrays (as the file of a picture) and meshes (as the file of a scene or
        model) may stand, and NumPy's numbers
    :param scene: what lies around it, instead of the scene that the document has
    :param folder: where relative file names start; the current one without it
    :param frame: of values that change over frames
    :param files: what `files` of another graph has, for a document that names it

    Raises GraphError, which names the place, what is expected and what came, and TypeError for values that no document
    holds. What may be a slip is told by a GraphWarning and in `doubts`.
    """

    __slots__ = ("_text", "_folder", "_name", "_files", "_frame", "_sequence", "_document", "_told")
    __hash__ = None  # type: ignore[assignment]

    def __init__(
        self,
        document: Shader | Mapping[str, Any] | str,
        scene: Scene | Mapping[str, Any] | None = None,
        folder: PathLike | None = None,
        *,
        frame: float = 1,
        files: Mapping[str, Any] | None = None,
    ) -> None:
        builder = DocumentBuilder()
        try:
            members = builder.document(document, scene)
        except RecursionError:
            raise GraphError("the document holds itself, or it is too deep: 256 shaders are the most") from None
        if files is not None and not isinstance(files, Mapping):
            raise TypeError(f"files: expected what another graph has, got {_arguments.shown(files)}")
        for token, file in ({} if files is None else files).items():
            builder.files[token] = Pixels.of(file, f"files[{token!r}]") if is_array(file) else file
            if not isinstance(builder.files[token], (Pixels, Mesh)):
                raise TypeError(f"files[{token!r}]: expected an array or a Mesh, got {type(file).__name__}")
        root = Path.cwd() if folder is None else Path(_arguments.path("folder", folder)).absolute()
        self._take(members if isinstance(members, str) else dumps(members), root, "", builder.files, frame)

    @classmethod
    def load(cls, path: PathLike, *, frame: float = 1) -> Graph:
        """The graph in a file, whose relative file names start at the folder of the file. Raises GraphError."""
        name = _arguments.path("path", path)
        graph = cls.__new__(cls)
        graph._take(_native.read_json(name), Path(name).absolute().parent, name, {}, frame)
        return graph

    def save(self, path: PathLike) -> None:
        """Writes the document as JSON, a file that appears whole or not at all. Relative file names stay as they are,
        so they are found if it lies in `folder`.

        Raises FileError; and ValueError for a graph that holds arrays or meshes, which no file can: save those by
        themselves and name the files in the document, or pickle the graph.
        """
        if self._files:
            raise ValueError(
                f"the graph holds what no JSON can: {', '.join(self._files)}; save it as files, or pickle it"
            )
        _native.write_file(_arguments.path("path", path), pretty(self.to_dict()) + "\n")

    def to_dict(self) -> dict[str, Any]:
        """The document, a copy. Arrays and meshes stand in it by their names in `files`."""
        return json.loads(self._text)  # type: ignore[no-any-return]

    def to_json(self) -> str:
        """The document as JSON. Arrays and meshes stand in it by their names in `files`."""
        return pretty(self.to_dict())

    @property
    def files(self) -> Mapping[str, NDArray[Any] | Mesh]:
        """The arrays and meshes of the document by the names that stand for them."""
        return MappingProxyType(
            {token: file.array if isinstance(file, Pixels) else file for token, file in self._files.items()}
        )

    @property
    def folder(self) -> Path:
        """Where relative file names start."""
        return self._folder

    @property
    def frame(self) -> float:
        """Of values that change over frames; an int where it is whole."""
        return self._frame

    @property
    def outputs(self) -> tuple[str, ...]:
        """What `bake` can give of this graph, such as "color" and "normal"."""
        return tuple(self._document.outputs)

    @property
    def operations(self) -> tuple[str, ...]:
        """What `shade` can ask of this graph: some of "value", "color", "vector" and "surface"."""
        return tuple(self._document.operations)

    @property
    def doubts(self) -> tuple[str, ...]:
        """What is taken as it is and may yet be a slip."""
        return tuple(self._document.doubts)

    @property
    def cameras(self) -> tuple[str, ...]:
        """The cameras that `render` can look through."""
        return tuple(self._document.cameras)

    def at(self, frame: float) -> Graph:
        """The same graph at another frame. Raises GraphError where the values of the frame make none."""
        graph = object.__new__(Graph)
        graph._text, graph._folder, graph._name, graph._files = self._text, self._folder, self._name, self._files
        graph._sequence, graph._told = self._sequence, self._told
        graph._show(frame)
        return graph

    def frames(self, first: float, last: float, step: float = 1) -> Iterator[Graph]:
        """The graph at each frame from the first to the last one, both included. Files are read once for all."""
        start = _arguments.number("first", first)
        end = _arguments.number("last", last, start)
        stride = _arguments.number("step", step, 0, above=True)
        count = int((end - start) / stride + 1e-9) + 1
        return (self.at(start + i * stride) for i in range(count))

    @overload
    def bake(
        self,
        width: int = ...,
        height: int | None = ...,
        output: str = ...,
        *,
        samples: int = ...,
        region: Region | None = ...,
        onto: PathLike | Mesh | None = ...,
        node: str = ...,
        uv_set: int = ...,
        tile: int | None = ...,
        margin: int = ...,
        over: Graph | Shader | None = ...,
        green: str = ...,
        threads: int = ...,
        progress: Progress | None = ...,
    ) -> Floats:
        ...

    @overload
    def bake(
        self,
        width: int,
        height: int | None,
        output: Names,
        *,
        samples: int = ...,
        region: Region | None = ...,
        onto: PathLike | Mesh | None = ...,
        node: str = ...,
        uv_set: int = ...,
        tile: int | None = ...,
        margin: int = ...,
        over: Graph | Shader | None = ...,
        green: str = ...,
        threads: int = ...,
        progress: Progress | None = ...,
    ) -> dict[str, Floats]:
        ...

    @overload
    def bake(
        self,
        width: int = ...,
        height: int | None = ...,
        *,
        output: Names,
        samples: int = ...,
        region: Region | None = ...,
        onto: PathLike | Mesh | None = ...,
        node: str = ...,
        uv_set: int = ...,
        tile: int | None = ...,
        margin: int = ...,
        over: Graph | Shader | None = ...,
        green: str = ...,
        threads: int = ...,
        progress: Progress | None = ...,
    ) -> dict[str, Floats]:
        ...

    def bake(
        self,
        width: int = 512,
        height: int | None = None,
        output: str | Names = "color",
        *,
        samples: int = 1,
        region: Region | None = None,
        onto: PathLike | Mesh | None = None,
        node: str = "",
        uv_set: int = 0,
        tile: int | None = None,
        margin: int = 16,
        over: Graph | Shader | None = None,
        green: str = "up",
        threads: int = 0,
        progress: Progress | None = None,
    ) -> Floats | dict[str, Floats]:
        """Shades the UV square, or a model laid out by its UV, into an array.

        Row 0 is the top; U runs to the right and V up. Colours are linear light with a straight alpha.

        :param width: in pixels, 1 to 65536
        :param height: in pixels; without it the width
        :param output: one of `outputs`; or several, which are shaded in one pass
        :param samples: of each pixel; one lies at its centre
        :param region: the only part that is wanted, to the bit what the whole picture has there
        :param onto: a model's file or a mesh, instead of the square
        :param node: of the model, with what lies below it; without `onto`, an element of the graph's own scene
        :param uv_set: by which the picture of a model is laid out
        :param tile: which UDIM tile of a model with several, 1001 and so on; see `tiles`
        :param margin: continues what a model covers by so many pixels, 0 to 128
        :param over: what lies under colours
        :param green: whether the green of a normal map points "up", along V, or "down"
        :param threads: 0 for one a processor; the array is the same to the bit for any number
        :param progress: is called with the share that is done
        :return: float32 (height, width, 4); (height, width) of alpha, coverage and value. By name for several outputs

        Raises BakeError, GraphError, ModelError, ValueError and TypeError, and KeyboardInterrupt at Ctrl-C.
        """
        target = _target(onto, _arguments.text("node", node))
        columns, rows = _arguments.size(width, height, target is not None)
        names = _arguments.choices("output", output, self.outputs)
        for name, value, usual in (("tile", tile, None), ("uv_set", uv_set, 0), ("margin", margin, 16)):
            if target is None and value != usual:
                raise ValueError(f"{name}: is for models; see onto")
        ground = Graph(over) if isinstance(over, Shader) else over
        if ground is not None and not isinstance(ground, Graph):
            raise TypeError(f"over: expected a Graph or a shader, got {type(over).__name__}")
        arguments = (
            self._document,
            columns,
            rows,
            names,
            _arguments.samples(samples),
            _arguments.region(region, columns, rows),
            _arguments.choice("green", green, ("up", "down")) == "down",
            None if ground is None else ground._document,
            target,
            node,
            _arguments.integer("uv_set", uv_set, 0, 255),
            0 if tile is None else _arguments.integer("tile", tile, 1001, 9999),
            _arguments.integer("margin", margin, 0, _native.widest_margin),
            _arguments.threads(threads),
            _arguments.progress(progress),
        )
        numpy()
        library()
        pictures = _native.bake(*arguments)
        report()
        return pictures[0] if isinstance(output, str) else dict(zip(names, pictures))

    def tiles(
        self,
        onto: PathLike | Mesh | None = None,
        *,
        node: str = "",
        uv_set: int = 0,
        width: int = 512,
        height: int | None = None,
    ) -> list[int]:
        """The UDIM tiles that a model is laid out on, 1001 and so on, ascending; arguments as of `bake`."""
        columns, rows = _arguments.size(width, height, True)
        target = _target(onto, _arguments.text("node", node))
        if target is None:
            raise ValueError("onto: expected a model, or a node of the graph's own scene")
        library()
        return _native.tiles(self._document, columns, rows, target, node, _arguments.integer("uv_set", uv_set, 0, 255))

    @overload
    def render(
        self,
        width: int = ...,
        height: int | None = ...,
        *,
        camera: str = ...,
        samples: int = ...,
        layers: None = ...,
        region: Region | None = ...,
        threads: int = ...,
        progress: Progress | None = ...,
    ) -> Floats:
        ...

    @overload
    def render(
        self,
        width: int = ...,
        height: int | None = ...,
        *,
        layers: str | Names,
        camera: str = ...,
        samples: int = ...,
        region: Region | None = ...,
        threads: int = ...,
        progress: Progress | None = ...,
    ) -> dict[str, Floats]:
        ...

    def render(
        self,
        width: int = 512,
        height: int | None = None,
        *,
        camera: str = "",
        samples: int = 4,
        layers: str | Names | None = None,
        region: Region | None = None,
        threads: int = 0,
        progress: Progress | None = None,
    ) -> Floats | dict[str, Floats]:
        """Renders the graph's scene.

        :param width: in pixels, 1 to 65536
        :param height: in pixels; without it the width
        :param camera: one of `cameras`; without it the document's, or else the first
        :param samples: of each pixel
        :param layers: groups of numbers of the surfaces that were hit first, such as "second" and "normal", or "all"
        :param region: the only part that is wanted, to the bit what the whole picture has there
        :param threads: 0 for one a processor; the array is the same to the bit for any number
        :param progress: is called with the share that is done
        :return: float32 (height, width, 4), linear light with a straight alpha. With layers by name: "color" and each
            group, (height, width) or (height, width, numbers)

        Raises RenderError, GraphError, ValueError and TypeError, and KeyboardInterrupt at Ctrl-C.
        """
        columns, rows = _arguments.size(width, height)
        groups = _native.layer_groups()
        chosen = () if layers is None else layers
        wanted = groups if layers == "all" else _arguments.choices("layers", chosen, groups, none=True)
        view = _arguments.text("camera", camera)
        if view:
            _arguments.choice("camera", view, self.cameras)
        arguments = (
            self._document,
            columns,
            rows,
            view,
            _arguments.samples(samples),
            wanted,
            _arguments.region(region, columns, rows),
            _arguments.threads(threads),
            _arguments.progress(progress),
        )
        numpy()
        library()
        pictures = _native.render(*arguments)
        report()
        return pictures["color"] if layers is None else pictures

    def shade(
        self,
        *,
        uv: ArrayLike | None = None,
        point: ArrayLike | None = None,
        normal: ArrayLike | None = None,
        point_local: ArrayLike | None = None,
        normal_local: ArrayLike | None = None,
        deriv_u: ArrayLike | None = None,
        deriv_v: ArrayLike | None = None,
        element: str = "",
        operation: str | None = None,
        progress: Progress | None = None,
    ) -> np.recarray[Any, Any]:
        """Asks the graph's output for samples, in order, by one graph: what shaders carry goes from each to the next.

        All arrays have any leading shape, and are broadcast against each other: `uv` of (480, 640, 2) goes with a
        `normal` of (3,). What isn't given is as on the unit square:

        :param uv: (..., 2); without it the X and Y of the local point, or 0.5, 0.5 when no point is given either
        :param point: (..., 3) in world space; without it the local point, taken to the world
        :param normal: (..., 3) in world space; without it the local normal, turned with the element
        :param point_local: (..., 3) in the space of the element; without it the point, taken there, or (u, v, 0)
        :param normal_local: (..., 3); without it the normal, turned back, or (0, 0, 1)
        :param deriv_u: (..., 3), how the point moves with U, in world space; without it the element's X axis
        :param deriv_v: (..., 3), with V; without it the element's Y axis
        :param element: what the samples lie on; without it the shaded object of the scene
        :param operation: one of `operations`; without it the first there is of color, value, vector and surface
        :param progress: is called with the share that is done
        :return: a record array of the leading shape, whose float32 fields are the numbers of the operation:
            `answer.red`, or `answer["red"]`. Flags are 0 or 1. Of a single sample one record

        Raises GraphError, ValueError and TypeError, and KeyboardInterrupt at Ctrl-C.
        """
        asked = self._operation(operation)
        given = Given(uv, point, normal, point_local, normal_local, deriv_u, deriv_v)
        answers = shade(
            self._document, asked, _arguments.text("element", element), given, _arguments.progress(progress)
        )
        report()
        return answers

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Graph):
            return NotImplemented
        if self is other:
            return True
        mine, yours = self.to_dict(), other.to_dict()
        if self._frame != other._frame or mine != yours or self._files != other._files:
            return False
        return self._folder == other._folder or not names_relative_file(mine)

    def __reduce__(self) -> tuple[Any, ...]:
        return _remake, (self._text, self._folder, self._name, self._files, self._frame)

    def __repr__(self) -> str:
        document = self.to_dict()
        output, shaders = document["output"], document["shaders"]
        kind = shaders[output].get("class") or shaders[output].get("source")
        count = f"{len(shaders)} shader{'' if len(shaders) == 1 else 's'}"
        name = f"{Path(self._name).name}: " if self._name else ""
        return f"<Graph {name}{output}: {kind}, {count}, frame {self._frame:g}>"

    def _take(
        self, text: str, folder: Path, name: str, files: dict[str, File], frame: float, is_quiet: bool = False
    ) -> None:
        self._text = text
        self._folder = folder
        self._name = name
        self._files = files
        pictures = {token: file.native for token, file in files.items() if isinstance(file, Pixels)}
        meshes = {token: file._handle for token, file in files.items() if isinstance(file, Mesh)}
        self._sequence = _native.Sequence(text, name, str(folder), pictures, meshes)
        self._told = _Told()
        self._show(frame, is_quiet)

    def _show(self, frame: float, is_quiet: bool = False) -> None:
        self._frame = _arguments.frame("frame", frame)
        self._document = self._sequence.at(self._frame)
        untold = self._told.new([*self._document.doubts, *self._document.notices])
        if not is_quiet:
            warn(untold, GraphWarning)

    def _operation(self, operation: str | None) -> str:
        if operation is not None:
            return _arguments.choice("operation", operation, self.operations)
        return next(name for name in ("color", "value", "vector", "surface") if name in self._document.operations)


class _Told:
    """What a graph has warned of at any of its frames."""

    def __init__(self) -> None:
        self._texts: set[str] = set()
        self._lock = threading.Lock()

    def new(self, texts: list[str]) -> list[str]:
        with self._lock:
            untold = [text for text in dict.fromkeys(texts) if text not in self._texts]
            self._texts.update(untold)
            return untold


def _remake(text: str, folder: Path, name: str, files: dict[str, File], frame: float) -> Graph:
    graph = Graph.__new__(Graph)
    graph._take(text, folder, name, files, frame, is_quiet=True)  # it was told where it was made
    return graph


def _target(onto: PathLike | Mesh | None, node: str) -> str | _native.Mesh | None:
    """What is baked onto: "" is the graph's own scene."""
    if onto is None:
        return "" if node else None
    return onto._handle if isinstance(onto, Mesh) else _arguments.path("onto", onto)

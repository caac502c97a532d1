"""The compiled part of the package: what it takes and gives, without any comfort.

Colours are linear light with a straight alpha, float32; pictures have row 0 at the top. Functions that shade release
the interpreter's lock, ask `progress` at most every 50 ms with the share that is done, and can be interrupted.
"""

from collections.abc import Callable, Mapping, Sequence as Several
from typing import Any

import numpy as np
from numpy.typing import NDArray

Floats = NDArray[np.float32]
Progress = Callable[[float], object] | None
Region = tuple[int, int, int, int] | None  # left, top, right, bottom, in pixels; the ends aren't in it

class Error(Exception): ...
class GraphError(Error, ValueError): ...
class BakeError(Error, ValueError): ...
class RenderError(Error, ValueError): ...
class ModelError(Error, ValueError): ...
class FileError(Error, OSError): ...
class LibraryError(Error, OSError): ...

version: str

def set_library(path: str) -> None:
    """The library to load. Raises LibraryError when it can't be, or when another one is loaded already."""

def library_path() -> str:
    """The loaded library; empty before it is."""

def class_names() -> list[str]: ...
def source_names() -> list[str]: ...
def describe(name: str) -> str:
    """The same JSON as `fernwick describe NAME --json`; before the library is loaded without defaults and needs.
    KeyError without such a name.

    Each field has name, type, label, help, default, and where it has them unit, minimum, maximum, loose, choices,
    onlyWith, derived. Elements of arrays are fields of their own, such as fRange[3].
    """

def layout(name: str) -> str:
    """The rows of a class's or source's table as JSON: a list of {"name", "counts", "field"} and, of nested records,
    "rows" of the same form. "counts" is empty but for arrays, outer dimension first. "field" is as in `describe`, without
    a default; of an array it is the first element's."""

def check_field(table: str, address: str, json: str, shaders: Several[str]) -> None:
    """Reads one member of a shader as a document has it. Raises GraphError that begins with the address.

    shaders: the names that a slot may take.
    """

def nearest_hint(name: str, known: Several[str]) -> str:
    """Such as `; did you mean "fMode"?`, or nothing when no known name is like it."""

def hex_color(text: str) -> list[float] | None:
    """A colour as the web writes it, such as #c83c14: linear light and a straight alpha. None for any other text."""

def channel_names() -> list[str]:
    """What can be baked: color, main, alpha, second, third, fourth, normal, coverage, value, lit."""

def has_ground(channel: str) -> bool:
    """Whether it is a colour, under which another graph can lie."""

def layer_groups() -> list[str]:
    """What can be rendered beside the colour, such as second and normal."""

def layers(groups: Several[str]) -> list[str]:
    """The layers of some groups as pictures name them, such as second.R, in the order of the numbers of `render`."""

def operations() -> dict[str, list[str]]:
    """The operations of shaders, value, color, vector and surface, and the names of the numbers each answers."""

class Picture:
    """Pixels for a `picture` source."""

    def __init__(self, pixels: NDArray[Any]) -> None:
        """pixels: (height, width), or (height, width, 1 to 4); uint8, uint16 or float32. Integers are taken as those of
        a file: encoded as sRGB unless the source says otherwise. ValueError, TypeError."""
    def array(self) -> NDArray[Any]:
        """A read-only view of what was given."""

class Mesh:
    def __init__(
        self,
        points: Floats,  # (n, 3)
        triangles: NDArray[np.uint32],  # (m, 3)
        uvs: Several[Floats],  # sets of (n, 2); none for the place in the bounding box
        normals: Floats | None,  # (n, 3); None for flat triangles
    ) -> None:
        """ValueError for wrong shapes, corners beyond the points, and numbers that aren't finite."""
    @staticmethod
    def read(path: str, z_up: bool, scale: float) -> Mesh:
        """All meshes of a file as one. ModelError."""
    points: Floats
    triangles: NDArray[np.uint32]
    uvs: list[Floats]
    normals: Floats | None

class Document:
    """A graph at one frame. Never changes; any number of threads may use it."""

    outputs: list[str]  # the channels that can be baked
    operations: list[str]  # that the output offers
    files: list[str]  # that were read for it, with those that they name
    doubts: list[str]  # what may be a slip
    notices: list[str]  # what its scene's files lack
    cameras: list[str]

class Sequence:
    """A graph over frames."""

    def __init__(
        self, json: str, name: str, folder: str, pictures: Mapping[str, Picture], meshes: Mapping[str, Mesh]
    ) -> None:
        """name: for errors, may be empty. folder: where relative file names start. pictures, meshes: what documents
        name as the `file` of a picture, a scene or a shape of the kind `model` instead of a file, by that name."""
    has_keys: bool
    def at(self, frame: float) -> Document:
        """Raises GraphError."""

def write_file(path: str, text: str) -> None:
    """Writes a file, whole or not at all, as the host writes all of its files. Raises FileError."""

def read_json(path: str) -> str:
    """The text of a graph's file, read and parsed as the command does. Raises GraphError, which names the file."""

def apply_settings(json: str, sets: Several[str], plugs: Several[str], tell: Callable[[str], object]) -> str:
    """A document with fields set and shaders plugged in, as the command's --set and --plug take them. Relative files are
    found from the current folder. ValueError, whose text starts with the option.

    tell: is told of what is given twice.
    """

def read_ground(over: str) -> tuple[str, str]:
    """The graph that the command's --over names, and its file; empty for a source. ValueError for a source that isn't
    one. Raises GraphError for a file."""

widest_margin: int
longest_side_onto: int  # of a picture of a model, in pixels

def bake(
    document: Document,
    width: int,
    height: int,
    channels: Several[str],
    samples: int,
    region: Region,
    green_down: bool,  # of normal maps
    over: Document | None,  # what lies under colours
    onto: str | Mesh | None,  # a model's file or a mesh; "" for the scene that the graph has; None for the unit square
    node: str,  # of the model; empty for all of it
    uv_set: int,
    tile: int,  # 1001 and so on; 0 for the only one
    margin: int,
    threads: int,  # 0 for one a processor
    progress: Progress,
) -> list[Floats]:
    """By channel (height, width, 4), or (height, width) of numbers: alpha, coverage, value.

    Raises GraphError, BakeError, ModelError; KeyboardInterrupt within a tenth of a second.
    """

def tiles(document: Document, width: int, height: int, onto: str | Mesh, node: str, uv_set: int) -> list[int]:
    """The numbers of the tiles that a model is laid out on, ascending."""

def require_channels(document: Document, channels: Several[str]) -> None:
    """Raises BakeError or GraphError for what `bake` can't make of a document."""

def require_ground(over: Document, channels: Several[str]) -> None:
    """The same for what lies under some channels."""

def write_model(
    document: Document, path: str, onto: str | Mesh, node: str, uv_set: int, pictures: Several[tuple[str, str]]
) -> None:
    """Writes what is baked onto as a .glb file with pictures in it.

    pictures: output and file; of the outputs color, main, normal, roughness and occlusion go into the model.

    Raises GraphError, ModelError, FileError.
    """

def render(
    document: Document,
    width: int,
    height: int,
    camera: str,  # empty for the document's, or else the first
    samples: int,
    layers: Several[str],  # groups
    region: Region,
    threads: int,
    progress: Progress,
) -> dict[str, Floats]:
    """ "color", (height, width, 4), and each group of layers, (height, width) or (height, width, numbers)."""

def require_view(document: Document, camera: str) -> None:
    """Raises RenderError or GraphError for what `render` can't make of a document."""

def shade(
    document: Document,
    operation: str,
    element: str,  # that the samples lie on; empty for the shaded object
    count: int,
    uv: Floats | None,  # (count, 2)
    point: Floats | None,  # (count, 3), world
    normal: Floats | None,
    point_local: Floats | None,  # of the element
    normal_local: Floats | None,
    deriv_u: Floats | None,  # world
    deriv_v: Floats | None,
    numbers: Floats,  # (count, numbers of the operation), is written
    progress: Progress,
) -> None:
    """Shades samples in order, by one graph. What isn't given follows from what is, or is as on the unit square."""

def read_picture(path: str, encoding: str, alpha: str) -> Floats:
    """A picture as a `picture` source reads it: (height, width, 4). encoding: "", "srgb", "linear"; alpha: "",
    "straight", "premultiplied". Raises FileError."""

def write_picture(
    path: str,
    pixels: Floats,  # (height, width, 4)
    content: str,  # color, value or normal
    bits: int,  # 0 for the usual
    straight: bool,
    tiled: bool,
    compression: str,
    threads: int,
) -> None: ...

class RowWriter:
    """A picture file that is written from the top, some rows at a time; arguments as of `write_picture`. The file appears
    when it is finished, whole, and not at all when it is abandoned or forgotten."""

    def __init__(
        self,
        path: str,
        width: int,  # of the whole picture
        height: int,
        region: Region,  # the only part that there is
        content: str,
        layers: Several[str],  # names of the layers beside the colours, which only an .exr holds
        bits: int,
        straight: bool,
        tiled: bool,
        compression: str,
        threads: int,
    ) -> None: ...
    def write(self, rows: Floats, layers: Several[Floats]) -> None:
        """rows: (some, width, 4); of each layer (some, width). Raises FileError, ValueError."""
    def finish(self) -> None: ...
    def abandon(self) -> None: ...

def require_fit(path: str, bits: int = ..., straight: bool = ..., tiled: bool = ..., compression: str = ...) -> None:
    """Raises FileError for a name that no picture has, and a layout that isn't one of its format."""

def require_writable(path: str) -> None:
    """Raises FileError for a file that can't be written. Folders may be missing."""

def is_stream(path: str) -> bool:
    """Whether a name stands for stdout, a pipe or a device."""

def holds_layers(path: str) -> bool: ...
def compressions() -> list[str]: ...
def encode(pixels: Floats, content: str) -> NDArray[np.uint8]:
    """The integers that a PNG of 8 bits holds of pixels of the shape (height, width, 4)."""

def validation_checks() -> list[tuple[str, str]]:
    """The names of all checks, and what each protects."""

def validate(
    path: str, check: str, class_name: str, seed: int, records: int, time_limit: float
) -> list[dict[str, str]]:
    """Findings of one check, each in a copy of this process, which must have one thread: to be called in a process that
    has done nothing else, such as `python -m fernwick._validator`. With an empty name only looks whether the library
    can be loaded. Raises LibraryError when it can't be, KeyError without such a check or class."""

def take_reports() -> list[str]:
    """What shaders have reported since the last call, each text once."""

def reciprocals() -> str:
    """A hash of the processor's approximate reciprocals and roots, with which rays begin and which makers of processors
    round differently. Empty for one that has none."""

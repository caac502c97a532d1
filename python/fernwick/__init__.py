"""The Fernwick shaders in Python: build graphs, bake and render them into NumPy arrays, ask them for samples.

    import fernwick

    cloth = fernwick.Weave(
        fRepeatU=4,
        fRepeatV=4,
        fWarpSubShader=fernwick.Color("#c83c14"),
        fWeftSubShader=fernwick.Color("#f0e0b0"),
    )
    picture = fernwick.Graph(cloth).bake(512)  # float32 (512, 512, 4): linear light, straight alpha
    fernwick.save("cloth.png", picture)

`classes()` and `describe("Weave")` tell what there is; each class and source has a class of Python with its fields.
"""

from __future__ import annotations

from . import _shaders
from ._arguments import PathLike, Progress, Region
from ._classes import Field
from ._errors import (
    BakeError,
    Error,
    GraphError,
    GraphWarning,
    LibraryError,
    ModelError,
    FileError,
    RenderError,
    ShaderWarning,
)
from ._graph import Graph
from ._keyed import Keyed
from ._library import library, set_library
from ._mesh import Mesh
from ._native import version as __version__
from ._pictures import load_picture, save, to_srgb
from ._scene import (
    Box,
    Camera,
    Element,
    Light,
    Look,
    Model,
    Plane,
    Saddle,
    Scene,
    SceneFile,
    Shaded,
    Sphere,
    Torus,
)
from ._shader import Shader
from ._shaders import *  # noqa: F403
from ._tables import Choice, ClassDescription, FieldDescription, classes, describe, sources
from ._validation import Check, Finding, Report, validate
from ._views import Array, Record

__all__ = [
    "Array", "BakeError", "Box", "Camera", "Check", "Choice", "ClassDescription", "Element", "Error", "Field",
    "FieldDescription", "FileError", "Finding", "Graph", "GraphError", "GraphWarning", "Keyed", "LibraryError", "Light", "Look",
    "Mesh", "Model", "ModelError", "PathLike", "Plane", "Progress", "Record", "Region", "RenderError",
    "Report", "Saddle", "Scene", "SceneFile", "Shaded", "Shader", "ShaderWarning", "Sphere", "Torus", "__version__",
    "classes", "describe", "library", "load_picture", "save", "set_library", "sources", "to_srgb", "validate",
]  # fmt: skip
__all__ += _shaders.__all__

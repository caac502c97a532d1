"""The Fernwick shaders in Blender: a node editor with a live preview, baked onto objects."""

import sys

bl_info = {
    "name": "Fernwick Shaders",
    "author": "Fernwick",
    "version": (1, 0, 0),
    "blender": (3, 4, 0),
    "location": "Node editor of the type Fernwick; sidebar of the 3D view",
    "description": "Nineteen shaders as nodes, with a live preview, baked onto objects",
    "category": "Node",
}

if "library" in locals():  # read again, for Reload Scripts or another version: so is all below it
    for _name in [name for name in sys.modules if name.startswith(f"{__name__}.")]:
        del sys.modules[_name]
        globals().pop(_name.rpartition(".")[2], None)

from . import library


def register() -> None:
    from . import registration

    registration.register(library.load() is not None)


def unregister() -> None:
    from . import registration

    registration.unregister()

"""The Fernwick shaders in Blender: a node editor with a live preview, baked onto objects."""

bl_info = {
    "name": "Fernwick Shaders",
    "author": "Fernwick",
    "version": (1, 0, 0),
    "blender": (3, 4, 0),
    "location": "Fernwick Nodes editor; sidebar of the 3D View",
    "description": "Nineteen shaders as nodes, with a live preview, baked onto objects",
    "category": "Node",
}

from . import library


def register() -> None:
    from . import registration

    registration.register(library.load() is not None)


def unregister() -> None:
    from . import registration

    registration.unregister()

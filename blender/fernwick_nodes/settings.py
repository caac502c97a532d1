"""What a tree remembers of its preview and its bakes."""

from __future__ import annotations

from collections.abc import Callable
from typing import Any

import bpy


def _changed(settings: Any, context: bpy.types.Context) -> None:
    from . import preview

    preview.changed(settings.id_data)


_SIZES = [(str(size), str(size), f"{size} x {size} pixels") for size in (64, 128, 256, 512, 1024)]
_CHANNELS = [
    ("AUTO", "Colour", "The colour if the tree gives one, else its value"),
    ("lit", "Lit", "The colour under a lamp, bent by the normals"),
    ("normal", "Normal", "The normal map"),
    ("alpha", "Alpha", "The alpha of the colour"),
    ("main", "Main", "The first colour of a surface"),
    ("second", "Second", "The second colour of a surface"),
    ("third", "Third", "The third colour of a surface"),
    ("fourth", "Fourth", "The fourth colour of a surface"),
    ("coverage", "Coverage", "Where there is a surface"),
    ("value", "Value", "The number"),
]


class FernwickSettings(bpy.types.PropertyGroup):
    """Of the preview and the bakes of a tree"""

    live: bpy.props.BoolProperty(  # type: ignore[valid-type]
        name="Live", description="Shade the preview whenever something changes", default=True, update=_changed
    )
    mode: bpy.props.EnumProperty(  # type: ignore[valid-type]
        name="On",
        description="What the preview shows",
        items=[
            ("SQUARE", "UV square", "The square from 0 to 1"),
            ("OBJECT", "Object", "The picture that would be baked onto the object"),
            ("SCENE", "Document", "The scene that the graph document has, rendered from its camera"),
        ],
        update=_changed,
    )
    size: bpy.props.EnumProperty(  # type: ignore[valid-type]
        name="Size", description="Of the preview, in pixels", items=_SIZES, default="256", update=_changed
    )
    channel: bpy.props.EnumProperty(  # type: ignore[valid-type]
        name="Shows", description="What the preview shows of the answers", items=_CHANNELS, update=_changed
    )
    own_scene: bpy.props.BoolProperty(  # type: ignore[valid-type]
        name="Document's scene",
        description="On the UV square, shaders look for objects in the scene of the document, not in Blender's",
        update=_changed,
    )
    target: bpy.props.PointerProperty(  # type: ignore[valid-type]
        type=bpy.types.Object,
        name="Object",
        description="What is baked onto; the active object without one",
        update=_changed,
    )
    uv_layer: bpy.props.StringProperty(  # type: ignore[valid-type]
        name="UV map", description="That lays the pictures out; the one that Blender renders with without a name"
    )
    width: bpy.props.IntProperty(  # type: ignore[valid-type]
        name="Width", description="Of the pictures, in pixels", default=1024, min=1, max=16384
    )
    height: bpy.props.IntProperty(  # type: ignore[valid-type]
        name="Height", description="Of the pictures, in pixels", default=1024, min=1, max=16384
    )
    samples: bpy.props.IntProperty(  # type: ignore[valid-type]
        name="Samples", description="Of each pixel, for smooth edges", default=1, min=1, max=4096, soft_max=64
    )
    margin: bpy.props.IntProperty(  # type: ignore[valid-type]
        name="Margin", description="Continues what is covered by so many pixels", default=16, min=0, max=128
    )
    green: bpy.props.EnumProperty(  # type: ignore[valid-type]
        name="Green",
        description="Of normal maps",
        items=[("up", "Up", "Along V, as Blender takes it"), ("down", "Down", "Against V, as some games take it")],
    )
    shared: bpy.props.BoolProperty(  # type: ignore[valid-type]
        name="Shared",
        description="All objects that share the mesh or the material get what is baked. Else the others keep their "
        "look, and the object gets a material of its own",
        default=False,
    )
    folder: bpy.props.StringProperty(  # type: ignore[valid-type]
        name="Folder",
        description="Where pictures are put. Without one they are kept in the .blend; tiles and sequences go beside it",
        subtype="DIR_PATH",
    )
    color: bpy.props.BoolProperty(  # type: ignore[valid-type]
        name="Colour", description="Bake the colour", default=True
    )
    alpha: bpy.props.BoolProperty(name="Alpha", description="Bake the alpha", default=True)  # type: ignore[valid-type]
    normal: bpy.props.BoolProperty(  # type: ignore[valid-type]
        name="Normal", description="Bake the normal map", default=True
    )

    def chooser(self) -> Callable[[tuple[str, ...]], list[str]]:
        """What chooses the channels that are switched on now, of those that a graph offers. In any thread."""
        is_color = self.color
        others = [name for name in ("alpha", "normal") if getattr(self, name)]

        def choose(offered: tuple[str, ...]) -> list[str]:
            base = [name for name in ("color", "main", "value") if name in offered][:1] if is_color else []
            return base + [name for name in others if name in offered]

        return choose

    @property
    def bake_size(self) -> tuple[int, int]:
        return self.width, self.height


def target_of(tree: bpy.types.NodeTree) -> bpy.types.Object | None:
    """What a tree is baked onto."""
    return tree.settings.target or bpy.context.view_layer.objects.active


class FernwickTreePointer(bpy.types.PropertyGroup):
    """A tree that a scene knows, so that Blender animates it"""

    tree: bpy.props.PointerProperty(type=bpy.types.NodeTree)  # type: ignore[valid-type]

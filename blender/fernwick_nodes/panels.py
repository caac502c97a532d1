"""Panels of the node editor's sidebar and of the 3D view, and the menu that adds nodes."""

from __future__ import annotations

from typing import Any

import bpy

from . import document, library, looks, materials, messages, nodes, preview, settings, tree as trees
from .operators import active_tree

try:
    import nodeitems_utils
    from nodeitems_utils import NodeCategory, NodeItem
except ImportError:  # Blender may drop it one day; the search still finds all nodes
    nodeitems_utils = None

_MENU = "FERNWICK"
_TOPICS = {
    "Mapping": ["Key", "Gray", "Location", "Coordinate_Shift"],
    "Optics": ["Fresnel", "Iridescent"],
    "Scene": ["Lit", "Translucent", "Proximity", "Curvature", "Corners"],
    "Layers": ["Super_mixer", "Super_mixer_top", "MultiPassManager", "MultiPassControl", "Shadow_pass"],
    "Patterns": ["Weave", "Spoke", "Drip"],
}


class _InSidebar:
    bl_region_type = "UI"
    bl_category = "Fernwick"


class _InEditor(_InSidebar):
    bl_space_type = "NODE_EDITOR"

    @classmethod
    def poll(cls, context: bpy.types.Context) -> bool:
        return context.space_data.tree_type == trees.FernwickTree.bl_idname


class FERNWICK_PT_missing(_InSidebar, bpy.types.Panel):
    """Tells what is missing where nothing works without it"""

    bl_label = "Fernwick"
    bl_space_type = "VIEW_3D"

    def draw(self, context: bpy.types.Context) -> None:
        column = self.layout.column()
        preview.draw_text(column, library.missing(), looks.sidebar_width(context))
        preview.draw_text(column, "Trees of this file are kept as they are", looks.sidebar_width(context), "INFO")


class FernwickPreferences(bpy.types.AddonPreferences):
    """Where to go on from the list of add-ons"""

    bl_idname = __package__

    def draw(self, context: bpy.types.Context) -> None:
        layout = self.layout
        width = looks.sidebar_width(context)
        if library.missing():
            preview.draw_text(layout, library.missing(), width)
        else:
            preview.draw_text(layout, library.where(), width, "CHECKMARK")
        layout.operator("wm.path_open", text="Open the Guide", icon="HELP").filepath = str(library.GUIDE)


class FERNWICK_PT_preview(_InEditor, bpy.types.Panel):
    bl_label = "Preview"

    def draw(self, context: bpy.types.Context) -> None:
        tree, layout = active_tree(context), self.layout
        if tree is None:
            layout.operator("fernwick.new_tree", icon="ADD")
            layout.operator("fernwick.open", icon="FILE_FOLDER")
            return
        choice = tree.settings
        preview.draw(tree, layout, 9, looks.sidebar_width(context))
        preview.draw_doubts(tree, layout, looks.sidebar_width(context))
        layout.use_property_split = True
        layout.use_property_decorate = False
        column = layout.column()
        column.prop(choice, "mode")
        if choice.mode == "OBJECT":
            _draw_target(column, context, choice)
        if choice.mode != "SCENE":
            column.prop(choice, "channel")
            if choice.mode == "SQUARE" and "scene" in document.rest_of(tree):
                column.prop(choice, "own_scene")
        column.prop(choice, "size")
        row = column.row(heading="Live")
        row.prop(choice, "live", text="")
        row.operator("fernwick.refresh", text="", icon="FILE_REFRESH")


class FERNWICK_PT_bake(_InEditor, bpy.types.Panel):
    bl_label = "Bake"

    def draw(self, context: bpy.types.Context) -> None:
        tree = active_tree(context)
        if tree is not None:
            draw_bake(self.layout, context, tree)


class FERNWICK_PT_document(_InEditor, bpy.types.Panel):
    bl_label = "Graph Document"
    bl_options = {"DEFAULT_CLOSED"}

    def draw(self, context: bpy.types.Context) -> None:
        layout, tree = self.layout, active_tree(context)
        row = layout.row(align=True)
        row.operator("fernwick.open", text="Open", icon="FILE_FOLDER")
        row.operator("fernwick.save", text="Save", icon="FILE_TICK")
        if tree is not None:
            layout.use_property_split = True
            layout.prop(tree, "folder")


class FERNWICK_PT_fields(_InEditor, bpy.types.Panel):
    bl_label = "Fields"

    @classmethod
    def poll(cls, context: bpy.types.Context) -> bool:
        node = context.active_node
        return context.space_data.tree_type == trees.FernwickTree.bl_idname and hasattr(node, "table")

    def draw(self, context: bpy.types.Context) -> None:
        node, layout = context.active_node, self.layout
        column = layout.column(align=True)
        column.scale_y = 0.8
        for line in looks.wrapped(node.purpose, looks.sidebar_width(context)):
            column.label(text=line)
        layout.prop(node, "shader_name")
        text = messages.told_node(node)
        if text:
            preview.draw_text(layout, text, looks.sidebar_width(context))
        looks.draw_all(node, layout)


class FERNWICK_PT_view(_InSidebar, bpy.types.Panel):
    bl_label = "Fernwick"
    bl_space_type = "VIEW_3D"

    def draw(self, context: bpy.types.Context) -> None:
        layout, tree = self.layout, context.scene.fernwick_tree
        layout.prop(context.scene, "fernwick_tree", text="")
        if tree is None:
            layout.operator("fernwick.new_tree", icon="ADD")
            layout.operator("fernwick.open", icon="FILE_FOLDER")
        else:
            preview.draw(tree, layout, 8, looks.sidebar_width(context))
            draw_bake(layout, context, tree)


def draw_bake(layout: bpy.types.UILayout, context: bpy.types.Context, tree: bpy.types.NodeTree) -> None:
    choice = tree.settings
    column = layout.column()
    column.use_property_split = True
    column.use_property_decorate = False
    _draw_target(column, context, choice)
    size = column.column(align=True)
    size.prop(choice, "width")
    size.prop(choice, "height")
    column.prop(choice, "samples")
    column.prop(choice, "margin")
    row = layout.row(align=True)
    for name in ("color", "alpha", "normal"):
        row.prop(choice, name, toggle=1)
    column = layout.column()
    column.use_property_split = True
    column.use_property_decorate = False
    if choice.normal:
        column.row().prop(choice, "green", expand=True)
    column.prop(choice, "folder")
    thing = settings.target_of(tree)
    if thing is not None and materials.is_shared(thing):
        column.prop(choice, "shared")
    buttons = layout.column()
    buttons.scale_y = 1.3
    buttons.operator("fernwick.bake_material", icon="MATERIAL")
    row = layout.row(align=True)
    row.operator("fernwick.bake_images", text="Images", icon="IMAGE_DATA")
    row.operator("fernwick.bake_sequence", text="Sequence", icon="RENDER_ANIMATION")
    for text in messages.baked(tree):
        preview.draw_text(layout, text, looks.sidebar_width(context), "INFO")


def draw_menu(self: Any, context: bpy.types.Context) -> None:
    """At the end of the menu of the node editor."""
    if active_tree(context) is not None:
        self.layout.separator()
        for name in ("group_make", "group_ungroup", "group_open"):
            self.layout.operator(f"fernwick.{name}")


def register_menu() -> None:
    if nodeitems_utils is not None:
        if _MENU in nodeitems_utils._node_categories:
            nodeitems_utils.unregister_node_categories(_MENU)
        nodeitems_utils.register_node_categories(_MENU, _categories())


def unregister_menu() -> None:
    if nodeitems_utils is not None and _MENU in nodeitems_utils._node_categories:
        nodeitems_utils.unregister_node_categories(_MENU)


def _categories() -> list[Any]:
    import fernwick

    class Category(NodeCategory):
        @classmethod
        def poll(cls, context: bpy.types.Context) -> bool:
            return context.space_data.tree_type == trees.FernwickTree.bl_idname

    topics = {topic: [name for name in names if name in fernwick.classes()] for topic, names in _TOPICS.items()}
    others = [name for name in fernwick.classes() if not any(name in names for names in topics.values())]
    topics |= {"Sources": list(fernwick.sources())} | ({"Others": others} if others else {})
    made = [
        Category(f"FERNWICK_{topic.upper()}", topic, items=[NodeItem(nodes.idname(name)) for name in names])
        for topic, names in topics.items()
    ]
    general = ["FernwickOutputNode", "FernwickGroupNode", "FernwickInputNode", "NodeFrame", "NodeReroute"]
    return [*made, Category("FERNWICK_TREE", "Tree", items=[NodeItem(name) for name in general])]


def _draw_target(layout: bpy.types.UILayout, context: bpy.types.Context, choice: settings.FernwickSettings) -> None:
    layout.prop(choice, "target")
    thing = choice.target or context.view_layer.objects.active
    if thing is None:
        layout.label(text="No object is active", icon="INFO")
    elif thing.type == "MESH":
        layout.prop_search(choice, "uv_layer", thing.data, "uv_layers")


CLASSES: list[type] = [
    FERNWICK_PT_preview, FERNWICK_PT_bake, FERNWICK_PT_fields, FERNWICK_PT_document, FERNWICK_PT_view,
]  # fmt: skip

"""The buttons."""

from __future__ import annotations

from typing import Any

import bpy
from bpy_extras.io_utils import ExportHelper, ImportHelper

from . import baking, document, fields, groups, materials, messages, preview, settings, tasks, tree as trees
from .errors import Refusal
from .messages import guarded


def active_tree(context: bpy.types.Context) -> bpy.types.NodeTree | None:
    """The tree that the node editor shows, within groups the innermost; elsewhere that of the scene."""
    space = context.space_data
    if space is not None and space.type == "NODE_EDITOR":
        tree = space.edit_tree
        return tree if tree is not None and tree.bl_idname == trees.FernwickTree.bl_idname else None
    return context.scene.fernwick_tree


class _NeedsTree:
    @classmethod
    def poll(cls, context: bpy.types.Context) -> bool:
        return active_tree(context) is not None


class FERNWICK_OT_new_tree(bpy.types.Operator):
    """Make a tree: a woven cloth to begin with"""

    bl_idname = "fernwick.new_tree"
    bl_label = "New Fernwick Tree"
    bl_options = {"REGISTER", "UNDO"}

    @guarded
    def execute(self, context: bpy.types.Context) -> set[str]:
        tree = document.from_document(_FIRST, "", "Cloth")
        _show(context, tree)
        return {"FINISHED"}


class FERNWICK_OT_open(bpy.types.Operator, ImportHelper):
    """Open a graph document as a new tree"""

    bl_idname = "fernwick.open"
    bl_label = "Open Graph"
    bl_options = {"REGISTER", "UNDO"}
    filename_ext = ".json"
    filter_glob: bpy.props.StringProperty(default="*.json", options={"HIDDEN"})  # type: ignore[valid-type]

    @guarded
    def execute(self, context: bpy.types.Context) -> set[str]:
        tree = document.load(self.filepath)
        if "scene" in document.rest_of(tree):
            tree.settings.own_scene = True
            if document.is_rendered(tree):
                tree.settings.mode = "SCENE"
        _show(context, tree)
        self.report({"INFO"}, f"Opened as {tree.name}")
        return {"FINISHED"}


class FERNWICK_OT_save(_NeedsTree, bpy.types.Operator, ExportHelper):
    """Save the tree as a graph document, for the command and all that reads such"""

    bl_idname = "fernwick.save"
    bl_label = "Save Graph"
    filename_ext = ".json"
    filter_glob: bpy.props.StringProperty(default="*.json", options={"HIDDEN"})  # type: ignore[valid-type]

    def invoke(self, context: bpy.types.Context, event: bpy.types.Event) -> set[str]:
        if not self.filepath:
            tree = active_tree(context)
            self.filepath = bpy.path.clean_name(tree.name if tree else "graph") + ".json"
        return ExportHelper.invoke(self, context, event)

    @guarded
    def execute(self, context: bpy.types.Context) -> set[str]:
        document.save(_tree(context), self.filepath)
        self.report({"INFO"}, f"Saved {self.filepath}")
        return {"FINISHED"}


class FERNWICK_OT_bake_material(_NeedsTree, tasks.TaskOperator, bpy.types.Operator):
    """Bake the tree onto the object, and make or update its Principled material with base colour, alpha and normal"""

    bl_idname = "fernwick.bake_material"
    bl_label = "Bake Material"
    bl_options = {"REGISTER", "UNDO"}

    def task(self, context: bpy.types.Context) -> tasks.Task[list[str]]:
        tree, thing = _tree(context).name, _target(context).name
        uv_layer, shared = _tree(context).settings.uv_layer, _tree(context).settings.shared
        remarks: list[str] = []
        baked = yield from _images_task(context, remarks, shared)
        material = materials.make(baking.object_of(thing), baked, uv_layer, shared=shared)
        remarks += materials.remarks(baking.object_of(thing), material)
        return _told(tree, f'Baked {", ".join(baked)} into the material "{material.name}"', remarks)


class FERNWICK_OT_bake_images(_NeedsTree, tasks.TaskOperator, bpy.types.Operator):
    """Bake the tree onto the object, into images alone"""

    bl_idname = "fernwick.bake_images"
    bl_label = "Bake Images"
    bl_options = {"REGISTER", "UNDO"}

    def task(self, context: bpy.types.Context) -> tasks.Task[list[str]]:
        tree = _tree(context).name
        remarks: list[str] = []
        baked = yield from _images_task(context, remarks)
        return _told(tree, "Baked " + ", ".join(f'"{image.name}"' for image in baked.values()), remarks)


class FERNWICK_OT_bake_sequence(_NeedsTree, tasks.TaskOperator, bpy.types.Operator):
    """Bake each frame of the scene's range into files, and use them in the material of the object"""

    bl_idname = "fernwick.bake_sequence"
    bl_label = "Bake Sequence"

    def task(self, context: bpy.types.Context) -> tasks.Task[list[str]]:
        tree, thing, scene = _tree(context), _target(context).name, context.scene
        choice, count = tree.settings, scene.frame_end - scene.frame_start + 1
        tree_name, uv_layer, shared = tree.name, choice.uv_layer, choice.shared
        remarks: list[str] = []
        baked = yield from baking.sequence_task(
            _target(context), tree, scene.frame_start, scene.frame_end, choice.bake_size, choice.chooser(),
            folder=choice.folder, shared=shared, remarks=remarks, **_arguments(choice),
        )  # fmt: skip
        material = materials.make(baking.object_of(thing), baked, uv_layer, shared=shared)
        remarks += materials.remarks(baking.object_of(thing), material)
        return _told(tree_name, f'Baked {count} frames of {", ".join(baked)} into "{material.name}"', remarks)


class FERNWICK_OT_refresh(_NeedsTree, bpy.types.Operator):
    """Shade the preview anew, with pictures read again"""

    bl_idname = "fernwick.refresh"
    bl_label = "Refresh Preview"

    @guarded
    def execute(self, context: bpy.types.Context) -> set[str]:
        tree = _tree(context)
        for node in tree.nodes:
            if hasattr(node, "make_sockets"):
                node.make_sockets()
        preview.changed(tree)
        return {"FINISHED"}


class FERNWICK_OT_color(bpy.types.Operator):
    """Add or take away a colour of the gradient"""

    bl_idname = "fernwick.color"
    bl_label = "Colour of a Gradient"
    bl_options = {"INTERNAL", "UNDO"}
    tree: bpy.props.StringProperty()  # type: ignore[valid-type]
    node: bpy.props.StringProperty()  # type: ignore[valid-type]
    action: bpy.props.StringProperty()  # type: ignore[valid-type]
    index: bpy.props.IntProperty()  # type: ignore[valid-type]

    @guarded
    def execute(self, context: bpy.types.Context) -> set[str]:
        tree = bpy.data.node_groups.get(self.tree)
        node = tree.nodes.get(self.node) if tree is not None else None
        known = fields.leaves(node.table).values() if hasattr(node, "table") else ()
        leaf = next((leaf for leaf in known if leaf.field.type == "colors"), None)
        if leaf is None:
            raise Refusal(f'There is no node "{self.node}" with a gradient in a tree "{self.tree}"')
        colors = list(fields.read(node, leaf))
        if self.action == "ADD":
            colors.append(colors[-1])
        elif not 0 <= self.index < len(colors):
            raise Refusal(f"The gradient has {len(colors)} colours, counted from 0: there is no {self.index}")
        elif len(colors) > 2:
            del colors[self.index]
        fields.write(node, leaf, colors)
        preview.changed(node.id_data)
        return {"FINISHED"}


class _InEditor:
    @classmethod
    def poll(cls, context: bpy.types.Context) -> bool:
        space = context.space_data
        return space is not None and space.type == "NODE_EDITOR" and active_tree(context) is not None


class FERNWICK_OT_group_make(_InEditor, bpy.types.Operator):
    """Put the selected nodes into a group"""

    bl_idname = "fernwick.group_make"
    bl_label = "Make Group"
    bl_options = {"REGISTER", "UNDO"}

    @guarded
    def execute(self, context: bpy.types.Context) -> set[str]:
        tree = _tree(context)
        groups.make(tree, [node for node in tree.nodes if node.select])
        return {"FINISHED"}


class FERNWICK_OT_group_open(_InEditor, bpy.types.Operator):
    """Look into the active group, or back out of it"""

    bl_idname = "fernwick.group_open"
    bl_label = "Edit Group"

    @guarded
    def execute(self, context: bpy.types.Context) -> set[str]:
        node, path = _tree(context).nodes.active, context.space_data.path
        if node is not None and node.bl_idname == "FernwickGroupNode" and node.select and node.group:
            path.append(node.group, node=node)
        elif len(path) > 1:
            path.pop()
        return {"FINISHED"}


class FERNWICK_OT_group_ungroup(_InEditor, bpy.types.Operator):
    """Put the nodes of the active group in its place"""

    bl_idname = "fernwick.group_ungroup"
    bl_label = "Ungroup"
    bl_options = {"REGISTER", "UNDO"}

    @guarded
    def execute(self, context: bpy.types.Context) -> set[str]:
        tree = _tree(context)
        node = tree.nodes.active
        if node is None or node.bl_idname != "FernwickGroupNode":
            raise Refusal("Choose a group first")
        groups.dissolve(tree, node)
        return {"FINISHED"}


def _tree(context: bpy.types.Context) -> bpy.types.NodeTree:
    tree = active_tree(context)
    if tree is None:
        raise Refusal("There is no Fernwick tree here")
    return tree


def _target(context: bpy.types.Context) -> bpy.types.Object:
    """What is baked onto from now on: of the last bake nothing more is said."""
    messages.tell(_tree(context), messages.BAKED, "")
    thing = settings.target_of(_tree(context))
    if thing is None:
        raise Refusal("Choose an object to bake onto")
    return thing


def _images_task(
    context: bpy.types.Context, remarks: list[str], shared: bool = True
) -> tasks.Task[dict[str, bpy.types.Image]]:
    tree = _tree(context)
    choice = tree.settings
    return baking.images_task(
        _target(context), tree, choice.bake_size, choice.chooser(), folder=choice.folder, shared=shared,
        remarks=remarks, **_arguments(choice),
    )  # fmt: skip


def _told(tree_name: str, text: str, remarks: list[str]) -> list[str]:
    """What is reported of a bake; what there is to say of it stays in the panel, unless the preview has it."""
    tree = bpy.data.node_groups.get(tree_name)
    if tree is not None:
        remarks = [remark for remark in remarks if remark not in messages.doubts(tree)]
        messages.tell(tree, messages.BAKED, "\n".join(remarks))
    return [text, *remarks]


def _arguments(choice: settings.FernwickSettings) -> dict[str, Any]:
    return {
        "samples": choice.samples,
        "margin": choice.margin,
        "green": choice.green,
        "uv_layer": choice.uv_layer,
    }


def _show(context: bpy.types.Context, tree: bpy.types.NodeTree) -> None:
    context.scene.fernwick_tree = tree
    space = context.space_data
    if space is not None and space.type == "NODE_EDITOR":
        space.tree_type = trees.FernwickTree.bl_idname
        space.node_tree = tree
    preview.changed(tree)


_FIRST = {
    "shaders": {
        "cloth": {
            "class": "Weave",
            "fRepeatU": 8,
            "fRepeatV": 8,
            "fWarpWidth[0]": 8,
            "fWeftWidth[0]": 8,
            "fRoundAcross": True,
            "fRoundAlong": True,
            "fGapSubShader": "shadow",
            "fWarpSubShader[0]": "cream",
            "fWeftSubShader[0]": "rust",
        },
        "shadow": {"source": "color", "color": [0.03, 0.02, 0.015]},
        "cream": {"source": "color", "color": [0.75, 0.64, 0.45]},
        "rust": {"source": "color", "color": [0.5, 0.14, 0.05]},
    },
    "output": "cloth",
}

CLASSES: list[type] = [
    FERNWICK_OT_new_tree, FERNWICK_OT_open, FERNWICK_OT_save, FERNWICK_OT_bake_material, FERNWICK_OT_bake_images,
    FERNWICK_OT_bake_sequence, FERNWICK_OT_refresh, FERNWICK_OT_color, FERNWICK_OT_group_make, FERNWICK_OT_group_open,
    FERNWICK_OT_group_ungroup,
]  # fmt: skip

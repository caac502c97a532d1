"""What happens when a file is opened, a step is undone, a frame changes or an object moves."""

from __future__ import annotations

from typing import Any

import bpy
from bpy.app.handlers import persistent

from . import meshes, messages, preview, tree as trees

_MOVES = (bpy.types.Object, bpy.types.Light, bpy.types.Camera, bpy.types.Mesh, bpy.types.Curve)


@persistent
def _loaded(*_: Any) -> None:
    messages.clear()
    preview.forget()
    bring_up()


@persistent
def _undone(*_: Any) -> None:
    meshes.forget()
    bring_up()


@persistent
def _framed(scene: bpy.types.Scene, *_: Any) -> None:
    meshes.forget()
    preview.scene_changed(only_animated=True)
    preview.scene_changed()


@persistent
def _updated(scene: bpy.types.Scene, depsgraph: bpy.types.Depsgraph) -> None:
    if any(update.is_updated_geometry for update in depsgraph.updates):
        meshes.forget()
    if any(isinstance(update.id, _MOVES) for update in depsgraph.updates):
        preview.scene_changed()
    if any(isinstance(update.id, bpy.types.Action) for update in depsgraph.updates):
        preview.scene_changed(only_animated=True)
    know_trees(scene)


def bring_up() -> None:
    """Gives the trees of a file what this version of the add-on has more, and tells what it hasn't."""
    for tree in trees.trees():
        try:
            _bring_up(tree)
        except Exception as error:  # one odd tree must not keep the others from being opened
            messages.tell(tree, "file", messages.explained(error))
    for scene in bpy.data.scenes:
        know_trees(scene)


def know_trees(scene: bpy.types.Scene) -> None:
    """Blender animates what a scene knows of."""
    known = {item.tree for item in scene.fernwick_trees}
    missing = [tree for tree in trees.trees() if tree not in known]
    if missing and scene.library is None:
        for tree in missing:
            scene.fernwick_trees.add().tree = tree
            trees.begin(tree)


def let_go() -> None:
    """Has Blender drop the copies that it evaluates of trees, before the classes of their nodes are taken back.

    Blender keeps those copies, whose nodes point to what is no more, and crashes when it drops them later.
    """
    chosen = {}
    for scene in bpy.data.scenes:
        if scene.library is None:
            chosen[scene] = scene.fernwick_tree, [item.tree for item in scene.fernwick_trees]
            scene.property_unset("fernwick_tree")
            scene.property_unset("fernwick_trees")
    # What is removed has Blender look anew at what depends on what; without that it keeps the copies.
    bpy.data.node_groups.remove(bpy.data.node_groups.new("Fernwick", "ShaderNodeTree"))
    for scene in bpy.data.scenes:
        for layer in scene.view_layers:
            if layer.depsgraph is not None:
                layer.update()
    for scene, (tree, known) in chosen.items():  # for when the add-on is back; nothing is copied at once
        if tree is not None:
            scene["fernwick_tree"] = tree
        if known:
            scene["fernwick_trees"] = [{"tree": each} for each in known if each is not None]


def _bring_up(tree: bpy.types.NodeTree) -> None:
    unknown = sorted({node.bl_idname or node.name for node in tree.nodes if node.bl_idname == "NodeUndefined"})
    text = ""
    if tree.format > trees.FORMAT:
        text = "A newer version of the add-on has made this tree: what it has more is kept, and not shown"
    elif unknown:
        names = ", ".join(sorted(node.name for node in tree.nodes if node.bl_idname == "NodeUndefined"))
        text = f"This version of the shaders doesn't know what these nodes are; they are kept: {names}"
    messages.tell(tree, "file", text)
    if tree.library is not None:
        return
    for node in tree.nodes:
        if hasattr(node, "make_sockets"):
            node.make_sockets()
    if tree.format < trees.FORMAT:
        tree.format = trees.FORMAT
    preview.changed(tree)


_HANDLERS = {
    "load_post": _loaded,
    "undo_post": _undone,
    "redo_post": _undone,
    "frame_change_post": _framed,
    "depsgraph_update_post": _updated,
}


def register() -> None:
    for name, handler in _HANDLERS.items():
        getattr(bpy.app.handlers, name).append(handler)


def unregister() -> None:
    for name, handler in _HANDLERS.items():
        several = getattr(bpy.app.handlers, name)
        if handler in several:
            several.remove(handler)
    if bpy.app.timers.is_registered(bring_up):
        bpy.app.timers.unregister(bring_up)

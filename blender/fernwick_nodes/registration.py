"""Makes the classes of the add-on known to Blender, and takes them back."""

from __future__ import annotations

import bpy

from . import handlers, messages, nodes, operators, panels, preview, settings, sockets, tasks, tree

_registered: list[type] = []
_keymaps: list[tuple[bpy.types.KeyMap, bpy.types.KeyMapItem]] = []


def register(is_complete: bool) -> None:
    """
    :param is_complete: whether the shaders are there; else only that is told
    """
    _add(panels.FernwickPreferences)
    if not is_complete:
        _add(panels.FERNWICK_PT_missing)
        return
    messages.listen()
    for each in (settings.FernwickSettings, settings.FernwickTreePointer, sockets.FernwickShaderSocket):
        _add(each)
    tree.FernwickTree.__annotations__["settings"] = bpy.props.PointerProperty(type=settings.FernwickSettings)
    for each in (tree.FernwickTree, nodes.FernwickColor, nodes.FernwickOutputNode, nodes.FernwickInputNode):
        _add(each)
    for each in (nodes.FernwickGroupNode, *nodes.make_classes(), *operators.CLASSES, *panels.CLASSES):
        _add(each)
    bpy.types.Scene.fernwick_trees = bpy.props.CollectionProperty(type=settings.FernwickTreePointer)
    bpy.types.Scene.fernwick_tree = bpy.props.PointerProperty(
        type=bpy.types.NodeTree,
        name="Tree",
        description="What the buttons of the 3D view bake",
        poll=lambda scene, each: each.bl_idname == tree.FernwickTree.bl_idname,
    )
    panels.register_menu()
    bpy.types.NODE_MT_node.append(panels.draw_menu)
    preview.register()
    handlers.register()
    _register_keys()
    # While add-ons are started Blender has no data to look at.
    if hasattr(bpy.data, "node_groups"):
        handlers.bring_up()
    else:
        bpy.app.timers.register(handlers.bring_up)


def unregister() -> None:
    if tree.FernwickTree in _registered:
        for keymap, item in _keymaps:
            keymap.keymap_items.remove(item)
        _keymaps.clear()
        handlers.unregister()
        tasks.stop_all()
        preview.unregister()
        bpy.types.NODE_MT_node.remove(panels.draw_menu)
        panels.unregister_menu()
        if hasattr(bpy.data, "node_groups"):
            handlers.let_go()
        messages.unlisten()
        del bpy.types.Scene.fernwick_trees, bpy.types.Scene.fernwick_tree
    while _registered:
        bpy.utils.unregister_class(_registered.pop())


def _add(made: type) -> None:
    bpy.utils.register_class(made)
    _registered.append(made)


def _register_keys() -> None:
    """Those that Blender has for groups; in other trees its own act."""
    keyconfig = bpy.context.window_manager.keyconfigs.addon
    if keyconfig is None:  # without a window
        return
    keymap = keyconfig.keymaps.new(name="Node Editor", space_type="NODE_EDITOR")
    for name, key, modifiers in (
        ("group_make", "G", {"ctrl": True}),
        ("group_ungroup", "G", {"ctrl": True, "alt": True}),
        ("group_open", "TAB", {}),
    ):
        _keymaps.append((keymap, keymap.keymap_items.new(f"fernwick.{name}", key, "PRESS", **modifiers)))

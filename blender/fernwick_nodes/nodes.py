"""Nodes: one for each class and source, made from the parameter tables, and those that make trees and groups."""

from __future__ import annotations

import re
from typing import Any

import bpy

from . import fields, looks, messages, slots, sockets
from .tree import FernwickTree

_PREFIX = "Fernwick"


def _changed(holder: Any, context: bpy.types.Context) -> None:
    from . import preview

    tree = holder.id_data
    if isinstance(tree, bpy.types.NodeTree):
        preview.changed(tree)


def _titled(node: bpy.types.Node, context: bpy.types.Context) -> None:
    _refresh_groups(node.id_data)


def _may_be_group(node: bpy.types.Node, tree: bpy.types.NodeTree) -> bool:
    return tree.bl_idname == FernwickTree.bl_idname and not reaches(tree, node.id_data)


def _grouped(node: bpy.types.Node, context: bpy.types.Context) -> None:
    node.make_sockets()
    _changed(node, context)


class FernwickColor(bpy.types.PropertyGroup):
    """One of the colours of a gradient"""

    color: bpy.props.FloatVectorProperty(  # type: ignore[valid-type]
        name="Colour", subtype="COLOR", size=4, default=(1, 1, 1, 1), soft_min=0, soft_max=1, update=_changed
    )


class _InTree:
    @classmethod
    def poll(cls, tree: bpy.types.NodeTree) -> bool:
        return tree.bl_idname == FernwickTree.bl_idname


class ShaderNode(_InTree):
    """What the nodes of all classes and sources have in common."""

    table = ""
    purpose = ""
    offers: tuple[str, ...] = ()

    def init(self, context: bpy.types.Context) -> None:
        self.make_sockets()
        for leaf in fields.leaves(self.table).values():
            if leaf.field.type == "colors":
                fields.write(self, leaf, leaf.default)

    def make_sockets(self) -> None:
        """Adds what is missing of the sockets, and takes away what the class no longer has."""
        wanted = {address: leaf for address, leaf in fields.leaves(self.table).items() if leaf.is_slot}
        for socket in [socket for socket in self.inputs if socket.identifier not in wanted]:
            self.inputs.remove(socket)
        known = {socket.identifier for socket in self.inputs}
        for address, leaf in wanted.items():
            if address not in known:
                sockets.add(self.inputs, leaf.field.label, address, slots.takes(self.table, address))
        if not self.outputs:
            sockets.add(self.outputs, "Shader", "shader", self.offers)
        self.show_slots()

    def show_slots(self) -> None:
        """Of an array of slots shows those in use and the one behind them."""
        bases: dict[str, list[bpy.types.NodeSocket]] = {}
        for socket in self.inputs:
            bases.setdefault(socket.identifier.split("[")[0], []).append(socket)
        for several in bases.values():
            used = max((i for i, socket in enumerate(several) if socket.is_linked), default=-1)
            shown = max(used + 2, looks.FEWEST_SLOTS if len(several) > looks.FEWEST_SLOTS + 3 else 1)
            for i, socket in enumerate(several):
                hide = i >= shown
                if socket.hide != hide:
                    socket.hide = hide

    def draw_label(self) -> str:
        return self.shader_name or self.bl_label

    def draw_buttons(self, context: bpy.types.Context, layout: bpy.types.UILayout) -> None:
        text = messages.told_node(self)
        if text:
            from . import preview

            preview.draw_text(layout, text, self.width - 20)
        looks.draw_main(self, layout)

    def draw_buttons_ext(self, context: bpy.types.Context, layout: bpy.types.UILayout) -> None:
        layout.label(text=self.purpose)
        layout.prop(self, "shader_name")
        looks.draw_all(self, layout)


class FernwickOutputNode(_InTree, bpy.types.Node):
    """What the tree is for: its shader is shown, baked and saved"""

    bl_idname = "FernwickOutputNode"
    bl_label = "Output"
    bl_icon = "OUTPUT"
    bl_width_default = 200

    def init(self, context: bpy.types.Context) -> None:
        sockets.add(self.inputs, "Shader", "shader", slots.ANY)

    def draw_buttons(self, context: bpy.types.Context, layout: bpy.types.UILayout) -> None:
        from . import preview

        preview.draw(self.id_data, layout, scale=8.5, width=self.width - 20)


class FernwickInputNode(_InTree, bpy.types.Node):
    """Inside a group: what is plugged into the group from outside"""

    bl_idname = "FernwickInputNode"
    bl_label = "Group Input"
    bl_icon = "IMPORT"

    title: bpy.props.StringProperty(  # type: ignore[valid-type]
        name="Name", description="Of the socket that the group has for it", default="Shader", update=_titled
    )

    def init(self, context: bpy.types.Context) -> None:
        sockets.add(self.outputs, "Shader", "shader", slots.ANY)
        _refresh_groups(self.id_data)

    def free(self) -> None:
        _refresh_groups(self.id_data, but=self.name)

    def draw_buttons(self, context: bpy.types.Context, layout: bpy.types.UILayout) -> None:
        layout.prop(self, "title", text="")


class FernwickGroupNode(_InTree, bpy.types.Node):
    """Another tree as one node: the shader of its Output, with a socket for each Group Input in it"""

    bl_idname = "FernwickGroupNode"
    bl_label = "Group"
    bl_icon = "NODETREE"
    bl_width_default = 180

    group: bpy.props.PointerProperty(  # type: ignore[valid-type]
        type=bpy.types.NodeTree, name="Group", poll=_may_be_group, update=_grouped
    )

    def init(self, context: bpy.types.Context) -> None:
        self.make_sockets()

    def make_sockets(self, but: str = "") -> None:
        inner = self.group.nodes if self.group else ()
        titles = [node.title for node in inner if node.bl_idname == "FernwickInputNode" and node.name != but]
        for socket in [socket for socket in self.inputs if socket.name not in titles]:
            self.inputs.remove(socket)
        for title in dict.fromkeys(titles):
            if title not in self.inputs:
                sockets.add(self.inputs, title, title, slots.ANY)
        if not self.outputs:
            sockets.add(self.outputs, "Shader", "shader", slots.ANY)

    def draw_label(self) -> str:
        return self.group.name if self.group else self.bl_label

    def draw_buttons(self, context: bpy.types.Context, layout: bpy.types.UILayout) -> None:
        layout.prop(self, "group", text="")


def reaches(tree: bpy.types.NodeTree | None, target: bpy.types.NodeTree, depth: int = 0) -> bool:
    """Whether a tree is another one, or has it among its groups."""
    if tree is None or depth > 64:
        return depth > 64
    inner = (node.group for node in tree.nodes if node.bl_idname == "FernwickGroupNode")
    return tree == target or any(reaches(each, target, depth + 1) for each in inner)


def _refresh_groups(tree: bpy.types.NodeTree, but: str = "") -> None:
    """Gives all nodes of a group the sockets that it has now."""
    for each in bpy.data.node_groups:
        if each.bl_idname == FernwickTree.bl_idname and each.library is None:
            for node in each.nodes:
                if node.bl_idname == "FernwickGroupNode" and node.group == tree:
                    node.make_sockets(but)


def idname(table: str) -> str:
    return f"{_PREFIX}{table[0].upper()}{table[1:]}Node"


def make_classes() -> list[type]:
    """A class of nodes for each class and source of the tables."""
    import fernwick

    return [_make(name) for name in (*fernwick.classes(), *fernwick.sources())]


def _make(table: str) -> type:
    import fernwick

    description = fernwick.describe(table)
    annotations: dict[str, Any] = {
        leaf.property: fields.make_property(leaf, _changed, FernwickColor)
        for leaf in fields.leaves(table).values()
        if not leaf.is_slot
    }
    annotations["shader_name"] = bpy.props.StringProperty(
        name="Name",
        description="What documents and messages call the shader; after its node without one",
        update=_changed,
    )
    annotations["written"] = bpy.props.StringProperty(
        description="The shader as a document wrote it, as JSON", options={"HIDDEN"}
    )
    if any(leaf.field.type == "file" for leaf in fields.leaves(table).values()):
        annotations["image"] = bpy.props.PointerProperty(
            type=bpy.types.Image,
            name="Image",
            description="An image of this .blend, instead of a file",
            update=_changed,
        )
    title = table[0].upper() + table[1:]
    return type(
        idname(table),
        (ShaderNode, bpy.types.Node),
        {
            "__annotations__": annotations,
            "__doc__": description.purpose.rstrip("."),
            "bl_idname": idname(table),
            "bl_label": re.sub("(?<=[a-z])(?=[A-Z])", " ", title.replace("_", " ")),
            "bl_icon": "NONE",
            "bl_width_default": looks.WIDTHS.get(table, 190),
            "bl_width_min": 140,
            "table": table,
            "purpose": description.purpose,
            "offers": description.outputs,
        },
    )

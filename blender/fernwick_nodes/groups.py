"""Groups: nodes that are put into a tree of their own, and back."""

from __future__ import annotations

from collections.abc import Sequence

import bpy

from . import links, nodes, tree as trees
from .errors import Refusal

_KEPT = {"NodeFrame", "NodeReroute"}


def make(tree: bpy.types.NodeTree, chosen: Sequence[bpy.types.Node]) -> bpy.types.Node:
    """Puts nodes into a new group. Its shader is the one that is used outside; what comes from there is an input."""
    chosen = [node for node in chosen if node.bl_idname not in ("FernwickOutputNode", "FernwickInputNode")]
    if not any(hasattr(node, "table") for node in chosen):
        raise Refusal("Select the nodes first that the group is to have")
    outward = [link for link in tree.links if link.from_node in chosen and link.to_node not in chosen]
    used = {link.from_node.name for link in outward}
    if len(used) != 1:
        raise Refusal(f"A group gives one shader; of these nodes {len(used)} are used outside")
    inner = trees.new_tree("Group")
    made = _copy(tree, inner, chosen)
    group = tree.nodes.new(nodes.FernwickGroupNode.bl_idname)
    last = tree.nodes[used.pop()]
    group.location = last.location
    output = inner.nodes.new(nodes.FernwickOutputNode.bl_idname)
    output.location = (last.location.x + 300, last.location.y)
    inner.links.new(made[last.name].outputs[0], output.inputs[0])
    inputs: dict[str, bpy.types.Node] = {}
    outside = [link for link in tree.links if link.to_node in chosen and link.from_node not in chosen]
    for link in outside:
        source = link.from_node.name
        if source not in inputs:
            inputs[source] = _input(inner, link, [node.title for node in inputs.values()])
        inner.links.new(inputs[source].outputs[0], _same(made[link.to_node.name].inputs, link.to_socket))
    group.group = inner
    for source, node in inputs.items():
        link = next(link for link in outside if link.from_node.name == source)
        tree.links.new(link.from_socket, group.inputs[node.title])
    for link in outward:
        tree.links.new(group.outputs[0], link.to_socket)
    for node in chosen:
        tree.nodes.remove(node)
    for tidied in (inner, tree):
        trees.tidy(tidied)
    return group


def dissolve(tree: bpy.types.NodeTree, group: bpy.types.Node) -> None:
    """Puts the nodes of a group in its place. The group stays for others that use it."""
    inner = group.group
    output = links.output_of(inner) if inner else None
    if output is None:
        raise Refusal("The group has nothing to give")
    chosen = [node for node in inner.nodes if node.bl_idname not in ("FernwickOutputNode", "FernwickInputNode")]
    made = _copy(inner, tree, chosen)
    for link in inner.links:
        if link.from_node.bl_idname == "FernwickInputNode" and link.to_node.name in made:
            outer = group.inputs.get(link.from_node.title)
            if outer is not None and outer.is_linked:
                tree.links.new(outer.links[0].from_socket, _same(made[link.to_node.name].inputs, link.to_socket))
    ends = [link.to_socket for link in group.outputs[0].links]
    last = output.inputs[0].links[0].from_node if output.inputs[0].is_linked else None
    for socket in ends:
        if last is not None and last.name in made:
            tree.links.new(made[last.name].outputs[0], socket)
    offset = group.location.copy()
    tree.nodes.remove(group)
    if last is not None:
        for node in made.values():
            if node.parent is None:
                node.location = node.location + offset - last.location
    trees.tidy(tree)


def _copy(
    source: bpy.types.NodeTree, target: bpy.types.NodeTree, chosen: Sequence[bpy.types.Node]
) -> dict[str, bpy.types.Node]:
    """Copies of nodes in another tree, with the links and frames among them, by the names of the first ones."""
    made: dict[str, bpy.types.Node] = {}
    for node in chosen:
        twin = target.nodes.new(node.bl_idname)
        twin.name, twin.label, twin.width, twin.mute, twin.hide = (
            node.name,
            node.label,
            node.width,
            node.mute,
            node.hide,
        )
        for name, item in node.bl_rna.properties.items():
            if name in bpy.types.Node.bl_rna.properties:
                continue
            if item.type == "COLLECTION":
                colors = getattr(twin, name)
                colors.clear()
                for each in getattr(node, name):
                    colors.add().color = each.color
            elif not item.is_readonly and (node.bl_idname not in _KEPT) and node.is_property_set(name):
                setattr(twin, name, getattr(node, name))
        made[node.name] = twin
        _copy_curves(source, target, node, twin)
    for node in chosen:
        if node.parent is not None and node.parent.name in made:
            made[node.name].parent = made[node.parent.name]
        made[node.name].location = node.location
    for link in source.links:
        if link.from_node.name in made and link.to_node.name in made:
            start = _same(made[link.from_node.name].outputs, link.from_socket)
            end = _same(made[link.to_node.name].inputs, link.to_socket)
            target.links.new(start, end)
            if hasattr(end, "keeps"):
                end.keeps = link.to_socket.keeps
    return made


def _copy_curves(
    source: bpy.types.NodeTree, target: bpy.types.NodeTree, node: bpy.types.Node, twin: bpy.types.Node
) -> None:
    """The keyframes and drivers of a node's properties."""
    if source.animation_data is None:
        return
    old, new = (f'nodes["{bpy.utils.escape_identifier(each.name)}"].' for each in (node, twin))
    action = source.animation_data.action
    for curve in [each for each in (action.fcurves if action else ()) if each.data_path.startswith(old)]:
        animation = target.animation_data_create()
        if animation.action is None:
            animation.action = bpy.data.actions.new(f"{target.name} keys")
        path = new + curve.data_path[len(old) :]
        made = animation.action.fcurves.new(path, index=curve.array_index)
        made.extrapolation = curve.extrapolation
        made.keyframe_points.add(len(curve.keyframe_points))
        for point, each in zip(made.keyframe_points, curve.keyframe_points):
            point.co, point.interpolation = each.co, each.interpolation
            point.handle_left_type, point.handle_right_type = each.handle_left_type, each.handle_right_type
            point.handle_left, point.handle_right = each.handle_left, each.handle_right
        made.update()
    for driver in [each for each in source.animation_data.drivers if each.data_path.startswith(old)]:
        made = target.animation_data_create().drivers.from_existing(src_driver=driver)
        made.data_path = new + driver.data_path[len(old) :]


def _input(inner: bpy.types.NodeTree, link: bpy.types.NodeLink, taken: Sequence[str]) -> bpy.types.Node:
    node = inner.nodes.new(nodes.FernwickInputNode.bl_idname)
    title, i = link.to_socket.name, 2
    while title in taken:
        title, i = f"{link.to_socket.name} {i}", i + 1
    node.title = title
    node.location = link.from_node.location
    return node


def _same(collection: bpy.types.bpy_prop_collection, socket: bpy.types.NodeSocket) -> bpy.types.NodeSocket:
    """The socket of a twin."""
    return next((each for each in collection if each.identifier == socket.identifier), collection[0])

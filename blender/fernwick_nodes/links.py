"""What is plugged into a slot in the end: behind reroutes, muted nodes and groups."""

from __future__ import annotations

import bpy

from . import slots

Groups = tuple[bpy.types.Node, ...]
"""The group nodes that a node lies in, the outermost first."""
_DEEPEST = 256


class Wiring:
    """The links of trees by their ends, for as long as nothing changes: Blender would look through all of them for each
    socket."""

    def __init__(self) -> None:
        self._links: dict[int, dict[int, bpy.types.NodeLink]] = {}

    def link_to(self, socket: bpy.types.NodeSocket) -> bpy.types.NodeLink | None:
        if not socket.is_linked:
            return None
        tree = socket.id_data
        known = self._links.get(tree.as_pointer())
        if known is None:
            known = {link.to_socket.as_pointer(): link for link in tree.links if not link.is_muted}
            self._links[tree.as_pointer()] = known
        return known.get(socket.as_pointer())

    def source(self, socket: bpy.types.NodeSocket, groups: Groups = ()) -> tuple[bpy.types.Node, Groups] | None:
        """The node whose shader an input gets, with the groups it lies in; None where nothing is plugged in."""
        following: bpy.types.NodeSocket | None = socket
        for _ in range(_DEEPEST):
            link = self.link_to(following) if following is not None else None
            if link is None:
                return None
            node = link.from_node
            kind = node.bl_idname
            if kind == "NodeReroute" or (node.mute and kind != "FernwickInputNode"):
                following = next((each for each in node.inputs if each.is_linked), None)
            elif kind == "FernwickGroupNode":
                inner = output_of(node.group) if node.group else None
                if inner is None or any(outer.group == node.group for outer in groups):
                    return None
                following, groups = inner.inputs[0], (*groups, node)
            elif kind == "FernwickInputNode":
                if not groups:
                    return None
                following, groups = groups[-1].inputs.get(node.title), groups[:-1]
            else:
                return (node, groups) if hasattr(node, "table") else None
        return None


def output_of(tree: bpy.types.NodeTree) -> bpy.types.Node | None:
    """The Output of a tree: the active one of several, else the first."""
    found = [node for node in tree.nodes if node.bl_idname == "FernwickOutputNode"]
    return next((node for node in found if node == tree.nodes.active), found[0] if found else None)


def kinds_of(socket: bpy.types.NodeSocket, wiring: Wiring) -> frozenset[str]:
    """What an output offers in the end. Of an input of a group anything may come."""
    node = socket.node
    found = None
    if node.bl_idname == "NodeReroute" or (node.mute and node.bl_idname != "FernwickInputNode"):
        found = next((wiring.source(each) for each in node.inputs if each.is_linked), None)
    elif node.bl_idname == "FernwickGroupNode":
        inner = output_of(node.group) if node.group else None
        found = wiring.source(inner.inputs[0], (node,)) if inner else None
    else:
        return frozenset(socket.kinds.split()) if hasattr(socket, "kinds") else frozenset()
    return frozenset(found[0].offers) if found else slots.ANY


def misfit(link: bpy.types.NodeLink, wiring: Wiring) -> str:
    """Why a link makes no sense; empty when it does."""
    to_socket = link.to_socket
    if not hasattr(to_socket, "kinds"):
        return "" if to_socket.node.bl_idname == "NodeReroute" else "this takes no shader"
    offered, taken = kinds_of(link.from_socket, wiring), frozenset(to_socket.kinds.split())
    if slots.fits(offered, taken):
        return ""
    return f'"{to_socket.name}" takes {slots.words(taken)}; "{link.from_node.name}" gives {slots.words(offered)}'

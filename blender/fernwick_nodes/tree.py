"""The node tree, and what watches over its links."""

from __future__ import annotations

import contextlib
import time
from collections.abc import Iterator

import bpy

from . import links, messages

FORMAT = 1
"""Of what trees keep in a .blend; rises when older ones need a hand."""


_STAYS = 3  # seconds that a refusal is shown at least
_refused_at: dict[str, float] = {}
_held = 0  # how many say that they change trees link by link, and tidy up in the end


@contextlib.contextmanager
def held() -> Iterator[None]:
    """While a tree is built, Blender's calls at each link are passed over."""
    global _held
    _held += 1
    try:
        yield
    finally:
        _held -= 1


class FernwickTree(bpy.types.NodeTree):
    """Shaders of the Fernwick pack, baked into pictures"""

    bl_idname = "FernwickTree"
    bl_label = "Fernwick"
    bl_icon = "TEXTURE"

    format: bpy.props.IntProperty(options={"HIDDEN"})  # type: ignore[valid-type]
    rest: bpy.props.StringProperty(  # type: ignore[valid-type]
        description="What the document has beside its shaders, as JSON", options={"HIDDEN"}
    )
    folder: bpy.props.StringProperty(  # type: ignore[valid-type]
        name="Folder", description="Where relative names of pictures start", subtype="DIR_PATH"
    )

    def update(self) -> None:
        """Blender calls it when nodes or links have changed."""
        from . import preview

        if _held:
            return
        try:
            tidy(self)
            preview.changed(self)
        except Exception as error:  # Blender would print a trace, once a redraw
            messages.tell(self, "tree", messages.explained(error))


def tidy(tree: bpy.types.NodeTree) -> None:
    """Takes out links that make no sense, and shows as many slots as are needed."""
    refused = ""
    odd: dict[str, str] = {}  # what nodes have to say of links that stay
    wiring = links.Wiring()
    for link in list(tree.links):
        reason = links.misfit(link, wiring)
        if not reason:
            continue
        if getattr(link.to_socket, "keeps", False):
            link.is_valid = False
            odd[link.to_node.name] = reason
        else:
            with held():
                tree.links.remove(link)
            refused = reason
    # Blender calls again when a link is gone: what is told stays for a while.
    if refused:
        _refused_at[tree.name] = time.monotonic()
        messages.tell(tree, "link", f"Not plugged in: {refused}")
    elif time.monotonic() - _refused_at.get(tree.name, 0) > _STAYS:
        messages.tell(tree, "link", "")
    for node in tree.nodes:
        messages.tell_node(node, odd.get(node.name, ""))
        if hasattr(node, "show_slots"):
            node.show_slots()


def trees() -> list[bpy.types.NodeTree]:
    return [tree for tree in bpy.data.node_groups if tree.bl_idname == FernwickTree.bl_idname]


def new_tree(name: str) -> bpy.types.NodeTree:
    tree = bpy.data.node_groups.new(name, FernwickTree.bl_idname)
    tree.format = FORMAT
    tree.use_fake_user = True  # no object of Blender uses it, and it would be left out of the .blend
    return tree


def begin(tree: bpy.types.NodeTree) -> None:
    """Gives a tree that Blender's own buttons have made an Output."""
    if tree.format == 0 and not tree.nodes and tree.library is None:
        tree.format = FORMAT
        tree.nodes.new("FernwickOutputNode")

"""Trees as graph documents, and back. What a node can't show is kept as the document has it."""

from __future__ import annotations

import json
import os
from collections.abc import Mapping
from pathlib import Path
from typing import Any

import bpy
import numpy as np

from . import fields, images, keys, links, nodes, slots, tree as trees
from .errors import Refusal
from .fields import UNSHOWN, Leaf

_STEP = (280, 30)  # between columns, and between the nodes of one


def load(path: str, name: str = "") -> bpy.types.NodeTree:
    """A new tree of a document's file. Raises the errors of `fernwick`, and leaves no tree then."""
    import fernwick

    graph = fernwick.Graph.load(path)
    return from_document(graph.to_dict(), str(graph.folder), name or Path(path).stem)


def from_document(document: Mapping[str, Any], folder: str, name: str) -> bpy.types.NodeTree:
    """A new tree of a document that makes a graph."""
    tree = trees.new_tree(name)
    try:
        _fill(tree, document, folder)
    except BaseException:
        bpy.data.node_groups.remove(tree)
        raise
    return tree


def save(tree: bpy.types.NodeTree, path: str | os.PathLike[str]) -> None:
    """Writes a tree as a document's file. Relative names of files are changed so that they lead where they led."""
    import fernwick

    if not isinstance(path, (str, os.PathLike)):
        raise Refusal(f"A document is saved under the name of a file: not {path!r}")
    target = Path(bpy.path.abspath(os.fspath(path))).absolute()
    document = to_document(tree)
    _store_images(document, target)
    _move_files(document, folder_of(tree), str(target.parent))
    fernwick.Graph(document, folder=target.parent).save(target)


def to_document(tree: bpy.types.NodeTree) -> dict[str, Any]:
    """The document of a tree: all of its shaders, with keys where they change over frames, and its scene.

    Images of Blender stand in it as images.
    """
    return _Writer(tree, keyed=True).document(whole=True)


def shading_document(tree: bpy.types.NodeTree, with_scene: bool = False) -> dict[str, Any]:
    """What is to be shaded: the Output's shader and all below it, as they are at the current frame.

    Images of Blender stand in it as arrays. With the scene all shaders are in it, which its elements may name.
    """
    document = _Writer(tree, keyed=False).document(whole=with_scene)
    if not with_scene:
        document.pop("scene", None)
    for shader in document["shaders"].values():
        file = shader.get("file")
        if isinstance(file, bpy.types.Image):
            shader["file"] = _array_of(file)
            if not file.is_float and file.colorspace_settings.is_data and not shader.get("encoding"):
                shader["encoding"] = "linear"
        elif isinstance(file, str) and file.startswith("//"):
            shader["file"] = bpy.path.abspath(file)
    return document


def folder_of(tree: bpy.types.NodeTree) -> str:
    """Where relative names of files start."""
    if tree.folder:
        return os.path.normpath(bpy.path.abspath(tree.folder))
    return os.path.dirname(bpy.data.filepath) or os.getcwd()


def rest_of(tree: bpy.types.NodeTree) -> dict[str, Any]:
    try:
        rest = json.loads(tree.rest or "{}")
    except ValueError:
        rest = {}
    return rest if isinstance(rest, dict) else {}


def _fill(tree: bpy.types.NodeTree, document: Mapping[str, Any], folder: str) -> None:
    tree.folder = folder
    tree.rest = json.dumps({key: value for key, value in document.items() if key not in ("shaders", "output")})
    with trees.held():
        made = {name: _add_node(tree, name, members) for name, members in document["shaders"].items()}
        output = tree.nodes.new(nodes.FernwickOutputNode.bl_idname)
        tree.nodes.active = output
        for name, members in document["shaders"].items():
            _plug(tree, made, name, members)
        tree.links.new(made[document["output"]].outputs[0], output.inputs[0])
    trees.tidy(tree)
    _arrange(tree, output)


class _Writer:
    """Makes one document of a tree."""

    def __init__(self, tree: bpy.types.NodeTree, keyed: bool) -> None:
        self._tree = tree
        self._keyed = keyed
        self._names: dict[tuple[str, ...], str] = {}  # by the names of the groups around a node, and its own
        self._waiting: list[tuple[bpy.types.Node, links.Groups]] = []
        self._wiring = links.Wiring()

    def document(self, whole: bool) -> dict[str, Any]:
        output = links.output_of(self._tree)
        start = self._wiring.source(output.inputs[0]) if output else None
        if start is None:
            raise Refusal("Nothing is plugged into the Output" if output else "The tree has no Output: add one")
        if whole:
            for node in self._tree.nodes:
                if hasattr(node, "table"):
                    self._name(node, ())
        first = self._name(*start)
        shaders = {}
        while self._waiting:
            node, groups = self._waiting.pop(0)
            shaders[self._name(node, groups)] = self._members(node, groups)
        rest = rest_of(self._tree)
        document: dict[str, Any] = {key: rest.pop(key) for key in ("$schema",) if key in rest}
        return {**document, "shaders": shaders, "output": first, **rest}

    def _name(self, node: bpy.types.Node, groups: links.Groups) -> str:
        key = (*(group.name for group in groups), node.name)
        if key not in self._names:
            prefix = "".join(f"{group.name}/" for group in groups)
            wanted = prefix + (node.shader_name or node.name)
            taken = set(self._names.values())
            name, i = wanted, 2
            while name in taken:
                name, i = f"{wanted} {i}", i + 1
            self._names[key] = name
            self._waiting.append((node, groups))
        return self._names[key]

    def _members(self, node: bpy.types.Node, groups: links.Groups) -> dict[str, Any]:
        known = fields.leaves(node.table)
        inputs = {socket.identifier: socket for socket in node.inputs}
        is_set = fields.set_properties(node) | keys.animated_properties(node)
        now = {
            address: self._plugged(inputs.get(address), groups) if leaf.is_slot
            else self._value(node, leaf) if leaf.property in is_set
            else leaf.default
            for address, leaf in known.items()
        }  # fmt: skip
        made: dict[str, Any] = {}
        told: set[str] = set()
        for key, value in _written(node).items():
            if key in ("class", "source"):
                made[key] = value
                continue
            parts = dict(fields.spread(node.table, key, value))
            if all(self._is_still(known.get(address), part, now) for address, part in parts.items()):
                made[key] = value
                told |= parts.keys()
        if not made:
            import fernwick

            made["source" if node.table in fernwick.sources() else "class"] = node.table
        for address, value in now.items():
            if address not in told and value != known[address].default:
                made[address] = self._told(known[address], value)
        if getattr(node, "image", None):
            made["file"] = node.image
        return made

    def _plugged(self, socket: bpy.types.NodeSocket | None, groups: links.Groups) -> str | None:
        found = self._wiring.source(socket, groups) if socket is not None else None
        return self._name(*found) if found else None

    def _value(self, node: bpy.types.Node, leaf: Leaf) -> Any:
        """What a property shows, or its numbers over frames."""
        shown = fields.read(node, leaf)
        if self._keyed:
            components = keys.animated(node.id_data, node, leaf, shown)
            if components is not None:
                return _Keys(components)
        return shown

    def _is_still(self, leaf: Leaf | None, written: Any, now: Mapping[str, Any]) -> bool:
        """Whether a field is what the document has said of it."""
        if leaf is None:
            return True  # no field of ours: the document's alone
        value = now[leaf.address]
        if not fields.holds_keys(written):
            shown = fields.show(leaf, written)
            return bool(value == (leaf.default if shown is UNSHOWN else shown))
        if leaf.is_slot:
            return bool(value == fields.show(leaf, written["keys"][0][1]))
        components = keys.components_of(leaf, written)
        if components is None:
            return bool(value == leaf.default)
        return self._keyed and value == _Keys(components)

    def _told(self, leaf: Leaf, value: Any) -> Any:
        return keys.keyed(leaf, value.components) if isinstance(value, _Keys) else fields.tell(leaf, value)


class _Keys:
    """Numbers over frames in place of a value."""

    def __init__(self, components: tuple[keys.Component, ...]) -> None:
        self.components = components

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, _Keys):
            return NotImplemented
        return tuple(map(_rounded, self.components)) == tuple(map(_rounded, other.components))

    __hash__ = None  # type: ignore[assignment]


def _rounded(component: keys.Component) -> Any:
    """As F-curves hold it. How a single key goes on doesn't matter."""
    if not isinstance(component, keys.Track):
        return fields.single(component)
    between = component.between if len(component.keys) > 1 else ""
    return between, tuple((fields.single(frame), fields.single(value)) for frame, value in component.keys)


def _written(node: bpy.types.Node) -> dict[str, Any]:
    try:
        written = json.loads(node.written or "{}")
    except ValueError:
        written = {}
    return written if isinstance(written, dict) else {}


def _add_node(tree: bpy.types.NodeTree, name: str, members: Mapping[str, Any]) -> bpy.types.Node:
    table = members.get("class") or members.get("source")
    node = tree.nodes.new(nodes.idname(str(table)))
    node.name = name
    node.shader_name = name
    node.written = json.dumps(members)
    known = fields.leaves(node.table)
    for key, value in members.items():
        for address, part in fields.spread(node.table, key, value):
            leaf = known.get(address)
            if leaf is None or leaf.is_slot:
                continue
            if fields.holds_keys(part):
                components = keys.components_of(leaf, part)
                if components is not None:
                    keys.animate(tree, node, leaf, components)
            else:
                shown = fields.show(leaf, part)
                if shown is not UNSHOWN:
                    fields.write(node, leaf, shown)
    return node


def _plug(tree: bpy.types.NodeTree, made: Mapping[str, bpy.types.Node], name: str, members: Mapping[str, Any]) -> None:
    node = made[name]
    by_address = {socket.identifier: socket for socket in node.inputs}
    known = fields.leaves(node.table)
    for key, value in members.items():
        for address, part in fields.spread(node.table, key, value):
            leaf = known.get(address)
            if leaf is None or not leaf.is_slot:
                continue
            first = part["keys"][0][1] if fields.is_keyed(part) else part
            if isinstance(first, str) and first in made:
                socket = by_address[address]
                tree.links.new(made[first].outputs[0], socket)
                socket.keeps = not slots.fits(made[first].offers, socket.kinds.split())


def _arrange(tree: bpy.types.NodeTree, output: bpy.types.Node) -> None:
    """Lays the nodes out in columns, each behind all that it is plugged into."""
    depth: dict[bpy.types.Node, int] = {output: 0}
    waiting = [output]
    while waiting:
        node = waiting.pop(0)
        for socket in node.inputs:
            for link in socket.links:
                if depth.get(link.from_node, -1) <= depth[node] < len(tree.nodes):
                    depth[link.from_node] = depth[node] + 1
                    waiting.append(link.from_node)
    tops: dict[int, float] = {}
    aside = max(depth.values(), default=0) + 1
    for node in sorted(tree.nodes, key=lambda node: depth.get(node, aside)):
        column = depth.get(node, aside)
        node.location = (-_STEP[0] * column, tops.get(column, 0))
        tops[column] = tops.get(column, 0) - _height(node) - _STEP[1]
    for node in tree.nodes:  # columns around a middle line
        node.location.y -= tops[depth.get(node, aside)] / 2


def _height(node: bpy.types.Node) -> float:
    if not hasattr(node, "table"):
        return 260
    shown = sum(not socket.hide for socket in node.inputs) + 1
    groups = list(fields.groups(node.table).values())
    records = sum(7 for several in groups if "." in several[0].address)
    return 50 + 22 * (shown + min(len(groups), 6) + records)


def _array_of(image: bpy.types.Image) -> Any:
    """The pixels of an image as a picture has them, row 0 at the top."""
    width, height = image.size
    if width == 0 or height == 0:
        raise Refusal(f'The image "{image.name}" has no pixels')
    flat = np.empty(width * height * image.channels, np.float32)
    image.pixels.foreach_get(flat)
    pixels = flat.reshape(height, width, image.channels)[::-1]
    return np.ascontiguousarray(pixels) if image.is_float else np.rint(pixels * 255).clip(0, 255).astype(np.uint8)


def _store_images(document: dict[str, Any], target: Path) -> None:
    """Puts the images of Blender that a document has beside it, unless they are files."""
    import fernwick

    for shader in document["shaders"].values():
        image = shader.get("file")
        if not isinstance(image, bpy.types.Image):
            continue
        path = bpy.path.abspath(image.filepath)
        if image.source == "FILE" and not image.packed_file and not image.is_dirty and os.path.isfile(path):
            shader["file"] = path
            continue
        array = _array_of(image)
        is_float = array.dtype == np.float32
        path = str(target.with_name(f"{target.stem}.{images.file_name(image.name)}.{'exr' if is_float else 'png'}"))
        if not is_float:  # as a file of integers would be read
            array = fernwick.Graph(fernwick.Picture(array)).bake(array.shape[1], array.shape[0])
        fernwick.save(path, array, **({"bits": 32, "straight": True} if is_float else {}))
        shader["file"] = path


def _move_files(value: Any, source: str, target: str) -> None:
    """Makes the names of files, which start at one folder, start at another."""
    members = value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ()
    for key, member in members:
        if isinstance(member, str) and key in ("file", "path"):
            value[key] = _moved(member, source, target)
        elif fields.is_keyed(member) and key in ("file", "path"):
            for at_key in member["keys"]:
                at_key[1] = _moved(at_key[1], source, target) if isinstance(at_key[1], str) else at_key[1]
        else:
            _move_files(member, source, target)


def _moved(name: str, source: str, target: str) -> str:
    if name.startswith("//"):
        name = bpy.path.abspath(name)
    elif not os.path.isabs(name) and os.path.normpath(source) == os.path.normpath(target):
        return name
    path = os.path.normpath(os.path.join(source, name))
    relative = os.path.relpath(path, target)
    return path if relative.startswith(os.path.join("..", "..", "..")) else relative


def is_rendered(tree: bpy.types.NodeTree) -> bool:
    """Whether the document's scene has something to see, and a camera to see it."""
    scene = rest_of(tree).get("scene", {})
    elements = list(_elements(scene.get("elements", [])))
    has_shape = "file" in scene or any("shape" in element for element in elements)
    return has_shape and ("file" in scene or any("camera" in element for element in elements))


def _elements(elements: Any) -> Any:
    for element in elements:
        yield element
        yield from _elements(element.get("children", []))

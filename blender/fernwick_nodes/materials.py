"""Principled materials out of baked images."""

from __future__ import annotations

from collections.abc import Mapping

import bpy

from .errors import Refusal
from .meshes import active_uv

MARK = "fernwick"
"""Of the nodes that belong to the add-on: what they stand for. All others of a material are left alone."""
_PLACES = {"uv": (-900, 0), "color": (-620, 300), "alpha": (-620, 0), "normal": (-620, -300), "map": (-280, -300)}
_BASE = ("color", "main", "value")


def make(
    thing: bpy.types.Object, images: Mapping[str, bpy.types.Image], uv_layer: str = "", name: str = ""
) -> bpy.types.Material:
    """Makes or updates the Principled material of an object: base colour, alpha and normal.

    What the user has added or changed beside these stays.

    :param images: by channel
    :param uv_layer: the UV map that they are laid out by; without one that which Blender renders with

    Raises Refusal for an object of another file.
    """
    material = _material(thing, name or thing.name)
    tree = material.node_tree
    principled = _principled(tree)
    uv = _node(tree, "uv", "ShaderNodeUVMap")
    uv_layer = uv_layer or active_uv(thing)
    uv.uv_map = uv_layer
    base = next((channel for channel in _BASE if channel in images), None)
    if base:
        picture = _picture(tree, "color", images[base], uv)
        tree.links.new(picture.outputs["Color"], principled.inputs["Base Color"])
    _alpha(material, tree, principled, images, base, uv)
    if "normal" in images:
        picture = _picture(tree, "normal", images["normal"], uv)
        bend = _node(tree, "map", "ShaderNodeNormalMap")
        bend.space = "TANGENT"
        bend.uv_map = uv_layer
        tree.links.new(picture.outputs["Color"], bend.inputs["Color"])
        tree.links.new(bend.outputs["Normal"], principled.inputs["Normal"])
    else:
        _drop(tree, "normal", "map")
    return material


def _alpha(
    material: bpy.types.Material,
    tree: bpy.types.NodeTree,
    principled: bpy.types.Node,
    images: Mapping[str, bpy.types.Image],
    base: str | None,
    uv: bpy.types.Node,
) -> None:
    if "alpha" in images:
        picture = _picture(tree, "alpha", images["alpha"], uv)
        tree.links.new(picture.outputs["Color"], principled.inputs["Alpha"])
        if hasattr(material, "blend_method"):
            material.blend_method = "HASHED"
    else:
        _drop(tree, "alpha")
        principled.inputs["Alpha"].default_value = 1


def _material(thing: bpy.types.Object, name: str) -> bpy.types.Material:
    """The material of the first slot if the add-on has made it, else a new one in that slot."""
    for slot in thing.material_slots:
        if slot.material and slot.material.get(MARK) and slot.material.library is None:
            slot.material.use_nodes = True
            return slot.material
    if thing.library is not None or thing.data.library is not None:
        raise Refusal(f'"{thing.name}" is of another file, whose materials stay: make it local, or bake images')
    material = bpy.data.materials.new(name)
    material.use_nodes = True
    material[MARK] = 1
    if thing.material_slots:
        thing.material_slots[0].material = material
    else:
        thing.data.materials.append(material)
    return material


def _principled(tree: bpy.types.NodeTree) -> bpy.types.Node:
    for node in tree.nodes:
        if node.type == "BSDF_PRINCIPLED":
            return node
    node = tree.nodes.new("ShaderNodeBsdfPrincipled")
    output = next((each for each in tree.nodes if each.type == "OUTPUT_MATERIAL"), None)
    if output is None:
        output = tree.nodes.new("ShaderNodeOutputMaterial")
        output.location = (300, 0)
    tree.links.new(node.outputs["BSDF"], output.inputs["Surface"])
    return node


def _picture(tree: bpy.types.NodeTree, mark: str, image: bpy.types.Image, uv: bpy.types.Node) -> bpy.types.Node:
    node = _node(tree, mark, "ShaderNodeTexImage")
    node.image = image
    if image.source == "SEQUENCE":
        node.image_user.frame_duration = image.get("fernwick_frames", 1)
        node.image_user.frame_start = image.get("fernwick_first", 1)
        node.image_user.frame_offset = image.get("fernwick_first", 1) - 1
        node.image_user.use_auto_refresh = True
    tree.links.new(uv.outputs["UV"], node.inputs["Vector"])
    return node


def _node(tree: bpy.types.NodeTree, mark: str, kind: str) -> bpy.types.Node:
    for node in tree.nodes:
        if node.get(MARK) == mark and node.bl_idname == kind:
            return node
    node = tree.nodes.new(kind)
    node[MARK] = mark
    node.location = _PLACES[mark]
    node.label = {"color": "Base colour", "alpha": "Alpha", "normal": "Normal"}.get(mark, "")
    return node


def _drop(tree: bpy.types.NodeTree, *marks: str) -> None:
    for node in [node for node in tree.nodes if node.get(MARK) in marks]:
        tree.nodes.remove(node)

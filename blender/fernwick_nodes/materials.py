"""Principled materials out of baked images."""

from __future__ import annotations

from collections.abc import Mapping

import bpy
import numpy as np

from .errors import Refusal
from .images import FIRST, FRAMES, number_of, shown_by
from .meshes import active_uv

MARK = "fernwick"
"""Of the nodes that belong to the add-on: what they stand for. All others of a material are left alone."""
_PLACES = {"uv": (-900, 0), "color": (-620, 300), "alpha": (-620, 0), "normal": (-620, -300), "map": (-280, -300)}
_BASE = ("color", "main", "value")


def make(
    thing: bpy.types.Object,
    images: Mapping[str, bpy.types.Image],
    uv_layer: str = "",
    name: str = "",
    shared: bool = False,
) -> bpy.types.Material:
    """Makes or updates the Principled material of an object: base colour, alpha and normal.

    What the user has added or changed beside these stays.

    :param images: by channel
    :param uv_layer: the UV map that they are laid out by; without one that which Blender renders with
    :param shared: all objects that share the mesh or the material get it; else those keep theirs, and where they would
        not, the material is a copy, or in a slot of the object alone

    Raises Refusal for an object of another file.
    """
    material = _material(thing, name or thing.name, shared)
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


def is_shared(thing: bpy.types.Object) -> bool:
    """Whether a bake may concern other objects: by the mesh, or by a material that the add-on has made."""
    users = [thing.data, *(slot.material for slot in thing.material_slots if _is_made(slot.material))]
    return any(each is not None and each.users - each.use_fake_user > 1 for each in users)


def remarks(thing: bpy.types.Object, material: bpy.types.Material) -> list[str]:
    """What an object shows of a material that was baked, and who doesn't, where that may surprise."""
    told = []
    count = faces_of_others(thing, material)
    if count:
        told.append(
            f"{count} of {len(thing.data.polygons)} faces keep the materials of other slots: "
            "assign the baked one to them in Edit Mode"
        )
    shown = shown_by({material})
    keep = sum(each.data == thing.data and each not in shown for each in bpy.data.objects if each.users)
    if keep:
        told.append(
            f'Other objects that share the mesh and keep their material: {keep}. Switch on "Shared" to bake for all'
        )
    return told


def faces_of_others(thing: bpy.types.Object, material: bpy.types.Material) -> int:
    """How many faces show the materials of other slots."""
    slots = [slot.material for slot in thing.material_slots]
    if thing.type != "MESH" or len(slots) < 2:
        return 0
    indices = np.empty(len(thing.data.polygons), np.int32)
    thing.data.polygons.foreach_get("material_index", indices)
    shows = np.array([each == material for each in slots])
    return int((~shows[indices.clip(0, len(slots) - 1)]).sum())


def _material(thing: bpy.types.Object, name: str, shared: bool) -> bpy.types.Material:
    """The material that the add-on has made for the object, else a new one in the first slot."""
    if thing.library is not None or thing.data.library is not None:
        slot = next((slot for slot in thing.material_slots if _is_made(slot.material)), None)
        if slot is None:
            raise Refusal(f'"{thing.name}" is of another file, whose materials stay: make it local, or bake images')
        return _ready(slot.material)
    index = next((i for i, slot in enumerate(thing.material_slots) if _is_made(slot.material)), 0)
    if not thing.material_slots:
        thing.data.materials.append(None)
    slot = thing.material_slots[index]
    if shared:
        slot.link = "DATA"
    made = slot.material if _is_made(slot.material) else None
    if made is None or (not shared and shown_by({made}) != {thing}):
        made = bpy.data.materials.new(name) if made is None else made.copy()
        made[MARK] = 1
        if name not in bpy.data.materials:  # Blender would take it from the one that has it
            made.name = name
        if not shared and any(each.data == thing.data for each in bpy.data.objects if each != thing):
            slot.link = "OBJECT"
        slot.material = made
    return _ready(made)


def _is_made(material: bpy.types.Material | None) -> bool:
    return material is not None and bool(material.get(MARK)) and material.library is None


def _ready(material: bpy.types.Material) -> bpy.types.Material:
    material.use_nodes = True
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
        first = image.get(FIRST, 1)
        node.image_user.frame_duration = image.get(FRAMES, 1)
        node.image_user.frame_start = first
        node.image_user.frame_offset = number_of(first, first) - 1
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

"""How fields are laid out: the ones that matter most in the node, all of them in the sidebar."""

from __future__ import annotations

import re
import textwrap
from typing import TYPE_CHECKING

from . import fields

if TYPE_CHECKING:
    import bpy

FEWEST_SLOTS = 4  # that a long array of slots shows
_FEW = 6  # groups of fields that a node shows as a whole
WIDTHS = {"Weave": 210, "Fresnel": 220, "Iridescent": 220, "Curvature": 220, "Location": 260, "Key": 220}

# Of classes with more fields those that the node shows; the sidebar has all.
_MAIN = {
    "Weave": ["fWeaveMode", "fRepeatU", "fRepeatV", "fWarpGap", "fWeftGap", "fRoundAcross", "fRoundAlong"],
    "Gray": ["fMode", "fSaturationShift", "fRedShift", "fGreenShift", "fBlueShift"],
    "Super_mixer": ["fDistribution", "fCombineMode", "fSmooth", "fSmoothWidth", "fShiftAmount"],
    "Super_mixer_top": ["fDistribution", "fSmooth", "fSmoothWidth", "fShiftAmount"],
    "Iridescent": ["fReferenceMode", "fObjectName", "fAzimuth", "fElevation", "fBands"],
    "Curvature": ["fObjectName", "fSurfaceName", "fBands"],
    "Fresnel": ["fCameraName", "fMode", "fIndex2Re", "fIndex2Im", "fWavelength", "fDispersion", "fColored"],
    "Proximity": ["fTargetName", "fMaxDistance", "fFalloff", "fOffset", "fSingleObject"],
    "Lit": ["fLightName", "fAngleRange", "fUseLightColor", "fInvert"],
    "Translucent": ["fCameraName", "fLightName", "fAngleRange", "fFalloffMode", "fInvert"],
    "Drip": ["fCenterU", "fCenterV", "fAmplitude", "fBaseLevel", "fRingStart", "fRingWidth", "fWaves"],
    "Spoke": ["fCount", "fWidth", "fSoftness", "fInnerRadius", "fOuterRadius", "fRotation"],
    "MultiPassControl": ["fLevel"],
    "MultiPassManager": [],
}
_OBJECTS = {"fCameraName", "fLightName", "fObjectName", "fSurfaceName", "fTargetName"}  # hold names of objects


def draw_main(node: bpy.types.Node, layout: bpy.types.UILayout) -> None:
    """What the node itself shows."""
    groups = fields.groups(node.table)
    chosen = _MAIN.get(node.table, list(groups) if len(groups) <= _FEW else list(groups)[:_FEW])
    column = layout.column()
    for base in chosen:
        if base in groups:
            _draw_group(node, column, groups[base], brief=True)


def draw_all(node: bpy.types.Node, layout: bpy.types.UILayout) -> None:
    for leaves in fields.groups(node.table).values():
        _draw_group(node, layout, leaves, brief=False)


def _draw_group(node: bpy.types.Node, layout: bpy.types.UILayout, leaves: list[fields.Leaf], brief: bool) -> None:
    if len(leaves) == 1 and leaves[0].address == leaves[0].base:
        _draw_leaf(node, layout, leaves[0], brief)
    elif "." in leaves[0].address:
        _draw_records(node, layout, leaves, brief)
    else:
        column = layout.column(align=True)
        column.label(text=_common_label(leaves))
        rows: dict[str, list[fields.Leaf]] = {}
        for leaf in leaves:
            indices = re.findall(r"\[(\d+)\]", leaf.address)
            rows.setdefault(indices[0] if len(indices) > 1 else "", []).append(leaf)
        if leaves[0].components > 1 or leaves[0].field.type == "string":
            for i, leaf in enumerate(leaves):
                column.row(align=True).prop(node, leaf.property, text=str(i + 1))
            return
        for row_leaves in rows.values():
            row = column.row(align=True)
            for leaf in row_leaves:
                row.prop(node, leaf.property, text="", toggle=1 if leaf.field.type == "bool" else -1)


def _draw_leaf(node: bpy.types.Node, layout: bpy.types.UILayout, leaf: fields.Leaf, brief: bool) -> None:
    import bpy

    kind = leaf.field.type
    if kind == "colors":
        _draw_colors(node, layout, leaf)
    elif leaf.address in _OBJECTS and not _is_elsewhere(node, leaf):
        layout.prop_search(node, leaf.property, bpy.context.scene, "objects", text=leaf.field.label)
    elif kind in ("vector2", "vector3"):
        column = layout.column(align=True)
        column.label(text=_title(leaf))
        column.row(align=True).prop(node, leaf.property, text="")
    elif kind == "file":
        layout.template_ID(node, "image", open="image.open")
        if not node.image:
            layout.prop(node, leaf.property, text="")
    else:
        row = layout.row()
        if leaf.field.only_with:
            other, value = leaf.field.only_with
            row.active = str(getattr(node, fields.leaves(node.table)[other].property)) == str(value)
        if leaf.field.choices and not (brief and _is_told(leaf)):
            row = row.split(factor=0.5)
            row.label(text=leaf.field.label)
        row.prop(node, leaf.property, text="" if leaf.field.choices else _title(leaf))


def _draw_records(node: bpy.types.Node, layout: bpy.types.UILayout, leaves: list[fields.Leaf], brief: bool) -> None:
    """Records one a row; the first says what the columns are."""
    records: dict[str, list[fields.Leaf]] = {}
    for leaf in leaves:
        records.setdefault(leaf.address.rsplit(".", 1)[0], []).append(leaf)
    is_switched = any(leaf.field.type == "bool" for leaf in leaves)
    column = layout.column(align=True)
    for several in records.values():
        title = several[0].field.label.split(":")[0]
        if is_switched:
            switch = next(leaf for leaf in several if leaf.field.type == "bool")
            row = column.row(align=True)
            row.prop(node, switch.property, text=title, toggle=1)
            if getattr(node, switch.property) or not brief:
                row = column.row(align=True)
                for leaf in several:
                    if leaf is not switch:
                        row.prop(node, leaf.property, text="")
            continue
        row = column.split(factor=0.25, align=True)
        row.label(text=title)
        inner = row.row(align=True)
        for leaf in several:
            if not (brief and leaf.address.endswith("Width")):
                inner.prop(node, leaf.property, text="")


def _draw_colors(node: bpy.types.Node, layout: bpy.types.UILayout, leaf: fields.Leaf) -> None:
    column = layout.column(align=True)
    items = getattr(node, leaf.property)
    for i, item in enumerate(items):
        row = column.row(align=True)
        row.prop(item, "color", text="")
        if len(items) > 2:
            _operator(row, node, "REMOVE", i, "X")
    _operator(column, node, "ADD", len(items), "ADD")


def _operator(layout: bpy.types.UILayout, node: bpy.types.Node, action: str, index: int, icon: str) -> None:
    operator = layout.operator("fernwick.color", text="Add a colour" if action == "ADD" else "", icon=icon)
    operator.tree, operator.node, operator.action, operator.index = node.id_data.name, node.name, action, index


def wrapped(text: str, width: float) -> list[str]:
    """A text in lines that fit.

    :param width: in pixels of a screen of the usual density
    """
    return textwrap.wrap(text, max(int(width / 6.6), 16))


def sidebar_width(context: bpy.types.Context) -> float:
    return context.region.width / context.preferences.system.ui_scale - 34


def _is_elsewhere(node: bpy.types.Node, leaf: fields.Leaf) -> bool:
    """Whether a name is none of an object of Blender: that of the document's scene, or one that stands for another."""
    choice = node.id_data.settings
    return choice.own_scene or choice.mode == "SCENE" or getattr(node, leaf.property) == (leaf.default or None)


def _title(leaf: fields.Leaf) -> str:
    unit = leaf.field.unit
    return f"{leaf.field.label} ({_UNITS[unit]})" if unit in _UNITS else leaf.field.label


def _is_told(leaf: fields.Leaf) -> bool:
    """Whether the choices say by themselves what they are of."""
    return leaf.base in ("fMode", "fWeaveMode", "fDistribution", "fFalloffMode")


def _common_label(leaves: list[fields.Leaf]) -> str:
    text = re.sub(r"\s*\d+( and \w+ \d+)?", "", leaves[0].field.label).strip()
    return f"{text} (%)" if leaves[0].field.unit == "%" else text


_UNITS = {"degrees": "°", "radians": "rad", "nm": "nm", "K": "K", "scene units": "m"}

"""The one kind of socket: a shader, with what it offers or what is asked of it."""

from __future__ import annotations

from typing import Any

import bpy

from . import slots


class FernwickShaderSocket(bpy.types.NodeSocket):
    """A shader that is plugged in"""

    bl_idname = "FernwickShaderSocket"
    bl_label = "Shader"

    kinds: bpy.props.StringProperty(  # type: ignore[valid-type]
        name="Kinds", description="What is offered, or asked for", default="value color surface", options={"HIDDEN"}
    )
    keeps: bpy.props.BoolProperty(  # type: ignore[valid-type]
        name="Keeps", description="A document has plugged in what doesn't fit", default=False, options={"HIDDEN"}
    )

    def draw(self, context: bpy.types.Context, layout: bpy.types.UILayout, node: bpy.types.Node, text: str) -> None:
        layout.label(text=text)

    def draw_color(self, context: bpy.types.Context, node: bpy.types.Node) -> tuple[float, ...]:
        return slots.tint(self.kinds.split())

    @classmethod
    def draw_color_simple(cls) -> tuple[float, ...]:
        return slots.tint(())


def add(collection: Any, name: str, identifier: str, kinds: Any) -> bpy.types.NodeSocket:
    socket = collection.new(FernwickShaderSocket.bl_idname, name, identifier=identifier)
    socket.kinds = " ".join(sorted(kinds))
    return socket

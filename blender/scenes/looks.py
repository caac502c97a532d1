"""Bakes graphs onto objects through the add-on, and puts them into materials."""

from __future__ import annotations

from collections.abc import Mapping, Sequence
from typing import Any

import bpy
import fernwick
import numpy as np
from fernwick_nodes import baking, images, materials

SIZE_FACTOR = 1.0  # of all baked pictures, for quick looks

# Real and imaginary index and dispersion, at red, green and blue: as measured, or a row that disperses by itself.
GOLD = ((0.17, 3.15, 0), (0.38, 2.45, 0), (1.35, 1.80, 0))
COPPER = ((0.24, 3.6, 0), (0.95, 2.58, 0), (1.15, 2.4, 0))
SILVER = ((0.121, 3.5, 0.01136),) * 3
BRONZE = ((1.18, 2.5, 0.8),) * 3
BLUED = ((2.16, 7.1, -1.182),) * 3
VIOLET = ((0.46818, 2.80877, 0.95525),) * 3


def bake(thing: bpy.types.Object, *arguments: Any, **options: Any) -> dict[str, bpy.types.Image]:
    """Bakes channels of a graph onto an object as it stands in the scene; arguments are those of `arrays`."""
    return {
        channel: image(f"{thing.name} {channel}", picture, channel)
        for channel, picture in arrays(thing, *arguments, **options).items()
    }


def arrays(
    thing: bpy.types.Object,
    graph: Any,
    size: int | tuple[int, int],
    channels: str | Sequence[str],
    samples: int = 1,
    margin: int = 16,
) -> dict[str, Any]:
    """What `bake` makes images of: floats by channel, row 0 at the top."""
    bpy.context.view_layer.update()
    wanted = [channels] if isinstance(channels, str) else list(channels)
    width, height = (size, size) if isinstance(size, int) else size
    scaled = (max(8, round(width * SIZE_FACTOR)), max(8, round(height * SIZE_FACTOR)))
    return baking.bake(thing, graph, scaled, wanted, samples=samples, margin=margin)


def image(name: str, picture: Any, channel: str = "color") -> bpy.types.Image:
    """Floats as an image of Blender, without a copy in a file."""
    height, width = picture.shape[:2]
    made = bpy.data.images.new(name, width, height, alpha=True, float_buffer=True, is_data=channel not in images.COLORS)
    images.describe(made, channel)
    images.fill(made, images.pixels_of(picture, channel))
    return made


def cover(
    thing: bpy.types.Object,
    pictures: Mapping[str, bpy.types.Image],
    relief: float = 1.0,
    height: float = 0.0,
    **settings: Any,
) -> bpy.types.Material:
    """A Principled material out of baked images.

    :param pictures: "color", "alpha" and "normal" as the add-on takes them; "roughness", "metallic" and "height" too
    :param relief: strength of the normal map
    :param height: length that a "height" of 1 stands for
    :param settings: further inputs of the Principled by their names, with _ for a space
    """
    material = materials.make(
        thing, {name: pictures[name] for name in ("color", "alpha", "normal") if name in pictures}
    )
    tree = material.node_tree
    principled = next(node for node in tree.nodes if node.type == "BSDF_PRINCIPLED")
    for name, value in settings.items():
        principled.inputs[name.replace("_", " ")].default_value = (*value, 1) if isinstance(value, tuple) else value
    for name in ("roughness", "metallic"):
        if name in pictures:
            tree.links.new(texture(tree, pictures[name]).outputs["Color"], principled.inputs[name.capitalize()])
    bend = next((node for node in tree.nodes if node.type == "NORMAL_MAP"), None)
    if bend:
        bend.inputs["Strength"].default_value = relief
    if "height" in pictures:
        bump = tree.nodes.new("ShaderNodeBump")
        bump.inputs["Distance"].default_value = height
        tree.links.new(texture(tree, pictures["height"]).outputs["Color"], bump.inputs["Height"])
        if bend:
            tree.links.new(bend.outputs["Normal"], bump.inputs["Normal"])
        tree.links.new(bump.outputs["Normal"], principled.inputs["Normal"])
    return material


def texture(tree: bpy.types.NodeTree, picture: bpy.types.Image) -> bpy.types.Node:
    node = tree.nodes.new("ShaderNodeTexImage")
    node.image = picture
    return node


def plain(thing: bpy.types.Object, color: Sequence[float], **settings: Any) -> bpy.types.Material:
    """A Principled material of one colour."""
    material = bpy.data.materials.new(thing.name)
    material.use_nodes = True
    principled = material.node_tree.nodes["Principled BSDF"]
    principled.inputs["Base Color"].default_value = (*color, 1)
    for name, value in settings.items():
        principled.inputs[name.replace("_", " ")].default_value = value
    thing.data.materials.clear()
    thing.data.materials.append(material)
    return material


def ramp(control: Any, colors: Sequence[str | Sequence[float]], shift: Any = None, amount: int = 0) -> Any:
    """A Super_mixer that turns a control from 0 to 1 into colours at even distances, each fading into the next.

    The mixer doesn't fade at 0 and 100, so that towards both ends the last but one colour adds to the last:
    choose those darker by as much.
    """
    count = len(colors)
    step = 100 / (count - 1)
    mixer = fernwick.Super_mixer(fSmooth=True, fLinearEdge=True, fSmoothWidth=50)
    mixer.fSubShader[0] = control
    for index, color in enumerate(colors):
        mixer.fSubShader[2 + index] = fernwick.Color(color)
        mixer.fRange[index] = [(index - 1) * step, (index + 1) * step]
    if shift is not None:
        mixer.fMixStyle, mixer.fShiftAmount = "Moved by the shader", amount
        mixer.fSubShader[1] = shift
    return mixer


def switch(control: Any, below: Any, above: Any, at: float = 50, blend: float = 6) -> Any:
    """A Super_mixer that shows one layer below a control and another one above, fading within some percent."""
    mixer = fernwick.Super_mixer(fSmooth=True, fLinearEdge=True)
    mixer.fSubShader[0], mixer.fSubShader[2], mixer.fSubShader[3] = control, below, above
    low, high = at - blend / 2, at + blend / 2
    # A fade is a share of its range, so both ranges are as wide.
    mixer.fRange[0], mixer.fRange[1] = [high - 200, high], [low, low + 200]
    mixer.fSmoothWidth = max(1, round(blend / 2))
    return mixer


def picture(values: Any) -> Any:
    """An array as a source of the shaders: row 0 at the top, plain numbers."""
    return fernwick.Picture(np.ascontiguousarray(values, np.float32))


def wear_color(thing: bpy.types.Object, picture: bpy.types.Image, gain: float) -> None:
    """Gives a thing the colours that a picture has at its UV, brighter by a factor."""
    material = plain(thing, (1, 1, 1), Roughness=0.9, Specular=0.05)
    tree = material.node_tree
    brighter = tree.nodes.new("ShaderNodeVectorMath")
    brighter.operation = "SCALE"
    brighter.inputs["Scale"].default_value = gain
    tree.links.new(texture(tree, picture).outputs["Color"], brighter.inputs[0])
    tree.links.new(brighter.outputs[0], tree.nodes["Principled BSDF"].inputs["Base Color"])


def strip(indices: Sequence[Sequence[float]], count: int = 256) -> Any:
    """What `Fresnel` reflects at even angles from 0 to 90 degrees, at 640, 545 and 455 nm: (count, 3).

    :param indices: real and imaginary index and dispersion of the second medium, for red, green and blue
    """
    eye = fernwick.Element("Eye", position=(0, 0, 1e6), camera=fernwick.Camera())
    angle = np.linspace(0, np.pi / 2, count)
    normals = np.stack([np.sin(angle), 0 * angle, np.cos(angle)], -1)
    columns = []
    for (real, imaginary, dispersion), wavelength in zip(indices, (640, 545, 455)):
        shader = fernwick.Fresnel(
            fCameraName="Eye", fIndex2Re=real, fIndex2Im=imaginary, fDispersion=dispersion, fWavelength=wavelength
        )
        columns.append(fernwick.Graph(shader, fernwick.Scene([eye])).shade(point=(0, 0, 0), normal=normals).red)
    return np.stack(columns, -1)


def metal(thing: bpy.types.Object, indices: Any, roughness: float, lacquer: float = 0.0) -> bpy.types.Material:
    """A metal that reflects by a strip of Fresnel, under a coat of lacquer.

    :param indices: as of `strip`
    :param lacquer: refractive index of the coat; 0 for none
    """
    material = bpy.data.materials.new(thing.name)
    material.use_nodes = True
    tree = material.node_tree
    tree.nodes.remove(tree.nodes["Principled BSDF"])
    output = tree.nodes["Material Output"]
    place = angle_of_view(tree)
    glossy = tree.nodes.new("ShaderNodeBsdfGlossy")
    glossy.inputs["Roughness"].default_value = roughness
    tree.links.new(strip_node(tree, place, f"{thing.name} metal", indices), glossy.inputs["Color"])
    surface = glossy
    if lacquer:
        coat = tree.nodes.new("ShaderNodeBsdfGlossy")
        coat.inputs["Roughness"].default_value = 0.02
        surface = tree.nodes.new("ShaderNodeMixShader")
        share = strip_node(tree, place, f"{thing.name} lacquer", ((lacquer, 1e-5, 0.0),) * 3)
        tree.links.new(share, surface.inputs[0])
        tree.links.new(glossy.outputs[0], surface.inputs[1])
        tree.links.new(coat.outputs[0], surface.inputs[2])
    tree.links.new(surface.outputs[0], output.inputs["Surface"])
    thing.data.materials.clear()
    thing.data.materials.append(material)
    return material


def angle_of_view(tree: bpy.types.NodeTree) -> bpy.types.NodeSocket:
    """A place on a strip: U is the angle between normal and view, 0 to 1 for 0 to 90 degrees."""
    geometry = tree.nodes.new("ShaderNodeNewGeometry")
    cosine = tree.nodes.new("ShaderNodeVectorMath")
    cosine.operation = "DOT_PRODUCT"
    tree.links.new(geometry.outputs["Normal"], cosine.inputs[0])
    tree.links.new(geometry.outputs["Incoming"], cosine.inputs[1])
    angle = tree.nodes.new("ShaderNodeMath")
    angle.operation = "ARCCOSINE"
    tree.links.new(cosine.outputs["Value"], angle.inputs[0])
    share = tree.nodes.new("ShaderNodeMath")
    share.operation = "DIVIDE"
    share.inputs[1].default_value = np.pi / 2
    tree.links.new(angle.outputs[0], share.inputs[0])
    place = tree.nodes.new("ShaderNodeCombineXYZ")
    place.inputs["Y"].default_value = 0.5
    tree.links.new(share.outputs[0], place.inputs["X"])
    return place.outputs[0]


def strip_node(tree: bpy.types.NodeTree, place: Any, name: str, indices: Any) -> bpy.types.NodeSocket:
    colors = np.ones((2, 256, 4), np.float32)
    colors[..., :3] = strip(indices)
    node = texture(tree, image(name, colors))
    node.extension = "EXTEND"
    tree.links.new(place, node.inputs[0])
    return node.outputs["Color"]

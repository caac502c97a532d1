"""Bakes a pattern with Cycles, run by Blender: `blender --background --factory-startup --python cycles.py --
PATTERN SIDE THREADS PICTURE`. With a number of bakes for PICTURE it keeps all in memory, prints the best seconds of real
and of processor time as JSON, and writes the floats of the last to the file named after it."""
import array
import json
import math
import resource
import sys
import time

import bpy


def processor_time():
    usage = resource.getrusage(resource.RUSAGE_SELF)
    return usage.ru_utime + usage.ru_stime


class Nodes:
    """The nodes of a material, each made with its inputs: numbers, vectors or outputs of other nodes."""

    def __init__(self, material):
        material.use_nodes = True
        self.tree = material.node_tree
        self.tree.nodes.clear()

    def make(self, kind, inputs, **settings):
        node = self.tree.nodes.new(kind)
        for name, value in settings.items():
            setattr(node, name, value)
        for name, value in inputs.items():
            if isinstance(value, bpy.types.NodeSocket):
                self.tree.links.new(value, node.inputs[name])
            else:
                node.inputs[name].default_value = value
        return node

    def math(self, operation, *operands):
        return self.make('ShaderNodeMath', dict(enumerate(operands)), operation=operation).outputs[0]


def rings(nodes, uv):
    radius = nodes.make('ShaderNodeVectorMath', {0: uv, 1: (0.5, 0.5, 0)}, operation='DISTANCE').outputs['Value']
    share = nodes.math('DIVIDE', nodes.math('SUBTRACT', radius, 0.1), 0.35)
    phase = nodes.math('ABSOLUTE', nodes.math('MULTIPLY_ADD', share, 2 * math.pi, -math.pi))
    wave = nodes.math('MULTIPLY', nodes.math('COSINE', nodes.math('MULTIPLY', phase, 5)), 0.45)
    envelope = nodes.math('MULTIPLY_ADD', phase, -1 / math.pi, 1)
    inside = nodes.math('GREATER_THAN', envelope, 0)
    return nodes.math('MULTIPLY_ADD', nodes.math('MULTIPLY', wave, envelope), inside, 0.5)


def bricks(nodes, uv):
    moved = nodes.make('ShaderNodeVectorMath', {0: uv, 1: (-0.25 / 8, 0, 0)}, operation='ADD').outputs['Vector']
    brick, mortar = (0.5, 0.125, 0.0625, 1), (0.75, 0.75, 0.5, 1)
    return nodes.make('ShaderNodeTexBrick', {
        'Vector': moved, 'Color1': brick, 'Color2': brick, 'Mortar': mortar, 'Scale': 8, 'Mortar Size': 0.025,
        'Mortar Smooth': 0, 'Bias': 0, 'Brick Width': 1, 'Row Height': 0.5}, offset=0.5, offset_frequency=2,
        squash=1).outputs['Color']


def make_scene(pattern, side, threads, is_float):
    """A square that emits the pattern, selected, with an image to bake it into."""
    bpy.ops.wm.read_factory_settings(use_empty=True)
    scene = bpy.context.scene
    scene.render.engine = 'CYCLES'
    scene.render.threads_mode = 'FIXED'
    scene.render.threads = threads
    scene.cycles.device = 'CPU'
    scene.cycles.samples = 1
    scene.cycles.use_adaptive_sampling = False
    scene.cycles.use_denoising = False
    scene.render.bake.margin = 0
    scene.render.bake.use_clear = False

    corners = [(0, 0), (1, 0), (1, 1), (0, 1)]
    mesh = bpy.data.meshes.new('square')
    mesh.from_pydata([(u, v, 0) for u, v in corners], [], [(0, 1, 2, 3)])
    layer = mesh.uv_layers.new()
    for corner, uv in zip(layer.data, corners):
        corner.uv = uv
    square = bpy.data.objects.new('square', mesh)
    scene.collection.objects.link(square)
    bpy.context.view_layer.objects.active = square
    square.select_set(True)

    material = bpy.data.materials.new('pattern')
    mesh.materials.append(material)
    nodes = Nodes(material)
    uv = nodes.make('ShaderNodeTexCoord', {}).outputs['UV']
    emission = nodes.make('ShaderNodeEmission', {'Color': pattern(nodes, uv)}).outputs[0]
    nodes.make('ShaderNodeOutputMaterial', {'Surface': emission})
    image = bpy.data.images.new('baked', side, side, float_buffer=is_float, is_data=is_float)
    nodes.tree.nodes.active = nodes.make('ShaderNodeTexImage', {}, image=image)
    return image


def main(name, side, threads, picture, floats=None):
    image = make_scene({'rings': rings, 'bricks': bricks}[name], int(side), int(threads), floats is not None)
    if floats is None:
        bpy.ops.object.bake(type='EMIT')
        image.filepath_raw = picture
        image.file_format = 'PNG'
        image.save()
        return
    times = []
    for _ in range(int(picture)):
        start = time.monotonic(), processor_time()
        bpy.ops.object.bake(type='EMIT')
        times.append((time.monotonic() - start[0], processor_time() - start[1]))
    pixels = array.array('f', bytes(4 * len(image.pixels)))
    image.pixels.foreach_get(pixels)
    with open(floats, 'wb') as file:
        pixels.tofile(file)
    print(json.dumps({'version': bpy.app.version_string, 'real': min(real for real, _ in times),
                      'processor': min(processor for _, processor in times)}))


main(*sys.argv[sys.argv.index('--') + 1:])

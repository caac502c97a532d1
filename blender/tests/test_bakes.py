"""What is baked onto objects, and what becomes of it."""


import json
import time

import bpy
import fernwick
import numpy as np
from fernwick_nodes import baking, document, handlers, images, meshes, messages, preview, tasks
from fernwick_nodes.errors import Refusal
from fernwick_nodes.scene import scene_of
from support import CLOTH, Case, command, pixels, scene_with_lamp, write_ply

SIZE = (96, 64)
CHANNELS = ["color", "alpha", "normal"]


class Bakes(Case):
    def test_equal_those_of_the_command_to_the_bit(self) -> None:
        box = scene_with_lamp()
        self.assertGreater(len(self._arrays(box).corners), 12)  # the modifier counts
        self._assert_command_agrees(box, CLOTH)

    def test_equal_those_of_the_command_for_shaders_that_look_around(self) -> None:
        box = scene_with_lamp()
        bpy.ops.object.empty_add(location=(1.5, 0, 1))
        bpy.context.object.name = "Near"
        shaders = {
            "Location": {"fAxes[2]": {"fEnabled": True, "fEdgeA": -1, "fEdgeB": 1}, "fSpace": "LOCL"},
            "Proximity": {"fTargetName": "Near", "fMaxDistance": 3},
            "Fresnel": {},
            "Translucent": {"fCameraName": "Eye", "fLightName": "Lamp", "fAngleRange": [0, 3.1]},
            "Iridescent": {"fReferenceMode": "Object", "fObjectName": "Lamp"},
            "Curvature": {"fObjectName": "Near", "fSurfaceName": "Box"},
            "Coordinate_Shift": {"fMode": "Object", "fObjectName": "Near", "fSubShader": "Location"},
        }
        for name, members in shaders.items():
            with self.subTest(name):
                made = {each: {"class": each, **shaders[each]} for each in {name, "Location"}}
                self._assert_command_agrees(box, {"shaders": made, "output": name})

    def test_go_onto_all_tiles(self) -> None:
        box = scene_with_lamp()
        box.modifiers.clear()
        layer = box.data.uv_layers.active.data
        for polygon in list(box.data.polygons)[:3]:
            for loop in polygon.loop_indices:
                layer[loop].uv.x += 1
        bpy.ops.wm.save_as_mainfile(filepath=str(self.folder / "tiles.blend"))
        self.assertEqual(baking.tiles(box, CLOTH), [1001, 1002])
        material = baking.bake_material(box, CLOTH, 32)
        image = next(node.image for node in material.node_tree.nodes if node.label == "Base colour")
        self.assertEqual((image.source, [tile.number for tile in image.tiles]), ("TILED", [1001, 1002]))
        self.assertTrue(image.filepath.startswith("//"))  # it may be moved with its pictures
        for tile in (1001, 1002):
            picture = baking.bake(box, CLOTH, 32, "color", tile=tile)["color"]
            stored = fernwick.load_picture(bpy.path.abspath(image.filepath.replace("<UDIM>", str(tile))))
            self.assertBits(stored, picture)

    def test_make_and_update_one_material(self) -> None:
        box = scene_with_lamp()
        tree = self.cloth()
        tree.settings.target = box
        tree.settings.width = tree.settings.height = 64
        bpy.context.scene.fernwick_tree = tree
        self.assertEqual(bpy.ops.fernwick.bake_material(), {"FINISHED"})
        material = box.material_slots[0].material
        principled = next(node for node in material.node_tree.nodes if node.type == "BSDF_PRINCIPLED")
        principled.inputs["Roughness"].default_value = 0.125
        count = len(material.node_tree.nodes)
        for name in ("Base Color", "Alpha", "Normal"):
            self.assertTrue(principled.inputs[name].is_linked, name)
        image = principled.inputs["Base Color"].links[0].from_node.image
        self.assertBits(pixels(image), images.pixels_of(baking.bake(box, tree, 64)["color"], "color"))
        tree.nodes["red"].color_ = (0, 0, 1, 1)
        before = pixels(image)
        bpy.ops.fernwick.bake_material()
        self.assertEqual((len(box.material_slots), len(material.node_tree.nodes)), (1, count))
        self.assertEqual(principled.inputs["Roughness"].default_value, 0.125)
        self.assertFalse(np.array_equal(before, pixels(image)))

    def test_of_animated_trees_are_sequences(self) -> None:
        box = scene_with_lamp()
        tree = self.cloth()
        handlers.know_trees(bpy.context.scene)
        tree.settings.width = tree.settings.height = 16
        tree.settings.folder = str(self.folder)
        for frame, repeat in ((1, 2), (3, 8)):
            tree.nodes["cloth"].fRepeatU = repeat
            tree.nodes["cloth"].keyframe_insert("fRepeatU", frame=frame)
        bpy.context.view_layer.objects.active = box
        bpy.context.scene.fernwick_tree = tree
        bpy.context.scene.frame_start, bpy.context.scene.frame_end = 1, 3
        bpy.context.scene.frame_set(2)
        bpy.ops.fernwick.bake_sequence()
        self.assertEqual(bpy.context.scene.frame_current, 2)
        pictures = [fernwick.load_picture(path) for path in sorted(self.folder.glob("Box.color.*.exr"))]
        self.assertEqual(len(pictures), 3)
        for frame, picture in enumerate(pictures, 1):
            bpy.context.scene.frame_set(frame)
            self.assertBits(picture, baking.bake(box, tree, 16, "color")["color"])
        self.assertFalse(np.array_equal(pictures[0], pictures[2]))
        image = next(image for image in bpy.data.images if image.source == "SEQUENCE")
        self.assertEqual((image["fernwick_first"], image["fernwick_frames"]), (1, 3))

    def test_go_on_beside_the_interface_and_can_be_stopped(self) -> None:
        box = scene_with_lamp()
        expected = baking.bake(box, CLOTH, 64, "color")["color"]
        runner = tasks.Runner(baking.images_task(box, CLOTH, 64, "color"))
        while not runner.advance():
            time.sleep(0.001)
        self.assertBits(pixels(runner.result["color"]), images.pixels_of(expected, "color"))
        before = [image.name for image in bpy.data.images]
        runner = tasks.Runner(baking.images_task(box, CLOTH, 8192, "color", name="Large", samples=64))
        self.assertFalse(runner.advance())
        start = time.monotonic()
        runner.stop()
        self.assertLess(time.monotonic() - start, 20)  # minutes, if it went on
        self.assertEqual([image.name for image in bpy.data.images], before)

    def test_leave_images_of_the_user_alone(self) -> None:
        box = scene_with_lamp()
        own = bpy.data.images.new("Box color", 32, 32)
        box.name = "y" * 63  # which leaves no room for the channel
        long = baking.bake_images(box, CLOTH, 8)
        self.assertEqual(len({image.name for image in long.values()}), len(long))
        box.name = "Box"
        first = baking.bake_images(box, CLOTH, 8)["color"]
        self.assertEqual(baking.bake_images(box, CLOTH, 16)["color"], first)
        self.assertNotEqual(first, own)
        self.assertEqual((tuple(own.size), tuple(first.size)), ((32, 32), (16, 16)))

    def test_go_to_materials_of_this_file_alone(self) -> None:
        box = scene_with_lamp()
        library = self.folder / "library.blend"
        bpy.data.libraries.write(str(library), {box})
        with bpy.data.libraries.load(str(library), link=True) as (_, wanted):
            wanted.objects = [box.name]
        linked = wanted.objects[0]
        bpy.context.collection.objects.link(linked)
        bpy.context.view_layer.update()
        count = len(bpy.data.materials)
        with self.assertRaisesRegex(Refusal, "make it local"):
            baking.bake_material(linked, CLOTH, 8)
        self.assertEqual(len(bpy.data.materials), count)

    def test_refuse_what_cannot_be_with_a_sentence(self) -> None:
        box = scene_with_lamp()
        lamp = bpy.data.objects["Lamp"]
        empty = bpy.data.objects.new("Nothing", bpy.data.meshes.new("Nothing"))
        bpy.context.collection.objects.link(empty)
        gone = bpy.data.objects.new("Elsewhere", box.data)
        flat = box.copy()
        bpy.context.collection.objects.link(flat)
        flat.scale.z = 0
        bpy.context.view_layer.update()
        for thing, text in (
            (lamp, "is no mesh"),
            (empty, "no faces"),
            (gone, "not in this scene"),
            (flat, "a scale of 0"),
        ):
            with self.subTest(text), self.assertRaisesRegex(Refusal, text):
                baking.bake(thing, CLOTH, 16)
        while box.data.uv_layers:
            box.data.uv_layers.remove(box.data.uv_layers[0])
        with self.assertRaisesRegex(Refusal, "no UV map: unwrap it"):
            baking.bake(box, CLOTH, 16)
        tree = self.cloth()
        tree.settings.target = box
        bpy.context.scene.fernwick_tree = tree
        with self.assertRaisesRegex(RuntimeError, "no UV map: unwrap it"):
            bpy.ops.fernwick.bake_material()
        bpy.data.objects.remove(box)
        self.assertIsNone(tree.settings.target)
        tree.nodes.remove(tree.nodes["Output"])
        with self.assertRaisesRegex(RuntimeError, "no Output"):
            bpy.ops.fernwick.save(filepath=str(self.folder / "x.json"))

    def test_of_mirrored_objects_keep_their_front(self) -> None:
        box = scene_with_lamp()
        plain = baking.bake(box, CLOTH, 32)
        box.data.transform(((-1, 0, 0, 0), (0, 1, 0, 0), (0, 0, 1, 0), (0, 0, 0, 1)))
        box.data.flip_normals()
        box.scale.x *= -1
        mirrored = baking.bake(box, CLOTH, 32)
        np.testing.assert_allclose(mirrored["color"], plain["color"], atol=1e-4)

    def _arrays(self, thing: bpy.types.Object) -> meshes.Arrays:
        depsgraph = bpy.context.evaluated_depsgraph_get()
        return meshes.arrays_of(thing, depsgraph).scaled(meshes.rigid(thing.matrix_world)[2])

    def _assert_command_agrees(self, thing: bpy.types.Object, graph: dict) -> None:
        """Bakes the object here, and by the command with the scene in the document and the mesh in a file."""
        write_ply(self.folder / f"{thing.name}.ply", self._arrays(thing))
        depsgraph = bpy.context.evaluated_depsgraph_get()
        given = fernwick.Graph(graph, scene_of(depsgraph, graph, {thing.name: None}))
        written = given.to_dict()
        element = next(each for each in written["scene"]["elements"] if each["name"] == thing.name)
        element["shape"] = {"kind": "model", "file": f"{thing.name}.ply"}
        (self.folder / "graph.json").write_text(json.dumps(written))
        channels = [channel for channel in (*CHANNELS, "value") if channel in given.outputs]
        command(
            "bake", self.folder / "graph.json", "--onto", f"#{thing.name}", "--outputs", ",".join(channels),
            "--size", "96x64", "--margin", "4", "--bits", "32", "--straight", "-o", self.folder / "{output}.exr",
        )  # fmt: skip
        pictures = baking.bake(thing, graph, SIZE, channels, margin=4)
        for channel in channels:
            read = fernwick.load_picture(self.folder / f"{channel}.exr")
            if pictures[channel].ndim == 2:
                read = np.ascontiguousarray(read[..., 0])
            self.assertBits(pictures[channel], read)


class Previews(Case):
    def test_show_the_newest_change_and_never_hold_the_interface(self) -> None:
        tree = self.cloth()
        tree.settings.size = "512"
        preview.finish()
        preview.slowest.update(read=0, show=0)
        for i in range(20):  # faster than they can be shaded
            tree.nodes["cloth"].fRepeatU = i + 1
            preview.step()
        preview.finish()
        expected = fernwick.Graph(document.shading_document(tree), scene_of(bpy.context.evaluated_depsgraph_get()))
        self.assertBits(pixels(preview.image_of(tree)), images.pixels_of(expected.bake(512), "color"))
        self.assertLess(max(preview.slowest.values()), 0.03)

    def test_tell_what_is_wrong_and_go_on(self) -> None:
        tree = self.cloth()
        tree.settings.mode = "OBJECT"
        preview.finish()
        self.assertIn("Choose an object", self._told(tree))
        scene_with_lamp()
        preview.changed(tree)
        preview.finish()
        self.assertEqual(self._told(tree), "")
        bpy.data.objects.remove(bpy.data.objects["Box"])
        preview.changed(tree)
        preview.finish()
        self.assertIn("Choose an object", self._told(tree))
        tree.settings.mode, tree.settings.channel = "SQUARE", "third"
        preview.finish()
        self.assertIn('no "third"', self._told(tree))
        tree.settings.channel = "AUTO"
        tree.nodes["cloth"].fRepeatU = -1
        preview.finish()
        self.assertEqual(self._told(tree), "")
        self.assertIn("fRepeatU: expected 0 or more", messages.doubts(tree))

    def _told(self, tree: bpy.types.NodeTree) -> str:
        return " ".join(messages.told(tree))

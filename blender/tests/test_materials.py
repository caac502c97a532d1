"""Into which materials bakes go, and whose looks change."""

import bpy
import numpy as np
from fernwick_nodes import baking, messages
from support import CLOTH, Case, pixels, scene_with_lamp

PLAIN = {"shaders": {"grey": {"source": "color", "color": [0.5, 0.5, 0.5]}}, "output": "grey"}


def look(thing: bpy.types.Object) -> tuple[bpy.types.Material, float]:
    """The material of an object, and the sum of its base colour."""
    material = thing.material_slots[0].material
    node = next(node for node in material.node_tree.nodes if node.label == "Base colour")
    return material, float(pixels(node.image).sum())


class Sharing(Case):
    def test_of_a_mesh_leaves_the_others_as_they_look(self) -> None:
        box = scene_with_lamp()
        own = bpy.data.materials.new("Of the user")
        box.data.materials.append(own)
        twin = self._copy(box)
        material = baking.bake_material(box, CLOTH, 16)
        self.assertEqual((box.material_slots[0].link, twin.material_slots[0].material), ("OBJECT", own))
        baking.bake_material(twin, PLAIN, 16)
        self.assertEqual(look(box)[0], material)
        self.assertEqual(baking.bake_material(box, CLOTH, 16), material)  # it is its own, and updated
        self.assertEqual(len(box.data.materials), 1)

    def test_of_a_baked_material_goes_on_with_a_copy(self) -> None:
        box = scene_with_lamp()
        before = baking.bake_material(box, CLOTH, 16)
        before.node_tree.nodes["Principled BSDF"].inputs["Roughness"].default_value = 0.125
        expected = look(box)
        for with_mesh in (True, False):
            with self.subTest(with_mesh=with_mesh):
                other = self._copy(box)
                if with_mesh:
                    other.data = box.data.copy()
                made = baking.bake_material(other, PLAIN, 16)
                self.assertEqual(made.node_tree.nodes["Principled BSDF"].inputs["Roughness"].default_value, 0.125)
                self.assertNotEqual(look(other), expected)
                self.assertEqual(look(box), expected)
                again = baking.bake_material(other, CLOTH, 16)
                self.assertEqual((again, look(box)), (made, expected))

    def test_is_chosen_where_it_is_wanted(self) -> None:
        box = scene_with_lamp()
        tree = self.cloth()
        bpy.context.scene.fernwick_tree = tree
        choice = tree.settings
        choice.width = choice.height = 16
        choice.target = box
        twin = self._copy(box)
        bpy.ops.fernwick.bake_material()
        self.assertIn("share the mesh and keep their material: 1", messages.baked(tree)[0])
        self.assertEqual(len(twin.material_slots), 1)
        self.assertIsNone(twin.material_slots[0].material)
        choice.shared = True
        bpy.ops.fernwick.bake_material()
        self.assertEqual(messages.baked(tree), [])
        self.assertEqual(look(twin), look(box))
        tree.nodes["red"].color_ = (0, 0, 1, 1)
        before = look(twin)
        bpy.ops.fernwick.bake_material()
        self.assertEqual(look(twin), look(box))
        self.assertNotEqual(look(twin)[1], before[1])

    def test_of_a_name_leaves_the_images_of_the_first(self) -> None:
        box = scene_with_lamp()
        baking.bake_material(box, CLOTH, 16, folder=self.folder)
        expected = look(box)
        box.name = "Once a box"
        other = self._copy(box)
        other.data, other.name = box.data.copy(), "Box"
        other.data.materials.clear()
        made = baking.bake_material(other, PLAIN, 16, folder=self.folder)
        for image in bpy.data.images:
            image.reload()
        self.assertEqual(look(box), expected)
        self.assertEqual(made.name, "Box.001")
        self.assertNotEqual(look(other)[1], expected[1])

    def _copy(self, thing: bpy.types.Object) -> bpy.types.Object:
        copy = thing.copy()
        bpy.context.collection.objects.link(copy)
        bpy.context.view_layer.update()
        return copy


class Slots(Case):
    def test_of_other_faces_are_told(self) -> None:
        box = scene_with_lamp()
        for name in ("One", "Two"):
            box.data.materials.append(bpy.data.materials.new(name))
        for polygon in list(box.data.polygons)[:2]:
            polygon.material_index = 1
        with self.assertWarnsRegex(UserWarning, "2 of 6 faces keep the materials of other slots") as caught:
            baking.bake_material(box, CLOTH, 16)
        self.assertEqual(caught.filename, __file__)
        box.data.polygons.foreach_set("material_index", np.zeros(6, np.int32))
        tree = self.cloth()
        tree.settings.width = tree.settings.height = 16
        tree.settings.target = box
        bpy.context.scene.fernwick_tree = tree
        bpy.ops.fernwick.bake_material()
        self.assertEqual(messages.baked(tree), [])

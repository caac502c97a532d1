"""Trees in .blend files: saved, undone, of other versions, and without the add-on."""

import json

import bpy
import numpy as np
from fernwick_nodes import baking, document, messages, nodes
from support import EXAMPLES, Case, other_blender, pixels, scene_with_lamp


class Files(Case):
    def test_keep_trees(self) -> None:
        for name in ("ripple-sequence", "mix-surfaces", "lit-room"):
            document.load(str(EXAMPLES / f"{name}.json"), name)
        bpy.ops.wm.save_as_mainfile(filepath=str(self.folder / "trees.blend"))
        bpy.ops.wm.read_homefile(use_empty=True)
        bpy.ops.wm.open_mainfile(filepath=str(self.folder / "trees.blend"))
        for name in ("ripple-sequence", "mix-surfaces", "lit-room"):
            made = document.to_document(bpy.data.node_groups[name])
            self.assertEqual(made, json.loads((EXAMPLES / f"{name}.json").read_text()))

    def test_stay_usable_without_the_add_on_and_with_it_again(self) -> None:
        box = scene_with_lamp()
        tree = self.cloth()
        before = document.to_document(tree)
        baking.bake_material(box, tree, 32)
        expected = pixels(bpy.data.images["Box color"])
        path = self.folder / "file.blend"
        bpy.ops.wm.save_as_mainfile(filepath=str(path))
        np.save(self.folder / "expected.npy", expected)
        other_blender(
            f"""
import numpy as np
bpy.ops.wm.open_mainfile(filepath={str(path)!r})
image = bpy.data.images["Box color"]
flat = np.empty(32 * 32 * 4, np.float32)
image.pixels.foreach_get(flat)
assert np.array_equal(flat, np.load({str(self.folder / "expected.npy")!r}).reshape(-1))
material = bpy.data.objects["Box"].material_slots[0].material
principled = next(node for node in material.node_tree.nodes if node.type == "BSDF_PRINCIPLED")
assert principled.inputs["Base Color"].links[0].from_node.image == image
scene = bpy.context.scene
scene.render.engine, scene.cycles.samples, scene.cycles.use_denoising = "CYCLES", 1, False
scene.render.resolution_x = scene.render.resolution_y = 16
bpy.ops.render.render()
bpy.ops.wm.save_as_mainfile(filepath={str(path)!r})
""",
            enable=False,
        )
        bpy.ops.wm.open_mainfile(filepath=str(path))
        self.assertEqual(document.to_document(bpy.data.node_groups["Cloth"]), before)

    def test_of_other_versions_are_brought_up_or_told_of(self) -> None:
        tree = self.cloth()
        before = document.to_document(tree)
        cloth = tree.nodes["cloth"]
        cloth.inputs.remove(cloth.inputs["Gaps"])  # as of a version whose class had no such slot
        cloth.inputs.new("FernwickShaderSocket", "Once there", identifier="fGone")
        tree.format = 0
        newer = self.cloth()
        newer.format = 99
        odd = document.trees.new_tree("Odd")
        odd.nodes.new(nodes.idname("Spoke"))
        bpy.ops.wm.save_as_mainfile(filepath=str(self.folder / "old.blend"))
        data = (self.folder / "old.blend").read_bytes()
        gone = nodes.idname("Spoke").encode()
        self.assertIn(gone, data)
        (self.folder / "old.blend").write_bytes(data.replace(gone, gone.replace(b"Spoke", b"Spike")))
        bpy.ops.wm.open_mainfile(filepath=str(self.folder / "old.blend"))
        tree, newer, odd = (bpy.data.node_groups[name] for name in ("Cloth", "Cloth.001", "Odd"))
        self.assertEqual(document.to_document(tree), before)
        self.assertIn("Gaps", tree.nodes["cloth"].inputs)
        self.assertNotIn("Once there", tree.nodes["cloth"].inputs)
        self.assertIn("A newer version", messages.told(newer)[0])
        self.assertIn("they are kept: Spoke", messages.told(odd)[0])
        self.assertEqual(len(odd.nodes), 1)

    def test_without_the_library_open_with_a_message(self) -> None:
        self.cloth()
        path = self.folder / "file.blend"
        bpy.ops.wm.save_as_mainfile(filepath=str(path))
        text = other_blender(
            f"""
from fernwick_nodes import library
print("TOLD", library.missing())
assert hasattr(bpy.types, "FERNWICK_PT_missing") and not hasattr(bpy.types, "FernwickTree")
bpy.ops.wm.open_mainfile(filepath={str(path)!r})
bpy.ops.wm.save_as_mainfile(filepath={str(path)!r})
bpy.ops.preferences.addon_disable(module="fernwick_nodes")
""",
            enable=True,
            FERNWICK_LIBRARY="/nowhere/Fernwick_shaders.so",
        )
        self.assertIn("TOLD The shaders can't be loaded: FERNWICK_LIBRARY: /nowhere/Fernwick_shaders.so", text)
        bpy.ops.wm.open_mainfile(filepath=str(path))
        self.assertIn("cloth", document.to_document(bpy.data.node_groups["Cloth"])["shaders"])

    def test_are_linked_from_others(self) -> None:
        tree = self.cloth()
        before = document.to_document(tree)
        path = str(self.folder / "library.blend")
        bpy.ops.wm.save_as_mainfile(filepath=path)
        bpy.ops.wm.read_homefile(use_empty=True)
        with bpy.data.libraries.load(path, link=True) as (source, target):
            target.node_groups = source.node_groups
        box = scene_with_lamp()
        linked = bpy.data.node_groups["Cloth"]
        self.assertIsNotNone(linked.library)
        self.assertEqual(document.to_document(linked), before)
        self.assertIn("color", baking.bake(box, linked, 16))


class Undo(Case):
    def test_goes_back_and_forth_over_trees_and_fields(self) -> None:
        bpy.ops.ed.undo_push(message="Nothing")
        self.cloth()
        bpy.ops.ed.undo_push(message="Tree")
        first = document.to_document(bpy.data.node_groups["Cloth"])
        bpy.data.node_groups["Cloth"].nodes["cloth"].fRepeatU = 9
        bpy.ops.ed.undo_push(message="Field")
        second = document.to_document(bpy.data.node_groups["Cloth"])
        self.assertNotEqual(first, second)
        for _ in range(10):
            bpy.ops.ed.undo()
            self.assertEqual(document.to_document(bpy.data.node_groups["Cloth"]), first)
            bpy.ops.ed.undo()
            self.assertNotIn("Cloth", bpy.data.node_groups)
            bpy.ops.ed.redo()
            bpy.ops.ed.redo()
            self.assertEqual(document.to_document(bpy.data.node_groups["Cloth"]), second)

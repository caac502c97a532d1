"""Files and images that bakes leave, and what they tell of what they leave out."""

import contextlib
import ctypes
import math
import os
import sys
import tempfile
from collections.abc import Iterator

import bpy
import fernwick
import numpy as np
from fernwick_nodes import baking, document, images, messages
from fernwick_nodes.errors import Refusal
from support import CLOTH, Case, other_blender, pixels, scene_with_lamp


class FileNames(Case):
    def test_are_one_for_each_name(self) -> None:
        box = scene_with_lamp()
        names = ("a/b", "a:b", "a_b", "a b", "a.b", ".a", "Ä", "x" * 63, "#", "<UDIM>", "..")
        for name in names:
            box.name = name
            baking.bake_images(box, CLOTH, 8, "color", folder=self.folder)
        self.assertEqual(len(list(self.folder.glob("*_color.exr"))), len(names))
        self.assertEqual(len({images.file_name(name) for name in (*names, "", "y" * 300, "y" * 301, "\udc80")}), 15)
        for image in bpy.data.images:
            self.assertTrue(os.path.isfile(image.filepath), image.filepath)

    def test_never_lead_to_another_image(self) -> None:
        box = scene_with_lamp()
        path = self.folder / "Box_color.exr"
        fernwick.save(path, np.full((4, 4, 4), 0.25, np.float32))
        own = bpy.data.images.load(str(path))
        first = baking.bake_images(box, CLOTH, 8, "color", folder=self.folder)["color"]
        again = baking.bake_images(box, CLOTH, 8, "color", folder=self.folder)["color"]
        own.reload()
        self.assertEqual(tuple(own.size), (4, 4))
        self.assertEqual((first, os.path.basename(again.filepath)), (again, "Box_color-2.exr"))

    def test_of_pictures_beside_a_document_are_one_for_each_image(self) -> None:
        tree = document.trees.new_tree("Two")
        mixer, output = tree.nodes.new("FernwickSuper_mixerNode"), tree.nodes.new("FernwickOutputNode")
        tree.links.new(mixer.outputs[0], output.inputs[0])
        for i, name in enumerate(("a/b", "a:b")):
            node = tree.nodes.new("FernwickPictureNode")
            node.image = bpy.data.images.new(name, 4, 4)
            tree.links.new(node.outputs[0], mixer.inputs[i])
        document.save(tree, str(self.folder / "two.json"))
        self.assertEqual(len(list(self.folder.glob("*.png"))), 2)


class Images(Case):
    def test_change_their_kind_without_a_word_on_the_console(self) -> None:
        box = scene_with_lamp()
        with _console() as words:
            material = baking.bake_material(box, CLOTH, 8)
            for size, folder in ((16, ""), (16, self.folder), (8, self.folder), (8, ""), (16, "")):
                self.assertEqual(baking.bake_material(box, CLOTH, size, folder=folder), material)
                node = next(node for node in material.node_tree.nodes if node.label == "Base colour")
                self.assertEqual((node.image.name, tuple(node.image.size)), ("Box color", (size, size)))
                self.assertEqual(bool(node.image.packed_file), not folder)
                expected = images.pixels_of(baking.bake(box, CLOTH, size, "color")["color"], "color")
                self.assertBits(pixels(node.image), expected)
        self.assertEqual(words, [""])
        self.assertEqual(len([image for image in bpy.data.images if image.users]), 3)

    def test_of_sequences_begin_below_frame_0(self) -> None:
        box = scene_with_lamp()
        tree = self.cloth()
        baked = baking.bake_sequence(box, tree, -2, 1, 8, "color", folder=self.folder)
        self.assertEqual(
            sorted(path.name for path in self.folder.glob("*.exr")), [f"Box.color.{i:04d}.exr" for i in range(4)]
        )
        material = baking.materials.make(box, baked)
        user = next(node for node in material.node_tree.nodes if node.label == "Base colour").image_user
        self.assertEqual((user.frame_start, user.frame_offset, user.frame_duration), (-2, -1, 4))

    def test_of_sequences_are_of_one_tile(self) -> None:
        box = scene_with_lamp()
        for corner in box.data.uv_layers.active.data[:4]:
            corner.uv.x += 1
        with self.assertRaisesRegex(Refusal, "no sequences of tiles, and .* bake stills"):
            baking.bake_sequence(box, CLOTH, 1, 2, 8, folder=self.folder)
        self.assertEqual(list(self.folder.iterdir()), [])


class Remarks(Case):
    def test_tell_of_faces_outside_of_the_tiles(self) -> None:
        box = scene_with_lamp()
        box.modifiers.clear()
        corners = box.data.uv_layers.active.data
        for i in range(8):  # two faces
            corners[i].uv.x -= 1 if i < 4 else -11
        with self.assertWarnsRegex(UserWarning, '2 of 6 faces of "Box" are left out') as caught:
            baking.bake_images(box, CLOTH, 8)
        self.assertEqual(caught.filename, __file__)
        tree = self.cloth()
        tree.settings.width = tree.settings.height = 8
        tree.settings.target = box
        bpy.context.scene.fernwick_tree = tree
        bpy.ops.fernwick.bake_images()
        self.assertIn("2 of 6 faces", messages.baked(tree)[0])
        for corner in corners:
            corner.uv.y -= 40
        with self.assertRaisesRegex(Refusal, "6 of 6 faces"):
            baking.bake_images(box, CLOTH, 8)

    def test_of_shaders_come_to_the_interface_once_and_not_to_the_console(self) -> None:
        box = scene_with_lamp()
        tree = document.from_document(
            {"shaders": {"f": {"class": "Fresnel", "fCameraName": "Nobody"}}, "output": "f"}, "", "Odd"
        )
        tree.settings.width = tree.settings.height = 8
        tree.settings.target = box
        bpy.context.scene.fernwick_tree = tree
        with _console() as words:
            bpy.ops.fernwick.bake_images()
        self.assertNotRegex(words[0] + self.words.getvalue(), r"\.(py|cpp):")
        self.assertEqual(sum("Nobody" in text for text in messages.baked(tree)), 1)

    def test_of_meshes_name_the_object(self) -> None:
        box = scene_with_lamp()
        box.data.vertices[0].co.x = math.nan
        box.data.update()
        with self.assertRaisesRegex(Refusal, '"Box" has coordinates that are no numbers, at .* of its faces'):
            baking.bake(box, CLOTH, 8)
        box.data.vertices[0].co.x = 1
        box.modifiers.clear()
        box.data.uv_layers.active.data[0].uv.x = math.nan
        box.data.update()
        with self.assertRaisesRegex(Refusal, '"Box" has UV that are no numbers, at 1 of its faces'):
            baking.bake(box, CLOTH, 8)
        bpy.data.objects["Lamp"].location.x = math.nan
        with self.assertRaisesRegex(Refusal, 'place, rotation or scale of "Lamp"'):
            baking.bake(box, CLOTH, 8)


class Arguments(Case):
    def test_of_scripts_are_refused_with_a_sentence(self) -> None:
        box = scene_with_lamp()
        other = bpy.data.node_groups.new("Other", "ShaderNodeTree")
        gone = box.copy()
        bpy.data.objects.remove(gone)
        gone_tree = self.cloth()
        bpy.data.node_groups.remove(gone_tree)
        for call, text in (
            (lambda: baking.bake(box, CLOTH, "big"), "pixels from 1 to 32768, or two of them: not 'big'"),
            (lambda: baking.bake(box, CLOTH, (8, 8, 8)), r"not \(8, 8, 8\)"),
            (lambda: baking.bake(box, CLOTH, 0), "not 0"),
            (lambda: baking.bake(box, CLOTH, 8, "colour"), "The channels are some of color, .*: not 'colour'"),
            (lambda: baking.bake(box, CLOTH, 8, []), "The channels are some of"),
            (lambda: baking.bake(box, CLOTH, 8, samples=0), "samples: expected 1 to 4096"),
            (lambda: baking.bake(box, CLOTH, 8, tile=1002), "no tile 1002, only on the tile 1001"),
            (lambda: baking.bake(box, CLOTH, 8, progress=5), "progress is a function"),
            (lambda: baking.bake(box, CLOTH, 8, uv_layer=5), "uv_layer is a text"),
            (lambda: baking.bake_images(box, CLOTH, 8, sample=1), 'takes no "sample"'),
            (lambda: baking.bake_images(box, CLOTH, 8, folder="/proc/none"), "can't be a folder /proc/none"),
            (lambda: baking.bake_material("Box", CLOTH, 8), "an object of Blender: not 'Box'"),
            (lambda: baking.bake_sequence(box, CLOTH, 1.5, 2), "first frame is a whole number"),
            (lambda: baking.bake(gone, CLOTH, 8), "object is gone"),
            (lambda: baking.bake(box, gone_tree, 8), "tree is gone"),
            (lambda: baking.bake(box, other, 8), "no tree of Fernwick"),
            (lambda: baking.bake(box, "x" * 400, 8), "There is no graph"),
        ):
            with self.subTest(text), self.assertRaisesRegex(Refusal, text):
                call()
        with self.assertRaisesRegex(RuntimeError, 'no node "b" with a gradient'):
            bpy.ops.fernwick.color(tree="a", node="b")


class FullDisk(Case):
    def test_leaves_the_old_document(self) -> None:
        tree = self.cloth()
        path = self.folder / "cloth.json"
        document.save(tree, str(path))
        before = path.read_bytes()
        blend = self.folder / "cloth.blend"
        bpy.ops.wm.save_as_mainfile(filepath=str(blend))
        text = other_blender(
            f"""
import resource, signal
bpy.ops.wm.open_mainfile(filepath={str(blend)!r})
tree = bpy.data.node_groups["Cloth"]
tree.nodes["cloth"].fRepeatU = 3
bpy.context.scene.fernwick_tree = tree
signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
resource.setrlimit(resource.RLIMIT_FSIZE, (64, resource.getrlimit(resource.RLIMIT_FSIZE)[1]))
try:
    bpy.ops.fernwick.save(filepath={str(path)!r})
except RuntimeError as error:
    told = str(error)
resource.setrlimit(resource.RLIMIT_FSIZE, (resource.RLIM_INFINITY, resource.RLIM_INFINITY))
print("TOLD", told)
""",
            enable=True,
        )
        self.assertRegex(text, r"TOLD Error: .*cloth\.json")
        self.assertEqual(path.read_bytes(), before)
        self.assertEqual(sorted(each.name for each in self.folder.iterdir()), ["cloth.blend", "cloth.json"])


@contextlib.contextmanager
def _console() -> Iterator[list[str]]:
    """All that is written to the console meanwhile, by Python and by Blender itself."""
    heard: list[str] = []
    kept = os.dup(1)
    with tempfile.TemporaryFile() as file:
        _flush()
        os.dup2(file.fileno(), 1)
        try:
            yield heard
        finally:
            _flush()
            os.dup2(kept, 1)
            os.close(kept)
            file.seek(0)
            heard.append(file.read().decode())


def _flush() -> None:
    sys.stdout.flush()
    ctypes.CDLL(None).fflush(None)

"""Graph documents open as trees and come out again without loss."""

import json

import bpy
import fernwick
import numpy as np
from fernwick_nodes import document, fields, groups, handlers, links, messages, nodes
from support import EXAMPLES, Case


class EveryClass(Case):
    def test_has_a_node_whose_fields_come_out_as_set(self) -> None:
        for table in (*fernwick.classes(), *fernwick.sources()):
            with self.subTest(table):
                tree = document.trees.new_tree(table)
                node = tree.nodes.new(nodes.idname(table))
                output = tree.nodes.new("FernwickOutputNode")
                tree.links.new(node.outputs[0], output.inputs[0])
                expected = {"source" if table in fernwick.sources() else "class": table}
                self.assertEqual(document.to_document(tree)["shaders"], {node.name: expected})
                self.assertEqual(
                    [socket.identifier for socket in node.inputs],
                    [field.name for field in fernwick.describe(table) if field.type == "shader"],
                )
                for leaf in fields.leaves(table).values():
                    if not leaf.is_slot:
                        value = _other(leaf)
                        fields.write(node, leaf, value)
                        if value != leaf.default:
                            expected[leaf.address] = fields.tell(leaf, value)
                        item = node.bl_rna.properties[leaf.property]
                        self.assertEqual(item.name, leaf.field.label)
                        self.assertIn(leaf.field.help.rstrip("."), item.description)
                made = document.to_document(tree)
                self.assertEqual(made["shaders"], {node.name: expected})
                if "file" not in expected:
                    fernwick.Graph(made)

    def test_has_a_place_in_the_menu(self) -> None:
        import nodeitems_utils

        items = {item.nodetype for item in nodeitems_utils.node_items_iter(None) if hasattr(item, "nodetype")}
        for table in (*fernwick.classes(), *fernwick.sources()):
            self.assertIn(nodes.idname(table), items)


class Documents(Case):
    def test_of_the_examples_open_and_save_as_equal_graphs(self) -> None:
        examples = sorted(EXAMPLES.glob("*.json"))
        self.assertGreater(len(examples), 50)
        for path in examples:
            with self.subTest(path.name):
                tree = document.load(str(path))
                self.assertEqual(document.to_document(tree), json.loads(path.read_text()))
                self.assertEqual(list(document.to_document(tree)), list(json.loads(path.read_text())))
                target = self.folder / path.name
                document.save(tree, str(target))
                # Files are named from another folder, and found all the same.
                fernwick.Graph.load(target)
                bpy.data.node_groups.remove(tree)

    def test_keep_what_nodes_cannot_show(self) -> None:
        written = {
            "$schema": "somewhere.json",
            "shaders": {
                "a long name, which goes on until no node of Blender could be called so, and beyond": {
                    "class": "Key",
                    "fMode": 5,
                    "fRedRange": [0.123456789012345, {"keys": [[1, 2], [9.5, 4]], "between": "smooth"}],
                    "fSubShader": {"keys": [[1, "one"], [10, "two"]]},
                },
                "one": {"source": "color", "color": [0.1, 0.2, 0.3]},
                "two": {
                    "source": "gradient",
                    "colors": {"keys": [[1, [[0, 0, 0], [1, 1, 1]]], [5, [[1, 1, 1], [0, 0, 0]]]]},
                },
                "unused": {"class": "Location", "fAxes[1]": {"fEnabled": True, "fEdgeB": 2}},
            },
            "output": "a long name, which goes on until no node of Blender could be called so, and beyond",
        }
        tree = document.from_document(written, "", "Odd")
        self.assertEqual(document.to_document(tree), written)
        node = tree.nodes["unused"]
        node.fAxes_1_fEdgeB = 3
        expected = {"class": "Location", "fAxes[1].fEnabled": True, "fAxes[1].fEdgeB": 3}
        self.assertEqual(document.to_document(tree)["shaders"]["unused"], expected)

    def test_have_keys_where_properties_have_keyframes(self) -> None:
        tree = document.load(str(EXAMPLES / "ripple-sequence.json"))
        handlers.know_trees(bpy.context.scene)
        for frame in (1, 9, 24, 40):
            bpy.context.scene.frame_set(frame)
            answers = fernwick.Graph.load(EXAMPLES / "ripple-sequence.json", frame=frame).bake(32)
            mine = fernwick.Graph(document.shading_document(tree)).bake(32)
            np.testing.assert_allclose(mine, answers, atol=2e-5)
        node = tree.nodes["drop"]
        node.fBaseLevel = 0.25
        node.keyframe_insert("fBaseLevel", frame=5)
        node.fBaseLevel = 0.75
        node.keyframe_insert("fBaseLevel", frame=15)
        for curve in tree.animation_data.action.fcurves:
            if "fBaseLevel" in curve.data_path:
                curve.keyframe_points[0].interpolation = "LINEAR"
        shader = document.to_document(tree)["shaders"]["drop"]
        self.assertEqual(shader["fBaseLevel"], {"keys": [[5, 0.25], [15, 0.75]]})
        driver = node.driver_add("fCenterU").driver
        driver.expression = "frame / 100"
        bpy.context.scene.frame_set(30)
        self.assertAlmostEqual(document.shading_document(tree)["shaders"]["drop"]["fCenterU"], 0.3)

    def test_that_make_no_graph_leave_no_tree(self) -> None:
        (self.folder / "bad.json").write_text('{"shaders": {"a": {"class": "Weave", "fRepeatU": "x"}}, "output": "a"}')
        before = len(bpy.data.node_groups)
        with self.assertRaises(RuntimeError) as caught:  # as operators of scripts report
            bpy.ops.fernwick.open(filepath=str(self.folder / "bad.json"))
        self.assertIn("fRepeatU: expected an integer", str(caught.exception))
        self.assertEqual(len(bpy.data.node_groups), before)


class Links(Case):
    def test_take_only_what_fits(self) -> None:
        tree = self.cloth()
        spoke = tree.nodes.new(nodes.idname("Spoke"))
        tree.links.new(spoke.outputs[0], tree.nodes["cloth"].inputs["Warp 2"])
        tree.update()
        self.assertFalse(tree.nodes["cloth"].inputs["Warp 2"].is_linked)
        self.assertIn('"Warp 2" takes a colour; "Spoke" gives a value', "".join(messages.told(tree)))

    def test_of_documents_stay_though_they_do_not_fit(self) -> None:
        written = {
            "shaders": {"cloth": {"class": "Weave", "fGapSubShader": "wheel"}, "wheel": {"class": "Spoke"}},
            "output": "cloth",
        }
        tree = document.from_document(written, "", "Odd")
        tree.update()
        self.assertIn('"Gaps" takes a colour', messages.told_node(tree.nodes["cloth"]))
        self.assertEqual(document.to_document(tree), written)
        tree.links.remove(tree.nodes["cloth"].inputs["Gaps"].links[0])
        tree.update()
        self.assertEqual(messages.told_node(tree.nodes["cloth"]), "")

    def test_lead_through_reroutes_muted_nodes_and_frames(self) -> None:
        tree = self.cloth()
        gray = tree.nodes.new(nodes.idname("Gray"))
        reroute = tree.nodes.new("NodeReroute")
        frame = tree.nodes.new("NodeFrame")
        gray.parent = frame
        tree.links.new(tree.nodes["red"].outputs[0], reroute.inputs[0])
        tree.links.new(reroute.outputs[0], gray.inputs[0])
        tree.links.new(gray.outputs[0], tree.nodes["cloth"].inputs["Warp 1"])
        self.assertEqual(_plugged(tree, "fWarpSubShader[0]"), "Gray")
        gray.mute = True
        self.assertEqual(_plugged(tree, "fWarpSubShader[0]"), "red")

    def test_go_into_groups_and_out_of_them(self) -> None:
        tree = self.cloth()
        expected = fernwick.Graph(document.shading_document(tree)).bake(16)
        tree.nodes["cloth"].keyframe_insert("fRepeatU", frame=3)
        group = groups.make(tree, [tree.nodes["cloth"], tree.nodes["lamp"]])
        self.assertEqual([socket.name for socket in group.inputs], ["Warp 1"])
        made = document.to_document(tree)
        self.assertEqual(made["output"], "Group/cloth")
        self.assertEqual(made["shaders"]["Group/cloth"]["fRepeatU"], {"keys": [[3, 6]]})
        np.testing.assert_array_equal(fernwick.Graph(document.shading_document(tree)).bake(16), expected)
        other = tree.nodes.new("FernwickGroupNode")
        other.group = group.group  # a group serves many
        self.assertEqual([socket.name for socket in other.inputs], ["Warp 1"])
        groups.dissolve(tree, group)
        tree.nodes.remove(other)
        np.testing.assert_array_equal(fernwick.Graph(document.shading_document(tree)).bake(16), expected)
        self.assertIsNone(
            links.Wiring().source(tree.nodes.new("FernwickGroupNode").inputs.new("FernwickShaderSocket", "x"))
        )


class Blank(Case):
    def test_trees_of_blenders_own_buttons_have_an_output(self) -> None:
        tree = bpy.data.node_groups.new("New", "FernwickTree")
        bpy.context.view_layer.update()
        bpy.ops.mesh.primitive_cube_add()
        self.assertEqual([node.bl_idname for node in tree.nodes], ["FernwickOutputNode"])


class Pictures(Case):
    def test_are_files_or_images_of_the_blend(self) -> None:
        tree = document.load(str(EXAMPLES / "saturation-reds.json"))
        expected = fernwick.Graph(document.shading_document(tree), folder=EXAMPLES).bake(48)
        image = bpy.data.images.load(str(EXAMPLES / "backdrop.png"))
        tree.nodes["photograph"].image = image
        np.testing.assert_array_equal(fernwick.Graph(document.shading_document(tree)).bake(48), expected)
        image.pack()
        document.save(tree, str(self.folder / "reds.json"))
        np.testing.assert_array_equal(fernwick.Graph.load(self.folder / "reds.json").bake(48), expected)


def _plugged(tree: bpy.types.NodeTree, address: str) -> str:
    return document.to_document(tree)["shaders"]["cloth"][address]


def _other(leaf: fields.Leaf) -> object:
    """A value that isn't the default."""
    field = leaf.field
    if field.choices:
        shown = [str(choice.value) for choice in field.choices]
        return next((each for each in shown if each != leaf.default), leaf.default) if len(shown) > 1 else leaf.default
    if field.type == "bool":
        return not leaf.default
    if field.type in ("string", "file"):
        return leaf.default + "x"
    if field.type == "colors":
        return ((0.25, 0.5, 0.75, 1.0), (1.0, 0.0, 0.0, 0.5), (0.0, 0.0, 0.0, 1.0))
    if field.type in ("int32", "code"):
        return leaf.default + 1
    if field.type == "float":
        return (
            leaf.default + 0.25 if field.maximum is None or leaf.default + 0.25 <= field.maximum else leaf.default / 2
        )
    return tuple(number + 0.25 for number in leaf.default)

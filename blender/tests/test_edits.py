"""Many edits in any order: no exception, no leak, and a preview of what is there in the end."""

import gc
import random
import resource

import bpy
import fernwick
from fernwick_nodes import document, fields, groups, images, nodes, preview
from fernwick_nodes.scene import scene_of
from support import Case, pixels, scene_with_lamp

EDITS = 200
MOST = 40  # nodes


class Edits(Case):
    def test_in_any_order_leave_a_sound_tree(self) -> None:
        scene_with_lamp()
        chance = random.Random(7)
        bpy.ops.ed.undo_push(message="Scene")
        tree = self.cloth()
        tree.settings.size = "64"
        sizes = []
        for i in range(EDITS):
            _edit(tree, chance)
            tree = bpy.data.node_groups["Cloth"]
            preview.step()
            if i % 10 == 0:
                preview.finish()
            if i % 50 == 49:
                gc.collect()
                sizes.append(resource.getrusage(resource.RUSAGE_SELF).ru_maxrss)
        preview.finish()
        self.assertLess(sizes[-1] - sizes[0], 60_000)  # kB; a preview that stayed would be one each
        self.assertLessEqual(len(bpy.data.images), len(bpy.data.node_groups) + 1)
        _restore(tree)
        preview.finish()
        members = document.shading_document(tree)
        expected = fernwick.Graph(members, scene_of(bpy.context.evaluated_depsgraph_get(), members)).bake(64)
        self.assertBits(pixels(preview.image_of(tree)), images.pixels_of(expected, "color"))


def _edit(tree: bpy.types.NodeTree, chance: random.Random) -> None:
    ours = [node for node in tree.nodes if hasattr(node, "table")]
    kind = chance.choice(["add", "link", "link", "field", "field", "remove", "mute", "rename", "group", "copy", "undo"])
    if kind == "add" and len(tree.nodes) < MOST:
        table = chance.choice([*fernwick.classes(), *fernwick.sources()])
        tree.nodes.new(nodes.idname(table))
    elif kind == "link" and ours:
        ends = [socket for node in tree.nodes for socket in node.inputs]
        tree.links.new(chance.choice(ours).outputs[0], chance.choice(ends))  # loops too
    elif kind == "field" and ours:
        node = chance.choice(ours)
        leaves = [leaf for leaf in fields.leaves(node.table).values() if leaf.components == 1]
        if leaves:
            leaf = chance.choice(leaves)
            choices = leaf.field.choices
            fields.write(node, leaf, str(chance.choice(choices).value) if choices else chance.choice((0, 1)))
    elif kind == "remove" and len(ours) > 5:
        tree.nodes.remove(chance.choice(ours))
    elif kind == "mute" and ours:
        node = chance.choice(ours)
        node.mute = not node.mute
        tree.update_tag()
    elif kind == "rename" and ours:
        chance.choice(ours).name = chance.choice(["cloth", 'ä"]', "", "x" * 80])
    elif kind == "group":
        _group(tree, chance)
    elif kind == "copy":
        twin = tree.copy()
        document.trees.tidy(twin)
        bpy.data.node_groups.remove(twin)
    elif kind == "undo":
        bpy.ops.ed.undo_push(message="Edit")
        bpy.ops.ed.undo()
        bpy.ops.ed.redo()


def _group(tree: bpy.types.NodeTree, chance: random.Random) -> None:
    several = [node for node in tree.nodes if node.bl_idname == "FernwickGroupNode"]
    if several:
        groups.dissolve(tree, several[0])
        return
    try:
        groups.make(tree, [node for node in tree.nodes if chance.random() < 0.2])
    except groups.Refusal:
        pass


def _restore(tree: bpy.types.NodeTree) -> None:
    """Ends with a tree that can be shaded."""
    color = tree.nodes.new(nodes.idname("checker"))
    output = next((node for node in tree.nodes if node.bl_idname == "FernwickOutputNode"), None)
    tree.links.new(color.outputs[0], (output or tree.nodes.new("FernwickOutputNode")).inputs[0])

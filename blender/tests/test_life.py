"""The add-on is switched off and on, read again, and there while other files are opened."""

from support import Case, other_blender

_BEGIN = """
bpy.ops.fernwick.new_tree()
tree = bpy.context.scene.fernwick_tree
tree.settings.width = tree.settings.height = 16
bpy.ops.fernwick.bake_material()  # whose material makes the crash sure that freed copies of trees would be
bpy.context.evaluated_depsgraph_get()
"""


class Life(Case):
    def test_goes_on_when_the_add_on_is_read_again(self) -> None:
        other_blender(
            _BEGIN
            + """
import nodeitems_utils, sys, warnings
from fernwick_nodes import document, errors
before = document.to_document(tree)
def counts():
    ours = lambda several: sum("fernwick" in each.__module__ for each in several)
    handlers = [getattr(bpy.app.handlers, name) for name in dir(bpy.app.handlers) if name.endswith(("_post", "_pre"))]
    return (
        sum(map(ours, handlers)), ours(bpy.types.NODE_MT_node._dyn_ui_initialize()),
        sum("FERNWICK" in name for name in nodeitems_utils._node_categories), len(warnings.filters),
        len([name for name in dir(bpy.types) if "ernwick" in name or "FERNWICK" in name]),
    )
first = counts()
assert first[0] == 5 and first[1] == 1, first
def off_and_on():
    bpy.ops.preferences.addon_disable(module="fernwick_nodes")
    bpy.context.view_layer.update()
    bpy.context.scene.frame_set(bpy.context.scene.frame_current + 1)
    bpy.ops.preferences.addon_enable(module="fernwick_nodes")
reload = lambda: bpy.utils.load_scripts(reload_scripts=True)  # what Reload Scripts does, at once
for step in (off_and_on, off_and_on, reload, reload):
    step()
    bpy.context.view_layer.update()
    assert counts() == first, (counts(), first)
    scene = bpy.context.scene
    assert [scene.fernwick_tree.name, *(item.tree.name for item in scene.fernwick_trees)] == ["Cloth", "Cloth"]
from fernwick_nodes import document, errors as read_again
assert read_again is not errors
assert document.to_document(scene.fernwick_tree) == before
assert bpy.ops.fernwick.bake_material() == {"FINISHED"}
import threading
from fernwick_nodes import baking, tasks
runner = tasks.Runner(baking.images_task(bpy.context.object, scene.fernwick_tree, 8192, "color", samples=64))
assert not runner.advance()
bpy.ops.preferences.addon_disable(module="fernwick_nodes")
assert "fernwick task" not in [thread.name for thread in threading.enumerate()]
""",
            enable=True,
        )

    def test_goes_on_in_other_files_after_a_bake(self) -> None:
        for script in (
            "bpy.ops.wm.read_factory_settings()",
            'bpy.ops.preferences.addon_disable(module="fernwick_nodes")\nbpy.ops.wm.read_homefile()',
            "bpy.ops.fernwick.bake_sequence()\nbpy.ops.wm.read_factory_settings(use_empty=True)",
        ):
            with self.subTest(script):
                folder = f"tree.settings.folder = {str(self.folder)!r}\nbpy.context.scene.frame_end = 2\n"
                other_blender(_BEGIN + folder + script, enable=True)

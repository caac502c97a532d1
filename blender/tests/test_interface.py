"""What is drawn, onto a layout that looks at what it is given; and the guide, step by step."""

import math
import re
import types

import bpy
import fernwick
from fernwick_nodes import library, looks, nodes, panels, preview
from support import ROOT, Case, pixels


class Layout:
    """Takes the calls of a layout, and checks that there is what they name."""

    def __init__(self) -> None:
        self.seen: list[str] = []

    def _inner(self, **_: object) -> "Layout":
        return self

    row = column = split = box = _inner

    def prop(self, data: object, name: str, text: str | None = None, **_: object) -> None:
        self.seen.append(data.bl_rna.properties[name].name if text is None else text)

    def prop_search(self, data: object, name: str, there: object, collection: str, **_: object) -> None:
        assert collection in there.bl_rna.properties
        self.prop(data, name)

    def operator(self, idname: str, text: str = "", **_: object) -> types.SimpleNamespace:
        group, name = idname.split(".")
        self.seen.append(text or getattr(getattr(bpy.ops, group), name).get_rna_type().name)
        return types.SimpleNamespace()

    def label(self, text: str = "", **_: object) -> None:
        self.seen.append(text)

    def template_ID(self, data: object, name: str, **_: object) -> None:
        self.prop(data, name)

    def template_icon(self, icon_value: int, **_: object) -> None:
        assert isinstance(icon_value, int)


class Drawing(Case):
    def test_of_every_node_shows_all_fields_in_the_sidebar(self) -> None:
        tree = self.cloth()
        for table in (*fernwick.classes(), *fernwick.sources()):
            with self.subTest(table):
                node = tree.nodes.new(nodes.idname(table))
                brief, whole = Layout(), Layout()
                node.draw_buttons(bpy.context, brief)
                looks.draw_all(node, whole)
                self.assertLessEqual(len(brief.seen), 30)
                for field in fernwick.describe(table):
                    if field.type not in ("shader", "colors", "file") and "[" not in field.name and not field.derived:
                        self.assertTrue(any(text.startswith(field.label) for text in whole.seen), field.name)

    def test_of_the_panels(self) -> None:
        tree = self.cloth()
        preview.finish()
        bpy.ops.mesh.primitive_cube_add()
        bpy.context.scene.fernwick_tree = tree
        for node in tree.nodes:
            node.draw_buttons(bpy.context, Layout())
        space = types.SimpleNamespace(type="NODE_EDITOR", edit_tree=tree, tree_type=tree.bl_idname)
        context = types.SimpleNamespace(
            space_data=space, scene=bpy.context.scene, view_layer=bpy.context.view_layer,
            active_node=tree.nodes["cloth"],
            preferences=types.SimpleNamespace(system=types.SimpleNamespace(ui_scale=1)),
            region=types.SimpleNamespace(width=220),
        )  # fmt: skip
        for shown in (tree, None):
            space.edit_tree = shown
            for panel in panels.CLASSES[:-1]:
                if panel.poll(context):
                    layout = Layout()
                    panel.draw(types.SimpleNamespace(layout=layout), context)
                    self.assertTrue(layout.seen or shown is None)
        space.edit_tree = tree
        for mode in ("SQUARE", "OBJECT", "SCENE"):
            tree.settings.mode = mode
            panels.FERNWICK_PT_preview.draw(types.SimpleNamespace(layout=Layout()), context)


class Guide(Case):
    def test_leads_to_a_cushion(self) -> None:
        bpy.ops.wm.read_homefile(use_factory_startup=True)  # with the cube, the camera and the light
        bpy.ops.preferences.addon_enable(module="fernwick_nodes")
        cube, scene = bpy.context.object, bpy.context.scene
        bpy.ops.transform.resize(value=(1, 1, 0.3))
        bpy.ops.object.mode_set(mode="EDIT")
        bpy.ops.mesh.select_all(action="SELECT")
        bpy.ops.transform.edge_crease(value=0.35)
        bpy.ops.uv.cube_project()
        bpy.ops.object.mode_set(mode="OBJECT")
        modifier = cube.modifiers.new("Subdivision", "SUBSURF")
        modifier.levels = modifier.render_levels = 4
        bpy.ops.object.shade_smooth()
        bpy.ops.fernwick.new_tree()
        cloth = scene.fernwick_tree.nodes["cloth"]
        self.assertEqual(cloth.bl_rna.properties["fRepeatU"].name, "Tiles along U")
        cloth.fRepeatU = cloth.fRepeatV = 16
        bpy.ops.fernwick.bake_material()
        bpy.data.objects["Camera"].location = (3.7, -3.45, 2.45)
        scene.render.engine, scene.cycles.samples, scene.cycles.use_denoising = "CYCLES", 4, False
        scene.render.resolution_x, scene.render.resolution_y = 96, 54
        scene.render.filepath = str(self.folder / "cushion.png")
        bpy.ops.render.render(write_still=True)
        picture = pixels(bpy.data.images.load(scene.render.filepath))
        middle, edge = picture[20:34, 36:60, :3], picture[:6, :, :3]
        self.assertGreater(float(middle.std()), 3 * float(edge.std()))  # threads before a plain ground
        self.assertGreater(float(middle[..., 0].mean()), 1.2 * float(middle[..., 2].mean()))  # cream and rust

    def test_comes_with_the_zip(self) -> None:
        layout = Layout()
        preferences = types.SimpleNamespace(system=types.SimpleNamespace(ui_scale=1))
        region = types.SimpleNamespace(width=600)
        context = types.SimpleNamespace(preferences=preferences, region=region)
        panels.FernwickPreferences.draw(types.SimpleNamespace(layout=layout), context)
        self.assertIn("Open the Guide", layout.seen)
        text = library.GUIDE.read_text()
        names = [name for name in re.findall(r"\]\(([^)]*)\)", text) if not name.startswith("#")]
        self.assertGreater(len(names), 2)
        for name in names:
            self.assertTrue((library.GUIDE.parent / name).is_file(), name)

    def test_has_scripts_that_run(self) -> None:
        bpy.ops.wm.read_homefile(use_factory_startup=True)
        bpy.ops.preferences.addon_enable(module="fernwick_nodes")
        blocks = re.findall(r"```python\n(.*?)```", (ROOT / "docs/blender.md").read_text(), re.DOTALL)
        self.assertEqual(len(blocks), 1)
        text = blocks[0].replace("examples/", f"{ROOT}/examples/").replace("2048, samples=4", "64")
        exec(text, {"bpy": bpy})
        self.assertEqual(bpy.data.objects["Cube"].material_slots[0].material.name, "Cube")
        self.assertTrue(math.isfinite(float(pixels(bpy.data.images["Cube color"]).sum())))

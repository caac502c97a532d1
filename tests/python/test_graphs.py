"""Graphs, scenes and meshes: what they take, refuse, tell and keep."""

import json
import pickle
import warnings
from pathlib import Path

import numpy as np
import pytest
from conftest import EXAMPLES, run_command

import fernwick
from fernwick import Checker, Color, Element, Graph, GraphError, GraphWarning, Keyed, Mesh, Model, Picture, Scene, Weave

SQUARE = ([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 0]], [[0, 1, 2], [0, 2, 3]])


@pytest.mark.filterwarnings("ignore")
@pytest.mark.parametrize("path", sorted(EXAMPLES.glob("*.json")), ids=lambda path: path.stem)
def test_examples_go_round(path, tmp_path):
    graph = Graph.load(path)
    assert graph.to_dict() == json.loads(path.read_text())
    assert Graph(graph.to_dict(), folder=EXAMPLES) == graph == pickle.loads(pickle.dumps(graph))
    graph.save(tmp_path / path.name)
    assert Graph(json.loads((tmp_path / path.name).read_text()), folder=EXAMPLES) == graph
    assert path.name in repr(graph)


def test_the_document_of_a_shader_and_its_scene():
    red, lamp = Color("#f00", name="red"), fernwick.Light("spot", range=(1, 8), cone=np.array([20, 30]))
    scene = Scene(
        [
            Element(
                "Ball", fernwick.Sphere(2), red, position=np.array([0, 1, 2]), children=[Element("Lamp", light=lamp)]
            ),
            Element("Eye", position=(0, Keyed({1: 1, 9: 3}), 9), look_at=(0, 0, 0), camera=fernwick.Camera(40)),
        ],
        camera="Eye",
    )
    graph = Graph(Weave(fRepeatU=3, fWarpSubShader=Color("#fff"), fGapSubShader=red), scene)
    assert graph.to_dict() == {
        "shaders": {
            "weave": {"class": "Weave", "fRepeatU": 3, "fGapSubShader": "red", "fWarpSubShader": ["color"] * 5},
            "color": {"source": "color", "color": [1, 1, 1]},
            "red": {"source": "color", "color": [1, 0, 0]},
        },
        "output": "weave",
        "scene": {
            "elements": [
                {
                    "name": "Ball", "shape": {"kind": "sphere", "radius": 2}, "shader": "red", "position": [0, 1, 2],
                    "children": [{"name": "Lamp", "light": {"kind": "spot", "range": [1, 8], "cone": [20, 30]}}],
                },
                {
                    "name": "Eye", "position": [0, {"keys": [[1, 1], [9, 3]]}, 9], "lookAt": [0, 0, 0],
                    "camera": {"fieldOfView": 40},
                },
            ],
            "camera": "Eye",
        },
    }  # fmt: skip
    assert repr(graph) == "<Graph weave: Weave, 3 shaders, frame 1>"
    assert graph.cameras == ("Eye",) and "color" in graph.outputs and graph.operations == ("color", "vector")
    assert eval(repr(scene.elements[1]), vars(fernwick)) == scene.elements[1]
    assert graph.render(24, 16).shape == (16, 24, 4)
    assert not np.array_equal(graph.render(24, 16), graph.at(9).render(24, 16))
    assert [repr(each.frame) for each in graph.frames(1, 2.5, 0.5)] == ["1", "1.5", "2", "2.5"]


def test_names_that_were_given_come_before_those_that_are_made():
    mixer = fernwick.Super_mixer(fSubShader=[Color("#111"), Color("#222", name="color"), Color("#333")] + 9 * [None])
    assert list(Graph(mixer).to_dict()["shaders"]) == ["super_mixer", "color2", "color", "color3"]
    with pytest.raises(GraphError, match='two shaders have the name "a"'):
        Graph(Checker(name="a"), Scene([Element("Ball", fernwick.Sphere(), Color("#fff", name="a"))]))
    document = {"shaders": {"a": {"class": "Weave", "fGapSubShader": Color("#fff")}}, "output": "a"}
    assert list(Graph(document).to_dict()["shaders"]) == ["a", "color"]


@pytest.mark.parametrize(
    ("make", "error", "text"),
    [
        (lambda: Graph({"shaders": {"a": {"class": "Weave", "fRepeatU": 1.5}}, "output": "a"}), GraphError, "a.fRepeatU"),
        (lambda: Graph("{"), GraphError, ""),
        (lambda: Graph(Path("a.json")), TypeError, "Graph.load reads files"),
        (lambda: Graph({"shaders": {"a": {"class": "Weave", "fRepeatU": {1}}}, "output": "a"}), TypeError, "shaders.a.fRepeatU"),
        (lambda: Graph(Checker(), {"elements": [{"name": "a", "shape": {"kind": "spher"}}]}), GraphError, "sphere"),
        (lambda: Graph(Checker(), Scene([Element("a", fernwick.Sphere(-1))])), GraphError, "elements[0]"),
        (lambda: Graph(Checker(), scene=3), TypeError, "scene: expected a Scene"),
        (lambda: Graph.load("nothing.json"), GraphError, "nothing.json"),
        (lambda: Graph(Checker()).bake(0), ValueError, "width: expected 1 to 65536, got 0"),
        (lambda: Graph(Checker()).bake(8.5), TypeError, "width: expected an integer, got 8.5"),
        (lambda: Graph(Checker()).bake(8, output="colour"), ValueError, "did you mean \"color\"?"),
        (lambda: Graph(Checker()).bake(8, output=["color", "color"]), ValueError, "each name once"),
        (lambda: Graph(Checker()).bake(8, region=(0, 0, 9, 8)), ValueError, "region: expected a pixel or more within 8 x 8"),
        (lambda: Graph(Checker()).bake(8, samples=0), ValueError, "samples"),
        (lambda: Graph(Checker()).bake(8, onto="nothing.obj"), fernwick.ModelError, "nothing.obj"),
        (lambda: Graph(Checker()).bake(8, tile=1001), ValueError, "tile: is for models"),
        (lambda: Graph(Checker()).bake(8, onto=EXAMPLES / "vase.obj"), ValueError, "1001"),
        (lambda: Graph(Checker()).bake(8, over=3), TypeError, "over: expected a Graph"),
        (lambda: Graph(Checker()).bake(8, progress=3), TypeError, "progress"),
        (lambda: Graph(Checker()).render(8), fernwick.RenderError, ""),
        (lambda: Graph(Checker()).shade(uv=(1, 2, 3)), ValueError, "uv: expected an array whose last axis has 2"),
        (lambda: Graph(Checker()).shade(uv="ab"), TypeError, "uv: expected an array of numbers"),
        (lambda: Graph(Checker()).shade(uv=np.ones((4, 2)), normal=np.ones((3, 3))), ValueError, "uv (4,), normal (3,)"),
        (lambda: Graph(Checker()).shade(operation="vector"), ValueError, "operation: expected one of 'color'"),
        (lambda: Graph(Checker()).shade(element="Nobody"), ValueError, "Nobody"),
        (lambda: Graph(Checker()).at(float("nan")), ValueError, "frame: expected a finite number"),
        (lambda: Mesh([[0, 0]], [[0, 0, 0]]), ValueError, "vertices: expected an array whose last axis has 3"),
        (lambda: Mesh(SQUARE[0], [[0, 1, 4]]), ValueError, "triangles: expected indices below 4, got 4"),
        (lambda: Mesh(SQUARE[0], [[0, 1, 2.5]]), TypeError, "triangles: expected integers"),
        (lambda: Mesh(*SQUARE, uvs=np.zeros((3, 2))), ValueError, "uvs: expected an array of shape (4, 2) or (2, 3, 2)"),
        (lambda: Mesh([[0, 0, np.inf]] * 3, [[0, 1, 2]]), ValueError, ""),
        (lambda: Mesh.load("nothing.obj"), fernwick.ModelError, "nothing.obj"),
        (lambda: fernwick.load_picture("nothing.png"), fernwick.FileError, "nothing.png"),
        (lambda: fernwick.save("a.png", np.zeros((2, 2), np.uint8)), TypeError, "array: expected floats"),
        (lambda: fernwick.save("a.jpg", np.zeros((2, 2))), fernwick.FileError, "a.jpg"),
        (lambda: fernwick.validate("nothing.so"), fernwick.LibraryError, "nothing.so"),
        (lambda: fernwick.validate(only=[]), ValueError, "only: expected a name or several, got none"),
        (lambda: fernwick.validate(only="leeks"), ValueError, 'did you mean "leaks"?'),
        (lambda: fernwick.set_library("/nothing.so"), fernwick.LibraryError, ""),
    ],
)  # fmt: skip
def test_what_is_wrong_is_named(make, error, text):
    with pytest.raises(error) as raised:
        make()
    assert text in str(raised.value) and str(raised.value)


def test_arrays_are_pictures():
    pixels = np.random.default_rng(1).random((8, 8, 4), np.float32)
    source = Picture(pixels)
    graph = Graph(source)
    baked = graph.bake(8)
    assert np.array_equal(baked, Graph(Picture(pixels.astype(float))).bake(8))
    pixels[:] = 0  # the shader holds a copy
    assert np.array_equal(graph.bake(8), baked) and graph == Graph(source) != Graph(Picture(pixels))
    (token,) = graph.files
    assert np.array_equal(graph.files[token], source.file) and not graph.files[token].flags.writeable
    assert pickle.loads(pickle.dumps(graph)) == graph == Graph(graph.to_dict(), files=graph.files)
    assert Graph({"shaders": {"a": {"source": "picture", "file": source.file}}, "output": "a"}).files.keys() == {token}
    with pytest.raises(ValueError, match="pickle"):
        graph.save("never.json")
    whole = np.full((2, 2, 3), 255, np.uint8)
    assert np.array_equal(Graph(Picture(whole)).bake(4), np.ones((4, 4, 4), np.float32))


def test_arrays_are_what_files_with_the_same_numbers_are(tmp_path):
    colors = (np.random.default_rng(2).random((9, 7, 4)) * 0.9 + 0.1).astype(np.float32)
    fernwick.save(tmp_path / "picture.exr", colors, straight=True)
    assert np.array_equal(fernwick.load_picture(tmp_path / "picture.exr"), colors)
    file, array = (Graph(Picture(each)).bake(32) for each in (tmp_path / "picture.exr", colors))
    assert np.array_equal(file, array)
    fernwick.save(tmp_path / "picture.png", colors)
    assert np.abs(fernwick.load_picture(tmp_path / "picture.png") - colors).max() < 0.01


def test_meshes():
    uvs = np.array([[[0, 0], [1, 0], [1, 1]], [[0, 0], [1, 1], [0, 0.5]]], np.float32)
    mesh = Mesh(*SQUARE, uvs=uvs)
    assert len(mesh.vertices) == 4 and np.array_equal(mesh.uvs[0][mesh.triangles], uvs)
    uvs[1, 0] = 0.25
    split = Mesh(*SQUARE, uvs=[uvs, uvs], normals=np.tile(np.float32([0, 0, 1]), (4, 1)))
    assert repr(split) == "<Mesh: 5 vertices, 2 triangles, 2 UV sets, normals>"
    assert np.array_equal(split.uvs[1][split.triangles], uvs)
    assert np.array_equal(split.vertices[split.triangles], np.float32(SQUARE[0])[SQUARE[1]])
    assert pickle.loads(pickle.dumps(split)) == split == Mesh(*SQUARE, [uvs, uvs], [[0, 0, 1]] * 4) != mesh
    with pytest.raises(ValueError):
        split.vertices[0] = 1
    cushion = Mesh.load(EXAMPLES / "cushion.obj", scale=2)
    assert np.array_equal(cushion.bounds, 2 * Mesh.load(EXAMPLES / "cushion.obj").bounds)


def test_a_mesh_is_what_a_file_with_it_is():
    graph = Graph(Weave(fRepeatU=9, fRepeatV=9, fWarpSubShader=Color("#c83c14"), fRoundAcross=True))
    mesh = Mesh.load(EXAMPLES / "cushion.obj")
    from_file, from_arrays = (graph.bake(64, onto=each) for each in (EXAMPLES / "cushion.obj", mesh))
    assert np.array_equal(from_file, from_arrays)
    copied = Mesh(mesh.vertices, mesh.triangles, mesh.uvs[0], mesh.normals)
    assert copied == mesh and np.array_equal(graph.bake(64, onto=copied), from_arrays)
    eye = Element("Eye", position=(0, 1, 5), look_at=(0, 0, 0), camera=fernwick.Camera())
    file, array = (
        Graph(Checker(), Scene([Element("a", Model(each)), eye])).render(32)
        for each in (EXAMPLES / "cushion.obj", mesh)
    )
    assert np.array_equal(file, array)
    by_scene = Graph(Checker(), Scene([Element("a", mesh), eye]))
    assert np.array_equal(by_scene.render(32), array) and pickle.loads(pickle.dumps(by_scene)) == by_scene
    assert graph.tiles(EXAMPLES / "vase.obj") == [1001, 1002]
    assert Graph.load(EXAMPLES / "cushion.json").bake(16, onto=mesh).shape == (16, 16, 4)


def test_warnings_point_at_the_line_and_come_once():
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        graph = Graph(Weave(fRepeatU=-1))
        graph.bake(4)
        list(graph.frames(1, 3))
    assert [(each.category, each.filename) for each in caught] == [(GraphWarning, __file__)]
    assert "fRepeatU" in str(caught[0].message) and graph.doubts == (str(caught[0].message),)
    with pytest.warns(fernwick.ShaderWarning, match="no element of that name") as told:
        Graph(fernwick.Curvature(fSurfaceName="Nobody"), Scene([])).bake(8)
    assert told[0].filename == __file__


def test_an_array_can_be_larger_than_what_is_shaded_of_it():
    graph = Graph.load(EXAMPLES / "weave-rounded.json")
    whole = graph.bake(40, 30, ("color", "alpha"))
    assert whole["alpha"].shape == (30, 40) and whole["color"].flags.owndata is not None
    part = graph.bake(40, 30, region=(3, 2, 11, 7))
    assert np.array_equal(part, whole["color"][2:7, 3:11])
    assert np.array_equal(graph.bake(40, 30, threads=1), whole["color"])
    assert json.loads(run_command("list", "--json"))["classes"]


def test_depth_has_an_end_with_a_reason():
    chain = Checker()
    for _ in range(250):
        chain = fernwick.Gray(fSubShader=chain)
    assert Graph(chain).bake(1).shape == (1, 1, 4)
    for _ in range(600):
        chain = fernwick.Gray(fSubShader=chain)
    endless = {"shaders": {}, "output": "a"}
    endless["scene"] = endless
    for deep in (chain, endless):
        with pytest.raises(GraphError, match="256 shaders"):
            Graph(deep)


def test_arrays_of_meshes_and_pictures_cannot_be_made_writable():
    mesh = Mesh(*SQUARE, np.zeros((4, 2)))
    for array in (mesh.vertices, mesh.triangles, mesh.uvs[0], Picture(np.ones((2, 2))).file):
        with pytest.raises(ValueError, match="WRITEABLE|read-only"):
            array.flags.writeable = True


@pytest.mark.parametrize("name", ["/dev/full", "folder"])
def test_what_cannot_be_written_stays_what_it_was(tmp_path, name):
    (tmp_path / "folder").mkdir()
    path = tmp_path / name
    kind = path.stat().st_mode
    with pytest.raises(fernwick.FileError, match=name):
        Graph(Checker()).save(path)
    assert path.stat().st_mode == kind
    assert list(tmp_path.iterdir()) == [tmp_path / "folder"]

"""Arrays and samples are to the bit what the command makes."""

import json
import re
import warnings
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest
from conftest import EXAMPLES, run_command

import fernwick

NUMBERS = {"alpha", "coverage", "value"}
SIZE = (96, 64)


def bits(array):
    return np.ascontiguousarray(array).view(np.uint32)


def read(path, output):
    """A picture of the command: an EXR of 32 bits, its colours not multiplied by the alpha, holds what was shaded."""
    picture = fernwick.load_picture(path)
    return picture[..., 0] if output in NUMBERS else picture


def assert_same(array, path, output):
    wanted = read(path, output)
    assert array.shape == wanted.shape
    assert array.dtype == np.float32
    differing = bits(array) != bits(wanted)
    both_nan = np.isnan(array) & np.isnan(wanted)
    assert not (differing & ~both_nan).any()


def load(name):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        return fernwick.Graph.load(EXAMPLES / name)


@pytest.fixture(scope="session")
def baked(tmp_path_factory):
    """All outputs of all examples as the command bakes them: the folder that holds them."""
    folder = tmp_path_factory.mktemp("baked")

    def bake(path):
        outputs = ",".join(load(path.name).outputs)
        picture = folder / f"{path.stem}.{{output}}.exr"
        run_command("bake", path, "--outputs", outputs, "--size", "96x64", "--straight", "-o", picture)

    with ThreadPoolExecutor(2) as threads:
        list(threads.map(bake, sorted(EXAMPLES.glob("*.json"))))
    return folder


@pytest.mark.parametrize("name", [path.stem for path in sorted(EXAMPLES.glob("*.json"))])
def test_bake_gives_what_the_command_writes(baked, name):
    graph = load(f"{name}.json")
    pictures = graph.bake(*SIZE, output=graph.outputs)
    assert list(pictures) == list(graph.outputs)
    for output, picture in pictures.items():
        assert_same(picture, baked / f"{name}.{output}.exr", output)


@pytest.mark.parametrize(
    ("name", "options", "arguments"),
    [
        ("weave-rounded", "--samples 4 --outputs color", {"samples": 4}),
        ("weave-rounded", "--region 10,5,70,40 --outputs normal", {"output": "normal", "region": (10, 5, 70, 40)}),
        ("weave-rounded", "--outputs normal --directx", {"output": "normal", "green": "down"}),
        ("key", "--over checker", {"over": fernwick.Checker()}),
        ("cushion", "--onto cushion.obj --outputs color", {"onto": EXAMPLES / "cushion.obj"}),
        (
            "cushion",
            "--onto cushion.obj --margin 0 --outputs normal",
            {"output": "normal", "onto": "cushion.obj", "margin": 0},
        ),
        ("vase", "--onto vase.obj --outputs color", {"onto": EXAMPLES / "vase.obj", "tile": 1002}),
    ],
)
def test_options_are_the_command_s(tmp_path, monkeypatch, name, options, arguments):
    monkeypatch.chdir(EXAMPLES)
    path = tmp_path / "picture.exr"
    run_command("bake", f"{name}.json", *options.split(), "--size", "96x64", "--straight", "-o", path)
    if "tile" in arguments:
        path = tmp_path / f"picture.{arguments['tile']}.exr"
    picture = load(f"{name}.json").bake(*SIZE, **arguments)
    left, top, right, bottom = arguments.get("region", (0, 0, *SIZE))
    assert picture.shape[:2] == (bottom - top, right - left)
    assert_same(picture, path, arguments.get("output", "color"))


@pytest.mark.parametrize("name", ["spot-room", "studio", "ripple-sequence"])
def test_render_gives_what_the_command_writes(tmp_path, name):
    path = tmp_path / "picture.exr"
    run_command("render", f"{name}.json", "--size", "48x32", "--samples", "4", "--straight", "-o", path)
    graph = load(f"{name}.json")
    layers = graph.render(48, 32, samples=4, layers=["normal", "coverage"])
    assert_same(layers["color"], path, "color")
    assert layers["normal"].shape == (32, 48, 3) and layers["coverage"].shape == (32, 48)
    assert np.array_equal(layers["color"], graph.render(48, 32), equal_nan=True)


def test_frames_are_the_command_s(tmp_path):
    run_command(
        "bake",
        "ripple-sequence.json",
        "--frames",
        "1-9x4",
        "--size",
        "96x64",
        "--straight",
        "-o",
        tmp_path / "p.####.exr",
    )
    for graph in load("ripple-sequence.json").frames(1, 9, 4):
        assert_same(graph.bake(*SIZE), tmp_path / f"p.{graph.frame:04.0f}.exr", "color")


def printed(text):
    """By operation the numbers that `--print` tells, read from their hexadecimal digits."""
    answers, operation = {}, ""
    for line in text.splitlines():
        found = re.fullmatch(r"  (\S.*?)\s{2,}\S+\s+(\S+)", line)
        if found:
            digits = found[2]
            answers[operation][found[1].replace(" ", "_")] = float.fromhex(digits)
        elif re.fullmatch(r"\w+", line):
            operation = line
            answers[operation] = {}
    return answers


# What the command puts around the square for one class, and what its classes look for there.
SCENE = fernwick.Scene(
    [
        fernwick.Element("Lamp", position=(-0.3, 1.3, 0.8), light=fernwick.Light("point", range=(0.8, 2.5))),
        fernwick.Element("Target", position=(1, 1, 0.3)),
        fernwick.Element("Camera", position=(0.5, 0.5, 2), camera=fernwick.Camera(38)),
        fernwick.Element("Shape", fernwick.Plane((1, 1)), position=(0.5, 0.5, 0)),
    ],
    camera="Camera",
)
LOOKS_FOR = {
    "fCameraName": "Camera",
    "fLightName": "Lamp",
    "fTargetName": "Target",
    "fObjectName": "Target",
    "fSurfaceName": "Shape",
}


@pytest.fixture(scope="session")
def prints():
    """What the command prints of a sample of each class."""
    with ThreadPoolExecutor(2) as threads:
        texts = threads.map(lambda name: run_command("shade", name, "--print", "0.3,0.6"), fernwick.classes())
        return dict(zip(fernwick.classes(), texts))


@pytest.mark.parametrize("name", fernwick.classes())
def test_samples_are_what_the_command_prints(prints, name):
    shader = getattr(fernwick, name)()
    for field in LOOKS_FOR.keys() & {field.name for field in fernwick.describe(name)}:
        shader[field] = LOOKS_FOR[field]
    graph = fernwick.Graph(shader, SCENE)
    answers = printed(prints[name])
    assert list(answers) == list(graph.operations)
    for operation, numbers in answers.items():
        answer = graph.shade(uv=(0.3, 0.6), operation=operation)
        assert list(numbers) == list(answer.dtype.names)
        mine = np.array([answer[number] for number in numbers], np.float32)
        assert np.array_equal(mine, np.array(list(numbers.values()), np.float32), equal_nan=True)


def test_samples_of_any_shape_lie_where_a_bake_has_them():
    graph = load("weave-rounded.json")
    u = (np.arange(SIZE[0]) + 0.5) / SIZE[0]
    v = 1 - (np.arange(SIZE[1]) + 0.5) / SIZE[1]
    uv = np.stack(np.meshgrid(u, v), axis=-1)
    answer = graph.shade(uv=uv)
    assert answer.shape == (64, 96)
    baked = graph.bake(*SIZE)
    for i, name in enumerate(("red", "green", "blue", "alpha")):
        np.testing.assert_allclose(answer[name], baked[..., i], atol=2e-6)
    assert np.array_equal(answer.red, graph.shade(uv=uv, normal=(0, 0, 1), deriv_u=[1, 0, 0]).red)
    assert np.array_equal(graph.shade(point=(0.2, 0.7, 0)), graph.shade(uv=(0.2, 0.7), point=(0.2, 0.7, 0)))
    assert graph.shade(uv=np.empty((0, 3, 2))).shape == (0, 3)


def test_what_shaders_carry_goes_from_sample_to_sample():
    mixer = fernwick.Super_mixer(fDistribution="Automatic", fSubShader=fernwick.Ramp())
    uv = np.random.default_rng(1).random((50, 2))
    one_call = fernwick.Graph(mixer).shade(uv=uv)
    assert np.array_equal(one_call, fernwick.Graph(mixer).shade(uv=uv))


def test_surfaces_and_places_of_elements():
    scene = fernwick.Scene([fernwick.Element("Ball", fernwick.Sphere(1), position=(2, 0, 0), rotation=(0, 90, 0))])
    graph = fernwick.Graph(
        fernwick.Location(fSpace="Object", fAxes=[{"fEnabled": True, "fEdgeA": -1, "fEdgeB": 1}, {}, {}]), scene
    )
    inside = graph.shade(point_local=(0.5, 0, 0), element="Ball")
    moved = graph.shade(point=(2, 0, -0.5), element="Ball")
    assert inside.value == pytest.approx(float(moved.value), abs=1e-6)
    surface = fernwick.Graph(fernwick.Surface("#ffffff", second=(0.1, 0.2, 0.3))).shade(operation="surface")
    assert surface.produced == 1 and surface.second_blue == np.float32(0.3)


def test_pictures_are_written_as_the_command_writes_them(tmp_path):
    graph = load("weave-rounded.json")
    pictures = graph.bake(*SIZE, output=["color", "normal", "alpha"])
    for ending, options, arguments in [
        ("png", "", {}), ("exr", "", {}), ("exr", "--straight --tiled", {"straight": True, "tiled": True}),
        ("tif", "--bits 16", {"bits": 16}), ("exr", "--compression piz", {"compression": "piz"}),
    ]:  # fmt: skip
        run_command(
            "bake", "weave-rounded.json", "--outputs", "color,normal,alpha", "--size", "96x64", *options.split(),
            "-o", tmp_path / f"command.{{output}}.{ending}",
        )  # fmt: skip
        for output, picture in pictures.items():
            content = "value" if output in NUMBERS else "normal" if output == "normal" else "color"
            fernwick.save(tmp_path / f"mine.{ending}", picture, content, **arguments)
            assert (tmp_path / f"mine.{ending}").read_bytes() == (tmp_path / f"command.{output}.{ending}").read_bytes()


def test_validation_is_the_command_s():
    known = [each["check"] for each in json.loads(run_command("validate", "--list", "--json"))]
    checks = known[:2]
    report = fernwick.validate(only=checks, class_name="Key", records=20)
    assert report and report.passed and [check.name for check in report.checks] == checks
    assert "all passed" in str(report)

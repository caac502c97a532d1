"""`python -m fernwick.cluster` takes what the command takes, and tells and makes the same."""

import contextlib
import json
import logging
import os
import re
import subprocess
import sys
import warnings
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

import pytest
from conftest import COMMAND, EXAMPLES, run_command

import fernwick
import fernwick.cluster
from fernwick.cluster import __main__ as command

PROGRAM = "python -m fernwick.cluster"
Run = Callable[..., int]


@pytest.fixture
def run(shared: Any, monkeypatch: pytest.MonkeyPatch) -> Iterator[Run]:
    """The command line on a cluster that is there, in this process. Answers the exit status."""

    def main(*arguments: object) -> int:
        try:
            return command.main([*map(str, arguments)])
        except SystemExit as end:
            return int(end.code or 0)

    loggers = [logging.getLogger(name) for name in ("fernwick.cluster", "distributed")]
    before = [(logger, logger.level, [*logger.handlers]) for logger in loggers]
    monkeypatch.chdir(EXAMPLES)
    monkeypatch.setattr(command, "_connect", lambda options: contextlib.nullcontext(shared))
    monkeypatch.setattr(warnings, "showwarning", warnings.showwarning)
    yield main
    for logger, level, handlers in before:
        logger.setLevel(level)
        logger.handlers = handlers


def test_options() -> None:
    """All of the command, but those of its threads."""
    for name in ("bake", "render"):
        theirs = run_command(name, "--help")
        made = subprocess.run(
            [sys.executable, "-m", "fernwick.cluster", name, "--help"], capture_output=True, text=True
        )
        options = [set(re.findall(r"(?<![\w-])--?[a-z][-a-z]*", text)) for text in (theirs, made.stdout)]
        assert options[0] - options[1] == {"--threads"}
        assert made.returncode == 0


BAKE = "bake key.json -o OUT/a.png "
ONTO = "bake cushion.json --onto cushion.obj -o OUT/a.{output}.png "
MISTAKES = [
    "bake",
    "bak",
    "--nope",
    "bake key.json",
    "bake key.json -o OUT/a.jpg",
    "bake none.json -o OUT/a.png",
    "bake key.json -o /proc/none/a.png",
    BAKE + "other.json",
    BAKE + "--sise 4x4",
    BAKE + "--size",
    BAKE + "--size 99999x4",
    BAKE + "--size 4x4 --size 5x5",
    BAKE + "--bits 9",
    BAKE + "--bits 32",
    BAKE + "--straight",
    BAKE + "--compression pzi",
    BAKE + "--region 1,2,3",
    BAKE + "--region 0,0,600,600",
    BAKE + "--frames 5-1",
    BAKE + "--frames 1-2",
    BAKE + "--samples 1.5",
    BAKE + "--output color,nromal",
    BAKE + "--output color --output alpha",
    BAKE + "--output color,color",
    BAKE + "--output normal",
    BAKE + "--lit --output normal",
    BAKE + "--directx",
    BAKE + "--output alpha --over checker",
    BAKE + "--over cheker",
    BAKE + "--over color:#xyz",
    BAKE + "--over picture:none.png",
    BAKE + "--over backdrop.png",
    BAKE + "--margin 3",
    BAKE + "--gltf-roughness x",
    BAKE + "--set x",
    BAKE + "--set fMode=KEYX",
    BAKE + "--set fSubShader=checker",
    BAKE + "--plug nobody.x=checker",
    BAKE + "--plug fSubShader=cheker",
    "bake key.json -o OUT/a.{udim}.png",
    ONTO + "--size 65536x4",
    ONTO + "--uv-set 7",
    ONTO + "--margin 129",
    ONTO + "--gltf OUT/a.gltf",
    ONTO + "--gltf OUT/a.glb --output normal --directx",
    ONTO + "--gltf OUT/a.glb --gltf-roughness x",
    ONTO + "--gltf OUT/a.glb --gltf-roughness cloht",
    ONTO + "--gltf OUT/a.glb --gltf-occlusion cloth",
    ONTO + "--gltf OUT/a.glb --frames 1-2",
    "bake cushion.json --onto cushion.obj -o OUT/a.png --gltf OUT/a.glb --gltf-roughness x",
    "bake cushion.json --onto cushion.obj#nobody -o OUT/a.png",
    "bake cushion.json --onto none.obj -o OUT/a.png",
    "render key.json -o OUT/a.png",
    "render spot-room.json -o OUT/a.png --camera Nobody",
    "render spot-room.json -o OUT/a.png --layers normal",
    "render spot-room.json -o OUT/a.png --strip",
    "render spot-room.json -o OUT/a.png --strip --frames 1-200",
    "render spot-room.json -o OUT/a.exr --strip --frames 1-2 --layers normal",
]


@pytest.mark.parametrize("line", MISTAKES)
def test_mistakes(run: Run, tmp_path: Path, capfd: Any, line: str) -> None:
    """The same text and status, and nothing is made."""
    arguments = line.replace("OUT", str(tmp_path)).split()
    status = run(*arguments)
    told = capfd.readouterr().err.replace(PROGRAM, "fernwick")
    theirs = subprocess.run([COMMAND, *arguments], capture_output=True, text=True)
    assert (told, status) == (theirs.stderr, theirs.returncode)
    assert status in (1, 2) and not list(tmp_path.iterdir())


@pytest.mark.parametrize(
    "line",
    [
        "bake key.json --plug fSubShader=picture:yarn.png --set fMode=KEYA --set key.fRedRange=[0,90] -o a.exr --tile 128x128"
        " --over color:#f80 --size 200x150",
        "bake key.json --over ripple-sequence.json --frames 3,4 -o a.##.png --bits 16 --size 150x140 --region 9,9,70,139",
        "render ripple-sequence.json --set drop.fWaves=9 --frames 1-2 --strip -o a.png --size 130x70 --samples 2"
        " --tile 64x64",
        "bake cushion.json --onto cushion.obj --lit --margin 3 -o a.{udim}.png --size 140x130",
    ],
)
def test_files(run: Run, tmp_path: Path, line: str) -> None:
    same_files(run, tmp_path, line.split())


def test_model(run: Run, tmp_path: Path) -> None:
    """With outputs and other shaders of the graph in it."""
    (tmp_path / "cushion.obj").symlink_to(EXAMPLES / "cushion.obj")
    (tmp_path / "graph.json").write_text(json.dumps(cushion({"class": "Drip"}, {"source": "ramp"})))
    same_files(
        run,
        tmp_path,
        [
            "bake",
            tmp_path / "graph.json",
            "--onto",
            "cushion.obj",
            "--size",
            "150x140",
            "--outputs",
            "normal,color,alpha",
        ]
        + ["--over", "checker", "--gltf", "model/a.glb", "--gltf-roughness", "other0", "--gltf-occlusion", "other1"]
        + ["-o", "{udim}.{output}.png", "--bits", 16, "--frames", 4],
    )


def test_tiles(run: Run, tmp_path: Path, capfd: Any) -> None:
    """Of UDIM: each has a name, and no material takes several."""
    corners = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\n"
    uvs = "vt 0 0\nvt 1 0\nvt 0 1\nvt 1 0\nvt 2 0\nvt 1 1\n"
    (tmp_path / "a#b.obj").write_text(f"{corners}{uvs}f 1/1 2/2 3/3\nf 2/4 4/5 3/6\n")
    line = ["bake", "key.json", "--onto", tmp_path / "a#b.obj", "--size", "140x130"]
    same_files(run, tmp_path, [*line, "-o", "a.png"])
    same_files(run, tmp_path, [*line, "-o", "{udim}.png"])
    capfd.readouterr()
    assert run(*line, "-o", tmp_path / "a.png", "--gltf", tmp_path / "a.glb") == 2
    assert (
        capfd.readouterr().err == f'fernwick: --gltf: a material takes one tile, and "{tmp_path}/a#b.obj" lies on 2\n'
    )


def test_model_in_python(shared: Any, tmp_path: Path) -> None:
    """A bake into a model tells its progress once for all, and its files."""
    graph = fernwick.Graph(cushion({"source": "ramp"}), folder=EXAMPLES)
    shares: list[float] = []
    options: dict[str, Any] = {"onto": EXAMPLES / "cushion.obj", "gltf": tmp_path / "a.glb", "progress": shares.append}
    name = tmp_path / "a.{output}.png"
    files = fernwick.cluster.bake(shared, graph, name, 100, gltf_roughness="other0", **options)
    assert [file.name for file in files] == ["a.color.png", "a.roughness.png", "a.glb"]
    assert shares == sorted(shares) and shares[-1] == 1 and 0.5 in shares
    with pytest.raises(ValueError, match='gltf_occlusion: there is no shader "other"; did you mean "other0"?'):
        fernwick.cluster.bake(shared, graph, name, 100, gltf_occlusion="other", **options)
    with pytest.raises(ValueError, match="gltf: is for models"):
        fernwick.cluster.bake(shared, graph, name, 100, gltf=tmp_path / "b.glb")


def test_streams(run: Run, tmp_path: Path, capfdbinary: Any) -> None:
    """A graph from stdin, a picture to stdout, also where parts are kept."""
    run_command("bake", "key.json", "-o", tmp_path / "a.png", "--size", "150x140")
    expected = (tmp_path / "a.png").read_bytes()
    for _ in range(2):
        status = run("bake", "key.json", "-o", "-", "--size", "150x140", "--resume", tmp_path / "parts")
        assert status == 0 and capfdbinary.readouterr().out == expected
    with (EXAMPLES / "key.json").open() as graph:
        made = subprocess.run(
            [sys.executable, "-m", "fernwick.cluster", "bake", "-", "-o", "-", "--size", "150x140", "--workers", "1"],
            stdin=graph,
            capture_output=True,
            cwd=EXAMPLES,
        )
    assert (made.stdout, made.stderr) == (expected, b"")


def test_what_is_told(run: Run, tmp_path: Path, capfd: Any) -> None:
    line = f"bake key.json --set fMode=KEYA --set fMode=KEYM --frames 1,2 --size 9x9 -o {tmp_path}/#.png".split()
    assert run(*line) == 0
    assert capfd.readouterr().err == subprocess.run([COMMAND, *line], capture_output=True, text=True).stderr


def test_without_dask(tmp_path: Path) -> None:
    """One line tells what is missing."""
    (tmp_path / "distributed.py").write_text("raise ModuleNotFoundError(\"No module named 'distributed'\")")
    paths = os.pathsep.join([str(tmp_path), os.environ["PYTHONPATH"]])
    made = subprocess.run(
        [sys.executable, "-m", "fernwick.cluster", "bake", "key.json", "-o", "a.png"],
        capture_output=True,
        text=True,
        env={**os.environ, "PYTHONPATH": paths},
    )
    assert made.returncode == 1 and made.stderr.count("\n") == 1
    assert made.stderr.startswith("fernwick: fernwick.cluster needs Dask distributed (No module named 'distributed'): ")


def cushion(*others: dict[str, str]) -> dict[str, Any]:
    """The graph of the cushion with other shaders in it."""
    document: dict[str, Any] = json.loads((EXAMPLES / "cushion.json").read_text())
    document["shaders"] |= {f"other{i}": shader for i, shader in enumerate(others)}
    return document


def same_files(run: Run, folder: Path, arguments: list[Any]) -> None:
    """Makes the files of a command line, whose names are relative to a folder, in two folders, and compares them."""
    for name in ("theirs", "mine"):
        mark = arguments.index("-o") + 1
        line = [*arguments]
        line[mark] = folder / name / arguments[mark]
        if "--gltf" in line:
            line[line.index("--gltf") + 1] = folder / name / arguments[line.index("--gltf") + 1]
        if name == "mine":
            assert run(*line) == 0
        else:
            tile = line.index("--tile") if "--tile" in line else len(line)
            run_command(*line[:tile], *line[tile + 2 :])
    made = [
        {file.relative_to(folder / name): file for file in (folder / name).rglob("*.*")} for name in ("theirs", "mine")
    ]
    assert made[0].keys() == made[1].keys()
    for path in made[0]:
        assert made[0][path].read_bytes() == made[1][path].read_bytes(), path

"""Files of a cluster are those of one process, to the bit."""

import random
from pathlib import Path
from typing import Any

import pytest
from conftest import EXAMPLES, run_command

import fernwick
import fernwick.cluster
from fernwick.cluster._output import Output

GRAPHS = sorted(EXAMPLES.glob("*.json"))


@pytest.fixture
def any_order(monkeypatch: pytest.MonkeyPatch) -> None:
    """Units are sent in an order of chance."""
    begin = Output.begin

    def shuffled(output: Output) -> Any:
        units = begin(output)
        random.Random(3).shuffle(units)
        return units

    monkeypatch.setattr(Output, "begin", shuffled)


@pytest.mark.parametrize("path", GRAPHS, ids=lambda path: path.stem)
@pytest.mark.filterwarnings("ignore::fernwick.GraphWarning", "ignore::fernwick.ShaderWarning")
def test_examples(shared: Any, any_order: None, tmp_path: Path, path: Path) -> None:
    graph = fernwick.Graph.load(path, frame=5)
    outputs = [name for name in graph.outputs if name in ("color", "value", "normal", "alpha")]
    fernwick.cluster.bake(shared, graph, tmp_path / "a.{output}.exr", 150, 140, outputs, tile=(128, 128))
    for output, array in graph.bake(150, 140, outputs).items():
        same(tmp_path / f"a.{output}.exr", array, output)
    if graph.cameras:
        fernwick.cluster.render(shared, graph, tmp_path / "r.exr", 70, 50, samples=1, tile=(64, 64))
        same(tmp_path / "r.exr", graph.render(70, 50, samples=1), "color")


def test_a_part_of_a_picture_and_its_layers(shared: Any, tmp_path: Path) -> None:
    """As the command makes them; layers in the order of the file, not of the caller."""
    graph = fernwick.Graph.load(EXAMPLES / "spot-room.json")
    part = (10, 70, 190, 150)
    fernwick.cluster.render(
        shared, graph, tmp_path / "a.exr", 200, 150, region=part, layers=("normal", "second"), bits=16, tile=(64, 64)
    )
    options = ["--size", "200x150", "--region", "10,70,190,150", "--samples", 4]
    run_command(
        "render", "spot-room.json", *options, "--layers", "normal,second", "--bits", 16, "-o", tmp_path / "b.exr"
    )
    assert (tmp_path / "a.exr").read_bytes() == (tmp_path / "b.exr").read_bytes()
    fernwick.cluster.render(
        shared, graph, tmp_path / "a.png", 200, 150, region=part, frames=(1, 2), strip=True, tile=(64, 64)
    )
    run_command("render", "spot-room.json", *options, "--frames", "1-2", "--strip", "-o", tmp_path / "b.png")
    assert (tmp_path / "a.png").read_bytes() == (tmp_path / "b.png").read_bytes()


def same(file: Path, array: Any, output: str) -> None:
    alone = file.with_stem("alone")
    content = {"value": "value", "alpha": "value", "normal": "normal"}.get(output, "color")
    fernwick.save(alone, array, content)
    assert file.read_bytes() == alone.read_bytes(), output

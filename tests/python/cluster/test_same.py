"""Files of a cluster are those of one process, to the bit."""

import random
from pathlib import Path
from typing import Any

import pytest
from conftest import EXAMPLES

import fernwick
import fernwick.cluster
from fernwick.cluster import _run

GRAPHS = sorted(EXAMPLES.glob("*.json"))


@pytest.fixture
def any_order(monkeypatch: pytest.MonkeyPatch) -> None:
    """Units are sent in an order of chance."""
    begin = _run.Run._begin

    def shuffled(run: _run.Run) -> None:
        begin(run)
        random.Random(3).shuffle(run._pending)

    monkeypatch.setattr(_run.Run, "_begin", shuffled)


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


def same(file: Path, array: Any, output: str) -> None:
    alone = file.with_stem("alone")
    content = {"value": "value", "alpha": "value", "normal": "normal"}.get(output, "color")
    fernwick.save(alone, array, content)
    assert file.read_bytes() == alone.read_bytes(), output

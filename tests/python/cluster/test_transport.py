"""What travels to workers, which of them are refused, and what is never done twice."""

import os
import shutil
from pathlib import Path
from typing import Any

import distributed
import numpy as np
import pytest
from conftest import EXAMPLES, run_python

import fernwick
import fernwick.cluster
from fernwick.cluster import _plan
from fernwick.cluster._contents import Contents
from fernwick.cluster._files import Store
from fernwick.cluster._flights import Flights
from fernwick.cluster._output import Output
from fernwick.cluster._resume import Parts

from .conftest import at_share, unchanged, whole
from .faults import differ, stored


def test_without_dask() -> None:
    """The package is whole without it, and the cluster says what it lacks."""
    program = """
import sys
sys.modules["distributed"] = None
import fernwick
assert "dask" not in sys.modules
try:
    import fernwick.cluster
except ImportError as error:
    print(error)
"""
    assert "apt-get install python3-distributed" in run_python(program).stdout


def test_files_in_folders_and_memory(shared: Any, tmp_path: Path) -> None:
    """Absolute names, names above the folder, models with what they name, and arrays."""
    (tmp_path / "graphs").mkdir()
    for file in ("backdrop.png", "cushion.obj", "yarn.png"):
        shutil.copy(EXAMPLES / file, tmp_path)
    above = fernwick.Picture(file="../backdrop.png")
    absolute = fernwick.Picture(file=str(tmp_path / "yarn.png"))
    array = fernwick.Picture(file=np.linspace(0, 1, 300, dtype=np.float32).reshape(10, 10, 3))
    mixed = fernwick.Super_mixer(fDistribution="Automatic", fSubShader=[above, absolute, array] * 4)
    graph = fernwick.Graph(mixed, folder=tmp_path / "graphs")
    onto = tmp_path / "cushion.obj"
    over = fernwick.Graph(fernwick.Checker())
    fernwick.cluster.bake(shared, graph, tmp_path / "a.exr", 300, onto=onto, over=over, tile=(128, 128))
    fernwick.save(tmp_path / "b.exr", graph.bake(300, onto=onto, over=over))
    assert (tmp_path / "a.exr").read_bytes() == (tmp_path / "b.exr").read_bytes()


def test_once_per_worker(shared: Any, tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    sent: list[str] = []
    scatter = Contents.scatter

    def counted(contents: Contents, content_hash: str) -> Any:
        source = contents._sources[content_hash]
        sent.append(source if isinstance(source, str) else "job")
        return scatter(contents, content_hash)

    monkeypatch.setattr(Contents, "scatter", counted)
    shutil.copy(EXAMPLES / "backdrop.png", tmp_path / "new.png")
    with (tmp_path / "new.png").open("ab") as file:
        file.write(b"nobody has it yet")
    graph = fernwick.Graph(fernwick.Picture(file="new.png"), folder=tmp_path)
    for side in (300, 310):
        fernwick.cluster.bake(shared, graph, tmp_path / "a.png", side, tile=(128, 128))
    name = str(tmp_path / "new.png")
    assert sorted(sent) == sorted([name] * 2 + ["job"] * 4)
    assert all(name not in kept for kept in shared.run(stored).values())


def test_plates_of_one_frame_go_with_its_tiles(shared: Any, tmp_path: Path) -> None:
    frames = range(1, 4)
    for frame in frames:
        plate = np.full((4, 4, 3), frame / 4, np.float32)
        fernwick.save(tmp_path / f"plate.{frame}.png", plate)
    keys = [[frame, f"plate.{frame}.png"] for frame in frames]
    document = {"shaders": {"p": {"source": "picture", "file": {"keys": keys}}}, "output": "p"}
    graph = fernwick.Graph(document, folder=tmp_path)
    fernwick.cluster.bake(shared, graph, tmp_path / "a.#.png", 200, frames=frames, tile=(128, 128))
    for frame in frames:
        expected = whole(graph.at(frame), tmp_path / "b.png", 200)
        assert (tmp_path / f"a.{frame}.png").read_bytes() == expected


def test_error_names_the_tile_and_the_clients_file(shared: Any, tmp_path: Path) -> None:
    shutil.copy(EXAMPLES / "backdrop.png", tmp_path / "plate.png")
    graph = fernwick.Graph(fernwick.Picture(file="plate.png"), folder=tmp_path)
    (tmp_path / "plate.png").write_bytes(b"")
    with pytest.raises(fernwick.GraphError, match=f"{tmp_path}/plate.png") as caught:
        fernwick.cluster.bake(shared, graph, tmp_path / "a.png", 200, tile=(128, 128))
    assert "dask" not in str(caught.value) and not (tmp_path / "a.png").exists()


def test_refused(fresh: Any, tmp_path: Path, caplog: Any) -> None:
    """The one that differs gets no work; without another one there is none."""
    graph = fernwick.Graph.load(EXAMPLES / "key.json")
    workers = list(fresh.scheduler_info()["workers"])
    fresh.run(differ, workers=workers[:1])
    fernwick.cluster.bake(fresh, graph, tmp_path / "a.png", 300, tile=(128, 128))
    assert f"{workers[0]} is refused: processor: fma here, less there" in caplog.text
    fresh.run(differ, workers=workers[1:])
    with unchanged(tmp_path), pytest.raises(fernwick.LibraryError, match=f"{workers[1]} is refused: processor"):
        fernwick.cluster.bake(fresh, graph, tmp_path / "b.png", 300, tile=(128, 128))


def test_scheduler_of_another_version(shared: Any, tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr("fernwick.cluster._dask.version", "1.2.3")
    graph = fernwick.Graph.load(EXAMPLES / "key.json")
    with unchanged(tmp_path), pytest.raises(fernwick.Error, match="the scheduler has Dask distributed .*machine 1.2.3"):
        fernwick.cluster.bake(shared, graph, tmp_path / "a.png", 300)


def test_library_is_sent(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    """To workers that have none, or another one."""
    graph = fernwick.Graph.load(EXAMPLES / "key.json")
    other = tmp_path / "Fernwick_shaders.so"
    shutil.copy(fernwick.library(), other)
    with other.open("ab") as file:
        file.write(b"another build")
    monkeypatch.setenv("FERNWICK_LIBRARY", str(other))
    cluster = distributed.LocalCluster(
        1, threads_per_worker=2, dashboard_address=":0", local_directory=tmp_path / "dask"
    )
    with cluster, distributed.Client(cluster) as client:
        fernwick.cluster.bake(client, graph, tmp_path / "a.png", 300, tile=(128, 128))
        (loaded,) = client.run(lambda: str(fernwick.library())).values()
    assert loaded.startswith(str(tmp_path / "dask"))
    assert (tmp_path / "a.png").read_bytes() == whole(graph, tmp_path / "b.png", 300)


class Stop(Exception):
    """Ends a run in the middle."""


def stop() -> None:
    raise Stop


def test_resume(shared: Any, tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    """What was finished isn't shaded again, unless something has changed that it depends on, or it's damaged."""
    shaded: list[Any] = []
    start = Flights._start
    monkeypatch.setattr(
        Flights, "_start", lambda flights, units: (shaded.extend(units), start(flights, units)) and None
    )
    graph = fernwick.Graph.load(EXAMPLES / "ripple-sequence.json")
    parts = tmp_path / "parts"

    def bake(*, samples: int = 1, progress: Any = None) -> int:
        shaded.clear()
        fernwick.cluster.bake(
            shared, graph, tmp_path / "a.##.png", 300, frames=(1, 2), samples=samples, tile=(128, 128), resume=parts,
            progress=progress,
        )  # fmt: skip
        return len(shaded)

    with pytest.raises(Stop):
        bake(progress=at_share(0.3, stop))
    kept = list(parts.glob("*.npz"))
    assert 4 <= len(kept) < 18 and not list(tmp_path.glob("a.*"))
    kept[0].write_bytes(kept[0].read_bytes()[:-1000])
    assert bake() == 18 - len(kept) + 1
    for frame in (1, 2):
        assert (tmp_path / f"a.0{frame}.png").read_bytes() == whole(graph.at(frame), tmp_path / "b.png", 300)
    assert not list(parts.glob("*.npz")), "finished pictures need no parts"
    assert bake() == 0
    os.utime(tmp_path / "a.01.png", (1, 1))
    assert bake() == 9
    assert bake(samples=2) == 18


def test_memory(shared: Any, tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    """No more pixels are held than there is room for, whatever the order in which they come."""
    held: list[int] = []
    write = Output.write
    monkeypatch.setattr(Output, "write", lambda output: (write(output), held.append(output.held)) and None)
    graph = fernwick.Graph.load(EXAMPLES / "key.json")
    room = 1100 * 128 * 16
    fernwick.cluster.bake(shared, graph, tmp_path / "a.png", 1100, 1000, tile=(256, 128), memory=room)
    assert 0 < max(held) <= room
    with pytest.raises(ValueError, match="memory: a row of tiles takes 3 MiB, more than 1 MiB"):
        fernwick.cluster.bake(shared, graph, tmp_path / "a.png", 1100, 1000, tile=(256, 128), memory=2**20)


def test_plan_covers_each_pixel_once() -> None:
    part = (50, 128, 500, 300)
    seen = np.zeros((172, 3 * 450), int)
    for band in _plan.bands(part, (128, 128), [1, 2, 3], 0, 0):
        for unit in band:
            left, top, right, bottom = unit.region
            assert (left in (50, 128, 256, 384)) and (
                top in (128, 256)
            ), "tiles lie where those of the whole picture do"
            seen[top - 128 : bottom - 128, unit.column : unit.column + right - left] += 1
    assert (seen == 1).all()


@pytest.mark.parametrize(
    ("text", "frames"),
    [("12", [12]), ("1-5x2", [1, 3, 5]), ("9-10,1,9", [1, 9, 10]), ("", None), ("5-1", None), ("1x2", None)],
)
def test_frames(text: str, frames: list[float] | None) -> None:
    if frames is None:
        with pytest.raises(ValueError, match="names no frames"):
            _plan.frames(text)
    else:
        assert _plan.frames(text) == frames


def test_names() -> None:
    several = _plan.named("a.####.{output}.png", frame=7, output="color", udim=1002, is_one_of_several=True)
    assert several == "a.0007.color.1002.png"
    assert _plan.named("{frame}/{udim}.png", frame=7, udim=1001) == "7/1001.png"
    assert _plan.named("a.png", udim=1001) == "a.png"


def test_store_and_parts_survive_damage(tmp_path: Path) -> None:
    store = Store(tmp_path)
    store.add({"0" * 64: b"content"})
    root = store.mirror("root", {"/a/b/c.png": "0" * 64})
    assert Path(f"{root}/a/b/c.png").read_bytes() == b"content"
    parts = Parts(tmp_path / "parts")
    parts.save("key", {"color": np.ones((4, 4, 4), np.float32)})
    file = tmp_path / "parts/key.npz"
    content = bytearray(file.read_bytes())
    content[len(content) // 2] ^= 1
    file.write_bytes(content)
    assert parts.has("key") and parts.load("key") is None and not parts.has("key")

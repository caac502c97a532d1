"""What goes wrong on a cluster, and that the picture stays the same."""

import contextlib
import json
import os
import resource
import signal
import subprocess
import sys
import time
from collections.abc import Iterator
from pathlib import Path
from typing import Any

import dask
import distributed
import pytest
from conftest import EXAMPLES

import fernwick
import fernwick.cluster

from .conftest import at_share, pids, unchanged, whole
from .faults import count_tasks, eat_memory, hang, slow_down

SIDE = 500
TILE = (128, 128)  # of sixteen tiles


@pytest.fixture(scope="module")
def graph() -> fernwick.Graph:
    return fernwick.Graph.load(EXAMPLES / "key.json")


@pytest.fixture(scope="module")
def expected(graph: fernwick.Graph, tmp_path_factory: pytest.TempPathFactory) -> bytes:
    return whole(graph, tmp_path_factory.mktemp("whole") / "whole.png", SIDE)


@pytest.fixture
def short_patience() -> Iterator[None]:
    """Of the scheduler with workers that tell nothing any more."""
    with dask.config.set({"distributed.scheduler.worker-ttl": "3s"}):
        yield


@pytest.mark.parametrize("signal_number", [signal.SIGKILL, signal.SIGSTOP])
def test_worker_killed_or_stopped(
    short_patience: None,
    fresh: Any,
    graph: fernwick.Graph,
    expected: bytes,
    tmp_path: Path,
    signal_number: signal.Signals,
) -> None:
    fresh.run(slow_down, 0.1)
    victim = pids(fresh)[0]
    progress = at_share(0.3, lambda: os.kill(victim, signal_number))
    fernwick.cluster.bake(fresh, graph, tmp_path / "a.png", SIDE, tile=TILE, timeout=2, progress=progress)
    assert (tmp_path / "a.png").read_bytes() == expected


def test_worker_hangs(fresh: Any, graph: fernwick.Graph, expected: bytes, tmp_path: Path, caplog: Any) -> None:
    fresh.run(hang, workers=list(fresh.scheduler_info()["workers"])[:1])
    fernwick.cluster.bake(fresh, graph, tmp_path / "a.png", SIDE, tile=TILE, timeout=1.5)
    assert (tmp_path / "a.png").read_bytes() == expected
    assert "took longer than 1.5 s on tcp://" in caplog.text


def test_tile_that_takes_too_long(fresh: Any, graph: fernwick.Graph, tmp_path: Path) -> None:
    expected = "frame 1, tile 0,0,500,500: took longer than 0.2 s on tcp.*, tcp.*, tcp.*, tcp"
    with unchanged(tmp_path), pytest.raises(fernwick.Error, match=expected):
        fernwick.cluster.bake(fresh, graph, tmp_path / "a.png", SIDE, samples=200, tile=(512, 512), timeout=0.2)


def test_worker_out_of_memory(graph: fernwick.Graph, expected: bytes, tmp_path: Path) -> None:
    with (
        distributed.LocalCluster(
            2, threads_per_worker=1, memory_limit="600MB", dashboard_address=":0", local_directory=tmp_path / "dask"
        ) as cluster,
        distributed.Client(cluster) as client,
    ):
        client.run(eat_memory, workers=list(client.scheduler_info()["workers"])[:1])
        fernwick.cluster.bake(client, graph, tmp_path / "a.png", SIDE, tile=TILE)
    assert (tmp_path / "a.png").read_bytes() == expected


def test_no_worker(graph: fernwick.Graph, tmp_path: Path, caplog: Any, monkeypatch: pytest.MonkeyPatch) -> None:
    """It is waited for, which is told, and not for ever."""
    monkeypatch.setattr("fernwick.cluster._members._SILENCE", 0.2)
    monkeypatch.setattr("fernwick.cluster._members._PATIENCE", 1.5)
    with (
        distributed.LocalCluster(n_workers=0, threads_per_worker=1, processes=False, dashboard_address=":0") as cluster,
        distributed.Client(cluster) as client,
        unchanged(tmp_path),
        pytest.raises(fernwick.Error, match="no worker has come within 1.5 s"),
    ):
        fernwick.cluster.bake(client, graph, tmp_path / "a.png", SIDE)
    assert caplog.text.count("no worker is there; one is waited for, up to 1.5 s") == 1


class Processes:
    """A scheduler and two workers as their own commands start them."""

    def __init__(self, folder: Path) -> None:
        self._folder = folder
        self._scheduler: Any = None
        self._workers: list[Any] = []
        self.address = ""
        self._port = "0"
        self.start()

    def start(self) -> None:
        file = self._folder / "scheduler.json"
        file.unlink(missing_ok=True)
        arguments = ["--port", self._port, "--no-dashboard", "--scheduler-file", file]
        self._scheduler = self._process("dask_scheduler", *arguments)
        while not file.is_file() or not file.read_text():
            time.sleep(0.05)
        self.address = json.loads(file.read_text())["address"]
        self._port = self.address.rpartition(":")[2]
        arguments = [self.address, "--nthreads", "1", "--no-dashboard", "--local-directory", self._folder]
        self._workers += [self._process("dask_worker", *arguments) for _ in range(2)]

    def kill_scheduler(self) -> None:
        self._scheduler.kill()
        self._scheduler.wait()

    def end(self) -> None:
        for process in [*self._workers, self._scheduler]:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()

    @staticmethod
    def _process(program: str, *arguments: object) -> Any:
        command = [sys.executable, "-m", f"distributed.cli.{program}", *map(str, arguments)]
        return subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)


@pytest.fixture
def processes(tmp_path_factory: pytest.TempPathFactory) -> Iterator[Processes]:
    made = Processes(tmp_path_factory.mktemp("dask"))
    yield made
    made.end()


def test_scheduler_restarted(processes: Processes, graph: fernwick.Graph, expected: bytes, tmp_path: Path) -> None:
    def restart() -> None:
        processes.kill_scheduler()
        processes.start()

    with distributed.Client(processes.address) as client:
        client.wait_for_workers(2)
        client.run(slow_down, 0.1)
        fernwick.cluster.bake(client, graph, tmp_path / "a.png", SIDE, tile=TILE, progress=at_share(0.3, restart))
    assert (tmp_path / "a.png").read_bytes() == expected


def test_interrupted(fresh: Any, graph: fernwick.Graph, tmp_path: Path) -> None:
    """All tasks end, even those that are shaded, and nothing is left of the file."""
    fresh.run(slow_down, 1.5)
    with unchanged(tmp_path):
        with pytest.raises(KeyboardInterrupt):
            progress = at_share(0.1, lambda: os.kill(os.getpid(), signal.SIGINT))
            fernwick.cluster.bake(fresh, graph, tmp_path / "a.png", SIDE, tile=TILE, progress=progress)
        deadline = time.monotonic() + 1
        while any(fresh.run(count_tasks).values()) and time.monotonic() < deadline:
            time.sleep(0.05)
    assert not any(fresh.run(count_tasks).values())


def test_interrupted_command(tmp_path: Path) -> None:
    """Ctrl-C goes to all processes of a terminal; the command ends them, and tells it by 130."""
    command = ["bake", EXAMPLES / "key.json", "-o", tmp_path / "a.png", "--size", "8192x8192", "--workers", "2"]
    process = subprocess.Popen(
        [sys.executable, "-m", "fernwick.cluster", *map(str, command), "--verbose"],
        stderr=subprocess.PIPE, text=True, start_new_session=True,
    )  # fmt: skip
    assert process.stderr is not None
    while "tile" not in process.stderr.readline():
        assert process.poll() is None
    os.killpg(process.pid, signal.SIGINT)
    told = process.communicate(timeout=20)[1]
    assert process.returncode == 130, told
    assert "Traceback" not in told and told.endswith("fernwick: stopped\n")
    assert not list(tmp_path.iterdir())
    with pytest.raises(ProcessLookupError):
        for _ in range(100):
            os.killpg(process.pid, 0)
            time.sleep(0.05)


def test_full_disk(shared: Any, graph: fernwick.Graph, tmp_path: Path) -> None:
    limits = resource.getrlimit(resource.RLIMIT_FSIZE)
    resource.setrlimit(resource.RLIMIT_FSIZE, (100_000, limits[1]))
    try:
        with unchanged(tmp_path), pytest.raises(fernwick.FileError, match="a.exr"):
            fernwick.cluster.bake(shared, graph, tmp_path / "a.exr", SIDE, tile=TILE)
        with pytest.raises(fernwick.FileError, match="parts: finished tiles can't be kept there: File too large"):
            fernwick.cluster.bake(shared, graph, tmp_path / "a.png", SIDE, tile=TILE, resume=tmp_path / "parts")
        assert not list(tmp_path.rglob("*.*"))
    finally:
        resource.setrlimit(resource.RLIMIT_FSIZE, limits)

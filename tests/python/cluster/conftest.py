"""Clusters of real processes on loopback. Faults are put into workers by functions that they run."""

import contextlib
import logging
import os
from collections.abc import Callable, Iterator
from pathlib import Path
from typing import Any

import pytest

from fernwick.cluster._dask import connect

import fernwick

os.environ["PYTHONPATH"] += os.pathsep + str(Path(__file__).parents[1])  # of workers


@pytest.fixture(scope="session")
def shared() -> Iterator[Any]:
    """A client of two workers, for tests that do them no harm."""
    with connect(None, 2) as client:
        yield client


@pytest.fixture
def fresh() -> Iterator[Any]:
    """A client of two workers that may come to harm."""
    logging.getLogger("distributed").setLevel(logging.CRITICAL)
    with connect(None, 2) as client:
        yield client


def pids(client: Any) -> list[int]:
    return list(client.run(os.getpid).values())


def at_share(share: float, act: Callable[[], object]) -> Callable[[float], None]:
    """A progress that acts once when so much is done."""
    left = [act]

    def look(done: float) -> None:
        if done >= share and left:
            left.pop()()

    return look


@contextlib.contextmanager
def unchanged(folder: Path) -> Iterator[None]:
    """Nothing is left behind in a folder."""
    before = sorted(folder.rglob("*"))
    yield
    assert sorted(folder.rglob("*")) == before


def whole(graph: fernwick.Graph, path: Path, side: int) -> bytes:
    """A picture as this process alone makes it."""
    fernwick.save(path, graph.bake(side))
    return path.read_bytes()

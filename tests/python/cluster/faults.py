"""What workers run so that something goes wrong on them."""

import time
from typing import Any

import numpy as np

from fernwick.cluster import _worker


def slow_down(seconds: float) -> None:
    """Each unit takes so long, and can be cancelled meanwhile."""
    shaded = _worker._shaded

    def slowly(*arguments: Any) -> Any:
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            arguments[-1](0)
            time.sleep(0.02)
        return shaded(*arguments)

    _worker._shaded = slowly  # type: ignore[assignment]


def hang() -> None:
    """It begins units and never ends them."""

    def forever(*_: Any) -> Any:
        time.sleep(1000)

    _worker._shaded = forever  # type: ignore[assignment]


def eat_memory() -> None:
    """Its units take all memory that there is."""

    def greedily(*_: Any) -> Any:
        eaten = []
        while True:
            eaten.append(np.ones(2**22))
            time.sleep(0.01)

    _worker._shaded = greedily  # type: ignore[assignment]


def count_tasks(dask_worker: Any) -> int:
    return len([task for task in dask_worker.state.tasks if "look" not in task and "take" not in task])


def differ() -> None:
    """The processor lacks something."""
    from fernwick.cluster import _facts

    real = _facts._processor()
    _facts._processor = lambda: real.replace(" fma", "")  # type: ignore[assignment]


def stored(dask_worker: Any) -> list[str]:
    """Names in the worker's folder."""
    from pathlib import Path

    return [path.name for path in Path(dask_worker.local_directory).rglob("*")]

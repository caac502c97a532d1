"""All that is used of Dask, which tells no types."""

from __future__ import annotations

import contextlib
import signal
import tempfile
from collections.abc import Callable, Iterable, Iterator
from pathlib import Path
from typing import Any

try:
    import distributed  # type: ignore[import]
    from distributed.utils import sync  # type: ignore[import]
except ImportError as _error:
    raise ImportError(
        "fernwick.cluster needs Dask distributed: apt-get install python3-distributed, or pip install distributed"
    ) from _error

Client = Any  # distributed.Client
Future = Any  # distributed.Future
CancelledError: type[BaseException] = distributed.CancelledError
KilledWorker: type[Exception] = distributed.KilledWorker


class Interrupted(Exception):
    """Nobody waits for a unit any more."""


@contextlib.contextmanager
def connect(address: str | None, workers: int, *, direct: bool = False) -> Iterator[Client]:
    """A client of the scheduler at an address, or of a cluster of processes on this machine, which ends with it.

    :param workers: of this machine, with one thread each
    :param direct: takes results from workers past the scheduler, where this machine reaches them
    """
    if address is not None:
        with distributed.Client(address, direct_to_workers=direct) as client:
            yield client
        return
    with (
        tempfile.TemporaryDirectory(prefix="fernwick-") as folder,
        distributed.LocalCluster(
            n_workers=workers,
            threads_per_worker=1,
            processes=True,
            local_directory=folder,
            preload="fernwick.cluster._dask",  # for dask_setup
            dashboard_address=":0",
            silence_logs=40,  # errors only; workers that are lost are told of by the run
        ) as cluster,
        distributed.Client(cluster, direct_to_workers=True) as client,
    ):
        yield client


def dask_setup(_worker: Any) -> None:
    """Is run by each process of a cluster on this machine: Ctrl-C is for the client, which ends them."""
    signal.signal(signal.SIGINT, signal.SIG_IGN)


def worker_folder() -> Path:
    """Where the worker that runs this keeps files; it goes with the worker."""
    return Path(distributed.get_worker().local_directory)


def offer(resource: str) -> None:
    """Gives the worker that runs this task one of a resource for each of its threads."""
    worker = distributed.get_worker()
    sync(worker.loop, worker.set_resources, **{resource: worker.state.nthreads})


def announce(topic: str) -> str:
    """Tells subscribers the worker and the key of the task that runs this. Answers the worker's address."""
    worker = distributed.get_worker()
    worker.log_event(topic, (worker.address, worker.get_current_task()))
    return str(worker.address)


def while_wanted() -> Callable[[float], None]:
    """To be called now and then in a task: raises Interrupted when it has been cancelled, which Dask itself can't do."""
    worker = distributed.get_worker()
    key = worker.get_current_task()

    def look(_share: float) -> None:
        task = worker.state.tasks.get(key)
        if task is None or task.state == "cancelled":
            raise Interrupted(key)

    return look


def dashboard(client: Client) -> str:
    return str(client.dashboard_link)


def workers_of(client: Client) -> dict[str, Any]:
    """What the scheduler knows of each worker, by address. Raises OSError while the scheduler is away."""
    return dict(client.scheduler_info()["workers"])


def restart(client: Client, address: str) -> None:
    """Ends a worker that hangs: its nanny starts another process; one without a nanny goes for good."""
    if workers_of(client).get(address, {}).get("nanny"):
        client.restart_workers([address], timeout=20)
    else:
        client.retire_workers([address], close_workers=True)


def subscribe(client: Client, topic: str, handler: Callable[[str, str], None]) -> None:
    """Calls with what tasks `announce`, in another thread."""
    client.subscribe_topic(topic, lambda event: handler(*event[1]))


def unsubscribe(client: Client, topic: str) -> None:
    with contextlib.suppress(Exception):
        client.unsubscribe_topic(topic)


def cancel(client: Client, futures: Iterable[Future]) -> None:
    with contextlib.suppress(Exception):  # a scheduler that is gone has no tasks either
        client.cancel(list(futures))

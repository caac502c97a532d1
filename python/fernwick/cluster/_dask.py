"""All that is used of Dask, which tells no types."""

from __future__ import annotations

import contextlib
import importlib
import signal
import tempfile
from collections.abc import Callable, Iterable, Iterator
from pathlib import Path
from typing import Any

try:
    dask: Any = importlib.import_module("dask")
    distributed: Any = importlib.import_module("distributed")
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


class _Uninterrupted(distributed.WorkerPlugin):  # type: ignore[misc]
    """Of a cluster on this machine, where Ctrl-C reaches all processes: the client ends the others."""

    name = "fernwick-uninterrupted"

    def setup(self, worker: Any) -> None:
        signal.signal(signal.SIGINT, signal.SIG_IGN)


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
    # On one machine pixels are copied faster than compressed, and nobody looks at profiles of Dask's own.
    cheap = {"distributed.comm.compression": None, "distributed.worker.profile.enabled": False}
    with (
        dask.config.set(cheap),
        tempfile.TemporaryDirectory(prefix="fernwick-") as folder,
        distributed.LocalCluster(
            n_workers=workers,
            threads_per_worker=1,
            processes=True,
            local_directory=folder,
            dashboard_address=":0",
            silence_logs=40,  # errors only; workers that are lost are told of by the run
        ) as cluster,
        distributed.Client(cluster, direct_to_workers=True) as client,
    ):
        client.register_worker_plugin(_Uninterrupted())
        yield client


def cheap_submission() -> contextlib.AbstractContextManager[object]:
    """While it lasts, Dask doesn't look for the source of each caller, which takes it longer than all else."""
    ignored = {"distributed.diagnostics.computations.ignore-modules": [".*"]}
    return dask.config.set(ignored)  # type: ignore[no-any-return]


def worker_folder() -> Path:
    """Where the worker that runs this keeps files; it goes with the worker."""
    return Path(distributed.get_worker().local_directory)


def offer(resource: str) -> None:
    """Gives the worker that runs this task one of a resource for each of its threads."""
    worker = distributed.get_worker()
    distributed.utils.sync(worker.loop, worker.set_resources, **{resource: worker.state.nthreads})


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


def place_of(client: Client, future: Future) -> str:
    """The worker that has a task to do; empty for none."""
    return next((str(address) for address, keys in client.processing().items() if future.key in keys), "")


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

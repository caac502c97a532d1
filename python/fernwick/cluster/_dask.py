"""All that is used of Dask, which tells no types."""

from __future__ import annotations

import contextlib
import dataclasses
import importlib
import signal
import tempfile
from collections.abc import Callable, Iterable, Iterator
from pathlib import Path
from typing import Any

from .._errors import Error

try:
    dask: Any = importlib.import_module("dask")
    distributed: Any = importlib.import_module("distributed")
except ImportError as _error:
    raise ImportError(
        f"fernwick.cluster needs Dask distributed ({_error}): "
        "apt-get install python3-distributed, or pip install distributed"
    ) from _error

Client = Any  # distributed.Client
Future = Any  # distributed.Future
CancelledError: type[BaseException] = distributed.CancelledError
KilledWorker: type[Exception] = distributed.KilledWorker


version: str = distributed.__version__.partition("+")[0]  # behind the sign distributors put theirs


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

    Raises Error where no scheduler answers.
    """
    # The run looks at workers itself.
    seldom = {"distributed.client.scheduler-info-interval": "60s"}
    if address is not None:
        try:
            with dask.config.set(seldom):
                client = distributed.Client(address, direct_to_workers=direct)
        except (OSError, ValueError) as error:
            raise Error(f"no scheduler is found at {address}, which is like tcp://host:8786: {error}") from None
        with client:
            yield client
        return
    # On one machine pixels are copied faster than compressed, and nobody looks at profiles of Dask's own.
    cheap = seldom | {
        "distributed.comm.compression": None,
        "distributed.worker.profile.enabled": False,
        "distributed.admin.tick.interval": "1s",
        "distributed.admin.system-monitor.interval": "2s",
        "distributed.scheduler.work-stealing-interval": "1s",
        "distributed.nanny.pre-spawn-environ": {
            **dask.config.get("distributed.nanny.pre-spawn-environ"),
            "DASK_DISTRIBUTED__COMM__OFFLOAD": "False",  # else each message is measured
        },
    }
    with (
        dask.config.set(cheap),
        tempfile.TemporaryDirectory(prefix="fernwick-") as folder,
        distributed.LocalCluster(
            n_workers=workers,
            threads_per_worker=1,
            processes=True,
            local_directory=folder,
            dashboard_address=":0",
            silence_logs=50,  # what goes wrong is told of by the run
        ) as cluster,
        distributed.Client(cluster, direct_to_workers=True) as client,
    ):
        register = getattr(client, "register_plugin", None) or client.register_worker_plugin  # before 2023.9
        register(_Uninterrupted())
        yield client


@dataclasses.dataclass(frozen=True)
class Later:
    """Stands for a client that is connected when the work begins, and all that may be wrong before is told."""

    connect: Callable[[], contextlib.AbstractContextManager[Client]]


@contextlib.contextmanager
def connected(client: Client) -> Iterator[Client]:
    """Raises Error where the scheduler has another Dask, with which much goes wrong in ways of its own."""
    with client.connect() if isinstance(client, Later) else contextlib.nullcontext(client) as running:
        theirs = version
        with contextlib.suppress(OSError):  # a scheduler that is away, which the run waits for
            if running.status == "running":
                packages = running.sync(running.scheduler.versions)["packages"]
                theirs = packages["distributed"].partition("+")[0]
        if theirs != version:
            raise Error(f"the scheduler has Dask distributed {theirs}, and this machine {version}; both need the same")
        yield running


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


def own_address() -> str:
    """Of the worker that runs this."""
    return str(distributed.get_worker().address)


def while_wanted() -> Callable[[float], None]:
    """To be called now and then in a task: raises Interrupted when that has been cancelled, which Dask can't do."""
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
    if client.scheduler is None:
        raise OSError("the client is closed")
    return dict(client.sync(client.scheduler.identity)["workers"])  # what `scheduler_info` answers may be old


def places(client: Client, futures: Iterable[Future]) -> dict[str, str]:
    """The workers that have tasks to do, or have done them, by key."""
    chosen = list(futures)
    keys = {future.key for future in chosen}
    found = {key: str(address) for address, theirs in client.processing().items() for key in keys.intersection(theirs)}
    done = client.who_has(chosen)
    return found | {key: str(addresses[0]) for key, addresses in done.items() if addresses}


def longer_than(client: Client, seconds: float) -> dict[str, str]:
    """The workers of tasks that run for longer, by key, as far as workers have told at their last heartbeat."""

    def look(dask_scheduler: Any) -> dict[str, str]:  # is sent as it is, for the scheduler has no package
        import time

        now = time.time()
        return {
            task.key: worker.address
            for worker in dask_scheduler.workers.values()
            for task, passed in worker.executing.items()
            if task in worker.processing and passed + now - worker.last_seen > seconds
        }

    return dict(client.run_on_scheduler(look))


def restart(client: Client, address: str) -> None:
    """Ends a worker that hangs: its nanny starts another process; one without a nanny goes for good."""
    if workers_of(client).get(address, {}).get("nanny"):
        client.restart_workers([address], timeout=60)
    else:
        client.retire_workers([address], close_workers=True)


def cancel(client: Client, futures: Iterable[Future]) -> None:
    with contextlib.suppress(Exception):  # a scheduler that is gone has no tasks either
        client.cancel(list(futures))

"""Units on their way to workers and back."""

from __future__ import annotations

import dataclasses
import itertools
import logging
import time
from collections import Counter, deque
from collections.abc import Iterable

from .._errors import Error
from . import _worker
from ._contents import Contents
from ._dask import CancelledError, Client, Future, KilledWorker, cancel, longer_than, places
from ._events import Events
from ._members import Members
from ._plan import Job, Unit

_logger = logging.getLogger("fernwick.cluster")
_TRIES = 4  # of a unit that is lost, and the workers that may hang at it
_RETRIES = 2  # of a unit that raises what is no fault of its graph
_QUEUED = 3  # units for each thread of a worker, of which one is shaded; they are sent several at a time
_WAITING = 2  # units for each thread that wait on workers for room on the client
_AHEAD = 0.5  # seconds of work for each thread: the more units there are, the fewer messages each takes
_ROOM = 40 * 2**20  # bytes for each thread that units take at most, unless so few of them would be more


@dataclasses.dataclass
class _Flight:
    """A unit that was submitted."""

    future: Future
    sent: float
    is_done: bool = False  # and waits to be fetched, or is


class Flights:
    """What is pending, what was submitted, and what is finished and waits on workers."""

    def __init__(self, client: Client, job: Job, contents: Contents, members: Members, events: Events, timeout: float):
        """:param timeout: in seconds, of a unit"""
        self._client = client
        self._job = job
        self._contents = contents
        self._members = members
        self._events = events
        self._timeout = timeout
        self._pending: deque[Unit] = deque()
        self._left: Counter[float] = Counter()  # units of each frame
        self._flights: dict[Unit, _Flight] = {}
        self._losses: Counter[Unit] = Counter()
        self._hung: dict[Unit, list[str]] = {}
        self._queued = _QUEUED
        self._seconds = _AHEAD  # a unit, of late
        self.finished: dict[Unit, Future] = {}
        """Those that wait on workers."""

    def add(self, units: Iterable[Unit]) -> None:
        """Before all that is pending."""
        added = list(units)
        self._pending.extendleft(reversed(added))
        self._left.update(unit.frame for unit in added)

    def submit(self) -> None:
        """As many as workers take, several at a time."""
        threads = self._members.threads
        most = self._queued * threads
        waiting = max(_WAITING, self._queued * _WAITING // _QUEUED)
        flying = len(self._flights) - min(len(self.finished), waiting * threads)
        if self._pending and flying <= most - max(threads, most // 3):
            self._start([self._pending.popleft() for _ in range(min(most - flying, len(self._pending)))])

    def is_current(self, unit: Unit, future: Future) -> bool:
        """Whether a unit wasn't submitted again."""
        flight = self._flights.get(unit)
        return flight is not None and flight.future is future

    def is_idle(self) -> bool:
        """Whether all that flies is finished."""
        return len(self.finished) == len(self._flights)

    def land(self, unit: Unit, seconds: float) -> None:
        """A unit has come, which took a worker so many seconds."""
        self._land(unit)
        most = _ROOM // self._job.bytes_of(unit)
        self._seconds += (seconds - self._seconds) / 8
        self._queued = max(_QUEUED, min(most, int(_AHEAD / max(self._seconds, 1e-3))))
        self._left[unit.frame] -= 1
        if not self._left[unit.frame]:
            self._contents.forget(self._contents.own(unit.frame))

    def again(self, unit: Unit) -> None:
        cancel(self._client, [self._land(unit)])
        self._pending.appendleft(unit)

    def all_again(self) -> None:
        """What nobody has done yet is submitted again."""
        for unit in reversed([unit for unit, flight in self._flights.items() if not flight.is_done]):
            self.again(unit)

    def not_fetched(self, unit: Unit, future: Future, error: BaseException) -> None:
        """A finished unit couldn't be taken off its worker."""
        if not self.is_current(unit, future):
            return
        if isinstance(error, CancelledError):
            self._lost(unit)
        else:
            self._fail(unit, error)

    def wait_longer(self) -> None:
        """Workers are gone, so that units begin again elsewhere."""
        now = time.monotonic()
        for flight in self._flights.values():
            flight.sent = now

    def find_hung(self) -> set[str]:
        """The workers that take too long for a unit. Raises Error where several did for the same one."""
        now = time.monotonic()
        old = [each for each in self._flights.items() if not each[1].is_done and now - each[1].sent > self._timeout]
        if not old:
            return set()
        slow = longer_than(self._client, self._timeout)
        # What waits for so long waits for one that hangs, and is perhaps nobody's any more.
        lasting = [flight.future for _, flight in old if now - flight.sent > (_QUEUED + 1) * self._timeout]
        slow = (places(self._client, lasting) if lasting else {}) | slow
        hung = set()
        for unit, flight in old:
            if flight.future.key in slow:
                flight.sent = now  # until the worker is gone
                hung.add(slow[flight.future.key])
                self._note_hung(unit, slow[flight.future.key])
        return hung

    def _note_hung(self, unit: Unit, worker: str) -> None:
        workers = self._hung.setdefault(unit, [])
        workers.append(worker)
        took = f"{unit.name}: took longer than {self._timeout:g} s on {', '.join(workers)}"
        if len(workers) == _TRIES:
            raise Error(f"{took}; smaller tiles or a longer --timeout may help")
        _logger.warning("%s, which is restarted", took)

    def futures(self) -> list[Future]:
        return [flight.future for flight in self._flights.values()]

    def __len__(self) -> int:
        return len(self._flights)

    def _start(self, units: list[Unit]) -> None:
        """Submits units, those first that were lost."""
        contents = self._contents
        for is_lost, chosen in itertools.groupby(units, lambda unit: self._losses[unit] > 0):
            batch = list(chosen)
            futures = self._client.map(
                _worker.shade,
                [contents.job_hash] * len(batch),
                batch,
                [{each: contents.scatter(each) for each in contents.own(unit.frame)} for unit in batch],
                key=[
                    contents.key(f"{self._job.kind}-{unit.frame}-{','.join(map(str, unit.region))}") for unit in batch
                ],
                resources={contents.resource: 1},
                retries=_RETRIES,
                priority=1 if is_lost else 0,
                pure=False,
            )
            for unit, future in zip(batch, futures):
                self._flights[unit] = _Flight(future, time.monotonic())
                self._events.notify(future, self._on_end, unit)

    def _on_end(self, future: Future, unit: Unit) -> None:
        if not self.is_current(unit, future):
            return
        if future.status == "finished":
            self._flights[unit].is_done = True
            self.finished[unit] = future
        elif future.status == "error":
            self._fail(unit, future.exception())
        else:
            self._lost(unit)

    def _lost(self, unit: Unit) -> None:
        """The scheduler has forgotten a unit: it is another one, or was told to forget; so it may have others."""
        self._losses[unit] += 1
        if self._losses[unit] > _TRIES:
            raise Error(f"{unit.name}: was lost {_TRIES} times")
        if self._members.forget():
            _logger.warning("the scheduler has forgotten units; they are submitted again")
            self._contents.forget()
        self.again(unit)

    def _land(self, unit: Unit) -> Future:
        self.finished.pop(unit, None)
        return self._flights.pop(unit).future

    def _fail(self, unit: Unit, error: BaseException) -> None:
        if isinstance(error, Error):
            raise type(error)(f"{unit.name}: {error}") from None
        if isinstance(error, KilledWorker):
            raise Error(
                f"{unit.name}: {_TRIES} workers died at it; do they have memory enough for a smaller tile?"
            ) from None
        raise Error(f"{unit.name}: {type(error).__name__}: {error}") from error

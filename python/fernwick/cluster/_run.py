"""Sends units to workers, and what comes back to the files."""

from __future__ import annotations

import contextlib
import dataclasses
import functools
import itertools
import logging
import os
import pickle
import queue
import signal
import threading
import time
from collections import Counter, deque
from collections.abc import Callable, Iterable, Iterator
from concurrent.futures import ThreadPoolExecutor
from typing import TYPE_CHECKING, Any

from .. import _native
from .._arguments import Progress
from .._errors import Error, GraphError, LibraryError, ShaderWarning, warn
from . import _worker
from ._assemble import Layout, PictureFiles
from ._dask import CancelledError, Client, Future, KilledWorker, cancel, cheap_submission, place_of, restart, subscribe, unsubscribe, workers_of
from ._facts import differences, facts, library_files
from ._files import digest
from ._plan import Job, Picture, Unit, bytes_of, megabytes
from ._resume import Parts

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

_logger = logging.getLogger("fernwick.cluster")
_LOOK = 1.0  # seconds between looks at the workers
_PATIENCE = 300.0  # seconds without a worker
_TRIES = 4  # of a unit that is lost, and the workers that may hang at it
_RETRIES = 2  # of a unit that raises what is no fault of its graph
_QUEUED = 3  # units for each thread of a worker, of which one is shaded; they are sent several at a time
_WAITING = 2  # units for each thread that wait on workers for room on the client


@dataclasses.dataclass(frozen=True)
class Settings:
    layout: Layout
    memory: int  # bytes of pixels on the client
    timeout: float  # seconds, of a unit
    parts: Parts | None
    progress: Progress | None


@dataclasses.dataclass
class _Flight:
    """A unit that was submitted."""

    future: Future
    sent: float
    started: float | None = None
    worker: str = ""
    is_done: bool = False  # and waits to be fetched, or is


@dataclasses.dataclass
class _Member:
    """A worker."""

    threads: int
    folder: str  # which is another one when a new process has the same address
    future: Future | None  # of what prepares it
    ready: bool = False
    is_late: bool = False  # came ready when units were sent already, and wasn't looked at since
    refused: str = ""


class _Open:
    """A picture that isn't whole yet."""

    def __init__(self, index: int, picture: Picture) -> None:
        self.index = index
        self.picture = picture
        self.files: PictureFiles | None = None
        self.band = 0  # the next to be written
        self.is_writing = False


class Run:
    """One job, from its first unit to its last file."""

    def __init__(self, client: Client, job: Job, pictures: list[Picture], sources: dict[str, str], settings: Settings):
        """:param sources: the files that the job needs: names by hash"""
        self._client = client
        self._job = job
        self._settings = settings
        self._outputs = list(pictures[0].files)
        self._pictures = {i: _Open(i, picture) for i, picture in enumerate(pictures)}
        self._events: queue.SimpleQueue[tuple[Callable[..., None], tuple[Any, ...]]] = queue.SimpleQueue()
        self._writer = ThreadPoolExecutor(1, "fernwick-writer")
        self._fetcher = ThreadPoolExecutor(4, "fernwick-fetcher")  # of which one waits, unless workers hang
        self._medic = ThreadPoolExecutor(4, "fernwick-medic")
        packed = pickle.dumps(job)
        self._hash = digest(packed)
        self._facts = facts()
        self._library = library_files()
        library = _native.library_path()
        self._sources: dict[str, str | bytes] = dict(sources) | {self._hash: packed}
        for name, content_hash in self._library.items():
            self._sources[content_hash] = os.path.join(os.path.dirname(library), name)
        uses = Counter(each for files in job.files.values() for each in set(files.values()))
        self._shared = [self._hash, *(each for each, count in uses.items() if count > 1 or len(job.files) == 1)]
        self._scattered: dict[str, Future] = {}
        self._members: dict[str, _Member] = {}
        self._flights: dict[Unit, _Flight] = {}
        self._by_key: dict[str, Unit] = {}
        self._finished: dict[Unit, Future] = {}  # that wait on workers
        self._touched = set(self._pictures)  # that may have a band to write
        self._losses: Counter[Unit] = Counter()
        self._hung: dict[Unit, list[str]] = {}
        self._arrays: dict[Unit, dict[str, NDArray[np.float32]]] = {}
        self._held = 0  # bytes of pixels that were fetched, or are, and aren't written yet
        self._fetched: list[tuple[Unit, Future]] = []  # what is fetched now
        self._fetch_begun = 0.0
        self._keys: dict[Unit, str] = {}
        self._stored: set[Unit] = set()
        self._pending: deque[Unit] = deque()
        self._left: Counter[float] = Counter()  # units of each frame
        self._pixels = self._done = 0
        self._number = 0  # of the last submission
        self._idle_since = time.monotonic()
        self._looked = 0.0
        self._is_over = False

    def run(self) -> None:
        self._begin()
        with self._interrupts(), cheap_submission():
            self._run()

    @contextlib.contextmanager
    def _interrupts(self) -> Iterator[None]:
        """Makes the first Ctrl-C an event: as an exception it may be lost where nothing can be raised."""
        before = signal.getsignal(signal.SIGINT)

        def post(*_: object) -> None:
            signal.signal(signal.SIGINT, before)
            self._post(_raise, KeyboardInterrupt())

        if before is not signal.default_int_handler or threading.current_thread() is not threading.main_thread():
            yield
            return
        signal.signal(signal.SIGINT, post)
        try:
            yield
        finally:
            signal.signal(signal.SIGINT, before)

    def _run(self) -> None:
        try:
            self._subscribe()
            while self._pictures:
                self._look_around()
                self._submit()
                self._fetch()
                self._write()
                self._next_events()
        except BaseException:
            for opened in self._pictures.values():
                self._writer.submit(self._abandon, opened)
            raise
        finally:
            self._is_over = True
            futures = [flight.future for flight in self._flights.values()]
            futures += [member.future for member in self._members.values() if member.future is not None]
            cancel(self._client, [*futures, *self._scattered.values()])
            unsubscribe(self._client, self._hash)
            self._writer.shutdown(wait=True)
            for executor in (self._fetcher, self._medic):
                executor.shutdown(wait=False, cancel_futures=True)

    def _begin(self) -> None:
        """Finds what an earlier run has left."""
        parts = self._settings.parts
        for index, opened in list(self._pictures.items()):
            units = [unit for band in opened.picture.bands for unit in band]
            self._pixels += sum(unit.pixels for unit in units)
            if parts is not None:
                self._keys.update((unit, parts.key(self._job.identity(unit))) for unit in units)
                if parts.is_finished(self._note(opened.picture), opened.picture.files.values()):
                    del self._pictures[index]
                    self._done += sum(unit.pixels for unit in units)
                    continue
            stored = [unit for unit in units if parts is not None and parts.has(self._keys[unit])]
            self._stored.update(stored)
            self._done += sum(unit.pixels for unit in stored)
            fresh = [unit for unit in units if unit not in self._stored]
            self._pending.extend(fresh)
            self._left.update(unit.frame for unit in fresh)

    def _note(self, picture: Picture) -> str:
        layout = repr(self._settings.layout) + "".join(str(file.absolute()) for file in picture.files.values())
        return Parts.key(layout + "".join(self._keys[unit] for band in picture.bands for unit in band))

    # Workers

    def _subscribe(self) -> None:
        subscribe(self._client, self._hash, functools.partial(self._post, self._on_start))

    def _look_around(self) -> None:
        now = time.monotonic()
        if now - self._looked < _LOOK:
            return
        self._looked = now
        if self._client.status == "closed":
            raise Error("the scheduler is gone; start it again, and give --resume to go on where this ended")
        if self._client.status != "running":
            return  # the client connects again
        try:
            known = workers_of(self._client)
        except OSError:
            return
        folders = {address: worker["local_directory"] for address, worker in known.items()}
        for address in [each for each, member in self._members.items() if folders.get(each) != member.folder]:
            member = self._members.pop(address)
            for flight in self._flights.values():
                if flight.worker == address and not flight.is_done:
                    flight.started, flight.sent = None, now
            if member.ready:
                _logger.warning("%s is lost; its units go to others", address)
        for address, worker in known.items():
            if address not in self._members:
                future = self._pinned(_worker.look, address, [*self._shared, *self._library.values()])
                self._members[address] = _Member(worker["nthreads"], folders[address], future)
                self._notify(future, self._on_look, address)
        self._wake()
        self._find_hung(now)
        self._find_hung_fetch(now)
        self._require_workers(now)

    def _require_workers(self, now: float) -> None:
        if any(member.ready for member in self._members.values()):
            self._idle_since = now
            return
        refused = [f"{address} is refused: {member.refused}" for address, member in self._members.items() if member.refused]
        if refused and len(refused) == len(self._members):
            raise LibraryError("no worker is like this machine\n  " + "\n  ".join(refused))
        if now - self._idle_since > _PATIENCE:
            raise Error(f"no worker has come within {_PATIENCE:g} s")

    def _pinned(self, function: Callable[..., Any], address: str, *arguments: Any) -> Future:
        """A task that only one worker can do."""
        return self._client.submit(
            function, *arguments, workers=[address], pure=False, priority=100, key=self._key(function.__name__)
        )

    def _key(self, name: str) -> str:
        self._number += 1
        return f"fernwick-{name}-{self._hash[:8]}{os.getpid():x}-{self._number}"

    def _on_look(self, future: Future, address: str) -> None:
        member = self._members.get(address)
        if member is None or member.future is not future:
            return
        if future.status != "finished":
            self._refuse(address, f"{_reason(future)}; is the package fernwick installed there?")
            return
        theirs, library, is_loaded, lacks = future.result()
        wrong = differences(self._facts, theirs)
        is_same = library == self._library
        if not is_same and is_loaded:
            other = differences(self._library, library)
            wrong = "; ".join(filter(None, [wrong, f"another library is loaded, {other}; restart the worker"]))
        if wrong:
            self._refuse(address, wrong)
            return
        wanted = [each for each in lacks if each in self._shared or not is_same]
        contents = {each: self._scatter(each) for each in wanted}
        sent = {} if is_same else self._library
        member.future = self._pinned(_worker.take, address, self._hash, sent, self._resource, contents)
        self._notify(member.future, self._on_take, address)

    @property
    def _resource(self) -> str:
        return f"fernwick-{self._hash[:16]}"

    def _on_take(self, future: Future, address: str) -> None:
        member = self._members.get(address)
        if member is None or member.future is not future:
            return
        if future.status != "finished":
            self._refuse(address, _reason(future))
            return
        member.future = None
        member.ready = True
        member.is_late = bool(self._flights)
        _logger.info("%s is ready", address)
        if all(other.future is None for other in self._members.values()):
            for content_hash in self._shared:
                self._scattered.pop(content_hash, None)

    def _wake(self) -> None:
        """Submits again what nobody could do: Dask looks at it when a worker comes, and not when that is ready."""
        ready = [member for member in self._members.values() if member.ready]
        if ready and all(member.is_late for member in ready):
            for unit in reversed([unit for unit, flight in self._flights.items() if not flight.is_done]):
                self._again(unit)
        for member in ready:
            member.is_late = False

    def _refuse(self, address: str, why: str) -> None:
        self._members[address].future = None
        self._members[address].refused = why
        _logger.warning("%s is refused: %s", address, why)

    def _scatter(self, content_hash: str) -> Future:
        """The content of a file, on its way from worker to worker."""
        if content_hash not in self._scattered:
            source = self._sources[content_hash]
            if isinstance(source, str):
                with open(source, "rb") as file:
                    content = file.read()
                if digest(content) != content_hash:
                    raise GraphError(f"{source}: the file has changed since the work began")
                source = content
            self._scattered[content_hash] = self._client.scatter(source, hash=False)
        return self._scattered[content_hash]

    def _find_hung(self, now: float) -> None:
        for unit, flight in list(self._flights.items()):
            patience = self._settings.timeout * (1 if flight.started is not None else _QUEUED + 1)
            if flight.is_done or now - (flight.started or flight.sent) < patience:
                continue
            if flight.started is None:  # what it waits for hangs, and is perhaps nobody's any more
                flight.sent = now
                flight.worker = place_of(self._client, flight.future)
                if not flight.worker:
                    continue
            workers = self._hung.setdefault(unit, [])
            workers.append(flight.worker)
            took = f"{unit.name}: took longer than {self._settings.timeout:g} s on {', '.join(workers)}"
            if len(workers) == _TRIES:
                raise Error(f"{took}; smaller tiles or a longer --timeout may help")
            _logger.warning("%s, which is restarted", took)
            flight.started = now  # until the worker is gone
            self._heal(flight.worker)

    def _heal(self, worker: str) -> None:
        def tell(restarted: Any) -> None:
            if self._is_over or restarted.cancelled() or restarted.exception() is None:
                return
            _logger.warning("%s can't be restarted: %s", worker, restarted.exception())

        self._medic.submit(restart, self._client, worker).add_done_callback(tell)

    def _find_hung_fetch(self, now: float) -> None:
        if not self._fetched or now - self._fetch_begun < self._settings.timeout:
            return
        workers = {self._flights[unit].worker for unit, future in self._fetched if self._is_current(unit, future)}
        _logger.warning("%s: no answer in %g s; restarted", ", ".join(sorted(workers)), self._settings.timeout)
        for worker in workers:
            self._heal(worker)
        for unit, future in self._fetched:
            if self._is_current(unit, future):
                self._held -= bytes_of(unit, self._outputs)
                self._again(unit)
        self._fetched = []

    # Units

    def _submit(self) -> None:
        threads = sum(member.threads for member in self._members.values() if member.ready)
        flying = len(self._flights) - min(len(self._finished), _WAITING * threads)
        if flying <= (_QUEUED - 1) * threads:
            self._start([self._pending.popleft() for _ in range(min(_QUEUED * threads - flying, len(self._pending)))])

    def _start(self, units: list[Unit]) -> None:
        """Submits units, those first that were lost."""
        for is_lost, chosen in itertools.groupby(units, lambda unit: self._losses[unit] > 0):
            batch = list(chosen)
            keys = [self._key(f"{self._job.kind}-{unit.frame:g}-{','.join(map(str, unit.region))}") for unit in batch]
            futures = self._client.map(
                _worker.shade,
                [self._hash] * len(batch),
                batch,
                [{each: self._scatter(each) for each in self._own(unit.frame)} for unit in batch],
                key=keys,
                resources={self._resource: 1},
                retries=_RETRIES,
                priority=1 if is_lost else 0,
                pure=False,
            )
            for unit, key, future in zip(batch, keys, futures):
                self._flights[unit] = _Flight(future, time.monotonic())
                self._by_key[key] = unit
                self._notify(future, self._on_end, unit)

    def _own(self, frame: float) -> set[str]:
        """What only one frame needs."""
        return set(self._job.files[frame].values()).difference(self._shared)

    def _on_start(self, worker: str, key: str) -> None:
        flight = self._flights.get(self._by_key[key]) if key in self._by_key else None
        if flight is not None and flight.future.key == key:
            flight.started = time.monotonic()
            flight.worker = worker

    def _on_end(self, future: Future, unit: Unit) -> None:
        if not self._is_current(unit, future):
            return
        if future.status == "finished":
            self._flights[unit].is_done = True
            self._finished[unit] = future
        elif future.status == "error":
            self._fail(unit, future.exception())
        else:
            self._lost(unit)

    def _lost(self, unit: Unit) -> None:
        """The scheduler has forgotten a unit: it is another one, or was told to forget; so it may have others."""
        self._losses[unit] += 1
        if self._losses[unit] > _TRIES:
            raise Error(f"{unit.name}: was lost {_TRIES} times")
        if self._members:
            _logger.warning("the scheduler has forgotten units; they are submitted again")
            self._members.clear()
            self._scattered.clear()
            self._looked = 0
            self._subscribe()
        self._again(unit)

    def _again(self, unit: Unit) -> None:
        cancel(self._client, [self._land(unit)])
        self._pending.appendleft(unit)

    def _is_current(self, unit: Unit, future: Future) -> bool:
        """Whether a unit wasn't submitted again."""
        flight = self._flights.get(unit)
        return flight is not None and flight.future is future

    def _land(self, unit: Unit) -> Future:
        future = self._flights.pop(unit).future
        self._finished.pop(unit, None)
        del self._by_key[future.key]
        return future

    def _fail(self, unit: Unit, error: BaseException) -> None:
        if isinstance(error, Error):
            raise type(error)(f"{unit.name}: {error}") from None
        if isinstance(error, KilledWorker):
            raise Error(f"{unit.name}: {_TRIES} workers died at it; do they have memory enough for a smaller tile?") from None
        raise Error(f"{unit.name}: {type(error).__name__}: {error}") from error

    def _fetch(self) -> None:
        """Takes finished units off workers, as many as there is room for. What is written next always has room."""
        if self._fetched or not self._finished:
            return  # those that come meanwhile are taken together, which costs least
        first = next(iter(self._pictures.values()), None)
        next_band = set() if first is None or first.band == len(first.picture.bands) else set(first.picture.bands[first.band])
        reserve = sum(bytes_of(unit, self._outputs) for unit in next_band if unit not in self._arrays)
        chosen = []
        for unit, future in list(self._finished.items()):
            size = bytes_of(unit, self._outputs)
            if unit in next_band or self._held + reserve + size <= self._settings.memory:
                del self._finished[unit]
                self._held += size
                chosen.append((unit, future))
        if chosen:
            self._fetched = chosen
            self._fetch_begun = time.monotonic()
            self._fetcher.submit(self._gather_all, chosen)

    def _gather_all(self, chosen: list[tuple[Unit, Future]]) -> None:
        self._gather(chosen)
        self._post(self._on_fetched, chosen)

    def _on_fetched(self, chosen: list[tuple[Unit, Future]]) -> None:
        if self._fetched is chosen:
            self._fetched = []

    def _gather(self, chosen: list[tuple[Unit, Future]]) -> None:
        parts = self._settings.parts
        try:
            gathered = self._client.gather([future for _, future in chosen])
        except BaseException as error:
            if len(chosen) == 1:
                self._post(self._on_not_fetched, *chosen[0], error)
            else:
                for each in chosen:
                    self._gather([each])
            return
        for (unit, future), shaded in zip(chosen, gathered):
            try:
                if parts is not None:
                    parts.save(self._keys[unit], shaded.arrays)
                    shaded.arrays.clear()
                self._post(self._on_shaded, unit, future, shaded)
            except BaseException as error:
                self._post(_raise, error)

    def _on_not_fetched(self, unit: Unit, future: Future, error: BaseException) -> None:
        if not self._is_current(unit, future):
            return
        self._held -= bytes_of(unit, self._outputs)
        if isinstance(error, CancelledError):
            self._lost(unit)
        else:
            self._fail(unit, error)

    def _on_shaded(self, unit: Unit, future: Future, shaded: _worker.Shaded) -> None:
        _logger.info("%s: %.2f s on %s", unit.name, shaded.seconds, shaded.worker)
        warn(shaded.reports, ShaderWarning)
        if not self._is_current(unit, future):
            return
        self._land(unit)
        if shaded.arrays:
            self._arrays[unit] = shaded.arrays
        else:
            self._stored.add(unit)
            self._held -= bytes_of(unit, self._outputs)
        self._touched.add(unit.picture)
        self._done += unit.pixels
        self._left[unit.frame] -= 1
        if not self._left[unit.frame]:
            for content_hash in self._own(unit.frame):
                self._scattered.pop(content_hash, None)
        if self._settings.progress is not None:
            self._settings.progress(self._done / self._pixels)

    # Pictures

    def _write(self) -> None:
        for opened in [self._pictures[index] for index in self._touched if index in self._pictures]:
            if not opened.is_writing and self._has(opened.picture.bands[opened.band]):
                opened.is_writing = True
                self._writer.submit(self._write_band, opened)
        self._touched.clear()

    def _has(self, band: Iterable[Unit]) -> bool:
        return all(unit in self._arrays or unit in self._stored for unit in band)

    def _write_band(self, opened: _Open) -> None:
        try:
            picture, parts = opened.picture, self._settings.parts
            band = picture.bands[opened.band]
            arrays = {unit: self._arrays[unit] for unit in band if unit in self._arrays}
            for unit in band:
                if unit in self._stored:
                    assert parts is not None
                    loaded = parts.load(self._keys[unit])
                    if loaded is None:
                        self._post(self._on_damaged, opened, unit)
                        return
                    arrays[unit] = loaded
            if opened.files is None:
                opened.files = PictureFiles(picture, self._settings.layout)
            opened.files.write(band, arrays)
            if opened.band + 1 == len(picture.bands):
                opened.files.finish()
                if parts is not None:
                    units = [unit for each in picture.bands for unit in each]
                    parts.finish(self._note(picture), picture.files.values(), [self._keys[unit] for unit in units])
            self._post(self._on_written, opened)
        except BaseException as error:
            self._post(_raise, error)

    @staticmethod
    def _abandon(opened: _Open) -> None:
        if opened.files is not None:
            opened.files.abandon()

    def _on_damaged(self, opened: _Open, unit: Unit) -> None:
        opened.is_writing = False
        self._stored.remove(unit)
        self._done -= unit.pixels
        self._left[unit.frame] += 1
        self._pending.appendleft(unit)

    def _on_written(self, opened: _Open) -> None:
        for unit in opened.picture.bands[opened.band]:
            if unit in self._arrays:
                del self._arrays[unit]
                self._held -= bytes_of(unit, self._outputs)
        opened.is_writing = False
        opened.band += 1
        self._touched.add(opened.index)
        if opened.band == len(opened.picture.bands):
            del self._pictures[opened.index]

    # Events

    def _notify(self, future: Future, handler: Callable[..., None], *arguments: Any) -> None:
        future.add_done_callback(functools.partial(self._post_end, handler, arguments))

    def _post_end(self, handler: Callable[..., None], arguments: tuple[Any, ...], future: Future) -> None:
        self._post(handler, future, *arguments)

    def _post(self, handler: Callable[..., None], *arguments: Any) -> None:
        self._events.put((handler, arguments))

    def _next_events(self) -> None:
        """Waits for one, and handles all that are there."""
        try:
            handler, arguments = self._events.get(timeout=_LOOK / 4)
            handler(*arguments)
            while True:
                handler, arguments = self._events.get_nowait()
                handler(*arguments)
        except queue.Empty:
            pass


def require_memory(pictures: list[Picture], outputs: list[str], memory: int) -> None:
    """Raises ValueError where the room for pixels doesn't hold what has to be there at once."""
    needed = max(sum(bytes_of(unit, outputs) for unit in band) for picture in pictures for band in picture.bands)
    if needed > memory:
        raise ValueError(
            f"memory: a row of tiles takes {megabytes(needed)}, more than {megabytes(memory)}; give more, or tiles of less height"
        )


def _reason(future: Future) -> str:
    error = future.exception() if future.status == "error" else None
    return "its task was cancelled" if error is None else f"{type(error).__name__}: {error}"


def _raise(error: BaseException) -> None:
    raise error

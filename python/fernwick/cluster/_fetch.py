"""Takes finished units off workers."""

from __future__ import annotations

import logging
import time
from concurrent.futures import ThreadPoolExecutor

from .._errors import ShaderWarning, warn
from . import _worker
from ._dask import Client, Future, places
from ._events import Events
from ._flights import Flights
from ._output import Output
from ._plan import Unit

_logger = logging.getLogger("fernwick.cluster")
_GATHERED = 0.1  # seconds in which finished units come together, for they cost least so

_Chosen = list[tuple[Unit, Future]]


class Fetcher:
    """One fetch at a time, of as many units as there is room for."""

    def __init__(self, client: Client, flights: Flights, output: Output, events: Events, timeout: float) -> None:
        self._client = client
        self._flights = flights
        self._output = output
        self._events = events
        self._timeout = timeout
        self._threads = ThreadPoolExecutor(4, "fernwick-fetcher")  # of which one waits, unless workers hang
        self._chosen: _Chosen = []
        self._begun = time.monotonic()

    @property
    def due(self) -> float:
        """Seconds until the next fetch may begin."""
        return max(0.0, self._begun + _GATHERED - time.monotonic())

    def fetch(self) -> None:
        finished = self._flights.finished
        if self._chosen or not finished or (self.due > 0 and not self._flights.is_idle()):
            return
        chosen = [(unit, finished.pop(unit)) for unit in self._output.reserve(list(finished))]
        if chosen:
            self._chosen = chosen
            self._begun = time.monotonic()
            self._threads.submit(self._gather_all, chosen)

    def find_hung(self) -> set[str]:
        """The workers that don't answer; what they have is shaded again."""
        if not self._chosen or time.monotonic() - self._begun < self._timeout:
            return set()
        lost = [(unit, future) for unit, future in self._chosen if self._flights.is_current(unit, future)]
        workers = set(places(self._client, [future for _, future in lost]).values())
        _logger.warning("%s: no answer in %g s; restarted", ", ".join(sorted(workers)), self._timeout)
        for unit, _ in lost:
            self._output.release(unit)
            self._flights.again(unit)
        self._chosen = []
        return workers

    def close(self) -> None:
        self._threads.shutdown(wait=False, cancel_futures=True)

    def _gather_all(self, chosen: _Chosen) -> None:
        self._gather(chosen)
        self._events.post(self._on_fetched, chosen)

    def _on_fetched(self, chosen: _Chosen) -> None:
        if self._chosen is chosen:
            self._chosen = []

    def _gather(self, chosen: _Chosen) -> None:
        try:
            gathered = self._client.gather([future for _, future in chosen])
        except BaseException as error:
            if len(chosen) == 1:
                self._events.post(self._on_not_fetched, *chosen[0], error)
            else:
                for each in chosen:
                    self._gather([each])
            return
        for (unit, future), shaded in zip(chosen, gathered):
            try:
                self._output.store(unit, shaded.arrays)
                self._events.post(self._on_shaded, unit, future, shaded)
            except BaseException as error:
                self._events.fail(error)

    def _on_not_fetched(self, unit: Unit, future: Future, error: BaseException) -> None:
        if self._flights.is_current(unit, future):
            self._output.release(unit)
            self._flights.not_fetched(unit, future, error)

    def _on_shaded(self, unit: Unit, future: Future, shaded: _worker.Shaded) -> None:
        _logger.info("%s: %.2f s on %s", unit.name, shaded.seconds, shaded.worker)
        warn(shaded.reports, ShaderWarning)
        if self._flights.is_current(unit, future):
            self._flights.land(unit, shaded.seconds)
            self._output.add(unit, shaded.arrays)

"""One job, from its first unit to its last file."""

from __future__ import annotations

import logging
import time
from collections.abc import Iterable
from concurrent.futures import ThreadPoolExecutor
from typing import Any

from .._errors import Error
from ._contents import Contents
from ._dask import Client, cancel, cheap_submission, restart
from ._events import Events
from ._fetch import Fetcher
from ._flights import Flights
from ._members import Members
from ._output import Output, Settings
from ._plan import Job, Picture

_logger = logging.getLogger("fernwick.cluster")
_LOOK = 1.0  # seconds between looks at the workers, where there are few
_LOOKED_AT = 100  # workers a second, at most: it costs the scheduler and this process most of a millisecond each


class Run:
    """Sends units to workers, and what comes back to the files."""

    def __init__(self, client: Client, job: Job, pictures: list[Picture], sources: dict[str, str], settings: Settings):
        """:param sources: the files that the job needs: names by hash"""
        self._client = client
        self._events = Events()
        self._contents = Contents(client, job, sources)
        self._members = Members(client, self._contents, self._events)
        self._flights = Flights(client, job, self._contents, self._members, self._events, settings.timeout)
        self._output = Output(job, pictures, settings, self._events)
        self._fetcher = Fetcher(client, self._flights, self._output, self._events, settings.timeout)
        self._medic = ThreadPoolExecutor(4, "fernwick-medic")
        self._members.is_busy = lambda: len(self._flights) > 0
        self._output.on_damaged = lambda unit: self._flights.add([unit])
        self._looked = 0.0
        self._is_over = False

    def run(self) -> None:
        self._flights.add(self._output.begin())
        with self._events.interrupts(), cheap_submission():
            self._run()

    def _run(self) -> None:
        try:
            while not self._output.is_whole:
                self._look_around()
                self._flights.submit()
                self._fetcher.fetch()
                self._output.write()
                self._events.handle(self._fetcher.due or _LOOK / 4)
        except BaseException:
            self._output.abandon()
            raise
        finally:
            self._is_over = True
            cancel(self._client, [*self._flights.futures(), *self._members.futures(), *self._contents.futures()])
            self._output.close()
            self._fetcher.close()
            self._medic.shutdown(wait=False, cancel_futures=True)

    def _look_around(self) -> None:
        now = time.monotonic()
        if now - self._looked < max(_LOOK, len(self._members) / _LOOKED_AT):
            return
        self._looked = now
        if self._client.status == "closed":
            raise Error("the scheduler is gone; start it again, and give --resume to go on where this ended")
        if self._client.status != "running":
            return  # the client connects again
        try:
            if self._members.look():
                self._flights.wait_longer()
            if self._members.has_come_late():
                self._flights.all_again()
            self._heal(self._flights.find_hung() | self._fetcher.find_hung())
        except Error:
            raise
        except OSError:
            return  # the scheduler goes away just now

    def _heal(self, workers: Iterable[str]) -> None:
        """Restarts workers that hang."""
        for worker in workers:

            def tell(restarted: Any, worker: str = worker) -> None:
                if not self._is_over and not restarted.cancelled() and restarted.exception() is not None:
                    _logger.warning("%s can't be restarted: %s", worker, restarted.exception())

            self._medic.submit(restart, self._client, worker).add_done_callback(tell)

"""What other threads tell the one that runs a job."""

from __future__ import annotations

import contextlib
import functools
import queue
import signal
import threading
from collections.abc import Callable, Iterator
from typing import Any

from ._dask import Future


class Events:
    """Calls that wait for the run's own thread, so that nothing else there needs a lock."""

    def __init__(self) -> None:
        self._calls: queue.SimpleQueue[tuple[Callable[..., None], tuple[Any, ...]]] = queue.SimpleQueue()

    def post(self, handler: Callable[..., None], *arguments: Any) -> None:
        self._calls.put((handler, arguments))

    def fail(self, error: BaseException) -> None:
        """Raises it in the run's thread."""
        self.post(_raise, error)

    def notify(self, future: Future, handler: Callable[..., None], *arguments: Any) -> None:
        """Calls with the future and the arguments when it has ended, well or not."""
        future.add_done_callback(functools.partial(self._post_end, handler, arguments))

    def handle(self, timeout: float) -> None:
        """Waits for an event, so many seconds at most, and handles all that are there."""
        try:
            handler, arguments = self._calls.get(timeout=timeout)
            handler(*arguments)
            while True:
                handler, arguments = self._calls.get_nowait()
                handler(*arguments)
        except queue.Empty:
            pass

    @contextlib.contextmanager
    def interrupts(self) -> Iterator[None]:
        """Makes the first Ctrl-C an event: as an exception it may be lost where nothing can be raised."""
        before = signal.getsignal(signal.SIGINT)

        def post(*_: object) -> None:
            signal.signal(signal.SIGINT, before)
            self.fail(KeyboardInterrupt())

        if before is not signal.default_int_handler or threading.current_thread() is not threading.main_thread():
            yield
            return
        signal.signal(signal.SIGINT, post)
        try:
            yield
        finally:
            signal.signal(signal.SIGINT, before)

    def _post_end(self, handler: Callable[..., None], arguments: tuple[Any, ...], future: Future) -> None:
        self.post(handler, future, *arguments)


def _raise(error: BaseException) -> None:
    raise error

"""The workers of a job: each is looked at, gets what it needs, or is refused."""

from __future__ import annotations

import dataclasses
import logging
import time
from collections.abc import Callable
from typing import Any

from .._errors import Error, LibraryError
from . import _worker
from ._contents import Contents
from ._dask import Client, Future, version, workers_of
from ._events import Events
from ._facts import differences, facts

_logger = logging.getLogger("fernwick.cluster")
_PATIENCE = 300.0  # seconds without a worker
_SILENCE = 15.0  # of these before a word is said


@dataclasses.dataclass
class _Member:
    """A worker."""

    threads: int
    folder: str  # which is another one when a new process has the same address
    future: Future | None  # of what prepares it
    ready: bool = False
    is_late: bool = False  # came ready when units were sent already, and wasn't looked at since
    refused: str = ""


class Members:
    """All workers that the scheduler has."""

    def __init__(self, client: Client, contents: Contents, events: Events) -> None:
        self._client = client
        self._contents = contents
        self._events = events
        self._facts = facts() | {"Dask": version}
        self._members: dict[str, _Member] = {}
        self._idle_since = time.monotonic()
        self._has_told = False  # that there is no worker
        self.is_busy: Callable[[], bool] = lambda: False
        """Whether units are sent already."""

    def __len__(self) -> int:
        return len(self._members)

    @property
    def threads(self) -> int:
        """Of workers that are ready."""
        return sum(member.threads for member in self._members.values() if member.ready)

    def look(self) -> bool:
        """Takes in who has come and gone. Answers whether one is lost that had work.

        Raises OSError while the scheduler is away; LibraryError when all workers are refused; Error when none comes.
        """
        known = workers_of(self._client)
        folders = {address: worker["local_directory"] for address, worker in known.items()}
        lost = [address for address, member in self._members.items() if folders.get(address) != member.folder]
        was_ready = [address for address in lost if self._members.pop(address).ready]
        for address in was_ready:
            _logger.warning("%s is lost; its units go to others", address)
        for address, worker in known.items():
            if address not in self._members:
                hashes = [*self._contents.shared, *self._contents.library.values()]
                future = self._pinned(_worker.look, address, hashes)
                self._members[address] = _Member(worker["nthreads"], folders[address], future)
                self._events.notify(future, self._on_look, address)
        self._require_some()
        return bool(was_ready)

    def has_come_late(self) -> bool:
        """Whether units were sent before any worker was ready: Dask looks at them when a worker comes, and not when
        that is ready. True once."""
        ready = [member for member in self._members.values() if member.ready]
        late = bool(ready) and all(member.is_late for member in ready)
        for member in ready:
            member.is_late = False
        return late

    def forget(self) -> bool:
        """The scheduler is another one. Answers whether there were any."""
        had = bool(self._members)
        self._members.clear()
        return had

    def futures(self) -> list[Future]:
        return [member.future for member in self._members.values() if member.future is not None]

    def _require_some(self) -> None:
        now = time.monotonic()
        if any(member.ready for member in self._members.values()):
            self._idle_since = now
            self._has_told = False
            return
        refused = [
            f"{address} is refused: {member.refused}" for address, member in self._members.items() if member.refused
        ]
        if refused and len(refused) == len(self._members):
            raise LibraryError("no worker is like this machine\n  " + "\n  ".join(refused))
        if now - self._idle_since > _SILENCE and not self._has_told and not self._members:
            self._has_told = True
            _logger.warning("no worker is there; one is waited for, up to %g s", _PATIENCE)
        if now - self._idle_since > _PATIENCE:
            raise Error(f"no worker has come within {_PATIENCE:g} s")

    def _pinned(self, function: Callable[..., Any], address: str, *arguments: Any) -> Future:
        """A task that only one worker can do."""
        key = self._contents.key(function.__name__)
        return self._client.submit(function, *arguments, workers=[address], pure=False, priority=100, key=key)

    def _on_look(self, future: Future, address: str) -> None:
        member = self._members.get(address)
        if member is None or member.future is not future:
            return
        if future.status == "cancelled":
            del self._members[address]  # it goes, or the scheduler does: it is looked at again
            return
        if future.status == "error":
            error = _told(future.exception())
            self._refuse(address, f"{error}; is the package fernwick installed there?")
            return
        theirs, library, is_loaded, lacks = future.result()
        wrong = differences(self._facts, theirs)
        contents = self._contents
        is_same = library == contents.library
        if not is_same and is_loaded:
            other = differences(contents.library, library)
            wrong = "; ".join(filter(None, [wrong, f"another library is loaded, {other}; restart the worker"]))
        if wrong:
            self._refuse(address, wrong)
            return
        wanted = {each: contents.scatter(each) for each in lacks if each in contents.shared or not is_same}
        sent = {} if is_same else contents.library
        member.future = self._pinned(_worker.take, address, contents.job_hash, sent, contents.resource, wanted)
        self._events.notify(member.future, self._on_take, address)

    def _on_take(self, future: Future, address: str) -> None:
        member = self._members.get(address)
        if member is None or member.future is not future:
            return
        if future.status == "cancelled":
            del self._members[address]
            return
        if future.status == "error":
            self._refuse(address, _told(future.exception()))
            return
        member.future = None
        member.ready = True
        member.is_late = self.is_busy()
        _logger.info("%s is ready", address)
        if not self.futures():
            self._contents.forget(self._contents.shared)

    def _refuse(self, address: str, why: str) -> None:
        self._members[address].future = None
        self._members[address].refused = why
        _logger.warning("%s is refused: %s", address, why)


def _told(error: BaseException) -> str:
    return f"{type(error).__name__}: {error}"

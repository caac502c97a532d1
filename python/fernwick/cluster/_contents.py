"""What workers need for a job, by hash: each content goes out once, and from worker to worker then."""

from __future__ import annotations

import itertools
import os
import pickle
from collections import Counter
from collections.abc import Iterable

from .. import _native
from .._errors import GraphError
from ._dask import Client, Future
from ._facts import library_files
from ._files import digest
from ._plan import Job


class Contents:
    """The job, the library, and files of the graph."""

    def __init__(self, client: Client, job: Job, sources: dict[str, str]) -> None:
        """:param sources: the files that the job needs: names by hash"""
        packed = pickle.dumps(job)
        self.job_hash = digest(packed)
        self.library = library_files()
        """Hashes by the names of its files."""
        uses = Counter(each for files in job.files.values() for each in set(files.values()))
        several = [each for each, count in uses.items() if count > 1 or len(job.files) == 1]
        self.shared = [self.job_hash, *several]
        """What each worker gets before its first unit."""
        self._client = client
        self._files = job.files
        self._sources: dict[str, str | bytes] = dict(sources) | {self.job_hash: packed}
        folder = os.path.dirname(_native.library_path())
        for name, content_hash in self.library.items():
            self._sources[content_hash] = os.path.join(folder, name)
        self._scattered: dict[str, Future] = {}
        self._numbers = itertools.count(1)

    def key(self, name: str) -> str:
        """Of a new task."""
        return f"fernwick-{name}-{self.job_hash[:8]}{os.getpid():x}-{next(self._numbers)}"

    @property
    def resource(self) -> str:
        """What workers offer when they have what is shared."""
        return f"fernwick-{self.job_hash[:16]}"

    def own(self, frame: float) -> set[str]:
        """What only one frame needs."""
        return set(self._files[frame].values()).difference(self.shared)

    def scatter(self, content_hash: str) -> Future:
        """The content of a file, on its way from worker to worker. Raises OSError, GraphError."""
        if content_hash not in self._scattered:
            self._scattered[content_hash] = self._client.scatter(self._content(content_hash), hash=False)
        return self._scattered[content_hash]

    def forget(self, hashes: Iterable[str] | None = None) -> None:
        """Lets go of what nobody needs any more, or of all."""
        for content_hash in list(self._scattered if hashes is None else hashes):
            self._scattered.pop(content_hash, None)

    def futures(self) -> list[Future]:
        return list(self._scattered.values())

    def _content(self, content_hash: str) -> bytes:
        source = self._sources[content_hash]
        if isinstance(source, bytes):
            return source
        with open(source, "rb") as file:
            content = file.read()
        if digest(content) != content_hash:
            raise GraphError(f"{source}: the file has changed since the work began")
        return content

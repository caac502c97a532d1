"""Shaded units on their way into files: what is held, what lies on the disk, and what can be written."""

from __future__ import annotations

import dataclasses
from collections.abc import Callable, Iterable
from concurrent.futures import ThreadPoolExecutor
from threading import Lock
from typing import TYPE_CHECKING

from .._arguments import Progress
from ._assemble import Layout, PictureFiles
from ._events import Events
from ._plan import Job, Picture, Unit, megabytes
from ._resume import Parts

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray


@dataclasses.dataclass(frozen=True)
class Settings:
    """What a caller chooses of how a job is run."""

    layout: Layout
    memory: int  # bytes of pixels on the client
    timeout: float  # seconds, of a unit
    parts: Parts | None
    progress: Progress | None


class _Open:
    """A picture that isn't whole yet."""

    def __init__(self, index: int, picture: Picture) -> None:
        self.index = index
        self.picture = picture
        self.files: PictureFiles | None = None
        self.band = 0  # the next to be written
        self.is_writing = False


class Output:
    """All pictures of a job, whose bands are written by a thread of its own."""

    def __init__(self, job: Job, pictures: list[Picture], settings: Settings, events: Events) -> None:
        self._job = job
        self._settings = settings
        self._events = events
        self._pictures = {i: _Open(i, picture) for i, picture in enumerate(pictures)}
        self._writer = ThreadPoolExecutor(1, "fernwick-writer")
        self._touched = set(self._pictures)  # that may have a band to write
        self._arrays: dict[Unit, dict[str, NDArray[np.float32]]] = {}
        self._sizes: dict[Unit, int] = {}  # bytes of units that were fetched, or are, and aren't written yet
        self._keys: dict[Unit, str] = {}  # of parts
        self._stored: set[Unit] = set()
        self._storing = Lock()
        self._is_closed = False
        self._pixels = self._done = 0
        self._row = largest_row(job, pictures)
        self.held = 0
        """Bytes of pixels that there are, or for which there is room kept."""
        self.on_damaged: Callable[[Unit], None] = lambda unit: None
        """Is told of a part that can't be read, which is to be shaded again."""

    @property
    def is_whole(self) -> bool:
        return not self._pictures

    def begin(self) -> list[Unit]:
        """Finds what an earlier run has left. Answers the units that are to be shaded."""
        fresh: list[Unit] = []
        parts = self._settings.parts
        for index, opened in list(self._pictures.items()):
            units = opened.picture.units
            pixels = sum(unit.pixels for unit in units)
            self._pixels += pixels
            if parts is not None:
                self._keys.update((unit, parts.key(self._job.identity(unit))) for unit in units)
                if parts.is_finished(self._note(opened.picture), opened.picture.files.values()):
                    del self._pictures[index]
                    self._done += pixels
                    continue
            stored = [unit for unit in units if parts is not None and parts.has(self._keys[unit])]
            self._stored.update(stored)
            self._done += sum(unit.pixels for unit in stored)
            fresh += [unit for unit in units if unit not in self._stored]
        return fresh

    def reserve(self, units: Iterable[Unit]) -> list[Unit]:
        """Keeps room for those that it has room for. What is written next always has room."""
        first = next(iter(self._pictures.values()), None)
        is_open = first is not None and first.band < len(first.picture.bands)
        next_band = set(first.picture.bands[first.band]) if first is not None and is_open else set()
        early = self.held - sum(self._sizes.get(unit, 0) for unit in next_band)
        chosen = []
        for unit in units:
            size = self._job.bytes_of(unit)
            if unit not in next_band:
                if early + size + self._row > self._settings.memory:
                    continue
                early += size
            self._sizes[unit] = size
            self.held += size
            chosen.append(unit)
        return chosen

    def release(self, unit: Unit) -> None:
        """Needs the room of a unit no more."""
        self.held -= self._sizes.pop(unit, 0)

    def store(self, unit: Unit, arrays: dict[str, NDArray[np.float32]]) -> None:
        """Puts a unit on the disk, where there is a folder for it, in any thread. Raises FileError.

        What comes once all is closed is let go.
        """
        if self._settings.parts is None:
            return
        with self._storing:
            if not self._is_closed:
                self._settings.parts.save(self._keys[unit], arrays)
                arrays.clear()

    def add(self, unit: Unit, arrays: dict[str, NDArray[np.float32]]) -> None:
        """A shaded unit for which there is room; without arrays it is stored."""
        if arrays:
            self._arrays[unit] = arrays
        else:
            self._stored.add(unit)
            self.release(unit)
        self._touched.add(unit.picture)
        self._done += unit.pixels
        if self._settings.progress is not None:
            self._settings.progress(self._done / self._pixels)

    def write(self) -> None:
        """Begins with those bands that are whole and next."""
        for opened in [self._pictures[index] for index in self._touched if index in self._pictures]:
            band = opened.picture.bands[opened.band]
            if not opened.is_writing and all(unit in self._arrays or unit in self._stored for unit in band):
                opened.is_writing = True
                self._writer.submit(self._write_band, opened)
        self._touched.clear()

    def abandon(self) -> None:
        """Leaves no file half written."""
        for opened in self._pictures.values():
            self._writer.submit(self._abandon, opened)

    def close(self) -> None:
        """Waits for what is written and stored."""
        with self._storing:
            self._is_closed = True
        self._writer.shutdown(wait=True)

    def _note(self, picture: Picture) -> str:
        layout = repr(self._settings.layout) + "".join(str(file.absolute()) for file in picture.files.values())
        return Parts.key(layout + "".join(self._keys[unit] for unit in picture.units))

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
                        self._events.post(self._on_damaged, opened, unit)
                        return
                    arrays[unit] = loaded
            if opened.files is None:
                opened.files = PictureFiles(picture, self._settings.layout)
            opened.files.write(band, arrays)
            if opened.band + 1 == len(picture.bands):
                opened.files.finish()
                if parts is not None:
                    keys = [self._keys[unit] for unit in picture.units]
                    parts.finish(self._note(picture), picture.files.values(), keys)
            self._events.post(self._on_written, opened)
        except BaseException as error:
            self._events.fail(error)

    @staticmethod
    def _abandon(opened: _Open) -> None:
        if opened.files is not None:
            opened.files.abandon()

    def _on_damaged(self, opened: _Open, unit: Unit) -> None:
        opened.is_writing = False
        self._stored.remove(unit)
        self._done -= unit.pixels
        self.on_damaged(unit)

    def _on_written(self, opened: _Open) -> None:
        for unit in opened.picture.bands[opened.band]:
            self._arrays.pop(unit, None)
            self.release(unit)
        opened.is_writing = False
        opened.band += 1
        self._touched.add(opened.index)
        if opened.band == len(opened.picture.bands):
            del self._pictures[opened.index]


def largest_row(job: Job, pictures: list[Picture]) -> int:
    """Bytes that have to be held at once: of a row of tiles."""
    return max(sum(map(job.bytes_of, band)) for picture in pictures for band in picture.bands)


def require_memory(job: Job, pictures: list[Picture], memory: int) -> None:
    """Raises ValueError where the room for pixels doesn't hold what has to be there at once."""
    needed = largest_row(job, pictures)
    if needed > memory:
        told = f"memory: a row of tiles takes {megabytes(needed)}, more than {megabytes(memory)}"
        raise ValueError(f"{told}; give more, or tiles of less height")

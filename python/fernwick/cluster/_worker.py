"""What runs on a worker."""

from __future__ import annotations

import collections
import dataclasses
import json
import logging
import os
import pickle
import threading
import time
import warnings
from typing import TYPE_CHECKING, Any

from .. import _native
from .._errors import Error, GraphError, ShaderWarning
from .._graph import Graph, _remake
from .._library import set_library
from ._dask import offer, own_address, version, while_wanted, worker_folder
from ._facts import Facts, facts, library_files
from ._files import Store
from ._plan import Job, Unit

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import NDArray

_logger = logging.getLogger("fernwick.cluster")
_KEPT_GRAPHS = 4  # graphs at a frame in a process
_lock = threading.Lock()
_jobs: dict[str, Job] = {}
_graphs: collections.OrderedDict[tuple[str, float], tuple[Graph, Graph | None]] = collections.OrderedDict()


@dataclasses.dataclass
class Shaded:
    """What comes back of a unit."""

    arrays: dict[str, NDArray[np.float32]]  # by output
    reports: list[str]  # of shaders
    worker: str
    seconds: float  # of shading


def look(hashes: list[str]) -> tuple[Facts, dict[str, str], bool, list[str]]:
    """What this worker is, its library, whether that's loaded already, and what it lacks of some contents."""
    return (
        facts() | {"Dask": version},
        library_files(),
        bool(_native.library_path()),
        Store(worker_folder()).lacks(hashes),
    )


def take(job_hash: str, library: dict[str, str], resource: str, contents: dict[str, bytes]) -> None:
    """Keeps what was sent, and is ready for units then.

    :param library: its files where it was sent, by their names: hashes
    """
    store = Store(worker_folder())
    store.add(contents)
    if library:
        folder = store.mirror(f"library-{job_hash[:16]}", {f"/{name}": each for name, each in library.items()})
        set_library(f"{folder}/{next(iter(library))}")
    with _lock:
        if job_hash not in _jobs:
            _jobs.clear()
            _graphs.clear()
            _jobs[job_hash] = pickle.loads(store.path(job_hash).read_bytes())
    offer(resource)


def shade(job_hash: str, unit: Unit, contents: dict[str, bytes]) -> Shaded:
    """One unit, by one thread.

    :param contents: what only this frame needs, by hash
    """
    wanted = while_wanted()
    started = time.monotonic()
    store = Store(worker_folder())
    store.add(contents)
    job = _job(job_hash, store)
    _logger.info("%s: shading", unit.name)
    root = store.mirror(f"files-{job_hash[:16]}", job.files[unit.frame])
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        try:
            graph, over = _graph(job_hash, job, unit.frame, root)
            arrays = _shaded(job, unit, graph, over, root, wanted)
        except Error as error:
            raise type(error)(str(error).replace(root, "")) from None
    texts = [str(warning.message) for warning in caught if issubclass(warning.category, ShaderWarning)]
    seconds = time.monotonic() - started
    _logger.info("%s: done in %.2f s", unit.name, seconds)
    return Shaded(arrays, texts, own_address(), seconds)


def _job(job_hash: str, store: Store) -> Job:
    with _lock:
        if job_hash not in _jobs:  # another job has come between
            _jobs[job_hash] = pickle.loads(store.path(job_hash).read_bytes())
        return _jobs[job_hash]


def _shaded(
    job: Job, unit: Unit, graph: Graph, over: Graph | None, root: str, progress: Any
) -> dict[str, NDArray[np.float32]]:
    options = dict(job.options, region=unit.region, threads=1, progress=progress)
    result: dict[str, NDArray[np.float32]]
    if job.kind == "render":
        result = graph.render(job.width, job.height, **options)
        return result
    onto = root + job.onto if isinstance(job.onto, str) else job.onto
    result = graph.bake(job.width, job.height, over=over, onto=onto, tile=unit.udim or None, **options)
    return result


def _graph(job_hash: str, job: Job, frame: float, root: str) -> tuple[Graph, Graph | None]:
    with _lock:
        key = (job_hash, frame)
        if key not in _graphs:
            kept = next((pair for (owner, _), pair in _graphs.items() if owner == job_hash), (None, None))
            graph = _at(job.graph, kept[0], frame, root)
            over = None if job.over is None else _at(job.over, kept[1], frame, root)
            _graphs[key] = (graph, over)
            if len(_graphs) > _KEPT_GRAPHS:
                _graphs.popitem(last=False)
        _graphs.move_to_end(key)
        return _graphs[key]


def _at(made: tuple[Any, ...], kept: Graph | None, frame: float, root: str) -> Graph:
    """A graph at a frame; of one that is kept, so that files stay read."""
    if kept is not None:
        graph = kept.at(frame)
    else:
        text, folder, name, files, _ = made
        graph = _remake(_moved(text, root), type(folder)(f"{root}{folder}"), name, files, frame)
    for path in graph._document.files:
        if not path.startswith(root):
            raise GraphError(
                f"{path}: a file names it by its absolute name, which workers don't have; make it relative"
            )
    return graph


def _moved(text: str, root: str) -> str:
    """A document with a folder before the absolute names of files."""
    document = json.loads(text)
    return json.dumps(document) if _move(document, root, False) else text


def _move(value: Any, root: str, is_file: bool) -> bool:
    moved = False
    members: Any = value.items() if isinstance(value, dict) else enumerate(value) if isinstance(value, list) else ()
    for key, member in members:
        names_file = key in ("file", "path") or (is_file and (key == "keys" or isinstance(value, list)))
        if names_file and isinstance(member, str) and os.path.isabs(member):
            value[key] = root + os.path.normpath(member)
            moved = True
        elif _move(member, root, names_file):
            moved = True
    return moved

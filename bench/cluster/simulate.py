"""How far one scheduler and one client go: many workers, whose shading is replaced by a recorded time.

    python3 bench/cluster/simulate.py [--workers 1000] [--nanoseconds 5000] [--tiles 128x128,512x256] [--count 8000]

Scheduler, client and transport are those of a real run; the workers are Dask's own too, as objects in a few processes
instead of a process each, and a tile is a wait of `--nanoseconds` for each pixel that answers as many bytes as its
pixels would have. Prints for each size of tiles how many came a second, of those that the workers could have shaded,
and what processor time client and scheduler took for each; the client's is with writing.
"""

import argparse
import asyncio
import logging
import multiprocessing
import os
import tempfile
import time
from pathlib import Path
from typing import Any

import dask
import distributed
import numpy as np

import fernwick
import fernwick.cluster
from fernwick.cluster import _worker
from fernwick.cluster._dask import own_address

QUIET = {
    "distributed.worker.use-file-locking": False,
    "distributed.worker.profile.enabled": False,
    "distributed.admin.tick.interval": "10s",
    "distributed.admin.tick.limit": "1h",
    "distributed.admin.system-monitor.interval": "10s",
    "distributed.comm.compression": None,
    "distributed.comm.timeouts.connect": "300s",
    "distributed.scheduler.worker-ttl": None,
    "distributed.client.scheduler-info-interval": "60s",
}
STARTING = 20  # workers at a time in a process


def wait(nanoseconds: float, job_hash: str, unit: Any, contents: Any) -> _worker.Shaded:
    seconds = unit.pixels * nanoseconds * 1e-9
    time.sleep(seconds)
    left, top, right, bottom = unit.region
    return _worker.Shaded({"color": np.zeros((bottom - top, right - left, 4), np.float32)}, [], own_address(), seconds)


def host(address: str, count: int, nanoseconds: float, folder: str) -> None:
    """A process with some workers."""
    _worker.shade = lambda *arguments: wait(nanoseconds, *arguments)
    options = {"nthreads": 1, "local_directory": folder, "memory_limit": 0, "dashboard": False}

    async def start() -> Any:
        return await distributed.Worker(address, **options)

    async def work() -> None:
        workers: list[Any] = []
        while len(workers) < count:
            workers += await asyncio.gather(*(start() for _ in range(min(STARTING, count - len(workers)))))
        await asyncio.gather(*(worker.finished() for worker in workers))

    with dask.config.set(QUIET):
        logging.getLogger("distributed").setLevel(logging.ERROR)
        asyncio.run(work())


def scheduler(queue: Any) -> None:
    """Tells its address, and then its processor time four times a second."""

    async def serve() -> None:
        made = await distributed.Scheduler(host="127.0.0.1", port=0, dashboard=False)
        queue.put(made.address)

        async def tell() -> None:
            while True:
                queue.put(time.process_time())
                await asyncio.sleep(0.25)

        telling = asyncio.ensure_future(tell())
        await made.finished()
        telling.cancel()

    with dask.config.set(QUIET):
        logging.getLogger("distributed").setLevel(logging.ERROR)
        asyncio.run(serve())


class Middle:
    """A progress that looks at what comes between a quarter and three quarters of the work, without its beginning, at
    which workers get ready."""

    def __init__(self, queue: Any) -> None:
        self._queue = queue
        self._scheduler = 0.0
        self.marks: list[tuple[float, float, float, float]] = []

    def look(self, done: float) -> None:
        while not self._queue.empty():
            self._scheduler = self._queue.get()
        if 0.25 <= done <= 0.75:
            self.marks.append((done, time.perf_counter(), time.process_time(), self._scheduler))


def measure(client: Any, queue: Any, tile: tuple[int, int], count: int, possible: float, folder: Path) -> None:
    columns = min(32, 65536 // tile[0])
    rows = -(-count // columns)
    middle = Middle(queue)
    begun = time.perf_counter()
    fernwick.cluster.bake(
        client, fernwick.Graph(fernwick.Checker()), folder / "a.exr", columns * tile[0], rows * tile[1], tile=tile,
        memory=2**31, progress=middle.look, compression="none",
    )  # fmt: skip
    passed = time.perf_counter() - begun
    share, seconds, mine, scheduled = (last - first for first, last in zip(middle.marks[0], middle.marks[-1]))
    tiles = share * columns * rows
    print(f"  {tile[0]}x{tile[1]}: {columns * rows} in {passed:.0f} s, in the middle {tiles / seconds:.0f} a second of "
          f"{possible:.0f}, {tiles / seconds * tile[0] * tile[1] / 1e6:.1f} Mpixel/s; {mine / tiles * 1000:.1f} ms of "
          f"the client and {scheduled / tiles * 1000:.1f} ms of the scheduler a tile; load {os.getloadavg()[0]:.1f}",
          flush=True)  # fmt: skip


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--workers", type=int, default=1000)
    parser.add_argument("--processes", type=int, default=4)
    parser.add_argument("--nanoseconds", type=float, default=5000)
    parser.add_argument("--tiles", default="128x128,512x256")
    parser.add_argument("--count", type=int, default=8000)
    options = parser.parse_args()
    context = multiprocessing.get_context("spawn")
    queue: Any = context.Queue()
    with tempfile.TemporaryDirectory() as folder:
        processes = [context.Process(target=scheduler, args=(queue,))]
        processes[0].start()
        address = queue.get()
        share = options.workers // options.processes
        begun = time.perf_counter()
        arguments = (address, share, options.nanoseconds, folder)
        processes += [context.Process(target=host, args=arguments) for _ in range(options.processes)]
        for process in processes[1:]:
            process.start()
        try:
            with dask.config.set(QUIET), distributed.Client(address, direct_to_workers=True) as client:
                client.wait_for_workers(share * options.processes)
                print(f"{share * options.processes} workers, started in {time.perf_counter() - begun:.0f} s; "
                      f"{options.nanoseconds:g} ns a pixel; load {os.getloadavg()[0]:.1f}", flush=True)  # fmt: skip
                for text in options.tiles.split(","):
                    width, height = map(int, text.split("x"))
                    possible = share * options.processes / (width * height * options.nanoseconds * 1e-9)
                    measure(client, queue, (width, height), options.count, possible, Path(folder))
        finally:
            for process in processes:
                process.kill()


if __name__ == "__main__":
    main()

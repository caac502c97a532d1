"""How far one scheduler and one client go: many workers, whose shading is replaced by a recorded time.

    python3 bench/cluster/simulate.py [--workers 1000] [--nanoseconds 5000] [--tiles 128x128,512x256] [--count 2000]

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


def latest(queue: Any) -> float:
    value = 0.0
    while not queue.empty():
        value = queue.get()
    return value


def measure(client: Any, queue: Any, tile: tuple[int, int], count: int, possible: float, folder: Path) -> None:
    columns = min(32, 65536 // tile[0])
    rows = -(-count // columns)
    count = columns * rows
    marks: list[tuple[float, float]] = []
    latest(queue)
    time.sleep(0.5)
    before, mine, begun = latest(queue), time.process_time(), time.perf_counter()
    fernwick.cluster.bake(
        client, fernwick.Graph(fernwick.Checker()), folder / "a.exr", columns * tile[0], rows * tile[1], tile=tile,
        memory=2**31, progress=lambda done: marks.append((time.perf_counter(), done)), compression="none",
    )  # fmt: skip
    passed, used = time.perf_counter() - begun, time.process_time() - mine
    time.sleep(0.5)
    scheduled = latest(queue) - before
    first, last = (next(at for at, done in marks if done >= share) for share in (0.25, 0.75))
    rate = count / 2 / (last - first)
    print(f"  {tile[0]}x{tile[1]}: {count} in {passed:.1f} s, {rate:.0f} a second in the middle of {possible:.0f}, "
          f"{rate * tile[0] * tile[1] / 1e6:.1f} Mpixel/s; a tile takes {used / count * 1000:.2f} ms of the client and "
          f"{scheduled / count * 1000:.2f} ms of the scheduler", flush=True)  # fmt: skip


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--workers", type=int, default=1000)
    parser.add_argument("--processes", type=int, default=4)
    parser.add_argument("--nanoseconds", type=float, default=5000)
    parser.add_argument("--tiles", default="128x128,512x256")
    parser.add_argument("--count", type=int, default=2000)
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

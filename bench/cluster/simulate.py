"""How far one scheduler and one client go: many workers, whose shading is replaced by a recorded time.

    python3 bench/cluster/simulate.py [--workers 1000] [--seconds 10] [--tiles 4000]

Scheduler, client and transport are those of a real run; the workers are Dask's own too, as objects in a few processes
instead of a process each, and a tile is a wait of `--seconds` that answers as many bytes as its pixels would have.
Prints tiles a second against what the workers could shade, and what processor time client and scheduler took.
"""

import argparse
import asyncio
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
from fernwick.cluster._dask import announce


def wait(seconds: float, job_hash: str, unit: Any, contents: Any) -> _worker.Shaded:
    worker = announce(job_hash)
    time.sleep(seconds)
    left, top, right, bottom = unit.region
    return _worker.Shaded({"color": np.zeros((bottom - top, right - left, 4), np.float32)}, [], worker, seconds)


def host(address: str, count: int, seconds: float, folder: str) -> None:
    """A process with some workers."""
    _worker.shade = lambda *arguments: wait(seconds, *arguments)

    async def work() -> None:
        options = {"nthreads": 1, "local_directory": folder, "heartbeat_interval": "10s", "memory_limit": 0, "dashboard": False}
        workers = [await distributed.Worker(address, **options) for _ in range(count)]
        await asyncio.gather(*(worker.finished() for worker in workers))

    with dask.config.set({"distributed.worker.use-file-locking": False, "distributed.worker.profile.enabled": False}):
        asyncio.run(work())


def scheduler(port: int, queue: Any) -> None:
    async def serve() -> None:
        made = await distributed.Scheduler(host="127.0.0.1", port=port, dashboard=False)
        queue.put(made.address)

        async def used() -> None:
            while True:
                queue.put(time.process_time())
                await asyncio.sleep(0.25)

        asyncio.ensure_future(used())
        await made.finished()

    asyncio.run(serve())


def latest(queue: Any) -> float:
    value = 0.0
    while not queue.empty():
        value = queue.get()
    return value


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--workers", type=int, default=1000)
    parser.add_argument("--processes", type=int, default=4)
    parser.add_argument("--seconds", type=float, default=10)
    parser.add_argument("--tiles", type=int, default=4000)
    parser.add_argument("--tile", type=int, nargs=2, default=(128, 128))
    options = parser.parse_args()
    context = multiprocessing.get_context("spawn")
    queue: Any = context.Queue()
    with tempfile.TemporaryDirectory() as folder:
        processes = [context.Process(target=scheduler, args=(0, queue))]
        processes[0].start()
        address = queue.get()
        share = options.workers // options.processes
        processes += [context.Process(target=host, args=(address, share, options.seconds, folder)) for _ in range(options.processes)]
        for process in processes[1:]:
            process.start()
        try:
            with distributed.Client(address, direct_to_workers=True) as client:
                client.wait_for_workers(share * options.processes)
                print(f"{share * options.processes} workers, load {os.getloadavg()[0]:.1f}", flush=True)
                columns = 32
                width = columns * options.tile[0]
                height = -(-options.tiles // columns) * options.tile[1]
                graph = fernwick.Graph(fernwick.Checker())
                marks: list[tuple[float, float]] = []
                latest(queue)
                time.sleep(1)
                before, mine, begun = latest(queue), time.process_time(), time.perf_counter()
                fernwick.cluster.bake(
                    client, graph, Path(folder) / "a.exr", width, height, tile=tuple(options.tile), memory=2**32,
                    progress=lambda done: marks.append((time.perf_counter(), done)), compression="none",
                )  # fmt: skip
                passed = time.perf_counter() - begun
                used = time.process_time() - mine
                time.sleep(0.6)
                scheduled = latest(queue) - before
        finally:
            for process in processes:
                process.kill()
    count = columns * height // options.tile[1]
    first, last = (next(at for at, done in marks if done >= share) for share in (0.25, 0.75))
    rate = count / 2 / (last - first)
    possible = share * options.processes / options.seconds
    print(f"{count} tiles of {options.seconds:g} s in {passed:.1f} s: {rate:.0f} a second in the middle, of {possible:.0f} that "
          f"the workers could; {used / count * 1000:.2f} ms of the client's processor time and {scheduled / count * 1000:.2f} ms "
          f"of the scheduler's a tile")  # fmt: skip


if __name__ == "__main__":
    main()

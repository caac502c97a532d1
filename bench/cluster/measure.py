"""What work on Dask costs on this machine: processor time a task, and efficiency by the number of workers.

    python3 bench/cluster/measure.py [--graph examples/weave-rounded.json] [--side 4096] [--workers 1,2,4,8]

FERNWICK_COMMAND names the command that is measured beside it. Files go to a temporary folder. `--large 65536` bakes one
picture of that side, with a cheap graph unless one is given, and tells the most memory that client and workers took.
"""

import argparse
import os
import resource
import subprocess
import tempfile
import time
from collections.abc import Callable
from pathlib import Path
from typing import Any

import numpy as np

import fernwick
import fernwick.cluster
from fernwick.cluster._dask import connect

ROOT = Path(__file__).resolve().parents[2]
COMMAND = os.environ.get("FERNWICK_COMMAND", ROOT / "build/release/tools/fernwick")


def processor_time(client: Any) -> float:
    """Seconds of this process, which has the scheduler too, and of all workers."""
    return time.process_time() + sum(client.run(time.process_time).values())


def passed(work: Callable[[], object]) -> tuple[float, float]:
    """Seconds of the clock and of this process."""
    begun, used = time.perf_counter(), time.process_time()
    work()
    return time.perf_counter() - begun, time.process_time() - used


def alone(side: int, tile: tuple[int, int], folder: Path) -> None:
    """The tiles of a cheap graph, shaded and written by this process."""
    graph = fernwick.Graph(fernwick.Checker())
    file = str(folder / "alone.exr")
    writer = fernwick._native.RowWriter(file, side, side, None, "color", [], 0, False, False, "", 0)
    for top in range(0, side, tile[1]):
        tiles = [(left, top, left + tile[0], top + tile[1]) for left in range(0, side, tile[0])]
        writer.write(np.concatenate([graph.bake(side, region=each, threads=1) for each in tiles], axis=1), [])
    writer.finish()


def overhead(client: Any, side: int, tile: tuple[int, int], idle: float, folder: Path) -> float:
    """Seconds of processor time that the same tiles take more on workers."""
    used = passed(lambda: alone(side, tile, folder))[1]
    before = processor_time(client)
    graph = fernwick.Graph(fernwick.Checker())
    clock = passed(lambda: fernwick.cluster.bake(client, graph, folder / "many.exr", side, tile=tile))[0]
    spent = processor_time(client) - before
    assert (folder / "many.exr").read_bytes() == (folder / "alone.exr").read_bytes()
    return spent - used - idle * clock


def measure_tasks(tile: tuple[int, int], sides: tuple[int, int], workers: list[int], folder: Path) -> None:
    """What a task takes, by a small and a large picture, and what a job takes before its first one."""
    few, many = (side * side // (tile[0] * tile[1]) for side in sides)
    alone(sides[0], tile, folder)
    print(f"{few} and {many} tasks of {tile[0]}x{tile[1]}, beside shading and writing, in processor time:")
    for number in workers:
        with connect(None, number) as client:
            fernwick.cluster.bake(client, fernwick.Graph(fernwick.Checker()), folder / "warm.exr", 512, tile=tile)
            before = processor_time(client)
            time.sleep(4)
            idle = (processor_time(client) - before) / 4
            first, second = (overhead(client, side, tile, idle, folder) for side in sides)
        each = (second - first) / (many - few)
        print(f"  {number} workers: {each * 1000:.1f} ms a task and {first - few * each:.2f} s a job; at rest "
              f"{idle * 100:.1f} % of a processor; load {os.getloadavg()[0]:.1f}", flush=True)  # fmt: skip


def measure_workers(path: Path, side: int, workers: list[int], samples: int, folder: Path) -> None:
    graph = fernwick.Graph.load(path)
    size = f"{side}x{side}"

    def command(threads: int) -> tuple[float, float]:
        file = folder / "command.exr"
        arguments = ["bake", path, "--size", size, "--samples", samples, "--threads", threads, "-o", file]
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        clock = passed(lambda: subprocess.run([str(each) for each in (COMMAND, *arguments)], check=True))[0]
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        return clock, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime

    def cluster(count: int) -> tuple[float, float]:
        with connect(None, count) as client:
            fernwick.cluster.bake(client, graph, folder / "warm.exr", 512, tile=(128, 128))
            before = processor_time(client)
            work = lambda: fernwick.cluster.bake(
                client, graph, folder / "cluster.exr", side, samples=samples
            )  # noqa: E731
            return passed(work)[0], processor_time(client) - before

    print(f"{path.name}, {size}, {samples} samples, tiles of 2048x256, load {os.getloadavg()[0]:.1f} before:")
    for count in workers:
        threads = min(count, os.cpu_count() or 1)
        alone, together = command(threads), cluster(count)
        print(f"  {count} workers: {together[0]:.1f} s, {together[1]:.1f} s of processor time; the command with "
              f"{threads} threads: {alone[0]:.1f} s, {alone[1]:.1f} s; ratios {alone[0] / together[0]:.2f}, "
              f"{alone[1] / together[1]:.2f}", flush=True)  # fmt: skip
    assert (folder / "command.exr").read_bytes() == (folder / "cluster.exr").read_bytes()


def most_memory() -> float:
    """MiB that this process has taken at most."""
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024


def measure_large(path: Path | None, side: int, memory: int, folder: Path) -> None:
    graph = fernwick.Graph(fernwick.Checker(countU=64, countV=64)) if path is None else fernwick.Graph.load(path)
    with connect(None, 2) as client:
        print(
            f"at rest the client takes {most_memory():.0f} MiB, workers {list_of(client.run(most_memory))}", flush=True
        )
        clock = passed(
            lambda: fernwick.cluster.bake(
                client, graph, folder / "large.tif", side, tiled=True, memory=memory, compression="zip"
            )
        )[0]
        workers = client.run(most_memory)
    size = (folder / "large.tif").stat().st_size
    print(f"{side}x{side} with memory={memory / 2**20:.0f} MiB: {clock:.0f} s, load {os.getloadavg()[0]:.1f}, "
          f"{size / 2**20:.0f} MiB of file, the client with the scheduler took {most_memory():.0f} MiB at most, "
          f"workers {list_of(workers)}")  # fmt: skip


def list_of(found: dict[str, float]) -> str:
    return " and ".join(f"{each:.0f} MiB" for each in found.values())


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--graph", type=Path)
    parser.add_argument("--side", type=int, default=4096)
    parser.add_argument("--samples", type=int, default=4)
    parser.add_argument("--workers", default="1,2,4,8")
    parser.add_argument("--large", type=int)
    parser.add_argument("--memory", type=int, default=2**30)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        if options.large:
            measure_large(options.graph, options.large, options.memory, Path(name))
            return
        workers = [int(each) for each in options.workers.split(",")]
        if not options.graph:
            measure_tasks((128, 128), (2048, 5120), workers, Path(name))
            measure_tasks((2048, 256), (4096, 8192), workers, Path(name))
        measure_workers(
            options.graph or ROOT / "examples/weave-rounded.json", options.side, workers, options.samples, Path(name)
        )


if __name__ == "__main__":
    main()

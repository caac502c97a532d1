"""Renders 48 frames by four workers, kills one of them in the middle, and compares each frame with one process.

    python3 bench/cluster/sequence.py STRIP [--side 192]

STRIP is a picture of all frames, twelve side by side.
"""

import argparse
import hashlib
import os
import signal
import tempfile
from pathlib import Path

import numpy as np

import fernwick
import fernwick.cluster
from fernwick.cluster._dask import connect

GRAPH = Path(__file__).resolve().parents[2] / "examples/ripple-sequence.json"
FRAMES = np.linspace(1, 24, 48)
COLUMNS = 12


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("strip")
    parser.add_argument("--side", type=int, default=192)
    options = parser.parse_args()
    graph = fernwick.Graph.load(GRAPH)
    side = options.side
    killed: list[int] = []
    done: list[float] = []
    with tempfile.TemporaryDirectory() as folder, connect(None, 4) as client:
        victim = next(iter(client.run(os.getpid).values()))

        def progress(share: float) -> None:
            done.append(share)
            if share > 0.4 and not killed:
                os.kill(victim, signal.SIGKILL)
                killed.append(victim)

        name = f"{folder}/pond.{{frame}}.png"
        files = fernwick.cluster.render(client, graph, name, side, frames=FRAMES, progress=progress)
        print(f"{len(files)} frames; worker {killed[0]} was killed after {int(0.4 * len(files)) + 1} of them")
        together = hashlib.sha256()
        alone = hashlib.sha256()
        pictures = []
        for frame, file in zip(FRAMES, files):
            picture = graph.at(frame).render(side)
            fernwick.save(f"{folder}/alone.png", picture)
            one, other = file.read_bytes(), Path(f"{folder}/alone.png").read_bytes()
            assert one == other, f"frame {frame} differs"
            together.update(one)
            alone.update(other)
            pictures.append(picture)
    print(f"four workers  {together.hexdigest()}\none process   {alone.hexdigest()}")
    rows = [np.concatenate(pictures[i : i + COLUMNS], axis=1) for i in range(0, len(pictures), COLUMNS)]
    fernwick.save(options.strip, np.concatenate(rows))


if __name__ == "__main__":
    main()

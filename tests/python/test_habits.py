"""Habits of Python: interruption, threads, processes, references, progress, and life without NumPy."""

import gc
import multiprocessing
import os
import pickle
import signal
import subprocess
import sys
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np
import pytest
from conftest import EXAMPLES, PACKAGE, run_python

import fernwick


def heavy():
    graph = fernwick.Graph(fernwick.Iridescent(fSubShader=fernwick.Checker()))
    uv = np.zeros((20_000_000, 2), np.float32)
    return {
        "bake": lambda: graph.bake(16384, samples=16, region=(0, 0, 4096, 4096)),
        "shade": lambda: graph.shade(uv=uv),
    }


@pytest.mark.parametrize("what", ["bake", "shade"])
def test_ctrl_c_interrupts_within_a_tenth_of_a_second(what):
    work = heavy()[what]

    def taken():
        sent = []

        def interrupt():
            sent.append(time.perf_counter())
            os.kill(os.getpid(), signal.SIGINT)

        threading.Timer(0.4, interrupt).start()
        with pytest.raises(KeyboardInterrupt):
            work()
        return time.perf_counter() - sent[0]

    assert any(taken() < 0.1 for _ in range(5))  # a busy machine may be late, but not each time
    assert fernwick.Graph(fernwick.Checker()).bake(8).shape == (8, 8, 4)  # all goes on


def test_progress_rises_and_can_end_the_work():
    graph = fernwick.Graph(fernwick.Iridescent())
    shares = []
    graph.bake(2048, samples=4, progress=shares.append)
    assert shares == sorted(shares) and all(0 <= share <= 1 for share in shares) and shares

    class Enough(Exception):
        pass

    def end(share):
        raise Enough

    with pytest.raises(Enough):
        graph.bake(8192, samples=16, progress=end)


def test_a_graph_serves_many_threads():
    graph = fernwick.Graph.load(EXAMPLES / "ripple-sequence.json")
    wanted = [each.bake(48).tobytes() for each in graph.frames(1, 8)]
    with ThreadPoolExecutor(8) as threads:
        for _ in range(3):
            made = threads.map(lambda frame: graph.at(frame).bake(48).tobytes(), range(1, 9))
            assert list(made) == wanted
        samples = list(threads.map(lambda _: graph.shade(uv=np.full((999, 2), 0.4)).tobytes(), range(16)))
    assert len(set(samples)) == 1


def test_other_threads_run_while_one_shades():
    graph = fernwick.Graph(fernwick.Iridescent())
    seen = threading.Event()

    def count():
        before = time.perf_counter()
        while time.perf_counter() - before < 0.05:
            pass
        seen.set()

    thread = threading.Thread(target=count)
    thread.start()
    while not seen.is_set():
        graph.bake(512, threads=1)
    thread.join()


def test_graphs_go_to_other_processes():
    graph = fernwick.Graph(fernwick.Picture(np.random.default_rng(3).random((4, 4, 3))))
    with multiprocessing.get_context("spawn").Pool(1) as pool:
        (made,) = pool.map(fernwick.Graph.bake, [graph])
    assert np.array_equal(made, graph.bake())


def test_a_process_may_end_while_a_thread_shades():
    program = """
import threading, time, fernwick
graph = fernwick.Graph(fernwick.Iridescent())
threading.Thread(target=lambda: [graph.bake(256, progress=id) for _ in range(1000)], daemon=True).start()
time.sleep(0.3)
"""
    assert not run_python(program).stderr


def resident():
    """Bytes of memory in use."""
    return int(Path("/proc/self/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def test_nothing_is_left_after_ten_thousand_rounds():
    pixels = np.random.default_rng(4).random((4, 4, 3), np.float32)
    mesh = fernwick.Mesh(np.eye(3), [[0, 1, 2]])
    uv = np.zeros((3, 2), np.float32)
    color, output = fernwick.Color("#c83c14"), "color"

    def rounds(count):
        for i in range(count):
            source = fernwick.Picture(pixels)
            weave = fernwick.Weave(fRepeatU=3, fWarpSubShader=color, fGapSubShader=source)
            if i % 20 == 0:
                graph = fernwick.Graph(weave, fernwick.Scene([fernwick.Element("a", mesh)]))
                graph.bake(2, output=output)
                graph.bake(2, onto=mesh)
                graph.shade(uv=uv)
                pickle.loads(pickle.dumps(graph))
            for wrong in (lambda: weave.fWarpWidth.__setitem__(0, "x"), lambda: graph.bake(0)):
                try:
                    wrong()
                except ValueError:
                    pass

    rounds(1000)
    gc.collect()
    watched = (pixels, mesh, uv, color, output, None, fernwick.Weave, fernwick.GraphError)
    before = [sys.getrefcount(each) for each in watched], len(gc.get_objects()), resident()
    rounds(9000)
    gc.collect()
    after = [sys.getrefcount(each) for each in watched], len(gc.get_objects()), resident()
    for name_before, name_after in zip(before[0], after[0]):
        assert abs(name_after - name_before) < 100
    assert after[1] - before[1] < 200
    if "asan" not in os.environ.get("LD_PRELOAD", ""):  # which keeps what is freed for a while
        assert after[2] - before[2] < 8 << 20


def test_arrays_live_on_without_their_graph():
    picture = fernwick.Graph(fernwick.Checker()).bake(64)
    answer = fernwick.Graph(fernwick.Checker()).shade(uv=np.random.default_rng(1).random((100, 2)))
    gc.collect()
    copies = [np.zeros((64, 64, 4), np.float32) for _ in range(50)]
    assert picture.max() == 1 and answer.alpha.min() == 1 and len(copies) == 50
    picture[:] = 0  # is the receiver's


WITHOUT_NUMPY = """
import sys
class Blocker:
    def find_spec(self, name, path=None, target=None):
        if name.split(".")[0] == "numpy":
            raise ImportError("no NumPy here")
sys.meta_path.insert(0, Blocker())
import fernwick
weave = fernwick.Weave(fRepeatU=4, fWarpSubShader=fernwick.Color("#c83c14"), fWarpWidth=[1, 2, 3, 4, 5])
print(fernwick.describe("Weave"), weave, fernwick.library())
graph = fernwick.Graph(weave, fernwick.Scene([fernwick.Element("Ball", fernwick.Sphere(2))]))
assert fernwick.Graph(graph.to_json()) == graph and graph.outputs
assert fernwick.validate(only="exports")
try:
    graph.bake(8)
except ImportError as error:
    print(error)
else:
    raise SystemExit("no error")
assert "numpy" not in sys.modules
"""


def test_without_numpy_all_but_arrays_works():
    assert "install it with" in run_python(WITHOUT_NUMPY).stdout


def test_import_is_quick_and_quiet():
    made = run_python("import sys, fernwick; print('numpy' in sys.modules, len(fernwick.__all__))")
    assert made.stdout.startswith("False") and not made.stderr
    assert fernwick.__all__ == sorted(set(fernwick.__all__), key=fernwick.__all__.index)
    assert all(hasattr(fernwick, name) for name in fernwick.__all__)


def test_the_library_is_found_or_missed_with_a_reason(tmp_path):
    environment = {**os.environ, "FERNWICK_LIBRARY": str(tmp_path / "nothing.so")}
    made = subprocess.run(
        [sys.executable, "-c", "import fernwick; fernwick.library()"], capture_output=True, text=True, env=environment
    )
    assert f"LibraryError: FERNWICK_LIBRARY: {tmp_path}/nothing.so: there is no such file" in made.stderr
    assert (PACKAGE / "fernwick/py.typed").is_file()

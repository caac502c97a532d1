"""Measures what Python adds to bakes and to the shading of samples, and prints a table. scripts/bench runs it.

measure.py TIMES, with the program fernwick_python_times and the package on PYTHONPATH. A round measures both; a cell is the
best of all rounds.
"""
import json
import pathlib
import subprocess
import sys
import time

import numpy as np

import fernwick

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / 'examples'
SIDE = 2048
SAMPLES = 1 << 20
ROUNDS = 12  # a machine that others use has good and bad moments
REPEATS = 3


def seconds(work):
    best = float('inf')
    for _ in range(REPEATS):
        start = time.perf_counter()
        work()
        best = min(best, time.perf_counter() - start)
    return best


def measure(times, name):
    graph = fernwick.Graph.load(EXAMPLES / name)
    uv = np.random.default_rng(1).random((SAMPLES, 2), dtype=np.float32)
    rounds = []
    for _ in range(ROUNDS):
        answer = subprocess.run([times, EXAMPLES / name, str(SIDE), str(SAMPLES), str(REPEATS)], check=True,
                                capture_output=True, text=True)
        without = json.loads(answer.stdout)
        rounds.append((without['bake'], seconds(lambda: graph.bake(SIDE)), without['shader'],
                       seconds(lambda: graph.shade(uv=uv))))
    return [min(column) for column in zip(*rounds)]


def main(times):
    print(f'Bakes of {SIDE} x {SIDE} on all threads, and {SAMPLES} samples in one call.\n')
    print('| | bake in Python, ms | without | ratio | sample in Python, ns | shader alone | above it |')
    print('| --- | ---: | ---: | ---: | ---: | ---: | ---: |')
    for name in ('key.json', 'spoke-angle.json', 'weave-rounded.json', 'drip-center.json'):
        bare, baked, shader, shaded = measure(times, name)
        print(f'| {name} | {1e3 * baked:.1f} | {1e3 * bare:.1f} | {baked / bare:.2f} | {1e9 * shaded / SAMPLES:.1f} | '
              f'{1e9 * shader / SAMPLES:.1f} | {1e9 * (shaded - shader) / SAMPLES:.1f} |')


main(*sys.argv[1:])

"""The interpreter's lock: let go where nobody can change the arguments, kept elsewhere."""

import threading
import time

import numpy as np
import pytest

import tessolv as ts
from meshes import grid, shuffled

BIG = grid(ts.EL_TETRA4, 40)
FROZEN = BIG._replace(pos=ts.freeze(BIG.pos), connect=ts.freeze(BIG.connect))


def turns_of_others(f):
    """How often another thread gets its turn while f runs, and for how long f runs."""
    state = {"turns": 0, "on": True}
    running = threading.Event()

    def count():
        while state["on"]:
            state["turns"] += 1
            running.set()
            time.sleep(0.0005)

    other = threading.Thread(target=count)
    other.start()
    running.wait()
    before, start = state["turns"], time.perf_counter()
    f()
    turns, seconds = state["turns"] - before, time.perf_counter() - start
    state["on"] = False
    other.join()
    return turns, seconds


CALLS = {
    "get_neighbors": lambda mesh: ts.get_neighbors(mesh.connect, mesh.type, raw=True),
    "copy_edges": lambda mesh: ts.copy_edges(mesh.connect, mesh.type),
    "shape_qualities": lambda mesh: ts.shape_qualities(mesh.pos, mesh.connect, mesh.type),
    "merge": lambda mesh: ts.merge(mesh.pos, mesh.connect, 1e-3),
    "NodeDetector": lambda mesh: ts.NodeDetector(mesh.pos).closest_to_nodes(mesh.connect[:9000, 0].astype(np.int64)),
}


@pytest.mark.parametrize("name", CALLS)
def test_frozen_arguments_let_others_run(name):
    def three_times(mesh):
        return lambda: [CALLS[name](mesh) for _ in range(3)]

    free, _ = turns_of_others(three_times(FROZEN))
    kept, _ = turns_of_others(three_times(BIG))
    assert free > 4 * max(kept, 1)


def test_calls_on_shared_frozen_arrays_agree():
    wanted = {name: CALLS[name](FROZEN) for name in ("get_neighbors", "copy_edges", "shape_qualities")}
    failures = []

    def work(name):
        for _ in range(3):
            if not np.array_equal(CALLS[name](FROZEN), wanted[name]):
                failures.append(name)

    threads = [threading.Thread(target=work, args=(name,)) for name in wanted for _ in range(2)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert failures == []


@pytest.mark.parametrize("freeze", [ts.freeze, np.copy], ids=["frozen", "writable"])
def test_queries_and_insertions_of_one_detector(freeze):
    mesh = shuffled(ts.EL_TETRA4, 12, 1, drop=0)
    pos = freeze(mesh.pos)
    half = np.arange(len(pos) // 2)
    detector = ts.NodeDetector(pos, nodes=half)
    queries = ts.freeze(mesh.pos[half])
    failures = []
    stop = threading.Event()

    def ask():
        while not stop.is_set():
            if not np.array_equal(detector.closest(queries), half):
                failures.append("closest")
            if len(detector.in_box([-9, -9, -9], [99, 99, 99])) < len(half):
                failures.append("in_box")

    threads = [threading.Thread(target=ask) for _ in range(3)]
    for thread in threads:
        thread.start()
    for node in range(len(half), len(pos)):
        detector.insert([node])
    copy = detector.copy()
    for _ in range(5):
        detector.reinit(pos)
    stop.set()
    for thread in threads:
        thread.join()
    assert failures == [] and len(detector) == len(copy) == len(pos)

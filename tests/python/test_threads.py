"""The interpreter's lock: let go where nobody can change the arguments, kept elsewhere."""

import contextlib
import sys
import threading
import time

import numpy as np
import pytest

import tessolv as ts
from meshes import grid, shuffled
from tessolv import _tessolv

BIG = grid(ts.EL_TETRA4, 40)
FROZEN = BIG._replace(pos=ts.freeze(BIG.pos), connect=ts.freeze(BIG.connect))


@contextlib.contextmanager
def counting_thread():
    """Another thread that counts the times it gets the lock; nobody is asked to hand it over, it must be let go."""
    turns, on, running = [0], [True], threading.Event()

    def count():
        while on[0]:
            turns[0] += 1
            running.set()
            time.sleep(0.0001)

    other = threading.Thread(target=count)
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e6)
    try:
        other.start()
        running.wait()
        yield turns
    finally:
        on[0] = False
        sys.setswitchinterval(interval)
        other.join()


CALLS = {
    "get_neighbors": lambda mesh: ts.get_neighbors(mesh.connect, mesh.type, raw=True),
    "copy_edges": lambda mesh: ts.copy_edges(mesh.connect, mesh.type),
    "shape_qualities": lambda mesh: ts.shape_qualities(mesh.pos, mesh.connect, mesh.type),
    "merge": lambda mesh: ts.merge(mesh.pos, mesh.connect, 1e-3),
    "NodeDetector": lambda mesh: ts.NodeDetector(mesh.pos).closest(mesh.pos),
}


def unlocked(f):
    before = _tessolv.unlocked_calls()
    f()
    return _tessolv.unlocked_calls() - before


@pytest.mark.parametrize("name", CALLS)
def test_the_lock_is_kept_unless_every_array_is_frozen(name):
    small = shuffled(ts.EL_TETRA4, 3, 1)
    frozen = small._replace(pos=ts.freeze(small.pos), connect=ts.freeze(small.connect))
    read_only = small._replace(connect=small.connect.copy())
    read_only.connect.flags.writeable = False
    converted = small._replace(pos=small.pos.tolist(), connect=small.connect.astype(np.int64))
    assert unlocked(lambda: CALLS[name](frozen)) > 0
    assert unlocked(lambda: CALLS[name](converted)) > 0
    if name != "NodeDetector":
        assert unlocked(lambda: CALLS[name](read_only)) == unlocked(lambda: CALLS[name](small)) == 0


def test_out_and_histograms_keep_the_lock():
    mesh = grid(ts.EL_TETRA4, 2)
    frozen = mesh._replace(pos=ts.freeze(mesh.pos), connect=ts.freeze(mesh.connect))
    assert unlocked(lambda: ts.translate(frozen.pos, [1, 0, 0])) == 1
    assert unlocked(lambda: ts.translate(frozen.pos, [1, 0, 0], out=mesh.pos)) == 0
    assert unlocked(lambda: ts.merge(frozen.pos, frozen.connect, out=mesh.connect)) == 0
    assert unlocked(lambda: ts.shape_qualities(frozen.pos, frozen.connect, mesh.type, ts.Histogram())) == 0


@pytest.mark.parametrize("name", CALLS)
def test_frozen_arguments_let_others_run(name):
    with counting_thread() as turns:
        before, end = turns[0], time.monotonic() + 60
        while turns[0] == before and time.monotonic() < end:
            CALLS[name](FROZEN)
        assert turns[0] > before


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

"""The interpreter's lock: let go where nobody can change the arguments, kept elsewhere."""

import contextlib
import inspect
import re
import sys
import threading
import time
import weakref
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import numpy as np
import pytest

import tessolv as ts
from meshes import grid, shuffled
from tessolv import _tessolv

BIG = grid(ts.EL_TETRA4, 40)
NODES = np.arange(60)
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
    "NodeDetector": lambda mesh: ts.NodeDetector(mesh.pos).closest_to_nodes(NODES),
}


@pytest.mark.parametrize("name", CALLS)
def test_frozen_arguments_let_others_run(name):
    with counting_thread() as turns:
        before, end = turns[0], time.monotonic() + 60
        while turns[0] == before and time.monotonic() < end:
            CALLS[name](FROZEN)
        assert turns[0] > before


# A detector lets the lock go for as long as it waits for its own one.
@pytest.mark.parametrize("name", [name for name in CALLS if name != "NodeDetector"])
def test_arguments_that_others_can_change_keep_them_waiting(name):
    with counting_thread() as turns:
        before = turns[0]
        CALLS[name](BIG)
        assert turns[0] == before


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


def every_operation(tmp):
    """Every operation of which the page says that it can let the lock go: calls that take arrays of a kind."""
    mesh = shuffled(ts.EL_TETRA4, 4, 1)
    triangles = mesh.connect[:, :3].copy()
    metrics = np.tile(np.array([1, 0, 1, 0, 0, 1], np.float32), (len(mesh.pos), 1))
    bases = np.tile([1.0, 0, 0, 0, 1, 0], (len(mesh.pos), 1))
    neighbors = ts.get_neighbors(mesh.connect, mesh.type, raw=True)
    edges = ts.copy_edges(mesh.connect, mesh.type)
    nodes = np.arange(len(mesh.pos), dtype=np.uint32)
    sizes = np.ones(len(mesh.pos), np.float32)
    stl, obj = tmp / "part.stl", tmp / "part.obj"
    ts.STL_output(stl, mesh.pos, triangles, False)
    obj.write_text("v 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n")

    def calls(taken):
        pos, connect, tria, table, lines, list_, size, field, plane = map(
            taken, (mesh.pos, mesh.connect, triangles, neighbors, edges, nodes, sizes, metrics, bases)
        )
        number = iter(range(1000))

        def file():
            return tmp / f"{threading.get_ident()}-{next(number)}"

        return {
            "append": lambda: ts.append(connect, connect),
            "are_valid_metrics": lambda: ts.are_valid_metrics(field),
            "change_indices": lambda: ts.change_indices(connect, list_),
            "check": lambda: ts.check(pos, {mesh.type: connect}).to_dict(),
            "check_IDs": lambda: ts.check_IDs(connect, len(pos), mesh.type),
            "clip": lambda: ts.clip(pos, connect, [2, 0, 0], [1, 0, 0]),
            "copy_edges": lambda: ts.copy_edges(connect, mesh.type),
            "copy_mesh": lambda: ts.copy_mesh(pos, connect),
            "count_unique_indices": lambda: ts.count_unique_indices(connect),
            "edge_lengths": lambda: ts.edge_lengths(pos, lines),
            "edge_qualities": lambda: ts.edge_qualities(pos, connect, mesh.type, size),
            "ensight_output": lambda: ts.ensight_output(file(), pos, connect, mesh.type),
            "get_IDs": lambda: ts.get_IDs(connect, connect),
            "get_ancestors": lambda: ts.get_ancestors(connect),
            "get_boundaries": lambda: ts.get_boundaries(connect, table, mesh.type),
            "get_connex_parts": lambda: ts.get_connex_parts(table),
            "get_neighbors": lambda: ts.get_neighbors(connect, mesh.type),
            "inc_bounding_box": lambda: ts.inc_bounding_box(pos),
            "medit_output": lambda: ts.medit_output(file(), pos, connect, mesh.type),
            "medit_tensor": lambda: ts.medit_tensor(file(), field),
            "merge": lambda: ts.merge(pos, connect, 0.3),
            "metrics_aniso3d_to_aniso2d": lambda: ts.metrics_aniso3d_to_aniso2d(field, plane),
            "metrics_iso_to_aniso2d": lambda: ts.metrics_iso_to_aniso2d(size, plane),
            "overwrite_invalid_metrics": lambda: ts.overwrite_invalid_metrics(field, size),
            "permutation": lambda: ts.permutation(list_, list_),
            "remove_degenerated": lambda: ts.remove_degenerated(connect),
            "rotate": lambda: ts.rotate(pos, [0, 0, 0], [1, 0, 0]),
            "shape_qualities": lambda: ts.shape_qualities(pos, connect, mesh.type),
            "simplify": lambda: ts.simplify(pos, connect),
            "STL_input": lambda: ts.STL_input(stl, False),
            "STL_output": lambda: ts.STL_output(file(), pos, tria, False),
            "translate": lambda: ts.translate(pos, [1, 0, 0]),
            "unique_indices": lambda: ts.unique_indices(connect),
            "vtk_convert": lambda: ts.vtk_convert(connect, mesh.type),
            "vtk_output": lambda: ts.vtk_output(file(), pos, connect, mesh.type),
            "WavefrontOBJ_input": lambda: ts.WavefrontOBJ_input(obj),
            "WavefrontOBJ_output": lambda: ts.WavefrontOBJ_output(file(), pos, tria_connect=tria),
            "zoom": lambda: ts.zoom(pos, [0, 0, 0], 2),
            "NodeDetector": lambda: len(ts.NodeDetector(pos)),
        }

    return calls


# Readers of files and results of their own, which no other object can change.
WITHOUT_ARRAYS = {"STL_input", "WavefrontOBJ_input"}


def rows_of_the_page():
    page = Path(__file__).resolve().parents[2] / "docs" / "python" / "python.md"
    table = page.read_text().split("may run at the same time |\n|---|---|\n")[1].split("\n\n")[0]
    return [set(re.findall(r"`(\w+)`", row.split("|")[1])) for row in table.splitlines()]


def test_the_page_says_it_of_every_function(tmp_path):
    free, _, kept, bridges, *_ = rows_of_the_page()
    assert free == set(every_operation(tmp_path)(np.copy))
    public = {name for name in ts.__all__ if inspect.isroutine(getattr(ts, name))}
    assert public <= free | kept | bridges and not free & kept


def test_every_function_lets_the_lock_go_where_the_page_says_so(tmp_path):
    calls = every_operation(tmp_path)
    frozen, writable, listed = calls(ts.freeze), calls(np.copy), calls(lambda array: array[::-1][::-1].copy(order="F"))
    assert {name for name, call in frozen.items() if unlocked(call) == 0} == set()
    assert {name for name, call in writable.items() if unlocked(call) > 0} == WITHOUT_ARRAYS
    assert unlocked(listed["get_neighbors"]) == 1  # converted


def test_short_functions_keep_the_lock():
    M, B = np.array([1, 0, 1, 0, 0, 1.0]), np.array([1.0, 0, 0, 0, 1, 0])
    calls = {
        "eigen_pairs": lambda: ts.eigen_pairs(M),
        "freeze": lambda: ts.freeze(M),
        "is_frozen": lambda: ts.is_frozen(M),
        "is_valid_metric": lambda: ts.is_valid_metric(M),
        "metric_aniso3d_to_aniso2d": lambda: ts.metric_aniso3d_to_aniso2d(M, B),
        "metric_iso_to_aniso": lambda: ts.metric_iso_to_aniso(1.0),
        "metric_iso_to_aniso2d": lambda: ts.metric_iso_to_aniso2d(1.0, B),
        "minimum_metric": lambda: ts.minimum_metric(M, M),
        "version": ts.version,
    }
    assert set(calls) == rows_of_the_page()[2]
    assert all(unlocked(call) == 0 for call in calls.values())


def as_bytes(result):
    """A result in a form that can be compared."""
    if isinstance(result, np.ndarray):
        return result.tobytes()
    return [as_bytes(part) for part in result] if isinstance(result, (tuple, list)) else result


def test_all_functions_run_at_the_same_time_on_shared_arrays(tmp_path):
    calls = every_operation(tmp_path)(ts.freeze)
    wanted = {name: as_bytes(call()) for name, call in calls.items()}
    with ThreadPoolExecutor(8) as pool:
        running = [(name, pool.submit(call)) for _ in range(8) for name, call in calls.items()]
        assert [name for name, future in running if as_bytes(future.result()) != wanted[name]] == []
    written = {path.read_bytes() for path in tmp_path.iterdir() if "-" in path.name}
    assert len(written) == sum(name.endswith("_output") or name == "medit_tensor" for name in calls)


def test_out_and_histograms_keep_the_lock():
    mesh = grid(ts.EL_TETRA4, 2)
    frozen = mesh._replace(pos=ts.freeze(mesh.pos), connect=ts.freeze(mesh.connect))
    assert unlocked(lambda: ts.translate(frozen.pos, [1, 0, 0])) == 1
    assert unlocked(lambda: ts.translate(frozen.pos, [1, 0, 0], out=mesh.pos)) == 0
    assert unlocked(lambda: ts.merge(frozen.pos, frozen.connect, out=mesh.connect)) == 0
    assert unlocked(lambda: ts.shape_qualities(frozen.pos, frozen.connect, mesh.type, ts.Histogram())) == 0


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


def test_a_detector_keeps_the_coordinates_that_the_last_thread_gave_it():
    pos = np.random.default_rng(1).uniform(0, 1, (300, 3))
    on = [True]

    def ask_for_the_lock():
        while on[0]:
            sum(range(50))

    asking = [threading.Thread(target=ask_for_the_lock) for _ in range(2)]
    interval = sys.getswitchinterval()
    sys.setswitchinterval(1e-5)
    for thread in asking:
        thread.start()
    try:
        for _ in range(60):
            detector, together = ts.NodeDetector(), threading.Barrier(6)
            arrays = [ts.freeze(np.roll(pos, k, axis=0)) for k in range(6)]

            def build(k):
                together.wait()
                detector.reinit(arrays[k])

            builders = [threading.Thread(target=build, args=(k,)) for k in range(6)]
            for thread in builders:
                thread.start()
            for thread in builders:
                thread.join()
            watched = [weakref.ref(array) for array in arrays]
            arrays.clear()
            kept = [array for array in (watch() for watch in watched) if array is not None]
            assert len(kept) == 1 and detector.closest(kept[0][:20]).tolist() == list(range(20))
    finally:
        on[0] = False
        sys.setswitchinterval(interval)
        for thread in asking:
            thread.join()

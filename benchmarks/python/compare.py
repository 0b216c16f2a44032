"""Each operation on a million elements: the call in C++, the call in Python, and the best way without the library.

    PYTHONPATH=build/python python3 benchmarks/python/compare.py build/benchmarks/python/libpython_calls.so [--size N]

All three work on the same arrays in one process, in turns; the least time of each counts. Prints a Markdown table.
"""

from __future__ import annotations

import argparse
import ctypes
import os
import tempfile
import time
from pathlib import Path
from typing import Any, Callable, NamedTuple, Optional

import meshio
import numpy as np
from scipy.sparse import coo_matrix
from scipy.sparse.csgraph import connected_components
from scipy.spatial import cKDTree

import tessolv as ts

CORNERS = [(0, 2, 1, 6), (0, 3, 2, 6), (0, 7, 3, 6), (0, 4, 7, 6), (0, 5, 4, 6), (0, 1, 5, 6)]


def tetrahedra(size: int) -> tuple[Any, Any]:
    n = np.arange((size + 1) ** 3, dtype=np.uint32).reshape([size + 1] * 3)
    pos = np.stack(np.meshgrid(*[np.arange(size + 1.0)] * 3, indexing="ij")[::-1], axis=-1).reshape(-1, 3)
    a, b = slice(None, -1), slice(1, None)
    cube = [n[z, y, x].ravel() for z in (a, b) for y, x in ((a, a), (a, b), (b, b), (b, a))]
    connect = np.stack([np.stack([cube[i] for i in nodes], axis=1) for nodes in CORNERS], axis=1)
    return np.ascontiguousarray(pos), np.ascontiguousarray(connect.reshape(-1, 4))


class MeshArrays(ctypes.Structure):
    _fields_ = [
        ("pos", ctypes.c_void_p), ("nodes", ctypes.c_uint64), ("dimension", ctypes.c_uint64),
        ("connect", ctypes.c_void_p), ("elements", ctypes.c_uint64), ("width", ctypes.c_uint64),
        ("neighbors", ctypes.c_void_p), ("faces", ctypes.c_uint64),
        ("edges", ctypes.c_void_p), ("edge_count", ctypes.c_uint64),
        ("list", ctypes.c_void_p), ("sizes", ctypes.c_void_p), ("metrics", ctypes.c_void_p),
        ("file", ctypes.c_char_p), ("type", ctypes.c_int),
    ]  # fmt: skip


class Case(NamedTuple):
    name: str
    python: Callable[[], Any]
    other: Optional[Callable[[], Any]] = None
    way: str = ""


def sorted_faces(connect: Any) -> Any:
    faces = np.sort(connect[:, [[1, 2, 3], [2, 0, 3], [1, 3, 0], [2, 1, 0]]].reshape(-1, 3), axis=1).astype(np.uint64)
    return (faces[:, 0] << np.uint64(42)) | (faces[:, 1] << np.uint64(21)) | faces[:, 2]


def numpy_neighbors(connect: Any) -> Any:
    keys = sorted_faces(connect)
    order = np.argsort(keys, kind="stable")
    twin = np.flatnonzero(keys[order[:-1]] == keys[order[1:]])
    table = np.full(len(keys), -1)
    table[order[twin]], table[order[twin + 1]] = order[twin + 1] // 4, order[twin] // 4
    return table.reshape(-1, 4)


def numpy_edges(connect: Any) -> Any:
    edges = np.sort(connect[:, [[1, 2], [2, 0], [0, 1], [0, 3], [1, 3], [2, 3]]].reshape(-1, 2), axis=1).astype(np.uint64)
    return np.unique((edges[:, 0] << np.uint64(32)) | edges[:, 1])


def numpy_qualities(pos: Any, connect: Any) -> Any:
    a, b, c, d = (pos[connect[:, i]] for i in range(4))
    def length(v: Any) -> Any:
        return np.sqrt(np.einsum("ij,ij->i", v, v))
    edges = [length(p - q) for p, q in ((a, b), (a, c), (a, d), (b, c), (b, d), (c, d))]
    n = np.cross(b - a, c - a)
    surface = length(n) + length(np.cross(b - a, d - a)) + length(np.cross(c - a, d - a)) + length(np.cross(c - b, d - b))
    return -2 * np.sqrt(6) * np.einsum("ij,ij->i", n, d - a) / (np.maximum.reduce(edges) * surface)


def numpy_edge_lengths(pos: Any, edges: Any) -> Any:
    lengths = np.linalg.norm(pos[edges[:, 0]] - pos[edges[:, 1]], axis=1)
    low, high = np.full(len(pos), np.inf), np.full(len(pos), -np.inf)
    both = np.concatenate([edges[:, 0], edges[:, 1]])
    twice = np.tile(lengths, 2)
    np.minimum.at(low, both, twice)
    np.maximum.at(high, both, twice)
    return low, np.bincount(both, twice) / np.bincount(both), high


def parts_by_scipy(table: Any) -> Any:
    e, k = np.nonzero(table != ts.NONE_INDEX)
    graph = coo_matrix((np.ones(len(e), np.int8), (e, table[e, k])), (len(table),) * 2)
    return connected_components(graph, directed=False)


def cases(pos: Any, connect: Any, folder: Path) -> tuple[list[Case], MeshArrays, list[Any]]:
    type = ts.EL_TETRA4
    neighbors = ts.get_neighbors(connect, type, raw=True)
    edges = ts.copy_edges(connect, type)
    identity = np.arange(len(pos), dtype=np.uint32)
    sizes = np.ones(len(pos), np.float32)
    metrics = np.tile(np.array([1, 0, 1, 0, 0, 1], np.float32), (len(pos), 1))
    work_pos, work_connect = pos.copy(), connect.copy()
    queries = pos + [0.1, 0, 0]
    detector = ts.NodeDetector(pos)
    stl, vtk = folder / "skin.stl", folder / "mesh.vtk"
    surface = np.random.default_rng(1).integers(0, len(pos), (1, 3)).astype(np.uint32)
    faces = np.concatenate([connect[:, :3][: len(connect) // 2], surface])
    ts.STL_output(stl, pos, faces, False)
    tree = cKDTree(pos)
    as_int = connect.astype(np.int64)

    def box_of_numpy() -> Any:
        return pos.min(axis=0), pos.max(axis=0)

    def clip_by_numpy() -> Any:
        return connect[(pos[:, 0] > 20)[connect].all(axis=1)]

    def translate_by_numpy() -> Any:
        work_pos[:, 0] += 1e-9

    def degenerate_by_numpy() -> Any:
        s = np.sort(connect, axis=1)
        return connect[(s[:, 1:] != s[:, :-1]).all(axis=1)]

    def written_by_meshio() -> Any:
        meshio.write_points_cells(folder / "other.vtk", pos, [("tetra", as_int)], binary=False)

    h = ts.Histogram
    all_cases = [
        Case("check_IDs", lambda: ts.check_IDs(connect, len(pos), type), lambda: connect.max() < len(pos), "NumPy"),
        Case("get_neighbors", lambda: ts.get_neighbors(connect, type, raw=True), lambda: numpy_neighbors(connect), "NumPy"),
        Case("get_boundaries", lambda: ts.get_boundaries(connect, neighbors, type)),
        Case("get_ancestors", lambda: ts.get_ancestors(connect, raw=True)),
        Case("get_connex_parts", lambda: ts.get_connex_parts(neighbors), lambda: parts_by_scipy(neighbors), "SciPy"),
        Case("copy_edges", lambda: ts.copy_edges(connect, type), lambda: numpy_edges(connect), "NumPy"),
        Case("merge", lambda: ts.merge(pos, work_connect, out=work_connect), lambda: cKDTree(pos).query_pairs(1e-6), "SciPy"),
        Case("node_detector", lambda: ts.NodeDetector(pos), lambda: cKDTree(pos), "SciPy"),
        Case("closest", lambda: detector.closest(queries, raw=True), lambda: tree.query(queries), "SciPy"),
        Case("unique_indices", lambda: ts.unique_indices(connect), lambda: np.unique(connect), "NumPy"),
        Case("change_indices", lambda: ts.change_indices(work_connect, identity, out=work_connect),
             lambda: identity.take(work_connect), "NumPy"),
        Case("get_IDs", lambda: ts.get_IDs(connect, connect, raw=True)),
        Case("append", lambda: ts.append(connect, connect), lambda: np.concatenate([connect, connect]), "NumPy"),
        Case("simplify", lambda: ts.simplify(pos, work_connect, raw=True, out=work_connect)),
        Case("copy_mesh", lambda: ts.copy_mesh(pos, connect)),
        Case("remove_degenerated", lambda: ts.remove_degenerated(connect, raw=True), degenerate_by_numpy, "NumPy"),
        Case("shape_qualities", lambda: ts.shape_qualities(pos, connect, type), lambda: numpy_qualities(pos, connect), "NumPy"),
        Case("edge_lengths", lambda: ts.edge_lengths(pos, edges), lambda: numpy_edge_lengths(pos, edges), "NumPy"),
        Case("edge_qualities", lambda: ts.edge_qualities(pos, connect, type, sizes, h())),
        Case("are_valid_metrics", lambda: ts.are_valid_metrics(metrics)),
        Case("translate", lambda: ts.translate(work_pos, [1e-9, 0, 0], out=work_pos), translate_by_numpy, "NumPy"),
        Case("rotate", lambda: ts.rotate(work_pos, [0, 0, 0], [1e-9, 0, 0], out=work_pos)),
        Case("inc_bounding_box", lambda: ts.inc_bounding_box(pos), box_of_numpy, "NumPy"),
        Case("clip", lambda: ts.clip(pos, connect, [20, 0, 0], [1, 0, 0]), clip_by_numpy, "NumPy"),
        Case("vtk_output", lambda: ts.vtk_output(vtk, pos, connect, type), written_by_meshio, "meshio"),
        Case("STL_input", lambda: ts.STL_input(stl, False), lambda: meshio.read(stl), "meshio, without welding"),
    ]  # fmt: skip
    arrays = MeshArrays(
        work_pos.ctypes.data, len(pos), 3, work_connect.ctypes.data, len(connect), 4, neighbors.ctypes.data, 4,
        edges.ctypes.data, len(edges), identity.ctypes.data, sizes.ctypes.data, metrics.ctypes.data, b"", type,
    )  # fmt: skip
    return all_cases, arrays, [work_pos, work_connect, neighbors, edges, identity, sizes, metrics, stl, vtk]


def seconds(f: Callable[[], Any]) -> float:
    start = time.perf_counter()
    result = f()
    taken = time.perf_counter() - start
    del result
    return taken


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("library", help="the C++ calls")
    parser.add_argument("--size", type=int, default=55, help="cells along each side of the cube, of six tetrahedra each")
    parser.add_argument("--repeat", type=int, default=7)
    parser.add_argument("--only", help="operations, separated by commas")
    options = parser.parse_args()
    calls = ctypes.CDLL(options.library)
    pos, connect = tetrahedra(options.size)
    print(f"{len(connect)} tetrahedra, {len(pos)} nodes\n")
    print("| operation | C++, ms | Python, ms | Python/C++ | without the library, ms | times slower |")
    print("|---|---|---|---|---|---|")
    with tempfile.TemporaryDirectory(dir="/dev/shm" if os.path.isdir("/dev/shm") else None) as folder:
        all_cases, arrays, kept = cases(pos, connect, Path(folder))
        for case in all_cases:
            if options.only and case.name not in options.only.split(","):
                continue
            arrays.file = os.fsencode(kept[-2] if case.name == "STL_input" else kept[-1])
            native = getattr(calls, case.name + "_seconds")
            native.restype = ctypes.c_double
            times: list[list[float]] = [[], [], []]
            for turn in range(options.repeat):
                # Each comes first every other time: it matters what the one before has left in the heap.
                for which in (0, 1) if turn % 2 else (1, 0):
                    times[which].append(seconds(case.python) if which else native(ctypes.byref(arrays)))
                if case.other is not None and turn < 2:
                    times[2].append(seconds(case.other))
            assert min(times[0]) >= 0, case.name
            cpp, python = min(times[0]), min(times[1])
            other = f"{min(times[2]) * 1e3:.1f} ({case.way}) | {min(times[2]) / python:.1f}" if times[2] else " | "
            print(f"| `{case.name}` | {cpp * 1e3:.2f} | {python * 1e3:.2f} | {python / cpp:.3f} | {other} |", flush=True)


if __name__ == "__main__":
    main()

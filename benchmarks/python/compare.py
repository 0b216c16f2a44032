"""Each operation on a million elements: the call in C++, the call in Python, and the best way without the library.

    benchmarks/python/run

builds what is needed, runs this and puts the table into docs/python/python.md. All ways work on the same arrays (those that
change them leave them as they were, but for rounding) in one process, in turns; the least time of the processor counts.
"""

from __future__ import annotations

import argparse
import ctypes
import os
import platform
import re
import tempfile
import time
from pathlib import Path
from typing import Any, Callable, Dict, NamedTuple, Optional

import meshio
import numpy as np
from scipy.sparse import coo_matrix
from scipy.sparse.csgraph import connected_components
from scipy.spatial import cKDTree

import tessolv as ts

try:
    from vtkmodules.vtkIOGeometry import vtkOBJReader, vtkSTLReader, vtkSTLWriter
    from vtkmodules.vtkIOLegacy import vtkUnstructuredGridWriter
    from vtkmodules.vtkCommonCore import vtkPoints
    from vtkmodules.vtkCommonDataModel import VTK_TETRA, vtkCellArray, vtkPolyData, vtkUnstructuredGrid
    from vtkmodules.util.numpy_support import numpy_to_vtk, numpy_to_vtkIdTypeArray
except ImportError:
    vtkPoints = None

PAGE = Path(__file__).resolve().parents[2] / "docs" / "python" / "python.md"
CORNERS = [(0, 2, 1, 6), (0, 3, 2, 6), (0, 7, 3, 6), (0, 4, 7, 6), (0, 5, 4, 6), (0, 1, 5, 6)]


def tetrahedra(size: int) -> tuple[Any, Any]:
    n = np.arange((size + 1) ** 3, dtype=np.uint32).reshape([size + 1] * 3)
    pos = np.stack(np.meshgrid(*[np.arange(size + 1.0)] * 3, indexing="ij")[::-1], axis=-1).reshape(-1, 3)
    a, b = slice(None, -1), slice(1, None)
    cube = [n[z, y, x].ravel() for z in (a, b) for y, x in ((a, a), (a, b), (b, b), (b, a))]
    connect = np.stack([np.stack([cube[i] for i in nodes], axis=1) for nodes in CORNERS], axis=1)
    return np.ascontiguousarray(pos), np.ascontiguousarray(connect.reshape(-1, 4))


def sheet(triangles: int) -> tuple[Any, Any]:
    """A wavy square of about so many triangles."""
    n = max(int((triangles / 2) ** 0.5), 1)
    x, y = np.meshgrid(np.linspace(0, 1, n + 1), np.linspace(0, 1, n + 1))
    pos = np.stack([x, y, 0.1 * np.sin(9 * x) * np.cos(7 * y)], axis=-1).reshape(-1, 3)
    i = np.arange((n + 1) ** 2, dtype=np.uint32).reshape(n + 1, n + 1)
    a, b, c, d = i[:-1, :-1].ravel(), i[:-1, 1:].ravel(), i[1:, 1:].ravel(), i[1:, :-1].ravel()
    return pos, np.concatenate([np.stack([a, b, c], axis=1), np.stack([a, c, d], axis=1)])


class MeshArrays(ctypes.Structure):
    _fields_ = [
        ("pos", ctypes.c_void_p), ("queries", ctypes.c_void_p), ("nodes", ctypes.c_uint64), ("dimension", ctypes.c_uint64),
        ("connect", ctypes.c_void_p), ("elements", ctypes.c_uint64), ("width", ctypes.c_uint64),
        ("neighbors", ctypes.c_void_p), ("faces", ctypes.c_uint64),
        ("edges", ctypes.c_void_p), ("edge_count", ctypes.c_uint64),
        ("list", ctypes.c_void_p), ("sizes", ctypes.c_void_p), ("metrics", ctypes.c_void_p), ("bases", ctypes.c_void_p),
        ("surface_pos", ctypes.c_void_p), ("surface_nodes", ctypes.c_uint64),
        ("triangles", ctypes.c_void_p), ("triangle_count", ctypes.c_uint64),
        ("file", ctypes.c_char_p), ("detector", ctypes.c_void_p), ("type", ctypes.c_int),
    ]  # fmt: skip


class Case(NamedTuple):
    name: str
    python: Callable[[], Any]
    others: Dict[str, Callable[[], Any]] = {}
    file: Optional[Path] = None


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


def numpy_find(connect: Any) -> Any:
    rows = np.ascontiguousarray(connect).view(np.dtype((np.void, connect.itemsize * connect.shape[1]))).ravel()
    order = np.argsort(rows, kind="stable")
    return order[np.searchsorted(rows, rows, sorter=order)]


def numpy_ancestors(pos: Any, connect: Any) -> Any:
    last = np.full(len(pos), -1)
    last[connect] = np.arange(len(connect))[:, None]
    return last


def numpy_renumbering(pos: Any, connect: Any) -> Any:
    used, place = np.unique(connect, return_inverse=True)
    return pos[used], place.reshape(connect.shape)


def numpy_reordered(table: Any, connect: Any) -> Any:
    order = np.argsort(parts_by_scipy(table)[1], kind="stable")
    back = np.empty(len(order), np.uint32)
    back[order] = np.arange(len(order), dtype=np.uint32)
    moved = table[order]
    return connect[order], np.where(moved == ts.NONE_INDEX, moved, back[np.minimum(moved, len(order) - 1)])


def full_tensors(metrics: Any) -> Any:
    return metrics[:, [0, 1, 3, 1, 2, 4, 3, 4, 5]].reshape(-1, 3, 3)


def numpy_projected(metrics: Any, bases: Any) -> Any:
    B = bases.reshape(-1, 2, 3)
    return np.einsum("nij,njk,nlk->nil", B, full_tensors(metrics), B)


def vtk_points(pos: Any) -> Any:
    points = vtkPoints()
    points.SetData(numpy_to_vtk(pos))
    return points


def vtk_cells(connect: Any) -> Any:
    cells = vtkCellArray()
    starts = np.arange(0, connect.size + 1, connect.shape[1], dtype=np.int64)
    cells.SetData(numpy_to_vtkIdTypeArray(starts, 1), numpy_to_vtkIdTypeArray(connect.astype(np.int64).ravel(), 1))
    return cells


def vtk_written(file: Path, pos: Any, connect: Any) -> Any:
    grid = vtkUnstructuredGrid()
    grid.SetPoints(vtk_points(pos))
    grid.SetCells(VTK_TETRA, vtk_cells(connect))
    writer = vtkUnstructuredGridWriter()
    writer.SetFileName(str(file))
    writer.SetInputData(grid)
    writer.Write()


def vtk_stl_written(file: Path, pos: Any, triangles: Any) -> Any:
    surface = vtkPolyData()
    surface.SetPoints(vtk_points(pos))
    surface.SetPolys(vtk_cells(triangles))
    writer = vtkSTLWriter()
    writer.SetFileName(str(file))
    writer.SetFileTypeToBinary()
    writer.SetInputData(surface)
    writer.Write()


def vtk_read(reader: Any, file: Path) -> Any:
    reader.SetFileName(str(file))
    reader.Update()
    return reader.GetOutput()


def with_vtk(ways: Dict[str, Callable[[], Any]]) -> Dict[str, Callable[[], Any]]:
    return {name: way for name, way in ways.items() if vtkPoints is not None or not name.startswith("VTK")}


class Bench:
    """The arrays, and a detector for each language."""

    def __init__(self, size: int, folder: Path) -> None:
        self.folder = folder
        self.pos, self.connect = tetrahedra(size)
        self.type = ts.EL_TETRA4
        self.neighbors = ts.get_neighbors(self.connect, self.type, raw=True)
        self.edges = ts.copy_edges(self.connect, self.type)
        self.identity = np.arange(len(self.pos), dtype=np.uint32)
        self.sizes = np.ones(len(self.pos), np.float32)
        self.metrics = np.tile(np.array([1, 0, 1, 0, 0, 1], np.float32), (len(self.pos), 1))
        self.bases = np.tile(np.array([1.0, 0, 0, 0, 1, 0]), (len(self.pos), 1))
        self.queries = self.pos + [0.1, 0, 0]
        self.surface_pos, self.triangles = sheet(len(self.connect))
        self.stl, self.obj = folder / "skin.stl", folder / "skin.obj"
        ts.STL_output(self.stl, self.surface_pos, self.triangles, False)
        with open(self.obj, "w") as file:
            np.savetxt(file, self.surface_pos, "v %.9g %.9g %.9g")
            np.savetxt(file, self.triangles + 1, "f %d %d %d")
        self.detector = ts.NodeDetector()
        self.tree = cKDTree(self.pos)

    def arrays(self) -> MeshArrays:
        at = ctypes.c_void_p
        a = MeshArrays(nodes=len(self.pos), dimension=3, elements=len(self.connect), width=4, faces=4, type=self.type)
        a.edge_count, a.surface_nodes, a.triangle_count = len(self.edges), len(self.surface_pos), len(self.triangles)
        for name in ("pos", "queries", "connect", "neighbors", "edges", "sizes", "metrics", "bases", "surface_pos", "triangles"):
            setattr(a, name, at(getattr(self, name).ctypes.data))
        a.list = self.identity.ctypes.data
        return a

    def cases(self) -> list[Case]:
        pos, connect, type, neighbors, edges = self.pos, self.connect, self.type, self.neighbors, self.edges
        identity, sizes, metrics, bases, queries = self.identity, self.sizes, self.metrics, self.bases, self.queries
        surface_pos, triangles, folder = self.surface_pos, self.triangles, self.folder
        signed, signed_triangles, out = connect.astype(np.int64), triangles.astype(np.int64), folder / "out"
        far = queries + 1
        half, rest = identity[: len(identity) // 2], identity[len(identity) // 2 :]

        def translated() -> Any:
            pos[:, 0] += 1e-9

        def undegenerated() -> Any:
            s = np.sort(connect, axis=1)
            return connect[(s[:, 1:] != s[:, :-1]).all(axis=1)]

        def by_meshio(name: str, points: Any, kind: str, cells: Any, **options: Any) -> Callable[[], Any]:
            return lambda: meshio.write_points_cells(folder / name, points, [(kind, cells)], **options)

        return [
            Case("check_IDs", lambda: ts.check_IDs(connect, len(pos), type), {"NumPy": lambda: connect.max() < len(pos)}),
            Case("get_neighbors", lambda: ts.get_neighbors(connect, type, raw=True), {"NumPy": lambda: numpy_neighbors(connect)}),
            Case("get_boundaries", lambda: ts.get_boundaries(connect, neighbors, type),
                 {"NumPy": lambda: connect[:, [[1, 2, 3], [2, 0, 3], [1, 3, 0], [2, 1, 0]]][neighbors == ts.NONE_INDEX]}),
            Case("get_ancestors", lambda: ts.get_ancestors(connect, raw=True), {"NumPy": lambda: numpy_ancestors(pos, connect)}),
            Case("get_connex_parts", lambda: ts.get_connex_parts(neighbors), {"SciPy": lambda: parts_by_scipy(neighbors)}),
            Case("reordered_parts", lambda: ts.get_connex_parts(neighbors, connect=connect, raw=True),
                 {"SciPy": lambda: numpy_reordered(neighbors, connect)}),
            Case("copy_edges", lambda: ts.copy_edges(connect, type), {"NumPy": lambda: numpy_edges(connect)}),
            Case("merge", lambda: ts.merge(pos, connect, out=connect), {"SciPy, pairs only": lambda: cKDTree(pos).query_pairs(1e-6)}),
            Case("merge_nodes", lambda: ts.merge(pos, nodes=identity, tolerance=1e-6),
                 {"SciPy, pairs only": lambda: cKDTree(pos).query_pairs(1e-6)}),
            Case("merge_pos", lambda: ts.merge(pos, tolerance=1e-6),
                 {"SciPy, pairs only": lambda: cKDTree(pos).query_pairs(1e-6)}),
            Case("node_detector", lambda: ts.NodeDetector(pos), {"SciPy": lambda: cKDTree(pos)}),
            Case("closest", lambda: self.detector.closest(queries, raw=True), {"SciPy": lambda: self.tree.query(queries)}),
            Case("closest_to_nodes", lambda: self.detector.closest_to_nodes(identity, raw=True),
                 {"SciPy": lambda: self.tree.query(pos, k=2)}),
            Case("in_box", lambda: self.detector.in_box(queries, far),
                 {"SciPy, balls": lambda: self.tree.query_ball_point(queries, 0.5, p=np.inf)}),
            Case("insert", lambda: ts.NodeDetector(pos, half).insert(rest)),
            Case("unique_indices", lambda: ts.unique_indices(connect), {"NumPy": lambda: np.unique(connect)}),
            Case("count_unique_indices", lambda: ts.count_unique_indices(connect), {"NumPy": lambda: len(np.unique(connect))}),
            Case("change_indices", lambda: ts.change_indices(connect, identity, out=connect),
                 {"NumPy": lambda: identity.take(connect)}),
            Case("permutation", lambda: ts.permutation(identity, identity),
                 {"NumPy": lambda: np.put(identity, identity, identity)}),
            Case("get_IDs", lambda: ts.get_IDs(connect, connect, raw=True), {"NumPy": lambda: numpy_find(connect)}),
            Case("append", lambda: ts.append(connect, connect), {"NumPy": lambda: np.concatenate([connect, connect])}),
            Case("append_field", lambda: ts.append(metrics, metrics), {"NumPy": lambda: np.concatenate([metrics, metrics])}),
            Case("simplify", lambda: ts.simplify(pos, connect, raw=True, out=connect),
                 {"NumPy": lambda: numpy_renumbering(pos, connect)}),
            Case("copy_mesh", lambda: ts.copy_mesh(pos, connect), {"NumPy": lambda: (np.concatenate([pos, pos]), connect + len(pos))}),
            Case("remove_degenerated", lambda: ts.remove_degenerated(connect, raw=True), {"NumPy": undegenerated}),
            Case("shape_qualities", lambda: ts.shape_qualities(pos, connect, type), {"NumPy": lambda: numpy_qualities(pos, connect)}),
            Case("edge_lengths", lambda: ts.edge_lengths(pos, edges), {"NumPy": lambda: numpy_edge_lengths(pos, edges)}),
            Case("edge_qualities", lambda: ts.edge_qualities(pos, connect, type, sizes, ts.Histogram()),
                 {"NumPy, edges only": lambda: numpy_edges(connect)}),
            Case("are_valid_metrics", lambda: ts.are_valid_metrics(metrics),
                 {"NumPy": lambda: (np.linalg.eigvalsh(full_tensors(metrics)) > 0).all()}),
            Case("overwrite_invalid_metrics", lambda: ts.overwrite_invalid_metrics(metrics, sizes, out=metrics),
                 {"NumPy, search only": lambda: (np.linalg.eigvalsh(full_tensors(metrics)) > 0).all(axis=1)}),
            Case("metrics_aniso3d_to_aniso2d", lambda: ts.metrics_aniso3d_to_aniso2d(metrics, bases),
                 {"NumPy": lambda: numpy_projected(metrics, bases)}),
            Case("metrics_iso_to_aniso2d", lambda: ts.metrics_iso_to_aniso2d(sizes, bases),
                 {"NumPy": lambda: np.einsum("nij,nkj->nik", bases.reshape(-1, 2, 3), bases.reshape(-1, 2, 3)) / sizes[:, None, None] ** 2}),
            Case("translate", lambda: ts.translate(pos, [1e-9, 0, 0], out=pos), {"NumPy": translated}),
            Case("rotate", lambda: ts.rotate(pos, [0, 0, 0], [1e-9, 0, 0], out=pos), {"NumPy": lambda: pos @ np.eye(3)}),
            Case("zoom", lambda: ts.zoom(pos, [0, 0, 0], 1 + 1e-15, out=pos), {"NumPy": lambda: np.multiply(pos, 1 + 1e-15, out=pos)}),
            Case("inc_bounding_box", lambda: ts.inc_bounding_box(pos), {"NumPy": lambda: (pos.min(axis=0), pos.max(axis=0))}),
            Case("clip", lambda: ts.clip(pos, connect, [20, 0, 0], [1, 0, 0]),
                 {"NumPy": lambda: connect[(pos[:, 0] > 20)[connect].all(axis=1)]}),
            Case("vtk_convert", lambda: ts.vtk_convert(connect, type),
                 {"NumPy": lambda: (np.insert(connect[:, [0, 1, 3, 2]], 0, 4, axis=1), np.full(len(connect), 10))}),
            Case("vtk_output", lambda: ts.vtk_output(out, pos, connect, type),
                 with_vtk({"meshio": by_meshio("other.vtk", pos, "tetra", signed, binary=False),
                           "VTK": lambda: vtk_written(folder / "other.vtk", pos, connect)}), out),
            Case("medit_output", lambda: ts.medit_output(out, pos, connect, type),
                 {"meshio": by_meshio("other.mesh", pos, "tetra", signed)}, out),
            Case("medit_tensor", lambda: ts.medit_tensor(out, metrics), {"NumPy": lambda: np.savetxt(folder / "other.sol", metrics)}, out),
            Case("ensight_output", lambda: ts.ensight_output(out, pos, connect, type),
                 {"NumPy, nodes only": lambda: np.savetxt(folder / "other.geo", pos, "%12.5e")}, out),
            Case("STL_output", lambda: ts.STL_output(out, surface_pos, triangles, False),
                 with_vtk({"meshio": by_meshio("other.stl", surface_pos, "triangle", signed_triangles, binary=True),
                           "VTK": lambda: vtk_stl_written(folder / "other.stl", surface_pos, triangles)}), out),
            Case("STL_input", lambda: ts.STL_input(self.stl, False),
                 with_vtk({"meshio, without welding": lambda: meshio.read(self.stl),
                           "VTK": lambda: vtk_read(vtkSTLReader(), self.stl)}), self.stl),
            Case("WavefrontOBJ_output", lambda: ts.WavefrontOBJ_output(out, surface_pos, tria_connect=triangles),
                 {"meshio": by_meshio("other.obj", surface_pos, "triangle", signed_triangles)}, out),
            Case("WavefrontOBJ_input", lambda: ts.WavefrontOBJ_input(self.obj),
                 with_vtk({"meshio": lambda: meshio.read(self.obj), "VTK": lambda: vtk_read(vtkOBJReader(), self.obj)}), self.obj),
        ]  # fmt: skip


#: What works on one tensor: there is no million of elements to pass, the time is that of the call.
def small_calls() -> Dict[str, Callable[[], Any]]:
    M, B = np.array([1, 0, 2, 0, 0, 3.0]), np.array([1.0, 0, 0, 0, 1, 0])
    return {
        "metric_iso_to_aniso": lambda: ts.metric_iso_to_aniso(2.0, 3),
        "metric_iso_to_aniso2d": lambda: ts.metric_iso_to_aniso2d(2.0, B),
        "metric_aniso3d_to_aniso2d": lambda: ts.metric_aniso3d_to_aniso2d(M, B),
        "eigen_pairs": lambda: ts.eigen_pairs(M),
        "is_valid_metric": lambda: ts.is_valid_metric(M),
        "minimum_metric": lambda: ts.minimum_metric(M, M),
    }


def seconds(f: Callable[[], Any]) -> float:
    start = time.thread_time()
    result = f()
    taken = time.thread_time() - start
    del result
    return taken


class Measured(NamedTuple):
    name: str
    cpp: float
    python: float
    way: str = ""
    other: float = 0.0


USES_DETECTOR = ("closest", "closest_to_nodes", "in_box")


def measured(bench: Bench, case: Case, calls: Any, turns: int, until: float) -> Measured:
    """The least times; turns go on, within limits, until those of both languages stopped falling apart."""
    native = getattr(calls, case.name + "_seconds")
    native.restype = ctypes.c_double
    arrays = bench.arrays()
    arrays.file = os.fsencode(case.file or "")
    cpp, python, start = [], [], time.monotonic()
    for turn in range(10 * turns):
        # Each comes first every other time: it matters what the one before has left in the heap. So it does for the
        # two trees, of which each gets all the places in memory.
        order = (0, 1) if turn % 2 else (1, 0)
        for which in order if case.name in USES_DETECTOR else ():
            if which:
                bench.detector = ts.NodeDetector(bench.pos)
            else:
                arrays.detector = calls.new_detector(ctypes.byref(arrays))
        for which in order:
            if which:
                python.append(seconds(case.python))
            else:
                cpp.append(native(ctypes.byref(arrays)))
        if case.name in USES_DETECTOR:
            bench.detector = ts.NodeDetector()
            calls.delete_detector(ctypes.c_void_p(arrays.detector))
        close = abs(min(python) / max(min(cpp), 1e-9) - 1) < 0.03
        if turn + 1 >= turns and (close or time.monotonic() - start > until):
            break
    assert min(cpp) >= 0, case.name
    others = {}
    for way, f in case.others.items():
        others[way] = seconds(f)
        if others[way] < 1:
            others[way] = min(others[way], seconds(f))
    way = min(others, key=others.__getitem__, default="")
    return Measured(case.name, min(cpp), min(python), way, others.get(way, 0.0))


TITLES = {
    "reordered_parts": "`get_connex_parts(connect=)`",
    "merge": "`merge(pos, connect)`",
    "merge_nodes": "`merge(pos, nodes=)`",
    "merge_pos": "`merge(pos)`",
    "node_detector": "`NodeDetector(pos)`",
    "closest": "`NodeDetector.closest`",
    "closest_to_nodes": "`NodeDetector.closest_to_nodes`",
    "in_box": "`NodeDetector.in_box`",
    "insert": "`NodeDetector.insert`, half and half",
    "append_field": "`append`, metrics",
}


def row(m: Measured) -> str:
    title = TITLES.get(m.name, f"`{m.name}`")
    other = f"{m.other * 1e3:.4g} ({m.way}) | {m.other / m.python:.1f}" if m.way else " | "
    return f"| {title} | {m.cpp * 1e3:.4g} | {m.python * 1e3:.4g} | {m.python / m.cpp:.3f} | {other} |"


def processor() -> str:
    text = Path("/proc/cpuinfo").read_text() if os.path.exists("/proc/cpuinfo") else ""
    name = re.search(r"model name\s*: (.*)", text)
    memory = re.search(r"MemTotal: *(\d+)", Path("/proc/meminfo").read_text()) if os.path.exists("/proc/meminfo") else None
    gigabytes = f", {int(memory[1]) / 1e6:.0f} GB" if memory else ""
    return f"{name[1] if name else platform.processor()}, {os.cpu_count()} cores{gigabytes}"


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("library", help="the C++ calls")
    parser.add_argument("--size", type=int, default=55, help="cells along each side of the cube, of six tetrahedra each")
    parser.add_argument("--turns", type=int, default=7)
    parser.add_argument("--until", type=float, default=4, help="seconds for one operation whose times still differ")
    parser.add_argument("--only", help="operations, separated by commas")
    parser.add_argument("--page", action="store_true", help="put the table into docs/python/python.md")
    options = parser.parse_args()
    calls = ctypes.CDLL(options.library)
    calls.new_detector.restype = ctypes.c_void_p
    lines = []

    def tell(line: str) -> None:
        print(line, flush=True)
        lines.append(line)

    with tempfile.TemporaryDirectory(dir="/dev/shm" if os.path.isdir("/dev/shm") else None) as folder:
        bench = Bench(options.size, Path(folder))
        load = os.getloadavg()[0]
        tell(f"{len(bench.connect):,} tetrahedra of {len(bench.pos):,} nodes, {len(bench.triangles):,} triangles for files of surfaces;")
        tell(f"{processor()}; Python {platform.python_version()}, NumPy {np.__version__}; load {load:.1f} when it began.\n")
        tell("| operation | C++, ms | Python, ms | Python/C++ | without the library, ms | times slower |")
        tell("|---|---|---|---|---|---|")
        ratios = []
        for case in bench.cases():
            if options.only and case.name not in options.only.split(","):
                continue
            found = measured(bench, case, calls, options.turns, options.until)
            ratios.append((found.python / found.cpp, found.name))
            tell(row(found))
    least, most = min(ratios), max(ratios)
    tell(f"\nPython/C++ lies between {least[0]:.3f} (`{least[1]}`) and {most[0]:.3f} (`{most[1]}`).")
    # One call is too short for the clock: a thousand of them.
    times = {name: min(seconds(lambda: [f() for _ in range(1000)]) for _ in range(5)) for name, f in small_calls().items()}
    tell("What works on one tensor takes, in microseconds a call: " + ", ".join(f"`{n}` {t * 1e3:.2f}" for n, t in times.items()) + ".")
    if options.page:
        begin, end = "<!-- begin: benchmarks/python/run -->\n", "<!-- end: benchmarks/python/run -->\n"
        before, rest = PAGE.read_text().split(begin)
        PAGE.write_text(before + begin + "\n".join(lines) + "\n" + end + rest.split(end)[1])


if __name__ == "__main__":
    main()

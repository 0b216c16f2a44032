"""Files that other people made: examples/parts, and the folder TESSOLV_SAMPLE_MESHES if it is named."""

import os
from pathlib import Path

import numpy as np
import pytest

import tessolv as ts
from tessolv import Mesh, _tessolv

FOLDERS = [Path(__file__).resolve().parents[2] / "examples" / "parts"]
if os.environ.get("TESSOLV_SAMPLE_MESHES"):
    FOLDERS.append(Path(os.environ["TESSOLV_SAMPLE_MESHES"]))
LARGEST = 2_000_000
FILES = [
    path
    for folder in FOLDERS
    for path in sorted(folder.rglob("*"))
    if path.suffix.lower() in (".stl", ".obj") and path.stat().st_size < LARGEST
]


def facets_of(path):
    """Corners of a binary STL file, read by NumPy."""
    record = np.dtype([("normal", "<f4", 3), ("corners", "<f4", (3, 3)), ("attribute", "<u2")])
    data = path.read_bytes()
    count = min(int.from_bytes(data[80:84], "little"), (len(data) - 84) // 50)
    return np.frombuffer(data, record, count, 84)["corners"].astype(float)


def edges_of(triangles):
    edges = np.sort(triangles[:, [[1, 2], [2, 0], [0, 1]]], axis=2).reshape(-1, 2)
    return np.unique(edges, axis=0, return_inverse=True, return_counts=True)


@pytest.mark.parametrize("path", FILES, ids=lambda path: f"{path.parent.name}/{path.name}")
def test_a_surface_agrees_with_what_numpy_finds_in_it(path):
    try:
        mesh = Mesh.read(path)
    except ts.Error as error:
        # Malformed, or with corners that name no node: refused as one or the other.
        assert error.argument == "file" or path.suffix.lower() == ".obj" and error.argument.startswith("cells[")
        return
    triangles = mesh.cells.get(ts.EL_TRIA3, np.empty((0, 3), np.uint32))
    if path.suffix.lower() == ".stl" and not _tessolv.read_stl(os.fsencode(path))[-1]:
        corners = facets_of(path)
        assert len(triangles) <= len(corners)
        known = {point.tobytes() for point in corners.reshape(-1, 3) + 0.0}
        assert all(point.tobytes() in known for point in mesh.points + 0.0)
    if not len(triangles):
        return
    edges, place, count = edges_of(triangles)
    found = ts.copy_edges(triangles, ts.EL_TRIA3)
    assert {tuple(edge) for edge in found.tolist()} == {tuple(edge) for edge in edges.tolist()}
    table = ts.get_neighbors(triangles, ts.EL_TRIA3)
    np.testing.assert_array_equal(table >= 0, (count[place] == 2).reshape(-1, 3))
    e, k = np.nonzero(table >= 0)
    assert (table[table[e, k]] == e[:, None]).any(axis=1).all()
    assert len(ts.get_boundaries(triangles, table, ts.EL_TRIA3)) == (count[place] != 2).sum()
    np.testing.assert_array_equal(ts.inc_bounding_box(mesh.points), [mesh.points.min(axis=0), mesh.points.max(axis=0)])

"""Exhausted memory: a MemoryError from every operation, and nothing changed."""

import re
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import tessolv as ts

# Arrays first, then a limit that leaves no room for a result of their size.
SCRIPT = """
import resource
import numpy as np
import tessolv as ts

n = 1_000_000
pos = np.random.default_rng(1).uniform(0, 1, (n, 3))
connect = np.arange(n // 4 * 4, dtype=np.uint32).reshape(-1, 4)
ids = np.arange(n, dtype=np.uint32)
lines = np.stack([ids[:-1], ids[1:]], axis=1).copy()
apart = np.full((n, 4), ts.NONE_INDEX, np.uint32)
sizes = np.ones(n, np.float32)
bases = np.ones((n, 6))
before = connect.copy()
CALLS = {
    "get_neighbors": lambda: ts.get_neighbors(connect, 12, raw=True),
    "get_boundaries": lambda: ts.get_boundaries(connect, apart[: len(connect)], 12),
    "get_ancestors": lambda: ts.get_ancestors(connect),
    "get_connex_parts": lambda: ts.get_connex_parts(apart),
    "reorder": lambda: ts.get_connex_parts(apart, connect=apart),
    "copy_edges": lambda: ts.copy_edges(connect, 12),
    "merge": lambda: ts.merge(pos, connect, 0.1),
    "merge_out": lambda: ts.merge(pos, connect, 0.1, out=connect),
    "merge_nodes": lambda: ts.merge(pos, nodes=ids, tolerance=0.1),
    "merge_pos": lambda: ts.merge(pos, tolerance=0.1),
    "NodeDetector": lambda: ts.NodeDetector(pos),
    "unique_indices": lambda: ts.unique_indices(ids),
    "unique_excluding": lambda: ts.unique_indices(ids, exclude=[5]),
    "unique_of_elements": lambda: ts.unique_indices(connect),
    "change_indices": lambda: ts.change_indices(connect, ids),
    "permutation": lambda: ts.permutation(ids, ids, out=ids),
    "get_IDs": lambda: ts.get_IDs(ids, ids),
    "append": lambda: ts.append(pos, pos),
    "simplify": lambda: ts.simplify(pos, connect),
    "copy_mesh": lambda: ts.copy_mesh(pos, connect),
    "remove_degenerated": lambda: ts.remove_degenerated(connect),
    "shape_qualities": lambda: ts.shape_qualities(pos, lines, 3),
    "Histogram": lambda: ts.Histogram(0, 1, 4 * n),
    "edge_lengths": lambda: ts.edge_lengths(pos, lines),
    "edge_qualities": lambda: ts.edge_qualities(pos, lines, 3, sizes),
    "metrics_iso_to_aniso2d": lambda: ts.metrics_iso_to_aniso2d(sizes, bases),
    "translate": lambda: ts.translate(pos, [1, 0, 0]),
    "clip": lambda: ts.clip(pos, connect, [-1, 0, 0], [1, 0, 0]),
    "vtk_convert": lambda: ts.vtk_convert(connect, 12),
    "fortran": lambda: ts.translate(pos.T.copy().T, [1, 0, 0]),
}
used = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
resource.setrlimit(resource.RLIMIT_AS, (used + (1 << 20), resource.getrlimit(resource.RLIMIT_AS)[1]))
for name, call in CALLS.items():
    try:
        call()
    except MemoryError:
        continue
    print(name, "found memory")
resource.setrlimit(resource.RLIMIT_AS, (resource.RLIM_INFINITY,) * 2)
assert (connect == before).all() and (ids == np.arange(n)).all()
assert len(ts.merge(pos, connect, 1e-9).new_IDs) == n
print("done")
"""


def test_one_huge_index_takes_no_memory(tmp_path):
    # 51, 34, 34 and 48 gigabytes would be granted on many machines, and end the program when they are written to.
    found = re.search(r"MemAvailable: +(\d+)", Path("/proc/meminfo").read_text())
    available = int(found[1]) * 1024 if found else 0
    if available < 30e9:
        with pytest.raises(MemoryError):
            ts.get_ancestors([[0, 1, 2**32 - 2]])
        with pytest.raises(MemoryError):
            ts.medit_output(tmp_path / "refs.mesh", np.zeros((3, 3)), [[0, 1, 2]], ts.EL_TRIA3, [2**32 - 2])
        with pytest.raises(MemoryError):
            ts.shape_qualities(np.zeros((3, 3)), np.empty((2**31, 0), np.uint32), ts.EL_TRIA3)
        with pytest.raises(MemoryError):
            ts.translate(np.broadcast_to(np.zeros((1, 3)), (2**31, 3)), [1, 0, 0])
        with pytest.raises(MemoryError):
            ts.Histogram(0, 1, 2**32 - 2)


@pytest.mark.skipif(not sys.platform.startswith("linux"), reason="limits of the address space")
def test_every_operation_says_that_memory_ran_out():
    result = subprocess.run([sys.executable, "-c", SCRIPT], capture_output=True, text=True)
    assert (result.stdout, result.stderr) == ("done\n", "")

"""Neighbours across the faces of triangles or tetrahedra by sorting their packed nodes: FILE ROWS, 32-bit numbers column
by column. Prints seconds, bytes beyond the input, links and the sum that fingerprint of harness.h makes of them."""
import sys
import time

import numpy as np


def status(key):
    with open("/proc/self/status") as lines:
        return next(1024 * int(line.split()[1]) for line in lines if line.startswith(key))


def neighbors(connect):
    """Faces k opposite node k, as one row per element."""
    count, rows = connect.shape
    nodes = np.sort(np.stack([np.delete(connect, k, axis=1) for k in range(rows)], axis=1), axis=2)
    bits = int(connect.max()).bit_length()
    keys = np.zeros(count * rows, dtype=np.uint64)
    for column in nodes.reshape(-1, rows - 1).T:
        keys = keys << np.uint64(bits) | column.astype(np.uint64)
    order = np.argsort(keys, kind="stable")
    sorted_keys = keys[order]
    first = np.flatnonzero(sorted_keys[1:] == sorted_keys[:-1])
    one, other = order[first], order[first + 1]
    found = np.full(count * rows, 0xFFFFFFFF, dtype=np.uint32)
    found[one] = other // rows
    found[other] = one // rows
    return found.reshape(count, rows)


def fingerprint(found):
    element, _ = np.nonzero(found != 0xFFFFFFFF)
    neighbor = found[found != 0xFFFFFFFF].astype(np.uint64)
    h = element.astype(np.uint64) * np.uint64(0x9E3779B97F4A7C15) + neighbor + np.uint64(0x7F4A7C15)
    h = (h ^ h >> np.uint64(29)) * np.uint64(0xBF58476D1CE4E5B9)
    return len(h), int(np.sum(h ^ h >> np.uint64(32), dtype=np.uint64)) >> 12


given = np.fromfile(sys.argv[1], dtype=np.uint32).reshape(-1, int(sys.argv[2]))
with open("/proc/self/clear_refs", "w") as reset:
    reset.write("5")
before = status("VmRSS:")
start = time.perf_counter()
result = neighbors(given)
seconds = time.perf_counter() - start
print(seconds, max(0, status("VmHWM:") - before), *fingerprint(result))

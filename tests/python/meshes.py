"""Meshes of every kind that has neighbours, cut out of a grid and shuffled."""

from __future__ import annotations

import itertools
from typing import Dict, List, NamedTuple, Tuple

import numpy as np
from numpy.typing import NDArray

from tessolv import ElementType


class Mesh(NamedTuple):
    pos: NDArray[np.float64]
    connect: NDArray[np.uint32]
    type: ElementType


#: Local faces of the elements by their vertices, written down from docs/elements.md.
FACES: Dict[ElementType, List[Tuple[int, ...]]] = {
    ElementType.EDGE2: [(1,), (0,)],
    ElementType.TRIA3: [(1, 2), (2, 0), (0, 1)],
    ElementType.QUAD4: [(0, 1), (1, 2), (2, 3), (3, 0)],
    ElementType.TETRA4: [(1, 2, 3), (2, 0, 3), (1, 3, 0), (2, 1, 0)],
    ElementType.HEXA8: [(0, 3, 7, 4), (1, 5, 6, 2), (0, 4, 5, 1), (3, 2, 6, 7), (0, 1, 2, 3), (7, 6, 5, 4)],
}

#: Local edges in the order in which they are met.
EDGES: Dict[ElementType, List[Tuple[int, int]]] = {
    ElementType.EDGE2: [(0, 1)],
    ElementType.TRIA3: [(1, 2), (2, 0), (0, 1)],
    ElementType.QUAD4: [(0, 1), (1, 2), (2, 3), (3, 0)],
    ElementType.TETRA4: [(1, 2), (2, 0), (0, 1), (0, 3), (1, 3), (2, 3)],
    ElementType.HEXA8: [
        (0, 1), (1, 2), (2, 3), (3, 0), (4, 5), (5, 6), (6, 7), (7, 4), (0, 4), (1, 5), (2, 6), (3, 7),
    ],
}  # fmt: skip

#: The elements that fill one cell of the grid, whose corners are numbered as those of a hexahedron.
CELLS: Dict[ElementType, Tuple[int, List[Tuple[int, ...]]]] = {
    ElementType.EDGE2: (1, [(0, 1)]),
    ElementType.TRIA3: (2, [(0, 1, 2), (0, 2, 3)]),
    ElementType.QUAD4: (2, [(0, 1, 2, 3)]),
    # Six tetrahedra around a diagonal, turned so that they are positive.
    ElementType.TETRA4: (3, [(0, 2, 1, 6), (0, 3, 2, 6), (0, 7, 3, 6), (0, 4, 7, 6), (0, 5, 4, 6), (0, 1, 5, 6)]),
    ElementType.HEXA8: (3, [(0, 1, 2, 3, 4, 5, 6, 7)]),
}

CORNERS = [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)]


def grid(type: ElementType, size: int) -> Mesh:
    """A grid of size cells along each side; lines and surfaces lie in the plane."""
    dimension, elements = CELLS[type]
    sides = [size if d < dimension else 0 for d in range(3)]
    numbers = np.arange((sides[0] + 1) * (sides[1] + 1) * (sides[2] + 1)).reshape([n + 1 for n in sides[::-1]])
    pos = np.array(list(itertools.product(*[range(n + 1) for n in sides[::-1]])), dtype=float)[:, ::-1]
    corners = []
    for x, y, z in CORNERS[: 2**dimension]:
        shifted = numbers[z : z + max(sides[2], 1), y : y + max(sides[1], 1), x : x + max(sides[0], 1)]
        corners.append(shifted.reshape(-1))
    cells = np.stack(corners, axis=1)
    connect = np.concatenate([cells[:, list(nodes)] for nodes in elements]).astype(np.uint32, order="C")
    return Mesh(np.ascontiguousarray(pos if dimension == 3 else pos[:, :2]), connect, type)


def shuffled(type: ElementType, size: int, seed: int, drop: float = 0.2) -> Mesh:
    """The grid with moved nodes, new numbers, a new order of the elements, and holes."""
    random = np.random.default_rng(seed)
    mesh = grid(type, size)
    numbers = random.permutation(len(mesh.pos)).astype(np.uint32)
    pos = np.empty_like(mesh.pos)
    pos[numbers] = mesh.pos + random.uniform(-0.2, 0.2, mesh.pos.shape)
    keep = random.permutation(len(mesh.connect))
    keep = keep[: max(1, int(len(keep) * (1 - drop)))]
    return Mesh(pos, np.ascontiguousarray(numbers[mesh.connect[keep]]), type)


FACED = list(CELLS)


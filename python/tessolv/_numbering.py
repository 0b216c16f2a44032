"""The local numbering of elements here and elsewhere: one table.

Tetrahedra are turned the other way in VTK, Gmsh and meshio, and so are the wedges of VTK (their first triangle faces
outward). The mid-side nodes of triangles and tetrahedra follow the edge table of the library, those of Gmsh's bricks their
own.
"""

from __future__ import annotations

from typing import Any, Dict, List, Optional, Tuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._conventions import ElementType as E
from ._errors import Error

#: Kinds by the names of meshio.
MESHIO_NAMES: Dict[E, str] = {
    E.NODE: "vertex",
    E.EDGE2: "line",
    E.EDGE3: "line3",
    E.TRIA3: "triangle",
    E.QUAD4: "quad",
    E.TRIA6: "triangle6",
    E.QUAD8: "quad8",
    E.QUAD9: "quad9",
    E.TETRA4: "tetra",
    E.TETRA10: "tetra10",
    E.PYRAMID5: "pyramid",
    E.PYRAMID14: "pyramid14",
    E.WEDGE6: "wedge",
    E.WEDGE18: "wedge18",
    E.HEXA8: "hexahedron",
    E.HEXA20: "hexahedron20",
    E.HEXA27: "hexahedron27",
}

#: Kinds by the numbers of VTK cells.
VTK_CELLS: Dict[E, int] = {
    E.NODE: 1,
    E.EDGE2: 3,
    E.EDGE3: 21,
    E.TRIA3: 5,
    E.QUAD4: 9,
    E.TRIA6: 22,
    E.QUAD8: 23,
    E.QUAD9: 28,
    E.TETRA4: 10,
    E.TETRA10: 24,
    E.PYRAMID5: 14,
    E.WEDGE6: 13,
    E.WEDGE18: 32,
    E.HEXA8: 12,
    E.HEXA20: 25,
    E.HEXA27: 29,
}

_TRIA6 = [0, 1, 2, 5, 3, 4]
_TETRA4 = [0, 1, 3, 2]
_TETRA10 = [0, 1, 3, 2, 6, 8, 7, 5, 4, 9]
_HEXA20_EDGES = [8, 11, 16, 9, 17, 10, 18, 19, 12, 15, 13, 14]

#: Place k of an element elsewhere takes the node of place _ORDERS[convention][type][k] here; the others agree.
_ORDERS: Dict[str, Dict[E, List[int]]] = {
    "tessolv": {},
    "meshio": {E.TRIA6: _TRIA6, E.TETRA4: _TETRA4, E.TETRA10: _TETRA10},
    "vtk": {
        E.TRIA6: _TRIA6,
        E.TETRA4: _TETRA4,
        E.TETRA10: _TETRA10,
        E.WEDGE6: [0, 2, 1, 3, 5, 4],
        E.WEDGE18: [0, 2, 1, 3, 5, 4, 8, 7, 6, 11, 10, 9, 12, 14, 13, 17, 16, 15],
    },
    "gmsh": {
        E.TRIA6: _TRIA6,
        E.TETRA4: _TETRA4,
        E.TETRA10: _TETRA10[:8] + [9, 4],
        E.HEXA20: [*range(8), *_HEXA20_EDGES],
        E.HEXA27: [*range(8), *_HEXA20_EDGES, 24, 22, 20, 21, 23, 25, 26],
    },
}

CONVENTIONS: Tuple[str, ...] = tuple(_ORDERS)


def _checked(function: str, connect: ArrayLike, type: int, convention: str) -> Tuple[NDArray[Any], Optional[List[int]]]:
    """The elements as an array, and the order of their nodes elsewhere if it is another one."""
    if convention not in CONVENTIONS:
        raise Error(function, None, "convention", f"is none of {', '.join(CONVENTIONS)}")
    try:
        kind = E(type)
        elements = np.asarray(connect)
    except ValueError as problem:
        raise Error(function, None, "connect or type", str(problem)) from None
    if kind.nodes == 0:
        raise Error(function, None, "type", f"{kind.name} is a mixed kind")
    if elements.shape == (0,):
        elements = elements.reshape(0, kind.nodes)
    if elements.ndim != 2 or elements.shape[1] != kind.nodes:
        raise Error(function, None, "connect", f"has the shape {elements.shape} instead of (n, {kind.nodes})")
    return elements, _ORDERS[convention].get(kind)


def to_numbering(connect: ArrayLike, type: int, convention: str) -> NDArray[Any]:
    """Elements of the library in the local numbering of another package.

    Args:
        connect: shape (elements, nodes).
        type: a pure element type.
        convention: "vtk", "gmsh" or "meshio".

    >>> to_numbering([[0, 1, 2, 3]], 12, "vtk").tolist()
    [[0, 1, 3, 2]]
    """
    elements, order = _checked("to_numbering", connect, type, convention)
    return elements if order is None else elements[:, order]


def from_numbering(connect: ArrayLike, type: int, convention: str) -> NDArray[Any]:
    """Elements of another package in the local numbering of the library.

    Args:
        connect: shape (elements, nodes).
        type: a pure element type.
        convention: "vtk", "gmsh" or "meshio".

    >>> from_numbering(to_numbering([[0, 1, 2, 3]], 12, "gmsh"), 12, "gmsh").tolist()
    [[0, 1, 2, 3]]
    """
    elements, order = _checked("from_numbering", connect, type, convention)
    return elements if order is None else elements[:, np.argsort(order)]

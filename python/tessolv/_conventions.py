"""Element kinds, the missing index, the validity of indices, and arrays that nobody can change."""

from __future__ import annotations

from enum import IntEnum
from typing import Any, Optional, Sequence, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _tessolv

#: Coordinates, shape (nodes, 2 or 3).
Points = NDArray[np.float64]
#: A connectivity of shape (elements, nodes per element), or a list of node or element numbers.
Indices = NDArray[np.uint32]
#: Indices of which some may be missing: int64 with -1, or uint32 with `NONE_INDEX` if `raw=True` was given.
IndexTable = Union[NDArray[np.int64], NDArray[np.uint32]]
#: One connectivity, or a list of them.
Connectivities = Union[ArrayLike, Sequence[ArrayLike]]

NONE_INDEX: int = _tessolv.NONE_INDEX
"""No node, no element, no neighbour."""


class ElementType(IntEnum):
    """The kinds of elements; an int of the same value does as well."""

    NONE = 0
    NODE = 1
    EDGE_MIX = 2
    EDGE2 = 3
    EDGE3 = 4
    FACE_MIX = 5
    TRIA3 = 6
    QUAD4 = 7
    TRIA6 = 8
    QUAD8 = 9
    QUAD9 = 10
    SOLID_MIX = 11
    TETRA4 = 12
    TETRA10 = 13
    PYRAMID5 = 14
    PYRAMID14 = 15
    WEDGE6 = 16
    WEDGE18 = 17
    HEXA8 = 18
    HEXA20 = 19
    HEXA27 = 20

    @property
    def nodes(self) -> int:
        """Nodes of an element, 0 for the mixed kinds."""
        return NODES_PER_ELEMENT[self]

    @property
    def vertices(self) -> int:
        """Corners of an element."""
        return VERTICES_PER_ELEMENT[self]


#: One element type, or one for each of several connectivities.
Types = Union[int, Sequence[int]]

NODES_PER_ELEMENT: tuple[int, ...] = _tessolv.NODES_PER_ELEMENT
VERTICES_PER_ELEMENT: tuple[int, ...] = _tessolv.VERTICES_PER_ELEMENT

EL_NONE = ElementType.NONE
EL_NODE = ElementType.NODE
EL_EDGE_MIX = ElementType.EDGE_MIX
EL_EDGE2 = ElementType.EDGE2
EL_EDGE3 = ElementType.EDGE3
EL_FACE_MIX = ElementType.FACE_MIX
EL_TRIA3 = ElementType.TRIA3
EL_QUAD4 = ElementType.QUAD4
EL_TRIA6 = ElementType.TRIA6
EL_QUAD8 = ElementType.QUAD8
EL_QUAD9 = ElementType.QUAD9
EL_SOLID_MIX = ElementType.SOLID_MIX
EL_TETRA4 = ElementType.TETRA4
EL_TETRA10 = ElementType.TETRA10
EL_PYRAMID5 = ElementType.PYRAMID5
EL_PYRAMID14 = ElementType.PYRAMID14
EL_WEDGE6 = ElementType.WEDGE6
EL_WEDGE18 = ElementType.WEDGE18
EL_HEXA8 = ElementType.HEXA8
EL_HEXA20 = ElementType.HEXA20
EL_HEXA27 = ElementType.HEXA27


def peek(value: Any) -> Optional[NDArray[Any]]:
    """An argument as an array, to choose what to call; None where it is none, which the module then refuses."""
    try:
        return np.asarray(value)
    except (TypeError, ValueError):
        return None


def version() -> str:
    """Version of the library.

    >>> version()
    '3.9.3'
    """
    return _tessolv.version()


def check_IDs(ids: ArrayLike, n: int, type: Optional[int] = None) -> bool:
    """Whether every entry is missing or below `n`.

    Args:
        ids: a list of indices, or a connectivity.
        n: number of nodes; `NONE_INDEX` to check shape and placement alone.
        type: element type of `ids`. The number of columns must then be that of the type, and indices may be missing
            only where a mixed kind may have it. Without it any shape will do.

    >>> check_IDs([0, 1, 2, -1], 3)
    True
    >>> check_IDs([[0, 1, 2, 3]], 4, EL_TETRA4), check_IDs([[0, 1, 2, 4]], 4, EL_TETRA4)
    (True, False)
    """
    return _tessolv.check_IDs(ids, n, type)


def freeze(array: ArrayLike) -> NDArray[Any]:
    """A copy that nobody can write to any more; an array that is such a copy comes back itself.

    Long calls release the interpreter's lock when no other Python object can change their arguments. That is so for
    frozen arrays and for those that had to be converted; an array that can be written to, or made writable again, keeps
    the lock.

    >>> import numpy as np
    >>> points = freeze(np.zeros((4, 3)))
    >>> points.flags.writeable, is_frozen(points), is_frozen(np.zeros((4, 3)))
    (False, True, False)
    >>> freeze(points) is points
    True
    """
    given = peek(array)
    if given is None or given.dtype.kind not in "biufc":
        raise TypeError("freeze: only numbers can be frozen")
    if not given.flags.writeable and _tessolv.is_frozen(given) and given.flags.c_contiguous:
        return given
    if given.size == 0:
        empty = np.empty(given.shape, given.dtype)
        empty.flags.writeable = False
        return empty
    return np.frombuffer(given.tobytes(), given.dtype).reshape(given.shape)


def is_frozen(array: NDArray[Any]) -> bool:
    """Whether no Python object can change the entries of an array: see `freeze`."""
    return isinstance(array, np.ndarray) and _tessolv.is_frozen(array)

"""Numbers per element and per edge."""

from __future__ import annotations

from typing import Optional, Union, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _tessolv
from ._conventions import Connectivities, Types
from ._tessolv import Histogram


@overload
def shape_qualities(pos: ArrayLike, connect: Connectivities, type: Types) -> NDArray[np.float64]: ...


@overload
def shape_qualities(pos: ArrayLike, connect: Connectivities, type: Types, histogram: Histogram) -> Histogram: ...


def shape_qualities(
    pos: ArrayLike, connect: Connectivities, type: Types, histogram: Optional[Histogram] = None
) -> Union[NDArray[np.float64], Histogram]:
    """Shape quality of every element: 1 ideal, near 0 flat, negative inverted.

    An inverted hexahedron can fall below -1, by its size. A tetrahedron is positive when its nodes 0, 1, 2 turn
    clockwise seen from node 3. Surface elements have a sign in the plane only.

    Args:
        pos: shape (nodes, 2 or 3).
        connect: shape (elements, vertices), or a list of such arrays; of quadratic elements the corners alone,
            `connect[:, :type.vertices]`, which are used without a copy.
        type: element type, or one for each array of the list. EL_SOLID_MIX and EL_HEXA20 have no measure.
        histogram: collects the values.

    Returns:
        Shape (elements,), array after array; or `histogram`.

    Raises:
        Error: -3 `type`, -4 number of types, -2 indices or columns of `connect`.

    >>> shape_qualities([[0, 0], [1, 0], [1, 1], [0, 1]], [[0, 1, 2, 3], [3, 2, 1, 0]], 7).tolist()
    [1.0, -1.0]
    """
    return _tessolv.shape_qualities(pos, connect, type, histogram)


def edge_lengths(pos: ArrayLike, edges: ArrayLike) -> NDArray[np.float64]:
    """Shortest, mean and longest edge at every node.

    Args:
        pos: shape (nodes, columns); lengths are taken over all columns.
        edges: shape (edges, 2).

    Returns:
        Shape (nodes, 3); at a node without edges the largest double, 0 and the negative largest double. Without edges
        shape (0, 3).

    Raises:
        Error: -2 indices or columns of `edges`.

    >>> edge_lengths([[0, 0], [1, 0], [1, 2]], [[0, 1], [1, 2]])[1].tolist()
    [1.0, 1.5, 2.0]
    """
    return _tessolv.edge_lengths(pos, edges)


@overload
def edge_qualities(pos: ArrayLike, connect: Connectivities, type: Types, sizes: ArrayLike) -> NDArray[np.float64]: ...


@overload
def edge_qualities(
    pos: ArrayLike, connect: Connectivities, type: Types, sizes: ArrayLike, histogram: Histogram
) -> Histogram: ...


def edge_qualities(
    pos: ArrayLike, connect: Connectivities, type: Types, sizes: ArrayLike, histogram: Optional[Histogram] = None
) -> Union[NDArray[np.float64], Histogram]:
    """Length of every distinct edge in units of the size that its ends ask for: 1 as asked, above 1 too long.

    Args:
        pos: shape (nodes, 2 or 3).
        connect: shape (elements, nodes) with all nodes of the type, or a list of such arrays.
        type: element type, or one for each array of the list.
        sizes: shape (nodes,), float32; others are converted.
        histogram: collects the values.

    Returns:
        One value for each edge, in the order of `copy_edges`; or `histogram`. A size that is not greater than 0 ends
        the values before its first edge, and a wrong number of sizes before any.

    Raises:
        Error: -4 number of types, -2 indices or columns of `connect`.

    >>> edge_qualities([[0, 0], [3, 0]], [[0, 1]], 3, [1, 1]).tolist()
    [3.0]
    """
    return _tessolv.edge_qualities(pos, connect, type, sizes, histogram)

"""Moving, turning and scaling nodes; boxes around nodes; the elements on one side of a plane."""

from __future__ import annotations

from typing import NamedTuple, Optional

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _tessolv
from ._conventions import Indices, Points


class BoundingBox(NamedTuple):
    """Corners of a box; min is +infinity and max -infinity where it holds nothing."""

    min: NDArray[np.float64]
    max: NDArray[np.float64]


def translate(
    pos: ArrayLike,
    t: ArrayLike,
    nodes: Optional[ArrayLike] = None,
    *,
    connect: Optional[ArrayLike] = None,
    out: Optional[Points] = None,
) -> Points:
    """Moves nodes by t.

    Args:
        pos: shape (nodes, columns); a missing third coordinate is 0.
        t: 2 or 3 numbers.
        nodes: shape (n,), the nodes to move; one that is listed twice moves twice, others than those of `pos` are
            skipped. Without it all.
        connect: shape (elements, nodes); its nodes are moved, each once.
        out: a float64 array of shape (nodes, 3) for the result in the place of a new one; may be `pos`.

    Returns:
        Shape (nodes, 3).

    >>> translate([[0, 0], [1, 0]], [0, 0, 2], nodes=[1]).tolist()
    [[0.0, 0.0, 0.0], [1.0, 0.0, 2.0]]
    """
    return _tessolv.translate(pos, t, nodes, connect, out)


def rotate(
    pos: ArrayLike,
    centre: ArrayLike,
    rotation: ArrayLike,
    nodes: Optional[ArrayLike] = None,
    *,
    connect: Optional[ArrayLike] = None,
    out: Optional[Points] = None,
) -> Points:
    """Turns nodes about an axis through `centre`.

    Args:
        pos: as in `translate`, and so are `nodes`, `connect` and `out`.
        centre: a point of the axis.
        rotation: direction of the axis, its length the angle in radians, by the right-hand rule.

    >>> import math
    >>> rotate([[1, 0, 0]], [0, 0, 0], [0, 0, math.pi / 2]).round(12).tolist()
    [[0.0, 1.0, 0.0]]
    """
    return _tessolv.rotate(pos, centre, rotation, nodes, connect, out)


def zoom(
    pos: ArrayLike,
    centre: ArrayLike,
    factor: float,
    nodes: Optional[ArrayLike] = None,
    *,
    connect: Optional[ArrayLike] = None,
    out: Optional[Points] = None,
) -> Points:
    """Scales the distance of nodes from `centre`.

    Args:
        pos: as in `translate`, and so are `nodes`, `connect` and `out`.
        centre: the point that stays.
        factor: of every distance from it; negative ones mirror.

    >>> zoom([[1, 2, 3]], [1, 1, 1], 2).tolist()
    [[1.0, 3.0, 5.0]]
    """
    return _tessolv.zoom(pos, centre, factor, nodes, connect, out)


def inc_bounding_box(
    pos: ArrayLike,
    nodes: Optional[ArrayLike] = None,
    *,
    connect: Optional[ArrayLike] = None,
    min: Optional[ArrayLike] = None,
    max: Optional[ArrayLike] = None,
) -> BoundingBox:
    """The box of nodes, or an earlier box enlarged so that it holds them. NaN coordinates are passed over.

    Args:
        pos: shape (nodes, 2 or 3).
        nodes: shape (n,), the nodes to hold; missing ones are skipped. Without it all.
        connect: shape (elements, nodes), whose nodes to hold.
        min: corner to start from, as many numbers as `pos` has columns.
        max: the opposite corner.

    Raises:
        Error: -1 columns of `pos`, -2 a node beyond `pos`.

    >>> box = inc_bounding_box([[0, 5], [2, 1]])
    >>> box.min.tolist(), box.max.tolist()
    ([0.0, 1.0], [2.0, 5.0])
    """
    return BoundingBox(*_tessolv.inc_bounding_box(pos, nodes, connect, min, max))


def clip(pos: ArrayLike, connect: ArrayLike, C: ArrayLike, N: ArrayLike, *, to: Optional[ArrayLike] = None) -> Indices:
    """The elements that lie on the positive side of a plane with all their nodes: (P - C) . N > 0.

    Args:
        pos: shape (nodes, 2 or 3).
        connect: shape (elements, nodes); missing nodes are skipped.
        C: a point of the plane.
        N: its normal, of any length from 1e-12 on.
        to: shape (k, nodes), put before the result.

    Raises:
        Error: -2 a node beyond `pos`, -4 length of `N`, -5 columns of `to`.

    >>> clip([[0, 0], [1, 0], [2, 0]], [[0, 1], [1, 2]], [0.5, 0], [1, 0]).tolist()
    [[1, 2]]
    """
    return _tessolv.clip(pos, connect, C, N, to)

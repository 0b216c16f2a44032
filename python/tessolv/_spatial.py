"""Search of nodes by position, and merging of nodes that lie close together."""

from __future__ import annotations

from typing import Any, NamedTuple, Optional, Sequence, Union, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _tessolv
from ._conventions import Connectivities, Indices, IndexTable, Points


class MergedNodes(NamedTuple):
    """`new_IDs[i]` is the node that stands for node i, itself if it was kept."""

    new_IDs: Indices
    merged: int


class MergedConnect(NamedTuple):
    """The renumbered connectivity (a list if a list was given), the new numbers, and how many nodes were merged."""

    connect: Any
    new_IDs: Indices
    merged: int


class MergedPoints(NamedTuple):
    """Coordinates with merged nodes on the node that stays, the new numbers, and how many nodes were merged."""

    pos: Points
    new_IDs: Indices
    merged: int


class InBoxes(NamedTuple):
    """The nodes in box j are `nodes[offsets[j]:offsets[j + 1]]`."""

    nodes: Indices
    offsets: NDArray[np.int64]


@overload
def merge(pos: ArrayLike, *, tolerance: float, out: Optional[Points] = ...) -> MergedPoints: ...


@overload
def merge(pos: ArrayLike, *, nodes: ArrayLike, nodes2: Optional[ArrayLike] = ..., tolerance: float) -> MergedNodes: ...


@overload
def merge(
    pos: ArrayLike,
    connect: Connectivities,
    tolerance: float = ...,
    mode: int = ...,
    *,
    out: Union[None, Indices, Sequence[Indices]] = ...,
) -> MergedConnect: ...


def merge(
    pos: ArrayLike,
    connect: Optional[Connectivities] = None,
    tolerance: Optional[float] = None,
    mode: int = 0,
    *,
    nodes: Optional[ArrayLike] = None,
    nodes2: Optional[ArrayLike] = None,
    out: Any = None,
) -> Union[MergedPoints, MergedNodes, MergedConnect]:
    """Makes one node stand for nodes within a tolerance; pairs are applied closest first.

    With `connect` the nodes of the elements are merged and the elements renumbered; `pos` keeps all its rows, see
    `simplify`. With `nodes` those of `nodes2`, by default the same list, are merged into them. Without either all nodes
    are, and merged rows take the coordinates of the node that stays.

    Args:
        pos: shape (nodes, 2 or 3).
        connect: shape (elements, nodes), or a list of such arrays.
        tolerance: Euclidean distance in the unit of `pos`, bound included; 1e-6 for connectivities if left out.
        mode: 0 any two nodes; 1 two nodes of one element, one pass; 2 as 1 until a pass merges nothing.
        nodes: shape (n,), node numbers.
        nodes2: shape (m,), node numbers.
        out: for the renumbered connectivity or the coordinates, in the place of a new array; may be the argument itself.

    Raises:
        Error: -1 columns of `pos`, -2 a node beyond `pos`, -6 `mode`; a tolerance that is negative or NaN is -5 with
            `connect`, -4 with `nodes` and otherwise -3.

    >>> found = merge([[0, 0], [1, 0], [1, 1e-9]], [[0, 1], [2, 0]])
    >>> found.connect.tolist(), found.new_IDs.tolist(), found.merged
    ([[0, 1], [1, 0]], [0, 1, 1], 1)
    """
    if connect is not None:
        if nodes is not None or nodes2 is not None:
            raise TypeError("merge: connect and nodes exclude each other")
        within = 1e-6 if tolerance is None else tolerance
        return MergedConnect(*_tessolv.merge_connect(pos, connect, within, mode, out))
    if tolerance is None:
        raise TypeError("merge: tolerance is missing")
    if nodes is not None:
        return MergedNodes(*_tessolv.merge_nodes(pos, nodes, nodes2, tolerance))
    if nodes2 is not None:
        raise TypeError("merge: nodes2 goes with nodes")
    return MergedPoints(*_tessolv.merge_pos(pos, tolerance, out))


class NodeDetector:
    """Finds nodes by position: the node closest to a point or to another node, and the nodes in a box.

    The coordinates are used where they are and must stay unchanged for the answers to be right; a frozen array (see
    `freeze`) makes sure of that, and lets the queries of several threads run at the same time.

    >>> detector = NodeDetector([[0, 0], [1, 0], [1, 1]])
    >>> detector.closest([0.9, 0.2]), detector.closest([[0.9, 0.2], [0.6, 0.9]]).tolist()
    (1, [1, 2])
    >>> detector.in_box([0.5, -1], [2, 2]).tolist()
    [2, 1]
    """

    def __init__(
        self,
        pos: Optional[ArrayLike] = None,
        nodes: Optional[ArrayLike] = None,
        *,
        connect: Optional[Connectivities] = None,
    ) -> None:
        """As `reinit`; without `pos` an empty detector, which finds nothing."""
        self._detector = _tessolv.Detector()
        if pos is not None:
            self.reinit(pos, nodes, connect=connect)
        elif nodes is not None or connect is not None:
            raise TypeError("NodeDetector: pos is missing")

    def reinit(
        self, pos: ArrayLike, nodes: Optional[ArrayLike] = None, *, connect: Optional[Connectivities] = None
    ) -> None:
        """Builds the tree anew.

        Args:
            pos: shape (nodes, 2 or 3).
            nodes: shape (n,), the nodes to search; a repeated one is inserted as often.
            connect: shape (elements, nodes) or a list of such arrays, whose nodes are searched, each once.

        Raises:
            Error: -1 columns of `pos`, -2 a node beyond `pos`. With `nodes` or `connect` the detector then stays as it
                was, otherwise it is empty.
        """
        if nodes is not None and connect is not None:
            raise TypeError("NodeDetector: nodes and connect exclude each other")
        self._detector.reinit(pos, nodes, connect)

    def clear(self) -> None:
        """Back to an empty detector."""
        self._detector.clear()

    def copy(self) -> "NodeDetector":
        """A detector of its own on the same coordinates."""
        other = NodeDetector()
        other._detector = self._detector.copy()
        return other

    __copy__ = copy

    def __deepcopy__(self, memo: Any) -> "NodeDetector":
        return self.copy()

    def __repr__(self) -> str:
        return f"<tessolv.NodeDetector: {len(self)} nodes>"

    def __len__(self) -> int:
        """Insertions that the tree holds; a node that was inserted twice counts twice."""
        return self._detector.size()

    def insert(self, nodes: Optional[ArrayLike] = None, *, connect: Optional[Connectivities] = None) -> int:
        """Inserts the listed nodes, or those of a connectivity; what is no row of the coordinates is passed over.

        Returns:
            How many were inserted; 0 for an empty detector.
        """
        if (nodes is None) == (connect is None):
            raise TypeError("NodeDetector.insert: either nodes or connect")
        return self._detector.insert(nodes, connect)

    def closest(self, points: ArrayLike, *, raw: bool = False) -> Any:
        """The node closest to a point, or to each of several.

        Args:
            points: one point of 2 or 3 numbers, or shape (n, 2 or 3). In space a missing z is 0; in the plane z is not
                looked at.
            raw: `NONE_INDEX` instead of -1 where there is no node at a finite distance.

        Returns:
            One int, or an array of shape (n,).
        """
        return self._detector.closest(points, raw)

    def closest_to_nodes(self, nodes: ArrayLike, *, raw: bool = False) -> Any:
        """The other node closest to a node of the coordinates, or to each of several; they need not be in the tree.

        Returns:
            One int, or an array of the shape of `nodes`; -1 where there is none.
        """
        return self._detector.closest_to_nodes(nodes, raw)

    def in_box(self, lower: ArrayLike, upper: ArrayLike) -> Any:
        """The nodes with lower <= position <= upper in every coordinate, in the order of the tree.

        Args:
            lower: one corner of 2 or 3 numbers, or shape (n, 2 or 3) for n boxes. In space a missing z is 0.
            upper: the opposite corner, of the same shape.

        Returns:
            An array of nodes, or `InBoxes`.
        """
        found = self._detector.in_box(lower, upper)
        return InBoxes(*found) if isinstance(found, tuple) else found

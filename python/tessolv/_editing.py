"""Index lists and whole matrices: distinct indices, renumbering, matching, joining meshes and cleaning them up."""

from __future__ import annotations

from typing import Any, NamedTuple, Optional, Sequence, Union

import numpy as np
from numpy.typing import ArrayLike

from . import _tessolv
from ._conventions import Connectivities, Indices, IndexTable, Points, peek


class Matches(NamedTuple):
    """`pos_in_1[j]` is the place in the first argument of entry j of the second, `pos_in_2` the other way round."""

    pos_in_1: IndexTable
    pos_in_2: IndexTable


class Simplified(NamedTuple):
    """A mesh without unused nodes; `new_IDs[i]` is the new number of node i, -1 if it was dropped."""

    pos: Points
    connect: Any
    new_IDs: IndexTable


class CopiedMesh(NamedTuple):
    """Coordinates with the copied nodes behind the old ones, and the elements on them."""

    pos: Points
    connect: Indices


class Undegenerated(NamedTuple):
    """The elements that stay; `new_IDs[e]` is the new row of element e, -1 if it was dropped."""

    connect: Indices
    new_IDs: IndexTable


def unique_indices(
    ids: Connectivities, exclude: Optional[ArrayLike] = None, *, to: Optional[ArrayLike] = None
) -> Indices:
    """Distinct indices in the order of their first appearance, without missing ones.

    Args:
        ids: shape (n,), a list of indices; or shape (elements, nodes), or a list of such arrays, walked row after row.
        exclude: shape (m,), indices to leave out of a list.
        to: shape (k,), put before the result; it is not compared with it.

    >>> unique_indices([[4, 2], [2, 7]]).tolist(), unique_indices([4, 2, 4, -1], exclude=[2]).tolist()
    ([4, 2, 7], [4])
    """
    return _tessolv.unique_indices(ids, exclude, to)


def count_unique_indices(connect: Connectivities) -> int:
    """Number of distinct indices, missing ones apart.

    Args:
        connect: shape (elements, nodes), or a list of such arrays.

    >>> count_unique_indices([[4, 2], [2, 7]])
    3
    """
    return _tessolv.count_unique_indices(connect)


def change_indices(ids: ArrayLike, new_IDs: ArrayLike, *, out: Optional[Indices] = None) -> Indices:
    """Replaces every entry v by `new_IDs[v]`; entries that are no index of `new_IDs` stay.

    Args:
        ids: shape (n,) or (elements, nodes).
        new_IDs: shape (m,), the new value of each index; -1 makes it missing.
        out: a uint32 array for the result in the place of a new one; may be `ids`.

    >>> change_indices([[0, 1], [1, 5]], [7, 8]).tolist()
    [[7, 8], [8, 5]]
    """
    return _tessolv.change_indices(ids, new_IDs, out)


def permutation(values: ArrayLike, perm: ArrayLike, *, out: Any = None) -> Any:
    """Moves the value at place i to place `perm[i]`; a place that no entry names keeps its value.

    Args:
        values: shape (n,), integers (taken as indices) or floats.
        perm: shape (m,), not checked to be a permutation: the last entry that names a place wins, but `perm[i] == i`
            never writes.
        out: an array of the type of the result, in the place of a new one; may be `values`.

    >>> permutation([10., 20., 30.], [1, 2, 0]).tolist()
    [30.0, 10.0, 20.0]
    """
    given = peek(values)
    return _tessolv.permutation(values, perm, given is not None and given.dtype.kind in "iu", out)


def get_IDs(first: ArrayLike, second: ArrayLike, strict: bool = True, *, raw: bool = False) -> Matches:
    """Finds the entries of each of two lists, or the elements of each of two connectivities, in the other.

    Args:
        first: shape (n,) or (elements, nodes).
        second: of as many dimensions and columns.
        strict: elements match when they are equal; with False also when one is a cyclic rotation of the other or of its
            reverse. Lists do not look at it.
        raw: uint32 with `NONE_INDEX` instead of int64 with -1.

    Returns:
        The last place that matches, for each entry; in lists the earlier ones of equal entries of `first` have none.

    Raises:
        Error: -2 the connectivities have different numbers of columns.

    >>> found = get_IDs([5, 6, 7], [7, 9, 5])
    >>> found.pos_in_1.tolist(), found.pos_in_2.tolist()
    ([2, -1, 0], [2, -1, 0])
    """
    return Matches(*_tessolv.get_IDs(first, second, strict, raw))


def _append_kind(A: Any) -> str:
    given = peek(A)
    if given is None or given.dtype.kind not in "iuf":
        return "points"
    if given.dtype == np.float32:
        return "sizes" if given.ndim == 1 else "metrics"
    return "points" if given.dtype.kind == "f" else "indices"


def append(A: ArrayLike, B: Union[ArrayLike, Sequence[ArrayLike]], cols: Optional[ArrayLike] = None) -> Any:
    """Appends the rows of B to A, or those that `cols` lists.

    Args:
        A: coordinates (float64), a connectivity (integers), a field of metrics (float32) or of sizes (float32, one
            dimension). Without rows of its own it takes the columns of B.
        B: of the type and the columns of A, or a list of such arrays.
        cols: shape (n,), rows of B to append (columns, as the library stores them); repetitions are copied again.

    Raises:
        Error: -1 columns of A and B differ, -3 a row that B does not have; for fields -3 columns of B.

    >>> append([[0., 0.]], [[1., 0.], [2., 0.]], cols=[1]).tolist()
    [[0.0, 0.0], [2.0, 0.0]]
    """
    return _tessolv.append(A, B, cols, _append_kind(A))


def simplify(
    pos: ArrayLike,
    connect: Connectivities,
    *,
    raw: bool = False,
    out: Union[None, Indices, Sequence[Indices]] = None,
) -> Simplified:
    """Drops the nodes that no element uses and renumbers the others in the order of their first use.

    When every node is used nothing is renumbered, whatever the order.

    Args:
        pos: shape (nodes, columns).
        connect: shape (elements, nodes), or a list of such arrays.
        raw: `new_IDs` as uint32 with `NONE_INDEX` instead of int64 with -1.
        out: for the renumbered connectivity in the place of a new one; may be `connect` itself.

    Raises:
        Error: -2 a node beyond `pos`.

    >>> mesh = simplify([[0., 0.], [9., 9.], [1., 0.]], [[2, 0]])
    >>> mesh.pos.tolist(), mesh.connect.tolist(), mesh.new_IDs.tolist()
    ([[1.0, 0.0], [0.0, 0.0]], [[0, 1]], [1, -1, 0])
    """
    return Simplified(*_tessolv.simplify(pos, connect, raw, out))


def copy_mesh(pos: ArrayLike, connect: ArrayLike) -> CopiedMesh:
    """Copies elements together with their nodes, which come behind those of `pos`.

    Args:
        pos: shape (nodes, columns).
        connect: shape (elements, nodes); missing nodes stay missing.

    Raises:
        Error: -3 a node beyond `pos`.

    >>> copy = copy_mesh([[0., 0.], [1., 0.], [2., 0.]], [[1, 2]])
    >>> len(copy.pos), copy.connect.tolist()
    (5, [[3, 4]])
    """
    return CopiedMesh(*_tessolv.copy_mesh(pos, connect))


def remove_degenerated(connect: ArrayLike, *, raw: bool = False) -> Undegenerated:
    """Drops the elements that use a node twice; a repeated missing node does not count.

    Args:
        connect: shape (elements, nodes).
        raw: `new_IDs` as uint32 with `NONE_INDEX` instead of int64 with -1.

    >>> left = remove_degenerated([[0, 1, 1], [0, 1, 2]])
    >>> left.connect.tolist(), left.new_IDs.tolist()
    ([[0, 1, 2]], [-1, 0])
    """
    return Undegenerated(*_tessolv.remove_degenerated(connect, raw))

"""Who touches whom. Coordinates play no part here; the local numbering is drawn in docs/elements.md."""

from __future__ import annotations

from typing import NamedTuple, Optional, Union, overload

from numpy.typing import ArrayLike

from . import _tessolv
from ._conventions import Connectivities, Indices, IndexTable, Types


class ConnexParts(NamedTuple):
    """Part p is `elements[offsets[p]:offsets[p + 1]]`."""

    elements: Indices
    offsets: Indices


class ReorderedParts(NamedTuple):
    """A mesh whose part p is the rows `offsets[p]:offsets[p + 1]`."""

    connect: Indices
    neighbors: IndexTable
    offsets: Indices


def get_neighbors(connect: ArrayLike, type: int, link_nonmanifold: bool = False, *, raw: bool = False) -> IndexTable:
    """Neighbour of every element across each of its faces.

    `neighbors[e, k]` is the element that shares local face k of element e, or -1 on the boundary. The faces of a line
    are its ends, of a surface element its edges. Orientation is not compared.

    Args:
        connect: shape (elements, vertices). Of quadratic elements pass the corners, `connect[:, :type.vertices]`, under
            the linear type.
        type: EL_EDGE2, EL_TRIA3, EL_QUAD4, EL_FACE_MIX, EL_TETRA4 or EL_HEXA8.
        link_nonmanifold: a face of three or more elements has no neighbour; with True each of the others is linked to
            the first and the first to the last.
        raw: uint32 with `NONE_INDEX` instead of int64 with -1; no further pass over the table then.

    Returns:
        Shape (elements, faces).

    Raises:
        Error: -1 indices or columns of `connect`, -2 `type`.

    >>> get_neighbors([[0, 1, 2], [1, 3, 2]], 6)
    array([[ 1, -1, -1],
           [-1,  0, -1]])
    """
    return _tessolv.get_neighbors(connect, type, link_nonmanifold, raw)


def get_boundaries(connect: ArrayLike, neighbors: ArrayLike, type: int) -> Indices:
    """Faces without a neighbour: vertices of a line mesh, edges of a surface, triangles or quadrangles of a solid.

    Args:
        connect: shape (elements, vertices), as for `get_neighbors`.
        neighbors: shape (elements, faces); raw tables are used without a copy.
        type: as for `get_neighbors`.

    Returns:
        Shape (faces, vertices of a face), element by element and face by face; of EL_FACE_MIX the missing fourth faces
        of triangles stand at the end, all `NONE_INDEX`.

    Raises:
        Error: -1 indices or columns of `connect`, -2 `type` or shape of `neighbors`.

    >>> triangles = [[0, 1, 2], [1, 3, 2]]
    >>> get_boundaries(triangles, get_neighbors(triangles, 6), 6).tolist()
    [[2, 0], [0, 1], [3, 2], [1, 3]]
    """
    return _tessolv.get_boundaries(connect, neighbors, type)


def get_ancestors(
    connect: ArrayLike,
    ancestors: Optional[ArrayLike] = None,
    *,
    raw: bool = False,
    out: Optional[Indices] = None,
) -> IndexTable:
    """One element of each node: the last one that holds it.

    Args:
        connect: shape (elements, nodes).
        ancestors: shape (nodes,); an earlier result, of which nodes without element keep their entry. Without it the
            list reaches up to the largest node.
        raw: uint32 with `NONE_INDEX` instead of int64 with -1.
        out: a uint32 array of the shape of `ancestors`, which may be the same, for the result.

    Raises:
        Error: -1 a missing node in `connect` without `ancestors`.

    >>> get_ancestors([[0, 1, 2], [1, 4, 2]]).tolist()
    [0, 1, 1, -1, 1]
    """
    if out is not None and ancestors is None:
        ancestors = out
    return _tessolv.get_ancestors(connect, ancestors, raw, out)


@overload
def get_connex_parts(neighbors: ArrayLike) -> ConnexParts: ...


@overload
def get_connex_parts(neighbors: ArrayLike, *, connect: ArrayLike, raw: bool = ...) -> ReorderedParts: ...


def get_connex_parts(
    neighbors: ArrayLike, *, connect: Optional[ArrayLike] = None, raw: bool = False
) -> Union[ConnexParts, ReorderedParts]:
    """The elements part by part, each breadth first from its lowest element.

    Args:
        neighbors: shape (elements, faces), as `get_neighbors` makes it.
        connect: shape (elements, nodes); reorders the mesh so that every part is a run of rows.
        raw: the reordered neighbours as uint32 with `NONE_INDEX`.

    Returns:
        `ConnexParts`, or `ReorderedParts` with `connect`.

    >>> parts = get_connex_parts([[1], [0], [3], [2]])
    >>> parts.elements.tolist(), parts.offsets.tolist()
    ([0, 1, 2, 3], [0, 2, 4])
    """
    if connect is None:
        return ConnexParts(*_tessolv.get_connex_parts(neighbors))
    return ReorderedParts(*_tessolv.reorder_by_parts(connect, neighbors, raw))


def copy_edges(connect: Connectivities, type: Types, edges: Optional[ArrayLike] = None) -> Indices:
    """Distinct edges of the elements, smaller index first, in the order in which they are first met.

    Args:
        connect: shape (elements, nodes) with all nodes of quadratic types, or a list of such arrays.
        type: element type, or one for each array of the list.
        edges: shape (edges, 2), put before the new ones; they are not compared with them.

    Returns:
        Shape (edges, 2).

    Raises:
        Error: -1 indices or columns of `connect`; of one array -3 columns of `edges`; of a list -3 number of types, -4
            columns of `edges`.

    >>> copy_edges([[0, 1, 2], [1, 3, 2]], 6).tolist()
    [[1, 2], [0, 2], [0, 1], [2, 3], [1, 3]]
    """
    return _tessolv.copy_edges(connect, type, edges)

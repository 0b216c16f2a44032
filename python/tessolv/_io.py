"""Files. Every writer replaces the file; the bytes do not depend on the locale."""

from __future__ import annotations

import os
from typing import IO, Any, NamedTuple, Optional, Union

from numpy.typing import ArrayLike

from . import _tessolv
from ._conventions import Connectivities, Indices, Points, Types
from ._errors import Error

FileName = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


class Cells(NamedTuple):
    """Cells of a VTK legacy file: for each the number of its nodes and then the nodes, and one code for each."""

    cell_count: int
    cells: Indices
    cell_types: Indices


class Surface(NamedTuple):
    """What an STL file holds: nodes of shape (nodes, 3) and triangles of shape (triangles, 3)."""

    pos: Points
    connect: Indices


class WavefrontOBJ(NamedTuple):
    """What a Wavefront OBJ file holds."""

    pos: Points
    normals: Points
    uvs: Points
    tria_connect: Indices
    quad_connect: Indices


def _three(function: str, argument: str, cells: Any) -> Cells:
    try:
        return Cells(*cells)
    except TypeError:
        raise Error(function, None, argument, "is no Cells") from None


def vtk_convert(connect: ArrayLike, type: int, to: Optional[Cells] = None) -> Cells:
    """The cells of the VTK legacy format that stand for elements.

    A cell of the corners for each element, and a poly-vertex of its further nodes. Tetrahedra are turned.

    Args:
        connect: shape (elements, nodes).
        type: any pure type but pyramids.
        to: cells to append to.

    Raises:
        Error: -1 columns of `connect`, or a missing node; -2 `type`.

    >>> vtk_convert([[0, 1, 2, 3]], 12).cells.tolist()
    [4, 0, 1, 3, 2]
    """
    before = Cells(0, None, None) if to is None else _three("vtk_convert", "to", to)  # type: ignore[arg-type]
    return Cells(*_tessolv.vtk_convert(connect, type, *before))


def vtk_output(
    file: Union[FileName, IO[Any]],
    pos: ArrayLike,
    connect: Optional[Connectivities] = None,
    type: Optional[Types] = None,
    *,
    cells: Optional[Cells] = None,
) -> None:
    """Writes a VTK legacy file, an ASCII unstructured grid.

    Args:
        file: name; with `cells` also an open file.
        pos: shape (nodes, 2 or 3).
        connect: shape (elements, nodes), or a list of such arrays.
        type: element type, or one for each array of the list.
        cells: cells of `vtk_convert` in the place of `connect`.

    Raises:
        Error: -1 the file, -2 columns of `pos` or a type without a cell, -3 indices or columns of `connect`, -5 number of
            types.
    """
    if cells is not None:
        is_name = isinstance(file, (str, bytes, os.PathLike))
        _tessolv.vtk_output_cells(file, is_name, pos, *_three("vtk_output", "cells", cells))
    elif connect is None or type is None:
        raise TypeError("vtk_output: either connect and type or cells")
    else:
        _tessolv.vtk_output(file, pos, connect, type)


def medit_output(
    filename: FileName, pos: ArrayLike, connect: Connectivities, type: Types, refs: Optional[ArrayLike] = None
) -> None:
    """Writes a MEDIT ASCII mesh file: corners only, nodes counted from 1.

    Args:
        filename: not touched before all checks have passed.
        pos: shape (nodes, 1 to 3).
        connect: shape (elements, nodes), or a list of such arrays; the place in the list is the reference.
        type: element type, or one for each array of the list.
        refs: shape (elements,), a reference for each element of one array; missing ones leave their element out.

    Raises:
        Error: -1 the file, -2 columns of `pos`, -3 columns or missing nodes of `connect`, -5 number of types or of
            references.
    """
    _tessolv.medit_output(filename, pos, connect, type, refs)


def medit_tensor(filename: FileName, M: ArrayLike) -> None:
    """Writes a field of metric tensors as a MEDIT solution file.

    Args:
        filename: created before anything is checked.
        M: shape (nodes, 3 or 6), float32; others are converted.

    Raises:
        Error: -1 the file, -2 columns of `M`.
    """
    _tessolv.medit_tensor(filename, M)


def ensight_output(filename: FileName, pos: ArrayLike, connect: Connectivities, type: Types) -> None:
    """Writes an EnSight ASCII geometry file, one part for each connectivity.

    Args:
        filename: created before anything is checked.
        pos: shape (nodes, 1 to 3).
        connect: shape (elements, nodes), or a list of such arrays.
        type: element type, or one for each array of the list.

    Raises:
        Error: -1 the file, -2 columns of `pos`, -3 columns or missing nodes of `connect`, -5 number of types.
    """
    _tessolv.ensight_output(filename, pos, connect, type)


def STL_output(filename: FileName, pos: ArrayLike, connect: ArrayLike, ascii: bool) -> None:
    """Writes triangles as an STL file.

    Args:
        filename: created before anything is checked.
        pos: shape (nodes, 2 or 3).
        connect: shape (triangles, 3).
        ascii: text, or binary in single precision.

    Raises:
        Error: -1 the file, -2 columns of `pos`, -3 indices or columns of `connect`.
    """
    _tessolv.STL_output(filename, pos, connect, ascii)


def STL_input(filename: FileName, ascii: bool) -> Surface:
    """Reads an STL file and welds its facets into a mesh.

    Args:
        filename: the file.
        ascii: whether it is text; the content never decides.

    Raises:
        Error: -1 the file cannot be opened, or has no first line or no complete header.
    """
    return Surface(*_tessolv.STL_input(filename, ascii))


def WavefrontOBJ_output(
    filename: FileName,
    pos: ArrayLike,
    normals: Optional[ArrayLike] = None,
    uvs: Optional[ArrayLike] = None,
    tria_connect: Optional[ArrayLike] = None,
    quad_connect: Optional[ArrayLike] = None,
) -> None:
    """Writes nodes, triangles and quadrilaterals as a Wavefront OBJ file.

    Nothing separates the corners of a face in it; other programs, `WavefrontOBJ_input` too, need blanks there.

    Args:
        filename: created before anything is checked.
        pos: shape (nodes, 2 or 3).
        normals: shape (nodes, 3).
        uvs: shape (nodes, 2).
        tria_connect: shape (triangles, 3).
        quad_connect: shape (quadrilaterals, 4).

    Raises:
        Error: -1 the file, then -2 to -6 the shapes of the arguments in their order, or a missing node.
    """
    _tessolv.WavefrontOBJ_output(filename, pos, normals, uvs, tria_connect, quad_connect)


def WavefrontOBJ_input(filename: FileName) -> WavefrontOBJ:
    """Reads the nodes, normals, texture coordinates, triangles and quadrilaterals of a Wavefront OBJ file.

    Args:
        filename: the file; faces of other numbers of corners and lines of other keywords are passed over.

    Raises:
        Error: -1 the file cannot be opened or is malformed, or memory ran out.
    """
    return WavefrontOBJ(*_tessolv.WavefrontOBJ_input(filename))

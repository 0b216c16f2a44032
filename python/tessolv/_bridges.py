"""Ways to other packages and to files, which are imported when they are needed."""

from __future__ import annotations

import os
from pathlib import Path
from typing import Any, Dict, List, Union

import numpy as np
from numpy.typing import NDArray

from ._conventions import ElementType
from ._errors import Error
from ._io import STL_input, STL_output, WavefrontOBJ_input
from ._mesh import Mesh
from ._numbering import MESHIO_NAMES, VTK_CELLS, from_numbering, to_numbering

_KINDS = {name: type for type, name in MESHIO_NAMES.items()}


def from_meshio(mesh: Any) -> Mesh:
    """A `meshio.Mesh` in the numbering of the library; blocks of one kind become one.

    Args:
        mesh: with cells of kinds that the library has.

    Raises:
        Error: a kind of cells that the library does not have.
    """
    blocks: Dict[ElementType, List[int]] = {}
    for i, block in enumerate(mesh.cells):
        if block.type not in _KINDS:
            raise Error("from_meshio", None, "cells", f"of the kind {block.type!r} are not known here")
        blocks.setdefault(_KINDS[block.type], []).append(i)
    cells: Dict[int, Any] = {
        type: from_numbering(np.concatenate([np.asarray(mesh.cells[i].data) for i in places]), type, "meshio")
        for type, places in blocks.items()
    }
    cell_data: Dict[str, Dict[int, Any]] = {
        name: {type: np.concatenate([values[i] for i in places]) for type, places in blocks.items()}
        for name, values in mesh.cell_data.items()
    }
    return Mesh(mesh.points, cells, mesh.point_data, cell_data)


def to_meshio(mesh: Mesh) -> Any:
    """The mesh as a `meshio.Mesh` in its numbering, one block for each kind.

    Fields of cells that do not name every kind are filled up with NaN, or with 0 where they are integers.
    """
    import meshio

    cells = [
        (MESHIO_NAMES[type], to_numbering(connect, type, "meshio").astype(np.int64))
        for type, connect in mesh.cells.items()
    ]
    cell_data = {
        name: [_filled(values, type, len(connect)) for type, connect in mesh.cells.items()]
        for name, values in mesh.cell_data.items()
    }
    return meshio.Mesh(np.array(mesh.points), cells, dict(mesh.point_data), cell_data)


def to_pyvista(mesh: Mesh) -> Any:
    """The mesh as a `pyvista.UnstructuredGrid`; planes get a third coordinate."""
    import pyvista

    cells, codes, points = vtk_arrays(mesh)
    grid = pyvista.UnstructuredGrid(cells, codes, points)
    for name, values in mesh.point_data.items():
        grid.point_data[name] = values
    for name, fields in mesh.cell_data.items():
        grid.cell_data[name] = np.concatenate([_filled(fields, t, len(c)) for t, c in mesh.cells.items()])
    return grid


def vtk_arrays(mesh: Mesh) -> Any:
    """Cells, cell types and points as VTK has them: for each cell the number of its nodes and then the nodes."""
    cells: List[NDArray[np.int64]] = [np.empty(0, np.int64)]
    codes: List[NDArray[np.uint8]] = [np.empty(0, np.uint8)]
    for type, connect in mesh.cells.items():
        if type not in VTK_CELLS:
            raise Error("to_pyvista", None, "cells", f"of the kind {type.name} are not known to VTK")
        rows = np.empty((len(connect), type.nodes + 1), np.int64)
        rows[:, 0] = type.nodes
        rows[:, 1:] = to_numbering(connect, type, "vtk")
        cells.append(rows.ravel())
        codes.append(np.full(len(connect), VTK_CELLS[type], np.uint8))
    points = np.zeros((len(mesh.points), 3))
    points[:, : mesh.points.shape[1]] = mesh.points
    return np.concatenate(cells), np.concatenate(codes), points


def read(file: Union[str, "os.PathLike[str]"]) -> Mesh:
    """Reads a file by its ending: STL and OBJ through the library, all others through meshio.

    STL facets are welded as `STL_input` does it; the size of the file tells binary from text.
    """
    path = Path(file)
    ending = path.suffix.lower()
    if ending == ".stl":
        pos, connect = STL_input(path, not _is_binary_stl(path))
        return Mesh(pos, {ElementType.TRIA3: connect})
    if ending == ".obj":
        part = WavefrontOBJ_input(path)
        faces = {ElementType.TRIA3: part.tria_connect, ElementType.QUAD4: part.quad_connect}
        return Mesh(part.pos, {int(type): connect for type, connect in faces.items() if len(connect)})
    import meshio

    return from_meshio(meshio.read(path))


def write(file: Union[str, "os.PathLike[str]"], mesh: Mesh) -> None:
    """Writes a file by its ending: STL (triangles, binary) through the library, all others through meshio.

    Args:
        file: its name.
        mesh: what to write; wedges stand in a file as meshio has them, whatever the format.
    """
    path = Path(file)
    if path.suffix.lower() != ".stl":
        to_meshio(mesh).write(path)
        return
    others = [type.name for type, connect in mesh.cells.items() if type != ElementType.TRIA3 and len(connect)]
    if others:
        raise Error("write", None, "mesh", f"holds {', '.join(others)}, STL files hold triangles alone")
    STL_output(path, mesh.points, mesh.cells.get(ElementType.TRIA3, np.empty((0, 3), np.uint32)), ascii=False)


def _is_binary_stl(path: Path) -> bool:
    try:
        with open(path, "rb") as file:
            head = file.read(84)
            size = os.fstat(file.fileno()).st_size
    except OSError:
        return False  # the reader says what is wrong
    if len(head) == 84 and size == 84 + 50 * int.from_bytes(head[80:], "little"):
        return True
    return not head.lstrip().lower().startswith(b"solid")


def _filled(values: Any, type: ElementType, count: int) -> NDArray[Any]:
    if type in values:
        return np.asarray(values[type])
    like = next(iter(values.values()))
    shape = (count, *like.shape[1:])
    return np.zeros(shape, like.dtype) if like.dtype.kind in "iub" else np.full(shape, np.nan, like.dtype)

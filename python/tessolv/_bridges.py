"""Ways to other packages and to files, which are imported when they are needed."""

from __future__ import annotations

import os
import re
import tempfile
from pathlib import Path
from typing import Any, Dict, List, Mapping, NamedTuple, Optional, Union

import numpy as np
from numpy.typing import NDArray

from . import _tessolv
from ._conventions import ElementType
from ._errors import Error
from ._io import STL_input, STL_output, WavefrontOBJ_input
from ._mesh_data import Facets, MeshData
from ._numbering import MESHIO_NAMES, VTK_CELLS, from_numbering, to_numbering

_KINDS = {name: type for type, name in MESHIO_NAMES.items()}


class Parts(NamedTuple):
    """What a mesh is made of."""

    points: Any
    cells: Mapping[int, Any]
    point_data: Optional[Mapping[str, Any]] = None
    cell_data: Optional[Mapping[str, Mapping[int, Any]]] = None
    facets: Optional[Facets] = None


def parts_of_meshio(mesh: Any) -> Parts:
    """A `meshio.Mesh` in the numbering of the library; blocks of one kind become one."""
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
    return Parts(mesh.points, cells, mesh.point_data, cell_data)


def to_meshio(mesh: MeshData) -> Any:
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


def to_pyvista(mesh: MeshData) -> Any:
    """The mesh as a `pyvista.UnstructuredGrid`; planes get a third coordinate."""
    import pyvista

    cells, codes, points = vtk_arrays(mesh)
    grid = pyvista.UnstructuredGrid(cells, codes, points)
    for name, values in mesh.point_data.items():
        grid.point_data[name] = values
    for name, fields in mesh.cell_data.items():
        grid.cell_data[name] = np.concatenate([_filled(fields, t, len(c)) for t, c in mesh.cells.items()])
    return grid


def vtk_arrays(mesh: MeshData) -> Any:
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


def _parts_of_stl(path: Path) -> Parts:
    # What cannot be told is left to the reader, which says what is wrong.
    is_text, in_file, read, solids = _tessolv.survey_stl(os.fsencode(path)) or (True, 0, 0, 1)
    if solids > 1:
        with tempfile.TemporaryDirectory() as folder:
            return _parts_of_stl(_as_one_solid(path, Path(folder) / path.name))
    pos, connect = STL_input(path, is_text)
    kept = len(connect)
    facets = Facets(max(in_file, kept), max(read, kept), kept)
    return Parts(pos, {ElementType.TRIA3: connect}, facets=facets)


def _as_one_solid(path: Path, copy: Path) -> Path:
    """A copy of a text STL with the facets of all solids in one: the library's reader ends with the first."""
    begin_or_end = re.compile(rb"\s*(end)?solid\b", re.IGNORECASE)
    facets = (line for line in path.read_bytes().splitlines(keepends=True) if not begin_or_end.match(line))
    copy.write_bytes(b"".join((b"solid\n", *facets, b"\nendsolid\n")))
    return copy


def parts_of_file(file: Union[str, "os.PathLike[str]"]) -> Parts:
    """Reads a file by its ending: STL and OBJ through the library, all others through meshio."""
    path = Path(file)
    ending = path.suffix.lower()
    if ending == ".stl":
        return _parts_of_stl(path)
    if ending == ".obj":
        part = WavefrontOBJ_input(path)
        faces = {ElementType.TRIA3: part.tria_connect, ElementType.QUAD4: part.quad_connect}
        return Parts(part.pos, {int(type): connect for type, connect in faces.items() if len(connect)})
    import meshio

    if ending == ".msh" and _is_of_gmsh(path):
        return parts_of_meshio(meshio.read(path, file_format="gmsh"))
    return parts_of_meshio(meshio.read(path))


def write(file: Union[str, "os.PathLike[str]"], mesh: MeshData) -> None:
    """Writes a file by its ending: STL (triangles, binary) through the library, all others through meshio, .msh as Gmsh.

    Args:
        file: its name.
        mesh: what to write; wedges stand in a file as meshio has them, whatever the format.
    """
    path = Path(file)
    if path.suffix.lower() != ".stl":
        to_meshio(mesh).write(path, file_format=_gmsh_version(mesh) if path.suffix.lower() == ".msh" else None)
        return
    others = [type.name for type, connect in mesh.cells.items() if type != ElementType.TRIA3 and len(connect)]
    if others:
        raise Error("write", None, "mesh", f"holds {', '.join(others)}, STL files hold triangles alone")
    STL_output(path, mesh.points, mesh.cells.get(ElementType.TRIA3, np.empty((0, 3), np.uint32)), ascii=False)


def _gmsh_version(mesh: MeshData) -> str:
    """Left to itself meshio would write .msh as another program does; the later version asks for Gmsh's own fields."""
    return "gmsh" if len(mesh.cells) == 1 or "gmsh:dim_tags" in mesh.point_data else "gmsh22"


def _is_of_gmsh(path: Path) -> bool:
    with open(path, "rb") as file:
        return file.read(11) == b"$MeshFormat"


def _filled(values: Any, type: ElementType, count: int) -> NDArray[Any]:
    if type in values:
        return np.asarray(values[type])
    like = next(iter(values.values()))
    shape = (count, *like.shape[1:])
    return np.zeros(shape, like.dtype) if like.dtype.kind in "iub" else np.full(shape, np.nan, like.dtype)

"""Ways to other packages and to files, which are imported when they are needed."""

from __future__ import annotations

import os
from contextlib import contextmanager
from pathlib import Path
from typing import Any, Dict, Iterator, List, Mapping, NamedTuple, Optional, Union

import numpy as np
from numpy.typing import NDArray

from . import _tessolv
from ._conventions import ElementType
from ._errors import Error
from ._io import STL_output
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
    if not all(hasattr(mesh, name) for name in ("points", "cells", "point_data", "cell_data")):
        raise Error("from_meshio", None, "mesh", "is no meshio.Mesh")
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
    point_data = {name: np.array(values) for name, values in mesh.point_data.items()}
    return meshio.Mesh(np.array(mesh.points), cells, point_data, cell_data)


def to_pyvista(mesh: MeshData) -> Any:
    """The mesh as a `pyvista.UnstructuredGrid`; planes get a third coordinate."""
    import pyvista

    cells, codes, points = vtk_arrays(mesh)
    grid = pyvista.UnstructuredGrid(cells, codes, points)
    for name, values in mesh.point_data.items():
        grid.point_data[name] = np.array(values)
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
    pos, connect, in_file, read, why, _ = _tessolv.read_stl(os.fsencode(path))
    return Parts(pos, {ElementType.TRIA3: connect}, facets=Facets(in_file, read, len(connect), why))


def parts_of_file(file: Union[str, "os.PathLike[str]"]) -> Parts:
    """Reads a file by its ending: STL and OBJ as the program does, all others through meshio."""
    path = _path("read", file)
    ending = path.suffix.lower()
    if ending == ".stl":
        return _parts_of_stl(path)
    if ending == ".obj":
        return Parts(*_tessolv.read_obj(os.fsencode(path)))
    import meshio

    with _refusals_of_meshio("read"):
        mesh = meshio.read(path, file_format="gmsh" if ending == ".msh" and _is_of_gmsh(path) else None)
    return parts_of_meshio(mesh)


def write(file: Union[str, "os.PathLike[str]"], mesh: MeshData) -> None:
    """Writes a file by its ending: STL (triangles, binary) through the library, all others through meshio, .msh as Gmsh.

    Args:
        file: its name.
        mesh: what to write; wedges stand in a file as meshio has them, whatever the format.
    """
    path = _path("write", file)
    ending = path.suffix.lower()
    if ending != ".stl":
        all_fields = to_meshio(mesh)
        with _refusals_of_meshio("write"):
            if ending == ".msh":
                # The later version would give all elements of a kind the tags of the first one.
                all_fields.point_data.pop("gmsh:dim_tags", None)
                all_fields.write(path, file_format="gmsh22")
            else:
                all_fields.write(path)
        return
    others = [type.name for type, connect in mesh.cells.items() if type != ElementType.TRIA3 and len(connect)]
    if others:
        raise Error("write", None, "mesh", f"holds {', '.join(others)}, STL files hold triangles alone")
    STL_output(path, mesh.points, mesh.cells.get(ElementType.TRIA3, np.empty((0, 3), np.uint32)), ascii=False)


def _path(function: str, file: Any) -> Path:
    try:
        name = os.fsdecode(file)
    except TypeError:
        raise Error(function, None, "file", "is no file name") from None
    if "\0" in name:  # a name would end there
        raise Error(function, None, "file", "is no file name")
    return Path(name)


@contextmanager
def _refusals_of_meshio(function: str) -> Iterator[None]:
    """What meshio raises becomes an `Error`; it would even end the program over a file that it cannot read."""
    try:
        yield
    except (Error, ImportError, MemoryError):
        raise
    except SystemExit:
        raise Error(function, None, "file", "meshio cannot read it, and has printed why") from None
    except Exception as problem:
        raise Error(function, None, "file", f"meshio: {type(problem).__name__}: {problem}") from problem


def _is_of_gmsh(path: Path) -> bool:
    with open(path, "rb") as file:
        return file.read(11) == b"$MeshFormat"


def _filled(values: Any, type: ElementType, count: int) -> NDArray[Any]:
    if type in values:
        return np.array(values[type])
    like = next(iter(values.values()))
    shape = (count, *like.shape[1:])
    return np.zeros(shape, like.dtype) if like.dtype.kind in "iub" else np.full(shape, np.nan, like.dtype)

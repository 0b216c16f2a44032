"""A mesh as one object whose methods chain."""

from __future__ import annotations

import os
from typing import Any, Dict, Iterable, List, Mapping, NamedTuple, Optional, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _geometry, _picture, _quality, _topology
from ._conventions import NONE_INDEX, ElementType, Indices, Points, freeze
from ._editing import get_IDs, remove_degenerated, simplify
from ._errors import Error
from ._geometry import BoundingBox
from ._spatial import merge

Fields = Mapping[str, NDArray[Any]]
#: Values of each kind of cells.
CellFields = Mapping[str, Mapping[ElementType, NDArray[Any]]]

_SURFACES = (ElementType.TRIA3, ElementType.QUAD4, ElementType.TRIA6, ElementType.QUAD8, ElementType.QUAD9)
_LINEAR = {
    ElementType.EDGE3: ElementType.EDGE2,
    ElementType.TRIA6: ElementType.TRIA3,
    ElementType.QUAD8: ElementType.QUAD4,
    ElementType.QUAD9: ElementType.QUAD4,
    ElementType.TETRA10: ElementType.TETRA4,
    ElementType.PYRAMID14: ElementType.PYRAMID5,
    ElementType.WEDGE18: ElementType.WEDGE6,
    ElementType.HEXA20: ElementType.HEXA8,
    ElementType.HEXA27: ElementType.HEXA8,
}
_FACE_OF = {
    ElementType.EDGE2: ElementType.NODE,
    ElementType.TRIA3: ElementType.EDGE2,
    ElementType.QUAD4: ElementType.EDGE2,
    ElementType.TETRA4: ElementType.TRIA3,
    ElementType.HEXA8: ElementType.QUAD4,
}


class Worst(NamedTuple):
    """One element, its quality and the mean of its corners."""

    type: ElementType
    element: int
    quality: float
    centre: Tuple[float, ...]


class WorstElements(List[Worst]):
    """The elements of the least quality, the worst first; prints as a table."""

    def __str__(self) -> str:
        rows = [f"{'type':<10} {'element':>9} {'quality':>10}  centre"]
        for type, element, quality, centre in self:
            place = ", ".join(f"{x:.4g}" for x in centre)
            rows.append(f"{type.name:<10} {element:>9} {quality:>10.4f}  ({place})")
        return "\n".join(rows)


class Mesh:
    """Points, cells by kind, and values on both. A mesh never changes: every method returns a new one.

    The arrays are frozen, so threads may work on one mesh at the same time; cells are in the numbering of the library.

    Attributes:
        points: shape (nodes, 2 or 3).
        cells: for each kind its elements, shape (elements, nodes).
        point_data: for each name values of the nodes.
        cell_data: for each name values of the elements of each kind.

    >>> mesh = Mesh([[0, 0], [1, 0], [1, 1], [0, 0]], {6: [[0, 1, 2], [3, 2, 1]]})
    >>> mesh.weld(1e-6)
    <tessolv.Mesh: 3 points, 2 TRIA3>
    >>> mesh.weld(1e-6).translate([1, 0]).box().min.tolist()
    [1.0, 0.0, 0.0]
    """

    points: Points
    cells: Mapping[ElementType, Indices]
    point_data: Fields
    cell_data: CellFields

    def __init__(
        self,
        points: ArrayLike,
        cells: Union[Mapping[int, ArrayLike], Mapping[ElementType, ArrayLike]],
        point_data: Optional[Mapping[str, ArrayLike]] = None,
        cell_data: Optional[Mapping[str, Mapping[Any, ArrayLike]]] = None,
    ) -> None:
        self.points = freeze(np.asarray(points, dtype=np.float64))
        self.cells = {ElementType(type): _elements(connect, ElementType(type), len(self.points)) for type, connect in cells.items()}
        self.point_data = {name: _values(name, v, len(self.points)) for name, v in (point_data or {}).items()}
        self.cell_data = {
            name: {ElementType(t): _values(name, v, len(self.cells[ElementType(t)])) for t, v in values.items()}
            for name, values in (cell_data or {}).items()
        }

    @classmethod
    def read(cls, file: Union[str, "os.PathLike[str]"]) -> "Mesh":
        """Reads a file by its ending: STL and OBJ through the library, all others through meshio."""
        from ._bridges import read

        return read(file)

    def write(self, file: Union[str, "os.PathLike[str]"]) -> "Mesh":
        """Writes a file by its ending: STL through the library, all others through meshio. Returns the mesh."""
        from ._bridges import write

        write(file, self)
        return self

    def to_meshio(self) -> Any:
        """The mesh as a `meshio.Mesh`."""
        from ._bridges import to_meshio

        return to_meshio(self)

    def to_pyvista(self) -> Any:
        """The mesh as a `pyvista.UnstructuredGrid`."""
        from ._bridges import to_pyvista

        return to_pyvista(self)

    # -- what it holds

    def __repr__(self) -> str:
        kinds = "".join(f", {len(connect)} {type.name}" for type, connect in self.cells.items())
        return f"<tessolv.Mesh: {len(self.points)} points{kinds}>"

    def _repr_html_(self) -> str:
        return _picture.html_table(self) + self.picture()

    def picture(self, width: int = 480, direction: ArrayLike = (2, 3, 1.5)) -> str:
        """An SVG drawing of the visible faces, coloured by quality: see `tessolv.Mesh.quality`.

        Args:
            width: in pixels.
            direction: from the mesh to the eye.
        """
        return _picture.draw(self, width, np.asarray(direction, dtype=float))

    def box(self) -> BoundingBox:
        """The box of all points."""
        return _geometry.inc_bounding_box(self.points)

    def _corners(self, type: ElementType) -> Indices:
        return self.cells[type][:, : type.vertices]

    def quality(self) -> Dict[ElementType, NDArray[np.float64]]:
        """Shape quality of the elements of each kind that has a measure."""
        values = {}
        for type in self.cells:
            linear = _LINEAR.get(type, type)
            if linear != ElementType.NODE:
                values[type] = _quality.shape_qualities(self.points, self._corners(type), linear)
        return values

    def worst(self, count: int = 10) -> WorstElements:
        """The elements of the least quality; those that are not a number come first."""
        found: List[Worst] = []
        for type, values in self.quality().items():
            order = np.where(np.isnan(values), -np.inf, values)
            for e in np.argsort(order, kind="stable")[:count]:
                centre = self.points[self._corners(type)[e]].mean(axis=0)
                found.append(Worst(type, int(e), float(values[e]), tuple(centre.tolist())))
        found.sort(key=lambda one: -np.inf if np.isnan(one.quality) else one.quality)
        return WorstElements(found[:count])

    def edges(self) -> Indices:
        """Distinct edges of all elements that have some."""
        kinds = [type for type in self.cells if type not in (ElementType.NODE, ElementType.HEXA20)]
        return _topology.copy_edges([self.cells[type] for type in kinds], kinds)

    # -- other meshes

    def weld(self, tolerance: float = 1e-6, mode: int = 0) -> "Mesh":
        """Merges close nodes, then drops the elements that collapsed and the nodes that nobody uses.

        Args:
            tolerance: Euclidean distance, bound included.
            mode: 0 any two nodes; 1 two nodes of one element, one pass; 2 as 1 until a pass merges nothing.
        """
        merged = merge(self.points, list(self.cells.values()), tolerance, mode)
        kept: Dict[ElementType, NDArray[Any]] = {}
        cells: Dict[int, ArrayLike] = {}
        for type, connect in zip(self.cells, merged.connect):
            left = remove_degenerated(connect)
            kept[type] = np.flatnonzero(left.new_IDs >= 0)
            cells[type] = left.connect
        return self._with_cells(cells, kept).simplify()

    def simplify(self) -> "Mesh":
        """Drops the nodes that no element uses."""
        mesh = simplify(self.points, list(self.cells.values()))
        used = np.flatnonzero(mesh.new_IDs >= 0)
        order = np.empty(len(used), dtype=np.int64)
        order[mesh.new_IDs[used]] = used
        point_data = {name: values[order] for name, values in self.point_data.items()}
        return Mesh(mesh.pos, dict(zip(self.cells, mesh.connect)), point_data, self.cell_data)

    def clip(self, C: ArrayLike, N: ArrayLike) -> "Mesh":
        """The elements on the positive side of a plane through C of normal N, with all their nodes."""
        kept = {}
        cells: Dict[int, ArrayLike] = {}
        for type, connect in self.cells.items():
            cells[type] = inside = _geometry.clip(self.points, connect, C, N)
            # Equal elements are kept or dropped together.
            kept[type] = np.flatnonzero(get_IDs(inside, connect).pos_in_1 >= 0)
        return self._with_cells(cells, kept).simplify()

    def boundary(self) -> "Mesh":
        """Faces of the elements of highest dimension that have no neighbour; corners only."""
        top = self._top_kinds()
        if set(top) & set(_SURFACES):
            return self._surface_boundary(top)
        if len(top) != 1:
            names = ", ".join(type.name for type in top)
            raise Error("Mesh.boundary", None, "cells", f"of the kinds {names} together have no boundary here")
        linear = _LINEAR.get(top[0], top[0])
        if linear not in _FACE_OF:
            raise Error("Mesh.boundary", None, "cells", f"of the kind {top[0].name} have no boundary here")
        connect = self._corners(top[0])
        faces = _topology.get_boundaries(connect, _topology.get_neighbors(connect, linear, raw=True), linear)
        return Mesh(self.points, {_FACE_OF[linear]: faces}, self.point_data).simplify()

    def translate(self, t: ArrayLike) -> "Mesh":
        """Moves all points by t; they get a third coordinate."""
        return self._with_points(_geometry.translate(self.points, t))

    def rotate(self, centre: ArrayLike, rotation: ArrayLike) -> "Mesh":
        """Turns all points about an axis through `centre`; the length of `rotation` is the angle in radians."""
        return self._with_points(_geometry.rotate(self.points, centre, rotation))

    def zoom(self, centre: ArrayLike, factor: float) -> "Mesh":
        """Scales the distance of all points from `centre`."""
        return self._with_points(_geometry.zoom(self.points, centre, factor))

    def _top_kinds(self) -> List[ElementType]:
        def dimension(type: ElementType) -> int:
            return 3 if type >= ElementType.SOLID_MIX else 2 if type >= ElementType.FACE_MIX else int(type > 1)

        filled = [type for type, connect in self.cells.items() if len(connect)]
        highest = max((dimension(type) for type in filled), default=0)
        return [type for type in filled if dimension(type) == highest]

    def _surface_boundary(self, kinds: Iterable[ElementType]) -> "Mesh":
        """Triangles and quadrangles in one matrix of the mixed kind."""
        rows = []
        for type in kinds:
            corners = np.full((len(self.cells[type]), 4), NONE_INDEX, dtype=np.uint32)
            corners[:, : type.vertices] = self._corners(type)
            rows.append(corners)
        mixed = np.concatenate(rows)
        neighbors = _topology.get_neighbors(mixed, ElementType.FACE_MIX, raw=True)
        edges = _topology.get_boundaries(mixed, neighbors, ElementType.FACE_MIX)
        edges = edges[edges[:, 0] != NONE_INDEX]
        return Mesh(self.points, {ElementType.EDGE2: edges}, self.point_data).simplify()

    def _with_points(self, points: Points) -> "Mesh":
        return Mesh(points, self.cells, self.point_data, self.cell_data)

    def _with_cells(self, cells: Mapping[int, ArrayLike], kept: Mapping[ElementType, NDArray[Any]]) -> "Mesh":
        cell_data = {
            name: {type: field[kept[type]] for type, field in values.items()} for name, values in self.cell_data.items()
        }
        return Mesh(self.points, cells, self.point_data, cell_data)


def _elements(connect: ArrayLike, type: ElementType, nodes: int) -> Indices:
    given = np.asarray(connect)
    if given.size and given.dtype.kind not in "iu":
        raise Error("Mesh", None, f"cells[{type.name}]", f"has the type {given.dtype}, which are no indices")
    if given.size and (given.min() < 0 or given.max() >= nodes):
        raise Error("Mesh", None, f"cells[{type.name}]", "names a node that is no row of points")
    elements = freeze(given.astype(np.uint32, order="C", copy=False))
    if elements.ndim != 2 or elements.shape[1] != type.nodes or type.nodes == 0:
        raise Error("Mesh", None, f"cells[{type.name}]", f"has the shape {elements.shape} instead of (n, {type.nodes})")
    return elements


def _values(name: str, values: ArrayLike, count: int) -> NDArray[Any]:
    field = np.asarray(values)
    if field.ndim == 0 or len(field) != count:
        raise Error("Mesh", None, f"data {name!r}", f"has the shape {field.shape} instead of {count} rows")
    return field

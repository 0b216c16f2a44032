"""A mesh as one object whose methods chain."""

from __future__ import annotations

import operator
import os
from typing import Any, Dict, Iterable, List, Mapping, NamedTuple, Optional, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _bridges, _geometry, _picture, _topology
from ._check import Rules, Verdict, check
from ._conventions import NONE_INDEX, ElementType, Indices, Points
from ._editing import get_IDs, remove_degenerated, simplify
from ._errors import Error
from ._geometry import BoundingBox
from ._mesh_data import LINEAR, CellFields, Facets, Fields, MeshData
from ._spatial import merge

_SURFACES = (ElementType.TRIA3, ElementType.QUAD4, ElementType.TRIA6, ElementType.QUAD8, ElementType.QUAD9)
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


class Mesh(MeshData):
    """Points, cells by kind, and values on both. A mesh never changes: every method returns a new one.

    The arrays are frozen, so threads may work on one mesh at the same time; cells are in the numbering of the library.

    Attributes:
        points: shape (nodes, 2 or 3).
        cells: for each kind its elements, shape (elements, nodes).
        point_data: for each name values of the nodes.
        cell_data: for each name values of the elements of each kind.
        facets: of a surface that an STL file holds, `Facets`; its open edges are faults then. Otherwise None.

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
    facets: Optional[Facets]

    @classmethod
    def read(cls, file: Union[str, "os.PathLike[str]"]) -> "Mesh":
        """Reads a file by its ending: STL and OBJ as the program does, all others through meshio."""
        return cls(*_bridges.parts_of_file(file))

    def write(self, file: Union[str, "os.PathLike[str]"]) -> "Mesh":
        """Writes a file by its ending: STL through the library, all others through meshio. Returns the mesh."""
        _bridges.write(file, self)
        return self

    def to_meshio(self) -> Any:
        """The mesh as a `meshio.Mesh`."""
        return _bridges.to_meshio(self)

    def to_pyvista(self) -> Any:
        """The mesh as a `pyvista.UnstructuredGrid`."""
        return _bridges.to_pyvista(self)

    # -- what it holds

    def _repr_html_(self) -> str:
        return _picture.html_table(self) + self.picture()

    def picture(self, width: int = 480, direction: ArrayLike = (2, 3, 1.5)) -> str:
        """An SVG drawing of the visible faces, coloured by quality: see `tessolv.Mesh.quality`.

        Args:
            width: in pixels, from 16 on.
            direction: from the mesh to the eye, three numbers.
        """
        try:
            eye = np.asarray(direction, dtype=float)
            wide = operator.index(width)
        except (TypeError, ValueError) as problem:
            raise Error("Mesh.picture", None, "width or direction", f"cannot be used: {problem}") from None
        if wide < 16:
            raise Error("Mesh.picture", None, "width", "is below 16")
        if eye.shape != (3,) or not np.isfinite(eye).all() or not eye.any():
            raise Error("Mesh.picture", None, "direction", "is no direction in space")
        return _picture.draw(self, wide, eye)

    def box(self) -> BoundingBox:
        """The box of all points."""
        return _geometry.inc_bounding_box(self.points)

    def check(self, *, profile: Optional[str] = None, rules: Optional[Rules] = None) -> Verdict:
        """What is wrong in the mesh: the findings of `tessolv check`, from the same code.

        Open edges are a fault in a surface of an STL file, see `facets`; in others they are a note.

        Args:
            profile: "default", "solver", "shell" or "closed", see docs/check.md; it counts more than one in the rules.
            rules: a dictionary, JSON text or the path of a JSON file; what it leaves out is as in the profile.

        Raises:
            Error: a profile or rules that do not exist.

        >>> print(Mesh([[0, 0], [1, 0], [0, 1], [5, 5]], {6: [[0, 2, 1]]}).check())
        4 nodes, 1 triangle
        <BLANKLINE>
        quality           min     mean      max inverted      bad     poor     fair     good
        TRIA3         -0.7174  -0.7174  -0.7174        1        0        0        0        0
        <BLANKLINE>
        ! 1 inverted element, 100 %: TRIA3 0
        ! 1 unused node, 25 %: node 3
        <BLANKLINE>
        type          element   quality  finding
        TRIA3               0   -0.7174  inverted
        <BLANKLINE>
        NOT CLEAN: 1 inverted element, 1 unused node
        """
        return check(self.points, self.cells, profile=profile, rules=rules, facets=self.facets)

    def worst(self, count: int = 10) -> WorstElements:
        """The elements of the least quality; those that are not a number come first."""
        try:
            count = operator.index(count)
        except TypeError:
            raise Error("Mesh.worst", None, "count", "is no integer") from None
        if count < 0:
            raise Error("Mesh.worst", None, "count", "is negative")
        found: List[Worst] = []
        for type, values in self.quality().items():
            order = np.where(np.isnan(values), -np.inf, values)
            for e in np.argsort(order, kind="stable")[:count]:
                centre = self.points[self.corners(type)[e]].mean(axis=0)
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
        return self._with_cells(cells, kept, self.facets).simplify()

    def simplify(self) -> "Mesh":
        """Drops the nodes that no element uses."""
        mesh = simplify(self.points, list(self.cells.values()))
        used = np.flatnonzero(mesh.new_IDs >= 0)
        order = np.empty(len(used), dtype=np.int64)
        order[mesh.new_IDs[used]] = used
        point_data = {name: values[order] for name, values in self.point_data.items()}
        return Mesh(mesh.pos, dict(zip(self.cells, mesh.connect)), point_data, self.cell_data, self.facets)

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
        if not top:
            return Mesh(self.points[:0], {})
        if set(top) & set(_SURFACES):
            return self._surface_boundary(top)
        if len(top) != 1:
            names = ", ".join(type.name for type in top)
            raise Error("Mesh.boundary", None, "cells", f"of the kinds {names} together have no boundary here")
        linear = LINEAR.get(top[0], top[0])
        if linear not in _FACE_OF:
            raise Error("Mesh.boundary", None, "cells", f"of the kind {top[0].name} have no boundary here")
        connect = self.corners(top[0])
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
            corners[:, : type.vertices] = self.corners(type)
            rows.append(corners)
        mixed = np.concatenate(rows)
        neighbors = _topology.get_neighbors(mixed, ElementType.FACE_MIX, raw=True)
        edges = _topology.get_boundaries(mixed, neighbors, ElementType.FACE_MIX)
        edges = edges[edges[:, 0] != NONE_INDEX]
        return Mesh(self.points, {ElementType.EDGE2: edges}, self.point_data).simplify()

    def _with_points(self, points: Points) -> "Mesh":
        return Mesh(points, self.cells, self.point_data, self.cell_data, self.facets)

    def _with_cells(
        self, cells: Mapping[int, ArrayLike], kept: Mapping[ElementType, NDArray[Any]], facets: Optional[Facets] = None
    ) -> "Mesh":
        cell_data = {
            name: {type: field[kept[type]] for type, field in values.items()} for name, values in self.cell_data.items()
        }
        return Mesh(self.points, cells, self.point_data, cell_data, facets)


def from_meshio(mesh: Any) -> Mesh:
    """A `meshio.Mesh` in the numbering of the library; blocks of one kind become one.

    Args:
        mesh: with cells of kinds that the library has.

    Raises:
        Error: a kind of cells that the library does not have.
    """
    return Mesh(*_bridges.parts_of_meshio(mesh))


def read(file: Union[str, "os.PathLike[str]"]) -> Mesh:
    """Reads a file by its ending: STL and OBJ as the program does, all others through meshio.

    STL facets are welded as `STL_input` does it; the content of the file tells binary from text, as in the program.
    """
    return Mesh.read(file)

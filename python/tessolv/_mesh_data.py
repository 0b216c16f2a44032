"""What a mesh holds, for everything that shows, writes or changes it."""

from __future__ import annotations

from typing import Any, Dict, Mapping, NamedTuple, Optional, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _quality
from ._conventions import ElementType, Indices, Points, freeze
from ._errors import Error

Fields = Mapping[str, NDArray[Any]]
#: Values of each kind of cells.
CellFields = Mapping[str, Mapping[ElementType, NDArray[Any]]]

#: The kind of the corners of quadratic elements.
LINEAR = {
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


class Facets(NamedTuple):
    """The facets of an STL file: how many it holds, how many were read, how many became triangles.

    A text file is read to the end of its first solid or to the first malformed facet. Facets without area are dropped.
    """

    in_file: int
    read: int
    kept: int


class MeshData:
    """Points, cells by kind and values on both, all checked; the arrays are frozen."""

    points: Points
    cells: Mapping[ElementType, Indices]
    point_data: Fields
    cell_data: CellFields
    facets: Optional[Facets]

    def __init__(
        self,
        points: ArrayLike,
        cells: Union[Mapping[int, ArrayLike], Mapping[ElementType, ArrayLike]],
        point_data: Optional[Mapping[str, ArrayLike]] = None,
        cell_data: Optional[Mapping[str, Mapping[Any, ArrayLike]]] = None,
        facets: Optional[Facets] = None,
    ) -> None:
        self.points = freeze(np.asarray(points, dtype=np.float64))
        count = len(self.points)
        self.cells = {ElementType(type): _elements(connect, ElementType(type), count) for type, connect in cells.items()}
        self.point_data = {name: _values(name, v, count) for name, v in (point_data or {}).items()}
        self.cell_data = {
            name: {ElementType(t): _values(name, v, len(self.cells[ElementType(t)])) for t, v in values.items()}
            for name, values in (cell_data or {}).items()
        }
        self.facets = facets

    def __repr__(self) -> str:
        kinds = "".join(f", {len(connect)} {type.name}" for type, connect in self.cells.items())
        return f"<tessolv.Mesh: {len(self.points)} points{kinds}>"

    def corners(self, type: ElementType) -> Indices:
        """The elements of a kind by their corners alone, without a copy."""
        return self.cells[type][:, : type.vertices]

    def quality(self) -> Dict[ElementType, NDArray[np.float64]]:
        """Shape quality of the elements of each kind that has a measure."""
        values = {}
        for type in self.cells:
            linear = LINEAR.get(type, type)
            if linear != ElementType.NODE:
                values[type] = _quality.shape_qualities(self.points, self.corners(type), linear)
        return values


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

"""What a mesh holds, for everything that shows, writes or changes it."""

from __future__ import annotations

from types import MappingProxyType
from typing import Any, Dict, Mapping, NamedTuple, Optional, Tuple

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


class _FacetCounts(NamedTuple):
    in_file: int
    read: int
    kept: int


class Facets(_FacetCounts):
    """The facets of an STL file: how many it holds, how many were read, how many became triangles.

    All solids of a text file are one surface. With one solid reading stops at the first malformed facet, with several such a
    facet is passed over. Facets that collapse in the weld are dropped.

    Attributes:
        why_not_read: why some were not read, in words; empty when all were.
    """

    why_not_read: str

    def __new__(cls, in_file: int, read: int, kept: int, why_not_read: str = "") -> Facets:
        facets = super().__new__(cls, in_file, read, kept)
        facets.why_not_read = why_not_read
        return facets


class MeshData:
    """Points, cells by kind and values on both, all checked; nothing of it can be changed."""

    points: Points
    cells: Mapping[ElementType, Indices]
    point_data: Fields
    cell_data: CellFields
    facets: Optional[Facets]

    def __init__(
        self,
        points: ArrayLike,
        cells: Mapping[Any, ArrayLike],
        point_data: Optional[Mapping[str, ArrayLike]] = None,
        cell_data: Optional[Mapping[str, Mapping[Any, ArrayLike]]] = None,
        facets: Optional[Facets] = None,
    ) -> None:
        self.points = _points(points)
        count = len(self.points)
        blocks = {_kind(type): connect for type, connect in _mapping("cells", cells).items()}
        self.cells = MappingProxyType({type: _elements(connect, type, count) for type, connect in blocks.items()})
        fields = _mapping("point_data", {} if point_data is None else point_data)
        self.point_data = MappingProxyType({name: _values(name, values, count) for name, values in fields.items()})
        fields = _mapping("cell_data", {} if cell_data is None else cell_data)
        self.cell_data = MappingProxyType({name: self._cell_values(name, values) for name, values in fields.items()})
        self.facets = facets

    def _cell_values(self, name: str, values: Any) -> Mapping[ElementType, NDArray[Any]]:
        kinds = {_kind(type): field for type, field in _mapping(f"data {name!r}", values).items()}
        unknown = [type.name for type in kinds if type not in self.cells]
        if unknown:
            raise Error("Mesh", None, f"data {name!r}", f"names {unknown[0]}, of which there are no cells")
        return MappingProxyType({type: _values(name, field, len(self.cells[type])) for type, field in kinds.items()})

    def __reduce__(self) -> Tuple[Any, ...]:
        """Copies and what comes out of a pickle are checked and frozen as well."""
        cell_data = {name: dict(values) for name, values in self.cell_data.items()}
        return type(self), (self.points, dict(self.cells), dict(self.point_data), cell_data, self.facets)

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


def _mapping(argument: str, value: Any) -> Mapping[Any, Any]:
    if not isinstance(value, Mapping):
        raise Error("Mesh", None, argument, "is no mapping")
    return value


def _kind(type: Any) -> ElementType:
    try:
        return ElementType(type)
    except ValueError:
        raise Error("Mesh", None, "cells", f"{type!r} is no element type") from None


def _array(argument: str, value: Any) -> NDArray[Any]:
    try:
        return np.asarray(value)
    except (TypeError, ValueError) as problem:
        raise Error("Mesh", None, argument, f"is no array: {problem}") from None


def _points(points: Any) -> Points:
    given = _array("points", points)
    if given.shape == (0,):
        given = given.reshape(0, 3)
    if given.ndim != 2 or given.shape[1] not in (2, 3):
        raise Error("Mesh", None, "points", f"has the shape {given.shape} instead of (nodes, 2 or 3)")
    if given.dtype.kind not in "fiub":
        raise Error("Mesh", None, "points", f"has the type {given.dtype}")
    return freeze(given.astype(np.float64, order="C", copy=False))


def _elements(connect: Any, type: ElementType, nodes: int) -> Indices:
    name = f"cells[{type.name}]"
    given = _array(name, connect)
    if given.shape == (0,):
        given = given.reshape(0, type.nodes)
    if given.size and given.dtype.kind not in "iu":
        raise Error("Mesh", None, name, f"has the type {given.dtype}, which are no indices")
    if given.ndim != 2 or given.shape[1] != type.nodes or type.nodes == 0:
        raise Error("Mesh", None, name, f"has the shape {given.shape} instead of (n, {type.nodes})")
    if given.size and (given.min() < 0 or given.max() >= nodes):
        e, k = np.argwhere((given < 0) | (given >= nodes))[0]
        raise Error("Mesh", None, name, f"entry [{e}, {k}] = {given[e, k]} is no row of points")
    return freeze(given.astype(np.uint32, order="C", copy=False))


def _values(name: str, values: Any, count: int) -> NDArray[Any]:
    field = _array(f"data {name!r}", values)
    if field.ndim == 0 or len(field) != count:
        raise Error("Mesh", None, f"data {name!r}", f"has the shape {field.shape} instead of {count} rows")
    if field.dtype.kind in "biufc":
        return freeze(field)
    kept = field.copy()
    kept.flags.writeable = False
    return kept

"""Meshes as HTML tables and SVG drawings, without further packages."""

from __future__ import annotations

from html import escape
from typing import Any, List, Tuple

import numpy as np
from numpy.typing import NDArray

from ._conventions import NONE_INDEX, ElementType
from ._mesh_data import MeshData
from ._topology import get_boundaries, get_neighbors

#: More faces than this make a drawing that browsers no longer like.
MOST_FACES = 20000

#: From inverted and flat to ideal: readable without colours too, the darker the worse.
_COLOURS = [(0.0, (170, 40, 30)), (0.3, (225, 120, 60)), (0.6, (240, 200, 120)), (1.0, (190, 220, 235))]


def html_table(mesh: MeshData) -> str:
    """What the mesh holds, a row for each kind."""
    qualities = mesh.quality()
    rows = [("points", str(len(mesh.points)), "", "", "")]
    for type, connect in mesh.cells.items():
        q = qualities.get(type, np.empty(0))
        numbers = (f"{q.min():.3f}", f"{q.mean():.3f}", f"{q.max():.3f}") if len(q) else ("", "", "")
        rows.append((type.name, str(len(connect)), *numbers))
    fields = [f"{name} (points)" for name in mesh.point_data] + [f"{name} (cells)" for name in mesh.cell_data]
    head = "<tr><th></th><th>number</th><th>least quality</th><th>mean</th><th>greatest</th></tr>"
    body = "".join("<tr>" + "".join(f"<td>{escape(text)}</td>" for text in row) + "</tr>" for row in rows)
    tail = f"<p>Fields: {escape(', '.join(fields))}</p>" if fields else ""
    return f"<table>{head}{body}</table>{tail}"


def _colour(quality: float) -> str:
    if np.isnan(quality):
        return "#808080"
    places = [place for place, _ in _COLOURS]
    rgb = [round(float(np.interp(quality, places, [c[i] for _, c in _COLOURS]))) for i in range(3)]
    return "#{:02x}{:02x}{:02x}".format(*rgb)


def _faces(mesh: MeshData) -> List[Tuple[NDArray[Any], float]]:
    """Nodes and quality of the faces to draw: surface elements, and of solids what lies on their outside."""
    faces: List[Tuple[NDArray[Any], float]] = []
    qualities = mesh.quality()
    for type, connect in mesh.cells.items():
        corners = mesh.corners(type)
        values = qualities.get(type)
        if values is None or not len(connect):
            continue
        if type.vertices in (2, 3) or (type.vertices == 4 and type < ElementType.SOLID_MIX):
            faces += list(zip(corners, values))
        elif type.vertices in (4, 8):
            linear = ElementType.TETRA4 if type.vertices == 4 else ElementType.HEXA8
            neighbors = get_neighbors(corners, linear, raw=True)
            owner = np.nonzero(neighbors == NONE_INDEX)[0]
            faces += list(zip(get_boundaries(corners, neighbors, linear), values[owner]))
        else:
            sides = {5: ((0, 1, 2, 3), (0, 1, 4), (1, 2, 4), (2, 3, 4), (3, 0, 4)),
                     6: ((0, 1, 2), (3, 4, 5), (0, 1, 4, 3), (1, 2, 5, 4), (2, 0, 3, 5))}[type.vertices]  # fmt: skip
            faces += [(nodes[list(side)], q) for nodes, q in zip(corners, values) for side in sides]
    return faces


def _projection(points: NDArray[np.float64], direction: NDArray[np.float64]) -> NDArray[np.float64]:
    """Right, up and towards the eye."""
    if points.shape[1] == 2:
        return np.column_stack([points, np.zeros(len(points))])
    depth = direction / np.abs(direction).max()
    depth = depth / np.linalg.norm(depth)
    right = np.cross([0.0, 0.0, 1.0], depth)
    right = np.array([1.0, 0.0, 0.0]) if np.linalg.norm(right) < 1e-12 else right / np.linalg.norm(right)
    axes = np.stack([right, np.cross(depth, right), depth])
    projected: NDArray[np.float64] = points @ axes.T
    return projected


def draw(mesh: MeshData, width: int, direction: NDArray[np.float64]) -> str:
    """An SVG of the faces, those at the back first."""
    faces = _faces(mesh)
    seen = _projection(mesh.points, direction)
    finite = seen[np.isfinite(seen).all(axis=1)]
    if not faces or not len(finite):
        return f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="20"><text y="15">nothing to draw</text></svg>'
    low, high = finite[:, :2].min(axis=0), finite[:, :2].max(axis=0)
    scale = (width - 8) / max(float((high - low).max()), 1e-300)
    height = int(np.ceil((high - low)[1] * scale)) + 8
    place = np.column_stack([(seen[:, 0] - low[0]) * scale + 4, (high[1] - seen[:, 1]) * scale + 4])
    faces.sort(key=lambda face: float(seen[face[0], 2].mean()))
    shapes = []
    for nodes, quality in faces[-MOST_FACES:]:
        corners = " ".join(f"{x:.1f},{y:.1f}" for x, y in place[nodes])
        shapes.append(f'<polygon points="{corners}" fill="{_colour(quality)}"/>')
    return (
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" viewBox="0 0 {width} {height}">'
        '<g stroke="#303030" stroke-width="0.5" stroke-linejoin="round">' + "".join(shapes) + "</g></svg>"
    )

#!/usr/bin/env python3
"""Draws every element kind with its local numbering: nodes, edges, faces. Writes one SVG a kind beside this script.

The tables are those of topology/element_topology.h; a face or edge number in a drawing is a row of the neighbours matrix
or the place in the order in which copy_edges enters the edges.
"""
import pathlib

EDGES = {
    "edge": [(0, 1)],
    "tria": [(1, 2), (2, 0), (0, 1)],
    "quad": [(0, 1), (1, 2), (2, 3), (3, 0)],
    "tetra": [(1, 2), (2, 0), (0, 1), (0, 3), (1, 3), (2, 3)],
    "pyramid": [(0, 4), (1, 4), (2, 4), (3, 4), (0, 1), (1, 2), (2, 3), (3, 0)],
    "wedge": [(0, 3), (1, 4), (2, 5), (1, 2), (2, 0), (0, 1), (4, 5), (5, 3), (3, 4)],
    "hexa": [(0, 1), (1, 2), (2, 3), (3, 0), (4, 5), (5, 6), (6, 7), (7, 4), (0, 4), (1, 5), (2, 6), (3, 7)],
}
FACES = {
    "edge": [(1,), (0,)],
    "tria": [(1, 2), (2, 0), (0, 1)],
    "quad": [(0, 1), (1, 2), (2, 3), (3, 0)],
    "tetra": [(1, 2, 3), (2, 0, 3), (1, 3, 0), (2, 1, 0)],
    "hexa": [(0, 3, 7, 4), (1, 5, 6, 2), (0, 4, 5, 1), (3, 2, 6, 7), (0, 1, 2, 3), (7, 6, 5, 4)],
}
# Corners with a positive quality: the tetrahedron's nodes 0, 1, 2 turn clockwise seen from node 3.
CORNERS = {
    "edge": [(0, 0, 0), (1, 0, 0)],
    "tria": [(0, 0, 0), (1, 0, 0), (0.5, 0.87, 0)],
    "quad": [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)],
    "tetra": [(0, 0, 0), (0.62, 1.5, 0), (1.45, 0, 0), (0.4, 0.35, 1.35)],
    "pyramid": [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0.5, 0.5, 0.9)],
    "wedge": [(0, 0, 0), (1, 0, 0), (0.35, 0.95, 0), (0, 0, 1), (1, 0, 1), (0.35, 0.95, 1)],
    "hexa": [(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0), (0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1)],
}
# File: shape, pairs of corners whose middle is a further node, in node order.
KINDS = {
    "edge2": ("edge", []),
    "edge3": ("edge", [(0, 1)]),
    "tria3": ("tria", []),
    "tria6": ("tria", EDGES["tria"]),
    "quad4": ("quad", []),
    "tetra4": ("tetra", []),
    "tetra10": ("tetra", EDGES["tetra"]),
    "pyramid5": ("pyramid", []),
    "wedge6": ("wedge", []),
    "hexa8": ("hexa", []),
}

SCALE, MARGIN = 190, 46
INK, EDGE_INK, FACE_INK = "#1f2933", "#0072b2", "#d55e00"  # told apart by colour-blind readers


def project(point, flat):
    """Flat shapes lie in the plane of the page, solids are seen from the front, above and to the right."""
    x, y, z = point
    if flat:
        return x * SCALE, -y * SCALE
    return (x + 0.42 * y) * SCALE, -(z + 0.36 * y) * SCALE


def middle(points):
    return tuple(sum(c) / len(points) for c in zip(*points))


def toward(point, centre, share):
    return tuple(p + share * (c - p) for p, c in zip(point, centre))


def behind(shape, a, b):
    """Whether the solid hides the edge."""
    return (shape == "tetra" and {a, b} == {0, 1}) or {"hexa": 3, "pyramid": 3, "wedge": 2}.get(shape) in (a, b)


def label(at, text, colour, ring):
    shape = f'<circle cx="{at[0]:.1f}" cy="{at[1]:.1f}" r="10" fill="white" stroke="{colour}"/>' if ring else ""
    return shape + (f'<text x="{at[0]:.1f}" y="{at[1] + 4.5:.1f}" fill="{colour}" text-anchor="middle">{text}</text>')


def draw(kind):
    shape, pairs = KINDS[kind]
    corners = CORNERS[shape]
    flat = all(z == 0 for _, _, z in corners)
    nodes = corners + [middle([corners[a], corners[b]]) for a, b in pairs]
    flat_nodes = [project(p, flat) for p in nodes]
    centre = middle(flat_nodes[: len(corners)])
    left = min(x for x, _ in flat_nodes) - MARGIN
    top = min(y for _, y in flat_nodes) - MARGIN
    width = max(x for x, _ in flat_nodes) + MARGIN - left
    height = max(y for _, y in flat_nodes) + MARGIN - top

    parts = []
    for a, b in EDGES[shape]:
        dash = ' stroke-dasharray="5 4"' if behind(shape, a, b) else ""
        (x1, y1), (x2, y2) = flat_nodes[a], flat_nodes[b]
        parts.append(f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{INK}"{dash}/>')
    if not flat:
        for k, face in enumerate(FACES.get(shape, [])):
            parts.append(label(project(middle([corners[i] for i in face]), flat), k, FACE_INK, True))
    for k, (a, b) in enumerate(EDGES[shape]):
        at = middle([flat_nodes[a], flat_nodes[b]])
        if pairs or shape == "edge":
            at = toward(flat_nodes[a], flat_nodes[b], 0.3)
        parts.append(label(toward(at, centre, -0.13) if shape != "edge" else (at[0], at[1] - 16), k, EDGE_INK, False))
    for i, at in enumerate(flat_nodes):
        parts.append(f'<circle cx="{at[0]:.1f}" cy="{at[1]:.1f}" r="{4 if i < len(corners) else 3}" fill="{INK}"/>')
        out = toward(at, centre, -0.16) if shape != "edge" else (at[0], at[1] + 18)
        if i >= len(corners) and shape != "edge":
            out = toward(at, centre, 0.16)
        parts.append(f'<g font-weight="bold">{label(out, i, INK, False)}</g>')
    body = "\n".join(parts)
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:.0f}" height="{height:.0f}" '
            f'viewBox="{left:.1f} {top:.1f} {width:.1f} {height:.1f}" font-family="sans-serif" font-size="13" '
            f'stroke-width="1.4">\n<rect x="{left:.1f}" y="{top:.1f}" width="{width:.1f}" height="{height:.1f}" '
            f'fill="white"/>\n<g stroke-linecap="round">\n{body}\n</g>\n</svg>\n').replace("<text ", '<text stroke="white" stroke-width="4" paint-order="stroke" ')


if __name__ == "__main__":
    folder = pathlib.Path(__file__).parent
    for kind in KINDS:
        (folder / f"{kind}.svg").write_text(draw(kind))

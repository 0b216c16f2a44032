#!/usr/bin/env python3
"""Makes the parts that the documentation and the tests use: make_parts.py [FOLDER]

flange.stl         a weld-neck pipe flange with six bolt holes, closed and well shaped
flange-faulty.stl  the same with faults as exports have them: see spoil() below

Lengths in millimetres. Needs the standard library only, and writes the same bytes on every machine.
"""

import math
import struct
import sys
from pathlib import Path

HOLES = 6
STEPS_PER_HOLE = 8  # of the arc that belongs to one bolt hole
RADIAL_STEPS = 4    # between the bolt holes
AROUND = HOLES * STEPS_PER_HOLE
BOLT_CIRCLE, HOLE_RADIUS = 47.0, 5.5
PLATE_BOTTOM, PLATE_TOP = 1.6, 14.0

# The section through the axis, as (radius, height); both faces of the plate are left out.
FILLET = [(35 - 4 * math.sin(a), 18 - 4 * math.cos(a)) for a in (k * math.pi / 8 for k in range(5))]
RIM = [(59, 1.6), (60, 2.6), (60, 7.8), (60, 13), (59, 14)]
HUB = FILLET + [(29.25, 22.5), (27.5, 27), (25.75, 31.5), (24, 36), (24, 41), (24, 46)]
END_AND_BORE = [(24, 46), (21.6, 48.4), (20, 48.4)] + [(20, 48.4 - 48.4 * k / 8) for k in range(1, 9)]
RAISED_FACE = [(20, 0), (24.5, 0), (29.2, 0), (34, 0), (34, 1.6)]
SEAM = HUB[4:]  # the faulty part is open along this line


def minus(a, b):
    return tuple(x - y for x, y in zip(a, b))


def square(v):
    return sum(c * c for c in v)


class Surface:
    """Triangles on numbered points; equal points get one number."""

    def __init__(self):
        self.points, self.numbers, self.triangles = [], {}, []

    def point(self, x, y, z):
        # Rounded, so that the last bits of sine and cosine, which differ between machines, do not show.
        place = tuple(round(c, 4) + 0.0 for c in (x, y, z))
        if place not in self.numbers:
            self.numbers[place] = len(self.points)
            self.points.append(place)
        return self.numbers[place]

    def quadrangle(self, a, b, c, d):
        """Cut along its shorter diagonal."""
        p = self.points
        if square(minus(p[d], p[b])) < 0.99 * square(minus(p[c], p[a])):
            self.triangles += [(a, b, d), (b, c, d)]
        else:
            self.triangles += [(a, b, c), (a, c, d)]


def on_circle(radius, step, z, steps=AROUND):
    angle = 2 * math.pi * (step % steps) / steps
    return radius * math.cos(angle), radius * math.sin(angle), z


def revolve(surface, section):
    """Sweeps a line of (radius, height) around the axis. The material lies to its left."""
    for (r0, z0), (r1, z1) in zip(section, section[1:]):
        for step in range(AROUND):
            a, b = (surface.point(*on_circle(r0, s, z0)) for s in (step, step + 1))
            c, d = (surface.point(*on_circle(r1, s, z1)) for s in (step + 1, step))
            surface.quadrangle(a, b, c, d)


def outline(hole, inner, outer, z):
    """The piece of the plate around one bolt hole, counter-clockwise: a radial line, an arc, a radial line, an arc."""
    first, last = hole * STEPS_PER_HOLE, (hole + 1) * STEPS_PER_HOLE
    radii = [inner + (outer - inner) * k / RADIAL_STEPS for k in range(RADIAL_STEPS + 1)]
    return [[on_circle(r, first, z) for r in radii[:-1]],
            [on_circle(outer, s, z) for s in range(first, last)],
            [on_circle(r, last, z) for r in radii[:0:-1]],
            [on_circle(inner, s, z) for s in range(last, first, -1)]]


def edge_of_hole(hole, z):
    """The rim of one bolt hole with as many points as the outline has, a quarter of the circle for each of its lines."""
    cx, cy, _ = on_circle(BOLT_CIRCLE, 2 * hole + 1, z, 2 * HOLES)
    axis = 2 * math.pi * (2 * hole + 1) / (2 * HOLES)
    angles = []
    for quarter, steps in enumerate((RADIAL_STEPS, STEPS_PER_HOLE) * 2):
        angles += [axis + math.pi * ((2 * quarter + 5) / 4 + k / (2 * steps)) for k in range(steps)]
    return [(cx + HOLE_RADIUS * math.cos(a), cy + HOLE_RADIUS * math.sin(a), z) for a in angles]


def rings_around_hole(hole, inner, outer, z):
    """From the rim of the bolt hole to the outline, rings of points."""
    edge = edge_of_hole(hole, z)
    border = [p for line in outline(hole, inner, outer, z) for p in line]
    return [[tuple(e + share * (b - e) for e, b in zip(*pair)) for pair in zip(edge, border)] for share in (0, 0.4, 1)]


def bands(surface, rings):
    """Quadrangles between neighbouring rings of points, each ring closed."""
    numbered = [[surface.point(*p) for p in ring] for ring in rings]
    for near, far in zip(numbered, numbered[1:]):
        for k in range(len(near)):
            n = (k + 1) % len(near)
            surface.quadrangle(near[k], far[k], far[n], near[n])


def flange():
    surface = Surface()
    for section in (RAISED_FACE, RIM, HUB, END_AND_BORE):
        revolve(surface, section)
    for hole in range(HOLES):
        bands(surface, rings_around_hole(hole, 35, 59, PLATE_TOP))
        bands(surface, rings_around_hole(hole, 34, 59, PLATE_BOTTOM)[::-1])
        heights = [PLATE_BOTTOM + (PLATE_TOP - PLATE_BOTTOM) * k / 4 for k in range(5)]
        bands(surface, [edge_of_hole(hole, z) for z in heights])
    return surface


def facets_of(surface):
    return [[surface.points[n] for n in triangle] for triangle in surface.triangles]


def nearest(facets, place):
    """Number of the facet whose centre is closest to a place."""
    return min(range(len(facets)), key=lambda f: square(tuple(sum(c) / 3 - x for c, x in zip(zip(*facets[f]), place))))


def spoil(facets):
    """The faults, each as some program leaves it, and what a check must find."""
    spoilt = [list(facet) for facet in facets]

    # A seam of the hub where both sides were rounded apart: 0.08 is more than the weld takes for rounding. Its six edges
    # are free on both sides.
    seam = {(float(r), 0.0, float(z)) for r, z in SEAM[1:-1]}
    for facet in spoilt:
        if sum(corner[1] for corner in facet) < 0:
            facet[:] = [(x, y - 0.08, z) if (x, y, z) in seam else (x, y, z) for x, y, z in facet]

    # Two triangles meet in an edge that has a point too many, a fiftieth from its end: two good triangles and two
    # slivers, no fault but a bad shape.
    first = nearest(spoilt, (20, -18, 29))
    a, b, c = spoilt[first]
    second = next(f for f, facet in enumerate(spoilt) if a in facet and b in facet and f != first)
    d = next(corner for corner in spoilt[second] if corner not in (a, b))
    p = tuple(x + (y - x) / 50 for x, y in zip(a, b))
    spoilt[first], spoilt[second] = [p, b, c], [b, p, d]
    spoilt += [[a, p, c], [p, a, d]]

    # A facet that shrank to a line: one degenerate triangle.
    corner, other, _ = spoilt[nearest(spoilt, (20, 5, 30))]
    spoilt.append([corner, corner, other])

    # A facet written twice: one duplicate, and three edges with three triangles.
    spoilt.append(spoilt[nearest(spoilt, (11, -21, 40))])

    # A facet that got lost: a hole with three free edges.
    del spoilt[nearest(spoilt, (53, -18, PLATE_TOP))]
    return spoilt


def unit_normal(a, b, c):
    u, v = minus(b, a), minus(c, a)
    n = (u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0])
    length = math.sqrt(square(n))
    return tuple(x / length for x in n) if length > 0 else (0.0, 0.0, 0.0)


def write_binary(path, title, facets):
    data = bytearray(title.encode().ljust(80, b'\0') + struct.pack('<I', len(facets)))
    for facet in facets:
        data += struct.pack('<12fH', *unit_normal(*facet), *(c for corner in facet for c in corner), 0)
    path.write_bytes(data)


def main():
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).resolve().parent
    facets = facets_of(flange())
    write_binary(folder / 'flange.stl', 'Weld-neck flange, millimetres', facets)
    write_binary(folder / 'flange-faulty.stl', 'Weld-neck flange, millimetres, exported badly', spoil(facets))


if __name__ == '__main__':
    main()

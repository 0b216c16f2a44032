"""Meshes in VTK files as drawings in SVG, for the scripts beside this file. Standard library only."""

import math
import re
from collections import defaultdict
from html import escape
from itertools import groupby

INK, FAINT, CARD, BORDER = '#24292f', '#6e7781', '#f6f8fa', '#d0d7de'
GREY = '#b9c2cc'
ORANGE, SKY, GREEN, YELLOW, BLUE, RED, PINK = (  # told apart by colour-blind readers: Okabe and Ito
    '#e69f00', '#56b4e9', '#009e73', '#f0e442', '#0072b2', '#d55e00', '#cc79a7')
SCALE = ('#440154', '#3b528b', '#21918c', '#5ec962', '#fde725')  # from low to high: viridis
LIGHT = (0.35, -0.55, 0.76)

# Faces of VTK's cells, outward; a surface element is its own face.
FACES = {
    5: [(0, 1, 2)],
    9: [(0, 1, 2, 3)],
    10: [(0, 2, 1), (0, 1, 3), (1, 2, 3), (0, 3, 2)],
    12: [(0, 4, 7, 3), (1, 2, 6, 5), (0, 1, 5, 4), (3, 7, 6, 2), (0, 3, 2, 1), (4, 5, 6, 7)],
    13: [(0, 1, 2), (3, 5, 4), (0, 3, 4, 1), (1, 4, 5, 2), (2, 5, 3, 0)],
    14: [(0, 3, 2, 1), (0, 1, 4), (1, 2, 4), (2, 3, 4), (3, 0, 4)],
}


class Mesh:
    """What a VTK text file holds: points, cells of nodes with their types, fields on cells."""

    def __init__(self, path):
        words = path.read_text().split()
        at = words.index('POINTS')
        numbers = list(map(float, words[at + 3:at + 3 + 3 * int(words[at + 1])]))
        self.points = [tuple(numbers[k:k + 3]) for k in range(0, len(numbers), 3)]
        at = words.index('CELLS')
        self.cells, count, at = [], int(words[at + 1]), at + 3
        for _ in range(count):
            width = int(words[at])
            self.cells.append(tuple(map(int, words[at + 1:at + 1 + width])))
            at += 1 + width
        at = words.index('CELL_TYPES') + 2
        self.types = list(map(int, words[at:at + count]))
        self.fields = self.fields_of(words, count)

    @staticmethod
    def fields_of(words, count):
        fields = {}
        if 'CELL_DATA' in words:
            at = words.index('FieldData') + 2
            while at < len(words):
                fields[words[at]] = list(map(float, words[at + 4:at + 4 + count]))
                at += 4 + count * int(words[at + 1])
        return fields

    def corners(self, cell):
        return [self.points[n] for n in self.cells[cell]]

    def of_dimension(self, dimension):
        """The numbers of its cells of this dimension."""
        kinds = {0: (1,), 1: (3,), 2: (5, 9), 3: (10, 12, 13, 14)}[dimension]
        return [c for c, kind in enumerate(self.types) if kind in kinds]

    def on_the_outside(self):
        """Solid cells with a face that no other one has, and pyramids, which are seen between them."""
        users = defaultdict(list)
        for c in self.of_dimension(3):
            for face in FACES[self.types[c]]:
                users[tuple(sorted(self.cells[c][k] for k in face))].append(c)
        outside = {cells[0] for cells in users.values() if len(cells) == 1}
        return sorted(outside.union(c for c, kind in enumerate(self.types) if kind == 14))


def minus(a, b):
    return tuple(x - y for x, y in zip(a, b))


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def middle(points):
    return tuple(sum(c) / len(points) for c in zip(*points))


def normal_of(corners):
    u, v = minus(corners[1], corners[0]), minus(corners[-1], corners[0])
    n = (u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0])
    length = math.sqrt(dot(n, n)) or 1.0
    return tuple(x / length for x in n)


def mixed(low, high, share):
    """Between two colours."""
    pair = zip(*([int(colour[k:k + 2], 16) for k in (1, 3, 5)] for colour in (low, high)))
    return '#' + ''.join(f'{round(a + share * (b - a)):02x}' for a, b in pair)


def on_scale(share):
    """The colour of a share from 0 to 1."""
    place = min(max(share, 0.0), 1.0) * (len(SCALE) - 1)
    k = min(int(place), len(SCALE) - 2)
    return mixed(SCALE[k], SCALE[k + 1], place - k)


class View:
    """A place in a picture where a mesh is seen from far away, in degrees of azimuth and elevation of the eye."""

    def __init__(self, azimuth, elevation, points, box):
        a, e = math.radians(azimuth), math.radians(elevation)
        self.right = (-math.sin(a), math.cos(a), 0)
        self.up = (-math.sin(e) * math.cos(a), -math.sin(e) * math.sin(a), math.cos(e))
        self.towards = (math.cos(e) * math.cos(a), math.cos(e) * math.sin(a), math.sin(e))
        across, upward = ([dot(p, axis) for p in points] for axis in (self.right, self.up))
        left, top, width, height = box
        self.scale = min(width / (max(across) - min(across)), height / (max(upward) - min(upward)))
        self.left = left + width / 2 - self.scale * (max(across) + min(across)) / 2
        self.top = top + height / 2 + self.scale * (max(upward) + min(upward)) / 2
        self.items = []  # depth, order, colour of a polygon or none, text

    def place(self, point):
        x = self.left + self.scale * dot(point, self.right)
        y = self.top - self.scale * dot(point, self.up)
        return f'{x:.1f} {y:.1f}'.replace('.0', '')

    def add(self, point, text, nearer=0.0, fill=''):
        depth = round(dot(point, self.towards) + nearer, 6)
        self.items.append((depth, len(self.items), fill, text))

    def polygon(self, corners, colour, nearer=0.0, both_sides=False):
        normal = normal_of(corners)
        if dot(normal, self.towards) <= 1e-9:
            if not both_sides:
                return
            normal = tuple(-x for x in normal)
        light = 0.30 * (1 - max(0.0, 0.35 + 0.65 * dot(normal, self.lamp())))
        self.add(middle(corners), self.outline(corners), nearer, mixed(colour, '#101820', light))

    def outline(self, corners):
        """A closed path, from corner to corner in tenths of the unit: short, for there are hundreds."""
        tenths = [[round(10 * float(c)) for c in self.place(point).split()] for point in corners]
        steps = [b - a for p, q in zip(tenths, tenths[1:]) for a, b in zip(p, q)]
        numbers = ' '.join(f'{step / 10:g}' for step in steps)
        return f'M{self.place(corners[0])}l' + re.sub(r'\b0\.', '.', numbers).replace(' -', '-') + 'z'

    def lamp(self):
        """Light from above, left of the eye, whichever side is seen."""
        vector = tuple(0.75 * t - 0.35 * r + 0.55 * u for t, r, u in zip(self.towards, self.right, self.up))
        length = math.sqrt(dot(vector, vector))
        return tuple(x / length for x in vector)

    def line(self, ends, style, nearer=0.0):
        a, b = map(self.place, ends)
        self.add(middle(ends), f'<path d="M{a}L{b}" class="{style}"/>', nearer)

    def dot(self, point, colour, radius, nearer=0.0):
        x, y = self.place(point).split()
        self.add(point, f'<circle cx="{x}" cy="{y}" r="{radius}" fill="{colour}" class="dot"/>', nearer)

    def surface(self, mesh, colour, both_sides=False):
        """Its surface elements; colour(cell) may be None for none."""
        for c in mesh.of_dimension(2):
            if colour(c):
                self.polygon(mesh.corners(c), colour(c), both_sides=both_sides)

    def solids(self, mesh, cells, colour, shrink=0.86):
        """Solid elements, each drawn together around its middle."""
        for c in cells:
            centre = middle(mesh.corners(c))
            corners = [tuple(m + shrink * (x - m) for x, m in zip(p, centre)) for p in mesh.corners(c)]
            for face in FACES[mesh.types[c]]:
                of_face = [corners[k] for k in face]
                inward = dot(minus(centre, middle(of_face)), self.towards)
                self.polygon(of_face, colour(c), nearer=0.9 * inward)

    def text(self):
        """The far ones first; polygons of one colour that follow each other share a path."""
        runs = groupby(sorted(self.items), key=lambda item: item[2])
        return '\n'.join(f'<path d="{"".join(texts)}" fill="{fill}"/>' if fill else '\n'.join(texts)
                         for fill, texts in ((fill, [item[3] for item in run]) for fill, run in runs))


STYLE = f'''text {{ fill: {INK}; font: 13px sans-serif }}
.code {{ font: 12.5px "DejaVu Sans Mono", Menlo, Consolas, monospace }} .faint {{ fill: {FAINT} }}
.mesh path {{ stroke: #3d4854; stroke-width: .4; stroke-linejoin: round; stroke-linecap: round }}
.mesh path.open {{ stroke: {RED}; stroke-width: 3.4 }} .mesh path.plane {{ stroke: {BLUE}; stroke-width: 1.6; stroke-dasharray: 6 4 }}
.mesh path.axis {{ stroke: {INK}; stroke-width: 1.4 }} .mesh .dot {{ stroke: #fff; stroke-width: .8 }}
.arrow {{ stroke: {FAINT}; stroke-width: 2.2; fill: none }}'''


class Picture:
    """Cards beside each other, each with its heading; it has its own ground, so that any page can show it."""

    def __init__(self, height, widths, gap=14):
        self.height, self.cards, self.parts = height, [], []
        left = 0
        for width in widths:
            self.cards.append((left, width))
            self.parts.append(f'<rect x="{left + .5}" y=".5" width="{width - 1}" height="{height - 1}" rx="9" '
                              f'fill="{CARD}" stroke="{BORDER}"/>')
            left += width + gap
        self.width = left - gap

    def heading(self, card, command, words=''):
        left = self.cards[card][0] + 18
        self.words(left, 28, command, 'code')
        self.words(left, 48, words, 'faint')

    def box(self, card, margin=22, below=0):
        left, width = self.cards[card]
        return left + margin, 62, width - 2 * margin, self.height - 62 - margin - below

    def words(self, x, y, text, style='', anchor='start'):
        kind = f' class="{style}"' if style else ''
        side = '' if anchor == 'start' else f' text-anchor="{anchor}"'
        if text:
            self.parts.append(f'<text x="{x:g}" y="{y:g}"{kind}{side}>{escape(text)}</text>')

    def view(self, view):
        self.parts.append(f'<g class="mesh">\n{view.text()}\n</g>')

    def legend(self, x, y, entries, step=21):
        """Pairs of colour and words, below each other."""
        for k, (colour, text) in enumerate(entries):
            self.parts.append(f'<rect x="{x:g}" y="{y + k * step - 11:g}" width="14" height="14" rx="2" fill="{colour}"/>')
            self.words(x + 22, y + k * step, text)

    def bar(self, x, y, length, low, high):
        """The scale of colours, upright."""
        for k in range(32):
            at = y + length * (31 - k) / 32
            self.parts.append(f'<rect x="{x:g}" y="{at:.2f}" width="14" height="{length / 32 + .4:.2f}" '
                              f'fill="{on_scale((k + .5) / 32)}"/>')
        self.words(x + 20, y + 10, high)
        self.words(x + 20, y + length, low)

    def text(self):
        body = '\n'.join(self.parts)
        return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {self.width} {self.height}" '
                f'width="{self.width}" height="{self.height}">\n<style>{STYLE}</style>\n{body}\n</svg>\n')

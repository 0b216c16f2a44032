#!/usr/bin/env python3
"""Draws check.svg: what `tessolv check` says about the faulty flange, and the faults on the part.

draw_check.py PROGRAM       PROGRAM is the built tessolv, as build/tools/tessolv

The terminal shows the output of the program, the part is the VTK file that it writes. Standard library only.
"""

import math
import os
import subprocess
import sys
import tempfile
from collections import defaultdict
from html import escape
from pathlib import Path

HERE = Path(__file__).resolve().parent
PART = 'examples/parts/flange-faulty.stl'
AZIMUTH, ELEVATION = math.radians(-40), math.radians(38)  # of the eye; the open seam lies at azimuth 0
LIGHT = (0.35, -0.55, 0.76)
STEEL = (178, 190, 204)


def run_check(program):
    """Runs the program as a person would; gives its text and the welded surface."""
    with tempfile.TemporaryDirectory() as folder:
        vtk = Path(folder) / 'part.vtk'
        environment = {**os.environ, 'LC_ALL': 'C.UTF-8', 'COLUMNS': '80'}
        done = subprocess.run([program, 'check', PART, '--output', vtk], cwd=HERE.parents[1], env=environment,
                              capture_output=True, text=True)
        if done.returncode != 1:
            sys.exit(f'expected exit status 1, got {done.returncode}: {done.stderr}')
        return done.stdout, read_vtk(vtk.read_text().split())


def read_vtk(words):
    """Points and triangles of a legacy VTK file of triangles."""
    at = words.index('POINTS')
    count = int(words[at + 1])
    numbers = list(map(float, words[at + 3:at + 3 + 3 * count]))
    points = [tuple(numbers[i:i + 3]) for i in range(0, len(numbers), 3)]
    at = words.index('CELLS') + 3
    cells = list(map(int, words[at:words.index('CELL_TYPES')]))
    return points, [tuple(cells[i + 1:i + 4]) for i in range(0, len(cells), 4)]


def eye_axes():
    """Right, up and towards the eye."""
    ca, sa, ce, se = math.cos(AZIMUTH), math.sin(AZIMUTH), math.cos(ELEVATION), math.sin(ELEVATION)
    return (-sa, ca, 0), (-se * ca, -se * sa, ce), (ce * ca, ce * sa, se)


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def normal_of(a, b, c):
    u, v = [tuple(y - x for x, y in zip(a, p)) for p in (b, c)]
    n = (u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0])
    length = math.sqrt(dot(n, n)) or 1.0
    return tuple(x / length for x in n)


def shade(normal):
    light = 0.42 + 0.58 * max(0.0, dot(normal, LIGHT))
    return '#' + ''.join(f'{min(255, round(c * light)):02x}' for c in STEEL)


def placing(points, width, height, scale):
    """From a point of the part to the place in the picture."""
    right, up, _ = eye_axes()
    middle = tuple((min(c) + max(c)) / 2 for c in zip(*points))

    def place(p):
        moved = tuple(x - m for x, m in zip(p, middle))
        return width / 2 + scale * dot(moved, right), height / 2 - scale * dot(moved, up)

    return place


def draw_part(points, triangles, width, height, scale):
    """Triangles that face the eye, the far ones first, and the faulty edges among them."""
    towards, place = eye_axes()[2], placing(points, width, height, scale)
    items, users = [], defaultdict(list)
    for t in triangles:
        corners = [points[n] for n in t]
        normal = normal_of(*corners)
        for k in range(3):
            users[tuple(sorted((t[k], t[k - 1])))].append(normal)
        if dot(normal, towards) > 0:
            depth = sum(dot(c, towards) for c in corners) / 3
            a, b, c = (f'{x:.1f} {y:.1f}' for x, y in map(place, corners))
            items.append((depth, f'<path d="M{a}L{b} {c}z" fill="{shade(normal)}"/>'))
    for edge, normals in users.items():
        if len(normals) == 2 or max(dot(n, towards) for n in normals) <= 0:
            continue
        a, b = (points[n] for n in edge)
        kind = 'free' if len(normals) == 1 else 'many'
        depth = (dot(a, towards) + dot(b, towards)) / 2 + 2  # in front of the triangles on both sides
        (ax, ay), (bx, by) = place(a), place(b)
        items.append((depth, f'<path d="M{ax:.1f} {ay:.1f}L{bx:.1f} {by:.1f}" class="{kind}"/>'))
    return '\n'.join(text for _, text in sorted(items))


def callouts(points, width, height, scale):
    """What is wrong where, beside the part: the text, its place, and the place on the part that it points to."""
    place = placing(points, width, height, scale)
    drawn = []
    for text, x, y, at in (('open seam', 400, 96, (24.9, 0, 33)), ('facet twice', 30, 120, (11.5, -21, 41)),
                           ('lost facet', 420, height - 14, (53, -18, 14))):
        px, py = place(at)
        drawn.append(f'<path d="M{x + 36} {y + (5 if y < py else -14)}L{px:.1f} {py:.1f}" class="pointer"/>'
                     f'<text x="{x}" y="{y}" class="legend">{text}</text>')
    return '\n'.join(drawn)


def folded(line, width):
    """The verdict is longer than the terminal is wide."""
    while len(line) > width:
        cut = line.rindex(' ', 0, width)
        yield line[:cut]
        line = '    ' + line[cut + 1:]
    yield line


def terminal_lines(text, left, top, line_height):
    y, drawn = top, []
    for number, line in enumerate([f'$ tessolv check {PART}'] + text.splitlines()):
        kind = 'prompt' if number == 0 else 'wrong' if line.startswith('!') or 'NOT CLEAN' in line else 'plain'
        for piece in folded(line, 102):
            drawn.append(f'<text x="{left}" y="{y:g}" class="{kind}">{escape(piece)}</text>')
            y += line_height
    return '\n'.join(drawn), y


STYLE = """
text { fill: #d6deeb; white-space: pre } text.prompt { fill: #7fdbca } text.wrong { fill: #ff6b6b } text.legend { fill: #333d47 }
path { stroke-linejoin: round; stroke-linecap: round } .mesh path { stroke: #5d6b7a; stroke-width: .35 }
path.free, .mesh path.free { fill: none; stroke: #e8112d; stroke-width: 3.2 }
path.many, .mesh path.many { fill: none; stroke: #ff9f1c; stroke-width: 3.2 }
path.pointer { stroke: #333d47; stroke-width: 1 }
"""


def picture(text, points, triangles):
    lines, height = terminal_lines(text, 24, 40, 17)
    left, width, legend = 862, 512, 48
    view = (width, height - legend, 3.9)
    return f'''<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {left + width} {height:g}" \
font-family="DejaVu Sans Mono, Menlo, Consolas, monospace" font-size="13" xml:space="preserve">
<style>{STYLE}</style>
<rect width="{left - 8}" height="{height:g}" rx="8" fill="#10202f"/>
<rect x="{left}" width="{width}" height="{height:g}" rx="8" fill="#f4f6f8"/>
{lines}
<g transform="translate({left} 0)">
<g class="mesh">
{draw_part(points, triangles, *view)}
</g>
{callouts(points, *view)}
<path d="M24 {height - 24:g}h26" class="free"/><text x="58" y="{height - 20:g}" class="legend">free edges</text>
<path d="M164 {height - 24:g}h26" class="many"/><text x="198" y="{height - 20:g}" class="legend">edges of three triangles</text>
</g>
</svg>
'''


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    text, (points, triangles) = run_check(os.path.abspath(sys.argv[1]))
    (HERE / 'check.svg').write_text(picture(text, points, triangles), encoding='utf-8')


if __name__ == '__main__':
    main()

#!/usr/bin/env python3
"""Draws a picture for the page of each command, from what the commands write.

draw_commands.py PROGRAM [FOLDER]       PROGRAM is the built tessolv, as build/tools/tessolv

The pictures go into FOLDER, or beside this script, as tool-COMMAND.svg. Standard library only.
"""

import csv
import json
import os
import subprocess
import sys
import tempfile
from pathlib import Path

from drawing import (BLUE, GREEN, GREY, INK, ORANGE, PINK, RED, SKY, YELLOW, Mesh, Picture, View, on_scale)

HERE = Path(__file__).resolve().parent
MESHES = HERE.parents[2] / 'examples' / 'meshes'
KINDS = {10: (ORANGE, 'tetrahedra'), 12: (BLUE, 'hexahedra'), 13: (GREEN, 'wedges'), 14: (PINK, 'pyramids')}
FRONT, BELOW = (-32, 28), (-125, -24)  # azimuth and elevation of the eye


class Tool:
    """The program in a folder of its own, with the meshes in it."""

    def __init__(self, program, folder):
        self.program, self.folder = program, folder
        for mesh in MESHES.iterdir():
            os.symlink(mesh, folder / mesh.name)
        self.run('weld bracket.stl --tolerance 0.05 --output welded.msh --map moved.csv')
        self.run('clean welded.msh --output surface.msh')

    def run(self, arguments, status=0):
        done = subprocess.run([self.program, *arguments.split()], cwd=self.folder, capture_output=True, text=True,
                              env={**os.environ, 'LC_ALL': 'C', 'NO_COLOR': '1'}, check=False)
        if done.returncode != status:
            sys.exit(f'tessolv {arguments}: exit status {done.returncode}: {done.stderr}')
        return done.stdout

    def mesh(self, arguments):
        """What a command writes with --output."""
        self.run(f'{arguments} --ascii --force --quiet --output drawn.vtk')
        return Mesh(self.folder / 'drawn.vtk')

    def file(self, name):
        return self.mesh(f'convert {name}')


def coloured(mesh, field, low, high):
    """A cell's place between two values of a field, as a colour."""
    values = mesh.fields[field]
    return lambda c: on_scale((values[c] - low) / (high - low))


def info(tool):
    mesh = tool.file('column.msh')
    picture = Picture(430, [860])
    picture.heading(0, '$ tessolv info column.msh')
    view = View(*FRONT, mesh.points, (90, 40, 260, 370))
    view.solids(mesh, mesh.on_the_outside(), lambda c: KINDS[mesh.types[c]][0], shrink=0.84)
    picture.view(view)
    lines = tool.run('info column.msh').splitlines()
    for k, line in enumerate(lines):
        picture.words(430, 84 + 22 * k, line, 'code')
        for colour, word in KINDS.values():
            if line.endswith(' ' + word):
                picture.legend(406, 84 + 22 * k, [(colour, '')])
    return picture


def check(tool):
    tool.run('check --quiet --profile closed --extract bad.vtk bracket.stl', status=1)
    bad, whole = tool.file('bad.vtk'), tool.file('bracket.stl')
    colours = {4: (GREEN, '1 degenerate triangle'), 5: (BLUE, '2 duplicate triangles'),
               8: (PINK, '1 triangle of bad quality'), 12: (ORANGE, '88 free edges'),
               11: (YELLOW, '5 edges of three or more triangles')}
    text = tool.run('check --quiet --profile closed bracket.stl', status=1)
    picture = Picture(430, [860])
    picture.heading(0, '$ tessolv check --profile closed bracket.stl --extract bad.vtk',
                    'the elements of each finding, as bad.vtk holds them')
    view = View(*BELOW, whole.points, picture.box(0, below=4)[:1] + (70, 470, 330))
    view.surface(whole, lambda c: GREY)
    for c in bad.of_dimension(2):
        colour = colours[bad.fields['fault'][c]][0]
        corners = bad.corners(c)
        view.polygon(corners, colour, nearer=0.3, both_sides=bad.fields['fault'][c] == 5)
        if bad.fields['fault'][c] in (4, 8):  # too thin to be seen
            for corner in corners[:2]:
                view.dot(corner, colour, 5, nearer=60 if bad.fields['fault'][c] == 4 else 3)
    picture.view(view)
    for _, words in colours.values():
        if words not in text:
            sys.exit(f'check does not say: {words}')
    picture.legend(570, 190, list(colours.values()), step=26)
    return picture


def quality(tool):
    mesh = tool.mesh('quality column.msh')
    numbers = json.loads(tool.run('quality --json --bins 20 column.msh'))['kinds']
    bins = next(kind['histogram'] for kind in numbers if 'tetra' in kind['kind'])
    picture = Picture(430, [400, 446])
    picture.heading(0, '$ tessolv quality column.msh', 'elements coloured by their quality')
    view = View(*FRONT, mesh.points, picture.box(0))
    view.solids(mesh, mesh.on_the_outside(), coloured(mesh, 'quality', 0, 1), shrink=0.86)
    picture.view(view)
    picture.bar(40, 240, 140, '0', '1')
    picture.heading(1, '', 'tetrahedra, 20 bins')
    left, floor, width = picture.cards[1][0] + 30, 370, 19.3
    for k, count in enumerate(bins):
        if count:
            height = 270 * count / max(bins)
            picture.parts.append(f'<rect x="{left + k * width:.1f}" y="{floor - height:.1f}" width="{width - 2:.1f}" '
                                 f'height="{height:.1f}" fill="{on_scale((k + .5) / 20)}"/>')
            picture.words(left + (k + .45) * width, floor - height - 5, str(count), 'faint', 'middle')
    picture.parts.append(f'<path d="M{left - 4} {floor + .5}h{20 * width + 6:g}" stroke="{INK}" fill="none"/>')
    for k in range(0, 21, 5):
        picture.words(left + k * width, floor + 18, f'{k / 20:g}', 'faint', 'middle')
    return picture


def convert(tool):
    names = {1: SKY, 2: ORANGE, 3: GREEN, 4: PINK, 5: GREY, 6: YELLOW}
    picture = Picture(330, [280, 280, 280])
    for card, (name, words) in enumerate((('bracket.msh', 'groups with names'), ('bracket.vtu', 'cell field group'),
                                          ('bracket.mesh', 'references'))):
        if card:
            tool.run(f'convert bracket.msh --quiet --output {name}')
        mesh = tool.file(name)
        picture.heading(card, name, words)
        view = View(-140, 24, mesh.points, picture.box(card, 30))
        view.surface(mesh, lambda c, groups=mesh.fields['group']: names[groups[c]])
        picture.view(view)
        if card:
            x = picture.cards[card][0] - 7
            picture.parts.append(f'<circle cx="{x}" cy="180" r="17" fill="#fff" stroke="#d0d7de"/>'
                                 f'<path d="M{x - 8} 180h14m-6 -6l6 6l-6 6" class="arrow"/>')
    return picture


def open_edges(tool, name, view):
    """Thick lines on the open edges of a surface; how many there are."""
    if json.loads(tool.run(f'boundary --json {name}'))['faces'] == 0:
        return 0
    edges = tool.mesh(f'boundary {name}')
    for c in edges.of_dimension(1):
        view.line(edges.corners(c), 'open', nearer=1)
    return len(edges.of_dimension(1))


def weld(tool):
    picture = Picture(400, [423, 423])
    for card, name in enumerate(('bracket.stl', 'welded.msh')):
        mesh = tool.file(name)
        view = View(*BELOW, mesh.points, picture.box(card))
        view.surface(mesh, lambda c: GREY)
        count = open_edges(tool, name, view)
        if card == 0:
            picture.heading(0, 'bracket.stl', f'{count} open edges around the bottom')
            numbers = {int(row['new']) for row in csv.DictReader(open(tool.folder / 'moved.csv', encoding='ascii'))}
            nodes = [mesh.points[n - 1] for n in numbers]
        else:
            picture.heading(1, '$ tessolv weld bracket.stl --tolerance 0.05',
                            f'{count} open edges; where nodes were merged')
            for point in nodes:
                view.dot(point, BLUE, 3.6, nearer=1.5)
        picture.view(view)
    return picture


def clean(tool):
    names = ('welded.msh', 'surface.msh')
    picture = Picture(440, [423, 423])
    for card, name in enumerate(names):
        mesh = tool.file(name)
        seen = set()
        view = View(-152, 22, mesh.points, picture.box(card, below=44))
        for c in mesh.of_dimension(2):
            nodes = frozenset(mesh.cells[c])
            again = nodes in seen
            seen.add(nodes)
            if len(nodes) < 3:
                view.dot(mesh.corners(c)[0], GREEN, 6, nearer=60)
            else:
                view.polygon(mesh.corners(c), BLUE if again else GREY, nearer=0.3 * again, both_sides=again)
        picture.view(view)
        picture.heading(card, *((name, '') if card == 0 else ('$ tessolv clean welded.msh --output surface.msh', '')))
    picture.legend(24, 396, [(BLUE, 'elements that repeat another one'), (GREEN, 'elements with a node twice')])
    picture.words(picture.cards[1][0] + 24, 417,
                  f'{len(tool.file(names[0]).cells)} elements before, {len(mesh.cells)} after')
    return picture


def boundary(tool):
    solid, skin = tool.file('column.msh'), tool.mesh('boundary column.msh')
    picture = Picture(430, [423, 423])
    picture.heading(0, 'column.msh', f'{len(solid.of_dimension(3))} solid elements')
    view = View(*FRONT, solid.points, picture.box(0))
    view.solids(solid, solid.on_the_outside(), lambda c: KINDS[solid.types[c]][0], shrink=0.8)
    picture.view(view)
    colours = {1: BLUE, 2: ORANGE, 3: GREEN}
    picture.heading(1, '$ tessolv boundary column.msh',
                    f'{len(skin.of_dimension(2))} faces of one element, with the groups of their elements')
    view = View(*FRONT, solid.points, picture.box(1))
    view.surface(skin, lambda c: colours[skin.fields['group'][c]])
    picture.view(view)
    picture.legend(picture.cards[1][0] + 24, 330, [(GREEN, 'head'), (ORANGE, 'shaft'), (BLUE, 'foot')])
    return picture


def edges(tool):
    mesh = tool.mesh('edges surface.msh')
    numbers = json.loads(tool.run('edges --json surface.msh'))
    low, high = numbers['min'], numbers['max']
    picture = Picture(430, [860])
    picture.heading(0, '$ tessolv edges surface.msh', f'{len(mesh.cells)} edges, coloured by their length')
    view = View(*FRONT, mesh.points, (150, 60, 560, 350))
    by_colour = {}
    for c in mesh.of_dimension(1):
        share = round(8 * (mesh.fields['length'][c] - low) / (high - low)) / 8
        by_colour.setdefault(share, []).append(mesh.corners(c))
    picture.parts.append('<g fill="none" stroke-width="1.3" stroke-linecap="round">')
    for share, lines in sorted(by_colour.items(), reverse=True):
        path = ''.join(f'M{view.place(a)}L{view.place(b)}' for a, b in lines)
        picture.parts.append(f'<path d="{path}" stroke="{on_scale(0.92 * share)}"/>')
    picture.parts.append('</g>')
    picture.bar(760, 150, 180, f'{low:.3g}', f'{high:.3g}')
    return picture


def neighbors(tool):
    picture = Picture(430, [860])
    picture.heading(0, '$ tessolv neighbors column.msh', 'solid elements by the number of those they share a face with')
    colours = {1: PINK, 2: BLUE, 3: GREEN, 4: YELLOW, 5: ORANGE, 6: RED}
    whole = tool.mesh('neighbors column.msh')
    tool.run('neighbors column.msh --quiet --output counted.msh --force')
    half = tool.mesh('clip counted.msh --point 0.34 0 0 --normal -1 0 0')
    for card_left, mesh, words in ((60, whole, 'all'), (370, half, 'those with x below 0.34')):
        view = View(38, 24, whole.points, (card_left, 70, 240, 320))
        cells = mesh.on_the_outside()
        view.solids(mesh, cells, lambda c, m=mesh: colours[m.fields['neighbours'][c]], shrink=0.84)
        picture.view(view)
        picture.words(card_left + 120, 414, words, 'faint', 'middle')
    occurring = {whole.fields['neighbours'][c] for c in whole.of_dimension(3)}
    picture.legend(700, 150, [(colours[n], f'{n:g} neighbours') for n in sorted(occurring)], step=28)
    return picture


def parts(tool):
    mesh = tool.mesh('parts bracket.stl')
    one = tool.mesh('parts bracket.stl --select 1')
    colours = {1: ORANGE, 2: SKY}
    picture = Picture(400, [423, 423])
    picture.heading(0, '$ tessolv parts bracket.stl', 'two parts: a gap of 0.02 mm lies between them')
    picture.heading(1, '$ tessolv parts bracket.stl --select 1', 'the first part alone')
    for card, m in enumerate((mesh, one)):
        view = View(*BELOW, mesh.points, picture.box(card))
        view.surface(m, lambda c, m=m: colours[m.fields['part'][c]])
        picture.view(view)
    return picture


def transform(tool):
    before = tool.file('surface.msh')
    after = tool.mesh('transform surface.msh --scale 0.6 --angle 90 --axis 0 0 1 --translate 0 62 0')
    picture = Picture(430, [860])
    picture.heading(0, '$ tessolv transform surface.msh --scale 0.6 --angle 90 --axis 0 0 1 --translate 0 62 0',
                    'scaled about the origin, then turned about the z axis, then moved along y')
    everything = before.points + after.points + [(50, 0, 0), (0, 100, 0), (0, 0, 48)]
    view = View(38, 24, everything, (140, 70, 580, 340))
    for m, colour in ((before, GREY), (after, SKY)):
        view.surface(m, lambda c, colour=colour: colour)
    for k, name in enumerate('xyz'):
        tip = tuple((50, 100, 48)[k] * (i == k) for i in range(3))
        view.line([(0, 0, 0), tip], 'axis', nearer=-100)
        x, y = view.place(tip).split()
        picture.words(float(x) + 5, float(y) + 4, name, 'faint')
    picture.view(view)
    picture.legend(60, 360, [(GREY, 'before'), (SKY, 'after')])
    return picture


def clip(tool):
    whole = tool.file('column.msh')
    kept = tool.mesh('clip column.msh --point 0.5 0.5 0 --normal 1 1 0')
    picture = Picture(430, [376, 470])
    view_of = (-58, 26)
    picture.heading(0, 'column.msh', f'{len(whole.cells)} elements; the plane goes through the axis')
    picture.heading(1, '$ tessolv clip column.msh --point 0.5 0.5 0 --normal 1 1 0',
                    f'{len(kept.cells)} elements kept, none of them cut')
    plane = [(1.15, -0.15, -0.1), (-0.15, 1.15, -0.1), (-0.15, 1.15, 2.6), (1.15, -0.15, 2.6)]
    for card, mesh in enumerate((whole, kept)):
        view = View(*view_of, whole.points + plane, picture.box(card))
        view.solids(mesh, mesh.on_the_outside(), lambda c, m=mesh: KINDS[m.types[c]][0], shrink=0.86)
        for a, b in zip(plane, plane[1:] + plane[:1]):
            view.line([a, b], 'plane', nearer=50)
        picture.view(view)
    return picture


def tutorial(tool):
    faulty, surface = tool.file('bracket.stl'), tool.file('surface.msh')
    tool.run('quality bracket.msh --quiet --output measured.msh')
    tool.run('clip measured.msh --point 0 12 0 --normal 0 1 0 --quiet --output cut.msh')
    inside = tool.mesh('boundary cut.msh')
    groups = {1: SKY, 2: ORANGE, 3: GREEN, 4: PINK, 5: GREY}
    picture = Picture(330, [280, 280, 280])
    eyes = (-125, -18), (-140, 24), (-62, 20)
    views = [View(*eye, surface.points, picture.box(card, 28)) for card, eye in enumerate(eyes)]
    views[0].surface(faulty, lambda c: GREY)
    count = open_edges(tool, 'bracket.stl', views[0])
    picture.heading(0, 'bracket.stl', f'{count} open edges and other faults')
    views[1].surface(surface, lambda c: groups[surface.fields['group'][c]])
    picture.heading(1, 'surface.msh', 'closed, with the names of its faces')
    views[2].surface(inside, coloured(inside, 'quality', 0.2, 1))
    picture.heading(2, 'bracket.msh', 'tetrahedra, cut open')
    for view in views:
        picture.view(view)
    return picture


PICTURES = (tutorial, info, check, quality, convert, weld, clean, boundary, edges, neighbors, parts, transform, clip)


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    to = Path(sys.argv[2]) if len(sys.argv) == 3 else HERE
    with tempfile.TemporaryDirectory() as folder:
        tool = Tool(os.path.abspath(sys.argv[1]), Path(folder))
        for draw in PICTURES:
            (to / f'tool-{draw.__name__}.svg').write_text(draw(tool).text(), encoding='utf-8')


if __name__ == '__main__':
    main()

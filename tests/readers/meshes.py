"""The meshes that write_files writes, and what each format makes of them by its own conventions."""
import os
import subprocess
import sys

sys.dont_write_bytecode = True  # nothing is left in the source tree

SKIPPED = 77

# kind: (shape of the corners, number of corners)
KINDS = {"node": ("vertex", 1), "edge2": ("line", 2), "edge3": ("line", 2), "tria3": ("triangle", 3),
         "tria6": ("triangle", 3), "quad4": ("quad", 4), "quad8": ("quad", 4), "quad9": ("quad", 4),
         "tetra4": ("tetra", 4), "tetra10": ("tetra", 4), "wedge6": ("wedge", 6), "wedge18": ("wedge", 6),
         "pyramid5": ("pyramid", 5), "pyramid14": ("pyramid", 5), "hexa8": ("hexahedron", 8),
         "hexa20": ("hexahedron", 8), "hexa27": ("hexahedron", 8)}
MIXED = {"face_mix": {3: "triangle", 4: "quad"}, "solid_mix": {4: "tetra", 6: "wedge", 8: "hexahedron"}}

# Writers refuse what these hold: there is no cell for it.
REFUSED = {"node-2d.vtk", "node-3d.vtk", "pyramid5-3d.vtk", "pyramid14-3d.vtk"}


class Mesh:
    """Coordinates with three rows, and parts: (kind, [nodes of each element])."""

    def __init__(self, path):
        with open(path, encoding="ascii") as file:
            lines = file.read().split("\n")
        self.dimension, count = (int(word) for word in lines[0].split()[1:])
        self.points = [tuple(float(x) for x in line.split()) + (0.0,) * (3 - self.dimension)
                       for line in lines[1:1 + count]]
        self.parts = []
        for line in lines[1 + count:-1]:
            kind, *nodes = line.split()
            # Every part has three elements, or is alone of its kind.
            if not self.parts or self.parts[-1][0] != kind or len(self.parts[-1][1]) == 3:
                self.parts.append((kind, []))
            self.parts[-1][1].append(tuple(int(node) for node in nodes))


def by_shape(kind, elements):
    """A mixed part shape by shape, as the VTK and MEDIT writers take it; any other as it is."""
    if kind not in MIXED:
        return [(KINDS[kind][0], element) for element in elements]
    return [(shape, element) for count, shape in MIXED[kind].items() for element in elements if len(element) == count]


def swapped(shape, nodes):
    """The tetrahedra of the VTK writer have their last two nodes exchanged."""
    return nodes[:2] + (nodes[3], nodes[2]) if shape == "tetra" else nodes


def vtk_cells(mesh):
    """Corners, each followed by a poly-vertex of the further nodes if there are some."""
    cells = []
    for kind, elements in mesh.parts:
        for shape, nodes in by_shape(kind, elements):
            corners = len(nodes) if kind in MIXED else KINDS[kind][1]
            cells.append((shape, swapped(shape, nodes[:corners])))
            if corners < len(nodes):
                cells.append(("poly-vertex", nodes[corners:]))
    return cells


def medit_cells(mesh):
    """(shape, corners, reference = position of the part), section by section; no wedges, pyramids and single nodes."""
    order = ("line", "triangle", "quad", "tetra", "hexahedron")
    cells = [(shape, nodes[:len(nodes) if kind in MIXED else KINDS[kind][1]], position)
             for position, (kind, elements) in enumerate(mesh.parts) for shape, nodes in by_shape(kind, elements)]
    return sorted((cell for cell in cells if cell[0] in order), key=lambda cell: order.index(cell[0]))


def faces(mesh):
    return [(KINDS[kind][0], nodes) for kind, elements in mesh.parts for nodes in elements]


def as_positions(mesh, cells):
    """Cells by the positions of their nodes: for readers that number nodes anew."""
    return [(cell[0], tuple(mesh.points[node] for node in cell[1]), *cell[2:]) for cell in cells]


failures = []


def check(condition, message):
    if not condition:
        failures.append(message)


def same_points(name, found, wanted, relative, absolute=0.0):
    """Coordinates within what the digits of the format, and the reader's own numbers, keep."""
    check(len(found) == len(wanted), f"{name}: {len(found)} points, not {len(wanted)}")
    for j, (p, q) in enumerate(zip(found, wanted)):
        check(len(p) == len(q) and all(abs(x - y) <= absolute + relative * abs(y) for x, y in zip(p, q)),
              f"{name}: point {j} is {tuple(p)}, not {q}")


def same(name, found, wanted):
    check(found == wanted, f"{name}: found {found}, not {wanted}")


def same_cells_by_position(name, found, wanted, relative, absolute=0.0):
    """Both are lists of (shape, positions, ...); their order does not count."""
    def rounded(cell):
        return (cell[0], *cell[2:], tuple(tuple(round(x, 3) for x in p) for p in cell[1]))

    found, wanted = sorted(found, key=rounded), sorted(wanted, key=rounded)
    same(f"{name}, shapes", [(c[0], *c[2:]) for c in found], [(c[0], *c[2:]) for c in wanted])
    for k, (a, b) in enumerate(zip(found, wanted)):
        same_points(f"{name}, cell {k}", a[1], b[1], relative, absolute)


def written_files(arguments):
    """Runs write_files; {file name: Mesh or None} for the files that a writer wrote."""
    write_files, folder = arguments[1:3]
    os.makedirs(folder, exist_ok=True)
    lines = subprocess.run([write_files, folder], stdout=subprocess.PIPE, text=True, check=True).stdout.split("\n")[:-1]
    files = {}
    for name, code in (line.split() for line in lines):
        check((int(code) != 0) == (name in REFUSED), f"{name}: the writer returns {code}")
        base = os.path.join(folder, name.split(".")[0])
        for suffix in ("-text", "-binary", "-plain", "-normals", "-texture", "-all"):
            base = base[:-len(suffix)] if base.endswith(suffix) else base
        if name not in REFUSED and not name.endswith(".quality"):
            described = base + ".mesh.txt"
            files[os.path.join(folder, name)] = Mesh(described) if os.path.exists(described) else None
    return files


def with_blanks(name):
    """A copy of an OBJ file without normals and texture coordinates whose faces have blanks for slashes."""
    with open(name, encoding="ascii") as file:
        lines = file.read().split("\n")
    copy = name.replace("-plain.obj", "-blanks.obj")
    with open(copy, "w", encoding="ascii") as file:
        file.write("\n".join(line.replace("/", " ") if line.startswith(" f ") else line for line in lines))
    return copy


def volume(points, shape, nodes):
    """Positive when the first face turns counter-clockwise seen from the other end (tetrahedra, wedges, hexahedra)."""
    a, b, c, d = (points[nodes[i]] for i in {"tetra": (0, 1, 2, 3), "wedge": (0, 1, 2, 3),
                                             "hexahedron": (0, 1, 3, 4)}[shape])
    u, v, w = (tuple(q[i] - a[i] for i in range(3)) for q in (b, c, d))
    return (u[0] * (v[1] * w[2] - v[2] * w[1]) - u[1] * (v[0] * w[2] - v[2] * w[0])
            + u[2] * (v[0] * w[1] - v[1] * w[0]))


def skip(package, error):
    print(f"SKIPPED: needs the package {package} ({error})")
    sys.exit(SKIPPED)


def finish(count):
    for failure in failures[:20]:
        print(failure)
    print(f"{count} files, {len(failures)} differences")
    sys.exit(bool(failures) or count == 0)

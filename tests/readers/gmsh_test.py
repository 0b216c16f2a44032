"""What the program gmsh makes of the files of every writer: it reads them and writes its own format, text version 2.2."""
import os
import shutil
import subprocess
import sys

from meshes import (as_positions, check, faces, finish, medit_cells, same, same_cells_by_position, skip, volume,
                    vtk_cells, written_files)

GMSH = shutil.which("gmsh")
SHAPES = {1: "line", 2: "triangle", 3: "quad", 4: "tetra", 5: "hexahedron", 6: "wedge", 7: "pyramid", 15: "vertex"}


def parse(path):
    """(positions of nodes, [(shape, nodes, elementary entity)]) of a file of gmsh; the entity is the reference."""
    with open(path, encoding="ascii") as file:
        lines = file.read().split("\n")
    nodes, cells = {}, []
    if "$Nodes" in lines:
        start = lines.index("$Nodes") + 2
        for line in lines[start:start + int(lines[start - 1])]:
            number, *position = line.split()
            nodes[int(number)] = tuple(float(x) for x in position)
    if "$Elements" in lines:
        start = lines.index("$Elements") + 2
        for line in lines[start:start + int(lines[start - 1])]:
            numbers = [int(word) for word in line.split()]
            tags = numbers[2]
            cells.append((SHAPES[numbers[1]], tuple(numbers[3 + tags:]), numbers[4]))
    return nodes, cells


def read(name):
    """(whether gmsh is content, what it says, nodes, cells)"""
    copy = name + ".msh"
    if os.path.exists(copy):
        os.remove(copy)
    result = subprocess.run([GMSH, "-0", name, "-format", "msh22", "-save_all", "-o", copy], stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True, check=False)
    nodes, cells = parse(copy) if os.path.exists(copy) else ({}, [])
    return result.returncode == 0, result.stdout, nodes, cells


def positions(nodes, cells, with_reference):
    return [(shape, tuple(nodes[node] for node in corners), *([reference] if with_reference else []))
            for shape, corners, reference in cells]


def only_used(name, nodes, cells):
    """gmsh keeps the nodes of elements and drops all others."""
    same(f"{name}, nodes", set(nodes), {node for _, corners, _ in cells for node in corners})


def vtk(name, mesh):
    content, text, nodes, cells = read(name)
    wanted = vtk_cells(mesh)
    # It reports every poly-vertex as an error, and reads the corners of the elements all the same.
    further = sum(shape == "poly-vertex" for shape, _ in wanted)
    same(f"{name}, poly-vertices", text.count("Unknown type of cell 2"), further)
    check(content == (further == 0 and wanted != []), f"{name}: {text}")
    same_cells_by_position(name, positions(nodes, cells, False),
                           as_positions(mesh, [cell for cell in wanted if cell[0] != "poly-vertex"]), 0, 5.1e-7)
    only_used(name, nodes, cells)


def medit(name, mesh):
    content, text, nodes, cells = read(name)
    check(content, f"{name}: {text}")
    same_cells_by_position(name, positions(nodes, cells, True), as_positions(mesh, medit_cells(mesh)), 5.1e-7)
    only_used(name, nodes, cells)


def stl(name, mesh):
    content, text, nodes, cells = read(name)
    check(content, f"{name}: {text}")
    same_cells_by_position(name, positions(nodes, cells, False), as_positions(mesh, faces(mesh)), 5.1e-7)
    only_used(name, nodes, cells)


def refused(name, _):
    content, text, nodes, cells = read(name)
    check(not content and "syntax error" in text and not nodes and not cells, f"{name}: gmsh reads it now: {text}")


def orientation(folder):
    def positive(name):
        _, _, nodes, cells = read(f"{folder}/{name}")
        return {shape: volume(nodes, shape, corners) > 0 for shape, corners, _ in cells}

    same("sound-3d.vtk", positive("sound-3d.vtk"), {"tetra": True, "wedge": True, "hexahedron": True})
    same("sound-3d.mesh", positive("sound-3d.mesh"), {"tetra": False, "hexahedron": True})


if GMSH is None:
    skip("gmsh", "there is no such program")
files = written_files(sys.argv)
# Files that it refuses by their first line: a few will do, for each is a start of the program.
files = {file: mesh for file, mesh in files.items()
         if not file.endswith((".obj", ".geo")) or os.path.basename(file).startswith(("triangles-3d", "tria3"))}
readers = {"vtk": vtk, "mesh": medit, "stl": stl, "obj": refused, "geo": refused, "sol": refused}
for file, described in files.items():
    readers[file.rsplit(".", 1)[1]](file, described)
orientation(sys.argv[2])
finish(len(files))

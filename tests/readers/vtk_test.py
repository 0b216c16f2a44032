"""What VTK makes of the files of the VTK, EnSight, STL and OBJ writers."""
import os
import sys

from meshes import KINDS, check, faces, finish, same, same_points, skip, vtk_cells, with_blanks, written_files

try:
    import vtkmodules.vtkCommonCore as vtk_core
    from vtkmodules.vtkCommonDataModel import vtkCompositeDataSet
    from vtkmodules.vtkIOEnSight import vtkEnSight6Reader
    from vtkmodules.vtkIOGeometry import vtkOBJReader, vtkSTLReader
    from vtkmodules.vtkIOLegacy import vtkUnstructuredGridReader
except ImportError as error:
    skip("python3-vtk9", error)

vtk_core.vtkLogger.SetStderrVerbosity(vtk_core.vtkLogger.VERBOSITY_OFF)  # refusals are expected, and looked at

SHAPES = {1: "vertex", 2: "poly-vertex", 3: "line", 5: "triangle", 9: "quad", 10: "tetra", 12: "hexahedron", 13: "wedge",
          14: "pyramid"}


def read(reader):
    """(output, error messages)"""
    window = vtk_core.vtkStringOutputWindow()
    vtk_core.vtkOutputWindow.SetInstance(window)
    reader.Update()
    return reader.GetOutput(), window.GetOutput()


def points_of(data):
    return [data.GetPoint(j) for j in range(data.GetNumberOfPoints())]


def cells_of(data):
    cells = []
    for k in range(data.GetNumberOfCells()):
        cell = data.GetCell(k)
        cells.append((SHAPES[data.GetCellType(k)], tuple(cell.GetPointId(i) for i in range(cell.GetNumberOfPoints()))))
    return cells


def legacy(name, mesh):
    reader = vtkUnstructuredGridReader()
    reader.SetFileName(name)
    grid, errors = read(reader)
    same(name, errors, "")
    same_points(name, points_of(grid), mesh.points, 0, 5.1e-7)
    same(name, cells_of(grid), vtk_cells(mesh))


def ensight_part(kind, elements):
    """The cells that VTK makes of a part, or None where the writer makes no part."""
    if kind not in KINDS or kind in ("node", "pyramid5", "pyramid14"):
        return None
    shape, count = KINDS[kind]
    # The reader takes quadratic elements for linear ones: the first nodes of a line in the file, of three its first and
    # its third, which is the middle. The triangle 0, 1, 2 of a wedge turns the other way round in VTK: it exchanges.
    orders = {"edge3": (0, 2), "tetra4": (0, 2, 1, 3), "tetra10": (0, 2, 1, 3), "wedge6": (0, 2, 1, 3, 5, 4),
              "wedge18": (0, 2, 1, 3, 5, 4)}
    return [(shape, tuple(nodes[i] for i in orders.get(kind, range(count)))) for nodes in elements]


def ensight(name, mesh):
    case = name[:-len("geo")] + "case"
    with open(case, "w", encoding="ascii") as file:
        file.write(f"FORMAT\ntype: ensight\n\nGEOMETRY\nmodel: {os.path.basename(name)}\n")
    reader = vtkEnSight6Reader()
    reader.SetCaseFileName(case)
    blocks, errors = read(reader)
    same(name, errors, "")
    wanted = [cells for kind, elements in mesh.parts if (cells := ensight_part(kind, elements)) is not None]
    same(f"{name}, parts", blocks.GetNumberOfBlocks(), len(wanted))
    for k in range(min(len(wanted), blocks.GetNumberOfBlocks())):
        same(f"{name}, part {k}", cells_of(blocks.GetBlock(k)), wanted[k])
        same_points(f"{name}, part {k}", points_of(blocks.GetBlock(k)), mesh.points, 5.1e-6)
        same(f"{name}, part {k}", blocks.GetMetaData(k).Get(vtkCompositeDataSet.NAME()), "*************")


def stl(name, mesh):
    reader = vtkSTLReader()
    reader.SetFileName(name)
    data, errors = read(reader)
    same(name, errors, "")
    # One node of equal corners, numbered anew, in single precision.
    wanted = faces(mesh)
    found = cells_of(data)
    same(name, [shape for shape, _ in found], [shape for shape, _ in wanted])

    def corners(cell, points):
        return [points[node] for node in cell[1]]

    def key(triangle):
        return [round(x, 3) for p in triangle for x in p]

    triangles = sorted((corners(cell, points_of(data)) for cell in found), key=key)
    for a, b in zip(triangles, sorted((corners(cell, mesh.points) for cell in wanted), key=key)):
        same_points(name, a, b, 6e-7 if "text" in name else 6e-8)


def read_obj(name):
    reader = vtkOBJReader()
    reader.SetFileName(name)
    return read(reader)


def obj(name, mesh):
    data, errors = read_obj(name)
    # The corners of a face run together: the first face is an error, and nothing is read at all.
    check("while processing the 'f' command" in errors, f"{name}: {errors}")
    same(name, data.GetNumberOfPoints(), 0)
    if "plain" in name:
        data, errors = read_obj(with_blanks(name))
        same(name, errors, "")
        same_points(name, points_of(data), mesh.points, 6e-8)
        same(name, cells_of(data), faces(mesh))


def outward(name, data, wanted):
    """Whether the faces of each solid turn counter-clockwise seen from outside, as those of every cell of VTK should."""
    found = {}
    for k in range(data.GetNumberOfCells()):
        cell = data.GetCell(k)
        corners = [data.GetPoint(cell.GetPointId(i)) for i in range(cell.GetNumberOfPoints())]
        middle = [sum(p[i] for p in corners) / len(corners) for i in range(3)]
        face = [data.GetPoint(cell.GetFace(0).GetPointId(i)) for i in range(3)]
        u, v, w = ([b[i] - face[0][i] for i in range(3)] for b in (face[1], face[2], middle))
        found[SHAPES[data.GetCellType(k)]] = (u[0] * (v[1] * w[2] - v[2] * w[1]) - u[1] * (v[0] * w[2] - v[2] * w[0])
                                              + u[2] * (v[0] * w[1] - v[1] * w[0])) < 0
    same(name, found, wanted)


def orientation(folder):
    reader = vtkUnstructuredGridReader()
    reader.SetFileName(f"{folder}/sound-3d.vtk")
    outward("sound-3d.vtk", read(reader)[0], {"tetra": True, "wedge": False, "hexahedron": True})
    reader = vtkEnSight6Reader()
    reader.SetCaseFileName(f"{folder}/sound-3d.case")
    blocks = read(reader)[0]
    for k, shape in enumerate(("tetra", "wedge", "hexahedron")):
        outward(f"sound-3d.geo, {shape}", blocks.GetBlock(k), {shape: True})


files = written_files(sys.argv)
readers = {"vtk": legacy, "geo": ensight, "stl": stl, "obj": obj}
read_files = {file: described for file, described in files.items() if file.rsplit(".", 1)[1] in readers}
for file, described in read_files.items():
    readers[file.rsplit(".", 1)[1]](file, described)
orientation(sys.argv[2])
finish(len(read_files))

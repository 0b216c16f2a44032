"""What meshio makes of the files of every writer."""
import sys

from meshes import check, faces, finish, medit_cells, same, same_points, skip, volume, vtk_cells, with_blanks, written_files

try:
    import meshio
    import numpy
except ImportError as error:
    skip("python3-meshio", error)


def read(name):
    try:
        return meshio.read(name)
    except (meshio.ReadError, SystemExit):  # meshio 5.0 ends the program where it cannot go on
        return None


def cells_of(mesh):
    return [(block.type, tuple(int(node) for node in nodes)) for block in mesh.cells for nodes in block.data]


def vtk(name, mesh):
    found = read(name)
    # It turns wedges round: in VTK their first triangle faces outward, in meshio inward.
    wanted = [(shape, tuple(nodes[i] for i in (0, 2, 1, 3, 5, 4)) if shape == "wedge" else nodes)
              for shape, nodes in vtk_cells(mesh)]
    # It does not know the poly-vertices of quadratic elements and refuses the file.
    check((found is None) == any(shape == "poly-vertex" for shape, _ in wanted), f"{name}: refused: {found is None}")
    if found is not None:
        same_points(name, found.points.tolist(), mesh.points, 0, 5.1e-7)
        same(name, cells_of(found), wanted)


def medit(name, mesh):
    found = read(name)
    wanted = medit_cells(mesh)
    # MeshVersionFormatted 1 means single precision to it. A plane mesh keeps its two coordinates.
    check(found.points.dtype == numpy.float32, f"{name}: {found.points.dtype}")
    same_points(name, found.points.tolist(), [p[:mesh.dimension] for p in mesh.points], 6e-7)
    same(name, cells_of(found), [cell[:2] for cell in wanted])
    same(name, [int(ref) for block in found.cell_data["medit:ref"] for ref in block], [cell[2] for cell in wanted])


def stl(name, mesh):
    found = read(name)
    wanted = faces(mesh)
    # It makes one node of equal corners and numbers them anew.
    same(name, [block.type for block in found.cells], ["triangle"])
    relative = 5.1e-7 if "text" in name else 6e-8
    for (_, nodes), corners in zip(wanted, found.cells[0].data, strict=True):
        same_points(name, found.points[corners].tolist(), [mesh.points[node] for node in nodes], relative)


def obj(name, mesh):
    found = read(name)
    same_points(name, found.points.tolist(), mesh.points, 5.1e-9)
    # The corners of a face run together: it takes the first number of each face and drops the others.
    same(name, cells_of(found), [("polygon", nodes[:1]) for _, nodes in faces(mesh)])
    if "plain" in name:
        same(name, cells_of(read(with_blanks(name))), faces(mesh))
    check(("obj:vn" in found.point_data) == ("normals" in name or "all" in name), f"{name}: {found.point_data.keys()}")
    check(("obj:vt" in found.point_data) == ("texture" in name or "all" in name), f"{name}: {found.point_data.keys()}")


def unknown(name, _):
    check(read(name) is None, f"{name}: meshio has a reader for it now")


def orientation(folder):
    """Elements of positive quality, by the convention of meshio: the first face turns as seen from the other end."""
    found = {name: {shape: volume(mesh.points.tolist(), shape, nodes) > 0 for shape, nodes in cells_of(mesh)}
             for name in ("sound-3d.vtk", "sound-3d.mesh") for mesh in [read(f"{folder}/{name}")]}
    same("sound-3d.vtk", found["sound-3d.vtk"], {"tetra": True, "wedge": False, "hexahedron": True})
    same("sound-3d.mesh", found["sound-3d.mesh"], {"tetra": False, "hexahedron": True})


files = written_files(sys.argv)
readers = {"vtk": vtk, "mesh": medit, "stl": stl, "obj": obj, "geo": unknown, "sol": unknown}
for file, described in files.items():
    readers[file.rsplit(".", 1)[1]](file, described)
orientation(sys.argv[2])
finish(len(files))

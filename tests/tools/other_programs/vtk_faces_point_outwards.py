"""Whether the faces of every solid cell of a VTU file turn outwards, as VTK has it."""
import sys

import vtk

reader = vtk.vtkXMLUnstructuredGridReader()
reader.SetFileName(sys.argv[1])
reader.Update()
grid = reader.GetOutput()
if grid.GetNumberOfCells() == 0:
    sys.exit(2)
for c in range(grid.GetNumberOfCells()):
    cell = grid.GetCell(c)
    points = [cell.GetPoints().GetPoint(i) for i in range(cell.GetNumberOfPoints())]
    middle = [sum(p[i] for p in points) / len(points) for i in range(3)]
    for f in range(cell.GetNumberOfFaces()):
        face = grid.GetCell(c).GetFace(f)
        corners = [face.GetPoints().GetPoint(i) for i in range(face.GetNumberOfPoints())]
        centre = [sum(p[i] for p in corners) / len(corners) for i in range(3)]
        normal = [0.0, 0.0, 0.0]
        for a, b in zip(corners, corners[1:] + corners[:1]):
            for k in range(3):
                u, v = (k + 1) % 3, (k + 2) % 3
                normal[k] += (a[u] - b[u]) * (a[v] + b[v])
        if sum(normal[k] * (centre[k] - middle[k]) for k in range(3)) <= 0:
            sys.exit(1)

"""Prints how many points and triangles VTK finds in STL and OBJ files, a line for each: vtk_surface.py FILE..."""
import sys

import vtk

for name in sys.argv[1:]:
    reader = vtk.vtkSTLReader() if name.endswith(".stl") else vtk.vtkOBJReader()
    reader.SetFileName(name)
    reader.Update()
    surface = reader.GetOutput()
    print(name, surface.GetNumberOfPoints(), surface.GetNumberOfPolys())

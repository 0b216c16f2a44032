"""Reads a VTK file with VTK and writes it again, in the way that the name asks for: vtk_again.py INPUT OUTPUT."""
import sys

import vtk

source, target = sys.argv[1:]
reader = vtk.vtkXMLUnstructuredGridReader() if source.endswith(".vtu") else vtk.vtkUnstructuredGridReader()
reader.SetFileName(source)
if source.endswith(".vtk"):
    reader.ReadAllFieldsOn()
reader.Update()
grid = reader.GetOutput()

if target.endswith(".vtu"):
    writer = vtk.vtkXMLUnstructuredGridWriter()
    if target.endswith("ascii.vtu"):
        writer.SetDataModeToAscii()
    elif target.endswith("raw.vtu"):
        writer.SetDataModeToAppended()
        writer.EncodeAppendedDataOff()
    elif target.endswith("plain.vtu"):
        writer.SetDataModeToBinary()
        writer.SetCompressorTypeToNone()
else:
    writer = vtk.vtkUnstructuredGridWriter()
    writer.SetFileVersion(51 if target.endswith("51.vtk") else 42)
    writer.SetFileTypeToBinary()
writer.SetFileName(target)
writer.SetInputData(grid)
sys.exit(0 if writer.Write() == 1 and grid.GetNumberOfCells() > 0 else 1)

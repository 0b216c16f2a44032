"""Reads a mesh with meshio and writes it again: meshio_again.py INPUT OUTPUT."""
import sys

import meshio

source, target = sys.argv[1:]
# The suffix .msh stands for several formats there, of which the older one takes any mesh.
mesh = meshio.read(source, file_format="gmsh" if source.endswith(".msh") else None)
if target.endswith(".mesh"):
    mesh.point_data.pop("gmsh:dim_tags", None)  # which that writer cannot print
meshio.write(target, mesh, file_format="gmsh22" if target.endswith(".msh") else None)

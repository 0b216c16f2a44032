"""Welds a mesh, shows its worst elements and what is wrong with it: ten_lines.py INPUT OUTPUT"""

import sys

import tessolv as ts

mesh = ts.Mesh.read(sys.argv[1]).weld(1e-6)
print(mesh.worst(10))
print(mesh.check())
mesh.write(sys.argv[2])

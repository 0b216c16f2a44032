// A cube of tetrahedra, prisms below it, hexahedra beside it.
Point(1) = {0, 0, 0}; Point(2) = {1, 0, 0}; Point(3) = {1, 1, 0}; Point(4) = {0, 1, 0};
Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {3, 4}; Line(4) = {4, 1};
Curve Loop(1) = {1, 2, 3, 4}; Plane Surface(1) = {1};
Point(101) = {3, 0, 0}; Point(102) = {4, 0, 0}; Point(103) = {4, 1, 0}; Point(104) = {3, 1, 0};
Line(101) = {101, 102}; Line(102) = {102, 103}; Line(103) = {103, 104}; Line(104) = {104, 101};
Curve Loop(101) = {101, 102, 103, 104}; Plane Surface(101) = {101};
Transfinite Curve {1, 2, 3, 4, 101, 102, 103, 104} = 3; Transfinite Surface {101}; Recombine Surface {101};
Extrude {0, 0, 1} { Surface{1}; }
Extrude {0, 0, -1} { Surface{1}; Layers{2}; Recombine; }
Extrude {0, 0, 1} { Surface{101}; Layers{2}; Recombine; }
Mesh.MeshSizeMax = 0.5;

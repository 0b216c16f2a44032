// Bricks below, tetrahedra above: pyramids lead from the one to the other.
Point(1) = {0, 0, 0}; Point(2) = {1, 0, 0}; Point(3) = {1, 1, 0}; Point(4) = {0, 1, 0};
Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {3, 4}; Line(4) = {4, 1};
Curve Loop(1) = {1, 2, 3, 4}; Plane Surface(1) = {1};
Transfinite Curve {1, 2, 3, 4} = 3; Transfinite Surface {1}; Recombine Surface {1};
Extrude {0, 0, -1} { Surface{1}; Layers{2}; Recombine; }
Extrude {0, 0, 1} { Surface{1}; Layers{1}; QuadTriAddVerts RecombLaterals; Recombine; }
Mesh.MeshSizeMax = 0.5;

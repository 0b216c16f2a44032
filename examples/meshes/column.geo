// A column of every kind of solid element: hexahedra at the foot, tetrahedra with pyramids below them in the middle,
// wedges at the top. gmsh -3 column.geo -o column.msh
Point(1) = {0, 0, 0}; Point(2) = {1, 0, 0}; Point(3) = {1, 1, 0}; Point(4) = {0, 1, 0};
Line(1) = {1, 2}; Line(2) = {2, 3}; Line(3) = {3, 4}; Line(4) = {4, 1};
Curve Loop(1) = {1, 2, 3, 4}; Plane Surface(1) = {1};
Transfinite Curve {1:4} = 4; Transfinite Surface {1}; Recombine Surface {1};
foot[] = Extrude {0, 0, 1} { Surface{1}; Layers{3}; Recombine; };
shaft[] = Extrude {0, 0, 1} { Surface{foot[0]}; };
head[] = Extrude {0, 0, 0.5} { Surface{shaft[0]}; Layers{2}; Recombine; };
Physical Volume("foot") = {foot[1]};
Physical Volume("shaft") = {shaft[1]};
Physical Volume("head") = {head[1]};
Physical Surface("fixed") = {1};
Physical Surface("loaded") = {head[0]};
Mesh.MeshSizeMax = 0.35;

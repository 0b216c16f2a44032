// Fills the surface with tetrahedra: gmsh -3 bracket.geo -o bracket.msh
Merge "surface.msh";
Surface Loop(1) = {1:5};
Volume(1) = {1};
Physical Surface("bottom") = {1};
Physical Surface("back") = {2};
Physical Surface("bolt_hole") = {3};
Physical Surface("pin_hole") = {4};
Physical Surface("outside") = {5};
Physical Volume("steel") = {1};

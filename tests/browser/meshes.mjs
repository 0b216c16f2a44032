// Small meshes in text formats, for the tests of the page.

const vtkTypes = { line: 3, triangle: 5, quad: 9, tetra: 10, hexahedron: 12, wedge: 13 };

// elements: lists of [kind, nodes].
export function vtk(places, elements) {
  const lines = ["# vtk DataFile Version 3.0", "a mesh", "ASCII", "DATASET UNSTRUCTURED_GRID", `POINTS ${places.length} double`];
  for (const p of places) lines.push(p.join(" "));
  const size = elements.reduce((sum, [, nodes]) => sum + 1 + nodes.length, 0);
  lines.push(`CELLS ${elements.length} ${size}`);
  for (const [, nodes] of elements) lines.push(`${nodes.length} ${nodes.join(" ")}`);
  lines.push(`CELL_TYPES ${elements.length}`, ...elements.map(([kind]) => vtkTypes[kind]));
  return lines.join("\n") + "\n";
}

// A grid of nodes, x fastest, and the number of the node (i, j, k).
function grid(x, y, z) {
  const places = [];
  for (let k = 0; k <= z; ++k) for (let j = 0; j <= y; ++j) for (let i = 0; i <= x; ++i) places.push([i, j, k]);
  return { places, node: (i, j, k) => i + (x + 1) * (j + (y + 1) * k) };
}

function forEachCell(x, y, z, visit) {
  for (let k = 0; k < z; ++k) for (let j = 0; j < y; ++j) for (let i = 0; i < x; ++i) visit(i, j, k);
}

// A block of tetrahedra, six in each cube around its diagonal, a node in the middle of which lies where it turns some over.
export function spoiltBlock() {
  const { places, node } = grid(6, 4, 4), elements = [];
  forEachCell(6, 4, 4, (i, j, k) => {
    for (const [a, b] of [["x", "y"], ["y", "x"], ["x", "z"], ["z", "x"], ["y", "z"], ["z", "y"]]) {
      const step = { x: 0, y: 0, z: 0 }, corner = () => node(i + step.x, j + step.y, k + step.z);
      const nodes = [corner()];
      step[a] = 1;
      nodes.push(corner());
      step[b] = 1;
      nodes.push(corner(), node(i + 1, j + 1, k + 1));
      if (["xz", "yx", "zy"].includes(a + b)) [nodes[1], nodes[2]] = [nodes[2], nodes[1]];
      elements.push(["tetra", nodes]);
    }
  });
  places[node(3, 2, 2)] = [3.9, 2.7, 2.8];
  places[node(3, 2, 2)][0] += 0.6;
  return vtk(places, elements);
}

// A plane region in two coordinates, in the format of MEDIT; one of its triangles lies upside down.
export function planeRegion() {
  const { places, node } = grid(8, 5, 0), triangles = [];
  forEachCell(8, 5, 1, (i, j) => {
    triangles.push([node(i, j, 0), node(i + 1, j, 0), node(i, j + 1, 0)], [node(i + 1, j, 0), node(i + 1, j + 1, 0), node(i, j + 1, 0)]);
  });
  triangles[20].reverse();
  const lines = ["MeshVersionFormatted 2", "Dimension 2", "Vertices", places.length];
  for (const [x, y] of places) lines.push(`${x + 0.25 * Math.sin(y)} ${y} 0`);
  lines.push("Triangles", triangles.length, ...triangles.map(t => t.map(n => n + 1).join(" ") + " 1"), "End");
  return lines.join("\n") + "\n";
}

export const hostileName = '</script><img src=x onerror=alert(1)> & "<!--"';

// Hexahedra with a roof of wedges, quadrangles on the floor and a line, in named groups, as Gmsh 2.2.
export function mixedGroups() {
  const { places, node } = grid(3, 2, 1), elements = [];
  forEachCell(3, 2, 1, (i, j) => {
    const ring = k => [node(i, j, k), node(i + 1, j, k), node(i + 1, j + 1, k), node(i, j + 1, k)];
    elements.push([5, 1, [...ring(0), ...ring(1)]], [3, 7, ring(0).reverse()]);
  });
  const ridge = places.length;
  for (let i = 0; i <= 3; ++i) places.push([i, 1, 2]);
  for (let i = 0; i < 3; ++i) {
    elements.push([6, 2, [node(i, 0, 1), node(i, 2, 1), ridge + i, node(i + 1, 0, 1), node(i + 1, 2, 1), ridge + i + 1]]);
    elements.push([1, 9, [ridge + i, ridge + i + 1]]);
  }
  const lines = ["$MeshFormat", "2.2 0 8", "$EndMeshFormat", "$PhysicalNames", "4", '1 9 "ridge"', '2 7 "floor"', '3 1 "house"',
    `3 2 "${hostileName.replaceAll('"', "'")}"`, "$EndPhysicalNames", "$Nodes", places.length];
  places.forEach((p, i) => lines.push(`${i + 1} ${p.join(" ")}`));
  lines.push("$EndNodes", "$Elements", elements.length);
  elements.forEach(([type, group, nodes], i) => lines.push(`${i + 1} ${type} 2 ${group} ${group} ${nodes.map(n => n + 1).join(" ")}`));
  lines.push("$EndElements");
  return lines.join("\n") + "\n";
}

export const empty = () => vtk([], []);

// A triangle that can be drawn, one with a node that is not there, one with a node at infinity.
export const brokenTriangles = () =>
  vtk([[0, 0, 0], [1, 0, 0], [0, 1, 0], ["inf", 0, 0]], [["triangle", [0, 1, 2]], ["triangle", [0, 1, 99]], ["triangle", [1, 2, 3]]]);

export const someLines = () => vtk([[0, 0, 0], [1, 0, 0], [1, 1, 1]], [["line", [0, 1]], ["line", [1, 2]]]);

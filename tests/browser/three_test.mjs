// The loaders of three.js read the surfaces that `tessolv convert` writes.
//   node three_test.mjs PROGRAM WORK SURFACE
// PROGRAM is the built tessolv, WORK a folder that is made anew, SURFACE a file of triangles. Status 77 where three is missing.
import { spawnSync } from "node:child_process";
import { mkdirSync, readFileSync, rmSync } from "node:fs";
import { join } from "node:path";

const [program, work, surface] = process.argv.slice(2);

const [{ STLLoader }, { OBJLoader }] =
  await Promise.all(["STLLoader", "OBJLoader"].map(name => import(`three/addons/loaders/${name}.js`))).catch(() => {
    console.log("SKIPPED: no three. npm ci in tests/browser");
    process.exit(77);
  });

let failures = 0;
function expect(holds, what) {
  if (holds) return;
  ++failures;
  console.log(`FAILED: ${what}`);
}

function tessolv(...command) {
  const { status, stdout, stderr } = spawnSync(program, command, { encoding: "utf8", maxBuffer: 1 << 28 });
  expect(status === 0, `tessolv ${command.join(" ")}: status ${status}: ${stderr}`);
  return stdout;
}

rmSync(work, { recursive: true, force: true });
mkdirSync(work, { recursive: true });
const expected = JSON.parse(tessolv("info", "--json", surface));

// Corners of the triangles that three.js makes, three numbers each.
const readers = {
  stl: bytes => new STLLoader().parse(bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.length)).attributes.position.array,
  obj: bytes => new OBJLoader().parse(bytes.toString()).children.flatMap(part => [...part.geometry.attributes.position.array]),
};

function read(name, ...options) {
  const file = join(work, name);
  tessolv("convert", surface, "--output", file, ...options);
  return readers[name.split(".").pop()](readFileSync(file));
}

const places = { "bytes.stl": read("bytes.stl"), "text.stl": read("text.stl", "--ascii"), "faces.obj": read("faces.obj") };
for (const [name, corners] of Object.entries(places)) {
  expect(corners.length === 9 * expected.elements, `${name}: ${corners.length / 9} triangles instead of ${expected.elements}`);
  const differs = places["bytes.stl"].findIndex((x, i) => x !== Math.fround(corners[i]));
  expect(differs === -1, `${name}: number ${differs} is ${corners[differs]} instead of ${places["bytes.stl"][differs]}`);
  for (let axis = 0; axis < 3; ++axis) {
    const along = [...corners].filter((_, i) => i % 3 === axis);
    const box = [Math.min, Math.max].map(extreme => along.reduce((a, b) => extreme(a, b)));
    const wanted = [expected.bounding_box.min[axis], expected.bounding_box.max[axis]].map(Math.fround);
    expect(box.every((x, i) => Math.fround(x) === wanted[i]), `${name}: from ${box[0]} to ${box[1]} along axis ${axis} instead of ${wanted}`);
  }
}

console.log(failures ? `${failures} expectations failed` : "three.js reads what we write");
process.exit(failures ? 1 : 0);

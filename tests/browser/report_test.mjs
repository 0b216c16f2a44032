// Opens pages of `tessolv report` in Chromium without a window: what they show, and what they do.
//   node report_test.mjs PROGRAM WORK PARTS [--pictures FOLDER | --documentation FILE.png]
// PROGRAM is the built tessolv, WORK a folder that is made anew, PARTS examples/parts. --pictures also takes pictures of every
// page for people to look at, --documentation takes the one of docs/report.md and tests nothing. Status 77 where something is
// missing that the test needs.
import { spawnSync } from "node:child_process";
import { existsSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import * as meshes from "./meshes.mjs";

const [program, work, parts, option, where] = process.argv.slice(2);

function skip(what) {
  console.log(`SKIPPED: no ${what}. scripts/install-packages browser, then npm ci in tests/browser`);
  process.exit(77);
}

const browserPath = ["/usr/bin/chromium", "/usr/bin/chromium-browser"].find(path => existsSync(path)) ?? skip("chromium");
const { chromium } = await import("playwright-core").catch(() => skip("playwright-core"));
const browser = await chromium.launch({
  executablePath: browserPath,
  args: ["--no-sandbox", "--use-gl=angle", "--use-angle=swiftshader", "--enable-unsafe-swiftshader", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync"],
});

let failures = 0;
function expect(holds, what) {
  if (holds) return;
  ++failures;
  console.log(`FAILED: ${what}`);
}
const equal = (found, wanted, what) =>
  expect(JSON.stringify(found) === JSON.stringify(wanted), `${what}: ${JSON.stringify(found)} instead of ${JSON.stringify(wanted)}`);

// Writes the page of a mesh; gives its path and what `check --json` says.
function pageOf(name, more = []) {
  const page = join(work, `${name}.html`), file = join(work, name);
  const run = command => spawnSync(program, command, { encoding: "utf8", maxBuffer: 1 << 28 });
  const report = run(["report", file, "--output", page, "--json", ...more]);
  const check = run(["check", "--json", file]);
  equal(report.status, check.status, `${name}: exit status`);
  equal(report.stdout, check.stdout, `${name}: --json`);
  equal(report.stderr, "", `${name}: standard error`);
  return { name, page, file, check: JSON.parse(check.stdout) };
}

// A window with one page, which may load nothing else and complain of nothing.
async function open({ name, page: path }, settings = {}) {
  const context = await browser.newContext({ viewport: { width: 1360, height: 940 }, reducedMotion: "reduce", offline: true, ...settings });
  const page = await context.newPage(), url = pathToFileURL(path).href;
  page.on("console", message => expect(false, `${name}: the console says ${message.text()}`));
  page.on("pageerror", error => expect(false, `${name}: ${error.stack}`));
  page.on("dialog", dialog => { expect(false, `${name}: a dialog`); dialog.dismiss(); });
  page.on("request", request => expect(request.url().split("#")[0] === url, `${name}: asks for ${request.url()}`));
  await page.goto(url);
  if (settings.javaScriptEnabled !== false) await settled(page);
  return page;
}

// Two frames later everything is drawn.
const settled = page => page.evaluate(() => new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done))));

// How many pixels of the picture have a colour, how many colours there are, and a number that changes with any of them.
const picture = page => page.evaluate(() => {
  const gl = document.querySelector("canvas").getContext("webgl2"), { drawingBufferWidth: w, drawingBufferHeight: h } = gl;
  const pixels = new Uint8Array(4 * w * h), colours = new Set();
  gl.readPixels(0, 0, w, h, gl.RGBA, gl.UNSIGNED_BYTE, pixels);
  let painted = 0, hash = 0;
  for (let i = 0; i < pixels.length; i += 4) {
    if (pixels[i + 3] === 0) continue;
    ++painted;
    const value = pixels[i] << 16 | pixels[i + 1] << 8 | pixels[i + 2];
    colours.add(value);
    hash = Math.imul(hash, 31) + value + i | 0;
  }
  return { share: painted / (w * h), colours: colours.size, hash, error: gl.getError() };
});

async function changes(page, what, act) {
  const before = await picture(page);
  await act();
  await settled(page);
  const after = await picture(page);
  expect(before.hash !== after.hash, `${what} changes nothing in the picture`);
  return after;
}

// Every number on the page that says where it comes from is that of `check`.
async function compareNumbers(page, { name, check }, least) {
  const cells = await page.$$eval("[data-of]", all => all.map(e => ({ of: e.dataset.of, value: e.dataset.value, text: e.textContent })));
  expect(cells.length >= least, `${name}: only ${cells.length} numbers`);
  for (const { of, value, text } of cells) {
    const wanted = of.split(".").reduce((object, key) => object?.[key], check);
    equal(JSON.parse(value), wanted, `${name}: ${of}`);
    if (Number.isInteger(wanted) && /count|histogram|nodes|elements|triangles|edges|faces/.test(of))
      equal(text.replace(/\s/g, ""), String(wanted), `${name}: ${of} as text`);
  }
  equal(JSON.parse(await page.$eval("#check", e => e.textContent)), check, `${name}: the JSON in the page`);
  equal(await page.$eval(".verdict", e => e.textContent.trim().toLowerCase()), check.verdict, `${name}: verdict`);
  const findings = await page.$$eval("#findings .finding th", all => all.map(e => e.textContent));
  equal(findings, check.problems, `${name}: findings`);
  return cells.length;
}

async function drag(page, from, to, button = "left") {
  const box = await page.locator("canvas").boundingBox(), at = ([x, y]) => [box.x + x * box.width, box.y + y * box.height];
  await page.mouse.move(...at(from));
  await page.mouse.down({ button });
  await page.mouse.move(...at(to), { steps: 4 });
  await page.mouse.up({ button });
}

// Fingers that go from some places of the picture to others.
async function touch(page, from, to) {
  const client = await page.context().newCDPSession(page), box = await page.locator("canvas").boundingBox();
  const points = places => places.map(([x, y], id) => ({ x: box.x + x * box.width, y: box.y + y * box.height, id }));
  const send = (type, places) => client.send("Input.dispatchTouchEvent", { type, touchPoints: points(places) });
  await send("touchStart", from);
  await send("touchMove", from.map((p, i) => p.map((x, k) => (x + to[i][k]) / 2)));
  await send("touchMove", to);
  await send("touchEnd", []);
  await client.detach();
}

const press = (page, ...keys) => keys.reduce((before, key) => before.then(() => page.keyboard.press(key)), page.focus("canvas"));
const chosen = page => page.$eval("#selected", e => (e.hidden ? "" : e.querySelector("strong").textContent));

async function testSurface(subject) {
  const page = await open(subject, { hasTouch: true });
  await compareNumbers(page, subject, 30);
  const first = await picture(page);
  expect(first.share > 0.05 && first.colours > 50 && first.error === 0, `${subject.name}: ${JSON.stringify(first)} is no picture`);
  await changes(page, "an arrow key", () => press(page, "ArrowLeft"));
  await changes(page, "+", () => press(page, "+"));
  await press(page, "0");
  await settled(page);
  equal((await picture(page)).hash, first.hash, "the view after 0");
  for (const key of ["e", "t", "f", "z", "Shift+ArrowUp", "-"]) await changes(page, `the key ${key}`, () => press(page, key));
  await press(page, "e", "t", "f", "Home");
  await changes(page, "a drag", () => drag(page, [0.5, 0.5], [0.6, 0.4]));
  await changes(page, "a drag with the right button", () => drag(page, [0.5, 0.5], [0.6, 0.4], "right"));
  await changes(page, "the wheel", () => page.mouse.wheel(0, -300));
  await changes(page, "one finger", () => touch(page, [[0.4, 0.5]], [[0.6, 0.6]]));
  await changes(page, "two fingers", () => touch(page, [[0.4, 0.5], [0.6, 0.5]], [[0.3, 0.5], [0.7, 0.5]]));
  await press(page, "0");
  await changes(page, "a click on a finding", () => page.click("#findings .mark"));
  const name = await page.textContent("#findings .mark");
  equal(await chosen(page), name, "what is chosen");
  await changes(page, "n", () => press(page, "n"));
  expect(await chosen(page) !== name, "n goes nowhere");
  await changes(page, "Escape", () => press(page, "Escape"));
  equal(await chosen(page), "", "chosen after Escape");
  await changes(page, "a window of another size", () => page.setViewportSize({ width: 420, height: 800 }));
  expect(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), "a narrow page is wider than its window");
  await page.setViewportSize({ width: 1200, height: 800 });
  expect(await page.evaluate(() => [...document.querySelectorAll("#quality .wide")].every(table => table.scrollWidth <= table.clientWidth)),
    "a table of qualities is wider than its room");
  await page.context().close();
}

async function testSolid(subject) {
  const page = await open(subject);
  await compareNumbers(page, subject, 30);
  const inverted = subject.check.kinds.tetra.quality.inverted;
  expect(inverted > 0, "the block has no inverted tetrahedron");
  equal(await page.$eval("tr.finding .mark", e => e.textContent), `tetra ${subject.check.faults[0].ids.tetra[0]}`, "the first at fault");
  await changes(page, "a click on a tetrahedron inside", () => page.click("tr.finding .mark"));
  expect((await page.textContent("#selected")).includes("inside the mesh"), "nothing is said to be inside");
  await press(page, "Escape", "0");
  const box = await page.locator("canvas").boundingBox();
  await changes(page, "a click on the surface", () => page.mouse.click(box.x + box.width / 2, box.y + box.height / 2));
  const [kind, number] = (await chosen(page)).split(" ");
  expect(kind === "tetra" && Number(number) >= 1 && Number(number) <= subject.check.elements, `a click chooses ${kind} ${number}`);
  await page.context().close();
}

async function testPlane(subject) {
  const page = await open(subject);
  await compareNumbers(page, subject, 20);
  const { share } = await picture(page);
  expect(share > 0.25, `${subject.name}: seen from above it fills only ${share}`);
  await changes(page, "a click on the inverted triangle", () => page.click("tr.finding .mark"));
  await page.context().close();
}

async function testGroups(subject) {
  const page = await open(subject);
  await compareNumbers(page, subject, 30);
  equal(await page.$$eval("input[name=mode]", all => all.map(e => e.value)), ["quality", "part", "group", "patch"], "modes");
  await changes(page, "g", () => press(page, "g"));
  equal(await page.$$eval("#legend .entry", all => all.map(e => e.textContent)),
    ["9 ridge", "1 house", `2 ${meshes.hostileName.replaceAll('"', "'")}`], "the legend");
  await changes(page, "b", () => press(page, "b"));
  equal(await page.$$eval("#groups td bdi", all => all.map(e => e.textContent)).then(names => names.at(-1)),
    meshes.hostileName.replaceAll('"', "'"), "a name of a group");
  await page.context().close();
}

async function testNothing(subject) {
  const page = await open(subject);
  await compareNumbers(page, subject, 2);
  expect(!await page.locator("canvas").isVisible(), `${subject.name}: a picture of nothing`);
  expect(await page.getByText("There is nothing to draw.").isVisible(), `${subject.name}: nothing is said`);
  await page.context().close();
}

async function testBroken(subject) {
  const page = await open(subject);
  await compareNumbers(page, subject, 15);
  expect((await picture(page)).share > 0.05, "the sound triangle is not drawn");
  for (const link of await page.locator("#findings .mark").all()) {
    await link.click();
    equal(await chosen(page), await link.textContent(), "what is chosen");
    expect(!(await page.textContent("#selected")).includes("inside"), "a triangle is said to be inside");
  }
  await page.context().close();
}

async function testLines(subject) {
  const page = await open(subject);
  await compareNumbers(page, subject, 5);
  const { share } = await picture(page);
  expect(share > 0.001, `lines fill ${share} of the picture`);
  await page.context().close();
}

async function testCoarse(subject) {
  const page = await open(subject);
  const drawn = await page.evaluate(() => JSON.parse(document.getElementById("data").textContent).triangles.count);
  expect(drawn <= 500 && drawn > 200, `${drawn} triangles are drawn`);
  expect((await page.textContent("figcaption")).includes("Drawn coarser"), "the page does not tell that it is coarser");
  expect((await picture(page)).share > 0.05, "a coarser surface is not drawn");
  await page.context().close();
}

async function testWithoutScript(subject) {
  const page = await open(subject, { javaScriptEnabled: false });
  for (const table of ["#findings table", "#quality table", "#quality svg", "#numbers table"])
    expect(await page.locator(table).first().isVisible(), `without JavaScript there is no ${table}`);
  expect(await page.locator("noscript").isVisible(), "nothing tells that the picture needs JavaScript");
  expect(!await page.locator("canvas").isVisible(), "without JavaScript there is an empty picture");
  await page.context().close();
}

async function testPrint(subject) {
  const page = await open(subject);
  await page.emulateMedia({ media: "print" });
  expect(!await page.locator(".tools").isVisible(), "buttons are printed");
  expect(await page.locator("#numbers table").first().isVisible(), "the numbers are not printed");
  expect((await picture(page)).share > 0.05, "the picture is not printed");
  const pdf = await page.pdf({ format: "A4", printBackground: false });
  expect(pdf.subarray(0, 5).toString() === "%PDF-", "no PDF");
  if (option === "--pictures") writeFileSync(join(where, "print.pdf"), pdf);
  await page.context().close();
}

async function takePictures(subjects) {
  for (const subject of subjects) {
    for (const [kind, settings] of Object.entries({ light: {}, dark: { colorScheme: "dark" }, narrow: { viewport: { width: 420, height: 900 } } })) {
      const page = await open(subject, settings);
      if (await page.locator("#findings .mark").count()) await page.locator("#findings .mark").first().click();
      await settled(page);
      await page.evaluate(() => scrollTo(0, 0));
      await page.screenshot({ path: join(where, `${subject.name}-${kind}.png`), fullPage: true });
      await page.context().close();
    }
  }
}

async function documentation(subject) {
  const page = await open(subject, { viewport: { width: 1130, height: 690 } });
  await page.locator("#findings tr:nth-child(3) .mark").nth(2).click();
  await press(page, "-", "-", "-", "-", "-", "-");
  await page.evaluate(() => document.activeElement.blur());
  await settled(page);
  await page.evaluate(() => scrollTo(0, 0));
  await page.screenshot({ path: where });
  await page.context().close();
}

rmSync(work, { recursive: true, force: true });
mkdirSync(work, { recursive: true });
if (option === "--pictures") mkdirSync(where, { recursive: true });
writeFileSync(join(work, "flange-faulty.stl"), readFileSync(join(parts, "flange-faulty.stl")));
const flange = pageOf("flange-faulty.stl");
if (option === "--documentation") {
  await documentation(flange);
} else {
  const files = { "block.vtk": meshes.spoiltBlock, "plane.mesh": meshes.planeRegion, "house.msh": meshes.mixedGroups, "empty.vtk": meshes.empty,
    "broken.vtk": meshes.brokenTriangles, "lines.vtk": meshes.someLines };
  for (const [name, make] of Object.entries(files)) writeFileSync(join(work, name), make());
  const [block, plane, house, empty, broken, lines] = Object.keys(files).map(name => pageOf(name));
  await testSurface(flange);
  await testSolid(block);
  await testPlane(plane);
  await testGroups(house);
  await testNothing(empty);
  await testBroken(broken);
  await testLines(lines);
  await testWithoutScript(block);
  await testPrint(block);
  if (option === "--pictures") await takePictures([flange, block, plane, house, empty, broken]);
  await testCoarse(pageOf("flange-faulty.stl", ["--triangles", "500"]));
}
await browser.close();
console.log(failures ? `${failures} failures` : "all as it should be");
process.exit(failures ? 1 : 0);

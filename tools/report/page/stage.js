// The picture: what is shown, and how.
const DARK = [16, 20, 26], BRIGHT = [255, 166, 32], RED = [255, 120, 60];

class Stage {
  constructor(canvas, data) {
    this.canvas = canvas;
    this.data = data;
    this.colours = new Colours(data);
    this.shown = { mode: "quality", edges: data.triangles.count <= 60000, ghost: false, faulty: true };
    this.chosen = null;  // an element or node with its corners, edges and faces
    this.camera = new Camera(boxCorners(data.places), data.plane);
    const gl = this.gl = canvas.getContext("webgl2", { antialias: true, preserveDrawingBuffer: true });
    if (!gl) throw new Error("This browser has no WebGL 2.");
    this.surface = new Surface(gl, data.places, data.triangles);
    this.lines = new Bands(gl);
    this.points = new Bands(gl);
    this.findings = new Bands(gl);
    this.chosenEdges = new Bands(gl);
    this.chosenHalo = new Bands(gl);
    const faulty = data.marks.filter(mark => mark.faults.length && mark.isFinding);
    this.findings.set(faulty.flatMap(bandsOf), () => RED);
    this.paint();
  }

  place(i) { return [...this.data.places.subarray(3 * i, 3 * i + 3)]; }

  paint() {
    const { data: { triangles, lines, points }, shown: { mode }, colours } = this;
    this.surface.paint(t => colours.of(mode, triangles, t));
    const colourOf = items => i => (mode === "quality" ? [90, 98, 108] : colours.of(mode, items, i));
    this.lines.set(Array.from({ length: lines.count }, (_, i) => [this.place(lines.ends[2 * i]), this.place(lines.ends[2 * i + 1])]), colourOf(lines));
    this.points.set(Array.from(points.at, i => [this.place(i), this.place(i)]), colourOf(points));
  }

  choose(item) {
    this.chosen = item;
    const bands = item ? bandsOf(item) : [];
    this.chosenEdges.set(bands, () => BRIGHT);
    this.chosenHalo.set(bands, () => DARK);
  }

  redraw() {
    this.wanted ??= requestAnimationFrame(() => {
      this.wanted = undefined;
      this.draw();
    });
  }

  resize() {
    const { canvas, camera } = this, ratio = Math.min(devicePixelRatio || 1, 2.5);
    const width = Math.max(1, Math.round(canvas.clientWidth * ratio)), height = Math.max(1, Math.round(canvas.clientHeight * ratio));
    if (canvas.width !== width || canvas.height !== height) Object.assign(canvas, { width, height });
    this.ratio = ratio;
    camera.resize(canvas.clientWidth, canvas.clientHeight);
    this.draw();
  }

  draw() {
    const { gl, canvas, camera, shown, ratio } = this, axes = camera.axes();
    const view = at => {
      gl.uniform3fv(at.right, axes.right);
      gl.uniform3fv(at.up, axes.up);
      gl.uniform3fv(at.toEye, axes.toEye);
      gl.uniform3fv(at.centre, camera.centre);
      gl.uniform2f(at.window, canvas.width / 2, canvas.height / 2);
      gl.uniform1f(at.scale, camera.scale * ratio);
    };
    gl.viewport(0, 0, canvas.width, canvas.height);
    gl.clearColor(0, 0, 0, 0);
    gl.clear(gl.COLOR_BUFFER_BIT | gl.DEPTH_BUFFER_BIT);
    gl.enable(gl.DEPTH_TEST);
    gl.depthFunc(gl.LEQUAL);
    gl.enable(gl.BLEND);
    gl.blendFuncSeparate(gl.SRC_ALPHA, gl.ONE_MINUS_SRC_ALPHA, gl.ONE, gl.ONE_MINUS_SRC_ALPHA);
    const ghost = shown.ghost || Boolean(this.chosen?.inside);
    if (!ghost) this.surface.draw(view, 1, shown.edges);
    this.lines.draw(view, 2 * ratio, 1, 1e-4);
    this.points.draw(view, 6 * ratio, 1, 2e-4);
    if (ghost) this.surface.draw(view, 0.16, shown.edges);
    gl.disable(gl.DEPTH_TEST);
    if (shown.faulty) this.findings.draw(view, (this.chosen ? 1 : 2) * ratio, 0.9);
    this.chosenHalo.draw(view, 6.5 * ratio);
    this.chosenEdges.draw(view, 3 * ratio);
  }

  // The triangle under a place of the window, from its middle; -1 for none. The nearest one counts.
  triangleAt(x, y) {
    const { data: { places, triangles }, camera } = this, { right, up, toEye } = camera.axes();
    const flat = new Float32Array(places.length);
    for (let i = 0; i < places.length; i += 3) {
      const p = [places[i] - camera.centre[0], places[i + 1] - camera.centre[1], places[i + 2] - camera.centre[2]];
      flat[i] = camera.scale * dot(right, p) - x;
      flat[i + 1] = camera.scale * dot(up, p) + y;
      flat[i + 2] = dot(toEye, p);
    }
    let nearest = -1, depth = -Infinity;
    for (let t = 0; t < triangles.count; ++t) {
      const a = 3 * triangles.corners[3 * t], b = 3 * triangles.corners[3 * t + 1], c = 3 * triangles.corners[3 * t + 2];
      const u = flat[b] * flat[c + 1] - flat[c] * flat[b + 1];
      const v = flat[c] * flat[a + 1] - flat[a] * flat[c + 1];
      const w = flat[a] * flat[b + 1] - flat[b] * flat[a + 1];
      const area = u + v + w;
      if (area === 0 || Math.min(u, v, w) * Math.sign(area) < 0 && Math.max(u, v, w) * Math.sign(area) > 0 && Math.sign(u) + Math.sign(v) + Math.sign(w) !== 3 * Math.sign(area)) continue;
      const at = (u * flat[a + 2] + v * flat[b + 2] + w * flat[c + 2]) / area;
      if (at > depth) [nearest, depth] = [t, at];
    }
    return nearest;
  }

  // Turns to an element and comes near enough to see it among its neighbours.
  visit(item) {
    const { camera, data } = this, sound = item.corners.filter(c => c.every(Number.isFinite));
    if (sound.length === 0) return;
    const middle = [0, 1, 2].map(k => sound.reduce((sum, c) => sum + c[k], 0) / sound.length);
    const radius = Math.max(1e-6, ...sound.map(c => Math.hypot(...minus(c, middle))));
    const least = Math.min(camera.width, camera.height);
    const goal = { centre: middle, zoom: clamp(0.07 * least / (radius * camera.fitted), 1, 25) };
    const normal = data.plane || item.inside ? null : this.normalOf(item);
    if (normal) {
      const angles = Camera.anglesOf(normal);
      if (angles) Object.assign(goal, { azimuth: angles.azimuth + 18, elevation: clamp(angles.elevation + 12, -90, 90) });
    }
    camera.travel(goal, () => this.redraw());
  }

  normalOf(item) {
    const { triangles } = this.data;
    const sum = [0, 0, 0];
    if (item.kind === undefined) return null;
    for (let t = 0; t < triangles.count; ++t) {
      if (triangles.kind[t] !== item.kind || triangles.number[t] !== item.number) continue;
      const [a, b, c] = [0, 1, 2].map(k => this.place(triangles.corners[3 * t + k]));
      cross(minus(b, a), minus(c, a)).forEach((n, k) => { sum[k] += n; });
    }
    return sum;
  }
}

// Bands along the edges of an element; around a node, or corners that no edge has, squares.
function bandsOf(item) {
  if (item.edges.length) return item.edges;
  return item.corners.filter(c => c.every(Number.isFinite)).map(c => [c, c]);
}

function boxCorners(places) {
  const low = [Infinity, Infinity, Infinity], high = [-Infinity, -Infinity, -Infinity];
  for (let i = 0; i < places.length; ++i) {
    low[i % 3] = Math.min(low[i % 3], places[i]);
    high[i % 3] = Math.max(high[i % 3], places[i]);
  }
  if (places.length === 0) return [[-1, -1, -1], [1, 1, 1]];
  return [0, 1, 2, 3, 4, 5, 6, 7].map(n => [0, 1, 2].map(k => (n >> k & 1 ? high : low)[k]));
}

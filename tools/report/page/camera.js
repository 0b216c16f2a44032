// Where the mesh is seen from: without perspective, with z upward. The mesh lies in the unit sphere.
const dot = (a, b) => a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
const cross = (a, b) => [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];
const minus = (a, b) => [a[0] - b[0], a[1] - b[1], a[2] - b[2]];
const clamp = (x, low, high) => Math.min(high, Math.max(low, x));
const still = matchMedia("(prefers-reduced-motion: reduce)");

class Camera {
  constructor(corners, plane) {
    this.corners = corners;  // of the box, to fit it into the window
    this.first = plane ? { azimuth: 0, elevation: 90 } : { azimuth: 35, elevation: 25 };
    this.width = this.height = 1;
    this.reset();
  }

  reset() {
    Object.assign(this, this.first, { centre: [0, 0, 0], zoom: 1 });
    this.untouched = true;
    this.fit();
  }

  // Pixels per unit at zoom 1, so that the box fills the window as it is seen now.
  fit() {
    const { right, up } = this.axes();
    const reach = axis => Math.max(1e-3, ...this.corners.map(c => Math.abs(dot(axis, c))));
    this.fitted = 0.46 * Math.min(this.width / reach(right), this.height / reach(up));
  }

  resize(width, height) {
    const grown = Math.min(width, height) / Math.min(this.width, this.height);
    this.width = width;
    this.height = height;
    if (this.untouched) this.fit();
    else this.fitted *= grown;
  }

  get scale() { return this.fitted * this.zoom; }

  axes() {
    const a = this.azimuth * Math.PI / 180, e = this.elevation * Math.PI / 180;
    const right = [Math.cos(a), Math.sin(a), 0];
    const toEye = [Math.sin(a) * Math.cos(e), -Math.cos(a) * Math.cos(e), Math.sin(e)];
    return { right, up: cross(toEye, right), toEye };
  }

  turn(azimuth, elevation) {
    this.untouched = false;
    this.azimuth += azimuth;
    this.elevation = clamp(this.elevation + elevation, -90, 90);
  }

  // By pixels of the window.
  move(x, y) {
    this.untouched = false;
    const { right, up } = this.axes();
    for (let k = 0; k < 3; ++k) this.centre[k] -= (x * right[k] - y * up[k]) / this.scale;
  }

  // What lies under the place (x, y) of the window, from its middle, stays there.
  magnify(factor, x = 0, y = 0) {
    const before = this.zoom;
    this.zoom = clamp(before * factor, 0.2, 1e5);
    const grown = this.zoom / before;
    this.move(x * (1 - grown), y * (1 - grown));
  }

  look(azimuth, elevation) {
    this.untouched = false;
    Object.assign(this, { azimuth, elevation, centre: [0, 0, 0], zoom: 1 });
    this.fit();
  }

  // The angles from which a direction comes straight.
  static anglesOf(n) {
    const length = Math.hypot(...n);
    if (!(length > 0)) return null;
    return { azimuth: Math.atan2(n[0], -n[1]) * 180 / Math.PI, elevation: Math.asin(clamp(n[2] / length, -1, 1)) * 180 / Math.PI };
  }

  // Goes to a place, gently unless the reader wants no motion. `redraw` is called at each step.
  travel(goal, redraw) {
    this.untouched = false;
    const from = { azimuth: this.azimuth, elevation: this.elevation, zoom: this.zoom, centre: this.centre };
    const to = { ...from, ...goal };
    to.azimuth = from.azimuth + ((to.azimuth - from.azimuth) % 360 + 540) % 360 - 180;
    const begun = performance.now(), lasts = still.matches ? 0 : 450;
    const journey = this.journey = {};
    const step = now => {
      if (this.journey !== journey) return;
      const t = lasts ? clamp((now - begun) / lasts, 0, 1) : 1, s = t * t * (3 - 2 * t);
      const between = (a, b) => a + (b - a) * s;
      this.azimuth = between(from.azimuth, to.azimuth);
      this.elevation = between(from.elevation, to.elevation);
      this.zoom = from.zoom * (to.zoom / from.zoom) ** s;
      this.centre = from.centre.map((c, k) => between(c, to.centre[k]));
      redraw();
      if (t < 1) requestAnimationFrame(step);
    };
    step(begun);
  }

  halt() { this.journey = null; }
}

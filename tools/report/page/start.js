// Ties the picture to the page.
const $ = id => document.getElementById(id);

const short = value => (Number.isFinite(value) ? Number(value.toPrecision(4)).toString().replace("-", "\u2212") : "none");

class Page {
  constructor() {
    const data = this.data = readData();
    data.marks.forEach((mark, i) => Object.assign(mark, {
      index: i,
      isFinding: mark.faults.some(f => data.levels[f]),
      number: mark.kind === undefined ? undefined : Number(mark.name.split(" ")[1]),
    }));
    this.canvas = document.querySelector("canvas");
    this.markOf = new Map(data.marks.map(mark => [mark.name, mark]));
    if (data.places.length === 0 && data.marks.length === 0) return;  // the words below say that there is nothing
    document.querySelector(".tools").hidden = document.querySelector(".stage").hidden = false;
    this.stage = new Stage(this.canvas, data);
    this.makeModes();
    this.makeSwitches();
    this.listen();
    new ResizeObserver(() => this.stage.resize()).observe(this.canvas);
    matchMedia("print").addEventListener("change", () => this.stage.resize());
    this.stage.resize();
    this.showMode("quality");
  }

  makeModes() {
    const { data } = this, { triangles } = data;
    this.modes = { quality: "Quality" };
    if (data.parts > 1) this.modes.part = "Part";
    if (data.groups.length > 0) this.modes.group = "Group";
    if (triangles.patch) this.modes.patch = "Boundary group";
    for (const [mode, name] of Object.entries(this.modes)) {
      const label = document.createElement("label"), input = document.createElement("input");
      Object.assign(input, { type: "radio", name: "mode", value: mode, checked: mode === "quality" });
      input.addEventListener("change", () => this.showMode(mode));
      label.append(input, ` ${name}`);
      $("modes").append(label);
    }
    $("modes").hidden = Object.keys(this.modes).length === 1;
  }

  makeSwitches() {
    const { shown } = this.stage;
    for (const name of ["edges", "ghost", "faulty"]) {
      $(name).checked = shown[name];
      $(name).addEventListener("change", event => {
        shown[name] = event.target.checked;
        this.stage.redraw();
      });
    }
    $("faulty").parentElement.hidden = !this.data.marks.some(mark => mark.isFinding);
    $("closer").addEventListener("click", () => this.magnify(1.3));
    $("farther").addEventListener("click", () => this.magnify(1 / 1.3));
    $("reset").addEventListener("click", () => this.reset());
  }

  showMode(mode) {
    if (!this.modes[mode]) return;
    this.stage.shown.mode = mode;
    for (const input of document.querySelectorAll("input[name=mode]")) input.checked = input.value === mode;
    this.stage.paint();
    this.showLegend(mode);
    this.stage.redraw();
  }

  showLegend(mode) {
    const { data, stage: { colours } } = this, items = data.triangles, legend = $("legend");
    const text = (name, content = "") => Object.assign(document.createElement("div"), { className: name, textContent: content });
    const entry = (colour, content) => {
      const line = text("entry"), swatch = Object.assign(document.createElement("span"), { className: "swatch" });
      swatch.style.background = `rgb(${colour.map(Math.round)})`;
      line.append(swatch, content);
      return line;
    };
    legend.replaceChildren(text("", `${this.modes[mode]}`));
    legend.hidden = items.count === 0 && mode === "quality";
    if (mode === "quality") {
      const ramp = text("ramp"), ticks = text("ticks");
      ramp.style.background = `linear-gradient(to right, ${data.colours})`;
      for (const tick of ["0 flat", "0.5", "1 ideal"]) ticks.append(Object.assign(document.createElement("span"), { textContent: tick }));
      legend.append(ramp, ticks);
      if (items.quality.some(q => q < 0)) legend.append(entry(colours.inverted, "inverted, below 0"));
      if (items.quality.some(Number.isNaN)) legend.append(entry(GREY, "no quality"));
      return;
    }
    const lists = mode === "part" ? [items.part, data.lines.part, data.points.part]
      : mode === "group" ? [items.group, data.lines.group, data.points.group] : [items.patch];
    const none = mode === "part" ? NONE : NO_GROUP, seen = [...new Set(lists.flatMap(list => [...new Set(list)]))].sort((a, b) => a - b);
    const known = seen.filter(i => i !== none), most = 10;
    for (const i of known.slice(0, most)) legend.append(entry(palette[i % palette.length], mode === "part" ? `part ${i + 1}` : data.groups[i]));
    if (known.length > most) legend.append(text("entry", `and ${known.length - most} more, in the same colours`));
    if (known.length < seen.length) legend.append(entry(GREY, "none"));
  }

  // A listed element or node, or one that was clicked; null for nothing.
  choose(item, visit) {
    const { stage } = this;
    stage.choose(item);
    for (const link of document.querySelectorAll(".mark[aria-current]")) link.removeAttribute("aria-current");
    if (item?.index !== undefined)
      for (const link of document.querySelectorAll(`.mark[data-mark="${item.index}"]`)) link.setAttribute("aria-current", "true");
    $("selected").hidden = !item;
    $("selected").replaceChildren(...(item ? this.words(item) : []));
    if (item && visit) stage.visit(item);
    stage.redraw();
  }

  words(item) {
    const { centre, scale, faults } = this.data;
    const sound = item.corners.filter(c => c.every(Number.isFinite));
    const at = k => centre[k] + scale * sound.reduce((sum, c) => sum + c[k], 0) / sound.length;
    const middle = [0, 1, 2].map(k => short(Math.abs(at(k)) < 1e-6 * scale ? 0 : at(k)));  // single precision has no more
    const lines = [];
    if (item.kind !== undefined) lines.push(item.quality === undefined ? "no quality" : `quality ${short(item.quality)}`);
    if (item.part !== undefined && item.part !== NONE) lines.push(`part ${item.part + 1}`);
    if (item.group !== undefined && item.group !== NO_GROUP) lines.push(`group ${this.data.groups[item.group]}`);
    if (item.patch !== undefined && item.patch !== NO_GROUP) lines.push(`on the boundary group ${this.data.groups[item.patch]}`);
    if (item.inside) lines.push("inside the mesh");
    lines.push(sound.length ? `at ${middle.join(", ")}` : "has no place that could be shown");
    if (item.faults?.length) lines.push(`listed under ${item.faults.map(f => faults[f]).join("; ")}`);
    const name = Object.assign(document.createElement("strong"), { textContent: item.name });
    return [name, ...lines.map(line => Object.assign(document.createElement("div"), { textContent: line }))];
  }

  // What was clicked: all triangles of the element are outlined.
  pick(event) {
    const { stage, data: { triangles, kinds } } = this, box = this.canvas.getBoundingClientRect();
    const t = stage.triangleAt(event.clientX - box.left - box.width / 2, event.clientY - box.top - box.height / 2);
    if (t < 0) return this.choose(null);
    const name = `${kinds[triangles.kind[t]].name} ${triangles.number[t]}`;
    const edges = [], corners = [];
    for (let i = 0; i < triangles.count; ++i) {
      if (triangles.kind[i] !== triangles.kind[t] || triangles.number[i] !== triangles.number[t]) continue;
      const ring = [0, 1, 2].map(k => stage.place(triangles.corners[3 * i + k]));
      corners.push(...ring);
      ring.forEach((a, k) => { if (triangles.sides[i] >> k & 1) edges.push([a, ring[(k + 1) % 3]]); });
    }
    const quality = Number.isNaN(triangles.quality[t]) ? undefined : triangles.quality[t];
    const clicked = { name, corners, edges, faces: [], kind: triangles.kind[t], number: triangles.number[t], quality, part: triangles.part[t],
      group: triangles.group[t], patch: triangles.patch?.[t] };
    this.choose({ ...clicked, ...this.markOf.get(name) }, false);
  }

  step(by) {
    const { marks } = this.data, at = this.stage.chosen?.index;
    if (marks.length) this.choose(marks[at === undefined ? (by > 0 ? 0 : marks.length - 1) : (at + by + marks.length) % marks.length], true);
  }

  reset() {
    this.stage.camera.halt();
    this.stage.camera.reset();
    this.choose(null);
  }

  magnify(factor, x, y) {
    this.stage.camera.halt();
    this.stage.camera.magnify(factor, x, y);
    this.stage.redraw();
  }

  listen() {
    const { canvas } = this;
    document.addEventListener("click", event => {
      const link = event.target.closest?.(".mark");
      if (link) this.choose(this.data.marks[Number(link.dataset.mark)], true);
    });
    canvas.addEventListener("keydown", event => this.key(event));
    canvas.addEventListener("contextmenu", event => event.preventDefault());
    canvas.addEventListener("wheel", event => {
      if (document.activeElement !== canvas && !event.ctrlKey) return;
      event.preventDefault();
      const box = canvas.getBoundingClientRect();
      this.magnify(Math.exp(-0.0015 * clamp(event.deltaY * (event.deltaMode === 1 ? 20 : 1), -300, 300)),
        event.clientX - box.left - box.width / 2, event.clientY - box.top - box.height / 2);
    }, { passive: false });
    canvas.addEventListener("webglcontextlost", () => this.trouble("The picture was lost. Load the page again."));
    new Fingers(this).listen();
  }

  key(event) {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const { stage } = this, { camera } = stage, by = event.shiftKey ? -1 : 1;
    const arrow = { ArrowLeft: [-1, 0], ArrowRight: [1, 0], ArrowUp: [0, -1], ArrowDown: [0, 1] }[event.key];
    const modes = { q: "quality", p: "part", g: "group", b: "patch" };
    const switches = { e: "edges", t: "ghost", f: "faulty" };
    const views = { x: [90 * by, 0], y: [by > 0 ? 0 : 180, 0], z: [0, 90 * by] };
    const key = event.key.length === 1 ? event.key.toLowerCase() : event.key;
    if (arrow && event.shiftKey) camera.move(24 * arrow[0], 24 * arrow[1]);
    else if (arrow) camera.turn(-10 * arrow[0], 10 * arrow[1]);
    else if (key === "+" || key === "=") camera.magnify(1.2);
    else if (key === "-" || key === "_") camera.magnify(1 / 1.2);
    else if (key === "0" || key === "Home") this.reset();
    else if (key === "Escape") this.choose(null);
    else if (key === "n") this.step(by);
    else if (views[key]) camera.look(...views[key]);
    else if (modes[key]) this.showMode(modes[key]);
    else if (switches[key]) $(switches[key]).click();
    else return;
    event.preventDefault();
    if (key !== "n") camera.halt();
    stage.redraw();
  }

  trouble(text) {
    Object.assign($("trouble"), { textContent: text, hidden: false });
    document.querySelector(".stage").hidden = document.querySelector(".tools").hidden = true;
  }
}

// Mouse, pen and fingers: one turns, one with Shift or the right button moves, two move and magnify.
class Fingers {
  constructor(page) {
    this.page = page;
    this.down = new Map();
  }

  listen() {
    const { canvas } = this.page;
    canvas.addEventListener("pointerdown", event => {
      canvas.setPointerCapture(event.pointerId);
      canvas.focus({ preventScroll: true });
      this.down.set(event.pointerId, event);
      this.travelled = this.down.size > 1 ? Infinity : 0;
      this.page.stage.camera.halt();
    });
    canvas.addEventListener("pointermove", event => this.move(event));
    canvas.addEventListener("pointerup", event => {
      if (this.down.delete(event.pointerId) && this.travelled < 5 && event.button === 0) this.page.pick(event);
    });
    canvas.addEventListener("pointercancel", event => this.down.delete(event.pointerId));
  }

  move(event) {
    const before = this.down.get(event.pointerId);
    if (!before) return;
    const { stage } = this.page, { camera } = stage;
    const x = event.clientX - before.clientX, y = event.clientY - before.clientY;
    this.travelled += Math.hypot(x, y);
    this.down.set(event.pointerId, event);
    if (this.down.size === 2) {
      const other = [...this.down.values()].find(e => e.pointerId !== event.pointerId);
      const apart = e => Math.hypot(e.clientX - other.clientX, e.clientY - other.clientY);
      camera.move(x / 2, y / 2);
      camera.magnify(apart(event) / Math.max(1, apart(before)));
    } else if (event.shiftKey || event.buttons & 6) {
      camera.move(x, y);
    } else if (this.travelled >= 5) {
      camera.turn(-0.4 * x, 0.4 * y);
    }
    stage.redraw();
  }
}

try {
  new Page();
} catch (error) {
  Page.prototype.trouble(`The picture cannot be drawn: ${error.message}`);
}

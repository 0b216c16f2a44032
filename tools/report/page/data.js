// The data of the page: numbers by the ten thousand stand in base64, least byte first.
const unpacked = {
  bytes: text => Uint8Array.from(atob(text), c => c.charCodeAt(0)),
  f32: text => new Float32Array(unpacked.bytes(text).buffer),
  f64: text => new Float64Array(unpacked.bytes(text).buffer),
  u16: text => new Uint16Array(unpacked.bytes(text).buffer),
  u32: text => new Uint32Array(unpacked.bytes(text).buffer),
};
const NONE = 0xFFFFFFFF, NO_GROUP = 0xFFFF;

function elementColumns(from) {
  return {
    count: from.count,
    quality: unpacked.f32(from.quality),
    part: unpacked.u32(from.part),
    group: unpacked.u16(from.group),
    kind: unpacked.bytes(from.kind),
    number: from.number === undefined ? unpacked.f64(from["long number"]) : unpacked.u32(from.number),
  };
}

function readData() {
  const raw = JSON.parse(document.getElementById("data").textContent);
  const triangles = elementColumns(raw.triangles);
  triangles.corners = unpacked.u32(raw.triangles.corners);
  triangles.sides = unpacked.bytes(raw.triangles.sides);
  triangles.patch = raw.triangles.patch === undefined ? null : unpacked.u16(raw.triangles.patch);
  const lines = elementColumns(raw.lines);
  lines.ends = unpacked.u32(raw.lines.ends);
  const points = elementColumns(raw.points);
  points.at = unpacked.u32(raw.points.at);
  return { ...raw, places: unpacked.f32(raw.places), triangles, lines, points, marks: readMarks(raw) };
}

// The elements that are named one by one, with the edges and faces that they are drawn by.
function readMarks(raw) {
  const places = unpacked.f32(raw.marks.places);
  return raw.marks.list.map(mark => {
    const kind = raw.kinds[mark.kind] ?? { corners: 1, faces: [[0]], dimension: 0 };
    const corners = [];
    for (let i = 0; i < kind.corners; ++i) corners.push([...places.subarray(3 * (mark.at + i), 3 * (mark.at + i) + 3)]);
    const edges = new Map();
    for (const ring of kind.faces)
      ring.forEach((a, i) => {
        const b = ring[(i + 1) % ring.length];
        edges.set(`${Math.min(a, b)} ${Math.max(a, b)}`, [corners[a], corners[b]]);
      });
    const faces = kind.dimension < 2 ? [] : kind.faces.map(ring => ring.map(i => corners[i]));
    return { ...mark, corners, edges: [...edges.values()].filter(edge => edge.flat().every(Number.isFinite)), faces };
  });
}

// Colours. Qualities have the map of the histograms, parts and groups the palette of M. Okabe and K. Ito (2008).
const PALETTE = ["#0072b2", "#e69f00", "#009e73", "#cc79a7", "#56b4e9", "#d55e00", "#f0e442", "#8c8c8c"];
const GREY = [150, 156, 163];
const rgb = hex => [1, 3, 5].map(i => parseInt(hex.slice(i, i + 2), 16));
const palette = PALETTE.map(rgb);

class Colours {
  constructor(data) {
    this.map = data.colours.map(rgb);
    this.inverted = rgb(data.inverted);
  }

  ofQuality(q) {
    if (Number.isNaN(q)) return GREY;
    if (q < 0) return this.inverted;
    const at = Math.min(q, 1) * (this.map.length - 1), i = Math.min(Math.floor(at), this.map.length - 2);
    return this.map[i].map((c, k) => c + (this.map[i + 1][k] - c) * (at - i));
  }

  // Of one item of a list of elements.
  of(mode, items, i) {
    if (mode === "quality") return this.ofQuality(items.quality[i]);
    if (mode === "part") return items.part[i] === NONE ? GREY : palette[items.part[i] % palette.length];
    const group = mode === "group" ? items.group[i] : items.patch ? items.patch[i] : NO_GROUP;
    return group === NO_GROUP ? GREY : palette[group % palette.length];
  }
}

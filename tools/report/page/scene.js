// What WebGL 2 draws: the triangles of the surface, and bands along edges.
const VIEW = `
  uniform vec3 right, up, toEye, centre;
  uniform vec2 window;  // half of it, in pixels
  uniform float scale;  // pixels per unit
  vec4 seen(vec3 p) {
    vec3 d = p - centre;
    return vec4(scale * vec2(dot(right, d), dot(up, d)) / window, -dot(toEye, p) * 0.4, 1.0);
  }`;

const SURFACE = {
  vertex: `#version 300 es
    ${VIEW}
    in vec3 place;
    in vec4 colour;  // with the sides that are edges in the last byte
    in vec3 normal;
    out vec3 weights;
    flat out vec4 painted;
    flat out vec3 ink;
    void main() {
      ink = dot(colour.rgb, vec3(0.30, 0.59, 0.11)) < 0.2 ? vec3(0.66, 0.68, 0.74) : vec3(0.05, 0.07, 0.10);
      gl_Position = seen(place);
      int corner = gl_VertexID % 3;
      weights = vec3(corner == 0, corner == 1, corner == 2);
      vec3 n = vec3(dot(right, normal), dot(up, normal), dot(toEye, normal));
      bool back = n.z < 0.0;
      float light = 0.68 + 0.34 * max(0.0, dot(back ? -n : n, normalize(vec3(-0.35, 0.5, 0.8))));
      painted = vec4(colour.rgb * light * (back ? 0.78 : 1.0), colour.a);
    }`,
  fragment: `#version 300 es
    precision highp float;
    in vec3 weights;
    flat in vec4 painted;
    flat in vec3 ink;
    uniform float opacity, edges;
    out vec4 result;
    void main() {
      vec3 x = dFdx(weights), y = dFdy(weights), wide = sqrt(x * x + y * y);
      int sides = int(painted.a * 255.0 + 0.5);
      // Side k runs from corner k to the next one: there the weight of the third corner is 0.
      vec3 near = 1.0 - smoothstep(0.4 * wide.zxy, 1.3 * wide.zxy, weights.zxy);
      near *= 1.0 - smoothstep(0.12, 0.45, wide.zxy);  // triangles of a few pixels would be all edge
      near *= vec3(sides & 1, sides >> 1 & 1, sides >> 2 & 1);
      float edge = edges * 0.45 * max(near.x, max(near.y, near.z));
      result = vec4(mix(painted.rgb, ink, edge), max(opacity, opacity > 0.0 ? edge * opacity * 1.5 : 0.0));
    }`,
};

// A band of some pixels between two places; around one place a square.
const BANDS = {
  vertex: `#version 300 es
    ${VIEW}
    in vec3 from, to;
    in vec3 colour;
    uniform float breadth, nearer;
    out vec3 painted;
    void main() {
      vec4 a = seen(from), b = seen(to);
      vec2 along = (b.xy - a.xy) * window;
      along = dot(along, along) > 1e-6 ? normalize(along) : vec2(1.0, 0.0);
      bool end = gl_VertexID > 1;
      vec2 shift = vec2(-along.y, along.x) * ((gl_VertexID & 1) == 0 ? 1.0 : -1.0) + along * (end ? 1.0 : -1.0);
      gl_Position = end ? b : a;
      gl_Position.xy += shift * 0.5 * breadth / window;
      gl_Position.z -= nearer;
      painted = colour;
    }`,
  fragment: `#version 300 es
    precision mediump float;
    in vec3 painted;
    uniform float opacity;
    out vec4 result;
    void main() { result = vec4(painted, opacity); }`,
};

function program(gl, sources) {
  const made = gl.createProgram();
  for (const [kind, text] of [[gl.VERTEX_SHADER, sources.vertex], [gl.FRAGMENT_SHADER, sources.fragment]]) {
    const shader = gl.createShader(kind);
    gl.shaderSource(shader, text);
    gl.compileShader(shader);
    gl.attachShader(made, shader);
  }
  gl.linkProgram(made);
  if (!gl.getProgramParameter(made, gl.LINK_STATUS)) throw new Error(gl.getProgramInfoLog(made) || "a shader was refused");
  const at = {};
  for (let i = 0; i < gl.getProgramParameter(made, gl.ACTIVE_UNIFORMS); ++i) {
    const { name } = gl.getActiveUniform(made, i);
    at[name] = gl.getUniformLocation(made, name);
  }
  return { made, at };
}

// A buffer of an attribute; `each` is 1 where an item has one value for all its corners.
function attach(gl, { made }, name, values, size, type, normalized = false, each = 0, stride = 0, offset = 0) {
  const buffer = gl.createBuffer();
  gl.bindBuffer(gl.ARRAY_BUFFER, buffer);
  gl.bufferData(gl.ARRAY_BUFFER, values, gl.STATIC_DRAW);
  const where = gl.getAttribLocation(made, name);
  gl.enableVertexAttribArray(where);
  gl.vertexAttribPointer(where, size, type, normalized, stride, offset);
  gl.vertexAttribDivisor(where, each);
  return buffer;
}

// Places and normals of all corners, triangle by triangle.
function cornersOf(places, corners) {
  const place = new Float32Array(3 * corners.length), normal = new Int8Array(4 * corners.length);
  const at = i => places.subarray(3 * corners[i], 3 * corners[i] + 3);
  for (let i = 0; i < corners.length; i += 3) {
    const a = at(i), b = at(i + 1), c = at(i + 2);
    place.set(a, 3 * i);
    place.set(b, 3 * i + 3);
    place.set(c, 3 * i + 6);
    const n = cross(minus(b, a), minus(c, a)), length = Math.hypot(...n) || 1;
    for (let k = 0; k < 3; ++k) for (let m = 0; m < 3; ++m) normal[4 * (i + k) + m] = Math.round(127 * n[m] / length);
  }
  return { place, normal };
}

class Surface {
  constructor(gl, places, triangles) {
    this.gl = gl;
    this.triangles = triangles;
    this.program = program(gl, SURFACE);
    this.array = gl.createVertexArray();
    gl.bindVertexArray(this.array);
    const { place, normal } = cornersOf(places, triangles.corners);
    attach(gl, this.program, "place", place, 3, gl.FLOAT);
    attach(gl, this.program, "normal", normal, 3, gl.BYTE, true, 0, 4);
    this.bytes = new Uint8Array(12 * triangles.count);
    this.colours = attach(gl, this.program, "colour", this.bytes, 4, gl.UNSIGNED_BYTE, true);
  }

  paint(colourOf) {
    for (let t = 0; t < this.triangles.count; ++t) {
      const [r, g, b] = colourOf(t);
      for (let k = 12 * t; k < 12 * t + 12; k += 4) {
        this.bytes[k] = r;
        this.bytes[k + 1] = g;
        this.bytes[k + 2] = b;
        this.bytes[k + 3] = this.triangles.sides[t];
      }
    }
    this.gl.bindBuffer(this.gl.ARRAY_BUFFER, this.colours);
    this.gl.bufferSubData(this.gl.ARRAY_BUFFER, 0, this.bytes);
  }

  draw(view, opacity, edges) {
    const { gl, program: { made, at } } = this;
    gl.useProgram(made);
    view(at);
    gl.uniform1f(at.opacity, opacity);
    gl.uniform1f(at.edges, edges ? 1 : 0);
    gl.bindVertexArray(this.array);
    gl.depthMask(opacity === 1);
    gl.drawArrays(gl.TRIANGLES, 0, 3 * this.triangles.count);
    gl.depthMask(true);
  }
}

class Bands {
  constructor(gl) {
    this.gl = gl;
    this.program = program(gl, BANDS);
    this.count = 0;
  }

  // Pairs of places, with a colour for each pair.
  set(pairs, colourOf) {
    const { gl } = this;
    this.count = pairs.length;
    for (const buffer of this.buffers ?? []) gl.deleteBuffer(buffer);
    if (this.array) gl.deleteVertexArray(this.array);
    this.array = gl.createVertexArray();
    gl.bindVertexArray(this.array);
    const ends = new Float32Array(pairs.flat(2)), colours = new Uint8Array(4 * pairs.length);
    pairs.forEach((_, i) => colours.set(colourOf(i).map(Math.round), 4 * i));
    this.buffers = [
      attach(gl, this.program, "from", ends, 3, gl.FLOAT, false, 1, 24, 0),
      attach(gl, this.program, "to", ends, 3, gl.FLOAT, false, 1, 24, 12),
      attach(gl, this.program, "colour", colours, 3, gl.UNSIGNED_BYTE, true, 1, 4),
    ];
  }

  draw(view, breadth, opacity = 1, nearer = 0) {
    if (this.count === 0) return;
    const { gl, program: { made, at } } = this;
    gl.useProgram(made);
    view(at);
    gl.uniform1f(at.breadth, breadth);
    gl.uniform1f(at.opacity, opacity);
    gl.uniform1f(at.nearer, nearer);
    gl.bindVertexArray(this.array);
    gl.drawArraysInstanced(gl.TRIANGLE_STRIP, 0, 4, this.count);
  }
}

#!/usr/bin/env python3
"""Gathers what the programs of benchmarks/compare measured into one JSON file, a table and plots.

report.py FOLDER RESULTS PAGE IMAGES: FOLDER holds one JSON file per program, RESULTS is written, the part of PAGE between
the markers is replaced, IMAGES is the folder of the plots.
"""
import datetime
import json
import math
import os
import pathlib
import platform
import subprocess
import sys

BEGIN, END = "<!-- figures: begin -->", "<!-- figures: end -->"
FAMILIES = ["topology", "spatial", "quality", "metrics", "geometry", "files"]
PACKAGES = ["libvtk9-dev", "libcgal-dev", "libmetis-dev", "libnanoflann-dev", "libopenmesh-dev", "libassimp-dev",
            "libtinyobjloader-dev", "libadmesh-dev", "libmeshoptimizer-dev", "libeigen3-dev", "liblapack-dev", "gmsh",
            "python3-meshio", "python3-numpy"]


# -- what was measured, and where

def first_line(command):
    try:
        return subprocess.run(command, capture_output=True, text=True, check=False).stdout.split("\n")[0]
    except OSError:
        return ""


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.processor()


def machine():
    versions = {p: first_line(["dpkg-query", "-W", "-f=${Version}", p]) for p in PACKAGES}
    return {"date": datetime.date.today().isoformat(), "processor": processor(), "processors": os.cpu_count(),
            "memory": os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES"),
            "compiler": first_line(["c++", "--version"]), "load": round(os.getloadavg()[0], 2),
            "peers": {p: v for p, v in versions.items() if v}}


def gather(folder):
    results = {"machine": machine(), "missing": [], "limits": {}, "rows": [], "growth": [], "hostile": []}
    for name in FAMILIES + ["limits", "growth"]:
        file = folder / f"{name}.json"
        if not file.exists():
            results["missing"].append(name)
            continue
        part = json.loads(file.read_text())
        for key in ("rows", "growth", "hostile"):
            results[key] += part.get(key, [])
        results["limits"].update(part.get("limits", {}))
    order = list(dict.fromkeys(g["operation"] for g in results["growth"]))
    results["growth"].sort(key=lambda g: order.index(g["operation"]))
    for row in results["rows"]:
        row["limit_seconds"] = limit(row["limit"], results["limits"])
    return results


def random_read(size, rates):
    """Between the sizes that were measured, by the logarithm of the size."""
    known = [(math.log(2 ** p), rates[f"random read in {name}, s"])
             for p, name in ((23, "8 MiB"), (26, "64 MiB"), (30, "1 GiB"))]
    x = math.log(max(size, 1.0))
    for (a, low), (b, high) in zip(known, known[1:]):
        if x <= b:
            return low + (high - low) * max(0.0, (x - a) / (b - a))
    return known[-1][1]


def limit(cost, rates):
    """The least time for what an operation cannot avoid, one thing after the other."""
    if not rates or not any(cost.values()):
        return None
    touch = max(rates["first touch, bytes/s"], rates["first touch of huge pages, bytes/s"])
    return (cost["streamed"] / rates["copy, bytes/s read and written"] + cost["fresh"] / touch
            + cost["scattered"] * random_read(cost["within"], rates)
            + cost["printed"] * min(rates["print to_chars, s"], rates["print in integers, s"])
            + cost["integers"] * rates["print whole to_chars, s"]
            + cost["scanned"] * min(rates["scan from_chars, s"], rates["scan in integers, s"])
            + cost["stored"] / rates["file written, bytes/s"] + cost["loaded"] / rates["file read, bytes/s"])


# -- the table

def seconds(t):
    return "" if t is None else f"{t:.3g} s" if t >= 1 else f"{1e3 * t:.3g} ms" if t >= 1e-3 else f"{1e6 * t:.3g} µs"


def megabytes(n):
    return f"{n / 1e6:.3g}"


def size_of(row):
    quick = f", ÷ {row['shrunk']:g}" if row["shrunk"] != 1 else ""
    return ", ".join(filter(None, [row["size"] + quick, row["numbering"]]))


def peer_lines(row):
    ours = row["contestants"][0]
    yield [row["operation"], size_of(row), seconds(ours["best"]), seconds(row["limit_seconds"]), "", "", "", "",
           f"{megabytes(ours['peak'])} ({megabytes(ours['kept'])})", ""]
    for peer in row["contestants"][1:]:
        if "failure" in peer:
            yield ["", "", "", "", peer["name"], peer["failure"], "", "", "", ""]
            continue
        ahead = "**{:.2f}**" if peer["ratio_best"] < 1 else "{:.2f}"
        yield ["", "", "", "", peer["name"], seconds(peer["best"]), ahead.format(peer["ratio_best"]),
               f"{peer['ratio_median']:.2f}", megabytes(peer["peak"]), "yes" if peer["agrees"] else "**no**"]


def table(head, lines):
    yield "| " + " | ".join(head) + " |"
    yield "|" + "---|" * len(head)
    for line in lines:
        yield "| " + " | ".join(line) + " |"
    yield ""


def machine_lines(results):
    m = results["machine"]
    yield (f"Measured on {m['date']}: {m['processor']}, {m['processors']} processors, {m['memory'] / 2 ** 30:.0f} GiB of "
           f"memory, {m['compiler']}, load {m['load']} at the end. Peers: "
           + ", ".join(f"{p.removeprefix('lib').removesuffix('-dev')} {v}" for p, v in m["peers"].items()) + ".")
    yield ""


def comparison_lines(results):
    head = ["operation", "size, numbering", "ours, best", "limit", "peer", "its best", "ratio of the best",
            "of the medians", "MB beyond the inputs (kept)", "same answer"]
    for family in FAMILIES:
        rows = [r for r in results["rows"] if r["family"] == family and r.get("contestants")]
        if not rows:
            continue
        yield from [f"### {family.capitalize()}", "", f"![Ratios of {family}](images/performance/{family}.svg)", ""]
        yield from table(head, [line for row in rows for line in peer_lines(row)])


def called_lines(results):
    yield from ["### What was called", ""]
    called = {}
    for row in results["rows"]:
        for c in row.get("contestants", []):
            note = f" ({c['note']})" if c["note"] else ""
            called[(row["operation"], c["name"])] = (f"{c['called']}{note}", row["compared"])
    yield from table(["operation", "library", "what was called (what it does less or more)", "compared"],
                     [[o, name, what, compared] for (o, name), (what, compared) in called.items()])


def limit_lines(results):
    yield from ["### What the machine charges", ""]
    lines = []
    for name, rate in results["limits"].items():
        unit = name.rsplit(", ", 1)
        lines.append([unit[0], f"{1e9 * rate:.3g} ns" if unit[1] == "s" else f"{rate / 1e9:.3g} G{unit[1]}"])
    yield from table(["", "rate"], lines)


def growth_lines(results):
    yield from ["### Growth", "", "![Time per item](images/performance/growth.svg)", ""]
    yield from ["Plain writes are no operation of ours: one loop that writes numbers to places in the order given.", ""]
    yield from table(["operation", "numbering", "n", "2 n", "4 n", "8 n", "grows like"],
                     [[g["operation"], g["numbering"], *map(seconds, g["seconds"]),
                       f"n^{g['exponent']:.2f}" if g["exponent"] is not None else "**died**"] for g in results["growth"]])
    yield from ["### Inputs made to be slow", ""]
    yield from table(["operation", "input", "time", "random input of that size", "ratio"],
                     [[h["operation"], h["input"], seconds(h["seconds"]), seconds(h["random"]),
                       f"{h['seconds'] / h['random']:.2f}" if h["survived"] else "**died**"]
                      for h in results["hostile"]])


# -- plots

COLOURS = ["#1b6ca8", "#c8553d", "#4f8a5b", "#8a5a9e", "#b0892f", "#5c6b73"]


def svg(width, height, parts):
    return "\n".join([f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
                      'font-family="sans-serif" font-size="12">',
                      f'<rect width="{width}" height="{height}" fill="white"/>', *parts, "</svg>", ""])


def text(x, y, words, anchor="start", colour="#222"):
    escaped = words.replace("&", "&amp;").replace("<", "&lt;")
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{colour}">{escaped}</text>'


def line(x1, y1, x2, y2, colour, width=1):
    return (f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{colour}" '
            f'stroke-width="{width}"/>')


def ratio_plot(rows):
    """A bar for every peer, from 1 to its time over ours."""
    bars = [(row, peer) for row in rows for peer in row["contestants"][1:] if "ratio_best" in peer]
    left, right, step, width = 430, 40, 16, 960
    ratios = [peer["ratio_best"] for _, peer in bars]
    low, high = math.floor(math.log10(min(ratios + [0.5]))), math.ceil(math.log10(max(ratios + [10.0])))

    def x(ratio):
        return left + (width - left - right) * (math.log10(ratio) - low) / (high - low)

    height = 50 + step * len(bars)
    parts = [text(left, 16, "peer's best time over ours; right of 1 we are ahead")]
    for power in range(low, high + 1):
        parts += [line(x(10 ** power), 24, x(10 ** power), height - 20, "#ddd"),
                  text(x(10 ** power), height - 6, f"{10.0 ** power:g}", "middle")]
    last = None
    for i, (row, peer) in enumerate(bars):
        y = 30 + step * i
        if row is not last:
            parts += [line(0, y - 2, width, y - 2, "#eee"), text(4, y + 10, f"{row['operation']}, {size_of(row)}")]
            last = row
        a, b = sorted((x(1), x(peer["ratio_best"])))
        colour = COLOURS[0] if peer["ratio_best"] >= 1 else COLOURS[1]
        parts += [text(left - 6, y + 10, peer["name"], "end", "#666"),
                  f'<rect x="{a:.1f}" y="{y}" width="{max(b - a, 1):.1f}" height="{step - 5}" fill="{colour}"/>']
    parts.append(line(x(1), 24, x(1), height - 20, "#222"))
    return svg(width, height, parts)


def growth_plot(growth):
    """Small pictures of the time per item against the size, the smallest size at the same height in all."""
    wide, high, per_row = 190, 110, 5
    names = list(dict.fromkeys(g["operation"] for g in growth))
    parts = [text(4, 16, "time per item for n, 2 n, 4 n, 8 n items over that for n (frame: half to four times)"),
             text(620, 16, "ordered", colour=COLOURS[0]), text(690, 16, "shuffled", colour=COLOURS[1])]
    for i, name in enumerate(names):
        x0, y0 = i % per_row * wide + 8, i // per_row * high + 44
        parts += [text(x0, y0 - 6, name), f'<rect x="{x0}" y="{y0}" width="{wide - 20}" height="{high - 40}" '
                  'fill="none" stroke="#ccc"/>']
        for g in (g for g in growth if g["operation"] == name and g["exponent"] is not None):
            per_item = [t / n for t, n in zip(g["seconds"], g["sizes"])]
            points = []
            for k, t in enumerate(per_item):
                height = min(max((math.log2(t / per_item[0]) + 1) / 3, 0.0), 1.0)
                points.append(f"{x0 + (wide - 20) * k / 3:.1f},{y0 + (high - 40) * (1 - height):.1f}")
            colour = COLOURS[1] if g["numbering"] == "shuffled" else COLOURS[0]
            parts.append(f'<polyline points="{" ".join(points)}" fill="none" stroke="{colour}" stroke-width="2"/>')
    return svg(per_row * wide, (len(names) + per_row - 1) // per_row * high + 40, parts)


def write_plots(results, images):
    images.mkdir(parents=True, exist_ok=True)
    for family in FAMILIES:
        rows = [r for r in results["rows"] if r["family"] == family and len(r.get("contestants", [])) > 1]
        if rows:
            (images / f"{family}.svg").write_text(ratio_plot(rows))
    if results["growth"]:
        (images / "growth.svg").write_text(growth_plot(results["growth"]))


def missing_lines(results):
    return [f"Not measured in this run: {', '.join(results['missing'])}.", ""] if results["missing"] else []


def main():
    folder, file, page, images = map(pathlib.Path, sys.argv[1:5])
    results = gather(folder)
    file.write_text(json.dumps(results, indent=1) + "\n")
    write_plots(results, images)
    lines = [*machine_lines(results), *missing_lines(results), *comparison_lines(results), *called_lines(results), *limit_lines(results),
             *growth_lines(results)]
    before, rest = page.read_text().split(BEGIN)
    page.write_text(before + BEGIN + "\n\n" + "\n".join(lines) + END + rest.split(END)[1])
    behind = [f"{row['operation']}, {size_of(row)}: {peer['name']} {peer['ratio_best']:.2f}"
              for row in results["rows"] for peer in row.get("contestants", [])[1:] if peer.get("ratio_best", 1.0) < 1.0]
    differ = [f"{row['operation']}, {size_of(row)}: {peer['name']}"
              for row in results["rows"] for peer in row.get("contestants", [])[1:] if not peer.get("agrees", True)]
    print(f"   {len(results['rows'])} rows; behind in {len(behind)}", *behind, sep="\n   ")
    if differ:
        print("   Other answers:", *differ, sep="\n   ")


main()

"""Reading and writing a million elements, beside meshio, VTK and gmsh.

    formats.py TOOL_FORMATS [--runs N] [--update PAGE]

TOOL_FORMATS is the program benchmarks/tool_formats. Run it with a Python that sees meshio, vtk and numpy; gmsh is looked
for on the path. What is not there is left out. The table goes to standard output, or between the markers of a page.

Every measure is a process of its own, and the programs take turns; the best of all runs counts. Measured is the
processor time of the call alone, without the start of Python and its modules, and the greatest size of the process
during it beyond what it was before. Of gmsh, which is a program, it is the whole process less one that does nothing,
and for its writing less one that only reads. All read the same files, which are ours.
"""
import argparse
import datetime
import json
import pathlib
import platform
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import time

SOLID, SURFACE = "solid.vtk", "surface.vtk"
FORMATS = {  # suffix and whether text: the mesh, the peers that read it, the peers that write it
    ("vtk", False): (SOLID, "meshio vtk gmsh", "meshio vtk gmsh"),
    ("vtk", True): (SOLID, "meshio vtk gmsh", "meshio vtk gmsh"),
    ("vtu", False): (SOLID, "meshio vtk", "meshio vtk"),
    ("vtu", True): (SOLID, "meshio vtk", "meshio vtk"),
    ("msh", False): (SOLID, "meshio gmsh", "meshio gmsh"),
    ("msh", True): (SOLID, "meshio gmsh", "meshio gmsh"),
    ("msh2", False): (SOLID, "meshio gmsh", "meshio gmsh"),
    ("msh2", True): (SOLID, "meshio gmsh", "meshio gmsh"),
    ("mesh", True): (SOLID, "meshio gmsh", "meshio gmsh"),
    ("stl", False): (SURFACE, "meshio vtk gmsh", "meshio vtk gmsh"),
    ("stl", True): (SURFACE, "meshio vtk gmsh", "meshio vtk gmsh"),
    ("obj", True): (SURFACE, "meshio vtk", "meshio vtk"),
}
PROGRAMS = ("tessolv", "meshio", "vtk", "gmsh")
MARKERS = "<!-- speed of the formats: begin -->", "<!-- speed of the formats: end -->"


def make_meshes(folder):
    import meshio
    import numpy as np

    n = 56
    nodes = np.arange(n**3).reshape(n, n, n)
    x = np.linspace(0, 1, n)
    points = np.stack(np.meshgrid(x, x, x, indexing="ij"), -1).reshape(-1, 3)
    points = points + np.random.default_rng(1).random(points.shape) * 1e-3
    c = [nodes[i : n - 1 + i, j : n - 1 + j, k : n - 1 + k].ravel() for i in (0, 1) for j in (0, 1) for k in (0, 1)]
    cuts = ((0, 4, 6, 7), (0, 6, 2, 7), (0, 2, 3, 7), (0, 3, 1, 7), (0, 1, 5, 7), (0, 5, 4, 7))
    tetra = np.concatenate([np.stack([c[i] for i in cut], 1) for cut in cuts])
    meshio.write(folder / SOLID, meshio.Mesh(points, [("tetra", tetra)]), file_format="vtk42")

    n = 708
    nodes = np.arange(n * n).reshape(n, n)
    x = np.linspace(0, 1, n)
    a, b = np.meshgrid(x, x, indexing="ij")
    points = np.stack([a, b, np.sin(7 * a) * np.cos(5 * b)], -1).reshape(-1, 3)
    a, b, c, d = [nodes[i : n - 1 + i, j : n - 1 + j].ravel() for i, j in ((0, 0), (1, 0), (1, 1), (0, 1))]
    triangles = np.concatenate([np.stack([a, b, c], 1), np.stack([a, c, d], 1)])
    meshio.write(folder / SURFACE, meshio.Mesh(points, [("triangle", triangles)]), file_format="vtk42")


def in_memory(entry):
    with open("/proc/self/status", encoding="ascii") as status:
        return int(re.search(entry + r":\s+(\d+)", status.read())[1]) / 1024


def measured(work):
    """What work() returns, its seconds, its memory."""
    with open("/proc/self/clear_refs", "w", encoding="ascii") as peak:
        peak.write("5")
    before, start = in_memory("VmRSS"), time.process_time()
    result = work()
    seconds = time.process_time() - start
    return result, seconds, in_memory("VmHWM") - before


def with_meshio(source, target, text):
    import meshio

    names = {"vtk": "vtk", "vtu": "vtu", "msh": "gmsh", "msh2": "gmsh", "mesh": "medit", "stl": "stl", "obj": "obj"}
    mesh, *reading = measured(lambda: meshio.read(source, file_format=names[source.suffix[1:]]))
    if not target:
        return reading
    names["msh2"] = "gmsh22"
    more = {} if target.suffix in (".mesh", ".obj") else {"binary": not text}
    return measured(lambda: meshio.write(target, mesh, file_format=names[target.suffix[1:]], **more))[1:]


def with_vtk(source, target, text):
    import vtk

    readers = {".vtk": vtk.vtkUnstructuredGridReader, ".vtu": vtk.vtkXMLUnstructuredGridReader,
               ".stl": vtk.vtkSTLReader, ".obj": vtk.vtkOBJReader}
    writers = {".vtk": vtk.vtkUnstructuredGridWriter, ".vtu": vtk.vtkXMLUnstructuredGridWriter,
               ".stl": vtk.vtkSTLWriter, ".obj": vtk.vtkOBJWriter}
    reader = readers[source.suffix]()
    reader.SetFileName(str(source))
    _, *reading = measured(reader.Update)
    if not target:
        return reading
    data = reader.GetOutput()
    if target.suffix in (".stl", ".obj"):
        outside = vtk.vtkGeometryFilter()
        outside.SetInputData(data)
        outside.Update()
        data = outside.GetOutput()
    writer = writers[target.suffix]()
    writer.SetFileName(str(target))
    writer.SetInputData(data)
    if target.suffix == ".vtu":
        writer.SetDataModeToAscii() if text else writer.SetDataModeToAppended()
        if not text:
            writer.EncodeAppendedDataOff()
    elif target.suffix != ".obj":
        writer.SetFileTypeToASCII() if text else writer.SetFileTypeToBinary()
    return measured(writer.Write)[1:]


def of_process(command):
    """Seconds and MiB of one more process of gmsh."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(command, capture_output=True, check=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, after.ru_maxrss / 1024


def with_gmsh(source, target, text):
    names = {"msh": "msh41", "msh2": "msh22", "mesh": "mesh", "stl": "stl", "vtk": "vtk"}
    nothing = of_process(["gmsh", "-version"])
    reading = of_process(["gmsh", source, "-parse_and_exit"])
    if not target:
        return [reading[0] - nothing[0], reading[1] - nothing[1]]
    both = of_process(["gmsh", source, "-0", "-format", names[target.suffix[1:]], "-o", target] + ([] if text else ["-bin"]))
    return [both[0] - reading[0], both[1] - nothing[1]]


def asked(program, tool_formats, source, target, text):
    """Seconds and MiB, or nothing where a program fails."""
    if program == "tessolv":
        command = [tool_formats, source] + ([target, "text" if text else "bytes"] if target else [])
    else:
        command = [sys.executable, __file__, "--peer", program, source, target or "", "text" if text else "bytes"]
    done = subprocess.run(command, capture_output=True, text=True)
    try:
        found = json.loads(done.stdout.splitlines()[-1])
    except (IndexError, ValueError):
        return None
    return found if program != "tessolv" else [found[1], found[3]] if target else [found[0], found[2]]


def best(found):
    found = [f for f in found if f]
    return [min(f[0] for f in found), min(f[1] for f in found)] if found else None


def rows(tool_formats, runs, folder, programs):
    """(what, {program: [seconds, MiB] or None where it fails}), reading and writing of every format."""
    gmsh_mesh = {}
    for mesh in (SOLID, SURFACE):
        gmsh_mesh[mesh] = folder / (mesh + ".msh")
        asked("tessolv", tool_formats, folder / mesh, gmsh_mesh[mesh], False)
    for (suffix, text), (mesh, readers, writers) in FORMATS.items():
        ours, theirs = folder / f"ours.{suffix}", folder / f"theirs.{suffix}"
        asked("tessolv", tool_formats, folder / mesh, ours, text)
        for what, peers, source, target in (("read", readers, ours, None), ("written", writers, folder / mesh, theirs)):
            measures = {p: [] for p in programs if p == "tessolv" or p in peers.split()}
            for _ in range(runs):
                for program, found in measures.items():
                    # What is ten times slower, or fails, is not asked again.
                    if found and (found[0] is None or found[0][0] > 10 * measures["tessolv"][0][0]):
                        continue
                    of_gmsh = program == "gmsh" and target
                    found.append(asked(program, tool_formats, gmsh_mesh[mesh] if of_gmsh else source, target, text))
            label = f"`{suffix}`, {'text' if text else 'binary'}, {what}"
            print(label, {p: best(f) for p, f in measures.items()}, file=sys.stderr, flush=True)
            yield label, {program: best(found) for program, found in measures.items()}


def cell(found, failed):
    if found is None:
        return "fails" if failed else ""
    return f"{1000 * found[0]:.0f} ms, {found[1]:.0f} MiB"


def table(tool_formats, runs, folder):
    has_gmsh = shutil.which("gmsh") is not None
    programs = [p for p in PROGRAMS if p != "gmsh" or has_gmsh]
    titles = {"vtk": "VTK"}
    lines = [f"Best of {runs} runs on {datetime.date.today()}, {platform.machine()}, the programs in turn:", "",
             "| file | " + " | ".join(titles.get(p, p) for p in programs) + " |", "|---" * (len(programs) + 1) + "|"]
    behind = []
    for label, found in rows(tool_formats, runs, folder, programs):
        lines.append(f"| {label} | " + " | ".join(cell(found.get(p), p in found) for p in programs) + " |")
        faster = [p for p in found if p != "tessolv" and found[p] and found[p][0] <= found["tessolv"][0]]
        behind += [f"{label}: {titles.get(p, p)} is not slower" for p in faster]
        mesh_size = 19.1 if "stl" not in label and "obj" not in label else 22.9
        if found["tessolv"][1] >= 3 * mesh_size:
            behind.append(f"{label}: more than three times the mesh")
    return lines, behind


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("tool_formats", type=pathlib.Path)
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--update", type=pathlib.Path)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        # Apart, since a child starts with the peak memory of its parent.
        subprocess.run([sys.executable, __file__, "--meshes", folder], check=True, capture_output=True)
        lines, behind = table(arguments.tool_formats.resolve(), arguments.runs, folder)
    if arguments.update:
        page = arguments.update.read_text(encoding="utf-8")
        head, rest = page.split(MARKERS[0])
        tail = rest.split(MARKERS[1])[1]
        arguments.update.write_text(f"{head}{MARKERS[0]}\n" + "\n".join(lines) + f"\n{MARKERS[1]}{tail}", encoding="utf-8")
    else:
        print("\n".join(lines))
    print("\n".join(behind) or "Nowhere behind.", file=sys.stderr)


if __name__ == "__main__":
    if sys.argv[1:2] == ["--meshes"]:
        make_meshes(pathlib.Path(sys.argv[2]))
    elif sys.argv[1:2] == ["--peer"]:
        who, source, target, kind = sys.argv[2:]
        peers = {"meshio": with_meshio, "vtk": with_vtk, "gmsh": with_gmsh}
        print(json.dumps(peers[who](pathlib.Path(source), pathlib.Path(target) if target else None, kind == "text")))
    else:
        main()

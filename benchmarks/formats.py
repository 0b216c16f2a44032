"""Reading and writing a million elements, beside meshio, VTK and gmsh: formats.py TESSOLV [RUNS].

Every measure is a process of its own, so that its peak memory is its own too. Of meshio, VTK and gmsh the time of the
call alone is taken, without the start of Python and its modules; of tessolv the whole process, and for a writer the
reading of a VTK file as well. The best of all runs counts. Run it with a Python that sees meshio, vtk and numpy.
"""
import json
import pathlib
import resource
import subprocess
import sys
import tempfile
import time

SOLID, SURFACE = "solid.vtk", "surface.vtk"
FORMATS = {  # suffix and whether text: the mesh, and the peers that read and write it
    ("vtk", False): (SOLID, "meshio vtk"),
    ("vtk", True): (SOLID, "meshio vtk"),
    ("vtu", False): (SOLID, "meshio vtk"),
    ("vtu", True): (SOLID, "meshio vtk"),
    ("msh", False): (SOLID, "meshio gmsh"),
    ("msh", True): (SOLID, "meshio gmsh"),
    ("msh2", False): (SOLID, "meshio gmsh"),
    ("mesh", True): (SOLID, "meshio gmsh"),
    ("stl", False): (SURFACE, "meshio vtk gmsh"),
    ("stl", True): (SURFACE, "meshio vtk gmsh"),
    ("obj", True): (SURFACE, "meshio vtk"),
}


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


def with_meshio(source, target, text):
    import meshio

    names = {"vtk": "vtk", "vtu": "vtu", "msh": "gmsh", "msh2": "gmsh22", "mesh": "medit", "stl": "stl", "obj": "obj"}
    start = time.perf_counter()
    mesh = meshio.read(source, file_format=names[source.suffix[1:]])
    read = time.perf_counter()
    if target:
        more = {} if target.suffix in (".mesh", ".obj") else {"binary": not text}
        meshio.write(target, mesh, file_format=names[target.suffix[1:]], **more)
    return read - start, time.perf_counter() - read


def with_vtk(source, target, text):
    import vtk

    surface = source.suffix in (".stl", ".obj") or (target and target.suffix in (".stl", ".obj"))
    readers = {".vtk": vtk.vtkUnstructuredGridReader, ".vtu": vtk.vtkXMLUnstructuredGridReader,
               ".stl": vtk.vtkSTLReader, ".obj": vtk.vtkOBJReader}
    writers = {".vtk": vtk.vtkUnstructuredGridWriter, ".vtu": vtk.vtkXMLUnstructuredGridWriter,
               ".stl": vtk.vtkSTLWriter, ".obj": vtk.vtkOBJWriter}
    start = time.perf_counter()
    reader = readers[source.suffix]()
    reader.SetFileName(str(source))
    reader.Update()
    read = time.perf_counter()
    if not target:
        return read - start, 0
    data = reader.GetOutput()
    if surface and source.suffix == ".vtk":
        outside = vtk.vtkGeometryFilter()
        outside.SetInputData(data)
        outside.Update()
        data = outside.GetOutput()
    writer = writers[target.suffix]()
    writer.SetFileName(str(target))
    writer.SetInputData(data)
    if target.suffix == ".vtu":
        writer.SetDataModeToAscii() if text else writer.SetDataModeToAppended()
    elif target.suffix != ".obj":
        writer.SetFileTypeToASCII() if text else writer.SetFileTypeToBinary()
    begun = time.perf_counter()
    writer.Write()
    return read - start, time.perf_counter() - begun


def with_gmsh(source, target, text):
    """gmsh tells the seconds of reading and writing itself, on its standard output."""
    import re

    names = {"msh": "msh41", "msh2": "msh22", "mesh": "mesh", "stl": "stl"}
    command = ["gmsh", "-v", "10", str(source), "-0"]
    start = time.perf_counter()
    if target:
        command += ["-format", names[target.suffix[1:]], "-o", str(target)] + ([] if text else ["-bin"])
    else:
        command = ["gmsh", "-v", "10", str(source), "-parse_and_exit"]
    subprocess.run(command, capture_output=True, check=True)
    whole = time.perf_counter() - start
    start = time.perf_counter()
    subprocess.run(["gmsh", "-version"], capture_output=True, check=True)
    return whole - (time.perf_counter() - start), None


def peer(name, source, target, text):
    seconds = {"meshio": with_meshio, "vtk": with_vtk, "gmsh": with_gmsh}[name](source, target, text)
    who = resource.RUSAGE_CHILDREN if name == "gmsh" else resource.RUSAGE_SELF
    print(json.dumps([*seconds, resource.getrusage(who).ru_maxrss / 1024]))


def measured(command):
    """Seconds of the process and its peak memory in MiB."""
    start = time.perf_counter()
    child = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    error = child.stderr.read()
    _, status, usage = __import__("os").wait4(child.pid, 0)
    if status != 0:
        raise RuntimeError(error.decode())
    return time.perf_counter() - start, usage.ru_maxrss / 1024


def asked(name, source, target, text):
    """Reading and writing seconds and peak memory of a peer, or nothing where it fails."""
    command = [sys.executable, __file__, "--peer", name, str(source), str(target or ""), "text" if text else "bytes"]
    done = subprocess.run(command, capture_output=True, text=True)
    try:
        return json.loads(done.stdout.splitlines()[-1])
    except (IndexError, ValueError):
        return None


def table(tessolv, runs, folder):
    print(f"{'format':<10}{'program':<9}{'read s':>8}{'write s':>9}{'peak MiB reading':>18}{'writing':>9}")
    for (suffix, text), (mesh, peers) in FORMATS.items():
        ours = folder / f"ours.{suffix}"
        write = [tessolv, "convert", folder / mesh, "--output", ours, "--quiet"] + (["--ascii"] if text else [])
        writing = min(measured(write) for _ in range(runs))
        reading = min(measured([tessolv, "info", ours]) for _ in range(runs))
        label = suffix + (" text" if text else "")
        print(f"{label:<10}{'tessolv':<9}{reading[0]:8.2f}{writing[0]:9.2f}{reading[1]:18.0f}{writing[1]:9.0f}")
        for name in peers.split():
            theirs = folder / f"theirs.{suffix}"
            from_mesh = folder / "gmsh.msh" if name == "gmsh" else folder / mesh
            if name == "gmsh":
                measured([tessolv, "convert", folder / mesh, "--output", from_mesh, "--quiet"])
            read = [r for r in (asked(name, ours, None, text) for _ in range(runs)) if r]
            wrote = [w for w in (asked(name, from_mesh, theirs, text) for _ in range(runs)) if w]
            # gmsh's writing holds its reading of a binary file of its own.
            best_read = f"{min(r[0] for r in read):8.2f}" if read else f"{'fails':>8}"
            best_write = f"{min(w[1] if w[1] is not None else w[0] for w in wrote):9.2f}" if wrote else f"{'fails':>9}"
            peak_read = f"{min(r[2] for r in read):18.0f}" if read else f"{'':>18}"
            peak_write = f"{min(w[2] for w in wrote):9.0f}" if wrote else ""
            print(f"{label:<10}{name:<9}{best_read}{best_write}{peak_read}{peak_write}", flush=True)


if __name__ == "__main__":
    if sys.argv[1] == "--meshes":
        make_meshes(pathlib.Path(sys.argv[2]))
    elif sys.argv[1] == "--peer":
        name, source, target, kind = sys.argv[2:]
        peer(name, pathlib.Path(source), pathlib.Path(target) if target else None, kind == "text")
    else:
        with tempfile.TemporaryDirectory() as folder:
            # Apart, since a child starts with the peak memory of its parent.
            subprocess.run([sys.executable, __file__, "--meshes", folder], check=True)
            table(sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 3, pathlib.Path(folder))

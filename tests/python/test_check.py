"""What is wrong in a mesh: what is written down, and what the program tells."""

import copy
import json
import os
import pickle
import subprocess
from pathlib import Path
from typing import Any

import numpy as np
import pytest

import tessolv as ts
from meshes import FACED, grid, shuffled
from tessolv import _tessolv
from tessolv._check import KIND_WORDS

PARTS = Path(__file__).resolve().parents[2] / "examples" / "parts"
PROGRAM = os.environ.get("TESSOLV_PROGRAM", "")
SAMPLES = os.environ.get("TESSOLV_SAMPLE_MESHES", "")
KNOWN = os.environ.get("TESSOLV_WRITE_KNOWN_MESHES", "")
needs_program = pytest.mark.skipif(not PROGRAM, reason="TESSOLV_PROGRAM names no program tessolv")
needs_known = pytest.mark.skipif(not KNOWN, reason="TESSOLV_WRITE_KNOWN_MESHES names no program")


@pytest.fixture(scope="module")
def known(tmp_path_factory):
    """Meshes by hand with what is expected of them, and files of them."""
    folder = tmp_path_factory.mktemp("known")
    subprocess.run([KNOWN, str(folder)], check=True, capture_output=True)
    meshes = json.loads((folder / "known_meshes.json").read_text())
    for mesh in meshes:
        points = np.array([[float(x) for x in row] for row in mesh["points"]])
        mesh["points"] = points.reshape(len(mesh["points"]), mesh["columns"])
        mesh["cells"] = {int(type): np.array(rows, dtype=np.uint32) for type, rows in mesh["cells"].items()}
        mesh["path"] = mesh["file"] and folder / mesh["file"]
    return meshes


def by_program(paths, *options):
    command = [PROGRAM, "check", "--json", "--ids", *map(str, [*options, *paths])]
    result = subprocess.run(command, capture_output=True, text=True)
    assert result.returncode in (0, 1), result.stderr
    return [json.loads(line) for line in result.stdout.splitlines()]


def told(mesh, verdict):
    """The line that the meshes by hand come with: numbers from 1 on, through all kinds."""
    starts, count = {}, 1
    for type in sorted(mesh["cells"]):
        starts[type] = count
        count += len(mesh["cells"][type])
    text = ""
    for fault in verdict.faults:
        text += ("~" if fault.level == "note" else "") + f"{fault.code} {fault.count}"
        items = [f"node {' '.join(str(row + 1) for row in fault.nodes)}"] if len(fault.nodes) else []
        for type, rows in fault.elements.items():
            items.append(" ".join([KIND_WORDS[type][0], *(str(row + starts[type]) for row in rows)]))
        text += (f" ({', '.join(items)})" if items else "") + "; "
    return (text or "ok; ") + str(verdict.parts)


def checked(mesh):
    count = sum(map(len, mesh["cells"].values()))
    facets = (count + mesh["not_read"], count, count) if mesh["facets"] or mesh["not_read"] else None
    return ts.check(mesh["points"], mesh["cells"], facets=facets)


@needs_known
def test_what_is_written_down_is_found(known):
    assert len(known) > 80
    assert {mesh["name"]: told(mesh, checked(mesh)) for mesh in known} == {m["name"]: m["expected"] for m in known}


def by_rows(theirs, cells, of_each_kind):
    """The program's findings with rows for its numbers, which count from 1: for each kind, or on as the cells stand."""
    first, next_number = {"node": 1}, 1
    for type, connect in cells.items():
        first[KIND_WORDS[type][0]] = 1 if of_each_kind else next_number
        next_number += len(connect)
    for fault in theirs["faults"]:
        fault["ids"] = {kind: [number - first[kind] for number in numbers] for kind, numbers in fault["ids"].items()}
    return theirs


def assert_same(verdict, theirs, cells, path):
    ours = verdict.to_dict()
    theirs = by_rows(copy.deepcopy(theirs), cells, path.suffix == ".mesh")
    assert {"file", "format"} == set(theirs) - set(ours)
    theirs["notes"] = [text for text in theirs["notes"] if text in ours["notes"]]  # readers add what they had to do
    for data in (ours, theirs):
        for kind in data["kinds"].values():
            for name in ("min", "mean", "max") if "quality" in kind else ():
                # Readers may begin an element at another corner, which changes the last digit.
                kind["quality"][name] = kind["quality"][name] and round(kind["quality"][name], 13)
        for fault in data["faults"]:
            fault["first_at"] = fault["first_at"] and [float(f"{x:.12g}") for x in fault["first_at"]]
    for name, value in ours.items():
        assert value == theirs[name], (path.name, name)


@needs_known
@needs_program
def test_the_program_tells_the_same_of_files(known):
    files = [mesh for mesh in known if mesh["path"] and mesh["path"].suffix != ".stl"]
    compared = 0
    for mesh, theirs in zip(files, by_program([mesh["path"] for mesh in files])):
        if theirs["nodes"] == len(mesh["points"]) and theirs["elements"] == sum(map(len, mesh["cells"].values())):
            assert_same(checked(mesh), theirs, mesh["cells"], mesh["path"])
            compared += 1
    assert compared > 70


def spoiled(seed):
    """A random mesh with a few faults of each sort."""
    random = np.random.default_rng(seed)
    kinds = [FACED[seed % len(FACED)]] + [FACED[random.integers(len(FACED))]] * (seed % 3 == 0)
    points, cells = np.empty((0, 3)), {}
    for number, type in enumerate(dict.fromkeys(kinds)):
        part = shuffled(type, int(random.integers(2, 5)), seed)
        pos = np.zeros((len(part.pos), 3))
        pos[:, : part.pos.shape[1]] = part.pos + (0 if part.pos.shape[1] == 2 else 3 * number)
        cells[type] = part.connect + len(points)
        points = np.concatenate([points, pos])
    if seed % 5:
        points[:, 2] += 0.3 * np.sin(points[:, 0])
    for type, connect in cells.items():
        for e in random.integers(0, len(connect), random.integers(0, 4)):
            connect[e, :2] = connect[e, 1::-1]  # turned over, or only begun elsewhere
        for e in random.integers(0, len(connect), random.integers(0, 3)):
            connect[e, -1] = connect[e, 0]
        twice = connect[random.integers(0, len(connect), random.integers(0, 3))]
        cells[type] = np.concatenate([connect, np.roll(twice, 1, axis=1)])
        # Some corners get nodes of their own, some of those elsewhere.
        for e in random.integers(0, len(connect), random.integers(0, 3)):
            shift = random.choice([0, 1e-10, 0.3, 5])
            points = np.concatenate([points, points[cells[type][e, :1]] + shift])
            cells[type][e, 0] = len(points) - 1
    points[random.integers(0, len(points), random.integers(0, 3))] *= [1, 1, 1e-4]
    points = np.concatenate([points, random.uniform(0, 3, (random.integers(0, 3), 3))])
    return ts.Mesh(points, cells)


@needs_program
def test_the_program_tells_the_same_of_random_meshes(tmp_path):
    meshes = {tmp_path / f"{seed}.msh": spoiled(seed) for seed in range(60)}
    for path, mesh in meshes.items():
        mesh.write(path)
    codes = set()
    for (path, mesh), theirs in zip(meshes.items(), by_program(meshes)):
        verdict = mesh.check()
        assert_same(verdict, theirs, mesh.cells, path)
        codes |= {fault.code for fault in verdict.faults}
    assert len(codes) >= 12


@needs_program
def test_profiles_and_rules_are_those_of_the_program(tmp_path):
    mesh = spoiled(7)
    mesh.write(tmp_path / "mesh.msh")
    rules = {"coincident": 0.01, "faults": {"parts": "finding", "unused_node": "off"}, "quality": {"all": {"bad": 0.1}}}
    (tmp_path / "rules.json").write_text(json.dumps(rules))
    for profile in ("default", "solver", "shell", "closed"):
        (theirs,) = by_program([tmp_path / "mesh.msh"], "--profile", profile)
        assert_same(mesh.check(profile=profile), theirs, mesh.cells, tmp_path / "mesh.msh")
    (theirs,) = by_program([tmp_path / "mesh.msh"], "--rules", tmp_path / "rules.json")
    for given in (rules, json.dumps(rules), tmp_path / "rules.json", str(tmp_path / "rules.json")):
        assert_same(mesh.check(rules=given), theirs, mesh.cells, tmp_path / "mesh.msh")
    named = {"profile": "solver", "faults": {"parts": "off"}}
    (tmp_path / "rules.json").write_text(json.dumps(named))
    for wanted in (None, "default", "closed"):
        options = () if wanted is None else ("--profile", wanted)
        (theirs,) = by_program([tmp_path / "mesh.msh"], "--rules", tmp_path / "rules.json", *options)
        assert_same(mesh.check(profile=wanted, rules=named), theirs, mesh.cells, tmp_path / "mesh.msh")
        assert theirs["rules"]["profile"] == (wanted or "solver")
    assert mesh.check(rules=mesh.check(profile="solver").rules).to_dict() == mesh.check(profile="solver").to_dict()


def stl_files():
    folders = [PARTS, *([Path(SAMPLES)] if SAMPLES else [])]
    files = [path for folder in folders for path in sorted(folder.rglob("*")) if path.suffix.lower() == ".stl"]
    return [path for path in files if path.stat().st_size < 2_000_000]


FACET = "facet normal 0 0 1\nouter loop\nvertex 0 0 {0}\nvertex 1 0 {0}\nvertex 0 {1} {0}\nendloop\nendfacet\n"


@needs_program
def test_surfaces_of_stl_files_are_judged_as_by_the_program(tmp_path):
    (tmp_path / "cut.stl").write_bytes((PARTS / "flange.stl").read_bytes()[:-1000])
    (tmp_path / "flat.stl").write_text(f"solid\n{FACET.format(0, 1)}{FACET.format(1, 0)}endsolid\n")
    (tmp_path / "two.stl").write_text(f"solid\n{FACET.format(0, 1)}endsolid\nsolid\n{FACET.format(1, 1)}endsolid\n")
    (tmp_path / "odd.stl").write_text(f"solid\n{FACET.format(0, 1)}what?\n{FACET.format(1, 1)}endsolid\n")
    (tmp_path / "none.stl").write_text("solid\nfacet\n")
    paths = [*tmp_path.iterdir(), *stl_files()]
    command = [PROGRAM, "check", "--json", "--ids", "--skip-unreadable", *map(str, paths)]
    lines = subprocess.run(command, capture_output=True, text=True).stdout.splitlines()
    assert len(lines) == len(paths)
    for path, theirs in zip(paths, map(json.loads, lines)):
        assert Path(theirs["file"]) == path
        if theirs["verdict"] == "unreadable":
            with pytest.raises(ts.Error):
                ts.Mesh.read(path)
            continue
        mesh = ts.Mesh.read(path)
        assert mesh.facets == (theirs["facets_in_file"], theirs["facets_read"], theirs["triangles"]), path
        ours = mesh.check().to_dict()
        theirs["notes"] = [text for text in theirs["notes"] if text in ours["notes"]]  # readers add what is odd
        (collapsed,) = [f["ids"]["triangle"] for f in theirs["faults"] if f["code"] == "repeated_node"] or [[]]
        kept = [number for number in range(1, theirs["facets_in_file"] + 1) if number not in collapsed]
        row_of = {number: row for row, number in enumerate(kept)}
        for fault in theirs["faults"]:
            if fault["code"] == "repeated_node":  # the mesh does not have them any more
                fault["ids"], fault["first_at"] = {}, None
            elif "triangle" in fault["ids"]:
                fault["ids"]["triangle"] = [row_of[number] for number in fault["ids"]["triangle"]]
        if any(fault["code"] == "not_finite" for fault in theirs["faults"]):
            del ours["bounding_box"]  # there the program tells coordinates, finite or not
        for name, value in ours.items():
            if name == "faults":
                for fault, other in zip(value, theirs["faults"]):
                    nodes = "node" in fault["ids"]
                    assert {**fault, "ids": nodes or fault["ids"]} == {**other, "ids": nodes or other["ids"]}, path
            assert name == "faults" or value == theirs[name], (path, name)
        assert len(ours["faults"]) == len(theirs["faults"]), path


@needs_known
@needs_program
def test_every_line_of_the_program_is_as_its_schema_says(known, tmp_path):
    jsonschema = pytest.importorskip("jsonschema")
    schema = json.loads((PARTS.parents[1] / "docs" / "check.schema.json").read_text())
    valid = jsonschema.Draft7Validator(schema)  # which knows all that the schema uses
    (tmp_path / "none.stl").write_text("solid\nendsolid\n")
    (tmp_path / "no.msh").write_text("no mesh")
    of_known = [mesh["path"] for mesh in known if mesh["path"]]
    paths = [*of_known, *tmp_path.iterdir(), tmp_path / "missing.vtu", *PARTS.glob("*.stl")]
    output = subprocess.run([PROGRAM, "check", "--json", *map(str, paths)], capture_output=True, text=True).stdout
    lines = [json.loads(line) for line in output.splitlines()]
    assert len(lines) == len(paths)
    for line in lines:
        assert not [error.message for error in valid.iter_errors(line)], line["file"]
    spoilt = next(line for line in lines if line["format"] == "binary")
    del spoilt["merged_nodes"]
    assert list(valid.iter_errors(spoilt))


def test_all_solids_of_an_stl_text_are_read(tmp_path):
    solids = [f"  SOLID {k}\r\n{FACET.format(k, 1)}endsolid {k}\n" for k in range(3)]
    (tmp_path / "three.stl").write_text("".join(solids))
    mesh = ts.Mesh.read(tmp_path / "three.stl")
    assert mesh.facets == (3, 3, 3)
    assert sorted(mesh.points[:, 2]) == [0, 0, 0, 1, 1, 1, 2, 2, 2]
    (tmp_path / "bad.stl").write_text(f"solid\n{FACET.format(0, 1)}endsolid\nsolid\nfacet normal x\nendsolid\n")
    assert ts.Mesh.read(tmp_path / "bad.stl").facets == (2, 1, 1)


def test_what_is_cut_out_of_a_surface_is_open_by_intent(tmp_path):
    (tmp_path / "odd.stl").write_text(f"solid\n{FACET.format(0, 1)}what?\n{FACET.format(1, 1) * 2}endsolid\n")
    mesh = ts.Mesh.read(tmp_path / "odd.stl")
    assert mesh.facets == (3, 1, 1)
    fault = mesh.check().fault("not_read")
    assert fault and (fault.count, fault.text) == (2, f"2 facets not read ({mesh.facets.why_not_read})")
    assert mesh.facets.why_not_read == "line 9 is not 'facet normal' and three numbers"
    assert mesh.translate([1, 0, 0]).simplify().weld(1e-9).facets == (3, 1, 1)
    assert pickle.loads(pickle.dumps(mesh)).facets.why_not_read == mesh.facets.why_not_read
    assert mesh.clip([-1, 0, 0], [1, 0, 0]).facets is None and mesh.boundary().facets is None


def test_a_verdict_shows_the_elements_at_fault_with_their_quality():
    mesh = grid(ts.EL_HEXA8, 2)
    mesh.connect[3] = mesh.connect[3][[4, 5, 6, 7, 0, 1, 2, 3]]
    verdict = ts.Mesh(mesh.pos, {mesh.type: mesh.connect}).check()
    assert not verdict and [fault.code for fault in verdict.findings] == ["inverted"]
    inverted = verdict.fault("inverted")
    assert inverted and list(inverted.items()) == [("HEXA8", 3)]
    assert verdict.bad_elements() == [(ts.EL_HEXA8, 3, "inverted", -1.0)]
    assert verdict.fault("duplicate") is None
    with pytest.raises(ts.Error):
        verdict.fault("unheard")
    assert "HEXA8               3   -1.0000  inverted" in str(verdict)
    assert str(verdict).endswith("\nNOT CLEAN: 1 inverted element") and "NOT CLEAN" in repr(verdict)
    html = verdict._repr_html_()
    assert html.count("<table>") == 3 and "<td>-1.0000</td>" in html and "NOT CLEAN" in html
    sound = ts.check(mesh.pos, {mesh.type: mesh.connect[:3]}, rules={"faults": {"unused_node": "off"}})
    assert sound and "CLEAN: 3 hexahedra" in repr(sound)


def test_many_elements_at_fault_are_cut_short():
    mesh = grid(ts.EL_TRIA3, 5)
    verdict = ts.check(mesh.pos, {mesh.type: mesh.connect[:, ::-1]})
    assert len(verdict.bad_elements()) == 50
    assert "TRIA3 0 1 2 3 4 5 6 7 8 9 ..." in str(verdict) and "... 40 more" in str(verdict)


def test_arrays_with_indices_of_no_node_are_judged():
    verdict = ts.check([[0, 0, 0], [1, 0, 0], [0, 1, 0]], {6: [[0, 1, 2], [0, 1, 9], [0, -1, 2]]})
    fault = verdict.fault("bad_index")
    assert fault and fault.elements[ts.EL_TRIA3].tolist() == [1, 2]
    assert np.isnan(verdict.qualities[ts.EL_TRIA3]).tolist() == [False, True, True]
    assert ts.check(np.empty((0, 3)), {}).fault("no_element") is not None



check: Any = ts.check  # also with what its types do not allow


@pytest.mark.parametrize(
    "argument, call",
    [
        ("profile", lambda p, c: check(p, c, profile="unheard")),
        ("profile", lambda p, c: check(p, c, profile=3)),
        ("rules", lambda p, c: check(p, c, rules={"faults": {"unheard": "off"}})),
        ("rules", lambda p, c: check(p, c, rules="{")),
        ("rules", lambda p, c: check(p, c, rules={1: {2}})),
        ("rules", lambda p, c: check(p, c, rules="no/such/file.json")),
        ("rules", lambda p, c: check(p, c, rules=5.5)),
        ("facets", lambda p, c: check(p, c, facets=(1, 2, 1))),
        ("facets", lambda p, c: check(p, c, facets="ab")),
        ("cells", lambda p, c: check(p, [c[6]])),
        ("cells[6]", lambda p, c: check(p, {6: [[0, 1]]})),
        ("cells", lambda p, c: check(p, {5: c[6]})),
        ("points", lambda p, c: ts.check(np.zeros((3, 4)), c)),
    ],
)
def test_what_cannot_be_judged_is_refused(argument, call):
    with pytest.raises(ts.Error) as caught:
        call(np.zeros((3, 3)), {6: [[0, 1, 2]]})
    assert (caught.value.function, caught.value.argument, caught.value.code) == ("check", argument, None)


def test_every_code_stands_in_the_table_of_the_program():
    text = (PARTS.parents[1] / "docs" / "check.md").read_text()
    assert all(f"| `{code}` |" in text for code in _tessolv.fault_codes())

"""What is said about the package: docstrings run, names are complete, pages are up to date."""

import contextlib
import doctest
import importlib
import inspect
import io
import os
import pkgutil
import re
import runpy
import shutil
import subprocess
import sys
from pathlib import Path
from typing import Any

import pytest

import tessolv as ts

ROOT = Path(__file__).resolve().parents[2]
DOCS = ROOT / "docs" / "python"
MODULES = [m.name for m in pkgutil.iter_modules(ts.__path__, "tessolv.") if m.name != "tessolv._tessolv"]


@pytest.mark.parametrize("name", MODULES)
def test_docstrings_run(name):
    module = importlib.import_module(name)
    result = doctest.testmod(module)
    assert result.failed == 0


def test_the_docstring_of_the_compiled_class_runs():
    found = doctest.DocTestParser().get_doctest(ts.Histogram.__doc__ or "", vars(ts).copy(), "Histogram", None, None)
    assert len(found.examples) == 3 and doctest.DocTestRunner().run(found).failed == 0


def test_every_operation_of_the_headers_is_here():
    headers = "".join(path.read_text() for path in sorted((ROOT / "include" / "tessolv").glob("*.h")))
    names = set(re.findall(r"^TESSOLV_API [\w *]+\b(\w+)\(", headers, re.MULTILINE))
    assert {"get_neighbors", "merge", "STL_input", "append", "version"} < names
    assert names <= set(ts.__all__)
    kinds = set(re.findall(r"^    (EL_\w+) =", headers, re.MULTILINE))
    assert len(kinds) == 21 and kinds <= set(ts.__all__)
    for kind, value in re.findall(r"^    (EL_\w+) = (\d+)", headers, re.MULTILINE):
        assert getattr(ts, kind) == int(value)


def test_every_public_function_and_its_arguments_are_explained():
    for name in ts.__all__:
        item = getattr(ts, name)
        if not inspect.isfunction(item):
            continue
        text = inspect.getdoc(item) or ""
        assert text, name
        for parameter in inspect.signature(item).parameters:
            assert re.search(rf"\b{parameter}\b", text), f"{name}: {parameter}"


def test_every_public_class_is_explained_and_in_the_reference():
    text = (DOCS / "reference.md").read_text()
    for name in ts.__all__:
        item = getattr(ts, name)
        if not callable(item):
            continue
        assert f"\n### {name}\n" in text, name
        members = vars(item).items() if inspect.isclass(item) and not hasattr(item, "_fields") else ()
        for member, value in members:
            if not member.startswith("_") and (callable(value) or isinstance(value, property)):
                assert inspect.getdoc(value), f"{name}.{member}"
        assert not inspect.isclass(item) or inspect.getdoc(item), name


def test_named_codes_are_those_of_the_table():
    from tessolv import _tessolv

    codes: dict[str, set[int]] = {}
    for form, code, _, _ in _tessolv.refusals():
        codes.setdefault(form.split("/")[0], set()).add(code)
    for name, wanted in codes.items():
        item = getattr(ts, name)
        text = inspect.getdoc(item.reinit if inspect.isclass(item) else item) or ""
        raises = text.split("Raises:")[1].split(">>>")[0]
        if name == "WavefrontOBJ_output":
            assert "-2 to -6" in raises
            continue
        assert {int(code) for code in re.findall(r"-\d+", raises)} == wanted, name


def run_page(text, namespace):
    """Runs the blocks of code of a page; the page with what they print below them."""

    def run(match):
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            exec(compile(match[1], "page", "exec"), namespace)
        return f"```python\n{match[1]}```\n" + (f"```text\n{printed.getvalue()}```\n" if match[2] is not None else "")

    return re.sub(r"```python\n(.*?)```\n(```text\n.*?```\n)?", run, text, flags=re.DOTALL)


@pytest.fixture
def desk(tmp_path, monkeypatch):
    """A folder with the files of which the pages speak."""
    shutil.copy(ROOT / "examples" / "parts" / "flange-faulty.stl", tmp_path / "part.stl")
    shutil.copy(ROOT / "tests" / "python" / "data" / "linear.msh", tmp_path / "solids.msh")
    (tmp_path / "images").mkdir()
    monkeypatch.chdir(tmp_path)
    monkeypatch.setattr(sys, "argv", ["ten_lines.py", "solids.msh", "solids.vtu"])
    return tmp_path


def test_the_tutorial_prints_and_draws_what_it_shows(desk):
    text = (DOCS / "tutorial.md").read_text()
    assert f"```python\n{(DOCS / 'ten_lines.py').read_text()}```" in text
    assert run_page(text, {}) == text
    pictures = sorted(path.name for path in (desk / "images").iterdir())
    assert pictures == sorted(re.findall(r"\(images/(.*?)\)", text)) != []
    for name in pictures:
        assert (desk / "images" / name).read_text() == (DOCS / "images" / name).read_text(), name


def test_ten_lines_from_gmsh_to_paraview(tmp_path):
    """A fresh file of Gmsh; the VTU is loaded by the reader that ParaView has."""
    if shutil.which("gmsh") is None:
        pytest.skip("gmsh is not installed")
    xml = pytest.importorskip("vtkmodules.vtkIOXML")
    script = DOCS / "ten_lines.py"
    assert len(script.read_text().splitlines()) == 10
    geometry = ROOT / "tests" / "python" / "data" / "solids.geo"
    subprocess.run(["gmsh", "-3", str(geometry), "-o", str(tmp_path / "fresh.msh")], check=True, capture_output=True)
    run = [sys.executable, str(script), "fresh.msh", "fresh.vtu"]
    environment = {**os.environ, "PYTHONPATH": str(Path(ts.__file__).absolute().parents[1])}
    printed = subprocess.run(run, cwd=tmp_path, check=True, capture_output=True, text=True, env=environment).stdout
    worst, verdict = printed.split("\n\n", 1)[0].splitlines()[:11], printed.splitlines()[-1]
    assert worst[0].startswith("type") and all(float(line.split()[2]) > 0 for line in worst[1:]) and len(worst) == 11
    assert verdict.startswith("CLEAN: ")
    reader = xml.vtkXMLUnstructuredGridReader()
    reader.SetFileName(str(tmp_path / "fresh.vtu"))
    reader.Update()
    mesh = ts.Mesh.read(tmp_path / "fresh.msh").weld(1e-6)
    assert reader.GetErrorCode() == 0
    assert reader.GetOutput().GetNumberOfPoints() == len(mesh.points)
    assert reader.GetOutput().GetNumberOfCells() == sum(map(len, mesh.cells.values()))


def test_the_code_of_the_first_page_runs(desk):
    text = (ROOT / "README.md").read_text()
    names: dict[str, Any] = {}
    run_page(text, names)
    assert names["neighbors"].shape == (180, 4) and (desk / "solids.vtu").exists()


def test_the_reference_is_up_to_date():
    maker = runpy.run_path(str(DOCS / "make_reference.py"), run_name="maker")
    text = (DOCS / "reference.md").read_text()
    assert maker["reference"]() == text
    for name in ts.__all__:
        if inspect.isroutine(getattr(ts, name)):
            assert f"### {name}\n" in text


def test_jobs_side_by_side_run(desk):
    mesh, part = ts.Mesh.read("solids.msh"), ts.Mesh.read("part.stl")
    jobs = re.findall(r"\| `([^`|]+)` \|$", (DOCS / "coming-from.md").read_text(), re.MULTILINE)
    assert len(jobs) > 15
    for job in jobs:
        assert eval(job, {"ts": ts, "mesh": mesh, "part": part}) is not None or "get(" in job, job

"""What is said about the package: docstrings run, names are complete, pages are up to date."""

import contextlib
import doctest
import importlib
import inspect
import io
import pkgutil
import re
import runpy
import shutil
from pathlib import Path

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
    # meshio prints an empty line when it reads a file of Gmsh.
    read = ts._bridges.read

    def quietly(file):
        with contextlib.redirect_stdout(io.StringIO()):
            return read(file)

    monkeypatch.setattr(ts._bridges, "read", quietly)
    return tmp_path


def test_the_tutorial_prints_and_draws_what_it_shows(desk):
    text = (DOCS / "tutorial.md").read_text()
    assert run_page(text, {}) == text
    pictures = sorted(path.name for path in (desk / "images").iterdir())
    assert pictures == sorted(re.findall(r"\(images/(.*?)\)", text)) != []
    for name in pictures:
        assert (desk / "images" / name).read_text() == (DOCS / "images" / name).read_text(), name


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

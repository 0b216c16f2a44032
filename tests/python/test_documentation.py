"""What is said about the package: docstrings run, names are complete, pages are up to date."""

import doctest
import importlib
import inspect
import pkgutil
import re
from pathlib import Path

import pytest

import tessolv as ts

ROOT = Path(__file__).resolve().parents[2]
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

"""Makes reference.md from the docstrings: PYTHONPATH=build/python python3 docs/python/make_reference.py"""

import inspect
import itertools
import re
from pathlib import Path

import tessolv as ts
from tessolv import _conventions, _editing, _geometry, _io, _mesh, _mesh_data, _metrics, _numbering, _quality, _spatial, _topology
from tessolv import _bridges, _check, _errors

FAMILIES = {
    "Conventions": _conventions,
    "Topology": _topology,
    "Search by position": _spatial,
    "Indices and editing": _editing,
    "Quality": _quality,
    "Metrics": _metrics,
    "Geometry": _geometry,
    "Files": _io,
    "Meshes": _mesh,
    "What a mesh holds": _mesh_data,
    "Findings": _check,
    "Bridges": _bridges,
    "Numbering": _numbering,
    "Errors": _errors,
}


def signature(name, item):
    arguments = []
    for p in inspect.signature(item).parameters.values():
        if p.name in ("self", "cls"):
            continue
        if p.kind is p.KEYWORD_ONLY and "*" not in arguments:
            arguments.append("*")
        arguments.append(p.name if p.default is p.empty else f"{p.name}={p.default!r}")
    return f"{name}({', '.join(arguments)})"


def text_of(item):
    """A docstring of sections as Markdown."""
    lines, out = (inspect.getdoc(item) or "").split("\n"), []
    for i, line in enumerate(lines):
        if line.rstrip() in ("Args:", "Returns:", "Raises:", "Attributes:"):
            out.append(f"**{line.rstrip()[:-1]}**\n")
        elif line.startswith(">>>") and (i == 0 or not lines[i - 1].startswith((">>>", "..."))):
            out.append("```\n" + line if not in_code(out) else line)
        elif re.match(r"    \w+: ", line) and not in_code(out):
            name, rest = line.strip().split(": ", 1)
            out.append(f"- `{name}`: {rest}")
        elif line.startswith("        ") and not in_code(out):
            out.append("  " + line.strip())
        elif line.startswith("    ") and not in_code(out):
            out.append(line.strip())
        else:
            out.append("" if line.strip() == "<BLANKLINE>" else line)
    return "\n".join(out) + ("\n```" if in_code(out) else "")


def in_code(out):
    return any(line.startswith("```") for line in out)


def methods(item):
    own = [base for base in item.__mro__ if base.__module__.startswith("tessolv")]
    for name, method in itertools.chain.from_iterable(vars(base).items() for base in own):
        method = getattr(method, "fget", method)
        if isinstance(method, classmethod):
            method = method.__func__
        if inspect.isfunction(method) and not name.startswith("_"):
            yield name, method


def reference():
    parts = ["# Reference\n\nMade from the docstrings by [make_reference.py](make_reference.py).\n"]
    for title, module in FAMILIES.items():
        parts.append(f"## {title}\n\n{inspect.getdoc(module)}\n")
        for name in ts.__all__:
            item = getattr(ts, name)
            if getattr(item, "__module__", None) != module.__name__:
                continue
            if inspect.isfunction(item):
                parts.append(f"### {name}\n\n`{signature(name, item)}`\n\n{text_of(item)}\n")
            elif hasattr(item, "_fields"):
                parts.append(f"### {name}\n\nA named tuple `({', '.join(item._fields)})`. {text_of(item)}\n")
            elif inspect.isclass(item):
                parts.append(f"### {name}\n\n{text_of(item)}\n")
                if not issubclass(item, (int, list)):
                    parts += [f"#### {name}.{m}\n\n`{signature(m, f)}`\n\n{text_of(f)}\n" for m, f in methods(item)]
    return "\n".join(parts)


if __name__ == "__main__":
    (Path(__file__).parent / "reference.md").write_text(reference())

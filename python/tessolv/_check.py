"""What is wrong in a mesh: the findings of `tessolv check`, from the same code."""

from __future__ import annotations

import json
import os
from dataclasses import asdict, dataclass
from html import escape
from pathlib import Path
from typing import Any, Dict, Iterator, List, Mapping, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _tessolv
from ._conventions import ElementType
from ._errors import Error
from ._geometry import BoundingBox

#: For each kind the word of the program, and what one and several such elements are called.
KIND_WORDS: Mapping[int, Tuple[str, str, str]] = _tessolv.kind_words()

#: Rules as a dictionary, as JSON text, or as the path of a JSON file.
Rules = Union[Mapping[str, Any], str, "os.PathLike[str]"]

_SHOWN = 10


@dataclass(frozen=True, eq=False)
class Fault:
    """One kind of fault that a mesh has.

    Attributes:
        code: what it is, see docs/check.md.
        level: "finding", or "note" for what leaves a mesh clean.
        count: how many there are.
        of: how many nodes, elements, edges or faces were looked at; 0 where there is no such number.
        text: in words.
        first_at: the first node, or the middle of the first element or face; None where it has no place.
        nodes: rows of the points at fault.
        elements: for each kind the rows of the elements at fault, or of those whose faces are.
    """

    code: str
    level: str
    count: int
    of: int
    text: str
    first_at: Optional[Tuple[float, float, float]]
    nodes: NDArray[np.int64]
    elements: Mapping[ElementType, NDArray[np.int64]]

    def items(self) -> Iterator[Tuple[str, int]]:
        """The nodes and elements at fault: "node" or the name of the kind, and the row."""
        for row in self.nodes:
            yield "node", int(row)
        for type, rows in self.elements.items():
            for row in rows:
                yield type.name, int(row)


@dataclass(frozen=True)
class KindSummary:
    """Elements of one kind by quality; lines and points have None beside their number.

    `histogram` counts ten bins of a tenth from 0 to 1; inverted elements are not in it. Where no quality is a number,
    `min`, `mean` and `max` are NaN.
    """

    count: int
    min: Optional[float] = None
    mean: Optional[float] = None
    max: Optional[float] = None
    inverted: Optional[int] = None
    bad: Optional[int] = None
    poor: Optional[int] = None
    fair: Optional[int] = None
    good: Optional[int] = None
    histogram: Optional[Tuple[int, ...]] = None


class BadElement(NamedTuple):
    """An element that a finding names, with the first one that does."""

    type: ElementType
    element: int
    code: str
    quality: float


class Verdict:
    """What `check` found. Prints as a report, and as a table in notebooks; true if the mesh is clean.

    Attributes:
        is_clean: whether there is no finding; notes leave a mesh clean.
        faults: findings and notes, in the order of the table in docs/check.md.
        kinds: for each kind of elements a `KindSummary`.
        qualities: for each kind the quality of every element, inverted ones not below -1; NaN where there is none.
        nodes: how many there are.
        elements: how many there are.
        dimension: of the elements of the highest dimension, to which parts and faces refer.
        parts: linked across faces.
        faces: of which one of two elements counts once.
        free_faces: of one element.
        nonmanifold_faces: of three or more elements.
        box: of the nodes with finite coordinates; None without any.
        shortest_edge: its length; 0 without an edge.
        rules: those in force, as `check` takes them.
    """

    is_clean: bool
    faults: List[Fault]
    kinds: Dict[ElementType, KindSummary]
    qualities: Dict[ElementType, NDArray[np.float64]]
    nodes: int
    elements: int
    dimension: int
    parts: int
    faces: int
    free_faces: int
    nonmanifold_faces: int
    box: Optional[BoundingBox]
    shortest_edge: float
    rules: Dict[str, Any]

    def __init__(self, found: Mapping[str, Any]) -> None:
        for name in ("is_clean", "nodes", "elements", "dimension", "parts", "faces", "free_faces", "nonmanifold_faces"):
            setattr(self, name, found[name])
        self.shortest_edge = found["shortest_edge"]
        self.box = None if found["box"] is None else BoundingBox(*found["box"])
        self.rules = json.loads(found["rules"])
        self.kinds = {ElementType(type): _summary(values) for type, values in found["kinds"].items()}
        self.qualities = {ElementType(type): values for type, values in found["qualities"].items()}
        self.faults = [_fault(values) for values in found["faults"]]

    def __bool__(self) -> bool:
        return self.is_clean

    @property
    def findings(self) -> List[Fault]:
        """Faults that make the mesh not clean."""
        return [fault for fault in self.faults if fault.level == "finding"]

    @property
    def notes(self) -> List[Fault]:
        """Faults that leave it clean."""
        return [fault for fault in self.faults if fault.level == "note"]

    def fault(self, code: str) -> Optional[Fault]:
        """The fault of that code, None if the mesh does not have it."""
        if code not in _tessolv.fault_codes():
            raise Error("Verdict.fault", None, "code", f"is no fault: there are {', '.join(_tessolv.fault_codes())}")
        return next((fault for fault in self.faults if fault.code == code), None)

    def bad_elements(self) -> List[BadElement]:
        """The elements of all findings, each once; the worst quality first, what has none before it."""
        first: Dict[Tuple[ElementType, int], str] = {}
        for fault in self.findings:
            for type, rows in fault.elements.items():
                for row in rows.tolist():
                    first.setdefault((type, row), fault.code)
        all_bad = [BadElement(type, row, code, float(self.qualities[type][row])) for (type, row), code in first.items()]
        worst = {bad: -np.inf if np.isnan(bad.quality) else bad.quality for bad in all_bad}
        return sorted(all_bad, key=lambda bad: (worst[bad], bad.type, bad.element))

    def to_dict(self) -> Dict[str, Any]:
        """The fields of `tessolv check --json` but `file` and `format`; nodes and elements by their rows, from 0 on."""
        return {
            "nodes": self.nodes,
            "elements": self.elements,
            "dimension": self.dimension,
            "kinds": {KIND_WORDS[type][0]: _summary_fields(kind) for type, kind in self.kinds.items()},
            "parts": self.parts,
            "faces": self.faces,
            "free_faces": self.free_faces,
            "nonmanifold_faces": self.nonmanifold_faces,
            "bounding_box": None if self.box is None else {"min": self.box.min.tolist(), "max": self.box.max.tolist()},
            "shortest_edge": self.shortest_edge,
            "verdict": "clean" if self.is_clean else "not clean",
            "problems": [fault.text for fault in self.findings],
            "notes": [fault.text for fault in self.notes],
            "faults": [_fault_fields(fault) for fault in self.faults],
            "rules": self.rules,
        }

    def __repr__(self) -> str:
        return f"<tessolv.Verdict: {self._line()}>"

    def __str__(self) -> str:
        lines = [", ".join([f"{self.nodes} nodes", *self._counts()])]
        measured = {type: kind for type, kind in self.kinds.items() if kind.min is not None}
        if measured:
            head = "".join(f"{name:>9}" for name in _COLUMNS)
            lines += ["", f"{'quality':<12}{head}"]
        for type, kind in measured.items():
            lines.append(f"{type.name:<12}" + "".join(f"{text:>9}" for text in _numbers(kind)))
        lines += ["", *(_fault_line(fault) for fault in self.faults)] if self.faults else []
        bad = self.bad_elements()
        if bad:
            lines += ["", f"{'type':<12}{'element':>9}{'quality':>10}  finding"]
            lines += [f"{one.type.name:<12}{one.element:>9}{one.quality:>10.4f}  {one.code}" for one in bad[:_SHOWN]]
        if len(bad) > _SHOWN:
            lines.append(f"... {len(bad) - _SHOWN} more")
        return "\n".join([*lines, "", self._line()])

    def _counts(self) -> List[str]:
        return [_counted(type, kind.count) for type, kind in self.kinds.items()]

    def _line(self) -> str:
        if self.is_clean:
            return "CLEAN: " + ", ".join(self._counts())
        return "NOT CLEAN: " + ", ".join(fault.text for fault in self.findings)

    def _repr_html_(self) -> str:
        faults = [(fault.level, fault.text, _share(fault), _words(fault)) for fault in self.faults]
        bad = [(b.type.name, str(b.element), f"{b.quality:.4f}", b.code) for b in self.bad_elements()[:_SHOWN]]
        kinds = [
            (type.name, str(kind.count), *(_numbers(kind) if kind.min is not None else [""] * 8))
            for type, kind in self.kinds.items()
        ]
        return (
            f"<p><b>{escape(self._line())}</b></p>"
            + _table(("", "number", *_COLUMNS), kinds)
            + (_table(("", "fault", "share", "where"), faults) if faults else "")
            + (_table(("type", "element", "quality", "finding"), bad) if bad else "")
        )


_COLUMNS = ("min", "mean", "max", "inverted", "bad", "poor", "fair", "good")


def _numbers(kind: KindSummary) -> List[str]:
    return [f"{getattr(kind, name):.4f}" for name in _COLUMNS[:3]] + [str(getattr(kind, name)) for name in _COLUMNS[3:]]


def _table(head: Tuple[str, ...], rows: Sequence[Tuple[str, ...]]) -> str:
    lines = ["".join(f"<td>{escape(text)}</td>" for text in row) for row in rows]
    return f"<table><tr>{''.join(f'<th>{name}</th>' for name in head)}</tr><tr>{'</tr><tr>'.join(lines)}</tr></table>"


def _counted(type: ElementType, count: int) -> str:
    _, one, many = KIND_WORDS[type]
    return f"{count} {one if count == 1 else many}"


def _share(fault: Fault) -> str:
    percent = 100 * fault.count / fault.of if fault.of else 0.0
    return "" if not fault.of else f"{percent:.0f} %" if percent >= 99.5 else f"{percent:.2g} %"


def _words(fault: Fault) -> str:
    """ "TETRA4 3 7, WEDGE6 12", with dots behind the tenth."""
    text, kind = "", ""
    for number, (name, row) in enumerate(fault.items()):
        if number == _SHOWN:
            return text + " ..."
        text += (", " if text else "") + f"{name} {row}" if name != kind else f" {row}"
        kind = name
    return text


def _fault_line(fault: Fault) -> str:
    share, where = _share(fault), _words(fault)
    start = "! " if fault.level == "finding" else "  note: "
    return start + fault.text + (f", {share}" if share else "") + (f": {where}" if where else "")


def _fault(values: Dict[str, Any]) -> Fault:
    values["elements"] = {ElementType(type): rows for type, rows in values["elements"].items()}
    return Fault(**values)


def _summary(values: Mapping[str, Any]) -> KindSummary:
    quality: Dict[str, Any] = dict(values.get("quality", {}))
    if quality:
        quality["histogram"] = tuple(quality["histogram"])
    return KindSummary(values["count"], **quality)


def _summary_fields(kind: KindSummary) -> Dict[str, Any]:
    if kind.min is None or kind.histogram is None:
        return {"count": kind.count}
    quality: Dict[str, Any] = {**asdict(kind), "histogram": list(kind.histogram)}
    for name in ("min", "mean", "max"):
        quality[name] = None if np.isnan(quality[name]) else quality[name]
    return {"count": quality.pop("count"), "quality": quality}


def _fault_fields(fault: Fault) -> Dict[str, Any]:
    ids: Dict[str, List[int]] = {KIND_WORDS[type][0]: rows.tolist() for type, rows in fault.elements.items()}
    if len(fault.nodes):
        ids = {"node": fault.nodes.tolist()}
    first_at = None if fault.first_at is None else list(fault.first_at)
    fields = {name: getattr(fault, name) for name in ("code", "level", "count", "of", "text")}
    return {**fields, "first_at": first_at, "ids": ids}


def rules_text(rules: Optional[Rules]) -> Optional[str]:
    """Rules as JSON."""
    if rules is None:
        return None
    try:
        if isinstance(rules, Mapping):
            return json.dumps(rules)
        if isinstance(rules, str) and rules.lstrip().startswith("{"):
            return rules.encode("utf-8", "replace").decode()
        return Path(rules).read_text(encoding="utf-8")
    except (OSError, TypeError, ValueError, RecursionError) as problem:
        raise Error("check", None, "rules", f"cannot be read: {problem}") from None


def check(
    points: ArrayLike,
    cells: Mapping[Any, ArrayLike],
    *,
    profile: Optional[str] = None,
    rules: Optional[Rules] = None,
    facets: Optional[Tuple[int, int, int]] = None,
) -> Verdict:
    """What is wrong in a mesh, by the rules of `tessolv check`; see `Mesh.check`.

    Unlike a `Mesh` the arrays may hold anything: indices of nodes that are not there are a finding.

    Args:
        points: shape (nodes, 2 or 3).
        cells: for each element type an array of shape (elements, nodes), in the numbering of the library.
        profile: "default", "solver", "shell" or "closed"; it counts more than one in the rules.
        rules: a dictionary, JSON text or the path of a JSON file; what it leaves out is as in the profile.
        facets: for a surface of an STL file, in which an open edge is a fault: see `Facets`.

    Raises:
        Error: an argument of another form, a profile or rules that do not exist.

    >>> verdict = check([[0, 0], [1, 0], [0, 1], [5, 5]], {6: [[0, 2, 1]]})
    >>> bool(verdict), [(fault.code, fault.count) for fault in verdict.findings]
    (False, [('inverted', 1), ('unused_node', 1)])
    """
    if not isinstance(cells, Mapping):
        raise Error("check", None, "cells", "is no mapping of element types to arrays")
    if not (profile is None or isinstance(profile, str)):
        raise Error("check", None, "profile", "is no text")
    text = rules_text(rules)
    counts = None if facets is None else _facets(facets)
    return Verdict(_tessolv.check(points, list(cells), list(cells.values()), profile, text, counts))


def _facets(facets: Any) -> Tuple[int, int, int, str]:
    try:
        in_file, read, kept = (int(count) for count in facets)
    except (TypeError, ValueError, OverflowError):
        raise Error("check", None, "facets", "are no three numbers") from None
    if not 0 <= kept <= read <= in_file < 2**63:
        raise Error("check", None, "facets", "do not descend from those in the file to those kept")
    return in_file, read, kept, str(getattr(facets, "why_not_read", ""))

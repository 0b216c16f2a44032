"""Every refusal that the table of the module knows."""

import os
import pickle

import numpy as np
import pytest

import tessolv as ts
from tessolv import _tessolv

P2 = np.array([[0.0, 0], [1, 0], [0, 1], [1, 1]])
P3 = np.column_stack([P2, [0, 0, 0, 1]])
P4 = np.zeros((4, 4))
T3 = np.array([[0, 1, 2]], dtype=np.uint32)
BAD = np.array([[0, 1, 9]], dtype=np.uint32)
HOLE = np.array([[0, 1, ts.NONE_INDEX]], dtype=np.uint32)
WIDE = np.array([[0, 1, 2, 3]], dtype=np.uint32)
FIELD = np.array([[1, 0, 1]], dtype=np.float32)
PYRAMID = np.array([[0, 1, 2, 3, 0]], dtype=np.uint32)
NOWHERE = os.path.join(os.sep, "nowhere", "at", "all")

# (form, code, argument): a call that is refused so. `tmp` is a file that can be written.
CASES = {
    ("get_neighbors", -1, "connect"): lambda tmp: ts.get_neighbors(WIDE, 6),
    ("get_neighbors", -2, "type"): lambda tmp: ts.get_neighbors([[0, 1, 2, 3, 4, 5]], ts.EL_WEDGE6),
    ("get_boundaries", -1, "connect"): lambda tmp: ts.get_boundaries(WIDE, T3, 6),
    ("get_boundaries", -2, "neighbors"): lambda tmp: ts.get_boundaries(T3, WIDE, 6),
    ("get_ancestors", -1, "connect"): lambda tmp: ts.get_ancestors(HOLE),
    ("copy_edges", -1, "connect"): lambda tmp: ts.copy_edges(WIDE, 6),
    ("copy_edges", -3, "edges"): lambda tmp: ts.copy_edges(T3, 6, T3),
    ("copy_edges/range", -1, "connect"): lambda tmp: ts.copy_edges([WIDE], [6]),
    ("copy_edges/range", -3, "type"): lambda tmp: ts.copy_edges([T3], [6, 6]),
    ("copy_edges/range", -4, "edges"): lambda tmp: ts.copy_edges([T3], [6], T3),
    ("NodeDetector", -1, "pos"): lambda tmp: ts.NodeDetector(P4),
    ("NodeDetector", -2, "nodes"): lambda tmp: ts.NodeDetector(P3, [4]),
    ("NodeDetector/connect", -1, "pos"): lambda tmp: ts.NodeDetector(P4, connect=T3),
    ("NodeDetector/connect", -2, "connect"): lambda tmp: ts.NodeDetector(P3, connect=BAD),
    ("merge/nodes", -1, "pos"): lambda tmp: ts.merge(P4, nodes=[0], tolerance=1),
    ("merge/nodes", -2, "nodes"): lambda tmp: ts.merge(P3, nodes=[4], tolerance=1),
    ("merge/nodes", -4, "tolerance"): lambda tmp: ts.merge(P3, nodes=[0], tolerance=-1),
    ("merge/connect", -1, "pos"): lambda tmp: ts.merge(P4, T3),
    ("merge/connect", -2, "connect"): lambda tmp: ts.merge(P3, BAD),
    ("merge/connect", -5, "tolerance"): lambda tmp: ts.merge(P3, T3, float("nan")),
    ("merge/connect", -6, "mode"): lambda tmp: ts.merge(P3, T3, mode=3),
    ("merge/pos", -1, "pos"): lambda tmp: ts.merge(P4, tolerance=1),
    ("merge/pos", -3, "tolerance"): lambda tmp: ts.merge(P3, tolerance=-1),
    ("get_IDs", -2, "connect2"): lambda tmp: ts.get_IDs(T3, WIDE),
    ("append", -1, "A"): lambda tmp: ts.append(T3, WIDE),
    ("append", -3, "cols"): lambda tmp: ts.append(T3, T3, [1]),
    ("append/field", -1, "A"): lambda tmp: ts.append(FIELD, FIELD[:, :2], [0]),
    ("append/field", -3, "B"): lambda tmp: ts.append(FIELD, FIELD[:, :2]),
    ("simplify", -2, "connect"): lambda tmp: ts.simplify(P3, BAD),
    ("copy_mesh", -3, "connect"): lambda tmp: ts.copy_mesh(P3, BAD),
    ("shape_qualities", -2, "connect"): lambda tmp: ts.shape_qualities(P3, WIDE, 6),
    ("shape_qualities", -3, "type"): lambda tmp: ts.shape_qualities(P3, WIDE, ts.EL_SOLID_MIX),
    ("shape_qualities", -4, "type"): lambda tmp: ts.shape_qualities(P3, [T3], []),
    ("edge_lengths", -2, "edges"): lambda tmp: ts.edge_lengths(P3, T3),
    ("edge_qualities", -2, "connect"): lambda tmp: ts.edge_qualities(P3, WIDE, 6, [1, 1, 1, 1]),
    ("edge_qualities", -4, "type"): lambda tmp: ts.edge_qualities(P3, [T3], [], [1, 1, 1, 1]),
    ("overwrite_invalid_metrics", -1, "metrics"): lambda tmp: ts.overwrite_invalid_metrics(FIELD[:, :2], [1]),
    ("overwrite_invalid_metrics", -2, "defaults"): lambda tmp: ts.overwrite_invalid_metrics(FIELD, FIELD[:, :2]),
    ("metrics_aniso3d_to_aniso2d", -1, "M3"): lambda tmp: ts.metrics_aniso3d_to_aniso2d(FIELD, np.zeros((1, 6))),
    ("metrics_aniso3d_to_aniso2d", -2, "bases"): lambda tmp: ts.metrics_aniso3d_to_aniso2d(
        np.zeros((1, 6)), np.zeros((2, 6))
    ),
    ("metrics_iso_to_aniso2d", -2, "bases"): lambda tmp: ts.metrics_iso_to_aniso2d([1], np.zeros((2, 6))),
    ("inc_bounding_box", -1, "pos"): lambda tmp: ts.inc_bounding_box(P4),
    ("inc_bounding_box", -2, "nodes"): lambda tmp: ts.inc_bounding_box(P3, [4]),
    ("inc_bounding_box/connect", -1, "pos"): lambda tmp: ts.inc_bounding_box(P4, connect=T3),
    ("inc_bounding_box/connect", -2, "connect"): lambda tmp: ts.inc_bounding_box(P3, connect=BAD),
    ("clip", -2, "connect"): lambda tmp: ts.clip(P3, BAD, [0, 0], [1, 0]),
    ("clip", -4, "N"): lambda tmp: ts.clip(P3, T3, [0, 0], [0, 0]),
    ("clip", -5, "to"): lambda tmp: ts.clip(P3, T3, [0, 0], [1, 0], to=WIDE),
    ("vtk_convert", -1, "connect"): lambda tmp: ts.vtk_convert(WIDE, 6),
    ("vtk_convert", -2, "type"): lambda tmp: ts.vtk_convert(PYRAMID, ts.EL_PYRAMID5),
    ("vtk_output/cells", -1, "file"): lambda tmp: ts.vtk_output(NOWHERE, P3, cells=ts.vtk_convert(T3, 6)),
    ("vtk_output/cells", -2, "pos"): lambda tmp: ts.vtk_output(tmp, P4, cells=ts.vtk_convert(T3, 6)),
    ("vtk_output", -1, "file"): lambda tmp: ts.vtk_output(NOWHERE, P3, T3, 6),
    ("vtk_output", -2, "type"): lambda tmp: ts.vtk_output(tmp, P3, PYRAMID, ts.EL_PYRAMID5),
    ("vtk_output/pos", -2, "pos"): lambda tmp: ts.vtk_output(tmp, P4, T3, 6),
    ("vtk_output", -3, "connect"): lambda tmp: ts.vtk_output(tmp, P3, BAD, 6),
    ("vtk_output", -5, "type"): lambda tmp: ts.vtk_output(tmp, P3, [T3], []),
    ("medit_output", -1, "filename"): lambda tmp: ts.medit_output(NOWHERE, P3, T3, 6),
    ("medit_output", -2, "pos"): lambda tmp: ts.medit_output(tmp, P4, T3, 6),
    ("medit_output", -3, "connect"): lambda tmp: ts.medit_output(tmp, P3, WIDE, 6),
    ("medit_output", -5, "type"): lambda tmp: ts.medit_output(tmp, P3, [T3], []),
    ("medit_output/refs", -1, "filename"): lambda tmp: ts.medit_output(NOWHERE, P3, T3, 6, [0]),
    ("medit_output/refs", -2, "pos"): lambda tmp: ts.medit_output(tmp, P4, T3, 6, [0]),
    ("medit_output/refs", -3, "connect"): lambda tmp: ts.medit_output(tmp, P3, WIDE, 6, [0]),
    ("medit_output/refs", -5, "refs"): lambda tmp: ts.medit_output(tmp, P3, T3, 6, [0, 0]),
    ("medit_tensor", -1, "filename"): lambda tmp: ts.medit_tensor(NOWHERE, FIELD),
    ("medit_tensor", -2, "M"): lambda tmp: ts.medit_tensor(tmp, FIELD[:, :2]),
    ("ensight_output", -1, "filename"): lambda tmp: ts.ensight_output(NOWHERE, P3, T3, 6),
    ("ensight_output", -2, "pos"): lambda tmp: ts.ensight_output(tmp, P4, T3, 6),
    ("ensight_output", -3, "connect"): lambda tmp: ts.ensight_output(tmp, P3, WIDE, 6),
    ("ensight_output", -5, "type"): lambda tmp: ts.ensight_output(tmp, P3, [T3], []),
    ("STL_output", -1, "filename"): lambda tmp: ts.STL_output(NOWHERE, P3, T3, True),
    ("STL_output", -2, "pos"): lambda tmp: ts.STL_output(tmp, P4, T3, True),
    ("STL_output", -3, "connect"): lambda tmp: ts.STL_output(tmp, P3, BAD, True),
    ("STL_input", -1, "filename"): lambda tmp: ts.STL_input(NOWHERE, True),
    ("WavefrontOBJ_output", -1, "filename"): lambda tmp: ts.WavefrontOBJ_output(NOWHERE, P3),
    ("WavefrontOBJ_output", -2, "pos"): lambda tmp: ts.WavefrontOBJ_output(tmp, P4),
    ("WavefrontOBJ_output", -3, "normals"): lambda tmp: ts.WavefrontOBJ_output(tmp, P3, P2),
    ("WavefrontOBJ_output", -4, "uvs"): lambda tmp: ts.WavefrontOBJ_output(tmp, P3, P3, P3),
    ("WavefrontOBJ_output", -5, "tria_connect"): lambda tmp: ts.WavefrontOBJ_output(tmp, P3, P3, P2, WIDE),
    ("WavefrontOBJ_output", -6, "quad_connect"): lambda tmp: ts.WavefrontOBJ_output(tmp, P3, P3, P2, T3, T3),
    ("WavefrontOBJ_input", -1, "filename"): lambda tmp: ts.WavefrontOBJ_input(NOWHERE),
}


def test_no_refusal_is_left_out():
    assert set(CASES) == {row[:3] for row in _tessolv.refusals()}


@pytest.mark.parametrize("case", CASES, ids=lambda case: "{0}{1}".format(*case))
def test_a_refusal_names_function_code_and_argument(case, tmp_path):
    form, code, argument = case
    with pytest.raises(ts.Error) as caught:
        CASES[case](tmp_path / "file")
    error = caught.value
    assert (error.function, error.code, error.argument) == (form.split("/")[0], code, argument)
    assert error.reason == next(row[3] for row in _tessolv.refusals() if row[:3] == case)
    assert str(error) == f"{error.function}: {argument}: {error.reason} (code {code})"


def test_errors_can_be_pickled_and_caught_as_value_errors():
    with pytest.raises(ValueError) as caught:
        ts.get_neighbors(WIDE, 6)
    again = pickle.loads(pickle.dumps(caught.value))
    assert isinstance(again, ts.Error) and again.code == -1 and str(again) == str(caught.value)


REFUSED_EARLIER = {
    "connect is missing": lambda: ts.get_neighbors(None, 6),  # type: ignore[arg-type]
    "one dimension": lambda: ts.get_neighbors([0, 1, 2], 6),
    "three dimensions": lambda: ts.get_neighbors(np.zeros((1, 1, 3), np.uint32), 6),
    "floats as indices": lambda: ts.get_neighbors([[0.0, 1.0, 2.0]], 6),
    "a mask as indices": lambda: ts.get_neighbors([[True, False, True]], 6),
    "texts": lambda: ts.translate([["a", "b", "c"]], [0, 0, 0]),
    "objects": lambda: ts.translate(np.array([[object()] * 3]), [0, 0, 0]),
    "complex numbers": lambda: ts.translate([[1j, 0, 0]], [0, 0, 0]),
    "rows of different lengths": lambda: ts.get_neighbors([[0, 1, 2], [0, 1]], 6),
    "no type": lambda: ts.get_neighbors(T3, "tria"),  # type: ignore[arg-type]
    "a type that does not exist": lambda: ts.get_neighbors(T3, 21),
    "a huge type": lambda: ts.get_neighbors(T3, 2**80),
    "one number": lambda: ts.translate(P3, [1]),
    "a point of texts": lambda: ts.translate(P3, ["a", "b"]),
    "a huge bound": lambda: ts.check_IDs(T3, 2**40),
    "no histogram": lambda: ts.shape_qualities(P3, T3, 6, 3),  # type: ignore[call-overload]
    "a bad tensor": lambda: ts.eigen_pairs([1, 2]),
    "a bad dimension": lambda: ts.metric_iso_to_aniso(1, 4),
    "a broken dimension": lambda: ts.metric_iso_to_aniso(1, 2.5),  # type: ignore[arg-type]
    "a size in words": lambda: ts.metric_iso_to_aniso("one"),  # type: ignore[arg-type]
    "a tolerance in words": lambda: ts.merge(P3, T3, "near"),  # type: ignore[call-overload]
    "no factor": lambda: ts.zoom(P3, [0, 0, 0], None),  # type: ignore[arg-type]
    "a type without an axis, in a list": lambda: ts.shape_qualities(P3, [T3, T3], np.array(30)),  # type: ignore[call-overload]
    "cells of one number": lambda: ts.vtk_convert(T3, 6, to=3),  # type: ignore[arg-type]
    "a negative number of cells": lambda: ts.vtk_convert(T3, 6, to=ts.Cells(-1, T3[0], T3[0])),
    "a negative number of bins": lambda: ts.Histogram(0, 1, -3),
    "a bound in words": lambda: ts.Histogram("low"),  # type: ignore[arg-type]
    "boxes of one corner": lambda: ts.NodeDetector(P3).in_box([0, 0, 0], [[1, 1, 1]]),
    "an insertion of one number": lambda: ts.NodeDetector(P3).insert(1),
    "five columns of tetrahedra": lambda: ts.to_numbering([[0, 1, 2, 3, 4]], ts.EL_TETRA4, "vtk"),
    "tetrahedra without an axis": lambda: ts.from_numbering([0, 1, 2, 3], ts.EL_TETRA4, "vtk"),
    "the numbering of no type": lambda: ts.to_numbering(T3, 99, "vtk"),
    "the numbering of a mixed kind": lambda: ts.to_numbering(T3, ts.EL_FACE_MIX, "vtk"),
}


@pytest.mark.parametrize("name", REFUSED_EARLIER)
def test_what_the_library_never_sees_has_no_code(name):
    with pytest.raises(ts.Error) as caught:
        REFUSED_EARLIER[name]()
    assert caught.value.code is None and caught.value.argument and caught.value.reason


def test_exhausted_memory_is_a_memory_error():
    huge = np.broadcast_to(np.zeros((1, 3)), (2**44, 3))
    with pytest.raises(MemoryError):
        ts.translate(huge, [1, 0, 0])
    nothing_but_columns = np.empty((2**40, 0), np.uint32)
    with pytest.raises(MemoryError):
        ts.shape_qualities(P3, nothing_but_columns, ts.EL_TRIA3)

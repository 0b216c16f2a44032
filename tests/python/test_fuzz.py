"""Whatever is passed: a result, an Error, a MemoryError or a TypeError, never a crash."""

import warnings
from typing import Any

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp

import tessolv as ts

numbers = st.one_of(st.integers(-3, 12), st.sampled_from([2**31, 2**32 - 1, 2**32, 2**63, -(2**31)]))
floats = st.one_of(st.floats(width=32), st.sampled_from([0.0, 1.0, 1e300, -1e300, float("nan"), float("inf")]))
shapes = st.one_of(
    st.tuples(st.integers(0, 6), st.integers(0, 10)), hnp.array_shapes(min_dims=0, max_dims=3, min_side=0, max_side=5)
)
dtypes = st.sampled_from(["u4", "i4", "i8", "u8", "u1", "f8", "f4", "f2", "g", "?", "c16", ">u4", ">f8", "O", "U3"])


@st.composite
def hostile_arrays(draw):
    shape, dtype = draw(shapes), np.dtype(draw(dtypes))
    random = np.random.default_rng(draw(st.integers(0, 2**32 - 1)))
    values = random.integers(0, draw(st.sampled_from([1, 5, 12])), shape).astype(object)
    if values.size and dtype.kind in "uifgO":
        for _ in range(draw(st.integers(0, 3))):
            values[np.unravel_index(draw(st.integers(0, values.size - 1)), shape)] = draw(
                numbers if dtype.kind in "ui" else floats
            )
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        try:
            array = np.asarray(values).astype(dtype)
        except (OverflowError, ValueError):
            array = np.zeros(shape, dtype)
    way = draw(st.integers(0, 6))
    if way == 1 and array.ndim:
        array = array[::-1]
    elif way == 2:
        array = np.asfortranarray(array)
    elif way == 3:
        array.flags.writeable = False
    elif way == 4 and array.ndim:
        array = np.repeat(array, 2, axis=-1)[..., ::2]
    elif way == 5 and array.ndim:
        array = np.broadcast_to(array[:1], (7, *array.shape[1:])) if array.shape[0] else array
    elif way == 6 and dtype.kind in "uif":
        array = np.frombuffer(b"\0" + array.tobytes(), np.uint8)[1:].view(array.dtype).reshape(array.shape)
    return array


good_pos = st.sampled_from([np.arange(24.0).reshape(12, 2) % 7, np.arange(36.0).reshape(12, 3) % 5])
good_connect = st.sampled_from(
    [np.arange(12 * k, dtype=np.uint32).reshape(12, k) * 7 % 12 for k in (2, 3, 4, 5, 6, 8, 10)]
)
junk = st.one_of(
    st.none(), st.integers(-5, 30), floats, st.text(max_size=3), st.binary(max_size=3), st.just(object()), st.just([])
)
anything = st.one_of(
    hostile_arrays(), good_pos, good_connect, junk, st.lists(hostile_arrays(), max_size=3), st.lists(junk, max_size=3)
)
pos = st.one_of(good_pos, good_pos, hostile_arrays(), anything)
connect = st.one_of(good_connect, good_connect, hostile_arrays(), st.lists(good_connect, max_size=3), anything)
types = st.one_of(st.integers(0, 20), st.integers(-5, 30), st.lists(st.integers(0, 20), max_size=3), junk)
some = st.one_of(st.none(), anything)
flag = st.booleans()
tolerance = st.one_of(floats, st.just(0.5))
point = st.one_of(st.just([0.0, 1.0, 2.0]), anything)

rules = st.one_of(
    junk,
    st.recursive(junk, lambda inner: st.dictionaries(st.sampled_from(["faults", "quality", "all", "bad", "x"]), inner)),
)

FUNCTIONS: dict[str, tuple[Any, ...]] = {
    "check_IDs": (ts.check_IDs, connect, numbers, types),
    "freeze": (ts.freeze, anything),
    "get_neighbors": (ts.get_neighbors, connect, types, flag),
    "get_boundaries": (ts.get_boundaries, connect, connect, types),
    "get_ancestors": (ts.get_ancestors, connect, some),
    "get_connex_parts": (ts.get_connex_parts, connect),
    "reorder": (lambda n, c: ts.get_connex_parts(n, connect=c), connect, connect),
    "copy_edges": (ts.copy_edges, connect, types, some),
    "merge": (ts.merge, pos, connect, tolerance, numbers),
    "merge_nodes": (lambda p, a, b, t: ts.merge(p, nodes=a, nodes2=b, tolerance=t), pos, anything, some, tolerance),
    "merge_pos": (lambda p, t, o: ts.merge(p, tolerance=t, out=o), pos, tolerance, some),
    "merge_out": (lambda p, c, t, o: ts.merge(p, c, t, out=o), pos, connect, tolerance, some),
    "closest": (lambda p, n, q: ts.NodeDetector(p, n).closest(q), pos, some, pos),
    "closest_to_nodes": (lambda p, c, q: ts.NodeDetector(p, connect=c).closest_to_nodes(q), pos, some, anything),
    "in_box": (lambda p, a, b: ts.NodeDetector(p).in_box(a, b), pos, pos, pos),
    "insert": (lambda p, a, c: (ts.NodeDetector(p).insert(a), ts.NodeDetector(p).insert(connect=c)), pos, anything, connect),
    "unique_indices": (lambda a, b, c: ts.unique_indices(a, b, to=c), anything, some, some),
    "count_unique_indices": (ts.count_unique_indices, connect),
    "change_indices": (lambda a, b, o: ts.change_indices(a, b, out=o), connect, anything, some),
    "permutation": (lambda a, b, o: ts.permutation(a, b, out=o), anything, anything, some),
    "get_IDs": (ts.get_IDs, connect, connect, flag),
    "append": (ts.append, anything, anything, some),
    "simplify": (lambda p, c, o: ts.simplify(p, c, out=o), pos, connect, some),
    "copy_mesh": (ts.copy_mesh, pos, connect),
    "remove_degenerated": (ts.remove_degenerated, connect),
    "shape_qualities": (ts.shape_qualities, pos, connect, types),
    "edge_lengths": (ts.edge_lengths, pos, connect),
    "edge_qualities": (ts.edge_qualities, pos, connect, types, anything),
    "check": (lambda p, t, c, f: ts.check(p, {t: c, 6: c}, facets=f), pos, types, connect, st.one_of(st.none(), junk)),
    "check_rules": (lambda r, p: ts.check([[0, 0]], {}, rules=r, profile=p), rules, st.one_of(st.just("shell"), junk)),
    "histogram": (lambda v: ts.Histogram().process(v), anything),
    "tensors": (lambda a, b: (ts.minimum_metric(a, b), ts.eigen_pairs(a), ts.is_valid_metric(b)), point, point),
    "planes": (lambda h, a, b: (ts.metric_iso_to_aniso2d(h, a), ts.metric_aniso3d_to_aniso2d(b, a)), tolerance, point, point),
    "are_valid_metrics": (ts.are_valid_metrics, anything, some),
    "overwrite_invalid_metrics": (lambda a, b, o: ts.overwrite_invalid_metrics(a, b, out=o), anything, anything, some),
    "metrics_to_2d": (lambda a, b: (ts.metrics_aniso3d_to_aniso2d(a, b)), anything, anything),
    "sizes_to_2d": (ts.metrics_iso_to_aniso2d, anything, anything),
    "translate": (lambda p, t, n, o: ts.translate(p, t, n, out=o), pos, point, some, some),
    "rotate": (lambda p, a, b, c: ts.rotate(p, a, b, connect=c), pos, point, point, some),
    "zoom": (ts.zoom, pos, point, tolerance, some),
    "inc_bounding_box": (lambda p, n, a, b: ts.inc_bounding_box(p, n, min=a, max=b), pos, some, some, some),
    "clip": (lambda p, c, a, b, t: ts.clip(p, c, a, b, to=t), pos, connect, point, point, some),
    "vtk_convert": (ts.vtk_convert, connect, types),
    "vtk_cells": (lambda p, n, a, b: ts.vtk_output("/dev/null", p, cells=ts.Cells(n, a, b)), pos, numbers, anything, anything),
    "vtk_output": (lambda p, c, t: ts.vtk_output("/dev/null", p, c, t), pos, connect, types),
    "medit_output": (lambda p, c, t, r: ts.medit_output("/dev/null", p, c, t, r), pos, connect, types, some),
    "medit_tensor": (lambda m: ts.medit_tensor("/dev/null", m), anything),
    "ensight_output": (lambda p, c, t: ts.ensight_output("/dev/null", p, c, t), pos, connect, types),
    "STL_output": (lambda p, c, f: ts.STL_output("/dev/null", p, c, f), pos, connect, flag),
    "OBJ_output": (lambda *a: ts.WavefrontOBJ_output("/dev/null", *a), pos, some, some, some, some),
    "STL_input": (ts.STL_input, junk, flag),
    "OBJ_input": (ts.WavefrontOBJ_input, junk),
}  # fmt: skip


@pytest.mark.parametrize("name", FUNCTIONS)
@given(data=st.data())
def test_nothing_crashes(name, data):
    function, *strategies = FUNCTIONS[name]
    arguments = [data.draw(strategy) for strategy in strategies]
    try:
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")
            function(*arguments)
    except (ts.Error, TypeError, MemoryError):
        pass


@given(st.integers(0, 2**32 - 1), st.sampled_from([2, 3]))
def test_coordinates_that_change_under_a_detector_do_no_harm(seed, dimension):
    random = np.random.default_rng(seed)
    pos = random.uniform(0, 1, (200, dimension))
    detector = ts.NodeDetector(pos, nodes=random.integers(0, 200, 150))
    for values in (random.uniform(-9, 9, pos.shape), 0.0, np.nan, np.inf):
        pos[...] = values
        detector.insert(random.integers(0, 200, 20))
        found = detector.closest(random.uniform(-1, 2, (30, dimension)))
        assert (found < 200).all()
        assert (detector.closest_to_nodes(np.arange(200)) < 200).all()
        nodes, _ = detector.in_box(random.uniform(-1, 1, (5, dimension)), random.uniform(0, 2, (5, dimension)))
        assert (nodes < 200).all()

"""Where arrays are used as they are, what is converted, and who keeps the memory."""

import gc
import resource
import tracemalloc
import weakref
from typing import Any

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import tessolv as ts
from meshes import grid, shuffled
from tessolv import _tessolv

MESH = shuffled(ts.EL_TETRA4, 3, 1)


def peak_growth(f):
    """Bytes by which the memory of NumPy grows at most while f runs; the library's own results are not among them."""
    gc.collect()
    tracemalloc.start()
    before = tracemalloc.get_traced_memory()[0]
    tracemalloc.reset_peak()
    result = f()
    peak = tracemalloc.get_traced_memory()[1]
    tracemalloc.stop()
    assert result is not None
    return peak - before


BIG = grid(ts.EL_TETRA4, 20)
QUADRATIC = np.zeros((len(BIG.connect), 10), dtype=np.uint32)
QUADRATIC[:, :4] = BIG.connect


@pytest.mark.parametrize(
    "f",
    [
        lambda: ts.get_neighbors(BIG.connect, BIG.type, raw=True),
        lambda: ts.shape_qualities(BIG.pos, BIG.connect, BIG.type),
        lambda: ts.copy_edges(BIG.connect, BIG.type),
        lambda: ts.merge(BIG.pos, nodes=np.arange(9, dtype=np.uint32), tolerance=0.1),
        lambda: ts.clip(BIG.pos, BIG.connect, [1, 1, 1], [1, 0, 0]),
        lambda: ts.NodeDetector(BIG.pos),
        lambda: ts.translate(BIG.pos, [1, 1, 1]),
        lambda: ts.simplify(BIG.pos, BIG.connect, raw=True),
        lambda: ts.translate(BIG.pos, [0, 0, 0], out=BIG.pos),
        lambda: ts.change_indices(BIG.connect, np.arange(3, dtype=np.uint32), out=BIG.connect),
        # The corners of a quadratic mesh: parts of rows are used where they are, too.
        lambda: ts.shape_qualities(BIG.pos, QUADRATIC[:, :4], BIG.type),
    ],
)
def test_inputs_of_the_right_form_are_not_copied(f):
    assert peak_growth(f) < BIG.connect.nbytes / 20


def test_other_forms_are_copied_once():
    as_int64 = BIG.connect.astype(np.int64)
    grown = peak_growth(lambda: ts.get_neighbors(as_int64, BIG.type, raw=True))
    assert BIG.connect.nbytes * 0.9 < grown < BIG.connect.nbytes * 1.2


def forms_of(array):
    """The same entries in other types and layouts."""
    wide = np.zeros((2 * len(array), array.shape[1] + 3), array.dtype)
    wide[::2, 1:-2] = array
    misaligned = np.frombuffer(b"\0" + array.tobytes(), np.uint8)[1:].view(array.dtype).reshape(array.shape)
    yield from (array.tolist(), np.asfortranarray(array), wide[::2, 1:-2], array[::-1][::-1], misaligned)
    yield from (array.astype(array.dtype.newbyteorder()), np.ma.masked_array(array))
    if array.dtype.kind == "u":
        yield from (array.astype(t) for t in ("i4", "i8", "u8", "u2", "i2", "u1", ">i4", ">u8"))
    else:
        yield from (array.astype("f4"), array.astype("g"), array.astype("i8"), array.astype(">f8"))


def test_every_form_gives_the_same_result():
    pos = np.round(MESH.pos * 8)
    wanted = ts.shape_qualities(pos, MESH.connect, MESH.type)
    neighbors = ts.get_neighbors(MESH.connect, MESH.type)
    for form in forms_of(MESH.connect):
        np.testing.assert_array_equal(ts.shape_qualities(pos, form, MESH.type), wanted)
        np.testing.assert_array_equal(ts.get_neighbors(form, MESH.type), neighbors)
    for form in forms_of(pos):
        np.testing.assert_array_equal(ts.shape_qualities(form, MESH.connect, MESH.type), wanted)


@pytest.mark.parametrize("dtype", ["i8", "i4", "u8", "i2"])
def test_the_offending_entry_is_named(dtype):
    connect = MESH.connect.astype(dtype)
    bad = {"i8": 2**32, "i4": -2, "u8": 2**64 - 1, "i2": -300}[dtype]
    connect[7, 2] = bad
    for form in (connect, np.asfortranarray(connect)):
        with pytest.raises(ts.Error) as caught:
            ts.get_neighbors(form, MESH.type)
        assert caught.value.argument == "connect" and caught.value.code is None
        assert f"[7, 2] = {bad} " in caught.value.reason
    with pytest.raises(ts.Error) as caught:
        ts.unique_indices(connect[7])
    assert f"[2] = {bad} " in caught.value.reason


def test_minus_one_is_none_in_signed_arrays():
    assert ts.unique_indices(np.array([3, -1, 3], dtype=np.int32)).tolist() == [3]
    table = ts.get_neighbors(MESH.connect, MESH.type)
    raw = ts.get_neighbors(MESH.connect, MESH.type, raw=True)
    np.testing.assert_array_equal(
        ts.get_boundaries(MESH.connect, table, MESH.type), ts.get_boundaries(MESH.connect, raw, MESH.type)
    )


def test_results_are_arrays_of_the_usual_kind():
    for result in (
        ts.get_neighbors(MESH.connect, MESH.type, raw=True),
        ts.shape_qualities(MESH.pos, MESH.connect, MESH.type),
        ts.translate(MESH.pos, [1, 2, 3]),
        ts.remove_degenerated(MESH.connect).connect,
        ts.clip(MESH.pos, MESH.connect, [1, 1, 1], [1, 0, 0]),
    ):
        assert result.flags.c_contiguous and result.flags.aligned and result.flags.writeable and result.size
        result[...] = 1
        assert (result == 1).all()


def test_buffers_go_with_their_last_array():
    gc.collect()
    before = _tessolv.held_buffers()
    merged = ts.simplify(MESH.pos, MESH.connect[:5], raw=True)
    assert _tessolv.held_buffers() == before + 3
    part = merged.connect[1:3]
    copy = part.copy()
    del merged
    assert _tessolv.held_buffers() == before + 1
    assert (part == copy).all()
    del part
    assert _tessolv.held_buffers() == before


@given(st.permutations(range(5)))
def test_nothing_dangles_in_any_order_of_del(order):
    before = _tessolv.held_buffers()
    pos = MESH.pos.copy()
    detector = ts.NodeDetector(pos)
    moved = ts.translate(pos, [0, 0, 0])
    parts = ts.get_connex_parts(ts.get_neighbors(MESH.connect, MESH.type, raw=True))
    objects: dict[int, Any] = {0: pos, 1: detector, 2: moved, 3: parts.elements[::2], 4: detector.copy()}
    checks: dict[int, Any] = {
        0: lambda o: (o == MESH.pos).all(),
        1: lambda o: o.closest(MESH.pos[3]) == 3,
        2: lambda o: (o == MESH.pos).all(),
        3: lambda o: o[0] == 0,
        4: lambda o: o.closest(MESH.pos[3]) == 3,
    }
    del pos, detector, moved, parts
    for i in order:
        del objects[i]
        assert all(checks[k](o) for k, o in objects.items())
    assert _tessolv.held_buffers() == before


def test_arguments_are_let_go():
    pos, connect = MESH.pos.copy(), MESH.connect.copy()
    watched: list[Any] = [weakref.ref(pos), weakref.ref(connect)]
    ts.merge(pos, connect, 0.1)
    detector = ts.NodeDetector(pos)
    with pytest.raises(ts.Error):
        ts.shape_qualities(pos, connect, ts.EL_SOLID_MIX)
    del connect
    assert watched[1]() is None
    del pos
    assert watched[0]() is not None
    detector.clear()
    assert watched[0]() is None


def test_memory_does_not_grow():
    def work():
        for _ in range(30):
            table = ts.get_neighbors(BIG.connect, BIG.type)
            ts.simplify(BIG.pos, BIG.connect[:9])
            ts.get_boundaries(BIG.connect, table, BIG.type)
            with pytest.raises(ts.Error):
                ts.get_neighbors(BIG.connect, ts.EL_WEDGE6)

    work()
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    work()
    grown = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before
    assert grown * 1024 < 5 * BIG.connect.nbytes


def test_out_must_take_the_result():
    pos = MESH.pos.copy()
    read_only = pos.copy()
    read_only.flags.writeable = False
    for out in (pos[:-1], pos[:, :2], pos.astype(np.float32), np.asfortranarray(pos), read_only, pos.tolist(), 3):
        with pytest.raises(ts.Error) as caught:
            ts.translate(pos, [1, 0, 0], out=out)
        assert caught.value.argument == "out"
    assert (pos == MESH.pos).all()


def test_frozen_arrays_cannot_be_written_to():
    frozen = ts.freeze(MESH.connect)
    assert ts.is_frozen(frozen) and (frozen == MESH.connect).all()
    with pytest.raises(ValueError):
        frozen.flags.writeable = True
    with pytest.raises(ValueError):
        frozen[0, 0] = 1
    assert ts.is_frozen(frozen[2:]) and ts.is_frozen(frozen[:, :2])
    read_only = MESH.connect.copy()
    view = read_only[:]
    read_only.flags.writeable = False
    assert not ts.is_frozen(read_only) and not ts.is_frozen(view) and not ts.is_frozen(MESH.connect)
    view.flags.writeable = False
    assert not ts.is_frozen(view)
    with pytest.raises(TypeError):
        ts.freeze(np.array([object()]))


def test_arguments_that_lie_in_out_are_read_as_they_were():
    sizes = np.array([5, 0, 0, 0], dtype=np.float32)
    assert ts.overwrite_invalid_metrics(sizes[1:], sizes[:-1], out=sizes[1:]).tolist() == [5, 0, 0]
    both = np.array([1, 0, 2, 3, 9, 9], dtype=np.uint32)
    wanted = ts.get_ancestors(both[:4].reshape(2, 2), both[2:].copy()).tolist()
    assert ts.get_ancestors(both[:4].reshape(2, 2), both[2:], out=both[2:]).tolist() == wanted == [0, 0, 1, 1]
    both = np.array([0, 1, 1, 0], dtype=np.uint32)
    assert ts.get_ancestors(both.reshape(2, 2), both, out=both).tolist() == [1, 1, 1, 0]


def test_out_may_be_any_of_the_arguments():
    table = np.array([2, 0, 1], dtype=np.uint32)
    assert ts.change_indices([0, 1, 2], table, out=table).tolist() == [2, 0, 1]
    places = np.array([1, 2, 0], dtype=np.uint32)
    assert ts.permutation([10, 20, 30], places, out=places).tolist() == [30, 10, 20]
    defaults = np.array([5, 6, 7], dtype=np.float32)
    sizes = np.array([0, -1, 3], dtype=np.float32)
    assert ts.overwrite_invalid_metrics(sizes, defaults, out=defaults).tolist() == [5, 6, 3]
    connect = np.array([[0, 1, 2], [1, 4, 2]], dtype=np.uint32)
    none = np.full(5, ts.NONE_INDEX, dtype=np.uint32)
    wanted = ts.get_ancestors(connect, none, raw=True).tolist()
    assert ts.get_ancestors(connect, none, out=connect.ravel()[:5]).tolist() == wanted


def test_out_of_several_may_be_one_another():
    pos = np.array([[0, 0], [1, 0], [1, 1e-9], [2, 0.0]])
    first, second = np.array([[0, 1], [1, 2]], np.uint32), np.array([[2, 3], [3, 0]], np.uint32)
    wanted = [connect.tolist() for connect in ts.merge(pos, [first, second]).connect]
    with pytest.raises(ts.Error) as caught:
        ts.merge(pos, [first, second], out=[first, first])
    assert caught.value.argument == "out" and first.tolist() == [[0, 1], [1, 2]]
    swapped = ts.merge(pos, [first, second], out=[second, first]).connect
    assert swapped[0] is second and [connect.tolist() for connect in swapped] == wanted


def test_out_stays_as_it_was_when_an_argument_is_refused():
    out = np.array([7, 7, 7], dtype=np.uint32)
    with pytest.raises(ts.Error):
        ts.permutation([1, 2, 3], [1, -5, 0], out=out)
    assert out.tolist() == [7, 7, 7]


def test_a_list_of_rows_is_one_array():
    pos, rows = [[0, 0], [0, 0], [1, 0]], [np.array([0, 2]), np.array([1, 2])]
    assert ts.merge(pos, rows, 0.1).connect.tolist() == [[0, 2], [0, 2]]
    assert ts.simplify(pos, rows).connect.tolist() == [[0, 2], [1, 2]]


class Interrupting:
    def __array__(self, *_):
        raise KeyboardInterrupt


@pytest.mark.parametrize(
    "f", [lambda x: ts.get_neighbors(x, 6), lambda x: ts.check_IDs(x, 3), ts.NodeDetector([[0, 0]]).closest, ts.eigen_pairs]
)
def test_an_interrupt_is_no_refusal(f):
    with pytest.raises(KeyboardInterrupt):
        f(Interrupting())

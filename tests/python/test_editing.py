import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st
from hypothesis.extra.numpy import arrays

import tessolv as ts

NONE = ts.NONE_INDEX
ids = st.one_of(st.integers(0, 12), st.just(NONE))
lists = arrays(np.uint32, st.integers(0, 30), elements=ids)


def matrices(columns=st.integers(1, 4), entries=ids):
    return columns.flatmap(lambda k: arrays(np.uint32, st.tuples(st.integers(0, 15), st.just(k)), elements=entries))


def distinct(values):
    return list(dict.fromkeys(v for v in values if v != NONE))


@given(lists, lists, lists)
def test_unique_indices_come_in_order(values, exclude, before):
    assert ts.unique_indices(values).tolist() == distinct(values.tolist())
    wanted = [v for v in distinct(values.tolist()) if v not in exclude]
    assert ts.unique_indices(values, exclude).tolist() == wanted
    assert ts.unique_indices(values, exclude, to=before).tolist() == before.tolist() + wanted


@given(matrices(), matrices())
def test_unique_indices_of_elements_are_counted(first, second):
    wanted = distinct(first.ravel().tolist() + second.ravel().tolist())
    assert ts.unique_indices([first, second]).tolist() == wanted
    assert ts.count_unique_indices([first, second]) == len(wanted)
    assert ts.unique_indices(first).tolist() == distinct(first.ravel().tolist())
    assert ts.count_unique_indices(first) == len(distinct(first.ravel().tolist()))


@given(st.one_of(lists, matrices()), lists)
def test_indices_are_changed_in_a_copy_or_in_place(values, table):
    given_values = values.copy()
    wanted = [table[v] if v < len(table) else v for v in values.ravel().tolist()]
    assert ts.change_indices(values, table).ravel().tolist() == wanted
    assert (values == given_values).all()
    assert ts.change_indices(values, table, out=values) is values
    assert values.ravel().tolist() == wanted


def test_a_table_that_lies_in_out_is_read_as_it_was():
    both = np.array([2, 0, 1, 2, 1], dtype=np.uint32)
    assert ts.change_indices(both, both, out=both).tolist() == [1, 2, 0, 1, 0]
    both = np.array([2, 0, 1, 2, 1], dtype=np.uint32)
    assert ts.change_indices(both[1:], both[:3], out=both[1:]).tolist() == [2, 0, 1, 0]


@given(lists, lists)
def test_values_move_to_their_places(values, perm):
    wanted = values.copy()
    for i, place in enumerate(perm[: len(values)].tolist()):
        if place != i and place < len(values):
            wanted[place] = values[i]
    np.testing.assert_array_equal(ts.permutation(values, perm), wanted)
    numbers = values.astype(float)
    np.testing.assert_array_equal(ts.permutation(numbers, perm), wanted.astype(float))
    assert ts.permutation(numbers, perm, out=numbers) is numbers
    np.testing.assert_array_equal(numbers, wanted.astype(float))


def slow_get_ids(first, second):
    last = {v: i for i, v in enumerate(first) if v != NONE}
    pos_in_1 = [last.get(v, -1) for v in second]
    last_in_2 = {v: j for j, v in enumerate(second) if v != NONE}
    pos_in_2 = [last_in_2.get(v, -1) if last.get(v) == i else -1 for i, v in enumerate(first)]
    return pos_in_1, pos_in_2


@given(lists, lists)
def test_lists_are_found_in_each_other(first, second):
    found = ts.get_IDs(first, second)
    assert (found.pos_in_1.tolist(), found.pos_in_2.tolist()) == slow_get_ids(first.tolist(), second.tolist())


def rotations(nodes):
    return {tuple(np.roll(way, k)) for way in (nodes, nodes[::-1]) for k in range(len(nodes))}


@given(matrices(st.just(3)), matrices(st.just(3)), st.booleans())
def test_elements_are_found_in_each_other(first, second, strict):
    found = ts.get_IDs(first, second, strict)
    for one, other, places in ((first, second, found.pos_in_1), (second, first, found.pos_in_2)):
        for nodes, place in zip(other, places):
            alike = [tuple(nodes)] if strict else rotations(nodes)
            assert place == max((i for i, n in enumerate(one) if tuple(n) in alike), default=-1)


@given(matrices(st.just(3)), matrices(st.just(3)), matrices(st.just(3)))
def test_rows_are_appended(first, second, third):
    wanted = np.concatenate([first, second, third])
    np.testing.assert_array_equal(ts.append(first, [second, third]), wanted)
    points = ts.append(first.astype(float), [second.astype(float), third.astype(float)])
    np.testing.assert_array_equal(points, wanted.astype(float))
    assert points.dtype == np.float64
    field = ts.append(first.astype(np.float32), second.astype(np.float32))
    np.testing.assert_array_equal(field, np.concatenate([first, second]).astype(np.float32))
    assert field.dtype == np.float32


def test_listed_rows_are_appended():
    assert ts.append(np.array([[1, 2]]), [[3, 4], [5, 6]], cols=[1, 1]).tolist() == [[1, 2], [5, 6], [5, 6]]
    sizes = np.array([1, 2], dtype=np.float32)
    assert ts.append(sizes, sizes, cols=[1]).tolist() == [1, 2, 2]
    assert ts.append(sizes, [sizes, sizes]).tolist() == [1, 2, 1, 2, 1, 2]
    assert ts.append(sizes, []).tolist() == [1, 2]


@given(matrices(st.just(3), st.integers(0, 9)))
def test_unused_nodes_are_dropped(connect):
    pos = np.arange(20.0).reshape(10, 2)
    used = distinct(connect.ravel().tolist())
    mesh = ts.simplify(pos, connect)
    if len(used) == 10:
        used = list(range(10))
    np.testing.assert_array_equal(mesh.pos, pos[used])
    new_ids = np.full(10, -1)
    new_ids[used] = np.arange(len(used))
    np.testing.assert_array_equal(mesh.new_IDs, new_ids)
    np.testing.assert_array_equal(mesh.connect, new_ids[connect])
    np.testing.assert_array_equal(pos, np.arange(20.0).reshape(10, 2))
    assert ts.simplify(pos, connect, out=connect).connect is connect
    np.testing.assert_array_equal(connect, mesh.connect)


@given(matrices(st.just(2), st.integers(0, 5)))
def test_elements_are_copied_with_their_nodes(connect):
    pos = np.arange(12.0).reshape(6, 2)
    copy = ts.copy_mesh(pos, connect)
    np.testing.assert_array_equal(copy.pos[:6], pos)
    np.testing.assert_array_equal(copy.pos[copy.connect], pos[connect])
    assert len(copy.pos) == 6 + len(np.unique(connect)) and (copy.connect >= 6).all()


@given(matrices(st.integers(1, 4)))
def test_elements_that_use_a_node_twice_go(connect):
    keep = [len(set(e)) == len(e) for e in ([v for v in e if v != NONE] for e in connect.tolist())]
    left = ts.remove_degenerated(connect)
    np.testing.assert_array_equal(left.connect, connect[keep].reshape(-1, connect.shape[1]))
    np.testing.assert_array_equal(left.new_IDs, np.where(keep, np.cumsum(keep) - 1, -1))


def test_append_tells_columns_from_rows():
    with pytest.raises(ts.Error) as caught:
        ts.append([[1.0, 2.0]], [[1.0, 2.0, 3.0]])
    assert (caught.value.code, caught.value.argument) == (-1, "A")

import copy
from typing import Any

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st
from scipy.spatial import cKDTree

import tessolv as ts
from meshes import FACED, shuffled

seeds = st.integers(0, 2**32 - 1)
dimensions = st.sampled_from([2, 3])


@given(seeds, dimensions, st.integers(1, 300))
def test_closest_is_as_close_as_for_another_tree(seed, dimension, n):
    random = np.random.default_rng(seed)
    pos = random.uniform(0, 1, (n, dimension))
    queries = random.uniform(-0.2, 1.2, (50, dimension))
    distance, _ = cKDTree(pos).query(queries)
    found = ts.NodeDetector(pos).closest(queries)
    assert found.dtype == np.int64
    np.testing.assert_allclose(np.linalg.norm(pos[found] - queries, axis=1), distance, rtol=1e-12)


@given(seeds, dimensions, st.integers(2, 100))
def test_closest_to_a_node_is_another_node(seed, dimension, n):
    pos = np.random.default_rng(seed).uniform(0, 1, (n, dimension))
    distance, _ = cKDTree(pos).query(pos, k=2)
    found = ts.NodeDetector(pos).closest_to_nodes(np.arange(n))
    assert (found != np.arange(n)).all()
    np.testing.assert_allclose(np.linalg.norm(pos[found] - pos, axis=1), distance[:, 1], rtol=1e-12)


@given(seeds, dimensions, st.integers(1, 200))
def test_boxes_hold_what_lies_between_their_corners(seed, dimension, n):
    random = np.random.default_rng(seed)
    pos = random.uniform(0, 1, (n, dimension))
    lower = random.uniform(0, 0.7, (20, dimension))
    upper = lower + random.uniform(0, 0.5, (20, dimension))
    detector = ts.NodeDetector(pos)
    nodes, offsets = detector.in_box(lower, upper)
    for j in range(20):
        inside = np.flatnonzero(((pos >= lower[j]) & (pos <= upper[j])).all(axis=1))
        part = nodes[offsets[j] : offsets[j + 1]]
        assert sorted(part.tolist()) == inside.tolist()
        assert detector.in_box(lower[j], upper[j]).tolist() == part.tolist()


def test_one_query_gives_one_number():
    detector = ts.NodeDetector([[0, 0, 0], [1, 0, 0]])
    assert detector.closest([0.9, 0, 0]) == 1
    assert detector.closest([0.9, 0]) == 1
    assert detector.closest_to_nodes(0) == 1
    assert detector.closest(np.empty((0, 3))).tolist() == []


def test_an_empty_detector_finds_nothing():
    detector = ts.NodeDetector()
    assert len(detector) == 0 and detector.insert([0, 1]) == 0
    assert detector.closest([0, 0]) == -1 and detector.closest([0, 0], raw=True) == ts.NONE_INDEX
    assert detector.in_box([0, 0], [1, 1]).tolist() == []


def test_only_listed_nodes_are_found_until_more_are_inserted():
    pos = np.array([[0, 0], [1, 0], [2, 0], [3, 0]], dtype=float)
    detector = ts.NodeDetector(pos, nodes=[0, 3])
    assert len(detector) == 2 and detector.closest([1.1, 0]) == 0
    assert detector.insert([1, 99, -1]) == 1
    assert detector.closest([1.1, 0]) == 1
    other = detector.copy()
    assert detector.insert(connect=[[2, 3]]) == 2 and len(detector) == 5
    assert len(other) == 3 and other.closest([2.2, 0]) == 3 and detector.closest([2.2, 0]) == 2
    detector.clear()
    assert len(detector) == 0 and other.closest([0, 0]) == 0


def test_a_detector_over_elements_searches_their_nodes():
    pos = np.array([[0, 0], [1, 0], [2, 0], [3, 0]], dtype=float)
    assert len(ts.NodeDetector(pos, connect=[[1, 2], [2, 1]])) == 2
    assert len(ts.NodeDetector(pos, connect=[np.array([[1, 2]]), np.array([[0, 0]])])) == 3


def test_a_refused_list_leaves_the_detector_as_it_was():
    detector = ts.NodeDetector([[0, 0], [1, 0]])
    with pytest.raises(ts.Error) as caught:
        detector.reinit([[5, 5]], nodes=[1])
    assert caught.value.code == -2 and detector.closest([1, 0]) == 1
    with pytest.raises(ts.Error):
        detector.reinit([[1], [2]])
    assert len(detector) == 0 and detector.closest([1, 0]) == -1


def test_coordinates_live_as_long_as_their_detector():
    detector = ts.NodeDetector(np.arange(3000.0).reshape(1000, 3) + 0.0)
    junk = [np.zeros((1000, 3)) for _ in range(50)]
    assert detector.closest([300.0, 301.0, 302.0]) == 100 and len(junk) == 50


def clustered(seed, dimension):
    """Nodes in groups that are far apart, and the number of the group of each."""
    random = np.random.default_rng(seed)
    groups = random.integers(1, 30)
    centres = np.arange(groups)[:, None] * np.ones(dimension)
    label = random.integers(0, groups, random.integers(1, 120))
    return centres[label] + random.uniform(-1e-4, 1e-4, (len(label), dimension)), label


@given(seeds, dimensions)
def test_every_group_of_close_nodes_becomes_one(seed, dimension):
    pos, label = clustered(seed, dimension)
    merged = ts.merge(pos, tolerance=0.1)
    _, first = np.unique(label, return_index=True)
    assert merged.merged == len(pos) - len(first)
    stays = merged.new_IDs == np.arange(len(pos))
    assert stays.sum() == len(first)
    np.testing.assert_array_equal(label[merged.new_IDs], label)
    np.testing.assert_array_equal(merged.pos, pos[merged.new_IDs])


@given(seeds, dimensions)
def test_elements_are_renumbered_to_the_nodes_that_stay(seed, dimension):
    pos, label = clustered(seed, dimension)
    connect = np.random.default_rng(seed).integers(0, len(pos), (50, 3)).astype(np.uint32)
    merged = ts.merge(pos, connect, 0.1)
    np.testing.assert_array_equal(merged.connect, merged.new_IDs[connect])
    used = np.unique(connect)
    assert merged.merged == len(used) - len(np.unique(label[used]))
    both = ts.merge(pos, [connect[:20], connect[20:]], 0.1)
    np.testing.assert_array_equal(np.concatenate(both.connect), merged.connect)


def test_pairs_are_applied_closest_first():
    # Of the second pair node 1 is free in the one case and gone in the other.
    assert ts.merge([[0.0, 0.0], [0.6, 0.0], [1.0, 0.0]], tolerance=0.7).new_IDs.tolist() == [0, 0, 0]
    assert ts.merge([[0.0, 0.0], [0.4, 0.0], [1.0, 0.0]], tolerance=0.7).new_IDs.tolist() == [0, 0, 2]


def test_modes_look_at_nodes_of_one_element_only():
    pos = [[0.0, 0.0], [0.0, 0.0], [5.0, 0.0]]
    apart = [[0, 2], [1, 2]]
    assert ts.merge(pos, apart, 0.1, mode=1).merged == 0
    assert ts.merge(pos, apart, 0.1, mode=0).merged == 1
    assert ts.merge(pos, [[0, 1]], 0.1, mode=2).connect.tolist() == [[0, 0]]


def test_nodes_of_one_list_are_merged_into_the_other():
    pos = [[0, 0], [0, 0], [1, 0], [1, 0]]
    merged = ts.merge(pos, nodes=[1, 2], nodes2=[0, 1, 2, 3], tolerance=0.1)
    assert merged.new_IDs.tolist() == [1, 1, 2, 2] and merged.merged == 2


@pytest.mark.parametrize("type", FACED)
def test_arguments_stay_and_out_is_filled(type):
    mesh = shuffled(type, 3, 1)
    connect = mesh.connect.copy()
    result = ts.merge(mesh.pos, connect, 1.5)
    assert result.merged > 0 and (connect == mesh.connect).all()
    assert ts.merge(mesh.pos, connect, 1.5, out=connect).connect is connect
    np.testing.assert_array_equal(connect, result.connect)
    pos = mesh.pos.copy()
    moved = ts.merge(pos, tolerance=1.5)
    assert (pos == mesh.pos).all()
    assert ts.merge(pos, tolerance=1.5, out=pos).pos is pos
    np.testing.assert_array_equal(pos, moved.pos)


def test_merge_needs_to_know_what_and_how_near():
    wrong: list[dict[str, Any]] = [{}, {"nodes2": [0], "tolerance": 1.0}, {"connect": [[0]], "nodes": [0]}]
    for arguments in wrong:
        with pytest.raises(TypeError):
            ts.merge([[0, 0]], **arguments)


def test_a_detector_is_copied_and_shows_itself():
    detector = ts.NodeDetector([[0, 0], [1, 0]])
    again = copy.deepcopy(detector)
    again.insert([0])
    assert (len(detector), len(again)) == (2, 3) and repr(again) == "<tessolv.NodeDetector: 3 nodes>"

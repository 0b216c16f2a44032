import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st
from scipy.sparse import coo_matrix
from scipy.sparse.csgraph import connected_components

import tessolv as ts
from meshes import EDGES, FACED, FACES, grid, shuffled

kinds = st.sampled_from(FACED)
sizes = st.integers(1, 4)
seeds = st.integers(0, 2**32 - 1)


def faces_by_vertices(mesh):
    found: dict[tuple[int, ...], list[tuple[int, int]]] = {}
    for e, nodes in enumerate(mesh.connect.tolist()):
        for k, face in enumerate(FACES[mesh.type]):
            found.setdefault(tuple(sorted(nodes[i] for i in face)), []).append((e, k))
    return found


def slow_neighbors(mesh):
    table = np.full((len(mesh.connect), len(FACES[mesh.type])), -1)
    for sharers in faces_by_vertices(mesh).values():
        if len(sharers) == 2:
            (e, k), (f, m) = sharers
            table[e, k], table[f, m] = f, e
    return table


@given(kinds, sizes, seeds)
def test_neighbors_are_those_of_a_slow_search(type, size, seed):
    mesh = shuffled(type, size, seed)
    table = ts.get_neighbors(mesh.connect, mesh.type)
    assert table.dtype == np.int64
    np.testing.assert_array_equal(table, slow_neighbors(mesh))


@given(kinds, sizes, seeds)
def test_raw_neighbors_are_the_same_with_none_index(type, size, seed):
    mesh = shuffled(type, size, seed)
    table = ts.get_neighbors(mesh.connect, mesh.type)
    raw = ts.get_neighbors(mesh.connect, mesh.type, raw=True)
    assert raw.dtype == np.uint32
    np.testing.assert_array_equal(raw, table.astype(np.uint32))


def test_nonmanifold_faces_are_linked_on_request():
    triangles = [[0, 1, 2], [1, 0, 3], [0, 1, 4]]
    assert (ts.get_neighbors(triangles, ts.EL_TRIA3) == -1).all()
    linked = ts.get_neighbors(triangles, ts.EL_TRIA3, link_nonmanifold=True)
    assert linked[:, 2].tolist() == [2, 0, 0]


@given(kinds, sizes, seeds)
def test_boundaries_are_the_faces_of_one_element(type, size, seed):
    mesh = shuffled(type, size, seed)
    table = ts.get_neighbors(mesh.connect, mesh.type)
    wanted = []
    for e, nodes in enumerate(mesh.connect.tolist()):
        for k, face in enumerate(FACES[mesh.type]):
            if table[e, k] == -1:
                wanted.append([nodes[i] for i in face])
    assert ts.get_boundaries(mesh.connect, table, mesh.type).tolist() == wanted


def test_a_closed_surface_has_no_boundary_but_a_width():
    faces = [[0, 2, 1], [0, 1, 3], [1, 2, 3], [2, 0, 3]]
    table = ts.get_neighbors(faces, ts.EL_TRIA3)
    assert (table >= 0).all()
    assert ts.get_boundaries(faces, table, ts.EL_TRIA3).shape == (0, 2)


@given(kinds, sizes, seeds)
def test_ancestors_are_the_last_elements(type, size, seed):
    mesh = shuffled(type, size, seed)
    wanted = np.full(mesh.connect.max() + 1, -1)
    for e, nodes in enumerate(mesh.connect):
        wanted[nodes] = e
    np.testing.assert_array_equal(ts.get_ancestors(mesh.connect), wanted)


def test_ancestors_are_continued_in_a_copy_or_in_place():
    before = np.array([7, 8, 9], dtype=np.uint32)
    assert ts.get_ancestors([[2, 5]], before).tolist() == [7, 8, 0]
    assert before.tolist() == [7, 8, 9]
    assert ts.get_ancestors([[2, 5]], before, out=before) is before
    assert before.tolist() == [7, 8, 0]


@given(kinds, sizes, seeds)
def test_parts_are_the_components_of_the_graph(type, size, seed):
    mesh = shuffled(type, size, seed, drop=0.5)
    table = ts.get_neighbors(mesh.connect, mesh.type)
    e, k = np.nonzero(table >= 0)
    n = len(table)
    count, label = connected_components(coo_matrix((np.ones(len(e)), (e, table[e, k])), (n, n)), directed=False)
    elements, offsets = ts.get_connex_parts(table)
    assert len(offsets) == count + 1 and sorted(elements.tolist()) == list(range(n))
    lowest = []
    for first, last in zip(offsets[:-1], offsets[1:]):
        part = elements[first:last]
        assert len(set(label[part])) == 1 and part[0] == part.min()
        lowest.append(part[0])
    assert lowest == sorted(lowest)


@given(kinds, sizes, seeds)
def test_reordered_parts_are_runs_of_the_same_mesh(type, size, seed):
    mesh = shuffled(type, size, seed, drop=0.5)
    table = ts.get_neighbors(mesh.connect, mesh.type)
    elements, offsets = ts.get_connex_parts(table)
    ordered = ts.get_connex_parts(table, connect=mesh.connect)
    np.testing.assert_array_equal(ordered.connect, mesh.connect[elements])
    np.testing.assert_array_equal(ordered.offsets, offsets)
    place = np.append(np.argsort(elements), -1)
    np.testing.assert_array_equal(ordered.neighbors, place[table[elements]])


@given(kinds, sizes, seeds)
def test_edges_are_met_in_order(type, size, seed):
    mesh = shuffled(type, size, seed)
    edges = {}
    for nodes in mesh.connect.tolist():
        for i, j in EDGES[mesh.type]:
            edges[tuple(sorted((nodes[i], nodes[j])))] = True
    assert ts.copy_edges(mesh.connect, mesh.type).tolist() == [list(edge) for edge in edges]
    assert ts.copy_edges([mesh.connect, mesh.connect], [mesh.type] * 2).tolist() == [list(edge) for edge in edges]


def test_edges_come_behind_given_ones():
    given_edges = np.array([[8, 9]], dtype=np.uint32)
    assert ts.copy_edges([[0, 1]], ts.EL_EDGE2, given_edges).tolist() == [[8, 9], [0, 1]]
    assert given_edges.tolist() == [[8, 9]]


@pytest.mark.parametrize("type", FACED)
def test_an_empty_mesh_has_tables_of_the_right_width(type):
    nothing = grid(type, 1).connect[:0]
    assert ts.get_neighbors(nothing, type).shape == (0, len(FACES[type]))
    assert ts.copy_edges(nothing, type).shape == (0, 2)
    assert ts.get_ancestors(nothing).shape == (0,)

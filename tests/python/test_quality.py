import copy

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import tessolv as ts
from meshes import EDGES, FACED, grid, shuffled

seeds = st.integers(0, 2**32 - 1)
sizes = st.integers(1, 3)


def corners(mesh):
    return [mesh.pos[mesh.connect[:, i]] for i in range(mesh.connect.shape[1])]


def cross(a, b):
    return np.cross(a, b)


def length(v):
    return np.sqrt((v * v).sum(axis=-1))


def triangle_quality(a, b, c):
    sides = [length(b - a), length(c - b), length(a - c)]
    area = cross(b - a, c - a)
    area = area if a.shape[1] == 2 else length(area)
    return 2 * np.sqrt(3) * area / (sum(sides) * np.maximum.reduce(sides))


def tetrahedron_quality(a, b, c, d):
    edges = [length(p - q) for p, q in ((a, b), (a, c), (a, d), (b, c), (b, d), (c, d))]
    surface = sum(length(cross(q - p, r - p)) for p, q, r in ((a, b, c), (a, b, d), (a, c, d), (b, c, d)))
    # Positive when 0, 1, 2 turn clockwise seen from 3.
    volume = -(cross(b - a, c - a) * (d - a)).sum(axis=1)
    return 2 * np.sqrt(6) * volume / (np.maximum.reduce(edges) * surface)


@given(seeds, sizes)
def test_triangles_are_measured_by_area_and_perimeter(seed, size):
    mesh = shuffled(ts.EL_TRIA3, size, seed)
    qualities = ts.shape_qualities(mesh.pos, mesh.connect, mesh.type)
    np.testing.assert_allclose(qualities, triangle_quality(*corners(mesh)), rtol=1e-12)
    space = np.column_stack([mesh.pos, mesh.pos[:, 0] ** 2])
    lifted = mesh._replace(pos=space)
    np.testing.assert_allclose(
        ts.shape_qualities(space, mesh.connect, mesh.type), triangle_quality(*corners(lifted)), rtol=1e-12
    )


@given(seeds, sizes)
def test_tetrahedra_are_measured_by_volume_and_surface(seed, size):
    mesh = shuffled(ts.EL_TETRA4, size, seed)
    qualities = ts.shape_qualities(mesh.pos, mesh.connect, mesh.type)
    np.testing.assert_allclose(qualities, tetrahedron_quality(*corners(mesh)), rtol=1e-9, atol=1e-9)


@pytest.mark.parametrize("type", FACED)
def test_the_elements_of_a_grid_are_positive(type):
    mesh = grid(type, 2)
    qualities = ts.shape_qualities(mesh.pos, mesh.connect, type)
    assert (qualities > 0.4).all()
    if type in (ts.EL_QUAD4, ts.EL_HEXA8, ts.EL_EDGE2):
        assert (qualities == 1).all()


def test_an_inverted_cube_counts_by_its_size():
    mesh = grid(ts.EL_HEXA8, 1)
    inside_out = mesh.connect[:, [4, 5, 6, 7, 0, 1, 2, 3]]
    assert ts.shape_qualities(2 * mesh.pos, inside_out, mesh.type).tolist() == [-64.0]


def test_several_matrices_are_measured_one_after_the_other():
    pos = grid(ts.EL_QUAD4, 1).pos
    both = ts.shape_qualities(pos, [np.array([[0, 1, 3, 2]]), np.array([[0, 1, 3], [3, 1, 0]])], [7, 6])
    np.testing.assert_allclose(both, [1, np.sqrt(3) * 2 / (2 + np.sqrt(2)) / np.sqrt(2), -both[1]])


@given(seeds, sizes)
def test_a_histogram_counts_what_the_array_holds(seed, size):
    mesh = shuffled(ts.EL_TETRA4, size, seed)
    qualities = ts.shape_qualities(mesh.pos, mesh.connect, mesh.type)
    histogram = ts.Histogram(-1, 1, 8)
    assert ts.shape_qualities(mesh.pos, mesh.connect, mesh.type, histogram) is histogram
    assert histogram.count == len(qualities)
    assert (histogram.minimum, histogram.maximum) == (qualities.min(), qualities.max())
    np.testing.assert_allclose([histogram.mean, histogram.standard_deviation], [qualities.mean(), qualities.std()])
    assert histogram.bins.tolist() == np.histogram(qualities, 8, (-1, 1))[0].tolist()
    again = ts.Histogram(-1, 1, 8)
    again.process(qualities)
    again.process(np.nan)
    assert again.bins.tolist() == histogram.bins.tolist() and again.not_a_number == 1


@given(st.sampled_from(FACED), sizes, seeds)
def test_edge_lengths_at_every_node(type, size, seed):
    mesh = shuffled(type, size, seed)
    edges = ts.copy_edges(mesh.connect, mesh.type)
    lengths = length(mesh.pos[edges[:, 0]] - mesh.pos[edges[:, 1]])
    largest = np.finfo(float).max
    wanted = np.tile([largest, 0.0, -largest], (len(mesh.pos), 1))
    for node in np.unique(edges):
        own = lengths[(edges == node).any(axis=1)]
        wanted[node] = own.min(), own.mean(), own.max()
    np.testing.assert_allclose(ts.edge_lengths(mesh.pos, edges), wanted, rtol=1e-12)


@given(st.sampled_from(FACED), sizes, seeds)
def test_edges_are_measured_in_sizes(type, size, seed):
    mesh = shuffled(type, size, seed)
    wanted_sizes = np.random.default_rng(seed).uniform(0.1, 2, len(mesh.pos)).astype(np.float32)
    edges = list(
        dict.fromkeys(tuple(sorted((e[i], e[j]))) for e in mesh.connect.tolist() for i, j in EDGES[mesh.type])
    )
    a, b = np.array(edges).T
    h = np.sort(np.stack([wanted_sizes[a], wanted_sizes[b]]).astype(float), axis=0)
    ratio = np.log(h[1] / h[0]) / np.where(h[0] == h[1], 1, h[1] - h[0])
    values = length(mesh.pos[a] - mesh.pos[b]) * np.where(h[0] == h[1], 1 / h[0], ratio)
    found = ts.edge_qualities(mesh.pos, mesh.connect, mesh.type, wanted_sizes)
    # Between nearly equal sizes the library takes four terms of a series.
    np.testing.assert_allclose(found, values, rtol=1e-4)
    histogram = ts.edge_qualities(mesh.pos, mesh.connect, mesh.type, wanted_sizes, ts.Histogram(0, 9, 3))
    assert histogram.count == len(edges) and histogram.minimum == found.min()


def test_a_size_of_zero_ends_the_measures():
    pos = np.array([[0.0, 0], [1, 0], [2, 0]])
    lines = [[0, 1], [1, 2]]
    assert ts.edge_qualities(pos, lines, ts.EL_EDGE2, [1, 1, 0]).tolist() == [1.0]
    assert ts.edge_qualities(pos, lines, ts.EL_EDGE2, [1, 1]).tolist() == []


def test_a_histogram_is_copied_and_shows_itself():
    first = ts.Histogram(0, 1, 4)
    first.process([0.1, 0.3])
    second, third = copy.copy(first), copy.deepcopy(first)
    second.process(0.9)
    assert (first.count, second.count, third.count) == (2, 3, 2)
    assert repr(first) == "<tessolv.Histogram: 2 values, mean 0.2>"

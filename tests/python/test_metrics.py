import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import tessolv as ts

seeds = st.integers(0, 2**32 - 1)
dimensions = st.sampled_from([2, 3])


def packed(full):
    n = full.shape[-1]
    return np.array([full[i, j] for j in range(n) for i in range(j + 1)])


def random_metric(random, n):
    turn, _ = np.linalg.qr(random.normal(size=(n, n)))
    return turn @ np.diag(random.uniform(0.5, 20, n)) @ turn.T


@given(seeds, dimensions)
def test_eigenvalues_are_those_of_numpy(seed, n):
    M = random_metric(np.random.default_rng(seed), n)
    wanted = np.linalg.eigvalsh(M)
    np.testing.assert_allclose(ts.eigen_pairs(packed(M)), wanted, atol=1e-7 * wanted[-1])


@given(seeds, dimensions)
def test_validity_is_positive_definiteness(seed, n):
    random = np.random.default_rng(seed)
    M = random_metric(random, n)
    assert ts.is_valid_metric(packed(M))
    assert not ts.is_valid_metric(packed(M - 21 * np.eye(n)))
    assert not ts.is_valid_metric(np.full(len(packed(M)), np.nan))


@given(seeds, dimensions)
def test_the_minimum_asks_for_the_smaller_size(seed, n):
    random = np.random.default_rng(seed)
    A, B = random_metric(random, n), random_metric(random, n)
    L = np.linalg.cholesky(A)
    inverse = np.linalg.inv(L)
    values, Q = np.linalg.eigh(inverse @ B @ inverse.T)
    wanted = L @ Q @ np.diag(np.maximum(values, 1)) @ Q.T @ L.T
    found = ts.minimum_metric(packed(A), packed(B))
    assert found is not None
    np.testing.assert_allclose(found, packed(wanted), rtol=1e-8, atol=1e-8)


def test_there_is_no_minimum_without_a_metric():
    assert ts.minimum_metric([0, 0, 0], [1, 0, 1]) is None
    assert ts.minimum_metric([1, 0, 1], [np.nan, 0, 1]) is None
    with pytest.raises(ts.Error):
        ts.minimum_metric([1, 0, 1], [1, 0, 1, 0, 0, 1])


@given(seeds)
def test_projections_to_a_plane(seed):
    random = np.random.default_rng(seed)
    M, B = random_metric(random, 3), random.normal(size=(2, 3))
    np.testing.assert_allclose(ts.metric_aniso3d_to_aniso2d(packed(M), B), packed(B @ M @ B.T), rtol=1e-12, atol=1e-12)
    np.testing.assert_allclose(ts.metric_iso_to_aniso2d(0.5, B), packed(B @ B.T) * 4, rtol=1e-12, atol=1e-12)
    np.testing.assert_allclose(ts.metric_iso_to_aniso(0.5), packed(4 * np.eye(3)))


@given(seeds, st.integers(0, 20))
def test_fields_are_projected_node_by_node(seed, nodes):
    random = np.random.default_rng(seed)
    M = np.array([packed(random_metric(random, 3)) for _ in range(nodes)], dtype=np.float32).reshape(-1, 6)
    sizes = random.uniform(0.5, 2, nodes).astype(np.float32)
    bases = random.normal(size=(nodes, 6))
    aniso, iso = ts.metrics_aniso3d_to_aniso2d(M, bases), ts.metrics_iso_to_aniso2d(sizes, bases)
    assert aniso.dtype == iso.dtype == np.float32 and aniso.shape == iso.shape == (nodes, 3)
    for i in range(nodes):
        B = bases[i].reshape(2, 3)
        np.testing.assert_allclose(aniso[i], ts.metric_aniso3d_to_aniso2d(M[i], B), rtol=1e-6)
        np.testing.assert_allclose(iso[i], ts.metric_iso_to_aniso2d(sizes[i], B), rtol=1e-6)


def test_valid_entries_of_fields():
    assert ts.are_valid_metrics(np.array([[1, 0, 1]], dtype=np.float32))
    assert not ts.are_valid_metrics([[1, 2, 1]])
    assert ts.are_valid_metrics([[1, 0, 1], [1, 2, 1]], nodes=[0])
    assert not ts.are_valid_metrics([[1, 0, 1]], nodes=[1])
    assert not ts.are_valid_metrics([1, np.inf])


def test_invalid_entries_take_their_default():
    field = np.array([[1, 0, 1], [1, 2, 1], [-1, 0, -1]], dtype=np.float32)
    by_size = ts.overwrite_invalid_metrics(field, [0.5, 0.5, 0])
    assert by_size.tolist() == [[1, 0, 1], [4, 0, 4], [-1, 0, -1]]
    by_metric = ts.overwrite_invalid_metrics(field, [[2, 0, 2]] * 3)
    assert by_metric.tolist() == [[1, 0, 1], [2, 0, 2], [2, 0, 2]]
    assert ts.overwrite_invalid_metrics(field, [[2, 0, 2]] * 3, out=field) is field
    assert field.tolist() == by_metric.tolist()
    sizes = np.array([1, 0, np.nan], dtype=np.float32)
    np.testing.assert_array_equal(ts.overwrite_invalid_metrics(sizes, [3, 3, 3]), np.array([1, 3, np.nan], dtype=np.float32))

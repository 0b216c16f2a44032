import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st
from scipy.spatial.transform import Rotation

import tessolv as ts
from meshes import FACED, shuffled

seeds = st.integers(0, 2**32 - 1)
dimensions = st.sampled_from([2, 3])


def points(seed, dimension, n=20):
    return np.random.default_rng(seed).uniform(-5, 5, (n, dimension))


def in_space(pos):
    return pos if pos.shape[1] == 3 else np.column_stack([pos, np.zeros(len(pos))])


TRANSFORMS = {
    "translate": (lambda pos, **where: ts.translate(pos, [1, 2, 3], **where), lambda pos: pos + [1, 2, 3]),
    "rotate": (
        lambda pos, **where: ts.rotate(pos, [1, 0, 2], [0.3, -2, 0.5], **where),
        lambda pos: Rotation.from_rotvec([0.3, -2, 0.5]).apply(pos - [1, 0, 2]) + [1, 0, 2],
    ),
    "zoom": (
        lambda pos, **where: ts.zoom(pos, [1, 2, 3], -1.5, **where),
        lambda pos: np.array([1, 2, 3]) - 1.5 * (pos - [1, 2, 3]),
    ),
}


@pytest.mark.parametrize("name", TRANSFORMS)
@given(seed=seeds, dimension=dimensions)
def test_transforms_return_new_coordinates(name, seed, dimension):
    transform, slow = TRANSFORMS[name]
    pos = points(seed, dimension)
    before = pos.copy()
    np.testing.assert_allclose(transform(pos), slow(in_space(pos)), rtol=1e-9, atol=1e-9)
    assert (pos == before).all()


@pytest.mark.parametrize("name", TRANSFORMS)
def test_transforms_of_some_nodes(name):
    transform, slow = TRANSFORMS[name]
    pos = points(1, 3)
    wanted = pos.copy()
    wanted[[2, 5]] = slow(pos[[2, 5]])
    np.testing.assert_allclose(transform(pos, nodes=[2, 5, 99, -1]), wanted, rtol=1e-9)
    np.testing.assert_allclose(transform(pos, connect=[[2, 5], [5, 2]]), wanted, rtol=1e-9)
    with pytest.raises(ts.Error):
        transform(pos, nodes=[2], connect=[[2]])


@pytest.mark.parametrize("name", TRANSFORMS)
def test_transforms_in_place(name):
    transform, _ = TRANSFORMS[name]
    for pos in (points(1, 3), np.asfortranarray(points(1, 3)), points(1, 2)):
        out = np.full((len(pos), 3), np.nan)
        assert transform(pos, out=out) is out
        np.testing.assert_array_equal(out, transform(pos))
    pos = points(1, 3)
    wanted = transform(pos)
    assert transform(pos, out=pos) is pos
    np.testing.assert_array_equal(pos, wanted)
    # A part of the same memory, shifted.
    pos = points(1, 3)
    wanted = transform(pos[:-1])
    transform(pos[:-1], out=pos[1:])
    np.testing.assert_array_equal(pos[1:], wanted)


@given(seeds, dimensions)
def test_boxes_hold_their_nodes(seed, dimension):
    pos = points(seed, dimension)
    box = ts.inc_bounding_box(pos)
    np.testing.assert_array_equal(box, [pos.min(axis=0), pos.max(axis=0)])
    some = ts.inc_bounding_box(pos, nodes=[3, 7, -1])
    np.testing.assert_array_equal(some, [pos[[3, 7]].min(axis=0), pos[[3, 7]].max(axis=0)])
    np.testing.assert_array_equal(ts.inc_bounding_box(pos, connect=[[3, 7]]), some)
    grown = ts.inc_bounding_box(pos[:1], min=some.min, max=some.max)
    np.testing.assert_array_equal(grown.max, np.maximum(some.max, pos[0]))


def test_the_box_of_nothing_is_inside_out():
    box = ts.inc_bounding_box(np.empty((0, 3)))
    assert (box.min == np.inf).all() and (box.max == -np.inf).all()


@given(st.sampled_from(FACED), seeds)
def test_clip_keeps_whole_elements(type, seed):
    mesh = shuffled(type, 3, seed)
    random = np.random.default_rng(seed)
    d = mesh.pos.shape[1]
    C, N = random.uniform(0, 3, d), random.normal(size=d)
    inside = (mesh.pos - C) @ N > 0
    keep = inside[mesh.connect].all(axis=1)
    np.testing.assert_array_equal(ts.clip(mesh.pos, mesh.connect, C, N), mesh.connect[keep])
    behind = ts.clip(mesh.pos, mesh.connect, C, N, to=mesh.connect[:1])
    np.testing.assert_array_equal(behind, np.concatenate([mesh.connect[:1], mesh.connect[keep]]))

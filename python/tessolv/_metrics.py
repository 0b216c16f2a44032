"""Anisotropic sizes. A metric M gives a vector v the length sqrt(v' M v).

A tensor is packed by columns of its upper triangle: (m00, m01, m11) or (m00, m01, m11, m02, m12, m22). A field has a row
for each node, in single precision.
"""

from __future__ import annotations

from typing import Any, Optional

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _tessolv
from ._conventions import peek

Tensor = NDArray[np.float64]
Field = NDArray[np.float32]


def metric_iso_to_aniso(h: float, dimension: int = 3) -> Tensor:
    """The tensor of the size h in every direction; 0 unless h > 0.

    Args:
        h: the size.
        dimension: 2 or 3.

    >>> metric_iso_to_aniso(0.5, 2).tolist()
    [4.0, 0.0, 4.0]
    """
    return _tessolv.metric_iso_to_aniso(h, dimension)


def metric_iso_to_aniso2d(h: float, B: ArrayLike) -> Tensor:
    """The tensor of the size h in a plane.

    Args:
        h: the size.
        B: shape (2, 3), two vectors that span the plane.

    Returns:
        Shape (3,): B B' / h**2; 0 unless h > 0.

    >>> metric_iso_to_aniso2d(1, [[1, 0, 0], [0, 2, 0]]).tolist()
    [1.0, 0.0, 4.0]
    """
    return _tessolv.metric_iso_to_aniso2d(h, B)


def metric_aniso3d_to_aniso2d(M3: ArrayLike, B: ArrayLike) -> Tensor:
    """What a metric of space is in the plane that the two rows of B span.

    Args:
        M3: shape (6,).
        B: shape (2, 3).

    >>> metric_aniso3d_to_aniso2d([1, 0, 4, 0, 0, 9], [[1, 0, 0], [0, 0, 1]]).tolist()
    [1.0, 0.0, 9.0]
    """
    return _tessolv.metric_aniso3d_to_aniso2d(M3, B)


def eigen_pairs(M: ArrayLike) -> Tensor:
    """Eigenvalues of a tensor, in ascending order; the library keeps the vectors to itself.

    Args:
        M: shape (3,) or (6,).

    >>> eigen_pairs([2, 0, 1]).tolist()
    [1.0, 2.0]
    """
    return _tessolv.eigen_pairs(M)


def is_valid_metric(M: ArrayLike) -> bool:
    """Whether a tensor is finite and positive definite.

    Args:
        M: shape (3,) or (6,).

    >>> is_valid_metric([1, 0, 1]), is_valid_metric([1, 2, 1])
    (True, False)
    """
    return _tessolv.is_valid_metric(M)


def minimum_metric(M1: ArrayLike, M2: ArrayLike) -> Optional[Tensor]:
    """The metric that asks for the smaller of two sizes in every direction, by simultaneous reduction.

    Args:
        M1: shape (3,) or (6,), positive definite.
        M2: of the same shape.

    Returns:
        The metric, or None if an entry is not finite or M1 not positive definite.

    >>> minimum_metric([1, 0, 9], [4, 0, 4]).round(12).tolist()
    [4.0, 0.0, 9.0]
    """
    return _tessolv.minimum_metric(M1, M2)


def _is_isotropic(field: Any) -> bool:
    given = peek(field)
    return given is not None and given.ndim == 1


def are_valid_metrics(metrics: ArrayLike, nodes: Optional[ArrayLike] = None) -> bool:
    """Whether every entry of a field is valid: a size that is positive and finite, or a metric.

    Args:
        metrics: shape (nodes,), sizes; or shape (nodes, 3 or 6), packed tensors.
        nodes: shape (n,), the nodes to look at; False where one lies beyond the field.

    >>> are_valid_metrics([1.0, 2.0]), are_valid_metrics([1.0, -2.0]), are_valid_metrics([1.0, -2.0], nodes=[0])
    (True, False, True)
    """
    return _tessolv.are_valid_metrics(metrics, nodes, _is_isotropic(metrics))


def overwrite_invalid_metrics(metrics: ArrayLike, defaults: ArrayLike, *, out: Optional[Field] = None) -> Field:
    """Replaces invalid entries of a field by the default of their node, where that is valid.

    Of sizes only those of 0 and less are replaced, not NaN and infinity.

    Args:
        metrics: shape (nodes,) or (nodes, 3 or 6), float32; others are converted.
        defaults: sizes of shape (nodes,), or metrics of the columns of `metrics`.
        out: a float32 array for the result in the place of a new one; may be `metrics`.

    Raises:
        Error: -1 columns of `metrics`, -2 columns of `defaults`.

    >>> overwrite_invalid_metrics([1.0, 0.0], [5.0, 5.0]).tolist()
    [1.0, 5.0]
    """
    return _tessolv.overwrite_invalid_metrics(metrics, defaults, _is_isotropic(metrics), _is_isotropic(defaults), out)


def metrics_aniso3d_to_aniso2d(M3: ArrayLike, bases: ArrayLike) -> Field:
    """What the metrics of space are in a plane at each node: see `metric_aniso3d_to_aniso2d`.

    Args:
        M3: shape (nodes, 6), float32.
        bases: shape (nodes, 6), the two vectors that span the plane one behind the other.

    Returns:
        Shape (nodes, 3).

    Raises:
        Error: -1 columns of `M3`, -2 shape of `bases`.
    """
    return _tessolv.metrics_aniso3d_to_aniso2d(M3, bases)


def metrics_iso_to_aniso2d(sizes: ArrayLike, bases: ArrayLike) -> Field:
    """The metrics of isotropic sizes in a plane at each node: see `metric_iso_to_aniso2d`.

    Args:
        sizes: shape (nodes,), float32; one that is not positive gives zeros.
        bases: shape (nodes, 6), the two vectors that span the plane one behind the other.

    Returns:
        Shape (nodes, 3).

    Raises:
        Error: -2 shape of `bases`.
    """
    return _tessolv.metrics_iso_to_aniso2d(sizes, bases)

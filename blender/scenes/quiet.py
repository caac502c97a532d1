"""Takes the noise out of a render, where Blender was built without a denoiser.

Non-local means over two renders of half the samples each: what one of them shows of the likeness of two places weighs
the pixels of the other, so that noise never takes itself for detail. How much the halves differ tells how much noise
there is; where there is none, nothing is changed.
"""

from __future__ import annotations

from concurrent.futures import ThreadPoolExecutor
from typing import Any

import numpy as np

Floats = Any
_PATCH = 2  # pixels to each side that are compared
_BAND = 48  # rows at a time, so that they stay in the processor's cache


def filtered(first: Floats, second: Floats, reach: int = 5, strength: float = 0.6) -> Floats:
    """The mean of two renders of the same scene, without their noise.

    :param first: (height, width, 3) in linear light
    :param second: the same with other samples
    :param reach: pixels to each side that take part
    :param strength: the larger, the smoother; 0.3 to 1
    """
    a, b = _even(first), _even(second)
    noise = _box((a - b) ** 2) * np.float32(0.5) + np.float32(1e-7)  # variance of either half
    height = a.shape[0]
    margin = reach + _PATCH
    padded = [np.pad(each, [(margin, margin), (margin, margin), (0, 0)], mode="symmetric") for each in (a, b, noise)]
    clean = np.empty_like(a)

    def work(top: int) -> None:
        rows = min(_BAND, height - top)
        guide, other, spread = (each[top : top + rows + 2 * margin] for each in padded)
        band = _means(guide, other, spread, reach, strength) + _means(other, guide, spread, reach, strength)
        clean[top : top + rows] = band * np.float32(0.5)

    with ThreadPoolExecutor() as pool:
        list(pool.map(work, range(0, height, _BAND)))
    return np.square(clean)


def _even(picture: Floats) -> Floats:
    """The root of light, in which noise is about as strong in the dark as in the light."""
    return np.sqrt(np.maximum(picture, 0)).astype(np.float32)


def _means(guide: Floats, other: Floats, noise: Floats, reach: int, strength: float) -> Floats:
    """Of all three the margin around what is answered is as wide as what a pixel looks at."""
    rows, columns = (size - 2 * reach for size in guide.shape[:2])
    inner = np.s_[_PATCH:-_PATCH, _PATCH:-_PATCH]
    here = np.s_[reach : reach + rows, reach : reach + columns]
    center, spread = guide[here], noise[here]
    total, weights = np.zeros_like(center[inner]), np.zeros(center[inner].shape[:2], np.float32)
    for down in range(2 * reach + 1):
        for right in range(2 * reach + 1):
            part = np.s_[down : down + rows, right : right + columns]
            there = noise[part]
            apart = (center - guide[part]) ** 2 - (spread + np.minimum(there, spread))
            apart = (apart / (spread + there)).mean(2)
            weight = np.exp(-np.maximum(_box(apart)[inner] / np.float32(strength**2), 0))
            total += weight[..., None] * other[part][inner]
            weights += weight
    return total / weights[..., None]


def _box(picture: Floats) -> Floats:
    """Means over the square of a patch."""
    for axis in (0, 1):
        margin = [(0, 0)] * picture.ndim
        margin[axis] = (_PATCH, _PATCH)
        padded = np.pad(picture, margin, mode="edge")
        size = picture.shape[axis]
        parts = [padded[(slice(None),) * axis + (slice(k, k + size),)] for k in range(2 * _PATCH + 1)]
        picture = sum(parts[1:], parts[0]) / np.float32(2 * _PATCH + 1)
    return picture

"""Pictures out of numbers, for the shaders to work on: noise and yarn. All repeat without a seam."""

from __future__ import annotations

from typing import Any

import numpy as np

Floats = Any


def noise(height: int, width: int, scale: tuple[float, float], seed: int = 1, roughness: float = 1.0) -> Floats:
    """Smooth noise from 0 to 1, even in distribution, of (height, width).

    :param scale: size of its largest forms, vertical and horizontal, in shares of the picture
    :param roughness: the power by which finer forms are weaker: 0.5 is rough, 2 smooth
    """
    generator = np.random.default_rng(seed)
    down = np.fft.fftfreq(height)[:, None] * height * scale[0]
    right = np.fft.rfftfreq(width)[None, :] * width * scale[1]
    weight = (1 + down**2 + right**2) ** (-0.5 * (1 + roughness))
    weight[0, 0] = 0
    field = np.fft.irfft2(np.fft.rfft2(generator.standard_normal((height, width))) * weight, (height, width))
    order = np.argsort(np.argsort(field, axis=None))
    return (order.reshape(height, width) / (height * width - 1)).astype(np.float32)


def yarn(size: int = 512, plies: int = 3, slant: float = 1.5, seed: int = 3) -> tuple[Floats, Floats]:
    """A twisted thread: U across, V along, over one turn or more. Gives its brightness and its height, 0 to 1.

    :param plies: strands that cross a line along the thread in one period
    :param slant: by how many of them they shift from one side of the thread to the other
    """
    v, u = np.meshgrid(np.arange(size) / size, (np.arange(size) + 0.5) / size, indexing="ij")
    turn = np.arcsin(np.clip(2 * u - 1, -1, 1)) / np.pi + 0.5  # around the thread, as seen from above
    along = v * plies + turn * slant
    phase = along % 1
    index = np.floor(along).astype(int) % plies
    strand = np.sqrt(np.clip(1 - (2 * phase - 1) ** 2 * 0.98, 0, 1))
    # Fibres run along their strand, and wind around it a little.
    across = phase * 0.33 + index * 0.37 + turn * 0.10
    fibres = np.zeros((size, size))
    for layer, (fineness, share) in enumerate(((0.03, 0.5), (0.008, 0.5))):
        field = noise(size, size, (fineness, 0.45), seed + layer, 0.5)
        fibres += (
            share * field[(across * size).astype(int) % size, ((turn * 0.6 + index * 0.29) * size).astype(int) % size]
        )
    bright = (0.35 + 0.65 * strand) * (0.55 + 0.75 * fibres)
    height = strand * (0.84 + 0.16 * fibres)
    return bright.astype(np.float32), height.astype(np.float32)

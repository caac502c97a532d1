"""Samples in arrays of any shape, and their answers as records."""

from __future__ import annotations

import math
from typing import TYPE_CHECKING, Any, NamedTuple

from . import _native
from ._arguments import Progress
from ._library import library
from ._numpy import floats, numpy

if TYPE_CHECKING:
    import numpy as np
    from numpy.typing import ArrayLike, NDArray

    Floats = NDArray[np.float32]


class Given(NamedTuple):
    """What is given of samples, as arrays whose last axis is a vector."""

    uv: ArrayLike | None
    point: ArrayLike | None
    normal: ArrayLike | None
    point_local: ArrayLike | None
    normal_local: ArrayLike | None
    deriv_u: ArrayLike | None
    deriv_v: ArrayLike | None


def shade(
    document: _native.Document, operation: str, element: str, given: Given, progress: Progress | None
) -> np.recarray[Any, Any]:
    """The answers of an operation, a record for each sample, in the shape that the samples share."""
    np = numpy()
    arrays = {
        name: floats(name, value, 2 if name == "uv" else 3)
        for name, value in given._asdict().items()
        if value is not None
    }
    shape = _shared_shape(arrays)
    count = math.prod(shape)
    columns: dict[str, Floats | None] = dict.fromkeys(Given._fields)
    columns.update((name, _spread(array, shape, count)) for name, array in arrays.items())
    names = [number.replace(" ", "_") for number in _native.operations()[operation]]
    numbers = np.empty((count, len(names)), np.float32)
    library()
    _native.shade(document, operation, element, count, **columns, numbers=numbers, progress=progress)
    record = np.dtype((np.record, [(name, np.float32) for name in names]))
    answers = numbers.view(record).reshape(shape).view(np.recarray)
    return answers if shape else answers[()]  # type: ignore[no-any-return]


def _shared_shape(arrays: dict[str, Floats]) -> tuple[int, ...]:
    shapes = {name: array.shape[:-1] for name, array in arrays.items()}
    try:
        return numpy().broadcast_shapes(*shapes.values())  # type: ignore[no-any-return]
    except ValueError:
        told = ", ".join(f"{name} {shape}" for name, shape in shapes.items())
        raise ValueError(f"expected arrays whose leading shapes fit each other, got {told}") from None


def _spread(array: Floats, shape: tuple[int, ...], count: int) -> Floats:
    """One vector a row, in order; copied only where an array is repeated."""
    np = numpy()
    columns = array.shape[-1]
    if array.shape[:-1] != shape:
        array = np.ascontiguousarray(np.broadcast_to(array, (*shape, columns)))
    return array.reshape(count, columns)

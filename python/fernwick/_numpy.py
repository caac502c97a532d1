"""NumPy at first need: all that touches no array works without it."""

from __future__ import annotations

import functools
import sys
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    import types

    import numpy as np
    from numpy.typing import NDArray

    Floats = NDArray[np.float32]


@functools.cache
def numpy() -> types.ModuleType:
    """The module. Raises ImportError, which says what to install."""
    try:
        import numpy as np
    except ImportError as error:
        raise ImportError(
            "fernwick needs NumPy for arrays: install it with `pip install numpy` or `apt install python3-numpy`"
        ) from error
    return np


def is_array(value: object) -> bool:
    """Whether a value is an array, not a scalar, of NumPy."""
    np = sys.modules.get("numpy")  # without it nobody has made one
    return np is not None and isinstance(value, np.ndarray)


def is_scalar(value: object) -> bool:
    """Whether a value is a number of NumPy, such as `numpy.float32(1)`."""
    np = sys.modules.get("numpy")
    return np is not None and isinstance(value, np.generic)


def floats(name: str, value: object, columns: int | None = None) -> Floats:
    """An argument as an array of float32, contiguous.

    :param columns: what the last axis must have; None for any shape
    """
    array = _numbers(name, value, "numbers")
    if columns is not None and (array.ndim == 0 or array.shape[-1] != columns):
        raise ValueError(f"{name}: expected an array whose last axis has {columns} numbers, got {text(array)}")
    made: Floats = _contiguous(array, "float32")
    return made


def indices(name: str, value: object) -> NDArray[np.uint32]:
    """An argument as an array of three integers a row, from 0."""
    array = _numbers(name, value, "integers")
    if array.ndim != 2 or array.shape[1] != 3:
        raise ValueError(f"{name}: expected an array of shape (m, 3), got {text(array)}")
    if array.dtype.kind not in "iu" and array.size:
        raise TypeError(f"{name}: expected integers, got {text(array)}")
    if array.size and (array.min() < 0 or array.max() > 0xFFFFFFFF):
        raise ValueError(f"{name}: expected indices from 0 to 4294967295, got {array.min()} to {array.max()}")
    made: NDArray[np.uint32] = _contiguous(array, "uint32")
    return made


def text(array: Any) -> str:
    """An array in messages, such as "(4, 2) of float32"."""
    return f"{tuple(array.shape)} of {array.dtype}"


def frozen(array: Any) -> Any:
    """The array, read-only from now on."""
    array.flags.writeable = False
    return array


def own(array: Any, dtype: Any = None) -> Any:
    """A contiguous copy that nobody can make writable."""
    np = numpy()
    copy = np.ascontiguousarray(array, dtype=dtype)
    return np.frombuffer(copy.tobytes(), copy.dtype).reshape(copy.shape) if copy.size else frozen(copy.copy())


def _contiguous(array: Any, dtype: str) -> Any:
    np = numpy()
    with np.errstate(over="ignore"):  # of a double beyond all floats, which is an infinity then
        return np.require(array, dtype=dtype, requirements=["C", "ALIGNED"])


def _numbers(name: str, value: object, expected: str) -> Any:
    try:
        array = numpy().asarray(value)
    except ValueError as error:  # rows of different lengths
        raise ValueError(f"{name}: expected an array of {expected}, got rows of different lengths") from error
    if array.dtype.kind == "O":
        raise TypeError(f"{name}: expected an array of {expected}, got {type(value).__name__}")
    if array.dtype.kind not in "fiu":
        raise TypeError(f"{name}: expected an array of {expected}, got {text(array)}")
    return array

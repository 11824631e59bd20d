"""Arguments as arrays of float64, which the library reads where they stand."""

from __future__ import annotations

from typing import Any

import numpy as np
import numpy.typing as npt

from ._results import counted

FloatArray = npt.NDArray[np.float64]

_FLOAT64 = np.dtype(np.float64)
_ITEM = _FLOAT64.itemsize


def as_floats(name: str, values: npt.ArrayLike) -> FloatArray:
    """Return `values` as float64, themselves where they are that already.

    An array of float64 is taken as it is, whatever its strides. All else is converted once; entries that a
    masked array hides, None and the missing values of pandas become NaN.
    """
    if type(values) is np.ndarray and values.dtype == _FLOAT64:
        return _readable_in_place(values)
    if isinstance(values, np.ma.MaskedArray):
        return as_floats(name, _without_mask(name, values))
    return _readable_in_place(_converted(name, values))


def _readable_in_place(array: FloatArray) -> FloatArray:
    """Copy what a pointer with strides in whole numbers cannot walk: fields of records."""
    if array.flags.c_contiguous and array.flags.aligned:
        return array
    if array.flags.aligned and all(stride % _ITEM == 0 for stride in array.strides):
        return array
    return array.copy()


def _without_mask(name: str, values: np.ma.MaskedArray[Any, Any]) -> FloatArray:
    if not values.mask.any():
        return as_floats(name, values.data)
    filled: FloatArray = np.array(_converted(name, values.data))
    filled[np.ma.getmaskarray(values)] = np.nan  # type: ignore[no-untyped-call]
    return filled


def _converted(name: str, values: Any) -> FloatArray:
    array = _as_array(name, values)
    kind = array.dtype.kind
    is_text = kind in "SU" or (kind == "O" and any(isinstance(value, (str, bytes)) for value in array.flat))
    if is_text:
        raise TypeError(f"{name} has text where numbers are needed; convert it first")
    if kind not in "iufO":
        raise TypeError(f"{name} has values of type {array.dtype}; real numbers are needed")
    try:
        return np.asarray(_with_nan(array) if kind == "O" else array, dtype=_FLOAT64)
    except (TypeError, ValueError) as error:
        raise TypeError(f"{name} has values that are not numbers: {error}") from None


def is_missing(value: Any) -> bool:
    """None, NaN, NaT and pd.NA, the last of which answers no comparison."""
    return value is None or type(value).__name__ == "NAType" or bool(value != value)


def _with_nan(objects: npt.NDArray[Any]) -> npt.NDArray[Any]:
    """Return the objects with NaN for those that are missing, which float() may refuse."""
    numbers = np.fromiter((np.nan if is_missing(value) else value for value in objects.flat), object, objects.size)
    return numbers.reshape(objects.shape)


def _as_array(name: str, values: Any) -> npt.NDArray[Any]:
    to_numpy = getattr(values, "to_numpy", None)
    if to_numpy is not None and _has_extension_type(values):
        return np.asarray(to_numpy(dtype=_FLOAT64, na_value=np.nan))
    try:
        return np.asarray(values)
    except ValueError:
        raise ValueError(f"{name} is ragged: its rows are not equally long") from None


def _has_extension_type(values: Any) -> bool:
    """Whether a pandas object has nullable numbers, whose pd.NA float() refuses."""
    dtypes = getattr(values, "dtypes", getattr(values, "dtype", None))
    return any(not isinstance(dtype, np.dtype) and getattr(dtype, "kind", "") in "iuf"
               for dtype in np.ravel(np.asarray(dtypes, dtype=object)))


def check_same_shape(**arrays: FloatArray) -> tuple[int, ...]:
    """Return the shape that all arrays have, or say which of them differs from the first."""
    (first, model), *others = arrays.items()
    for name, array in others:
        if array.shape != model.shape:
            raise ValueError(
                f"{first} has {describe_shape(model.shape)}, {name} {describe_shape(array.shape)}")
    return model.shape


def describe_shape(shape: tuple[int, ...]) -> str:
    """Return "3 studies" or "3 studies x 10 sets"; other shapes as NumPy writes them."""
    if len(shape) == 1:
        return counted(shape[0], "study")
    if len(shape) == 2:
        return f"{counted(shape[0], 'study')} x {counted(shape[1], 'set')}"
    return f"shape {shape}"

"""Studies in long format: which rows are a set together."""

from __future__ import annotations

from typing import Any, NamedTuple

import numpy as np
import numpy.typing as npt

from ._arrays import is_missing
from ._results import counted


class Grouping(NamedTuple):
    """Sets of rows, in the order in which their labels first appear."""

    labels: npt.NDArray[Any]
    #: Set s has the rows `offsets[s]` to `offsets[s + 1] - 1`, after `order` where that is not None.
    offsets: npt.NDArray[np.uintp]
    order: npt.NDArray[np.intp] | None
    #: Rows whose label is a missing value; they are in no set.
    unlabelled: int


def group_rows(groups: Any, count: int) -> Grouping:
    """Find the rows of each label among `count` rows; equal labels are one set wherever they stand."""
    labels = _as_labels(groups)
    if len(labels) != count:
        raise ValueError(f"effects has {counted(count, 'study')}, groups {counted(len(labels), 'label')}")
    codes, uniques = _codes_of_shown(labels, groups) if _has_mask(groups) else _codes(labels)
    missing = int(np.count_nonzero(codes < 0))
    counts = np.bincount(codes[codes >= 0] if missing else codes, minlength=len(uniques))
    offsets = np.zeros(len(uniques) + 1, dtype=np.uintp)
    np.cumsum(counts, out=offsets[1:])
    order = None
    if missing or np.any(codes[1:] < codes[:-1]):
        order = np.argsort(codes, kind="stable")[missing:]
    return Grouping(uniques, offsets, order, missing)


def _as_labels(groups: Any) -> npt.NDArray[Any]:
    if not hasattr(groups, "__array__") and not hasattr(groups, "__iter__"):
        raise TypeError(f"groups is of type {type(groups).__name__}; a label for each study is needed")
    labels = np.asarray(groups) if hasattr(groups, "__array__") else _labels_of_list(list(groups))
    if labels.ndim != 1:
        raise ValueError(f"groups has {labels.ndim} dimensions; it needs 1, a label for each study")
    return labels


def _labels_of_list(groups: list[Any]) -> npt.NDArray[Any]:
    """NumPy would write numbers among text as text, and take tuples apart."""
    kinds = {type(label) for label in groups}
    if len(kinds) == 1 and kinds <= {str, int, float, bytes}:
        labels = np.asarray(groups)
        if labels.ndim == 1:
            return labels
    return np.fromiter(groups, dtype=object, count=len(groups))


def _has_mask(groups: Any) -> bool:
    return isinstance(groups, np.ma.MaskedArray) and bool(np.any(groups.mask))


def _codes_of_shown(
    labels: npt.NDArray[Any], masked: np.ma.MaskedArray[Any, Any]
) -> tuple[npt.NDArray[np.intp], npt.NDArray[Any]]:
    """Number the labels that the mask does not hide; a hidden one is missing."""
    shown = np.flatnonzero(~np.ma.getmaskarray(masked))  # type: ignore[no-untyped-call]
    codes = np.full(len(labels), -1, dtype=np.intp)
    codes[shown], uniques = _codes(labels[shown])
    return codes, uniques


def _codes(labels: npt.NDArray[Any]) -> tuple[npt.NDArray[np.intp], npt.NDArray[Any]]:
    """Number the labels by first appearance; -1 for a missing one."""
    if labels.dtype.kind == "O":
        return _codes_of_objects(labels)
    runs = _starts_of_runs(labels)
    of_runs, first, code = np.unique(labels[runs], return_index=True, return_inverse=True)
    is_missing = of_runs != of_runs if labels.dtype.kind in "fcmM" else np.zeros(len(of_runs), dtype=bool)
    first = first[~is_missing]
    rank = np.full(len(of_runs), -1, dtype=np.intp)
    rank[np.flatnonzero(~is_missing)[np.argsort(first)]] = np.arange(len(first))
    lengths = np.diff(np.append(runs, len(labels)))
    return np.repeat(rank[code], lengths), labels[runs][np.sort(first)]


def _starts_of_runs(labels: npt.NDArray[Any]) -> npt.NDArray[np.intp]:
    """Rows whose label is not that of the row before: sorting these alone is enough."""
    starts = np.ones(len(labels), dtype=bool)
    np.not_equal(labels[1:], labels[:-1], out=starts[1:])
    return np.flatnonzero(starts)


def _codes_of_objects(labels: npt.NDArray[Any]) -> tuple[npt.NDArray[np.intp], npt.NDArray[Any]]:
    numbers: dict[Any, int] = {}
    try:
        codes = np.fromiter(
            (-1 if is_missing(label) else numbers.setdefault(label, len(numbers)) for label in labels),
            dtype=np.intp, count=len(labels))
    except TypeError as error:
        raise TypeError(f"groups has a label that cannot name a set: {error}") from None
    return codes, np.fromiter(numbers, dtype=object, count=len(numbers))

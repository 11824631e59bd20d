"""What functions return: columns of results as attributes."""

from __future__ import annotations

from abc import ABC, abstractmethod
from typing import Any, Iterable, Iterator, Mapping, TypeVar

import numpy as np

Self = TypeVar("Self", bound="Columns")

#: A NumPy scalar in the results of one analysis, an array with an entry a set in those of many.
Field = Any


class Columns(ABC):
    """Named columns, which are attributes, with the options that they were computed by.

    Nothing can be assigned. An index takes sets out of the results of many: `results[3]` is one analysis,
    `results[results.k > 2]` has the sets with more than two studies.
    """

    #: A column that is always there, with an entry for each thing that an index counts.
    _counted = "status"

    _columns: dict[str, Any]
    #: The options by name, defaults included.
    options: dict[str, Any]

    def __init__(self, columns: Mapping[str, Any], options: Mapping[str, Any]) -> None:
        self.__dict__.update(columns)
        self.__dict__["_columns"] = dict(columns)
        self.__dict__["options"] = dict(options)

    @property
    def columns(self) -> tuple[str, ...]:
        """Names of the columns that were computed."""
        return tuple(self._columns)

    def __getattr__(self, name: str) -> Any:
        if name in type(self).__annotations__ and "_columns" in self.__dict__:
            raise AttributeError(f"column {name!r} was not computed; those that were: {', '.join(self.columns)}")
        raise AttributeError(f"{type(self).__name__!r} object has no attribute {name!r}")

    def __setattr__(self, name: str, value: Any) -> None:
        raise AttributeError(f"cannot assign to {name!r}: results do not change")

    def __delattr__(self, name: str) -> None:
        raise AttributeError(f"cannot delete {name!r}: results do not change")

    def __len__(self) -> int:
        if self._is_one():
            raise TypeError(f"this {type(self).__name__} is one analysis and has no length")
        return len(self._columns[self._counted])

    def __bool__(self) -> bool:
        return True

    def __iter__(self: Self) -> Iterator[Self]:
        return (self[index] for index in range(len(self)))

    def __getitem__(self: Self, index: Any) -> Self:
        if isinstance(index, str):
            raise TypeError(f"columns are attributes: .{index} in place of [{index!r}]")
        if self._is_one():
            raise TypeError(f"this {type(self).__name__} is one analysis; its columns are attributes")
        return self._with({name: self._entries(column, index) for name, column in self._columns.items()})

    def to_frame(self) -> Any:
        """Return the columns as a pandas DataFrame with a row a set.

        Raises
        ------
        ImportError
            If pandas is not installed; nothing else here needs it.
        """
        return import_pandas().DataFrame({name: np.atleast_1d(column) for name, column in self._columns.items()})

    def _with(self: Self, columns: Mapping[str, Any]) -> Self:
        return type(self)(columns, self.options)

    def _entries(self, column: Any, index: Any) -> Any:
        """Sets are the last dimension."""
        return column[..., index][()]

    def _is_one(self) -> bool:
        return np.ndim(self._columns[self._counted]) == 0

    def __repr__(self) -> str:
        lines = self._lines() if self._is_one() else table_of_sets(self, self._shown())
        return "\n".join([f"{type(self).__name__}: {self._title()}", *lines])

    @abstractmethod
    def _title(self) -> str:
        """First line of the text."""

    @abstractmethod
    def _lines(self) -> Iterable[str]:
        """Text of one analysis, below the title."""

    @abstractmethod
    def _shown(self) -> tuple[str, ...]:
        """Columns that a table of many analyses shows, those of them that were computed."""


def import_pandas() -> Any:
    """Return the module pandas, or say what needs it."""
    try:
        import pandas  # type: ignore[import]
    except ImportError:
        raise ImportError("to_frame() needs pandas, which is not installed") from None
    return pandas


def number(value: Any) -> str:
    """Return a number with four decimals, or four digits where these say more; anything else as it is."""
    if not isinstance(value, float):  # of which float64 is a kind
        return str(value)
    return f"{value:.4f}" if value == 0 or 1e-3 <= abs(value) < 1e6 else f"{value:.4g}"


def interval(lower: Any, upper: Any) -> str:
    """Return "[lower, upper]"."""
    return f"[{number(lower)}, {number(upper)}]"


def counted(count: int, noun: str) -> str:
    """Return "1 study", "2 studies"."""
    if count == 1:
        return f"1 {noun}"
    return f"{count} {noun[:-1] + 'ies' if noun.endswith('y') else noun + 's'}"


def p_text(value: float) -> str:
    """Return "= 0.0123" or "< 0.0001"."""
    return "< 0.0001" if value < 1e-4 else f"= {value:.4f}"


def aligned(rows: list[list[str]]) -> list[str]:
    """Return the lines of a table, each column as wide as its widest cell."""
    widths = [max(map(len, column)) for column in zip(*rows)]
    return ["  " + "  ".join(cell.rjust(width) for cell, width in zip(row, widths)) for row in rows]


def table_of_sets(results: Columns, shown: Iterable[str], most: int = 6) -> list[str]:
    """Return the first and last sets as lines of text."""
    names = [name for name in shown if name in results.columns]
    if not names:
        return []
    count = len(results)
    half = most // 2
    listed = range(count) if count <= most else [*range(half), *range(count - half, count)]
    rows = [["", *names]]
    rows += [[str(row), *(number(getattr(results, name)[row]) for name in names)] for row in listed]
    if count > most:
        rows.insert(1 + half, ["..."] * len(rows[0]))
    return aligned(rows)

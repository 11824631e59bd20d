"""The argument `columns`: which results are computed."""

from __future__ import annotations

from typing import Any, Iterable

from ._warn import LEFT_OUT, warn_of_one


def wanted_columns(columns: Iterable[str] | None, known: tuple[str, ...]) -> frozenset[str] | None:
    """Return the names, with `status`, which no result goes without; None for all."""
    if columns is None:
        return None
    if not hasattr(columns, "__iter__"):
        raise TypeError(f"columns is {columns!r}; names of columns are needed")
    wanted = frozenset([columns] if isinstance(columns, str) else columns) | {"status"}
    unknown = sorted(map(repr, wanted.difference(known)))
    if unknown:
        raise ValueError(f"columns has {', '.join(unknown)}, which is none of: {', '.join(known)}")
    return wanted


def columns_of_one(
    columns: dict[str, Any], wanted: frozenset[str] | None, left_out: str = LEFT_OUT
) -> dict[str, Any]:
    """Return the only entry of each column, after warning of what the analysis says of itself."""
    one = {name: column[0] if column.ndim == 1 else column[..., 0] for name, column in columns.items()}
    warn_of_one(one, left_out)
    return one if wanted is None else {name: column for name, column in one.items() if name in wanted}


def also_left_out(wanted: frozenset[str] | None) -> frozenset[str] | None:
    """Return the columns that the warnings of one analysis need beside those that are wanted."""
    return None if wanted is None else wanted | {"left_out"}

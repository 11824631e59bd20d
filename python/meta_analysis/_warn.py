"""Warnings of one analysis, which has nobody to read its column `status`."""

from __future__ import annotations

import os
import sys
import warnings
from typing import Any

from . import _core

_package = os.path.dirname(__file__) + os.sep


class MetaAnalysisWarning(UserWarning):
    """Something about the studies or the results of one analysis that its reader should know."""


def status_text(status: int) -> str:
    """Return the sentence of a status.

    Parameters
    ----------
    status : int
        An entry of the column `status`.

    Examples
    --------
    >>> import meta_analysis
    >>> meta_analysis.status_text(460105)
    'No study could be used: there is nothing to pool.'
    """
    return _core.status_text(int(status))


def exclusion_text(exclusion: int) -> str:
    """Return the reason for which a study has no effect size.

    Parameters
    ----------
    exclusion : int
        An entry of the column `exclusion`.
    """
    return _core.exclusion_text(int(exclusion))


def warn(message: str) -> None:
    """Warn at the line that called the package, however deep inside it this is."""
    level = 2
    frame = sys._getframe(1)
    while frame.f_back is not None and frame.f_code.co_filename.startswith(_package):
        frame = frame.f_back
        level += 1
    warnings.warn(message, MetaAnalysisWarning, stacklevel=level)


#: Why a study that is there cannot be pooled.
LEFT_OUT = "the effect is infinite, or the variance not positive, or not finite"


def warn_of_one(columns: dict[str, Any], left_out: str) -> None:
    """Warn of the status of one analysis, and of studies that are not in it, which `left_out` has the reasons of."""
    if columns["status"] != 0:
        warn(status_text(columns["status"]))
    if columns["left_out"] != 0:
        count = columns["left_out"]
        warn(f"{count} {'study is' if count == 1 else 'studies are'} left out: {left_out}")

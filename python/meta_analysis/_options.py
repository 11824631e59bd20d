"""Options whose type the words of the core would not tell."""

from __future__ import annotations

from typing import Any, Mapping

import numpy as np

_NUMBERS = ("level", "null_effect", "tolerance", "max_iterations", "max_step_halving", "threads", "zero_delta")
_SWITCHES = ("intercept", "dispersion", "drop_double_zero", "equal_variances", "variance_adjustment")


def checked(options: Mapping[str, Any]) -> dict[str, Any]:
    """Return the options, truth values of NumPy as those of Python.

    Raise TypeError for text in place of a number, which the core would read and results keep as text, and for
    switches that are neither True nor False.
    """
    for name, value in options.items():
        if name in _NUMBERS and isinstance(value, str):
            raise TypeError(f"{name} is the text {value!r}; a number is needed")
        if name in _SWITCHES and not isinstance(value, (bool, np.bool_)):
            raise TypeError(f"{name} is {value!r}; True or False is needed")
    return {name: bool(value) if isinstance(value, np.bool_) else value for name, value in options.items()}

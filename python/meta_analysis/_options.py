"""Options that are numbers."""

from __future__ import annotations

from typing import Any, Mapping

_NUMBERS = ("level", "null_effect", "tolerance", "max_iterations", "max_step_halving", "threads", "zero_delta")


def refuse_text_for_numbers(options: Mapping[str, Any]) -> None:
    """Raise TypeError for "0.9" in place of 0.9: the core would read it, but results keep options as numbers."""
    for name in _NUMBERS:
        if isinstance(options.get(name), str):
            raise TypeError(f"{name} is the text {options[name]!r}; a number is needed")

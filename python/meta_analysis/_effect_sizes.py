"""Effect sizes of 2x2 tables and of the means of two groups."""

from __future__ import annotations

from typing import Any, Iterable, Mapping

import numpy as np
import numpy.typing as npt

from . import _core
from ._arrays import FloatArray, as_floats, describe_shape
from ._options import checked
from ._results import Columns, Field, counted, number
from ._warn import exclusion_text, warn


class EffectSizes(Columns):
    """Effect sizes of studies: what :func:`effect_sizes_binary` and :func:`effect_sizes_continuous` return.

    The fields have the shape of the data. Those that cannot be computed are NaN.

    Attributes
    ----------
    effect : effect size on the scale of the analysis, which is the logarithm for ratios
    variance : its within-study variance
    std_error : the square root of that
    ci_lower, ci_upper : confidence interval of the study's effect
    exclusion : 0, or a code that :func:`exclusion_text` puts into words; such a study is not pooled
    options : the options by name, defaults included
    """

    _counted = "effect"

    effect: Field
    variance: Field
    std_error: Field
    ci_lower: Field
    ci_upper: Field
    exclusion: Field

    def _entries(self, column: Any, index: Any) -> Any:
        return column[index]

    def _title(self) -> str:
        shape = np.shape(self.effect)
        count = " x ".join(map(str, shape))
        return f"{self.options['measure']}, {count + ' studies' if shape else 'one study'}"

    def _lines(self) -> Iterable[str]:
        return [f"  {name:9}  {number(getattr(self, name))}" for name in self.columns]

    def _shown(self) -> tuple[str, ...]:
        return self.columns if np.ndim(self.effect) == 1 else ()


def effect_sizes_binary(
    *,
    treatment_events: npt.ArrayLike,
    control_events: npt.ArrayLike,
    treatment_nonevents: npt.ArrayLike | None = None,
    control_nonevents: npt.ArrayLike | None = None,
    treatment_n: npt.ArrayLike | None = None,
    control_n: npt.ArrayLike | None = None,
    measure: str = "odds-ratio",
    zero_cells: str = "each",
    zero_delta: float = 0.5,
    drop_double_zero: bool = False,
    level: float = 0.95,
) -> EffectSizes:
    """Compute the effect sizes of 2x2 tables of a treatment and a control group.

    All arguments are given by name: numbers of events beside numbers of persons, or of those without the
    event, are easily taken for each other.

    Parameters
    ----------
    treatment_events, control_events : array_like
        Persons with the event. Arrays have one shape, whatever it is; a single number holds for all studies.
    treatment_nonevents, control_nonevents : array_like
        Persons without the event; or else
    treatment_n, control_n : array_like
        all persons of the group.
    measure : {"odds-ratio", "peto", "risk-ratio", "risk-difference"}
        Measure of the effect.
    zero_cells : {"each", "all-if-any", "all", "none"}
        Which tables receive `zero_delta` in all their cells: those with a zero cell, all when one has a
        zero cell, all, or none.
    zero_delta : float
        What is added to the cells.
    drop_double_zero : bool
        Whether tables without events, or without non-events, in both groups are left out.
    level : float
        Level of the studies' intervals, between 0 and 1.

    Returns
    -------
    EffectSizes
        Effects and variances for :func:`pool`.

    Warns
    -----
    MetaAnalysisWarning
        When the data have one dimension and a study has impossible values or no effect size.

    Examples
    --------
    >>> from meta_analysis import effect_sizes_binary
    >>> effects = effect_sizes_binary(treatment_events=[4, 6], treatment_n=[123, 306],
    ...                               control_events=[11, 29], control_n=[139, 303])
    >>> effects.effect.round(4).tolist()
    [-0.9387, -1.6662]
    """
    options = checked({
        "measure": measure,
        "zero_cells": zero_cells,
        "zero_delta": zero_delta,
        "drop_double_zero": drop_double_zero,
        "level": level,
    })
    groups = {
        **_counts_of("treatment", treatment_events, treatment_nonevents, treatment_n),
        **_counts_of("control", control_events, control_nonevents, control_n),
    }
    return _computed(_core.effects_of_tables, groups, options)


def effect_sizes_continuous(
    *,
    treatment_n: npt.ArrayLike,
    treatment_mean: npt.ArrayLike,
    treatment_sd: npt.ArrayLike,
    control_n: npt.ArrayLike,
    control_mean: npt.ArrayLike,
    control_sd: npt.ArrayLike,
    measure: str = "cohens-d",
    equal_variances: bool = False,
    variance_adjustment: bool = False,
    glass_group: str = "control",
    level: float = 0.95,
) -> EffectSizes:
    """Compute the effect sizes of the means of two groups, treatment less control.

    Parameters
    ----------
    treatment_n, control_n : array_like
        Persons of the group. Arrays have one shape, whatever it is; a single number holds for all studies.
    treatment_mean, control_mean : array_like
        Means of the outcome.
    treatment_sd, control_sd : array_like
        Standard deviations of the outcome.
    measure : {"cohens-d", "hedges-g", "glass-delta", "mean-difference"}
        Measure of the effect.
    equal_variances : bool
        Whether a mean difference pools the variances of the groups.
    variance_adjustment : bool
        Whether Cohen's d and Hedges' g have the adjusted variance.
    glass_group : {"control", "treatment"}
        The group whose standard deviation Glass's delta divides by.
    level : float
        Level of the studies' intervals, between 0 and 1.

    Returns
    -------
    EffectSizes
        Effects and variances for :func:`pool`.

    Warns
    -----
    MetaAnalysisWarning
        When the data have one dimension and a study has impossible values or no effect size.

    Examples
    --------
    >>> from meta_analysis import effect_sizes_continuous
    >>> effects = effect_sizes_continuous(treatment_n=155, treatment_mean=55, treatment_sd=47,
    ...                                   control_n=156, control_mean=75, control_sd=64,
    ...                                   measure="mean-difference")
    >>> float(effects.effect)
    -20.0
    """
    options = checked({
        "measure": measure,
        "equal_variances": equal_variances,
        "variance_adjustment": variance_adjustment,
        "glass_group": glass_group,
        "level": level,
    })
    groups = {
        name: as_floats(name, values)
        for name, values in {
            "treatment_n": treatment_n,
            "treatment_mean": treatment_mean,
            "treatment_sd": treatment_sd,
            "control_n": control_n,
            "control_mean": control_mean,
            "control_sd": control_sd,
        }.items()
    }
    return _computed(_core.effects_of_means, groups, options)


def _counts_of(
    group: str, events: npt.ArrayLike, nonevents: npt.ArrayLike | None, persons: npt.ArrayLike | None
) -> dict[str, FloatArray]:
    """Return events and non-events, named as what was given for them."""
    names = f"{group}_events", f"{group}_nonevents", f"{group}_n"
    if (nonevents is None) == (persons is None):
        given = f"neither {names[1]} nor" if persons is None else f"both {names[1]} and"
        raise TypeError(f"{given} {names[2]} {'is' if persons is None else 'are'} given; one of them is needed")
    with_event = as_floats(names[0], events)
    if persons is None:
        return {names[0]: with_event, names[1]: as_floats(names[1], nonevents)}  # type: ignore[arg-type]
    all_persons = as_floats(names[2], persons)
    _common_shape({names[0]: with_event, names[2]: all_persons})
    return {names[0]: with_event, names[2]: all_persons - with_event}


def _common_shape(arrays: Mapping[str, FloatArray]) -> tuple[int, ...]:
    """Return the shape of those that are no single numbers."""
    shaped = [(name, array.shape) for name, array in arrays.items() if array.ndim > 0]
    for name, shape in shaped:
        if shape != shaped[0][1]:
            raise ValueError(f"{shaped[0][0]} has {describe_shape(shaped[0][1])}, {name} {describe_shape(shape)}")
    return shaped[0][1] if shaped else ()


def _computed(compute: Any, groups: Mapping[str, FloatArray], options: dict[str, Any]) -> EffectSizes:
    shape = _common_shape(groups)
    if len(shape) > 1 and options.get("zero_cells") == "all-if-any":
        raise ValueError(f"zero_cells is 'all-if-any', which is about the studies of one analysis; the data have "
                         f"{len(shape)} dimensions")
    in_columns = all(array.ndim == 0 or array.flags.f_contiguous for array in groups.values())
    order = "F" if in_columns else "C"  # so that most arrays are one row as they stand
    rows = (np.broadcast_to(array, shape).reshape(-1, order=order) for array in groups.values())  # type: ignore
    columns = {
        name: column.reshape(shape, order=order)[()] for name, column in compute(*rows, options).items()}
    if len(shape) == 1:
        _warn_of_excluded(columns["exclusion"])
    return EffectSizes(columns, options)


#: No value, and left out by the caller's own wish.
_QUIET = (_core.EXCLUSION_NONE, _core.EXCLUSION_MISSING_VALUE, _core.EXCLUSION_DROPPED)


def _warn_of_excluded(exclusions: npt.NDArray[Any]) -> None:
    excluded = np.flatnonzero(~np.isin(exclusions, _QUIET))
    if len(excluded) == 0:
        return
    reasons = [f"study {study}: {exclusion_text(exclusions[study])}" for study in excluded[:5]]
    more = [] if len(excluded) <= 5 else ["..."]
    warn(f"{len(excluded)} of {counted(len(exclusions), 'study')} without an effect size that can be pooled; "
         f"counted from 0, {'; '.join(reasons + more)}")

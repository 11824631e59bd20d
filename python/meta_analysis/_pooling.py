"""Pooling of effect sizes."""

from __future__ import annotations

from typing import Any, Iterable

import numpy as np
import numpy.typing as npt

from . import _core
from ._arrays import FloatArray, as_floats, check_same_shape
from ._columns import also_left_out, columns_of_one, wanted_columns
from ._groups import group_rows
from ._options import checked
from ._results import Columns, Field, counted, interval, number, p_text
from ._warn import warn


class PoolResult(Columns):
    """Pooled effects: what :func:`pool` returns.

    The fields are scalars of NumPy where one set was pooled, else arrays with an entry a set. What a model
    does not define is NaN.

    Attributes
    ----------
    groups : labels of the sets; only where `groups` was given
    k : studies that were pooled
    estimate : pooled effect size
    std_error : its standard error
    statistic : z, or t under the adjustment after Knapp and Hartung
    p : two-sided p-value
    mlog10p : -log10(p), right also where p underflows
    ci_lower, ci_upper : confidence interval of the pooled effect
    tau2 : between-study variance
    tau2_lower, tau2_upper : its confidence interval
    q, q_df, q_p : Cochran's Q, its degrees of freedom and p-value
    i2 : I², a fraction
    pi_lower, pi_upper : prediction interval of the true effect of a new study
    status : 0, or a code that :func:`status_text` puts into words
    left_out : studies that are not missing but cannot be pooled
    options : the options by name, defaults included
    columns : names of the columns that were computed
    """

    groups: Field
    k: Field
    estimate: Field
    std_error: Field
    statistic: Field
    p: Field
    mlog10p: Field
    ci_lower: Field
    ci_upper: Field
    tau2: Field
    tau2_lower: Field
    tau2_upper: Field
    q: Field
    q_df: Field
    q_p: Field
    i2: Field
    pi_lower: Field
    pi_upper: Field
    status: Field
    left_out: Field

    def _title(self) -> str:
        model = "fixed-effect model"
        if self.options["model"] == "random":
            model = f"random-effects model ({self.options['tau2']})"
            if self.options["knapp_hartung"] != "none":
                model += f", Knapp-Hartung {self.options['knapp_hartung']}"
        count = counted(self.k, "study") if self._is_one() and "k" in self.columns else None
        return f"{count or ('one set' if self._is_one() else counted(len(self), 'set'))}, {model}"

    def _lines(self) -> Iterable[str]:
        level = f"{100 * self.options['level']:.10g}%"
        has = set(self.columns).issuperset
        if has({"groups"}):
            yield f"  group          {self.groups}"
        if has({"estimate", "ci_lower", "ci_upper"}):
            yield f"  estimate       {number(self.estimate)}, {level} CI {interval(self.ci_lower, self.ci_upper)}"
        if has({"std_error", "statistic", "p"}):
            is_t = self.options["model"] == "random" and self.options["knapp_hartung"] != "none"
            yield (f"  test           standard error {number(self.std_error)}, {'t' if is_t else 'z'} = "
                   f"{number(self.statistic)}, p {p_text(self.p)}")
        if has({"pi_lower", "pi_upper"}) and not np.isnan(self.pi_lower):
            yield f"  new study      {level} PI {interval(self.pi_lower, self.pi_upper)}"
        if has({"tau2"}) and not np.isnan(self.tau2):
            its_interval = ""
            if has({"tau2_lower", "tau2_upper"}) and not np.isnan(self.tau2_lower):
                its_interval = f", {level} CI {interval(self.tau2_lower, self.tau2_upper)}"
            yield f"  tau²           {number(self.tau2)}{its_interval}"
        if has({"q", "q_df", "q_p", "i2"}):
            yield (f"  heterogeneity  Q = {number(self.q)}, df = {self.q_df}, p {p_text(self.q_p)}, "
                   f"I² = {100 * self.i2:.2f}%")
        if self.status != 0:
            yield f"  status         {self.status}: {_core.status_text(int(self.status))}"

    def _shown(self) -> tuple[str, ...]:
        return "groups", "k", "estimate", "std_error", "ci_lower", "ci_upper", "p", "tau2", "i2", "status"


def pool(
    effects: npt.ArrayLike,
    variances: npt.ArrayLike,
    *,
    tau2: str = "reml",
    knapp_hartung: str = "none",
    model: str = "random",
    level: float = 0.95,
    prediction: str = "t-k-2",
    tau2_interval: str = "q-profile",
    groups: Any = None,
    threads: int = 0,
    tau2_search: str = "global",
    null_effect: float = 0.0,
    tolerance: float = 1e-6,
    max_iterations: int = 100,
    max_step_halving: int = 5,
    columns: Iterable[str] | None = None,
) -> PoolResult:
    """Pool effect sizes by inverse variance, one set of studies or many.

    Parameters
    ----------
    effects : array_like
        Effect sizes on the scale of the analysis, which is the logarithm for ratios. One dimension is one
        set, or with `groups` many in long format; two are studies x sets. A NaN, or what a masked array or
        pandas object hides, is a study that is not in the set.
    variances : array_like
        Within-study variances, in the shape of `effects`.
    tau2 : {"reml", "he", "hs", "dl", "sj", "ml", "eb", "pm"}
        Estimator of the between-study variance.
    knapp_hartung : {"none", "adjusted", "truncated", "if-heterogeneous"}
        Adjustment of variance and test after Knapp and Hartung.
    model : {"random", "fixed"}
        Whether true effects vary between studies. The fixed model uses `level` and `null_effect` alone.
    level : float
        Level of the intervals, between 0 and 1.
    prediction : {"t-k-2", "t-k-1", "normal"}
        Distribution of the prediction interval.
    tau2_interval : {"q-profile", "profile-likelihood", "none"}
        Interval of tau²; profile likelihood for "ml" and "reml" alone.
    groups : array_like, optional
        A label for each study, of any type that can be a key: the studies with one label are a set, wherever
        they stand. The sets come in the order in which their labels first appear. Studies whose label is
        missing (NaN, None, NaT, NA, or masked) are in no set, which is warned of.
    threads : int
        Threads that share the sets; 0 is one for each processor. Results do not depend on it.
    tau2_search : {"global", "scoring"}
        How "ml", "reml" and "eb" find their estimate: the proved global maximum or root, or scoring steps.
    null_effect : float
        Effect under the null hypothesis; for the fixed model alone.
    tolerance, max_iterations, max_step_halving : float, int, int
        Where scoring stops: the size of its last step, and the most steps and halvings of one.
    columns : iterable of str, optional
        Fields of the result to compute, all by default; `status` is always among them. What only others need
        is not computed, which saves time for many sets.

    Returns
    -------
    PoolResult
        Fields are scalars for one set, else arrays with an entry a set.

    Warns
    -----
    MetaAnalysisWarning
        For one set alone: when its status is not 0, or studies are left out because their effect is infinite
        or their variance not positive and finite. Results of many have columns for both.

    Notes
    -----
    Arrays of float64 are read where they stand, whatever their strides; all else is converted once. Objects of
    pandas are taken by position, whatever their indexes. To save memory, variances that all sets share can be
    ``numpy.broadcast_to(v[:, None], effects.shape)``. Other threads of Python run meanwhile, and Ctrl-C ends a
    long run.

    Examples
    --------
    >>> import numpy as np
    >>> from meta_analysis import pool
    >>> effects = np.array([-0.89, -1.59, -1.35, -1.44, -0.22, -0.79])
    >>> variances = np.array([0.33, 0.19, 0.41, 0.02, 0.05, 0.01])
    >>> result = pool(effects, variances, knapp_hartung="adjusted")
    >>> round(float(result.estimate), 4)
    -0.991
    """
    options = checked({
        "model": model,
        "tau2": tau2,
        "knapp_hartung": knapp_hartung,
        "tau2_interval": tau2_interval,
        "prediction": prediction,
        "level": level,
        "tau2_search": tau2_search,
        "null_effect": null_effect,
        "tolerance": tolerance,
        "max_iterations": max_iterations,
        "max_step_halving": max_step_halving,
        "threads": threads,
    })
    if model == "random" and null_effect != 0:
        raise ValueError(f"null_effect is {null_effect}, but model is 'random', which tests against 0 alone")
    wanted = wanted_columns(columns, _core.pool_columns)
    y = as_floats("effects", effects)
    v = as_floats("variances", variances)
    shape = check_same_shape(effects=y, variances=v)
    if groups is not None:
        return _pool_groups(y, v, groups, options, wanted)
    if len(shape) == 1:
        one = _core.pool_block(y, v, options, also_left_out(wanted))
        return PoolResult(columns_of_one(one, wanted), options)
    if len(shape) == 2:
        return PoolResult(_core.pool_block(y, v, options, wanted), options)
    raise ValueError(f"effects has {len(shape)} dimensions; 1 (studies) or 2 (studies x sets) are needed")


def _pool_groups(
    y: FloatArray, v: FloatArray, groups: Any, options: dict[str, Any], wanted: frozenset[str] | None
) -> PoolResult:
    if y.ndim != 1:
        raise ValueError(f"effects has {y.ndim} dimensions; with groups it needs 1, a study an entry")
    sets = group_rows(groups, len(y))
    if sets.unlabelled > 0:
        warn(f"{sets.unlabelled} of {len(y)} studies have no label in groups, and are in no set")
    if sets.order is not None:
        y, v = y[sets.order], v[sets.order]
    y, v = np.ascontiguousarray(y), np.ascontiguousarray(v)
    columns = _core.pool_ragged(y, v, sets.offsets, options, wanted)
    return PoolResult({"groups": sets.labels, **columns}, options)

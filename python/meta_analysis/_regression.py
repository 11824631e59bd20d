"""Meta-regression of many sets on one design."""

from __future__ import annotations

from typing import Any, Iterable, Mapping, Sequence

import numpy as np
import numpy.typing as npt

from . import _core
from ._arrays import FloatArray, as_floats, check_same_shape
from ._columns import also_left_out, columns_of_one, wanted_columns
from ._options import checked
from ._results import Columns, Field, aligned, counted, import_pandas, number, p_text
from ._warn import LEFT_OUT

_OF_COEFFICIENTS = ("coefficient", "std_error", "statistic", "p", "mlog10p", "ci_lower", "ci_upper")


class RegressionResult(Columns):
    """Coefficients and heterogeneity: what :func:`regression` returns.

    For one set, the fields of coefficients have an entry a coefficient and the others are scalars; for many,
    the fields of coefficients are coefficients x sets and the others have an entry a set. A coefficient whose
    column depends on those before it, among the studies of the set, is NaN.

    Attributes
    ----------
    names : names of the coefficients, a tuple
    coefficient : change of the effect by one unit of the column
    std_error : its standard error
    statistic : t or z, by the option `tests`
    p : two-sided p-value
    mlog10p : -log10(p), right also where p underflows
    ci_lower, ci_upper : confidence interval of the coefficient
    covariance : covariances of the coefficients, coefficients x coefficients (x sets)
    k : studies in the regression
    rank : coefficients that are not redundant
    tau2 : between-study variance that the columns leave
    tau2_lower, tau2_upper : its confidence interval
    q, q_df, q_p : residual Q, its degrees of freedom k - rank, which those of t are, and its p-value
    i2 : residual I², a fraction
    r2 : part of tau² that the columns explain, a fraction
    dispersion : of the residuals of the fixed model; 1 without it
    model_statistic, model_df1, model_df2, model_p, model_mlog10p : test of all coefficients but the intercept,
        Wald's chi-square (`model_df2` is 0), or F under Knapp and Hartung
    status : 0, or a code that :func:`status_text` puts into words
    left_out : studies that are not missing but cannot be used, also for a missing value in the design
    options : the options by name, defaults included
    columns : names of the columns that were computed
    """

    names: tuple[str, ...]
    coefficient: Field
    std_error: Field
    statistic: Field
    p: Field
    mlog10p: Field
    ci_lower: Field
    ci_upper: Field
    covariance: Field
    k: Field
    rank: Field
    tau2: Field
    tau2_lower: Field
    tau2_upper: Field
    q: Field
    q_df: Field
    q_p: Field
    i2: Field
    r2: Field
    dispersion: Field
    model_statistic: Field
    model_df1: Field
    model_df2: Field
    model_p: Field
    model_mlog10p: Field
    status: Field
    left_out: Field

    def __init__(self, columns: Mapping[str, Any], options: Mapping[str, Any], names: Sequence[str]) -> None:
        super().__init__(columns, options)
        self.__dict__["names"] = tuple(names)

    def to_frame(self) -> Any:
        """Return a pandas DataFrame with a row a coefficient; of many sets, one a set and coefficient.

        Columns of sets are repeated for each of their coefficients; covariances are not among them. The index
        has the names of the coefficients, and before them the number of the set where there are many.

        Raises
        ------
        ImportError
            If pandas is not installed; nothing else here needs it.
        """
        pandas = import_pandas()
        shape = (len(self.names), *np.shape(self.status))
        columns = {name: np.broadcast_to(column, shape).T.ravel() for name, column in self._columns.items()
                   if name != "covariance"}
        if self._is_one():
            return pandas.DataFrame(columns, index=pandas.Index(self.names, name="name"))
        index = pandas.MultiIndex.from_product([range(len(self)), self.names], names=["set", "name"])
        return pandas.DataFrame(columns, index=index)

    def _with(self, columns: Mapping[str, Any]) -> RegressionResult:
        return type(self)(columns, self.options, self.names)

    def _title(self) -> str:
        model = f"mixed-effects model ({self.options['tau2']})"
        count = counted(self.k, "study") if self._is_one() and "k" in self.columns else None
        return (f"{count or ('one set' if self._is_one() else counted(len(self), 'set'))}, "
                f"{counted(len(self.names), 'coefficient')}, "
                f"{model if self.options['model'] == 'random' else 'fixed-effects model'}")

    def _lines(self) -> Iterable[str]:
        shown = [name for name in _OF_COEFFICIENTS if name in self.columns]
        rows = [["", *shown]]
        rows += [[name, *(number(getattr(self, column)[row]) for column in shown)]
                 for row, name in enumerate(self.names)]
        yield from aligned(rows)
        has = set(self.columns).issuperset
        if has({"tau2"}) and not np.isnan(self.tau2):
            yield f"  tau² {number(self.tau2)}"
        if has({"q", "q_df", "q_p", "i2"}):
            yield (f"  residual Q = {number(self.q)}, df = {self.q_df}, p {p_text(self.q_p)}, "
                   f"I² = {100 * self.i2:.2f}%")
        if self.status != 0:
            yield f"  status {self.status}: {_core.status_text(int(self.status))}"

    def _shown(self) -> tuple[str, ...]:
        return "k", "rank", "tau2", "q", "q_df", "q_p", "i2", "status"


def regression(
    effects: npt.ArrayLike,
    variances: npt.ArrayLike,
    design: npt.ArrayLike,
    *,
    intercept: bool = False,
    names: Sequence[str] | None = None,
    tau2: str = "reml",
    knapp_hartung: str = "none",
    model: str = "random",
    tests: str = "t",
    dispersion: bool = False,
    level: float = 0.95,
    tau2_interval: str = "q-profile",
    threads: int = 0,
    tau2_search: str = "global",
    tolerance: float = 1e-6,
    max_iterations: int = 100,
    max_step_halving: int = 5,
    columns: Iterable[str] | None = None,
) -> RegressionResult:
    """Regress effect sizes on the columns of a design, one set of studies or many sets on one design.

    Parameters
    ----------
    effects, variances : array_like
        As for :func:`pool`: one dimension is one set, two are studies x sets with NaN for a study that is not
        in the set.
    design : array_like
        Studies x coefficients; a pandas DataFrame gives the coefficients their names. A study with a NaN
        among them is in no set. The first column of ones is the intercept.
    intercept : bool
        Whether a column of ones is put before those of the design.
    names : sequence of str, optional
        Names of the columns of the design, where it does not have them itself.
    tau2 : {"reml", "he", "hs", "dl", "sj", "ml", "eb", "pm"}
        Estimator of the between-study variance that the columns leave.
    knapp_hartung : {"none", "adjusted", "truncated", "if-heterogeneous"}
        Adjustment of variances and tests after Knapp and Hartung.
    model : {"random", "fixed"}
        Whether true effects vary beyond what the columns explain.
    tests : {"t", "normal"}
        Distribution of tests and intervals of coefficients; the adjustment takes t always.
    dispersion : bool
        Whether the fixed model scales variances by the dispersion of the residuals.
    level, tau2_interval, threads, tau2_search, tolerance, max_iterations, max_step_halving, columns
        As for :func:`pool`.

    Returns
    -------
    RegressionResult

    Warns
    -----
    MetaAnalysisWarning
        For one set alone, as :func:`pool` does.

    Examples
    --------
    >>> import numpy as np
    >>> from meta_analysis import regression
    >>> result = regression([0.1, 0.3, 0.5, 0.7], [0.01, 0.01, 0.01, 0.01],
    ...                     np.array([[1.0], [2.0], [3.0], [4.0]]), intercept=True, names=["dose"])
    >>> result.names
    ('intercept', 'dose')
    >>> result.coefficient.round(4).tolist()
    [-0.1, 0.2]
    """
    options = checked({
        "model": model,
        "tau2": tau2,
        "knapp_hartung": knapp_hartung,
        "tau2_interval": tau2_interval,
        "tests": tests,
        "dispersion": dispersion,
        "level": level,
        "tau2_search": tau2_search,
        "tolerance": tolerance,
        "max_iterations": max_iterations,
        "max_step_halving": max_step_halving,
        "threads": threads,
    })
    checked({"intercept": intercept})
    wanted = wanted_columns(columns, _core.regression_columns)
    y = as_floats("effects", effects)
    v = as_floats("variances", variances)
    shape = check_same_shape(effects=y, variances=v)
    if len(shape) not in (1, 2):
        raise ValueError(f"effects has {len(shape)} dimensions; 1 (studies) or 2 (studies x sets) are needed")
    x, labels = _design(design, names, intercept, shape[0])
    if len(shape) == 2:
        return RegressionResult(_core.regress_block(y, v, x, options, wanted), options, labels)
    one = _core.regress_block(y, v, x, options, also_left_out(wanted))
    reasons = LEFT_OUT + ", or the design has a missing value"
    return RegressionResult(columns_of_one(one, wanted, reasons), options, labels)


def _design(
    design: npt.ArrayLike, names: Sequence[str] | None, intercept: bool, studies: int
) -> tuple[FloatArray, list[str]]:
    x = as_floats("design", design)
    if x.ndim != 2:
        raise ValueError(f"design has {counted(x.ndim, 'dimension')}; it needs 2, studies x coefficients")
    if len(x) != studies:
        raise ValueError(f"effects has {counted(studies, 'study')}, design {counted(len(x), 'row')}")
    if x.shape[1] == 0 and not intercept:
        raise ValueError("design has no columns")
    infinite = np.flatnonzero(np.isinf(x).any(axis=1))
    if len(infinite) > 0:
        raise ValueError(f"design has infinite values, the first in row {infinite[0]}")
    labels = _names(design, names, x.shape[1])
    if intercept:
        return np.column_stack([np.ones(studies), x]), ["intercept", *labels]
    return x, labels


def _names(design: Any, names: Sequence[str] | None, count: int) -> list[str]:
    if names is None:
        of_frame = getattr(design, "columns", None)
        return [f"x{column}" for column in range(count)] if of_frame is None else list(map(str, of_frame))
    labels = [names] if isinstance(names, str) else list(map(str, names))
    if len(labels) != count:
        raise ValueError(f"names has {counted(len(labels), 'name')}, design {counted(count, 'column')}")
    return labels

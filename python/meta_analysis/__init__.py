"""Meta-analysis of one set of studies or of millions, on arrays of NumPy.

:func:`pool` pools effect sizes, :func:`effect_sizes_binary` and :func:`effect_sizes_continuous` compute them
from tables and means, :func:`regression` regresses them on covariates.
"""

from ._core import version as __version__
from ._effect_sizes import EffectSizes, effect_sizes_binary, effect_sizes_continuous
from ._pooling import PoolResult, pool
from ._regression import RegressionResult, regression
from ._warn import MetaAnalysisWarning, exclusion_text, status_text

__all__ = [
    "EffectSizes",
    "MetaAnalysisWarning",
    "PoolResult",
    "RegressionResult",
    "__version__",
    "effect_sizes_binary",
    "effect_sizes_continuous",
    "exclusion_text",
    "pool",
    "regression",
    "status_text",
]

from typing import Any, Collection, Mapping

import numpy as np
import numpy.typing as npt

_Floats = npt.NDArray[np.float64]
_Options = Mapping[str, Any]
_Columns = dict[str, npt.NDArray[Any]]

version: str
pool_columns: tuple[str, ...]
regression_columns: tuple[str, ...]
EXCLUSION_NONE: int
EXCLUSION_MISSING_VALUE: int
EXCLUSION_DROPPED: int

def pool_block(
    effects: _Floats, variances: _Floats, options: _Options, wanted: Collection[str] | None
) -> _Columns: ...
def pool_ragged(
    effects: _Floats,
    variances: _Floats,
    offsets: npt.NDArray[np.uintp],
    options: _Options,
    wanted: Collection[str] | None,
) -> _Columns: ...
def regress_block(
    effects: _Floats, variances: _Floats, design: _Floats, options: _Options, wanted: Collection[str] | None
) -> _Columns: ...
def effects_of_tables(
    treatment_events: _Floats,
    treatment_nonevents: _Floats,
    control_events: _Floats,
    control_nonevents: _Floats,
    options: _Options,
) -> _Columns: ...
def effects_of_means(
    treatment_n: _Floats,
    treatment_mean: _Floats,
    treatment_sd: _Floats,
    control_n: _Floats,
    control_mean: _Floats,
    control_sd: _Floats,
    options: _Options,
) -> _Columns: ...
def status_text(status: int) -> str: ...
def exclusion_text(exclusion: int) -> str: ...

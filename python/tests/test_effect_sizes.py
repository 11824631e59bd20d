import numpy as np
import pytest
from conftest import FIGURES, column, figures_of
from numpy.testing import assert_allclose, assert_array_equal

import meta_analysis as ma

COUNTS = ["treatment_events", "treatment_nonevents", "control_events", "control_nonevents"]
SUMMARIES = [f"{group}_{name}" for group in ("treatment", "control") for name in ("n", "mean", "sd")]


def columns_of(data_set, names):
    return {name: column(data_set, name) for name in names}


@pytest.mark.parametrize("data_set", ["bcg_vaccine", "beta_blockers"])
@pytest.mark.parametrize("measure, key", [
    ("odds-ratio", "OR"), ("peto", "PETO"), ("risk-ratio", "RR"), ("risk-difference", "RD")])
def test_reference_figures_of_tables(data_set, measure, key):
    tables = columns_of(data_set, COUNTS)
    expected = figures_of(data_set)["tables"][f"{key}_only0"]
    found = ma.effect_sizes_binary(**tables, measure=measure)
    assert_allclose(found.effect, expected["yi"], rtol=FIGURES, atol=1e-13)
    assert_allclose(found.std_error**2, expected["vi"], rtol=FIGURES)
    persons = {f"{group}_n": tables.pop(f"{group}_nonevents") + tables[f"{group}_events"]
               for group in ("treatment", "control")}
    assert_array_equal(ma.effect_sizes_binary(**tables, **persons, measure=measure).effect, found.effect)


@pytest.mark.parametrize("options, key", [
    ({"measure": "mean-difference"}, "MD"), ({"measure": "mean-difference", "equal_variances": True}, "MD_equal_var"),
    ({}, "cohen_d"), ({"measure": "hedges-g", "variance_adjustment": True}, "hedges_g_adjusted"),
    ({"measure": "glass-delta"}, "glass_control"),
    ({"measure": "glass-delta", "glass_group": "treatment"}, "glass_treatment")], ids=lambda value: str(value))
def test_reference_figures_of_means(options, key):
    expected = figures_of("stroke_length_of_stay")[key]
    found = ma.effect_sizes_continuous(**columns_of("stroke_length_of_stay", SUMMARIES), **options)
    assert_allclose(found.effect, expected["yi"], rtol=FIGURES)
    assert_allclose(found.variance, expected["vi"], rtol=FIGURES)


@pytest.mark.parametrize("order", ["C", "F"])
def test_tables_of_many_sets_keep_their_shape(order):
    tables = columns_of("bcg_vaccine", COUNTS)
    many = {name: np.array(np.stack([counts, counts[::-1]], axis=1), order=order) for name, counts in tables.items()}
    found = ma.effect_sizes_binary(**{**many, "control_events": 11})
    one = ma.effect_sizes_binary(**{**tables, "control_events": 11})
    assert_array_equal(found.variance, np.stack([one.variance, one.variance[::-1]], axis=1))
    assert isinstance(ma.effect_sizes_binary(**dict.fromkeys(COUNTS, 5)).effect, np.float64)


def test_studies_without_an_effect_are_named_with_the_reason():
    tables = {"treatment_events": [1, -1, 3, np.nan], "treatment_n": [10, 10, 2, 10],
              "control_events": [2, 2, 2, 2], "control_n": 10}
    with pytest.warns(ma.MetaAnalysisWarning, match="2 of 4 studies.*study 1: .*study 2: "):
        found = ma.effect_sizes_binary(**tables)
    assert found.exclusion.tolist() == [0, 3, 3, 1] and np.isnan(found.effect).tolist() == [False, True, True, True]

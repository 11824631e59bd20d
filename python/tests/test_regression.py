import numpy as np
import pandas as pd
import pytest
from conftest import FIGURES, column, effects_of, figures_of, run_program
from numpy.testing import assert_allclose, assert_array_equal

import meta_analysis as ma


def bcg_trials():
    """Log risk ratios, and the design of their reference figures."""
    ratios = figures_of("bcg_vaccine")["tables"]["RR_only0"]
    design = pd.DataFrame({"latitude": column("bcg_vaccine", "latitude") - 33.46,
                           "year": column("bcg_vaccine", "year") - 1966})
    return np.array(ratios["yi"]), np.array(ratios["vi"]), design


def test_reference_figures():
    expected = figures_of("bcg_vaccine_regression_more")["REML"]
    found = ma.regression(*bcg_trials(), intercept=True, tests="normal")
    assert_allclose(found.coefficient, expected["b"], rtol=FIGURES)
    assert_allclose(found.std_error, expected["se"], rtol=FIGURES)
    assert_allclose(np.sqrt(np.diag(found.covariance)), expected["se"], rtol=FIGURES)
    interval = expected["q_profile"]
    assert_allclose([found.tau2, found.tau2_lower, found.tau2_upper],
                    [interval["estimate"], interval["lower"], interval["upper"]], rtol=1e-7)
    assert found.names == ("intercept", "latitude", "year")
    assert "13 studies, 3 coefficients" in repr(found) and "latitude" in repr(found) and "-0.0280" in repr(found)
    assert found.to_frame().loc["latitude", "coefficient"] == found.coefficient[1]


@pytest.mark.parametrize("option, of_program", [({}, []), ({"tests": "normal"}, ["--normal-tests"]),
                                                ({"knapp_hartung": "adjusted"}, ["--knapp-hartung", "adjusted"])])
def test_program_has_the_same_results_bit_for_bit(option, of_program):
    results = run_program("regression", "tests/data/teacher_expectancy.csv", "--effect-size", "effect", "--variance",
                          "variance", "--covariate", "weeks", *of_program)
    weeks = column("teacher_expectancy", "weeks")
    found = ma.regression(*effects_of("teacher_expectancy"), weeks[:, None], intercept=True, **option)
    keys = {"coefficient": "Estimation", "std_error": "BetaStandErr", "statistic": "BetaTest", "p": "BetaTestPValue",
            "ci_lower": "BetaConfInterValLower", "ci_upper": "BetaConfInterValUpper", "tau2": "Tau",
            "tau2_upper": "Tau2CIUpper", "q": "ResHomoChiSqure", "q_df": "ResHomoDf", "i2": "IresSquare",
            "r2": "RSquare"}
    assert {name: getattr(found, name).tolist() for name in keys} == {
        name: results[key] for name, key in keys.items()}


def test_sets_side_by_side_are_as_each_alone():
    effects, variances, design = bcg_trials()
    random = np.random.default_rng(3)
    many = effects[:, None] + random.normal(0, 0.3, (13, 40))
    many[random.random(many.shape) < 0.1] = np.nan
    shared = np.broadcast_to(variances[:, None], many.shape)
    together = ma.regression(many, shared, design, intercept=True, threads=2)
    for index in range(40):
        alone = ma.regression(many[:, index], variances, design, intercept=True)
        for name in alone.columns:
            assert_array_equal(getattr(together[index], name), getattr(alone, name), err_msg=name)
    frame = together.to_frame()
    assert frame.loc[(39, "year"), "p"] == together.p[2, 39] and len(frame) == 120

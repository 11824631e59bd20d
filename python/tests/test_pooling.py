import numpy as np
import pandas as pd
import pytest
from conftest import FIGURES, effects_of, figures_of, run_program
from numpy.testing import assert_allclose, assert_array_equal
from statsmodels.stats.meta_analysis import combine_effects

import meta_analysis as ma

DATA_SETS = ["passive_smoking", "teacher_expectancy", "writing_to_learn"]


def assert_same(one, other):
    """The same columns, bit for bit."""
    assert one.columns == other.columns
    for name in one.columns:
        assert_array_equal(getattr(one, name), getattr(other, name), err_msg=name)


def many_sets(count=300, studies=9):
    """Sets of which some studies are missing, and some cannot be pooled; one set has none at all."""
    random = np.random.default_rng(5)
    variances = random.uniform(0.01, 1, (studies, count))
    effects = random.normal(0.2, np.sqrt(variances + random.choice([0, 0.5], count)))
    effects[random.random(effects.shape) < 0.2] = np.nan
    variances[random.random(effects.shape) < 0.05] = -1
    effects[:, 7] = np.nan
    return effects, variances


@pytest.mark.parametrize("data_set", DATA_SETS)
@pytest.mark.parametrize("tau2, theirs", [("dl", "dl"), ("pm", "pm")])
def test_statsmodels_has_the_same_figures(data_set, tau2, theirs):
    effects, variances = effects_of(data_set)
    # Their iteration ends when Q is within `atol` of its degrees of freedom; rounding takes it past a smaller one.
    settings = {"atol": 1e-6, "maxiter": 500} if theirs == "pm" else {}
    expected = combine_effects(effects, variances, method_re=theirs, use_t=False, **settings)
    found = ma.pool(effects, variances, tau2=tau2)
    adjusted = ma.pool(effects, variances, tau2=tau2, knapp_hartung="adjusted")
    fixed = ma.pool(effects, variances, model="fixed")
    by_t = combine_effects(effects, variances, method_re=theirs, use_t=True, row_names=[""] * len(effects), **settings)
    _, random_ci, _, hksj_ci = by_t.conf_int(use_t=True)
    pairs = {
        "tau2": (found.tau2, expected.tau2),
        "estimate": (found.estimate, expected.mean_effect_re),
        "std_error": (found.std_error, expected.sd_eff_w_re),
        "ci": ((found.ci_lower, found.ci_upper), expected.conf_int(use_t=False)[1]),
        "adjusted std_error": (adjusted.std_error, expected.sd_eff_w_re_hksj),
        "adjusted ci": ((adjusted.ci_lower, adjusted.ci_upper), hksj_ci),
        "fixed": ((fixed.estimate, fixed.std_error), (expected.mean_effect_fe, expected.sd_eff_w_fe)),
        "homogeneity": ((found.q, found.q_df, found.q_p),
                        (expected.q, expected.df, expected.test_homogeneity().pvalue)),
    }
    for name, (ours, their) in pairs.items():
        assert_allclose(ours, their, rtol=1e-7, atol=1e-12, err_msg=name)


@pytest.mark.parametrize("data_set", DATA_SETS)
@pytest.mark.parametrize("knapp_hartung", ["none", "truncated"])
def test_program_has_the_same_results_bit_for_bit(data_set, knapp_hartung):
    keys = {"estimate": "EstEffectSize", "std_error": "EstStdError", "statistic": "EstZVal", "p": "EstSig",
            "ci_lower": "EstCILower", "ci_upper": "EstCIUpper", "tau2": "Tau2Var", "tau2_lower": "Tau2CILower",
            "tau2_upper": "Tau2CIUpper", "q": "HomoTestChisquareQ", "q_df": "HomoTestdf", "q_p": "HomoTestSig",
            "i2": "I2Index", "pi_lower": "PILower", "pi_upper": "PIUpper"}
    results = run_program("effects", f"tests/data/{data_set}.csv", "--effect-size", "effect", "--variance",
                          "variance", "--knapp-hartung", knapp_hartung)
    found = ma.pool(*effects_of(data_set), knapp_hartung=knapp_hartung)
    assert {name: [getattr(found, name)] for name in keys} == {name: results[key] for name, key in keys.items()}
    assert found.mlog10p == -results["EstLog10Sig"][0]


@pytest.mark.parametrize("kh, knapp_hartung", [("kh0", "none"), ("kh1", "adjusted"), ("kh2", "truncated")])
def test_reference_figures_of_reml(kh, knapp_hartung):
    odds_ratio = figures_of("bcg_vaccine")["tables"]["OR_only0"]
    expected = odds_ratio["pooled"]["REML"]
    found = ma.pool(odds_ratio["yi"], odds_ratio["vi"], knapp_hartung=knapp_hartung)
    assert_allclose(found.tau2, expected["tau2"], rtol=FIGURES)
    for name in ["estimate", "p", "ci_lower", "ci_upper", "pi_lower", "pi_upper"]:
        assert_allclose(getattr(found, name), expected[kh][name], rtol=FIGURES, err_msg=name)
    assert "13 studies" in repr(found) and "-0.7452" in repr(found) and "[-2.08" in repr(found)


@pytest.mark.filterwarnings("ignore::meta_analysis.MetaAnalysisWarning")
@pytest.mark.parametrize("options", [
    {}, {"tau2": "dl", "tau2_interval": "none"}, {"model": "fixed", "null_effect": 0.1},
    {"tau2": "ml", "tau2_search": "scoring", "tau2_interval": "profile-likelihood", "prediction": "normal"},
    {"tau2": "eb", "knapp_hartung": "if-heterogeneous", "level": 0.9, "threads": 3},
    {"columns": ["tau2", "mlog10p"]},
], ids=str)
def test_sets_side_by_side_are_as_each_alone(options):
    effects, variances = many_sets()
    together = ma.pool(effects, variances, **options)
    for index in range(effects.shape[1]):
        assert_same(together[index], ma.pool(effects[:, index], variances[:, index], **options))
    assert "300 sets" in repr(together) and len(together) == 300


def as_field(array):
    """The array as a field of records, whose strides are no multiple of its items, and which is read-only."""
    records = np.zeros(array.shape, [("flag", "i1"), ("value", "f8")])
    records["value"] = array
    records.flags.writeable = False
    return records["value"]


@pytest.mark.parametrize("arranged", [
    np.asfortranarray, lambda a: np.repeat(np.repeat(a, 2, 0), 3, 1)[::2, ::3],
    lambda a: a[::-1, ::-1].copy()[::-1, ::-1], np.ma.masked_invalid, pd.DataFrame, lambda a: a.astype(">f8"),
    lambda a: a.astype(object), lambda a: pd.DataFrame(a, dtype=object).fillna(pd.NA),
    lambda a: pd.DataFrame(a).astype("Float64"), lambda a: a.tolist(), as_field,
], ids=["Fortran", "slices", "negative", "masked", "frame", "order of bytes", "objects", "NA", "nullable",
        "lists", "field"])
def test_any_arrangement_in_memory_has_the_same_results(arranged):
    effects, variances = many_sets()
    found = ma.pool(arranged(effects), arranged(variances))
    assert_same(found, ma.pool(effects, variances))


def test_masked_studies_and_shared_variances():
    effects, variances = many_sets()
    hidden = np.ma.array(np.nan_to_num(effects), mask=np.isnan(effects))
    assert_same(ma.pool(hidden, variances), ma.pool(effects, variances))
    shared = np.broadcast_to(variances[:, :1], effects.shape)
    assert_same(ma.pool(effects, shared), ma.pool(effects, shared.copy()))


@pytest.mark.parametrize("labels, expected", [
    ([3, 1, 3, 2, 1], [3, 1, 2]),
    (np.array(["b", "a", "b", "c", "a"]), ["b", "a", "c"]),
    (["b", 1, "b", (2, 3), 1], ["b", 1, (2, 3)]),
    ([2.5, np.nan, 2.5, -np.inf, np.nan], [2.5, -np.inf]),
    (["b", None, "b", "a", None], ["b", "a"]),
    (np.array(["2020", "NaT", "2020", "1999", "NaT"], "M8[Y]"), np.array(["2020", "1999"], "M8[Y]")),
    (pd.Series(["z", None, "z", "a", None], dtype="category"), ["z", "a"]),
    (pd.Series(["z", pd.NA, "z", "a", pd.NA], dtype="string"), ["z", "a"]),
    (np.ma.array([7, 9, 7, 5, 9], mask=[0, 1, 0, 0, 1]), [7, 5]),
], ids=str)
def test_groups_come_in_the_order_in_which_they_first_appear(labels, expected):
    effects, variances = np.array([0.1, 0.5, 0.3, 0.7, 0.4]), np.array([0.02, 0.01, 0.03, 0.05, 0.04])
    rows = [[0, 2], [1, 4], [3]] if len(expected) == 3 else [[0, 2], [3]]
    if len(rows) == 3:
        found = ma.pool(effects, variances, groups=labels)
    else:
        with pytest.warns(ma.MetaAnalysisWarning, match="2 of 5 studies have no label"):
            found = ma.pool(effects, variances, groups=labels)
    assert list(found.groups) == list(expected)
    for index, of_group in enumerate(rows):
        alone = ma.pool(effects[of_group], variances[of_group])
        assert [getattr(found[index], name) for name in ("estimate", "tau2", "k")] == [
            alone.estimate, alone.tau2, alone.k]


def test_frame_has_the_columns_and_a_row_a_set():
    found = ma.pool([1.0, 2.0, 4.0], [1.0, 1.0, 1.0], groups=["a", "b", "a"], columns=["estimate", "k"])
    frame = found.to_frame()
    assert frame.columns.tolist() == ["groups", "k", "estimate", "status"]
    assert frame.values.tolist() == [["a", 2, 2.5, 0], ["b", 1, 2.0, 0]]


@pytest.mark.parametrize("effects, variances, message", [
    ([], [], "No study"),
    ([np.nan], [1], "No study"),
    ([1, np.inf, 2], [1, 1, 1], "1 study is left out"),
    ([1, 2, 3, 4], [1, 0, -1, 1], "2 studies are left out"),
])
def test_one_analysis_warns_of_what_its_reader_should_know(effects, variances, message):
    with pytest.warns(ma.MetaAnalysisWarning, match=message) as caught:
        ma.pool(effects, variances)
    assert caught[0].filename == __file__

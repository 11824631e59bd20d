"""What holds of the whole module: errors, types, threads, signals, pickles, locales."""

import concurrent.futures
import pickle
import signal
import subprocess
import threading
import time

import numpy as np
import pytest
from conftest import run_python

import meta_analysis as ma

THREE, FOUR = np.ones(3), np.ones(4)
TABLE = {"treatment_events": 1, "control_events": 2, "control_n": 10}
MEANS = {f"{group}_{name}": 2 for group in ("treatment", "control") for name in ("n", "mean", "sd")}


@pytest.mark.parametrize("call, error, message", [
    (lambda: ma.pool(THREE, FOUR), ValueError, "effects has 3 studies, variances 4 studies"),
    (lambda: ma.pool(np.ones((3, 5)), THREE), ValueError, "effects has 3 studies x 5 sets, variances 3 studies"),
    (lambda: ma.pool(1.0, 1.0), ValueError, "effects has 0 dimensions"),
    (lambda: ma.pool(np.ones((2, 2, 2)), np.ones((2, 2, 2))), ValueError, "effects has 3 dimensions"),
    (lambda: ma.pool([[1], [1, 2]], THREE), ValueError, "effects is ragged"),
    (lambda: ma.pool(["0,5", "1"], THREE), TypeError, "effects has text"),
    (lambda: ma.pool(np.array([1, "2", 3], object), THREE), TypeError, "effects has text"),
    (lambda: ma.pool(THREE, THREE + 1j), TypeError, "variances has values of type complex128"),
    (lambda: ma.pool(THREE > 0, THREE), TypeError, "effects has values of type bool"),
    (lambda: ma.pool(THREE, [1, {}, 1]), TypeError, "variances has values that are not numbers"),
    (lambda: ma.pool(THREE, THREE, tau2="remll"), ValueError, "tau2 is 'remll'; it can be: .*reml.*dl"),
    (lambda: ma.pool(THREE, THREE, tau2=None), TypeError, "tau2 is of type NoneType"),
    (lambda: ma.pool(THREE, THREE, level=95), ValueError, "level is 95; it can be: a number between"),
    (lambda: ma.pool(THREE, THREE, level=np.nan), ValueError, "level is nan"),
    (lambda: ma.pool(THREE, THREE, level="0.9"), TypeError, "level is the text '0.9'"),
    (lambda: ma.pool(THREE, THREE, groups=3), TypeError, "groups is of type int"),
    (lambda: ma.pool(THREE, THREE, columns=5), TypeError, "columns is 5"),
    (lambda: ma.regression(THREE, THREE, THREE[:, None], intercept="no"), TypeError, "intercept is 'no'; True or"),
    (lambda: ma.pool(THREE, THREE, threads=10**30), ValueError, "threads is out of range"),
    (lambda: ma.pool(THREE, THREE, tau2="dl", tau2_interval="profile-likelihood"), ValueError, "(?i)likelihood"),
    (lambda: ma.pool(THREE, THREE, columns=["tau"]), ValueError, "columns has 'tau', which is none of: k, estimate"),
    (lambda: ma.pool(THREE, THREE, groups=[1, 2]), ValueError, "effects has 3 studies, groups 2 labels"),
    (lambda: ma.pool(np.ones((3, 2)), np.ones((3, 2)), groups=[1, 2, 3]), ValueError, "effects has 2 dimensions"),
    (lambda: ma.pool(THREE, THREE, groups=[[1], [2], [3]]), TypeError, "groups has a label"),
    (lambda: ma.pool(THREE, THREE, groups=np.ones((3, 1))), ValueError, "groups has 2 dimensions"),
    (lambda: ma.effect_sizes_binary(**TABLE), TypeError, "neither treatment_nonevents nor treatment_n"),
    (lambda: ma.effect_sizes_binary(**TABLE, treatment_n=5, control_nonevents=2), TypeError, "both control_nonevents"),
    (lambda: ma.effect_sizes_binary(**TABLE, treatment_n=[5], measure="odds"), ValueError, "measure is 'odds'"),
    (lambda: ma.pool(THREE, THREE, null_effect=0.1), ValueError, "null_effect is 0.1, but model is 'random'"),
    (lambda: ma.effect_sizes_binary(**{**TABLE, "control_n": FOUR}, treatment_n=THREE), ValueError,
     "treatment_n has 3 studies, control_n 4 studies"),
    (lambda: ma.effect_sizes_continuous(**{**MEANS, "control_n": THREE, "control_sd": FOUR}), ValueError,
     "control_n has 3 studies, control_sd 4 studies"),
    (lambda: ma.regression(THREE, THREE, THREE), ValueError, "design has 1 dimension;"),
    (lambda: ma.regression(THREE, THREE, np.ones((4, 1))), ValueError, "effects has 3 studies, design 4"),
    (lambda: ma.regression(THREE, THREE, [[1], [np.inf], [2]]), ValueError, "infinite values, the first in row 1"),
    (lambda: ma.regression(THREE, THREE, np.ones((3, 1)), names=["a", "b"]), ValueError, "2 names, design 1 column"),
])
def test_errors_say_what_is_wrong(call, error, message):
    with pytest.raises(error, match=message):
        call()


EFFECTS, VARIANCES = np.array([[0.1, 0.2], [0.5, 0.1], [0.9, 0.8]]), np.full((3, 2), 0.1)
RESULTS = {
    "one": lambda: ma.pool(EFFECTS[:, 0], VARIANCES[:, 0]),
    "many": lambda: ma.pool(EFFECTS, VARIANCES, columns=["estimate"]),
    "groups": lambda: ma.pool(EFFECTS[:, 0], VARIANCES[:, 0], groups=["b", "a", "b"]),
    "effect sizes": lambda: ma.effect_sizes_continuous(**{**MEANS, "treatment_mean": [1, 3]}),
    "regression": lambda: ma.regression(EFFECTS, VARIANCES, np.ones((3, 1)), names=["mean"]),
}


@pytest.mark.parametrize("name", RESULTS)
def test_results_pickle_and_do_not_change(name):
    result = RESULTS[name]()
    copy = pickle.loads(pickle.dumps(result))
    assert repr(copy) == repr(result) and copy.columns == result.columns and copy.options == result.options
    for change in (lambda: setattr(copy, "estimate", 1), lambda: delattr(copy, copy.columns[0])):
        with pytest.raises(AttributeError, match="results do not change"):
            change()


def test_columns_that_were_not_asked_for_say_so():
    result = ma.pool(THREE, THREE, columns=["estimate"])
    with pytest.raises(AttributeError, match="'tau2' was not computed; those that were: estimate, status"):
        result.tau2
    assert not hasattr(result, "tau_squared")


def test_many_threads_may_call_at_once():
    random = np.random.default_rng(1)
    blocks = [(random.normal(size=(8, 5000)), random.uniform(0.1, 1, (8, 5000))) for _ in range(8)]
    with concurrent.futures.ThreadPoolExecutor(4) as pool:
        together = list(pool.map(lambda block: ma.pool(*block).tau2, blocks))
    for tau2, block in zip(together, blocks):
        assert (tau2 == ma.pool(*block, threads=1).tau2).all()


def sets_of_seconds():
    """Sets, some 10 seconds' worth of them, that take no memory."""
    return np.broadcast_to(np.array([[0.1], [0.9], [0.4], [0.2], [0.6]]), (5, 20_000_000))


def test_signals_end_a_long_run_and_other_threads_go_on():
    ticks = []
    ended = threading.Event()

    def tick():
        while not ended.wait(0.01):
            ticks.append(time.monotonic())

    def stop(*_):
        raise KeyboardInterrupt

    before = signal.signal(signal.SIGALRM, stop)
    ticker = threading.Thread(target=tick)
    ticker.start()
    signal.setitimer(signal.ITIMER_REAL, 0.5)
    start = time.monotonic()
    try:
        with pytest.raises(KeyboardInterrupt):
            ma.pool(sets_of_seconds(), sets_of_seconds(), columns=["tau2"], threads=1)
    finally:
        signal.signal(signal.SIGALRM, before)
        ended.set()
        ticker.join()
    assert time.monotonic() - start < 4
    assert sum(start < moment < start + 0.5 for moment in ticks) > 5


GERMAN = """
import locale
assert locale.setlocale(locale.LC_ALL, "de_DE.UTF-8") and locale.str(0.5) == "0,5"
"""
NUMBERS = """
import meta_analysis as ma
print(ma.pool([0.1, 0.5, 0.9], [0.01, 0.02, 0.03], level=0.9, tolerance=1e-7, max_iterations=50))
"""


def test_decimal_comma_changes_nothing(tmp_path):
    if subprocess.run(["localedef", "-i", "de_DE", "-f", "UTF-8", tmp_path / "de_DE.UTF-8"], capture_output=True).returncode:
        pytest.skip("no German locale can be made (package locales)")
    assert run_python(GERMAN + NUMBERS, LOCPATH=str(tmp_path)) == run_python(NUMBERS) != ""


def test_development_mode_finds_nothing():
    assert "90% CI" in run_python(NUMBERS, "-X", "dev")


def test_pandas_is_not_needed():
    assert "needs pandas" in run_python("""
import sys
sys.modules["pandas"] = None
import meta_analysis as ma
try:
    ma.pool([1.0, 2.0], [1.0, 1.0], groups=["a", "b"]).to_frame()
except ImportError as error:
    print(error)
""")

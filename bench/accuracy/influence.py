"""Measures deletion diagnostics: of models, which are regressions on a constant, and of meta-regressions.

Errors of quantities that are differences are absolute below 1, and relative above.
"""

import sys
import tempfile

from mpmath import mp, mpf

import exact
import pooling
import regression
from harness import note, run

MODELS = ["fixed", "dl", "ml", "reml", "eb"]


def without(values, i):
    return values[:i] + values[i + 1:]


def fit_at(x, y, v, t):
    return exact.Fit(x, y, [1 / (s + t) for s in v])


def variance_at(row, inverse):
    return sum(row[i] * inverse[i, j] * row[j] for i in range(len(row)) for j in range(len(row)))


def note_tau2(where, studies, model, i, found):
    """The deleted tau², of which what follows is measured as the program has it."""
    if model == "fixed":
        return mpf(0)
    t = mpf(found["InfluenceTau2Deleted"][i])
    rest = [without(values, i) for values in (studies.x, studies.y, studies.v)]
    expected = exact.tau2(model, *rest, t)
    note("influence: τ² without a study", where, t, expected, expected + min(rest[2]))
    return t


def note_study(where, studies, i, found, t, deleted_t):
    x, y, v = studies.x, studies.y, studies.v
    whole = fit_at(x, y, v, t)
    part = fit_at(without(x, i), without(y, i), without(v, i), deleted_t)
    fixed = fit_at(without(x, i), without(y, i), without(v, i), mpf(0))
    change = whole.b - part.b
    moved = sum(a * b for a, b in zip(x[i], change))
    h = whole.h[i]
    deleted_variance = variance_at(x[i], part.inverse)
    scale = mp.sqrt(h * (v[i] + deleted_t))
    note("influence: residuals", where, found["InfluenceStudentizedResidual"][i],
         (whole.r[i] + moved) / mp.sqrt(v[i] + deleted_t + deleted_variance), 1)
    note("influence: DFFITS", where, found["InfluenceDFFITS"][i], moved / scale, 1)
    cook = (change.T * whole.inverse**-1 * change)[0]
    note("influence: Cook's distances", where, found["InfluenceCookDistance"][i], cook, max(cook, 1))
    note("influence: covariance ratios", where, found["InfluenceCovarianceRatio"][i],
         mp.det(part.inverse) / mp.det(whole.inverse))
    note("influence: Q without a study", where, found["InfluenceQDeleted"][i], fixed.squares())
    note("influence: leverages", where, found["InfluenceHat"][i], h)
    note("influence: weights", where, found["InfluenceWeight"][i], 100 * whole.w[i] / sum(whole.w))
    pearson = whole.r[i]**2 * whole.w[i]
    note("influence: Baujat's axes", where, found["BaujatX"][i], pearson, max(pearson, 1))
    squared = moved**2 / deleted_variance
    note("influence: Baujat's axes", where, found["BaujatY"][i], squared, max(squared, 1))
    if "InfluenceDFBETAS" in found:
        inverse = fit_at(x, y, v, deleted_t).inverse
        for j, value in enumerate(found["InfluenceDFBETAS"][i]):
            ratio = change[j] / mp.sqrt(inverse[j, j])
            note("influence: DFBETAS", where, value, ratio, max(abs(ratio), 1))


def measure_one(studies):
    for model in MODELS:
        option = ["--model", "fixed"] if model == "fixed" else ["--tau2", model]
        found = run([*studies.arguments, *option, "--influence"])
        where = "%s, %s" % (studies.name, model.upper())
        t = found["Tau"] if "Tau" in found else found["Tau2Var"][0]
        for i in range(len(studies.y)):
            deleted = note_tau2(where, studies, model, i, found)
            note_study(where, studies, i, found, mpf(t or 0), deleted)


def measure():
    for studies in pooling.studies_with_effects():
        print("influence:", studies.name, file=sys.stderr)
        measure_one(studies)
    with tempfile.TemporaryDirectory() as folder:
        for data in regression.all_regressions(folder):
            print("influence:", data.name, file=sys.stderr)
            measure_one(data)

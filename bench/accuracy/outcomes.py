"""Measures the outcomes of one group and of two groups' rates: effects, models and the way back."""

from mpmath import mp, mpf

import exact
from harness import DATA, Z, note, read, run, upper_normal, values
from pooling import note_estimate

RATES = ["treatment_events", "treatment_time", "control_events", "control_time"]


def logistic(y, _):
    return 1 / (1 + mp.exp(-y))


def miller(y, n):
    """The inverse as Miller (1978) prints it, of twice the half sum; within the range of the transformation."""
    s = 2 * y
    least = mp.asin(mp.sqrt(1 / (n + 1)))
    if s <= least or s >= mp.pi - least:
        return mpf(0) if s <= least else mpf(1)
    root = mp.sqrt(1 - (mp.sin(s) + (mp.sin(s) - 1 / mp.sin(s)) / n)**2)
    return (1 - mp.sign(mp.cos(s)) * root) / 2


def rate_back(y, t):
    """y² - 1 / (2t) + 1 / (16 y² t²), of a value above the transform of no event."""
    return mpf(0) if 2 * y * mp.sqrt(t) <= 1 else y**2 - 1 / (2 * t) + 1 / (16 * y**2 * t**2)


def itself(y, _):
    return y


def exponential(y, _):
    return mp.exp(y)


def half(constant):
    return constant + mpf("0.5")


def proportion(effect, x, n):
    if x in (0, n) and effect in ("logit", "log", "raw"):
        x, n = half(x), n + 1
    p = x / n
    return {
        "logit": lambda: (mp.log(p / (1 - p)), 1 / x + 1 / (n - x)),
        "freeman-tukey": lambda: ((mp.asin(mp.sqrt(x / (n + 1))) + mp.asin(mp.sqrt((x + 1) / (n + 1)))) / 2,
                                  1 / (4 * n + 2)),
        "arcsine": lambda: (mp.asin(mp.sqrt(p)), 1 / (4 * n)),
        "log": lambda: (mp.log(p), 1 / x - 1 / n),
        "raw": lambda: (p, p * (1 - p) / n),
    }[effect]()


def rate(effect, x, t):
    return {
        "log": lambda: (mp.log(x / t), 1 / x),
        "square-root": lambda: (mp.sqrt(x / t), 1 / (4 * t)),
        "freeman-tukey": lambda: ((mp.sqrt(x / t) + mp.sqrt((x + 1) / t)) / 2, 1 / (4 * t)),
        "raw": lambda: (x / t, x / t**2),
    }[effect]()


def correlation(effect, r, n):
    return (mp.atanh(r), 1 / (n - 3)) if effect == "fisher-z" else (r, (1 - r * r)**2 / (n - 1))


def mean(effect, n, m, s):
    return (mp.log(m), s**2 / (n * m**2)) if effect == "log" else (m, s**2 / n)


def rates(effect, a, t1, c, t0):
    return {
        "rate-ratio": lambda: (mp.log(a * t0 / (c * t1)), 1 / a + 1 / c),
        "rate-difference": lambda: (a / t1 - c / t0, a / t1**2 + c / t0**2),
        "root-rate-difference": lambda: (mp.sqrt(a / t1) - mp.sqrt(c / t0), 1 / (4 * t1) + 1 / (4 * t0)),
    }[effect]()


# By command: data set, columns, options for them, formula, and by effect the way back with the column of the size.
CASES = {
    "proportion": ("hyperdynamic_therapy", ["events", "n"], ["--events", "--n"], proportion,
                   {"logit": logistic, "freeman-tukey": miller, "arcsine": lambda y, _: mp.sin(y)**2,
                    "log": exponential, "raw": itself}),
    "rate": ("warfarin_stroke", ["control_events", "control_time"], ["--events", "--time"], rate,
             {"log": exponential, "square-root": lambda y, _: y**2, "freeman-tukey": rate_back, "raw": itself}),
    "correlation": ("conscientiousness", ["r", "n"], ["--r", "--n"], correlation,
                    {"fisher-z": lambda y, _: mp.tanh(y), "raw": itself}),
    "mean": ("stroke_length_of_stay", ["control_n", "control_mean", "control_sd"], ["--n", "--mean", "--sd"], mean,
             {"raw": itself, "log": exponential}),
    "rates": ("warfarin_stroke", RATES, ["--" + name.replace("_", "-") for name in RATES], rates,
              {"rate-ratio": exponential, "rate-difference": itself, "root-rate-difference": itself}),
}


def slope(back, y, n):
    """What an error of the value becomes on the natural scale, at least; near an end of the range it is flat."""
    step = mpf("1e-20")
    return abs(back(y + step, n) - back(y - step, n)) / (2 * step)


def note_natural(where, back, found, effects, sizes, estimate, variance):
    mean_size = len(sizes) / sum(1 / n for n in sizes)
    for i, (y, v) in enumerate(effects):
        if back(y, sizes[i]) not in (0, 1):
            note("natural scale: studies", where, found["NaturalEffectSize"][i], back(y, sizes[i]),
                 mp.sqrt(v) * slope(back, y, sizes[i]))
    for key, y in [("EffectSize", estimate), ("CILower", estimate - Z * mp.sqrt(variance)),
                   ("CIUpper", estimate + Z * mp.sqrt(variance))]:
        note("natural scale: models", where, found["NaturalEst" + key][0], back(y, mean_size),
             mp.sqrt(variance) * slope(back, y, mean_size))


def measure_pooled_rates(where, arguments, effect, rows):
    found = run([*arguments, "--model", "fixed", "--weights", "mantel-haenszel"])
    pooled = [(a, t1, c, t0, t1 + t0) for a, t1, c, t0 in rows]
    if effect == "rate-ratio":
        r, s = sum(a * t0 / t for a, _, _, t0, t in pooled), sum(c * t1 / t for _, t1, c, _, t in pooled)
        estimate = mp.log(r / s)
        variance = sum((a + c) * t1 * t0 / t**2 for a, t1, c, t0, t in pooled) / (r * s)
    else:
        weight = sum(t1 * t0 / t for _, t1, _, t0, t in pooled)
        estimate = sum((a * t0 - c * t1) / t for a, t1, c, t0, t in pooled) / weight
        variance = sum((a * t0**2 + c * t1**2) / t**2 for a, t1, c, t0, t in pooled) / weight**2
    note_estimate("Mantel-Haenszel, Peto", where, found, estimate, variance, Z, upper_normal)


def measure():
    for command, (name, columns, options, formula, effects_of) in CASES.items():
        rows = [values(row, columns) for row in read(name)]
        named = [part for pair in zip(options, columns) for part in pair]
        for effect, back in effects_of.items():
            where = "%s, %s" % (name, effect)
            arguments = [command, str(DATA / (name + ".csv")), *named, "--effect", effect]
            found = run([*arguments, "--model", "fixed"])
            effects = [formula(effect, *row) for row in rows]
            for i, (y, v) in enumerate(effects):
                note("effects of outcomes: effect", where, found["EffectSize"][i], y, mp.sqrt(v))
                note("effects of outcomes: variance", where, found["Variance"][i], v)
            fit = exact.Fit([[mpf(1)]] * len(effects), [y for y, _ in effects], [1 / v for _, v in effects])
            estimate, variance = fit.b[0], fit.inverse[0, 0]
            note_estimate("fixed effects", where, found, estimate, variance, Z, upper_normal)
            note_natural(where, back, found, effects, [row[1] for row in rows], estimate, variance)
            if effect in ("rate-ratio", "rate-difference"):
                measure_pooled_rates(where, arguments, effect, rows)

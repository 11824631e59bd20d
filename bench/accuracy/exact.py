"""The methods of docs/methods.md in 50-digit arithmetic.

The formulas are computed as they stand there, for with 50 digits it does not matter whether a difference
cancels. Pooling is regression on a constant.
"""

from mpmath import mp, mpf, matrix

mp.dps = 50

ESTIMATORS = ["he", "hs", "dl", "sj", "ml", "reml", "eb"]
ITERATIVE = ["ml", "reml", "eb"]


def normal_quantile(p):
    return mp.sqrt(2) * mp.erfinv(2 * p - 1)


def upper_t(t, df):
    return mp.betainc(mpf(df) / 2, mpf(1) / 2, 0, df / (df + t * t), regularized=True) / 2


def t_quantile(p, df):
    start = normal_quantile(p) * (1 + mpf(2) / df)
    return mp.findroot(lambda t: upper_t(abs(t), df) - (1 - p), start)


def upper_chi(x, df):
    return mp.gammainc(mpf(df) / 2, x / 2, mp.inf, regularized=True)


def upper_f(x, df1, df2):
    return mp.betainc(mpf(df2) / 2, mpf(df1) / 2, 0, df2 / (df2 + df1 * x), regularized=True)


def table_effect(name, table):
    """Effect and variance of a 2x2 table, after 0.5 was added where it has a zero cell."""
    a, b, c, d = table
    n1, n2 = a + b, c + d
    n = n1 + n2
    if name == "odds-ratio":
        return mp.log(a * d / (b * c)), 1 / a + 1 / b + 1 / c + 1 / d
    if name == "risk-ratio":
        return mp.log(a * n2 / (c * n1)), 1 / a - 1 / n1 + 1 / c - 1 / n2
    if name == "risk-difference":
        return a / n1 - c / n2, a * b / n1**3 + c * d / n2**3
    variance = (a + c) * (b + d) * n1 * n2 / (n * n * (n - 1))
    return (a - n1 * (a + c) / n) / variance, 1 / variance


def means_effect(name, option, groups):
    """Effect and variance of two groups' sizes, means and standard deviations."""
    n1, x1, s1, n2, x2, s2 = groups
    n = n1 + n2
    pooled = ((n1 - 1) * s1**2 + (n2 - 1) * s2**2) / (n - 2)
    null = n / (n1 * n2)
    d = (x1 - x2) / mp.sqrt(pooled)
    if name == "mean-difference":
        return x1 - x2, pooled * (1 / n1 + 1 / n2) if option else s1**2 / n1 + s2**2 / n2
    if name == "cohens-d":
        return d, d**2 / (2 * (n - 2 if option else n)) + null
    if name == "hedges-g":
        m = n - 2
        j = mp.gamma(m / 2) / (mp.sqrt(m / 2) * mp.gamma((m - 1) / 2))
        g = j * d
        return g, g**2 / (2 * (n - mpf("3.94"))) + null if option else j**2 * (g**2 / (2 * n) + null)
    s, size = (s1, n1) if option else (s2, n2)
    delta = (x1 - x2) / s
    return delta, delta**2 / (2 * (size - 1)) + null


def tested_table(test, table, y):
    """Response, covariate and weight of a small-study test on tables."""
    a, b, c, d = table
    n1, n2, e, f, n = a + b, c + d, a + c, b + d, a + b + c + d
    if test == 3:
        return y, 1 / n, e * f / n
    z, v = ((n * a - e * n1) / n, n1 * n2 * e * f / (n**2 * (n - 1))) if test == 1 else (
        (n * a - e * n1) / f, n1 * n2 * e / (f * n))
    return z / v, 1 / mp.sqrt(v), v


def is_informative(name, table):
    """Whether a table with two groups has a part in the pooled effect."""
    a, b, c, d = table
    return name == "risk-difference" or (a + c > 0 and (b + d > 0 or name == "risk-ratio"))


def pool_tables(name, tables):
    """Mantel and Haenszel, or Peto: estimate and variance."""
    rows = [(a, b, c, d, a + b, c + d, a + b + c + d) for a, b, c, d in tables]
    if name == "peto":
        v = sum(1 / table_effect(name, t)[1] for t in tables)
        return sum(table_effect(name, t)[0] / table_effect(name, t)[1] for t in tables) / v, 1 / v
    if name == "odds-ratio":
        r = [(a * d / n, (a + d) / n, b * c / n, (b + c) / n) for a, b, c, d, _, _, n in rows]
        sum_r, sum_s = sum(x[0] for x in r), sum(x[2] for x in r)
        return mp.log(sum_r / sum_s), (
            sum(p * x for x, p, _, _ in r) / (2 * sum_r**2)
            + sum(p * s + q * x for x, p, s, q in r) / (2 * sum_r * sum_s)
            + sum(q * s for _, _, s, q in r) / (2 * sum_s**2))
    if name == "risk-ratio":
        sum_r, sum_s = sum(x[0] * x[5] / x[6] for x in rows), sum(x[2] * x[4] / x[6] for x in rows)
        p = sum((n1 * n2 * (a + c) - a * c * n) / n**2 for a, _, c, _, n1, n2, n in rows)
        return mp.log(sum_r / sum_s), p / (sum_r * sum_s)
    weight = sum(n1 * n2 / n for _, _, _, _, n1, n2, n in rows)
    return (sum((a * n2 - c * n1) / n for a, _, c, _, n1, n2, n in rows) / weight,
            sum((a * b * n2**3 + c * d * n1**3) / (n1 * n2 * n**2)
                for a, b, c, d, n1, n2, n in rows) / weight**2)


class Fit:
    """Weighted least squares of y on the rows of x."""

    def __init__(self, x, y, w):
        self.w, self.count, self.p = w, len(y), len(x[0])
        cross = matrix(self.p)
        moment = matrix(self.p, 1)
        for row, value, weight in zip(x, y, w):
            for i in range(self.p):
                moment[i] += weight * row[i] * value
                for j in range(self.p):
                    cross[i, j] += weight * row[i] * row[j]
        self.inverse = cross**-1
        self.b = self.inverse * moment
        columns = range(self.p)
        self.r = [value - sum(row[i] * self.b[i] for i in columns) for row, value in zip(x, y)]
        self.h = [weight * sum(row[i] * self.inverse[i, j] * row[j] for i in columns for j in columns)
                  for row, weight in zip(x, w)]

    def squares(self):
        return sum(w * r * r for w, r in zip(self.w, self.r))

    def trace(self):
        return sum(w * (1 - h) for w, h in zip(self.w, self.h))

    @property
    def df(self):
        return self.count - self.p


def inverse_root(a):
    """The generalised inverse of the square root of a symmetric matrix."""
    values, vectors = mp.eigsy(a)
    least = max(abs(value) for value in values) * mpf(10)**-30
    roots = mp.diag([1 / mp.sqrt(value) if value > least else mpf(0) for value in values])
    return vectors * roots * vectors.T


class Robust:
    """The sandwich variance CR2 (or CR0) of a fit, and Satterthwaite's degrees of freedom."""

    def __init__(self, fit, x, clusters, is_adjusted=True):
        self.fit, self.parts = fit, []
        for cluster in sorted(set(clusters)):
            rows = [i for i, value in enumerate(clusters) if value == cluster]
            part = matrix([x[i] for i in rows])
            phi = mp.diag([1 / fit.w[i] for i in rows])
            inner = phi - part * fit.inverse * part.T
            d = mp.diag([1 / mp.sqrt(fit.w[i]) for i in rows])
            a = d * inverse_root(d * inner * d) * d if is_adjusted else mp.eye(len(rows))
            g = fit.inverse * part.T * mp.diag([fit.w[i] for i in rows]) * a
            self.parts.append((g, g * part, g * phi * g.T, g * matrix([fit.r[i] for i in rows])))

    def covariance(self):
        return sum((score * score.T for *_, score in self.parts), mp.zeros(self.fit.p))

    def df(self, j):
        r = [cross[j, :] for _, cross, _, _ in self.parts]
        omega = matrix(len(r))
        for a, left in enumerate(r):
            for b, right in enumerate(r):
                omega[a, b] = -(left * self.fit.inverse * right.T)[0]
            omega[a, a] += self.parts[a][2][j, j]
        trace = sum(omega[a, a] for a in range(len(r)))
        return trace**2 / sum(value**2 for value in omega)


def score(estimator, x, y, v, t):
    """What an iterative estimator makes 0: falling through its root."""
    fit = Fit(x, y, [1 / (value + t) for value in v])
    if estimator == "eb":
        return mpf(fit.count) / fit.df * fit.squares() - fit.count
    squares = sum((w * r)**2 for w, r in zip(fit.w, fit.r))
    return squares - (sum(fit.w) if estimator == "ml" else fit.trace())


def log_likelihood(estimator, x, y, v, t):
    """Of ML and REML, but for a constant."""
    fit = Fit(x, y, [1 / (value + t) for value in v])
    twice = sum(mp.log(value + t) for value in v) + fit.squares()
    return -(twice if estimator == "ml" else twice - mp.log(mp.det(fit.inverse))) / 2


def root_of_score(estimator, x, y, v, near):
    """The solution next to `near`; 0 where the score falls from 0 on, and the likelihood is no greater there."""
    def f(t):
        return score(estimator, x, y, v, t)

    falls = f(mpf(0)) <= 0
    if falls and (near == 0 or estimator == "eb"):
        return mpf(0)
    width = mpf("1e-9")
    while f(near * (1 - width)) <= 0 or f(near * (1 + width)) >= 0:
        width *= 10
        if width > mpf("0.5"):
            if falls:
                return mpf(0)
            raise ArithmeticError("no root of %s near %s" % (estimator, near))
    root = mp.findroot(f, (near * (1 - width), near * (1 + width)), solver="anderson", tol=mpf("1e-60"))
    likelihoods = [log_likelihood(estimator, x, y, v, t) for t in (mpf(0), root)] if falls else None
    return mpf(0) if falls and likelihoods[0] >= likelihoods[1] else root


def tau2(estimator, x, y, v, near):
    """The estimator's value; of an iterative one that next to `near`."""
    if estimator in ITERATIVE:
        return root_of_score(estimator, x, y, v, near)
    k, ones = len(y), [mpf(1)] * len(y)
    if estimator == "he":
        fit = Fit(x, y, ones)
        value = sum(r * r - (1 - h) * s for r, h, s in zip(fit.r, fit.h, v)) / fit.df
    elif estimator == "sj":
        mean = sum(y) / k
        crude = sum((value - mean)**2 for value in y) / k
        fit = Fit(x, y, [crude / (s + crude) for s in v])
        value = fit.squares() / fit.df
    elif estimator == "dl":
        fit = Fit(x, y, [1 / s for s in v])
        value = (fit.squares() - fit.df) / fit.trace()
    else:
        unweighted = len(x[0]) > 1  # with predictors Hunter and Schmidt's residuals are unweighted ones
        fit = Fit(x, y, ones if unweighted else [1 / s for s in v])
        value = (sum(r * r / s for r, s in zip(fit.r, v)) - k) / sum(1 / s for s in v)
    return max(value, mpf(0))


def heterogeneity(q, k):
    """H², its bounds, I² and its bounds, of a fixed-effect model."""
    h2 = q / (k - 1)
    if q > k:
        s = (mp.log(q) - mp.log(k - 1)) / (2 * (mp.sqrt(2 * q) - mp.sqrt(2 * k - 3)))
    else:
        s = mp.sqrt((1 - 1 / (3 * mpf(k - 2)**2)) / (2 * (k - 2)))
    bounds = [mp.exp(mp.log(h2) + sign * 2 * normal_quantile(mpf("0.975")) * s) for sign in (-1, 1)]
    return [h2, *bounds], [max(mpf(0), 1 - 1 / h) for h in [h2, *bounds]]


def between_groups(groups, tau2s):
    """Q between groups of (y, v), each with its own τ²."""
    weights = [sum(1 / (v + t) for _, v in group) for group, t in zip(groups, tau2s)]
    means = [sum(y / (v + t) for y, v in group) / w for group, t, w in zip(groups, tau2s, weights)]
    mean = sum(w * m for w, m in zip(weights, means)) / sum(weights)
    return sum(w * (m - mean)**2 for w, m in zip(weights, means))


def missing_studies(method, values, centre):
    """Trim-and-fill's estimate from the effects on the scale where the largest are trimmed."""
    n = len(values)
    deviations = sorted((value - centre for value in values), key=lambda d: (abs(d), d >= 0))
    rank_sum = sum(rank for rank, d in enumerate(deviations, 1) if d > 0)
    smallest = abs(min(values) - centre)
    if method == "linear":
        missing = mpf(4 * rank_sum - n * (n + 1)) / (2 * n - 1)
    elif method == "run":
        missing = n - (1 + sum(abs(d) < smallest for d in deviations)) - 1
    else:
        square = 2 * mpf(n)**2 - 4 * rank_sum + mpf("0.25")
        missing = n - mpf("0.5") - mp.sqrt(square) if square >= 0 else 0
    return max(0, int(mp.floor(missing + mpf("0.5"))))

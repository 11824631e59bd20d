"""Upper tails of the normal, chi-square, t and F distributions, as natural logarithms, in 60-digit arithmetic.

The incomplete gamma function by its power series or Legendre's fraction, the incomplete beta function by its
fraction, both from the side where they converge rapidly.
"""

from mpmath import mp, mpf

DIGITS = 60


def continued_fraction(first, term):
    """first + a1 / (b1 + a2 / (b2 + ...)) by Lentz's method; term(k) gives a_k and b_k."""
    value = numerators = first
    denominators = mpf(0)
    k = 0
    change = mpf(0)
    while abs(change - 1) > 4 * mp.eps:
        k += 1
        a, b = term(k)
        denominators = 1 / (b + a * denominators)
        numerators = b + a / numerators
        change = numerators * denominators
        value *= change
    return value


def log_upper_gamma(a, x):
    density = a * mp.log(x) - x - mp.loggamma(a)
    if x > a + 1:
        return density - mp.log(continued_fraction(x + 1 - a, lambda k: (k * (a - k), x + 1 - a + 2 * k)))
    total = term = 1 / a
    n = a
    while term > mp.eps * total:
        n += 1
        term *= x / n
        total += term
    return mp.log1p(-total * mp.exp(density))


def log_lower_beta(a, b, x, y):
    """log P(X <= x) of a beta distribution, with y = 1 - x."""
    if x * (a + b + 2) > a + 1:
        return mp.log1p(-mp.exp(log_lower_beta(b, a, y, x)))

    def term(k):
        m, is_odd = divmod(k, 2)
        if is_odd:
            return -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1)), mpf(1)
        return m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m)), mpf(1)

    density = a * mp.log(x) + b * mp.log(y) + mp.loggamma(a + b) - mp.loggamma(a) - mp.loggamma(b)
    return density - mp.log(a * continued_fraction(mpf(1), term))


def log_tail_t(t, df):
    if t < 0:
        return mp.log1p(-mp.exp(log_tail_t(-t, df)))
    n = df + t * t
    return log_lower_beta(df / 2, mpf(1) / 2, df / n, t * t / n) - mp.log(2)


def log_tail(distribution, *arguments):
    """log P(X > x); the arguments are x and the degrees of freedom."""
    x, *df = (mpf(argument) for argument in arguments)
    if distribution == "StdNorm":
        return log_upper_gamma(mpf(1) / 2, x * x / 2) - mp.log(2) if x > 0 else mp.log(mp.erfc(x / mp.sqrt(2)) / 2)
    if distribution == "Chi":
        return log_upper_gamma(df[0] / 2, x / 2)
    if distribution == "T":
        return log_tail_t(x, df[0])
    n = df[1] + df[0] * x
    return log_lower_beta(df[1] / 2, df[0] / 2, df[1] / n, df[0] * x / n)

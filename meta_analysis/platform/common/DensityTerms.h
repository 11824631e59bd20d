#pragma once

/// The parts of a gamma or beta density whose obvious form loses digits: logarithms of gamma functions grow
/// like x log x and cancel against the powers, down to a result of order one.
///
/// The saddle-point form (Loader 2000, "Fast and accurate computation of binomial probabilities") never
/// builds the large terms: a density is a root of the parameters times exp of a few small parts.
namespace distribution {

/// 1 / sqrt(2 pi), the constant of every density in this form.
inline constexpr double invSqrtTwoPi = 0.39894228040143267794;

/// log Gamma(x) - [(x - 1/2) log x - x + log(2 pi) / 2], for x > 0: what Stirling's formula leaves out.
double StirlingRemainder(double x) noexcept;

/// u - log(1 + u) for u > -1, without the cancellation at small u.
double LogRemainder(double u) noexcept;

/// Loader's deviance count log(count / expected) + expected - count, for count > 0 and expected >= 0;
/// infinite at expected = 0. `difference` is expected - count: the caller knows it to more digits than the
/// subtraction would give.
double Deviance(double count, double expected, double difference) noexcept;

} // namespace distribution

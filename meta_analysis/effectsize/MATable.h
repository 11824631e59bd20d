#pragma once

#include <cmath>

namespace MA_NAMESPACE {

/// The 2x2 table of one study, and the variances that follow from its counts.
struct MATable
{
    double a; ///< treatment events
    double b; ///< treatment non-events
    double c; ///< control events
    double d; ///< control non-events

    double TreatmentSize() const { return a + b; }
    double ControlSize() const { return c + d; }
    double Size() const { return ControlSize() + TreatmentSize(); }

    bool HasNegative() const { return a < 0 || b < 0 || c < 0 || d < 0; }
    bool HasZeroCell() const { return a == 0 || b == 0 || c == 0 || d == 0; }
    MATable Plus(double added) const { return {a + added, b + added, c + added, d + added}; }

    /// Variance of the log odds ratio (Woolf 1955, Annals of Human Genetics 19, 251-253).
    double LogOddsRatioVariance() const { return 1.0 / b + 1.0 / a + 1.0 / c + 1.0 / d; }

    /// Variance of the log risk ratio, 1/a - 1/(a + b) + 1/c - 1/(c + d). In this form it is exactly 0 where
    /// all persons have events, which as a difference of inverses rounding turns into a tiny variance.
    double LogRiskRatioVariance() const { return b / a / TreatmentSize() + d / c / ControlSize(); }

    /// Variance of the risk difference.
    double RiskDifferenceVariance() const
    {
        const double nt = TreatmentSize();
        const double nc = ControlSize();
        return d * c / (nc * nc * nc) + b * a / (nt * nt * nt);
    }

    /// Events in the treatment group beyond those expected with the margins given: a - (a + c)(a + b) / N, in
    /// the form that does not cancel for large counts.
    double ExcessEvents() const { return (a * d - b * c) / Size(); }

    /// Hypergeometric variance of the treatment events; its inverse is the variance of the log Peto odds
    /// ratio (Yusuf et al. 1985, Progress in Cardiovascular Diseases 27, 335-371).
    double HypergeometricVariance() const
    {
        const double n = Size();
        return (b + d) * (a + c) / (n - 1.0) * (ControlSize() / n) * (TreatmentSize() / n);
    }
};

} // namespace MA_NAMESPACE

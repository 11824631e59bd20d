#pragma once

#include "meta_analysis/pooling/MALikelihoodCurve.h"
#include "meta_analysis/regression/design/MAWeightedFit.h"

#include <cstddef>
#include <limits>
#include <vector>

namespace MA_NAMESPACE {

/// The two sides of the likelihood equation, from sums with y'PPPy, and with the traces where it is
/// restricted.
MALikelihoodTerms TermsOf(const MAProjectionSums& sums, MALikelihoodType type);

/// The likelihood of the residual between-study variance of a meta-regression.
///
/// Each evaluation fits the orthonormal columns anew, with weights 1 / (v + t), in two passes over the rows.
/// The sums keep their digits where a study dominates or the variances span many powers of ten; see
/// `MAWeightedFit`. The restricted likelihood has log det X'X added, and so does not depend on the units of
/// the predictors. Columns and variances are the caller's and must outlive the object.
class MARegressionCurve : public MALikelihoodCurve
{
public:
    /// Positive and finite variances, one for each row of `columns`.
    MARegressionCurve(const MAOrthonormalColumns& columns, const std::vector<double>& variances,
                      MALikelihoodType type);

    MALikelihoodTerms At(double t) override;
    MAGeneralizedQ QAt(double t) override;
    double LogLikelihood(double t) override;

    /// The same for what the columns and variances are now, or another likelihood, in the memory that there
    /// is.
    void Restart(MALikelihoodType type);
    /// Rows of variances up to this one remain in the fits of `SumsAt`, but their terms not in the sums.
    void LeaveOutUpTo(double variance);
    /// Sums at t, in the curve's units; y'PPPy and, at O(p²) a row, the traces only where asked for. Those of
    /// the last t and of t = 0 are kept, at which several results are often asked for.
    MAProjectionSums SumsAt(double t, bool withTraces, bool withCubic = false);
    /// Keeps the sums that someone else has computed with these arguments, to the bit, until `Restart`.
    void Know(double t, bool withTraces, bool withCubic, const MAProjectionSums& sums)
    {
        known_.push_back({t, withTraces, withCubic, false, sums});
    }
    const std::vector<double>& Variances() const { return *variances_; }
    const MAOrthonormalColumns& Columns() const { return *columns_; }

private:
    struct Evaluation
    {
        double t = std::numeric_limits<double>::quiet_NaN();
        bool withTraces = false;
        bool withCubic = false;
        bool isFitted = false; ///< by this object's fit, when it is the last
        MAProjectionSums sums;
    };

    Evaluation EvaluationAt(double t, bool withTraces, bool withCubic);
    MAProjectionSums Evaluate(double t, bool withTraces, bool withCubic);
    void Weigh(double t);
    void Forget()
    {
        last_ = atZero_ = Evaluation();
        known_.clear();
    }
    void MeasureBounds();
    void LeaveOut(MAProjectionSums& sums, bool withTraces) const;
    double LogDeterminant() const;

    const MAOrthonormalColumns* columns_;
    const std::vector<double>* variances_;
    MALikelihoodType type_ = MALikelihoodType::Restricted;
    MAWeightedFit fit_; ///< at the last t, as the weights
    std::vector<double> weights_;
    Evaluation last_;
    Evaluation atZero_;
    std::vector<Evaluation> known_;
    std::vector<std::size_t> leftOut_;
};

} // namespace MA_NAMESPACE

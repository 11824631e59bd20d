#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/pooling/MALikelihoodCurve.h"

#include <cstddef>
#include <optional>

namespace MA_NAMESPACE {

/// The likelihood of the between-study variance of k effect sizes about one mean.
///
/// Every sum is one of positive terms, or of effects counted from the study of the smallest variance, whose
/// weight is the largest at every t: no digit is lost where that study dominates. One division a study and
/// evaluation; nothing is allocated. The vectors are the caller's and must outlive the object.
class MAPooledCurve final : public MALikelihoodCurve
{
public:
    MAPooledCurve(const double* effects, const double* variances, std::size_t count, MALikelihoodType type);

    MALikelihoodTerms At(double t) override;
    MAGeneralizedQ QAt(double t) override;
    double LogLikelihood(double t) override;

    /// Hedges' moment estimate in the curve's units, not truncated: where a search looks first.
    double MomentEstimate() const { return momentEstimate_; }

    /// The study of the smallest variance; the effect of a study, counted from it in the curve's units.
    std::size_t Reference() const { return reference_; }
    double EffectFromReference(std::size_t i) const
    {
        return (effects_[i] - referenceEffect_) * effectScale_;
    }

private:
    void FindReference();
    void MeasureSpread();
    template <class Sums>
    Sums SumOthers(double t) const;
    double LogDeterminant(double t) const;

    const double* effects_;
    const double* variances_;
    std::size_t count_;
    MALikelihoodType type_;
    std::size_t reference_ = 0; ///< the study of the smallest variance
    double referenceEffect_ = 0.0;
    double effectScale_ = 1.0; ///< 1 / sqrt(unit)
    double momentEstimate_ = 0.0;
};

/// The curve of the likelihood that the estimator goes by.
inline MAPooledCurve CurveOf(const MAEffects& studies, MAConst::TAU2ESTIMATOR estimator)
{
    return {studies.effectSizes.data(), studies.variances.data(), studies.Count(), LikelihoodOf(estimator)};
}

/// The curve of studies, made when it is first asked for.
class MACurveOnDemand
{
public:
    MACurveOnDemand(const MAEffects& studies, MAConst::TAU2ESTIMATOR estimator)
        : studies_(studies), estimator_(estimator)
    {}

    MAPooledCurve& Get()
    {
        return curve_.has_value() ? *curve_ : curve_.emplace(CurveOf(studies_, estimator_));
    }

private:
    MAEffects studies_;
    MAConst::TAU2ESTIMATOR estimator_;
    std::optional<MAPooledCurve> curve_;
};

} // namespace MA_NAMESPACE

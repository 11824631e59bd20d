#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAConst.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Between-study variance tau² of k effect sizes y with within-study variances v.
///
/// Needs effect sizes and variances (k each; variances in the square of the effects' scale). The vectors
/// are the caller's and must outlive the object. Hedges (HE), Hunter-Schmidt (HS), DerSimonian-Laird (DL)
/// and Sidik-Jonkman (SJ) are closed forms, truncated at 0. Maximum likelihood (ML), restricted maximum
/// likelihood (REML) and empirical Bayes (EB) start from the Hedges estimate, take scoring steps, halve a
/// step that would leave tau² negative, and stop when |step| < tolerance. Reaching the iteration limit is
/// not reported: the last value stands. Very homogeneous data can end at a tiny positive value.
///
/// Cost: O(k) an iteration, no allocation. An object may be used again with another estimator.
/// Viechtbauer (2005), Journal of Educational and Behavioral Statistics 30, 261-293.
///
/// The status is sticky: after an error every setter and the computation do nothing and return it.
class META_ANALYSIS_EXPORT MATAU2ESTIMATIOR
{
public:
    MATAU2ESTIMATIOR();
    MATAU2ESTIMATIOR(const MATAU2ESTIMATIOR&);
    MATAU2ESTIMATIOR& operator=(const MATAU2ESTIMATIOR&);
    virtual ~MATAU2ESTIMATIOR();

    /// Study vectors. The first fixes k; error 460001 for another length.
    KXStatus SetEffectSizes(const std::vector<double>* effectSizes);
    KXStatus SetVariances(const std::vector<double>* variances);
    /// Number of mean parameters p that the data are adjusted for: 1, the mean. Error 460010 above the
    /// parameter count.
    KXStatus SetNonRedundantParamSize(int size);
    /// Limits of the iterative estimators. With a limit below 1 they return the Hedges estimate.
    KXStatus SetMaxIter(int maxIter);
    KXStatus SetMaxStepHalving(int maxStepHalving);
    KXStatus SetConverTol(double tolerance);

    /// Runs an estimator; a value outside the enumeration does nothing. Errors: 460009 effect sizes or
    /// variances are not given, 460001 their lengths differ.
    KXStatus ComputeTau2Variance(MAConst::TAU2ESTIMATOR type);

    /// tau² >= 0 of the last computation; -1.0 before it and after an error.
    double GetBetweenStudyVariannce() const { return status_.IsError() ? -1.0 : tau2_; }

private:
    struct WeightedMean;

    void CalcMeanES();
    WeightedMean CalcEstES(double t) const;
    void HEEstimator();
    void HSEstimator();
    void DLEstimator();
    void SJEstimator();
    double MLStep() const;
    double REMLStep() const;
    double EBStep() const;
    template <class Step>
    void Tau2IterEstimation(Step stepAt);
    bool TakeStep(double step);

    std::size_t studyCount_ = 0;
    const std::vector<double>* effectSizes_ = nullptr;
    const std::vector<double>* variances_ = nullptr;
    int parameterCount_ = 1;
    int nonRedundantCount_ = 1;
    int maxIter_ = 100;
    int maxStepHalving_ = 5;
    double tolerance_ = 1e-6;
    double meanEffectSize_ = 0.0;
    double tau2_ = -1.0;
    KXStatus status_;
};

} // namespace MA_NAMESPACE

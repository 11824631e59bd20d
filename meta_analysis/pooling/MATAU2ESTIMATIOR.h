#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Estimate.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

class MADesignMatrix;

/// Between-study variance tau² of k effect sizes y with within-study variances v, or the residual one of a
/// meta-regression.
///
/// Plain path: effect sizes and variances are set (k each; variances in the square of the effects' scale).
/// Regression path: a design matrix with its rows in memory and the coefficients of a fit are set, for Hedges
/// and DerSimonian-Laird the leverages of the same fit, for Sidik-Jonkman its weights. What is pointed to is
/// the caller's and must outlive the object.
///
/// Hedges (HE), Hunter-Schmidt (HS), DerSimonian-Laird (DL) and Sidik-Jonkman (SJ) are closed forms,
/// truncated at 0. Maximum likelihood (ML), restricted maximum likelihood (REML) and empirical Bayes (EB) are
/// found by one of two ways:
/// - Scoring (the default) starts from the Hedges estimate, halves a step that would leave tau² negative, and
///   stops when |step| < tolerance, in the square of the effects' unit. It can miss the maximum, and very
///   homogeneous data can end at a tiny positive value; `GetTau2Convergence` tells how it ended.
/// - The global search finds the global maximum of the likelihood (ML, REML) or the root of the estimating
///   equation (EB), proved up to rounding, in any unit and without limits.
///
/// Cost: O(k) an iteration without allocation; O(k p²) with a design matrix of p columns. An object may be
/// used again with another estimator. Viechtbauer (2005), Journal of Educational and Behavioral Statistics
/// 30, 261-293.
///
/// The status is sticky: after an error every setter and the computation do nothing and return it.
class META_ANALYSIS_EXPORT MATAU2ESTIMATIOR
{
public:
    MATAU2ESTIMATIOR();
    MATAU2ESTIMATIOR(const MATAU2ESTIMATIOR&);
    MATAU2ESTIMATIOR& operator=(const MATAU2ESTIMATIOR&);
    virtual ~MATAU2ESTIMATIOR();

    /// Study vectors. The first fixes k; error `MAStatusCode::LENGTH_MISMATCH` for another length.
    KXStatus SetEffectSizes(const std::vector<double>* effectSizes);
    KXStatus SetVariances(const std::vector<double>* variances);
    /// Design matrix; its columns are the parameters. Error `PARAMETER_COUNT_MISMATCH` when their number
    /// contradicts the coefficients. Set it before the three that follow.
    KXStatus SetDesignMatrix(const MADesignMatrix* design);
    /// Coefficients of a fit, one per parameter, missing ones redundant; copied. Error
    /// `PARAMETER_COUNT_MISMATCH`.
    KXStatus SetRegCoef(const std::vector<double>* coefficients);
    /// Leverages of the same fit, one per row; copied.
    KXStatus SetDiagH(const std::vector<double>* leverages);
    /// In place of leverages h, 1 - h: of a row that dominates it has digits that h has lost.
    KXStatus SetDiagHComplement(std::vector<double> complements);
    /// Residuals of the same fit, one per row, in place of those that the coefficients give: where predictors
    /// are far from their mean they have digits that y - x'b has lost.
    KXStatus SetRegResiduals(std::vector<double> residuals);
    /// Number of parameters p that are not redundant; 1, the mean, without a design matrix. Error
    /// `TOO_MANY_NONREDUNDANT` above the parameter count.
    KXStatus SetNonRedundantParamSize(int size);
    /// Limits of the iterative estimators. With a limit below 1 they return the Hedges estimate.
    KXStatus SetMaxIter(int maxIter);
    KXStatus SetMaxStepHalving(int maxStepHalving);
    KXStatus SetConverTol(double tolerance);
    /// How ML, REML and EB are found; scoring unless set.
    KXStatus SetTau2Search(MAConst::TAU2SEARCH search);

    /// Runs an estimator; a value outside the enumeration does nothing. Errors: `INPUT_NOT_GIVEN` when the
    /// estimator's inputs are not given, or differ in length from the rows; `LENGTH_MISMATCH` when effect
    /// sizes and variances differ in length; `ITERATOR_FAILED` when the design matrix is not ready, or the
    /// host cancels; `TOO_FEW_ROWS` for no more rows than parameters; `OUT_OF_MEMORY`.
    KXStatus ComputeTau2Variance(MAConst::TAU2ESTIMATOR type);

    /// tau² >= 0 of the last computation; -1.0 before it and after an error.
    double GetBetweenStudyVariannce() const { return status_.IsError() ? -1.0 : estimate_.tau2; }
    /// How the last computation ended. The global search ends with `TAU2_STEP_NOT_FINITE`, and at the Hedges
    /// estimate, only where a variance is not positive and finite, or the effects span 1e75 standard errors
    /// and more.
    MAConst::TAU2CONVERGENCE GetTau2Convergence() const { return estimate_.convergence; }
    /// Evaluations of the likelihood's slope, or scoring iterations; 0 for a closed form.
    int GetTau2Evaluations() const { return estimate_.evaluations; }

private:
    KXStatus StoreParameterCount(int count);
    bool UsesRegression() const { return design_ != nullptr && !coefficients_.empty(); }
    KXStatus ComputePlain();
    KXStatus ComputeRegression();

    std::vector<double> Residuals() const;
    double FittedValue(const double* row) const;

    std::size_t studyCount_ = 0;
    const std::vector<double>* effectSizes_ = nullptr;
    const std::vector<double>* variances_ = nullptr;
    const MADesignMatrix* design_ = nullptr;
    std::vector<double> coefficients_;
    std::vector<double> leverageComplements_; ///< 1 - h
    std::vector<double> residuals_;           ///< those not set are computed from the coefficients
    int parameterCount_ = 1;
    int nonRedundantCount_ = 1;
    MATau2Choice choice_;
    MATau2Estimate estimate_;
    KXStatus status_;
};

} // namespace MA_NAMESPACE

#pragma once

#include "meta_analysis/bulk/MABulkSets.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/settings/MAConst.h"

#include <cstddef>

namespace MA_NAMESPACE {

/// The predictors that all sets share: studies x columns anywhere in memory; strides count values, and may be
/// negative. Columns are taken as they are, without an intercept beside them. The first column that is 1 in
/// every study is the intercept, wherever it stands: the model test leaves it out, and the other columns are
/// counted from their means. A study with a NaN among its predictors is left out of every set, as is one with
/// an infinite value.
struct MABulkDesign
{
    const double* values = nullptr; ///< of the first column of the first study
    std::ptrdiff_t studyStride = 0;
    std::ptrdiff_t columnStride = 0;
    std::size_t columnCount = 0; ///< p

    const double& At(std::size_t study, std::size_t column) const
    {
        return values[static_cast<std::ptrdiff_t>(study) * studyStride +
                      static_cast<std::ptrdiff_t>(column) * columnStride];
    }
};

/// The model by which every set is regressed: what `MARegSettings` has of it, with the same meaning.
struct MABulkRegression
{
    bool isRandom = true; ///< else fixed effects, for which tau² is 0
    MATau2Choice tau2;
    MAConst::KNAPPHADJTYPE knappHartung = MAConst::KNAPP_HARTUNG_NONE;
    MAConst::TAU2INTERVAL tau2Interval = MAConst::TAU2_INTERVAL_NONE;
    /// Of the tests and intervals of coefficients that are not adjusted after Knapp and Hartung.
    MAConst::TESTDISTTYPE tests = MAConst::TEST_STUDENT_T;
    bool hasDispersion = false;         ///< fixed effects: scales variances by the weighted residual variance
    double alpha = 0.05;                ///< 1 - confidence level
    double redundancyTolerance = 1e-12; ///< `MARegSettings::SetComputationalTolerance`
};

/// Columns of results in arrays of the caller. A null pointer is a column that is not wanted; what only
/// unwanted columns need is not computed. What a model does not define is NaN.
///
/// Values of the coefficients are p x sets: coefficient j of set s is entry j * sets + s, so that each
/// coefficient is a map of its own; with `isBySet` it is entry s * p + j. The covariance of coefficients i
/// and j is entry (i * p + j) * sets + s, or s * p * p + i * p + j. All other columns have an entry a set.
struct MABulkRegressionResults
{
    bool isBySet = false; ///< whether the values of one set lie together

    double* coefficients = nullptr; ///< NaN where the column is redundant in the set, as what follows
    double* stdErrors = nullptr;
    double* statistics = nullptr;   ///< against 0: t, or z
    double* pValues = nullptr;      ///< two-sided
    double* minusLog10Ps = nullptr; ///< of the p-values, right also where these underflow
    double* ciLowers = nullptr;
    double* ciUppers = nullptr;
    double* covariance = nullptr; ///< p x p a set, scaled as the standard errors

    int* studyCount = nullptr; ///< k, studies that were used
    int* leftOut = nullptr;    ///< studies that are not missing but cannot be used
    int* rank = nullptr;       ///< coefficients that are not redundant
    double* tau2 = nullptr;    ///< residual; 0 for fixed effects
    double* tau2Lower = nullptr;
    double* tau2Upper = nullptr;
    double* q = nullptr; ///< residual, about the fixed-effect fit
    int* qDf = nullptr;  ///< k - rank, also of Student's t
    double* qPValue = nullptr;
    double* i2 = nullptr;         ///< residual; a fraction
    double* rSquare = nullptr;    ///< part of tau² that the predictors explain; NaN for fixed effects
    double* dispersion = nullptr; ///< fixed effects; 1 without it
    /// Test of all coefficients but the intercept, NaN without another: Wald's chi-square Q_M, or F under the
    /// adjustment after Knapp and Hartung of random effects.
    double* modelStatistic = nullptr;
    int* modelDf1 = nullptr;
    int* modelDf2 = nullptr; ///< 0 for a chi-square
    double* modelPValue = nullptr;
    double* modelMinusLog10P = nullptr;
    /// 0, or an error or warning of the set alone. Errors, after which counts beside `studyCount` and
    /// `leftOut` are 0 and numbers NaN: NO_USABLE_STUDY; TOO_FEW_ROWS no more studies than coefficients, for
    /// HE, SJ and the iterative estimators; ONE_USABLE_STUDY for SJ. Warnings, of which the first counts:
    /// TAU2_DOUBTFUL, AS_MANY_STUDIES_AS_PARAMETERS, DISPERSION_NEAR_ZERO, NO_RESIDUAL_DF.
    int* status = nullptr;
};

/// Regresses the effects of each set on the columns of one design, as `MAREAlgorithm` and `MAFEAlgorithm` do
/// one set, with the same numbers to the last bit. Columns that the studies of a set leave redundant are
/// redundant there alone: a column is, when those before it (the intercept first) determine it. Sets do not
/// depend on each other, and results not on `threadCount`; 0 is a thread for each processor.
///
/// Errors of the whole call: INPUT_NOT_GIVEN for values that are a null pointer though there are studies;
/// BULK_ALPHA_OUTSIDE; BULK_CHOICE_UNKNOWN for a choice outside its enumeration, a step-halving limit below
/// 1, a tolerance of steps that is not positive and finite, and one of redundancy outside 0 ... 1;
/// OUT_OF_MEMORY. Each thread takes its memory once; a set takes some more where there are more than 4
/// columns, one is redundant, variances span many powers of ten, or a study decides alone.
META_ANALYSIS_EXPORT KXStatus RegressSets(const MABlockSets& sets, const MABulkDesign& design,
                                          const MABulkRegression& model,
                                          const MABulkRegressionResults& results,
                                          int threadCount = 1) noexcept;

} // namespace MA_NAMESPACE

#pragma once

#include "meta_analysis/analysis/studies/MAReading.h"
#include "meta_analysis/inference/MAEstimate.h"
#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"
#include "meta_analysis/settings/MARegSettings.h"

namespace MA_NAMESPACE {

/// A regression-based small-study test, an entry per parameter in each list, the test covariate last; empty
/// when it failed.
struct MASmallStudyTest
{
    KXStatus status;
    bool hasPassed = false;
    std::vector<double> coefficients;
    std::vector<double> stdErrors;
    std::vector<double> statistics;
    std::vector<double> pValues;
    std::vector<double> log10PValues;
    std::vector<double> lowerLimits;
    std::vector<double> upperLimits;
    std::vector<KXRegrParameter> parameters;
    KXBitSet nonRedundant;
    int df = 0;                     ///< records used minus parameters estimated
    std::vector<KXStatus> warnings; ///< of the test's regression

    /// The test covariate's coefficient with its test and interval. Needs a test that has passed.
    MAEstimate Covariate() const;
    /// The intercept with its test and interval: the effect where the covariate is 0. Missing where the
    /// intercept or the slope is not estimated. Needs a test that has passed.
    MAEstimate Intercept() const;
};

/// Below so many studies the tests have too little power to tell chance from asymmetry.
/// Sterne et al. (2011), BMJ 343, d4002.
constexpr std::size_t fewestStudiesToTrust = 10;

/// The choices of a small-study test.
struct MASmallStudyChoice
{
    MAConst::RegBaseTestType test;
    MAConst::MODELTYPE model;
    MAConst::ZEROADJTYPE zeroAdjustment; ///< of tables, as their effect sizes left it
    MARegSettings regression;            ///< all but response and omega weight
};

/// Tests the selected studies, whose effect sizes stand in place of the records' own. Errors:
/// TOO_FEW_FOR_TEST fewer than three studies, ITERATOR_NOT_STARTED and ITERATOR_FAILED the records fail or
/// have another number than `recordCount`, unless that is negative, and those of `MARegBaseTest`.
MASmallStudyTest TestSmallStudies(MultiPassRecordIter& records, const KXVarList& variables,
                                  const MAStudies& studies, const MASelection& selection, int recordCount,
                                  const MASmallStudyChoice& choice);

} // namespace MA_NAMESPACE

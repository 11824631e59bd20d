#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <memory>
#include <vector>

namespace MA_NAMESPACE {

class MARegOutputStats;
class RegTestRecordIterator;

/// A regression-based small-study test: a weighted meta-regression of a per-study response on a covariate
/// that stands for study size or precision. The test covariate is the last parameter.
///
/// | test | response                        | covariate               | weight                          |
/// | ---- | ------------------------------- | ----------------------- | ------------------------------- |
/// | 0    | the study's effect size         | its standard error      | the omega weight of the settings |
/// | 1, 2 | score over its variance V       | 1 / sqrt(V)             | V                               |
/// | 3    | the study's effect size         | 1 / sample size         | events times non-events over size |
///
/// Test 0 is the regression of Egger et al. (1997), British Medical Journal 315, 629-634, on the scale of the
/// effects. The columns are those of `RegTestRecordIterator`. Settings and variable list are the caller's and
/// must outlive the object.
class META_ANALYSIS_EXPORT MARegBaseTest
{
public:
    MARegBaseTest(const MARegSettings& settings, const KXVarList& variables);
    MARegBaseTest(const MARegBaseTest&) = delete;
    MARegBaseTest& operator=(const MARegBaseTest&) = delete;
    ~MARegBaseTest();

    /// Variable of the response of tests 0 and 3; -1: the dependent of the settings.
    void SetEffectSizeIndex(int index) { effectSizeIndex_ = index; }
    void SetTestType(MAConst::RegBaseTestType type) { test_ = type; }
    void SetTestRegModelType(MAConst::MODELTYPE type) { model_ = type; }
    void SetDropBinZero(bool drop) { dropBinZero_ = drop; }
    void SetAdjustType(MAConst::ZEROADJTYPE type) { zeroAdjustment_ = type; }

    /// Runs the test on the records. Types above 4 do nothing. Errors: TEST_DEPENDENT_REFUSED the
    /// response cannot be the dependent, TEST_TYPE_UNDEFINED test type 4, TEST_COVARIATE_REFUSED the
    /// covariate cannot be added, TEST_WITHOUT_OUTPUT the meta-regression gave no results (now or in an
    /// earlier test), RECORD_NOT_RESIZED a record cannot be resized, TAU2_FAILED out of memory, and those of
    /// the meta-regression. When it fails, the results of an earlier test are kept.
    KXStatus Test(MultiPassRecordIter& records);

    /// Whether a test has succeeded.
    bool HasResults() const { return output_ != nullptr; }
    /// Warnings of the meta-regression of the last test.
    const std::vector<KXStatus>& GetWarnings() const { return warnings_; }
    /// Results, one entry per parameter; empty before a test has succeeded, and when memory runs out.
    std::vector<double> GetCoefficient() const;
    std::vector<double> GetBetaStandErr() const;
    std::vector<double> GetBetaTest() const;
    std::vector<double> GetBetaTestPValue() const;
    std::vector<double> GetBetaTestLog10PValue() const;
    std::vector<double> GetBetaConfInterValLower() const;
    std::vector<double> GetBetaConfInterValUpper() const;
    std::vector<KXRegrParameter> GetParameters() const;
    /// Set for the parameters that are estimated.
    KXBitSet GetRedundancyInfo() const;
    /// Records used minus parameters estimated; 0 before a test has succeeded.
    int GetResidualDf() const;
    const MARegSettings& GetSettings() const { return *settings_; }

private:
    struct TestColumns;

    KXStatus RunTest(MultiPassRecordIter& records);
    KXStatus copySettings(const TestColumns& columns, MARegSettings& testSettings) const;
    KXStatus addTestCovariate(int index, MARegSettings& testSettings) const;
    KXStatus RegModelTest(MARegSettings& testSettings, RegTestRecordIterator& records, bool usedByTest);
    template <class Engine>
    KXStatus BuildWith(MARegSettings& testSettings, RegTestRecordIterator& records, bool usedByTest);

    const MARegSettings* settings_;
    const KXVarList* variables_;
    int effectSizeIndex_ = -1;
    MAConst::RegBaseTestType test_;
    MAConst::MODELTYPE model_;
    std::unique_ptr<MARegOutputStats> output_;
    std::vector<KXStatus> warnings_;
    bool dropBinZero_ = false;
    MAConst::ZEROADJTYPE zeroAdjustment_ = MAConst::ZERO_ADJUST_EACH;
};

} // namespace MA_NAMESPACE

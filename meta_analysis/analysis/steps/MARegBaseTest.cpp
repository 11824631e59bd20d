#include "meta_analysis/analysis/steps/MARegBaseTest.h"

#include "meta_analysis/analysis/steps/RegTestRecordIterator.h"
#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegOutputStats.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"
#include "meta_analysis/settings/RegressionSettingsOf.h"

namespace MA_NAMESPACE {

namespace {

/// The type of a test that was not chosen.
constexpr auto undefinedTest = static_cast<MAConst::RegBaseTestType>(4);
/// A model type that was not chosen: no model is built.
constexpr auto undefinedModel = static_cast<MAConst::MODELTYPE>(-1);

} // namespace

/// Variables of the test's regression.
struct MARegBaseTest::TestColumns
{
    int response;
    int covariate;
    int weight;
    MAConst::OMGWeightType weightType;
};

MARegBaseTest::MARegBaseTest(const MARegSettings& settings, const KXVarList& variables)
    : settings_(&settings), variables_(&variables), test_(undefinedTest), model_(undefinedModel)
{}

MARegBaseTest::~MARegBaseTest() = default;

KXStatus MARegBaseTest::Test(MultiPassRecordIter& records)
{
    if (test_ == undefinedTest)
        return KXStatus(MAStatusCode::TEST_TYPE_UNDEFINED);
    if (test_ > undefinedTest)
        return KXStatus();
    KXStatus failure;
    const KXStatus result = Guarded(failure, [&] { return RunTest(records); });
    return result.GetCode() == MAStatusCode::OUT_OF_MEMORY ? KXStatus(MAStatusCode::TAU2_FAILED) : result;
}

KXStatus MARegBaseTest::RunTest(MultiPassRecordIter& records)
{
    const int k = variables_->Size();
    const int response = effectSizeIndex_ == -1 ? settings_->GetDependent() : effectSizeIndex_;
    TestColumns columns = {k, k + 1, k + 2, MAConst::OMEGA_WEIGHT};
    if (test_ == MAConst::REG_TEST_EFFECT_ON_STD_ERROR)
        columns = {response, k, settings_->GetOMWVarIndex(), settings_->GetOMWVarType()};
    else if (test_ == MAConst::REG_TEST_EFFECT_ON_SIZE)
        columns = {response, k, k + 1, MAConst::OMEGA_WEIGHT};

    RegTestRecordIterator testRecords(records, k, test_);
    testRecords.SetOmegaWeight(settings_->GetOMWVarIndex(), settings_->GetOMWVarType());
    testRecords.SetCountIndices(
        settings_->GetTreatmentSuccessVarIndex(), settings_->GetTreatmentFailureVarIndex(),
        settings_->GetControlSuccessVarIndex(), settings_->GetControlFailureVarIndex());
    testRecords.SetSizeIndices(settings_->GetTreatmentNVarIndex(), settings_->GetControlNVarIndex());
    testRecords.SetDropBinZero(dropBinZero_);
    testRecords.SetAdjustType(zeroAdjustment_);
    if (!testRecords.ResizeRecord())
        return KXStatus(MAStatusCode::RECORD_NOT_RESIZED);

    MARegSettings testSettings(*settings_);
    const KXStatus copied = copySettings(columns, testSettings);
    return copied.IsError() ? copied : RegModelTest(testSettings, testRecords, true);
}

/// Completes a copy of the settings with the variables of the test.
KXStatus MARegBaseTest::copySettings(const TestColumns& columns, MARegSettings& testSettings) const
{
    testSettings.SetOMWVarIndex(columns.weight);
    testSettings.SetOMWVarType(columns.weightType);
    if (!testSettings.SetDependent(columns.response))
        return KXStatus(MAStatusCode::TEST_DEPENDENT_REFUSED);
    return addTestCovariate(columns.covariate, testSettings);
}

KXStatus MARegBaseTest::addTestCovariate(int index, MARegSettings& testSettings) const
{
    return AddCovariateEffect(testSettings, index) ? KXStatus()
                                                   : KXStatus(MAStatusCode::TEST_COVARIATE_REFUSED);
}

KXStatus MARegBaseTest::RegModelTest(MARegSettings& testSettings, RegTestRecordIterator& records,
                                     bool usedByTest)
{
    KXStatus built;
    if (model_ == MAConst::MODEL_FIXED)
        built = BuildWith<MAFEAlgorithm>(testSettings, records, usedByTest);
    else if (model_ == MAConst::MODEL_RANDOM)
        built = BuildWith<MAREAlgorithm>(testSettings, records, usedByTest);
    const bool isLost = built.GetCode() == MAStatusCode::OUT_OF_MEMORY;
    return output_ == nullptr && !isLost ? KXStatus(MAStatusCode::TEST_WITHOUT_OUTPUT) : built;
}

template <class Engine>
KXStatus MARegBaseTest::BuildWith(MARegSettings& testSettings, RegTestRecordIterator& records,
                                  bool usedByTest)
{
    Engine engine(testSettings);
    engine.setUsedByRegBaseTest(usedByTest);
    const KXStatus built = engine.BuildModel(records);
    if (built.IsError())
        return built;
    warnings_ = engine.GetWarnings();
    output_ = std::make_unique<MARegOutputStats>(testSettings, engine);
    return built;
}

std::vector<double> MARegBaseTest::GetCoefficient() const
{
    return output_ == nullptr ? std::vector<double>() : output_->GetEstimation();
}

std::vector<double> MARegBaseTest::GetBetaStandErr() const
{
    return output_ == nullptr ? std::vector<double>() : output_->GetBetaStandErr();
}

std::vector<double> MARegBaseTest::GetBetaTest() const
{
    return output_ == nullptr ? std::vector<double>() : output_->GetBetaTest();
}

std::vector<double> MARegBaseTest::GetBetaTestPValue() const
{
    return output_ == nullptr ? std::vector<double>() : output_->GetBetaTestPValue();
}

std::vector<double> MARegBaseTest::GetBetaTestLog10PValue() const
{
    return output_ == nullptr ? std::vector<double>() : output_->GetBetaTestLog10PValue();
}

std::vector<double> MARegBaseTest::GetBetaConfInterValLower() const
{
    return output_ == nullptr ? std::vector<double>() : output_->GetBetaConfInterValLower();
}

std::vector<double> MARegBaseTest::GetBetaConfInterValUpper() const
{
    return output_ == nullptr ? std::vector<double>() : output_->GetBetaConfInterValUpper();
}

std::vector<KXRegrParameter> MARegBaseTest::GetParameters() const
{
    return output_ == nullptr ? std::vector<KXRegrParameter>() : output_->GetParameters();
}

KXBitSet MARegBaseTest::GetRedundancyInfo() const
{
    return output_ == nullptr ? KXBitSet() : output_->GetRedundancyInfo();
}

int MARegBaseTest::GetResidualDf() const
{
    return output_ == nullptr
               ? 0
               : output_->GetNGoodRecords() - static_cast<int>(output_->GetRedundancyInfo().Count());
}

} // namespace MA_NAMESPACE

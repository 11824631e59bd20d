// Regression-based small-study tests on the studies of an analysis.

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/steps/MARegBaseTest.h"
#include "meta_analysis/analysis/studies/MARecordColumns.h"
#include "meta_analysis/analysis/studies/MAWatchedIterator.h"
#include "meta_analysis/regression/design/MAIterator.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>

namespace MA_NAMESPACE {

namespace {

constexpr std::size_t fewestStudies = 3;

/// The records that have an effect size. Tests 1 and 2 take their response from the tables, so that missing
/// effect sizes outside a group would not keep them to it.
class RecordsWithEffect : public MultiPassRecordIter
{
public:
    RecordsWithEffect(MultiPassRecordIter& source, int effectSizeIndex)
        : source_(&source), effectSizeIndex_(effectSizeIndex)
    {}

    bool Start() override { return source_->Start(); }
    bool Reset() override { return source_->Reset(); }
    int GetError() const override { return source_->GetError(); }

    const Record* Next() override
    {
        const Record* record = source_->Next();
        while (record != nullptr && KXMV::IsMissing(record->Get(effectSizeIndex_)))
            record = source_->Next();
        return record;
    }

private:
    MultiPassRecordIter* source_;
    int effectSizeIndex_;
};

/// The results of a test that has succeeded, complete.
MARegTestRun ResultsOf(const MARegBaseTest& test)
{
    MARegTestRun run = {1,
                        test.GetCoefficient(),
                        test.GetBetaStandErr(),
                        test.GetBetaTest(),
                        test.GetBetaTestPValue(),
                        test.GetBetaTestLog10PValue(),
                        test.GetBetaConfInterValLower(),
                        test.GetBetaConfInterValUpper(),
                        test.GetParameters(),
                        test.GetRedundancyInfo()};
    const std::size_t count =
        std::max<std::size_t>(1, run.coefficients.size()); // the covariate is always there
    RequireLength(count, run.coefficients, run.stdErrors, run.statistics, run.significances,
                  run.log10Significances, run.lowerLimits, run.upperLimits, run.parameters);
    RequireMemory(run.nonRedundant.Size() == count);
    return run;
}

} // namespace

MARecordColumns MABaseModel::ColumnsByRecord(const MASelection& selection) const
{
    // Record numbers ascend; those of a pass that failed may go beyond the records counted before.
    const int lastRecord = studies_.recordNumber.empty() ? -1 : studies_.recordNumber.back();
    MARecordColumns columns(std::max({recordCount_, lastRecord + 1, 0}));
    for (const std::size_t study : selection) {
        const auto record = static_cast<std::size_t>(studies_.recordNumber[study]);
        columns.effectSizes[record] = studies_.effects.effectSize[study];
        columns.variances[record] = studies_.effects.variance[study];
    }
    return columns;
}

/// Reads the studies when nothing was read yet; a run that found none is not repeated. Error 460028 for fewer
/// than three.
KXStatus MABaseModel::RequireStudiesForTest(MultiPassRecordIter& records)
{
    if (!HasRead()) {
        CopyRunSettings();
        if (ReadStudies(records).IsError())
            return status_;
    }
    return studies_.Count() < fewestStudies ? SetError(MAStatusCode::TOO_FEW_FOR_TEST) : KXStatus();
}

KXStatus MABaseModel::RunRegressionTest(MultiPassRecordIter& records, const KXVarList& variables,
                                        MAConst::RegBaseTestType type)
{
    return Guarded(status_, [&] {
        if (RequireStudiesForTest(records).IsError())
            return status_;
        const MARecordColumns columns = ColumnsByRecord(AllStudies());
        MAWatchedIterator watched(records, recordCount_);
        MAIterator iterator(watched, variables, columns.effectSizes, columns.variances);
        const MARegSettings settings = TestSettings(iterator.GetVarianceIndex());
        MARegBaseTest test(settings, iterator.GetVarList());
        SetUpTest(test, iterator.GetEffectSizeIndex(), type);
        status_ = test.Test(iterator);
        if (watched.Failure().IsError())
            status_ = watched.Failure();
        if (!status_.IsError())
            StoreTest(test);
        return status_;
    });
}

MARegSettings MABaseModel::TestSettings(int varianceIndex) const
{
    MARegSettings settings;
    settings.SetInterceptUse(settings_->GetIsUseIntercept());
    settings.SetConfidenceLevel(settings_->GetCILevel());
    settings.SetOMWVarIndex(varianceIndex);
    settings.SetOMWVarType(MAConst::OMEGA_VARIANCE);
    settings.SetMultiDiser(settings_->GetMultiDisper());
    settings.SetParameterTolerance(settings_->GetConnvergenceTol());
    settings.SetMaxIterations(settings_->GetMaxIter());
    settings.SetMaxStepHalvingValue(settings_->GetMaxStepHalving());
    const int estimator = settings_->GetEstTauType();
    if (estimator >= 0 && estimator < estimatorCount)
        settings.SetEstTauType(estimators[estimator].code);
    settings.SetTau2Search(settings_->GetTau2Search());
    settings.SetKnapHartAdjust(settings_->GetKnapHartAdjustType() != MAConst::KNAPP_HARTUNG_NONE);
    settings.SetTruncAjustValue(settings_->GetKnapHartAdjustType() == MAConst::KNAPP_HARTUNG_TRUNCATED);
    settings.SetTreatmentSuccess(settings_->GetTreatmentSuccessVarIndex());
    settings.SetTreatmentFailure(settings_->GetTreatmentFailureVarIndex());
    settings.SetControlSuccess(settings_->GetControlSuccessVarIndex());
    settings.SetControlFailure(settings_->GetControlFailureVarIndex());
    return settings;
}

void MABaseModel::SetUpTest(MARegBaseTest& test, int effectSizeIndex, MAConst::RegBaseTestType type) const
{
    test.SetEffectSizeIndex(effectSizeIndex);
    test.SetTestRegModelType(modelType_);
    test.SetTestType(type);
    test.SetAdjustType(zeroAdjustment_);
    test.SetDropBinZero(false);
}

void MABaseModel::StoreTest(const MARegBaseTest& test)
{
    if (!test.HasResults())
        return;
    const MARegTestRun run = ResultsOf(test);
    AddWarningsOfFigures(test.GetWarnings());
    const MAPValue pValue = {run.significances.back(), run.log10Significances.back()};
    regressionTest_ = {run.coefficients.back(), run.stdErrors.back(),   run.statistics.back(), pValue,
                       run.lowerLimits.back(),  run.upperLimits.back(), test.GetResidualDf()};
}

KXStatus MABaseModel::RegBasedTest(MultiPassRecordIter& records, const KXVarList& variables,
                                   const MARegSettings& given)
{
    return Guarded(status_, [&] {
        MARegSettings settings(given);
        if (RequireStudiesForTest(records).IsError())
            return status_;
        if (HasGroups()) {
            for (const MASelection& members : MembersByGroup()) {
                const KXStatus tested = TestSelection(records, variables, settings, members);
                if (IsFailureOfRecords(tested))
                    return status_ = tested;
            }
        }
        return status_ = TestSelection(records, variables, settings, AllStudies());
    });
}

/// One test on some of the studies, appended to the tests' lists also when it fails.
KXStatus MABaseModel::TestSelection(MultiPassRecordIter& records, const KXVarList& variables,
                                    MARegSettings& settings, const MASelection& selection)
{
    regressionTests_.emplace_back();
    if (selection.size() < fewestStudies)
        return KXStatus(MAStatusCode::TOO_FEW_FOR_TEST);
    const MARecordColumns columns = ColumnsByRecord(selection);
    MAWatchedIterator watched(records, recordCount_);
    MAIterator iterator(watched, variables, columns.effectSizes, columns.variances);
    settings.SetOMWVarIndex(iterator.GetVarianceIndex());
    settings.SetOMWVarType(MAConst::OMEGA_VARIANCE);
    MARegBaseTest test(settings, iterator.GetVarList());
    SetUpTest(test, iterator.GetEffectSizeIndex(), settings_->GetRegBaseTestType());
    RecordsWithEffect ofGroup(iterator, iterator.GetEffectSizeIndex());
    const bool isGroup = selection.size() < studies_.Count();
    const KXStatus tested = isGroup ? test.Test(ofGroup) : test.Test(iterator);
    if (watched.Failure().IsError())
        return watched.Failure();
    if (!tested.IsError() && test.HasResults()) {
        regressionTests_.back() = ResultsOf(test);
        AddWarningsOfFigures(test.GetWarnings());
    }
    return tested;
}

/// Of the warnings of a test's or a plot's regression, those that its figures are not what they are labelled:
/// a doubtful tau², a confidence level outside (0, 1), no iteration.
void MABaseModel::AddWarningsOfFigures(const std::vector<KXStatus>& warnings)
{
    for (const KXStatus& warning : warnings) {
        if (warning.GetCode() >= MAStatusCode::TAU2_DOUBTFUL)
            AddWarning(warning);
    }
}

} // namespace MA_NAMESPACE

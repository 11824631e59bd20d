#include "meta_analysis/analysis/steps/MASmallStudyTests.h"

#include "meta_analysis/analysis/steps/MARegBaseTest.h"
#include "meta_analysis/analysis/studies/MARecordColumns.h"
#include "meta_analysis/analysis/studies/MAWatchedIterator.h"
#include "meta_analysis/regression/design/MAIterator.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

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
MASmallStudyTest ResultsOf(const MARegBaseTest& test, const KXStatus& status)
{
    MASmallStudyTest result = {status,
                               true,
                               test.GetCoefficient(),
                               test.GetBetaStandErr(),
                               test.GetBetaTest(),
                               test.GetBetaTestPValue(),
                               test.GetBetaTestLog10PValue(),
                               test.GetBetaConfInterValLower(),
                               test.GetBetaConfInterValUpper(),
                               test.GetParameters(),
                               test.GetRedundancyInfo(),
                               test.GetResidualDf(),
                               test.GetWarnings()};
    const std::size_t count =
        std::max<std::size_t>(1, result.coefficients.size()); // the covariate is always there
    RequireLength(count, result.coefficients, result.stdErrors, result.statistics, result.pValues,
                  result.log10PValues, result.lowerLimits, result.upperLimits, result.parameters);
    RequireMemory(result.nonRedundant.Size() == count);
    return result;
}

MAEstimate EstimateAt(const MASmallStudyTest& test, std::size_t i)
{
    return {test.coefficients[i], test.stdErrors[i] * test.stdErrors[i],   test.stdErrors[i],
            test.statistics[i],   {test.pValues[i], test.log10PValues[i]}, test.lowerLimits[i],
            test.upperLimits[i]};
}

MASmallStudyTest Failure(const KXStatus& status)
{
    MASmallStudyTest failed;
    failed.status = status;
    return failed;
}

} // namespace

MAEstimate MASmallStudyTest::Covariate() const
{
    return EstimateAt(*this, coefficients.size() - 1);
}

MAEstimate MASmallStudyTest::Intercept() const
{
    const bool isEstimated = coefficients.size() == 2 && nonRedundant.Test(0) && nonRedundant.Test(1);
    return isEstimated ? EstimateAt(*this, 0) : MAEstimate();
}

MASmallStudyTest TestSmallStudies(MultiPassRecordIter& records, const KXVarList& variables,
                                  const MAStudies& studies, const MASelection& selection, int recordCount,
                                  const MASmallStudyChoice& choice)
{
    if (selection.size() < fewestStudies)
        return Failure(KXStatus(MAStatusCode::TOO_FEW_FOR_TEST));
    const MARecordColumns columns = ColumnsByRecord(studies, selection, recordCount);
    MAWatchedIterator watched(records, recordCount);
    MAIterator iterator(watched, variables, columns.effectSizes, columns.variances);
    MARegSettings regression = choice.regression;
    regression.SetOMWVarIndex(iterator.GetVarianceIndex());
    regression.SetOMWVarType(MAConst::OMEGA_VARIANCE);
    MARegBaseTest test(regression, iterator.GetVarList());
    test.SetEffectSizeIndex(iterator.GetEffectSizeIndex());
    test.SetTestRegModelType(choice.model);
    test.SetTestType(choice.test);
    test.SetAdjustType(choice.zeroAdjustment);
    test.SetDropBinZero(false);

    RecordsWithEffect ofSelection(iterator, iterator.GetEffectSizeIndex());
    const bool isGroup = selection.size() < studies.Count();
    const KXStatus tested = isGroup ? test.Test(ofSelection) : test.Test(iterator);
    if (watched.Failure().IsError())
        return Failure(watched.Failure());
    return tested.IsError() || !test.HasResults() ? Failure(tested) : ResultsOf(test, tested);
}

} // namespace MA_NAMESPACE

#include "meta_analysis/analysis/MAContModel.h"

#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/studies/MADoubtfulStdDevs.h"
#include "meta_analysis/analysis/studies/MAMeansStudies.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

#include <utility>

namespace MA_NAMESPACE {

MAContModel::MAContModel(const MAModelSettings& settings) : MABaseModel(settings, MAConst::OUTCOME_CONTINUOUS)
{}
MAContModel::MAContModel(const MAContModel&) = default;
MAContModel& MAContModel::operator=(const MAContModel&) = default;
MAContModel::~MAContModel() = default;

KXStatus MAContModel::RUN(MultiPassRecordIter& records, const KXVarList& variables)
{
    return Guarded(status_, [&] { return Run(records, variables); });
}

KXStatus MAContModel::ExtractRawInputData(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] {
        status_ = StartPass(records);
        if (status_.IsError())
            return status_;
        if (!NamesMeans(*settings_))
            return SetError(MAStatusCode::INPUT_NOT_GIVEN);
        return status_ = Take(ReadMeans(records, *settings_));
    }));
}

KXStatus MAContModel::ESCalc(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] {
        if (ExtractRawInputData(records).IsError())
            return status_;
        MAAnalysisState& state = State();
        state.settings.alpha = AlphaOf(settings_->GetCILevel());
        state.studies =
            WithMeansEffects(std::move(state.studies),
                             {settings_->GetContinousEstType(), settings_->GetVarEqualAssumption(),
                              settings_->GetVarianceAdjustment(), settings_->GetGlassDsVarDependentGroup()},
                             state.settings.alpha);
        for (const std::size_t study : DoubtfulStdDevs(state.studies.means))
            AddWarningOf(state.studies.recordNumber[study], MAStatusCode::STD_DEV_DOUBTFUL);
        return status_;
    }));
}

KXStatus MAContModel::RegBasedContTest(MultiPassRecordIter& records, const KXVarList& variables)
{
    return RunSmallStudyTest(records, variables, MAConst::REG_TEST_EFFECT_ON_STD_ERROR);
}

} // namespace MA_NAMESPACE

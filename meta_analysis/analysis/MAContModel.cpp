#include "meta_analysis/analysis/MAContModel.h"

#include "meta_analysis/analysis/models/InverseVarianceBuilder.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAContinousEffectSize.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// The standard deviation of a group: read, or else derived from its variance. A variance of 0 or less gives
/// a standard deviation of 0 or less, so that the study is found invalid; a missing one stays missing.
double ReadStdDev(const Record& record, int stdDevIndex, int varianceIndex)
{
    if (stdDevIndex != -1)
        return ReadStudyValue(record, stdDevIndex);
    const double variance = ReadStudyValue(record, varianceIndex);
    if (KXMV::IsMissing(variance))
        return variance;
    return variance > 0.0 ? std::sqrt(variance) : -std::sqrt(std::abs(variance));
}

} // namespace

MAContModel::MAContModel(const MAModelSettings& settings) : MABaseModel(settings) {}
MAContModel::MAContModel(const MAContModel&) = default;
MAContModel& MAContModel::operator=(const MAContModel&) = default;
MAContModel::~MAContModel() = default;

KXStatus MAContModel::RUN(MultiPassRecordIter& records, const KXVarList& variables)
{
    return Guarded(status_, [&] {
        *this = MAContModel(*settings_);
        return RunSteps(records, variables);
    });
}

KXStatus MAContModel::RunSteps(MultiPassRecordIter& records, const KXVarList& variables)
{
    CopyRunSettings();
    if (ReadStudies(records).IsError())
        return status_;
    CheckInputSettings();
    PrepareGroups();

    InverseVarianceBuilder builder(*this);
    BuildModels(builder);
    if (status_.IsError())
        return status_;
    if (modelType_ == MAConst::MODEL_FIXED && HasContrasts() && FixedModelContrastTest().IsError())
        return status_;
    if (studies_.Count() == 1)
        return status_;
    const KXStatus tested =
        RunSmallStudyTest(variables, [&] { return RegBasedContTest(records, variables); });
    if (tested.IsError())
        return status_;
    RunTrimFill();
    if (status_.IsError() || ComputePlotStatistics().IsError())
        return status_;
    if (trimFillRunning_)
        AppendImputedToFunnel();
    return status_;
}

KXStatus MAContModel::ExtractRawInputData(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] {
        status_ = StartPass(records);
        if (status_.IsError())
            return status_;
        if (!HasRequiredIndices())
            return SetError(MAStatusCode::INPUT_NOT_GIVEN);
        ForgetStudies();
        return status_ = ReadPass(records, recordCount_, [this](const Record& record, int recordNumber) {
                   ClassifyMeans(record, recordNumber);
               });
    }));
}

KXStatus MAContModel::RegBasedContTest(MultiPassRecordIter& records, const KXVarList& variables)
{
    return RunRegressionTest(records, variables, MAConst::REG_TEST_EFFECT_ON_STD_ERROR);
}

bool MAContModel::HasRequiredIndices() const
{
    const bool hasSizesAndMeans =
        settings_->GetTreatmentNVarIndex() != -1 && settings_->GetControlNVarIndex() != -1 &&
        settings_->GetTreatmentMeanVarIndex() != -1 && settings_->GetControlMeanVarIndex() != -1;
    const bool hasTreatmentDispersion =
        settings_->GetTreatMentVarianceIndex() != -1 || settings_->GetTreatmentStdErrorIndex() != -1;
    const bool hasControlDispersion =
        settings_->GetControlVarianceIndex() != -1 || settings_->GetControlStdErrorIndex() != -1;
    return hasSizesAndMeans && hasTreatmentDispersion && hasControlDispersion;
}

void MAContModel::ClassifyMeans(const Record& record, int recordNumber)
{
    const double nt = ReadStudyValue(record, settings_->GetTreatmentNVarIndex());
    const double nc = ReadStudyValue(record, settings_->GetControlNVarIndex());
    const double xt = ReadStudyValue(record, settings_->GetTreatmentMeanVarIndex());
    const double xc = ReadStudyValue(record, settings_->GetControlMeanVarIndex());
    const double st =
        ReadStdDev(record, settings_->GetTreatmentStdErrorIndex(), settings_->GetTreatMentVarianceIndex());
    const double sc =
        ReadStdDev(record, settings_->GetControlStdErrorIndex(), settings_->GetControlVarianceIndex());
    for (const double value : {nt, nc, xt, xc, st, sc}) {
        if (KXMV::IsMissing(value)) {
            ++missingCount_;
            return;
        }
    }
    if (nt < 2.0 || nc < 2.0 || st <= 0.0 || sc <= 0.0) {
        ++invalidCount_;
        return;
    }
    studies_.recordNumber.push_back(recordNumber);
    studies_.sampleSize.push_back(nt + nc);
    studies_.means.treatmentSize.push_back(nt);
    studies_.means.controlSize.push_back(nc);
    studies_.means.treatmentMean.push_back(xt);
    studies_.means.controlMean.push_back(xc);
    studies_.means.treatmentStdDev.push_back(st);
    studies_.means.controlStdDev.push_back(sc);
}

KXStatus MAContModel::ESCalc(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] {
        if (ExtractRawInputData(records).IsError())
            return status_;
        alpha_ = 1.0 - settings_->GetCILevel();

        MAContinousEffectSize effectSizes;
        effectSizes.SetTreatmentGSizes(&studies_.means.treatmentSize);
        effectSizes.SetControlGSizes(&studies_.means.controlSize);
        effectSizes.SetTreatmentGMeans(&studies_.means.treatmentMean);
        effectSizes.SetControlGMeans(&studies_.means.controlMean);
        effectSizes.SetTreatmentGStdErrors(&studies_.means.treatmentStdDev);
        effectSizes.SetControlGStdErrors(&studies_.means.controlStdDev);
        effectSizes.SetSignLevel(alpha_);
        effectSizes.SetEqualAssumptionofVariance(settings_->GetVarEqualAssumption());
        effectSizes.SetVarianceAdjustment(settings_->GetVarianceAdjustment());
        effectSizes.SetGlassDsVarianceDependent(settings_->GetGlassDsVarDependentGroup());
        effectSizes.SetEstimationMethod(settings_->GetContinousEstType());
        status_ = effectSizes.ComputeEffectSizeStatistics();
        if (!status_.IsError())
            TakeEffectSizes(effectSizes);
        return status_;
    }));
}

void MAContModel::TakeEffectSizes(const MAContinousEffectSize& effectSizes)
{
    studies_.effects = {effectSizes.GetEffectSizeVal(), effectSizes.GetEffectSizeVariance(),
                        effectSizes.GetEffectSizeStdError(), effectSizes.GetEffectSizeCILower(),
                        effectSizes.GetEffectSizeCIUpper()};
    studies_.zValue = effectSizes.GetEffectSizeZVal();
    studies_.significance = effectSizes.GetEffectSizeSig();
    RequireEffectCopies();
}

} // namespace MA_NAMESPACE

// Reading of the 2x2 tables, and their effect sizes.

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MABinaryEffectSize.h"
#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAStatusCode.h"

namespace MA_NAMESPACE {

KXStatus MABinModel::ExtractRawInputData(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] {
        status_ = StartPass(records);
        if (status_.IsError())
            return status_;
        for (const int index :
             {settings_->GetTreatmentSuccessVarIndex(), settings_->GetTreatmentFailureVarIndex(),
              settings_->GetControlSuccessVarIndex(), settings_->GetControlFailureVarIndex()}) {
            if (index == -1)
                return SetError(MAStatusCode::INPUT_NOT_GIVEN);
        }
        ForgetStudies();
        return status_ = ReadPass(records, recordCount_, [this](const Record& record, int recordNumber) {
                   ClassifyTable(record, recordNumber);
               });
    }));
}

void MABinModel::ClassifyTable(const Record& record, int recordNumber)
{
    const MATable table = {ReadStudyValue(record, settings_->GetTreatmentSuccessVarIndex()),
                           ReadStudyValue(record, settings_->GetTreatmentFailureVarIndex()),
                           ReadStudyValue(record, settings_->GetControlSuccessVarIndex()),
                           ReadStudyValue(record, settings_->GetControlFailureVarIndex())};
    for (const double count : {table.a, table.b, table.c, table.d}) {
        if (KXMV::IsMissing(count)) {
            ++missingCount_;
            return;
        }
    }
    const bool dropsDoubleZero = settings_->GetDropBinZero();
    const bool isDoubleZero = dropsDoubleZero && (table.a + table.c == 0 || table.b + table.d == 0);
    const bool isZeroInBothArms = settings_->GetBinZeroAdjType() == MAConst::ZERO_ADJUST_NONE &&
                                  table.a * table.b + table.c * table.d == 0;
    const bool isNegative = table.a < 0 || table.b < 0 || table.c < 0 || table.d < 0;
    if (isZeroInBothArms && !dropsDoubleZero)
        AddWarning(MAStatusCode::ZERO_CELLS_IN_BOTH_ARMS);

    if (table.a + table.b + table.c + table.d == 0 || isZeroInBothArms || isNegative) {
        ++invalidCount_;
    } else if (isDoubleZero) {
        ++droppedCount_;
    } else {
        studies_.recordNumber.push_back(recordNumber);
        studies_.sampleSize.push_back(table.a + table.b + table.c + table.d);
        studies_.tables.treatmentEvents.push_back(table.a);
        studies_.tables.treatmentNonEvents.push_back(table.b);
        studies_.tables.controlEvents.push_back(table.c);
        studies_.tables.controlNonEvents.push_back(table.d);
    }
}

KXStatus MABinModel::ESCalc(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] {
        if (ExtractRawInputData(records).IsError())
            return status_;
        effectType_ = settings_->GetBinaryEstType();
        zeroAdjustment_ = settings_->GetBinZeroAdjType();
        zeroDelta_ = settings_->GetZeroCountDelta();
        pooledZeroCells_ = settings_->GetPooledZeroCells();
        alpha_ = 1.0 - settings_->GetCILevel();

        MATableColumns corrected = studies_.tables;
        MABinaryEffectSize effectSizes;
        effectSizes.SetTreatmentGSuccessCounts(&corrected.treatmentEvents);
        effectSizes.SetTreatmentGFailureCounts(&corrected.treatmentNonEvents);
        effectSizes.SetControlGSuccessCounts(&corrected.controlEvents);
        effectSizes.SetControlGFailureCounts(&corrected.controlNonEvents);
        effectSizes.SetZeroCountDelta(zeroDelta_);
        effectSizes.SetZeroAdjType(zeroAdjustment_);
        effectSizes.SetEstimationMethod(effectType_);
        effectSizes.SetSignLevel(alpha_);
        status_ = effectSizes.ComputeEffectSizeStatistics();
        if (!status_.IsError())
            TakeEffectSizes(effectSizes);
        return status_;
    }));
}

void MABinModel::TakeEffectSizes(const MABinaryEffectSize& effectSizes)
{
    zeroAdjustment_ = effectSizes.GetUpdatedZeroAdjType();
    const bool isDifference = effectType_ == MAConst::BIN_RISK_DIFFERENCE;
    labbeX_ = isDifference ? effectSizes.GetControlGRatio() : effectSizes.GetLogControlGRatio();
    labbeY_ = isDifference ? effectSizes.GetTreatmentGRatio() : effectSizes.GetLogTreatmentGRatio();
    RequireLength(labbeX_.size(), labbeY_);
    const MAEffectColumns natural = {effectSizes.GetEffectSizeVal(), effectSizes.GetEffectSizeVariance(),
                                     effectSizes.GetEffectSizeStdError(), effectSizes.GetEffectSizeCILower(),
                                     effectSizes.GetEffectSizeCIUpper()};
    if (isDifference) {
        studies_.effects = natural;
        studies_.zValue = effectSizes.GetEffectSizeZVal();
        studies_.significance = effectSizes.GetEffectSizeSig();
        RequireEffectCopies();
        return;
    }
    studies_.ratioEffects = natural;
    studies_.effects = {effectSizes.GetLogEffectSizeVal(), effectSizes.GetLogEffectSizeVariance(),
                        effectSizes.GetLogEffectSizeStdError(), effectSizes.GetLogEffectSizeCILower(),
                        effectSizes.GetLogEffectSizeCIUpper()};
    studies_.zValue = effectSizes.GetLogEffectSizeZVal();
    studies_.significance = effectSizes.GetLogEffectSizeSig();
    RequireEffectCopies();
    RequireLength(studies_.Count(), natural.effectSize, natural.variance, natural.stdError, natural.ciLower,
                  natural.ciUpper);
}

} // namespace MA_NAMESPACE

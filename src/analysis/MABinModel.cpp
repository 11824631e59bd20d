#include "meta_analysis/analysis/MABinModel.h"

#include "meta_analysis/analysis/MAFixedModelHeterogeneity.h"
#include "meta_analysis/analysis/MARecordPass.h"
#include "meta_analysis/effectsize/MABinaryEffectSize.h"
#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/platform/common/KXPower.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>

namespace MA_NAMESPACE {

namespace {

/// Missing for a missing value and where the exponential overflows.
double ExponentOrMissing(double x)
{
    double result = KXMV::Missing();
    KXPower::Exponent(x, result);
    return result;
}

std::vector<double> Exponentiated(std::vector<double> values)
{
    std::transform(values.begin(), values.end(), values.begin(), ExponentOrMissing);
    return values;
}

/// The results of a fitted model on the scale of the analysis.
MAModelRow RowOf(const MABinaryFixEffectModel& model, bool onLogScale)
{
    if (onLogScale)
        return {model.GetLogEstESVal(),    model.GetLogEstESVariance(), model.GetLogEstESStdError(),
                model.GetEstESZVal(),      model.GetEstESSig(),         model.GetLogEstESCILower(),
                model.GetLogEstESCIUpper()};
    return {model.GetEstESVal(), model.GetEstESVariance(), model.GetEstESStdError(), model.GetEstESZVal(),
            model.GetEstESSig(), model.GetEstESCILower(),  model.GetEstESCIUpper()};
}

} // namespace

MABinModel::MABinModel(const MAModelSettings& settings) : MABaseModel(settings) {}
MABinModel::MABinModel(const MABinModel&) = default;
MABinModel& MABinModel::operator=(const MABinModel&) = default;
MABinModel::~MABinModel() = default;

KXStatus MABinModel::RUN(MultiPassRecordIter& records, const KXVarList& variables)
{
    return Guarded(status_, [&] { return RunSteps(records, variables); });
}

KXStatus MABinModel::RunSteps(MultiPassRecordIter& records, const KXVarList& /*variables*/)
{
    CopyRunSettings();
    if (ReadStudies(records).IsError())
        return status_;
    CheckInputSettings();
    AddModelWarnings();
    PrepareGroups();
    BuildModels();
    return status_;
}

KXStatus MABinModel::ExtractRawInputData(MultiPassRecordIter& records)
{
    return Guarded(status_, [&] {
        status_ = StartPass(records);
        if (status_.IsError())
            return status_;
        for (const int index :
             {settings_->GetTreatmentSuccessVarIndex(), settings_->GetTreatmentFailureVarIndex(),
              settings_->GetControlSuccessVarIndex(), settings_->GetControlFailureVarIndex()}) {
            if (index == -1)
                return SetError(MAStatusCode::INPUT_NOT_GIVEN);
        }
        return status_ = ReadPass(records, recordCount_, [this](const Record& record, int recordNumber) {
                   ClassifyTable(record, recordNumber);
               });
    });
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
    return Guarded(status_, [&] {
        if (ExtractRawInputData(records).IsError())
            return status_;
        effectType_ = settings_->GetBinaryEstType();
        zeroAdjustment_ = settings_->GetBinZeroAdjType();
        alpha_ = 1.0 - settings_->GetCILevel();

        MABinaryEffectSize effectSizes;
        effectSizes.SetTreatmentGSuccessCounts(&studies_.tables.treatmentEvents);
        effectSizes.SetTreatmentGFailureCounts(&studies_.tables.treatmentNonEvents);
        effectSizes.SetControlGSuccessCounts(&studies_.tables.controlEvents);
        effectSizes.SetControlGFailureCounts(&studies_.tables.controlNonEvents);
        effectSizes.SetZeroCountDelta(settings_->GetZeroCountDelta());
        effectSizes.SetZeroAdjType(zeroAdjustment_);
        effectSizes.SetEstimationMethod(effectType_);
        effectSizes.SetSignLevel(alpha_);
        status_ = effectSizes.ComputeEffectSizeStatistics();
        if (!status_.IsError())
            TakeEffectSizes(effectSizes);
        return status_;
    });
}

void MABinModel::TakeEffectSizes(const MABinaryEffectSize& effectSizes)
{
    zeroAdjustment_ = effectSizes.GetUpdatedZeroAdjType();
    const MAEffectColumns natural = {effectSizes.GetEffectSizeVal(), effectSizes.GetEffectSizeVariance(),
                                     effectSizes.GetEffectSizeStdError(), effectSizes.GetEffectSizeCILower(),
                                     effectSizes.GetEffectSizeCIUpper()};
    if (effectType_ == MAConst::BIN_RISK_DIFFERENCE) {
        studies_.effects = natural;
        studies_.zValue = effectSizes.GetEffectSizeZVal();
        studies_.significance = effectSizes.GetEffectSizeSig();
        return;
    }
    studies_.ratioEffects = natural;
    studies_.effects = {effectSizes.GetLogEffectSizeVal(), effectSizes.GetLogEffectSizeVariance(),
                        effectSizes.GetLogEffectSizeStdError(), effectSizes.GetLogEffectSizeCILower(),
                        effectSizes.GetLogEffectSizeCIUpper()};
    studies_.zValue = effectSizes.GetLogEffectSizeZVal();
    studies_.significance = effectSizes.GetLogEffectSizeSig();
}

void MABinModel::AddModelWarnings()
{
    if (modelType_ == MAConst::MODEL_FIXED && weightType_ == MAConst::WEIGHT_INVERSE_VARIANCE)
        AddWarning(MAStatusCode::BINARY_FIXED_INVERSE_VARIANCE);
    if (modelType_ == MAConst::MODEL_RANDOM)
        AddWarning(MAStatusCode::BINARY_RANDOM_EFFECTS);
}

/// Only raw tables under the fixed-effect model: other combinations pool by inverse variance.
bool MABinModel::UsesBinaryPooling() const
{
    return weightType_ == MAConst::WEIGHT_BINARY_FIXED && inputType_ == MAConst::INPUT_RAW &&
           modelType_ == MAConst::MODEL_FIXED;
}

void MABinModel::BuildModels()
{
    if (!UsesBinaryPooling()) {
        BuildOverallModel();
        if (!status_.IsError())
            AppendExponentiated();
        return;
    }
    const MATableColumns& tables = studies_.tables;
    BuildBinModel(tables.treatmentEvents, tables.treatmentNonEvents, tables.controlEvents,
                  tables.controlNonEvents);
    modelRecords_.push_back(studies_.recordNumber);
}

/// Ratio-scale rows for the models that have none yet.
void MABinModel::AppendExponentiated()
{
    if (GetESType() == MAConst::BIN_RISK_DIFFERENCE)
        return;
    for (std::size_t i = results_.exponentiated.size(); i < results_.models.size(); ++i) {
        const MAModelRow& row = results_.models[i];
        results_.exponentiated.push_back({ExponentOrMissing(row.estimate), ExponentOrMissing(row.ciLower),
                                          ExponentOrMissing(row.ciUpper)});
    }
}

KXStatus MABinModel::BuildBinModel(const std::vector<double>& treatmentEvents,
                                   const std::vector<double>& treatmentNonEvents,
                                   const std::vector<double>& controlEvents,
                                   const std::vector<double>& controlNonEvents)
{
    return Guarded(status_, [&] {
        MATableColumns tables = {treatmentEvents, treatmentNonEvents, controlEvents, controlNonEvents};
        MABinaryFixEffectModel model = FittedBinModel(tables);
        if (status_.IsError())
            return status_;
        const bool onLogScale = effectType_ != MAConst::BIN_RISK_DIFFERENCE;
        results_.models.push_back(RowOf(model, onLogScale));
        if (onLogScale)
            results_.exponentiated.push_back(
                {model.GetEstESVal(), model.GetEstESCILower(), model.GetEstESCIUpper()});
        if (RecordsTestOutput())
            GetBinFixModelTestOutput(model);
        if (RecordsWeights(treatmentEvents.size())) {
            const std::vector<double> weights = model.GetEstWeight();
            weights_.insert(weights_.end(), weights.begin(), weights.end());
        }
        if (RecordsGroupSize())
            groupSizes_.push_back(static_cast<int>(treatmentEvents.size()));
        return status_;
    });
}

KXStatus MABinModel::BuildBinOnlyTestModel(const std::vector<double>& treatmentEvents,
                                           const std::vector<double>& treatmentNonEvents,
                                           const std::vector<double>& controlEvents,
                                           const std::vector<double>& controlNonEvents)
{
    return Guarded(status_, [&] {
        MATableColumns tables = {treatmentEvents, treatmentNonEvents, controlEvents, controlNonEvents};
        const MABinaryFixEffectModel model = FittedBinModel(tables);
        if (!status_.IsError())
            GetBinFixModelTestOutput(model);
        return status_;
    });
}

/// Fits the tables; the outcome is the status of this object.
MABinaryFixEffectModel MABinModel::FittedBinModel(MATableColumns& tables)
{
    MABinaryFixEffectModel model = NewBinFixEffectModel(tables.treatmentEvents, tables.treatmentNonEvents,
                                                        tables.controlEvents, tables.controlNonEvents);
    status_ = model.ComputeEffectSizeStatistics();
    return model;
}

/// The counts had their zero-cell correction when the effect sizes were computed, with the user's constant.
/// A second one, by the pooling object, would shift the pooled estimate away from the studies' own effects.
MABinaryFixEffectModel MABinModel::NewBinFixEffectModel(std::vector<double>& treatmentEvents,
                                                        std::vector<double>& treatmentNonEvents,
                                                        std::vector<double>& controlEvents,
                                                        std::vector<double>& controlNonEvents) const
{
    MABinaryFixEffectModel model;
    model.SetTreatmentGSuccessCounts(&treatmentEvents);
    model.SetTreatmentGFailureCounts(&treatmentNonEvents);
    model.SetControlGSuccessCounts(&controlEvents);
    model.SetControlGFailureCounts(&controlNonEvents);
    model.SetZeroAdjType(MAConst::ZERO_ADJUST_NONE);
    model.SetEstimationMethod(effectType_);
    model.SetNullHypothesis(settings_->GetNullHypothesis());
    model.SetSignLevel(alpha_);
    return model;
}

void MABinModel::GetBinFixModelTestOutput(const MABinaryFixEffectModel& model)
{
    AppendTestOutput(HeterogeneityRowOf(model), KXMV::Missing());
}

std::vector<double> MABinModel::GetEstExpEffectSize() const
{
    return ColumnOf(results_.exponentiated, &MAExponentiatedRow::estimate);
}

std::vector<double> MABinModel::GetEstExpCILower() const
{
    return ColumnOf(results_.exponentiated, &MAExponentiatedRow::ciLower);
}

std::vector<double> MABinModel::GetEstExpCIUpper() const
{
    return ColumnOf(results_.exponentiated, &MAExponentiatedRow::ciUpper);
}

std::vector<double> MABinModel::GetExpPILower() const
{
    return Exponentiated(GetPILower());
}

std::vector<double> MABinModel::GetExpPIUpper() const
{
    return Exponentiated(GetPIUpper());
}

} // namespace MA_NAMESPACE

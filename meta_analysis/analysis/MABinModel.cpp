#include "meta_analysis/analysis/MABinModel.h"

#include "meta_analysis/analysis/models/InverseVarianceBuilder.h"
#include "meta_analysis/analysis/models/MAModelRows.h"
#include "meta_analysis/analysis/models/TableBuilder.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"
#include "meta_analysis/pooling/MABinaryPooling.h"
#include "meta_analysis/pooling/MAPooledCounts.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MASettingsWarnings.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

std::vector<double> Exponentiated(std::vector<double> values)
{
    std::transform(values.begin(), values.end(), values.begin(), RatioOf);
    return values;
}

/// The results of a fitted model on the scale of the analysis.
MAModelRow RowOf(const MABinaryFixEffectModel& model, bool onLogScale)
{
    if (onLogScale)
        return {model.GetLogEstESVal(),
                model.GetLogEstESVariance(),
                model.GetLogEstESStdError(),
                model.GetEstESZVal(),
                PValueOf(model.GetEstESSig(), [&] { return model.GetEstESLog10Sig(); }),
                model.GetLogEstESCILower(),
                model.GetLogEstESCIUpper(),
                model.GetNPoolCorrected()};
    return {model.GetEstESVal(),
            model.GetEstESVariance(),
            model.GetEstESStdError(),
            model.GetEstESZVal(),
            PValueOf(model.GetEstESSig(), [&] { return model.GetEstESLog10Sig(); }),
            model.GetEstESCILower(),
            model.GetEstESCIUpper(),
            model.GetNPoolCorrected()};
}

} // namespace

MABinModel::MABinModel(const MAModelSettings& settings) : MABaseModel(settings) {}
MABinModel::MABinModel(const MABinModel&) = default;
MABinModel& MABinModel::operator=(const MABinModel&) = default;
MABinModel::~MABinModel() = default;

KXStatus MABinModel::RUN(MultiPassRecordIter& records, const KXVarList& variables)
{
    return Guarded(status_, [&] {
        *this = MABinModel(*settings_);
        return RunSteps(records, variables);
    });
}

KXStatus MABinModel::RunSteps(MultiPassRecordIter& records, const KXVarList& variables)
{
    CopyRunSettings();
    if (ReadStudies(records).IsError())
        return status_;
    CheckInputSettings();
    AddWarnings(WarningsOfBinaryRun(*settings_));
    PrepareGroups();
    if (BuildModelsByMethod().IsError())
        return status_;
    if (modelType_ == MAConst::MODEL_FIXED && HasContrasts() &&
        (UsesBinaryPooling() ? FixedBinModelContrastTest() : FixedModelContrastTest()).IsError())
        return status_;
    if (studies_.Count() == 1)
        return status_;
    const KXStatus tested = RunSmallStudyTest(variables, [&] {
        return RegBasedBinTest(records, variables, MAConst::REG_TEST_EFFECT_ON_STD_ERROR);
    });
    if (tested.IsError())
        return status_;
    RunTrimFillUnlessBinary();
    if (status_.IsError() || ComputePlotStatistics().IsError())
        return status_;
    if (HasLabbePlot() && ComputeLabbePlotStatistics().IsError())
        return status_;
    if (trimFillRunning_ && !UsesBinaryPooling())
        AppendImputedToFunnel();
    return status_;
}

/// Inverse-variance models of ratio measures get their ratio-scale rows here; binary pooling appends its own.
KXStatus MABinModel::BuildModelsByMethod()
{
    if (UsesBinaryPooling()) {
        TableBuilder builder(*this);
        BuildModels(builder);
    } else {
        InverseVarianceBuilder builder(*this);
        BuildModels(builder);
        if (!status_.IsError())
            AppendExponentiated();
    }
    return status_;
}

void MABinModel::RunTrimFillUnlessBinary()
{
    if (!UsesBinaryPooling()) {
        RunTrimFill();
        return;
    }
    trimFillRunning_ = settings_->GetIsTRIMFILL();
    if (trimFillRunning_)
        AddWarning(MAStatusCode::TRIM_FILL_NOT_RUN);
}

KXStatus MABinModel::BuildBinSubGroupModel()
{
    if (!HasTables())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    TableBuilder builder(*this);
    return Guarded(status_, [&] { return BuildSubGroups(builder); });
}

KXStatus MABinModel::BuildBinCumulativeModel()
{
    if (!HasTables())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    TableBuilder builder(*this);
    return Guarded(status_, [&] { return BuildCumulative(builder); });
}

KXStatus MABinModel::RegBasedBinTest(MultiPassRecordIter& records, const KXVarList& variables,
                                     MAConst::RegBaseTestType type)
{
    return RunRegressionTest(records, variables, type);
}

KXStatus MABinModel::FixedBinModelContrastTest()
{
    if (!HasTables())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] {
        MATableColumns tables = studies_.tables;
        MABinaryFixEffectModel model = NewModelOfRun(tables);
        status_ = model.ComputeEffectSizeStatistics();
        if (status_.IsError())
            return status_;
        for (const std::vector<double>& coefficients : studies_.contrastCoefficients) {
            model.SetContrastCoef(&coefficients);
            const KXStatus tested = model.ContrastTest();
            RequireMemory(tested);
            AddWarning(tested);
            // The z values receive the standard error once more, as hosts expect of this path.
            const double variance = model.GetContrastTestStdError();
            const double stdError = KXMV::IsMissing(variance) ? variance : std::sqrt(variance);
            contrasts_.push_back({model.GetContrastTestGMeans(),
                                  stdError,
                                  stdError,
                                  {model.GetContrastTest2SidedSig(), model.GetContrastTest2SidedLog10Sig()},
                                  model.GetContrastTestCILower(),
                                  model.GetContrastTestCIUpper()});
        }
        return status_;
    });
}

/// Peto odds ratios have no group ratios, and studies removed after their effect sizes were computed no
/// longer match them.
bool MABinModel::HasLabbePlot() const
{
    return inputType_ == MAConst::INPUT_RAW && GetESType() != MAConst::BIN_PETO_ODDS_RATIO &&
           labbeX_.size() == studies_.Count();
}

KXStatus MABinModel::ComputeLabbePlotStatistics()
{
    return Guarded(status_, [this] {
        labbe_ = MALabbeRows();
        const std::size_t count = studies_.Count();
        if (labbeX_.size() != count || weights_.size() < count || !HasGroupValues())
            return SetError(MAStatusCode::LENGTH_MISMATCH);
        const std::vector<MASelection> groups = MembersByGroup();
        for (std::size_t g = 0; g < groups.size(); ++g) {
            if (!HasGroups() || groupValues_[g] != overallGroup)
                AppendLabbeRow(groups[g]);
        }
        return status_;
    });
}

void MABinModel::AppendLabbeRow(const MASelection& members)
{
    labbe_.x.push_back(Selected(labbeX_, members));
    labbe_.y.push_back(Selected(labbeY_, members));
    labbe_.weight.push_back(Selected(weights_, members));
}

/// Only raw tables under the fixed-effect model: other combinations pool by inverse variance.
bool MABinModel::UsesBinaryPooling() const
{
    return weightType_ == MAConst::WEIGHT_BINARY_FIXED && inputType_ == MAConst::INPUT_RAW &&
           modelType_ == MAConst::MODEL_FIXED;
}

/// Ratio-scale rows for the models that have none yet.
void MABinModel::AppendExponentiated()
{
    if (GetESType() == MAConst::BIN_RISK_DIFFERENCE)
        return;
    for (std::size_t i = results_.exponentiated.size(); i < results_.models.size(); ++i)
        results_.exponentiated.push_back(Exponentiated(results_.models[i]));
}

KXStatus MABinModel::BuildBinModel(const std::vector<double>& treatmentEvents,
                                   const std::vector<double>& treatmentNonEvents,
                                   const std::vector<double>& controlEvents,
                                   const std::vector<double>& controlNonEvents)
{
    return Guarded(status_, [&] {
        MATableColumns tables = {treatmentEvents, treatmentNonEvents, controlEvents, controlNonEvents};
        return AppendModel(NewBinFixEffectModel(tables.treatmentEvents, tables.treatmentNonEvents,
                                                tables.controlEvents, tables.controlNonEvents),
                           treatmentEvents.size());
    });
}

KXStatus MABinModel::BuildBinOnlyTestModel(const std::vector<double>& treatmentEvents,
                                           const std::vector<double>& treatmentNonEvents,
                                           const std::vector<double>& controlEvents,
                                           const std::vector<double>& controlNonEvents)
{
    return Guarded(status_, [&] {
        MATableColumns tables = {treatmentEvents, treatmentNonEvents, controlEvents, controlNonEvents};
        return AppendTest(NewBinFixEffectModel(tables.treatmentEvents, tables.treatmentNonEvents,
                                               tables.controlEvents, tables.controlNonEvents));
    });
}

KXStatus MABinModel::AppendModel(MABinaryFixEffectModel model, std::size_t studyCount)
{
    status_ = model.ComputeEffectSizeStatistics();
    if (status_.IsError())
        return status_;
    const bool onLogScale = effectType_ != MAConst::BIN_RISK_DIFFERENCE;
    results_.models.push_back(RowOf(model, onLogScale));
    if (onLogScale)
        results_.exponentiated.push_back(
            {model.GetEstESVal(), model.GetEstESCILower(), model.GetEstESCIUpper()});
    if (RecordsTestOutput())
        GetBinFixModelTestOutput(model);
    if (RecordsWeights(studyCount)) {
        const std::vector<double> weights = model.GetEstWeight();
        RequireLength(studyCount, weights);
        weights_.insert(weights_.end(), weights.begin(), weights.end());
    }
    if (RecordsGroupSize())
        groupSizes_.push_back(static_cast<int>(studyCount));
    return status_;
}

KXStatus MABinModel::AppendTest(MABinaryFixEffectModel model)
{
    status_ = model.ComputeEffectSizeStatistics();
    if (!status_.IsError())
        GetBinFixModelTestOutput(model);
    return status_;
}

MAZeroCorrection MABinModel::ZeroCorrection() const
{
    return {zeroAdjustment_, zeroDelta_};
}

int MABinModel::GetNZeroCorrected() const
{
    const std::size_t count = studies_.tables.treatmentEvents.size();
    int corrected = 0;
    for (std::size_t study = 0; study < count; ++study)
        corrected += ZeroCorrection().AddedTo(TableBuilder::TableOf(studies_.tables, study)) != 0.0;
    return corrected;
}

int MABinModel::GetNUninformative() const
{
    int leftOut = 0;
    if (!UsesBinaryPooling())
        return leftOut;
    WithBinaryPooling(effectType_, [&](auto pooling) {
        const MAPooledCounts<decltype(pooling)> counts(pooledZeroCells_);
        for (std::size_t study = 0; study < studies_.tables.treatmentEvents.size(); ++study)
            leftOut += counts.Includes(TableBuilder::TableOf(studies_.tables, study)) ? 0 : 1;
    });
    return leftOut;
}

/// For tables of the run, as read. The object corrects the tables that the effect sizes corrected, with the
/// user's constant: all tables, also of a group without a zero cell, when `ZERO_ADJUST_ALL_IF_ANY` found one.
MABinaryFixEffectModel MABinModel::NewModelOfRun(MATableColumns& tables) const
{
    MABinaryFixEffectModel model = NewBinFixEffectModel(tables.treatmentEvents, tables.treatmentNonEvents,
                                                        tables.controlEvents, tables.controlNonEvents);
    model.SetZeroAdjType(zeroAdjustment_);
    model.correctionDelta_ = zeroDelta_;
    model.SetPooledZeroCells(pooledZeroCells_);
    return model;
}

/// Without a zero-cell correction: counts that a host passes in are used as they are.
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
    return FieldOf(results_.exponentiated, &MAExponentiatedRow::estimate);
}

std::vector<double> MABinModel::GetEstExpCILower() const
{
    return FieldOf(results_.exponentiated, &MAExponentiatedRow::ciLower);
}

std::vector<double> MABinModel::GetEstExpCIUpper() const
{
    return FieldOf(results_.exponentiated, &MAExponentiatedRow::ciUpper);
}

std::vector<double> MABinModel::GetExpPILower() const
{
    return Exponentiated(GetPILower());
}

std::vector<double> MABinModel::GetExpPIUpper() const
{
    return Exponentiated(GetPIUpper());
}

std::vector<double> MABinModel::GetContrastExpEstES() const
{
    return Exponentiated(GetContrastEstES());
}

std::vector<double> MABinModel::GetContrastExpEstCILower() const
{
    return Exponentiated(GetContrastEstCILower());
}

std::vector<double> MABinModel::GetContrastExpEstCIUpper() const
{
    return Exponentiated(GetContrastEstCIUpper());
}

std::vector<std::vector<double>> MABinModel::GetCumExpEstES() const
{
    return ExponentiatedRows(GetCumEstES());
}

std::vector<std::vector<double>> MABinModel::GetCumExpEstCiLower() const
{
    return ExponentiatedRows(GetCumEstCiLower());
}

std::vector<std::vector<double>> MABinModel::GetCumExpEstCiUpper() const
{
    return ExponentiatedRows(GetCumEstCiUpper());
}

std::vector<std::vector<double>> MABinModel::ExponentiatedRows(std::vector<std::vector<double>> rows) const
{
    if (effectType_ == MAConst::BIN_RISK_DIFFERENCE)
        return {};
    for (std::vector<double>& row : rows)
        row = Exponentiated(std::move(row));
    return rows;
}

} // namespace MA_NAMESPACE

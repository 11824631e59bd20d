#include "meta_analysis/analysis/MABinModel.h"

#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/MAResultColumns.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/analysis/studies/MATableStudies.h"
#include "meta_analysis/effectsize/MARatio.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAMeasures.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// Copies of a host's counts, which a pooling object may correct.
struct Counts
{
    std::vector<double> a;
    std::vector<double> b;
    std::vector<double> c;
    std::vector<double> d;
};

std::vector<double> Exponentiated(std::vector<double> values)
{
    std::transform(values.begin(), values.end(), values.begin(), RatioOf);
    return values;
}

std::vector<std::vector<double>> Exponentiated(std::vector<std::vector<double>> rows)
{
    for (std::vector<double>& row : rows)
        row = Exponentiated(std::move(row));
    return rows;
}

/// A field of every point of every plot.
std::vector<std::vector<double>> LabbeColumn(const std::vector<std::vector<MALabbePoint>>& plots,
                                             double MALabbePoint::*field)
{
    return FieldOf(plots, [=](const std::vector<MALabbePoint>& plot) { return FieldOf(plot, field); });
}

} // namespace

MABinModel::MABinModel(const MAModelSettings& settings) : MABaseModel(settings, MAConst::OUTCOME_BINARY) {}
MABinModel::MABinModel(const MABinModel&) = default;
MABinModel& MABinModel::operator=(const MABinModel&) = default;
MABinModel::~MABinModel() = default;

KXStatus MABinModel::RUN(MultiPassRecordIter& records, const KXVarList& variables)
{
    return Guarded(status_, [&] {
        if (Run(records, variables).IsError() || Results().studies.Count() == 1 || !HasLabbePlot())
            return status_;
        return ComputeLabbePlotStatistics();
    });
}

KXStatus MABinModel::ExtractRawInputData(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] {
        status_ = StartPass(records);
        if (status_.IsError())
            return status_;
        if (!NamesTables(*settings_))
            return SetError(MAStatusCode::INPUT_NOT_GIVEN);
        return status_ = Take(ReadTables(records, *settings_));
    }));
}

KXStatus MABinModel::ESCalc(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] {
        if (ExtractRawInputData(records).IsError())
            return status_;
        MAAnalysisState& state = State();
        MATableMeasure& tables = state.settings.tables;
        tables.measure = settings_->GetBinaryEstType();
        tables.pooledZeroCells = settings_->GetPooledZeroCells();
        state.settings.alpha = AlphaOf(settings_->GetCILevel());
        MATableStudies computed = WithTableEffects(
            std::move(state.studies), tables.measure,
            {settings_->GetBinZeroAdjType(), settings_->GetZeroCountDelta()}, state.settings.alpha);
        state.studies = std::move(computed.studies);
        tables.correction = computed.correction;
        return status_;
    }));
}

bool MABinModel::HasTables() const
{
    return HasRead() && Results().studies.tables.size() == Results().studies.Count();
}

KXStatus MABinModel::BuildBinSubGroupModel()
{
    if (!HasTables())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] { return BuildSubgroups(TableChoice()); });
}

KXStatus MABinModel::BuildBinCumulativeModel()
{
    if (!HasTables())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] { return BuildCumulative(TableChoice()); });
}

KXStatus MABinModel::RegBasedBinTest(MultiPassRecordIter& records, const KXVarList& variables,
                                     MAConst::RegBaseTestType type)
{
    return RunSmallStudyTest(records, variables, type);
}

KXStatus MABinModel::FixedBinModelContrastTest()
{
    if (!HasTables())
        return SetError(MAStatusCode::LENGTH_MISMATCH);
    return Guarded(status_, [this] { return TestContrastsOfTables(); });
}

bool MABinModel::HasLabbePlot() const
{
    return Results().settings.run.inputType == MAConst::INPUT_RAW && ComparesGroups(GetESType()) &&
           Results().studies.groupOutcomes.size() == Results().studies.Count();
}

KXStatus MABinModel::ComputeLabbePlotStatistics()
{
    return Guarded(status_, [this] {
        MAAnalysisState& state = State();
        state.labbe.clear();
        const std::size_t count = state.studies.Count();
        if (state.studies.groupOutcomes.size() != count || state.lists.weights.size() < count ||
            !HasGroupValues())
            return SetError(MAStatusCode::LENGTH_MISMATCH);
        const std::vector<MASelection> groups = state.groups.AreSeveral() || !state.studies.HasUngrouped()
                                                    ? MembersByGroup(state.studies, state.groups.values)
                                                    : std::vector<MASelection>{AllOf(state.studies)};
        for (std::size_t g = 0; g < groups.size(); ++g) {
            if (!state.groups.AreSeveral() || state.groups.values[g] != MAConst::overallGroup)
                state.labbe.push_back(PlotLabbe(state.studies, state.lists.weights, groups[g]));
        }
        return status_;
    });
}

KXStatus MABinModel::BuildBinModel(const std::vector<double>& treatmentEvents,
                                   const std::vector<double>& treatmentNonEvents,
                                   const std::vector<double>& controlEvents,
                                   const std::vector<double>& controlNonEvents)
{
    return Guarded(status_, [&] {
        Counts counts = {treatmentEvents, treatmentNonEvents, controlEvents, controlNonEvents};
        MABinaryFixEffectModel model = NewBinFixEffectModel(counts.a, counts.b, counts.c, counts.d);
        status_ = model.ComputeEffectSizeStatistics();
        if (status_.IsError())
            return status_;
        std::vector<double> weights = model.GetEstWeight();
        RequireLength(treatmentEvents.size(), weights);
        return AppendBuilt({model.GetPooledModel(), model.GetNPoolCorrected(), {}}, std::move(weights));
    });
}

KXStatus MABinModel::BuildBinOnlyTestModel(const std::vector<double>& treatmentEvents,
                                           const std::vector<double>& treatmentNonEvents,
                                           const std::vector<double>& controlEvents,
                                           const std::vector<double>& controlNonEvents)
{
    return Guarded(status_, [&] {
        Counts counts = {treatmentEvents, treatmentNonEvents, controlEvents, controlNonEvents};
        MABinaryFixEffectModel model = NewBinFixEffectModel(counts.a, counts.b, counts.c, counts.d);
        status_ = model.ComputeEffectSizeStatistics();
        if (!status_.IsError())
            GetBinFixModelTestOutput(model);
        return status_;
    });
}

/// Without a zero-cell correction: counts that a host passes in are used as they are.
MABinaryFixEffectModel MABinModel::NewBinFixEffectModel(std::vector<double>& treatmentEvents,
                                                        std::vector<double>& treatmentNonEvents,
                                                        std::vector<double>& controlEvents,
                                                        std::vector<double>& controlNonEvents) const
{
    const MATablePoolingChoice choice = TableChoice().tables;
    MABinaryFixEffectModel model;
    model.SetTreatmentGSuccessCounts(&treatmentEvents);
    model.SetTreatmentGFailureCounts(&treatmentNonEvents);
    model.SetControlGSuccessCounts(&controlEvents);
    model.SetControlGFailureCounts(&controlNonEvents);
    model.SetZeroAdjType(MAConst::ZERO_ADJUST_NONE);
    model.SetEstimationMethod(choice.measure);
    model.SetNullHypothesis(choice.nullHypothesis);
    model.SetSignLevel(choice.alpha);
    return model;
}

void MABinModel::GetBinFixModelTestOutput(const MABinaryFixEffectModel& model)
{
    TakeHeterogeneity(model.GetPooledModel());
}

int MABinModel::GetNZeroCorrected() const
{
    const MAZeroCorrection& correction = Results().settings.tables.correction;
    const std::vector<MATable>& tables = Results().studies.tables;
    return static_cast<int>(std::count_if(tables.begin(), tables.end(), [&](const MATable& table) {
        return correction.AddedTo(table) != 0.0;
    }));
}

int MABinModel::GetNUninformative() const
{
    return PoolsTables() ? CountUninformative(Results().studies.tables, TableChoice().tables) : 0;
}

std::vector<int> MABinModel::GetNPoolCorrected() const
{
    return FieldOf(Results().lists.rows, &MAPooledRow::correctedTables);
}

std::vector<std::vector<int>> MABinModel::GetCumNPoolCorrected() const
{
    return CumulativeColumn(Results().cumulative, &MAPooledRow::correctedTables);
}

std::vector<double> MABinModel::GetExpEffectSize() const
{
    return FieldOf(Results().studies.ratios, &MAStudyRatio::effectSize);
}

std::vector<double> MABinModel::GetExpVariance() const
{
    return FieldOf(Results().studies.ratios, &MAStudyRatio::variance);
}

std::vector<double> MABinModel::GetExpStdError() const
{
    return FieldOf(Results().studies.ratios, &MAStudyRatio::stdError);
}

std::vector<double> MABinModel::GetExpCILower() const
{
    return FieldOf(Results().studies.ratios, &MAStudyRatio::ciLower);
}

std::vector<double> MABinModel::GetExpCIUpper() const
{
    return FieldOf(Results().studies.ratios, &MAStudyRatio::ciUpper);
}

std::vector<double> MABinModel::GetEstExpEffectSize() const
{
    return HasRatios() ? Exponentiated(GetEstEffectSize()) : std::vector<double>();
}

std::vector<double> MABinModel::GetEstExpCILower() const
{
    return HasRatios() ? Exponentiated(GetEstCILower()) : std::vector<double>();
}

std::vector<double> MABinModel::GetEstExpCIUpper() const
{
    return HasRatios() ? Exponentiated(GetEstCIUpper()) : std::vector<double>();
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
    return HasRatios() ? Exponentiated(GetCumEstES()) : std::vector<std::vector<double>>();
}

std::vector<std::vector<double>> MABinModel::GetCumExpEstCiLower() const
{
    return HasRatios() ? Exponentiated(GetCumEstCiLower()) : std::vector<std::vector<double>>();
}

std::vector<std::vector<double>> MABinModel::GetCumExpEstCiUpper() const
{
    return HasRatios() ? Exponentiated(GetCumEstCiUpper()) : std::vector<std::vector<double>>();
}

/// Of the measure that the studies have, whatever the settings say since.
bool MABinModel::HasRatios() const
{
    return IsOnLogScale(Results().settings.tables.measure);
}

bool MABinModel::HasFilledRatio() const
{
    return HasRatios() && Results().trimFill.hasRatio;
}

double MABinModel::GetOverallTFExpEffectSize() const
{
    return HasFilledRatio() ? RatioOf(GetOverallTFEffectSize()) : KXMV::Missing();
}

double MABinModel::GetOverallTFExpCILower() const
{
    return HasFilledRatio() ? RatioOf(GetOverallTFCILower()) : KXMV::Missing();
}

double MABinModel::GetOverallTFExpCIUpper() const
{
    return HasFilledRatio() ? RatioOf(GetOverallTFCIUpper()) : KXMV::Missing();
}

double MABinModel::GetRegBasedTestExpLimit() const
{
    return HasRatios() ? RatioOf(GetRegBasedTestLimit()) : KXMV::Missing();
}

double MABinModel::GetRegBasedTestExpLimitCILower() const
{
    return HasRatios() ? RatioOf(GetRegBasedTestLimitCILower()) : KXMV::Missing();
}

double MABinModel::GetRegBasedTestExpLimitCIUpper() const
{
    return HasRatios() ? RatioOf(GetRegBasedTestLimitCIUpper()) : KXMV::Missing();
}

std::vector<double> MABinModel::GetLeaveOneOutExpEffectSize() const
{
    return HasRatios() ? Exponentiated(GetLeaveOneOutEffectSize()) : std::vector<double>();
}

std::vector<double> MABinModel::GetLeaveOneOutExpCILower() const
{
    return HasRatios() ? Exponentiated(GetLeaveOneOutCILower()) : std::vector<double>();
}

std::vector<double> MABinModel::GetLeaveOneOutExpCIUpper() const
{
    return HasRatios() ? Exponentiated(GetLeaveOneOutCIUpper()) : std::vector<double>();
}

std::vector<std::vector<double>> MABinModel::GetLabbePlotX() const
{
    return LabbeColumn(Results().labbe, &MALabbePoint::x);
}

std::vector<std::vector<double>> MABinModel::GetLabbePlotY() const
{
    return LabbeColumn(Results().labbe, &MALabbePoint::y);
}

std::vector<std::vector<double>> MABinModel::GetLabbePlotW() const
{
    return LabbeColumn(Results().labbe, &MALabbePoint::weight);
}

} // namespace MA_NAMESPACE

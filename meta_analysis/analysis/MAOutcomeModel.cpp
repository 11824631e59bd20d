#include "meta_analysis/analysis/MAOutcomeModel.h"

#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/MAResultColumns.h"
#include "meta_analysis/analysis/studies/MAOutcomeStudies.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MANaturalScale.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace MA_NAMESPACE {

namespace {

MAScale ScaleOfStudies(const MAAnalysisState& results)
{
    return ScaleOf(results.settings.tables.outcome);
}

/// A value of each study on the natural scale, at the study's own size.
std::vector<double> NaturalOfStudies(const MAAnalysisState& results, std::vector<double> values) noexcept
{
    const MAScale scale = ScaleOfStudies(results);
    const std::vector<double>& variances = results.studies.variance;
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = ToNatural(scale, values[i], HarmonicSize(scale, {&variances[i], 1}));
    return values;
}

/// A function of a model that is `value(model)` on the natural scale.
template <class Value>
auto NaturalOfModel(const MAAnalysisState& results, Value value)
{
    return [scale = ScaleOfStudies(results), value](const auto& model) {
        return ToNatural(scale, std::invoke(value, model), model.size);
    };
}

/// A part of the effect of a row, or of a model.
template <class Model>
auto PartOfEffect(double MAEstimate::*part)
{
    return Nested(&Model::effect, part);
}

std::vector<double> NaturalOfRows(const MAAnalysisState& results, double MAEstimate::*part)
{
    return FieldOf(results.lists.rows, NaturalOfModel(results, PartOfEffect<MAPooledRow>(part)));
}

std::vector<std::vector<double>> NaturalOfSteps(const MAAnalysisState& results, double MAEstimate::*part)
{
    return CumulativeColumn(results.cumulative, NaturalOfModel(results, PartOfEffect<MAPooledRow>(part)));
}

std::vector<double> NaturalOfLeaveOneOut(const MAAnalysisState& results, double MAEstimate::*part)
{
    return FieldOf(results.leaveOneOut, NaturalOfModel(results, PartOfEffect<MAPooledModel>(part)));
}

std::vector<double> NaturalOfPrediction(const MAAnalysisState& results, double MAPrediction::*limit)
{
    return FieldOf(results.lists.heterogeneity,
                   NaturalOfModel(results, Nested(&MAPooledModel::prediction, limit)));
}

} // namespace

MAOutcomeModel::MAOutcomeModel(const MAModelSettings& settings)
    : MABaseModel(settings, MAConst::OUTCOME_MEASURED)
{}
MAOutcomeModel::MAOutcomeModel(const MAOutcomeModel&) = default;
MAOutcomeModel& MAOutcomeModel::operator=(const MAOutcomeModel&) = default;
MAOutcomeModel::~MAOutcomeModel() = default;

KXStatus MAOutcomeModel::RUN(MultiPassRecordIter& records, const KXVarList& variables)
{
    return Guarded(status_, [&] { return Run(records, variables); });
}

KXStatus MAOutcomeModel::ESCalc(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] {
        status_ = StartPass(records);
        if (status_.IsError())
            return status_;
        if (!NamesOutcome(*settings_))
            return SetError(MAStatusCode::INPUT_NOT_GIVEN);
        MACopiedSettings& copied = State().settings;
        copied.alpha = AlphaOf(settings_->GetCILevel());
        copied.tables.outcome = settings_->GetOutcomeMeasure();
        copied.tables.pooledZeroCells = settings_->GetPooledZeroCells();
        MAOutcomeStudies read = ReadOutcomes(records, *settings_, copied.alpha);
        copied.tables.correction = read.correction;
        return status_ = Take(std::move(read.reading));
    }));
}

KXStatus MAOutcomeModel::RegBasedOutcomeTest(MultiPassRecordIter& records, const KXVarList& variables)
{
    return RunSmallStudyTest(records, variables, MAConst::REG_TEST_EFFECT_ON_STD_ERROR);
}

int MAOutcomeModel::GetNZeroCorrected() const
{
    const std::vector<double>& added = Results().studies.addedToCounts;
    return static_cast<int>(added.size()) - static_cast<int>(std::count(added.begin(), added.end(), 0.0));
}

int MAOutcomeModel::GetNUninformative() const
{
    return PoolsTables() ? CountUninformative(Results().studies.rates, TableChoice().rates) : 0;
}

std::vector<int> MAOutcomeModel::GetNPoolCorrected() const
{
    return FieldOf(Results().lists.rows, &MAPooledRow::correctedTables);
}

std::vector<std::vector<int>> MAOutcomeModel::GetCumNPoolCorrected() const
{
    return CumulativeColumn(Results().cumulative, &MAPooledRow::correctedTables);
}

std::vector<double> MAOutcomeModel::GetNaturalEffectSize() const
{
    return NaturalOfStudies(Results(), GetEffectSize());
}

std::vector<double> MAOutcomeModel::GetNaturalCILower() const
{
    return NaturalOfStudies(Results(), GetCILower());
}

std::vector<double> MAOutcomeModel::GetNaturalCIUpper() const
{
    return NaturalOfStudies(Results(), GetCIUpper());
}

std::vector<double> MAOutcomeModel::GetNaturalEstEffectSize() const
{
    return NaturalOfRows(Results(), &MAEstimate::estimate);
}

std::vector<double> MAOutcomeModel::GetNaturalEstCILower() const
{
    return NaturalOfRows(Results(), &MAEstimate::ciLower);
}

std::vector<double> MAOutcomeModel::GetNaturalEstCIUpper() const
{
    return NaturalOfRows(Results(), &MAEstimate::ciUpper);
}

std::vector<double> MAOutcomeModel::GetNaturalPILower() const
{
    return NaturalOfPrediction(Results(), &MAPrediction::lower);
}

std::vector<double> MAOutcomeModel::GetNaturalPIUpper() const
{
    return NaturalOfPrediction(Results(), &MAPrediction::upper);
}

std::vector<std::vector<double>> MAOutcomeModel::GetCumNaturalEstES() const
{
    return NaturalOfSteps(Results(), &MAEstimate::estimate);
}

std::vector<std::vector<double>> MAOutcomeModel::GetCumNaturalEstCiLower() const
{
    return NaturalOfSteps(Results(), &MAEstimate::ciLower);
}

std::vector<std::vector<double>> MAOutcomeModel::GetCumNaturalEstCiUpper() const
{
    return NaturalOfSteps(Results(), &MAEstimate::ciUpper);
}

std::vector<double> MAOutcomeModel::GetLeaveOneOutNaturalEffectSize() const
{
    return NaturalOfLeaveOneOut(Results(), &MAEstimate::estimate);
}

std::vector<double> MAOutcomeModel::GetLeaveOneOutNaturalCILower() const
{
    return NaturalOfLeaveOneOut(Results(), &MAEstimate::ciLower);
}

std::vector<double> MAOutcomeModel::GetLeaveOneOutNaturalCIUpper() const
{
    return NaturalOfLeaveOneOut(Results(), &MAEstimate::ciUpper);
}

double MAOutcomeModel::GetOverallTFNaturalEffectSize() const
{
    return ToNatural(ScaleOfStudies(Results()), GetOverallTFEffectSize(), Results().trimFill.size);
}

double MAOutcomeModel::GetOverallTFNaturalCILower() const
{
    return ToNatural(ScaleOfStudies(Results()), GetOverallTFCILower(), Results().trimFill.size);
}

double MAOutcomeModel::GetOverallTFNaturalCIUpper() const
{
    return ToNatural(ScaleOfStudies(Results()), GetOverallTFCIUpper(), Results().trimFill.size);
}

} // namespace MA_NAMESPACE

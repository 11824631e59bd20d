#include "Workloads.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/pooling/MARandomEffectModel.h"
#include "meta_analysis/pooling/MATAU2ESTIMATIOR.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegOutputStats.h"

#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

using namespace MA_NAMESPACE;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr bare::Fit failedFit = {notANumber, notANumber, notANumber};

constexpr bare::Table bcgTables[] = {
    {4, 119, 11, 128},     {6, 300, 29, 274},      {3, 228, 11, 209},        {62, 13536, 248, 12619},
    {33, 5036, 47, 5761},  {180, 1361, 372, 1079}, {8, 2537, 10, 619},       {505, 87886, 499, 87892},
    {29, 7470, 45, 7232},  {17, 1699, 65, 1600},   {186, 50448, 141, 27197}, {5, 2493, 3, 2338},
    {27, 16886, 29, 17825}};

std::vector<bare::Table> RepeatedTables(std::size_t count)
{
    std::vector<bare::Table> tables;
    for (std::size_t i = 0; i < count; ++i)
        tables.push_back(bcgTables[i % std::size(bcgTables)]);
    return tables;
}

VectorRecordIter RecordsOf(const std::vector<bare::Table>& tables)
{
    std::vector<Record> records;
    records.reserve(tables.size());
    for (const bare::Table& table : tables)
        records.emplace_back(std::vector<double>(table.begin(), table.end()));
    return VectorRecordIter(std::move(records));
}

/// A record per study: effect, variance and the values of `further(i)`.
template <class Further>
VectorRecordIter RecordsOf(const SimulatedStudies& studies, Further further)
{
    std::vector<Record> records;
    records.reserve(studies.effectSizes.size());
    for (std::size_t i = 0; i < studies.effectSizes.size(); ++i) {
        std::vector<double> values = {studies.effectSizes[i], studies.variances[i]};
        for (const double value : further(i))
            values.push_back(value);
        records.emplace_back(std::move(values));
    }
    return VectorRecordIter(std::move(records));
}

MAModelSettings ReadyMadeSettings()
{
    MAModelSettings settings;
    settings.SetOutcomesType(MAConst::OUTCOME_CONTINUOUS);
    settings.SetInputESType(MAConst::INPUT_READY_MADE);
    settings.SetInputEffectSizeIndex(0);
    settings.SetInputVarianceIndex(1);
    return settings;
}

/// The first `count` numbers in a mixed order, each once unless 7919 divides `count`.
std::vector<double> ShuffledOrder(std::size_t count)
{
    std::vector<double> order;
    for (std::size_t i = 0; i < count; ++i)
        order.push_back(static_cast<double>(i * 7919 % count));
    return order;
}

} // namespace

bare::Fit FitRandomEffects(const SimulatedStudies& studies, MAConst::TAU2ESTIMATOR estimator)
{
    MARandomEffectModel model;
    model.SetEffectSizes(&studies.effectSizes);
    model.SetVariances(&studies.variances);
    model.SetEstimationType(estimator);
    if (model.EstimateMeanESStats().IsError())
        return failedFit;
    return {model.GetBetweenStudyVariance(), model.GetEstEffectSize(), model.GetHomogeneityTestQ()};
}

bare::Fit RemlFit::Bare() const
{
    return bare::FitReml(studies_.effectSizes.data(), studies_.variances.data(), studies_.effectSizes.size());
}

double RemlSearch::Estimate(MAConst::TAU2SEARCH search)
{
    MATAU2ESTIMATIOR estimator;
    estimator.SetEffectSizes(&studies_.effectSizes);
    estimator.SetVariances(&studies_.variances);
    estimator.SetTau2Search(search);
    if (estimator.ComputeTau2Variance(MAConst::TAU2_REML).IsError())
        return notANumber;
    if (search == MAConst::TAU2_SEARCH_GLOBAL)
        evaluations_ = estimator.GetTau2Evaluations();
    return estimator.GetBetweenStudyVariannce();
}

TableRun::TableRun(std::size_t count) : tables_(RepeatedTables(count)), records_(RecordsOf(tables_))
{
    settings_.SetTreatmentSuccessIndex(variables_.AddContVar("treatment_events", ""));
    settings_.SetTreatmentFailureIndex(variables_.AddContVar("treatment_nonevents", ""));
    settings_.SetControlSuccessIndex(variables_.AddContVar("control_events", ""));
    settings_.SetControlFailureIndex(variables_.AddContVar("control_nonevents", ""));
}

bare::Fit TableRun::Run()
{
    MABinModel analysis(settings_);
    if (analysis.RUN(records_, variables_).IsError())
        return failedFit;
    return {analysis.GetTau2Var()[0], analysis.GetEstEffectSize()[0], analysis.GetHomoTestChisquareQ()[0]};
}

EffectsRun::EffectsRun(std::size_t count)
    : studies_(SimulateStudies(count)),
      settings_(ReadyMadeSettings()),
      records_(RecordsOf(studies_, [](std::size_t) { return std::vector<double>(); }))
{
    variables_.AddContVar("effect", "");
    variables_.AddContVar("variance", "");
}

bare::Fit EffectsRun::Run()
{
    MAContModel analysis(settings_);
    if (analysis.RUN(records_, variables_).IsError())
        return failedFit;
    return {analysis.GetTau2Var()[0], analysis.GetEstEffectSize()[0], analysis.GetHomoTestChisquareQ()[0]};
}

bare::Fit EffectsRun::Bare() const
{
    return bare::AnalyseEffects(studies_.effectSizes.data(), studies_.variances.data(),
                                studies_.effectSizes.size())
        .fit;
}

CumulativeRun::CumulativeRun(std::size_t count)
    : studies_(SimulateStudies(count)),
      order_(ShuffledOrder(count)),
      settings_(ReadyMadeSettings()),
      records_(RecordsOf(studies_, [this](std::size_t i) { return std::vector<double>{order_[i]}; }))
{
    settings_.SetModelType(MAConst::MODEL_FIXED);
    settings_.SetCommulativeIndex(2);
}

bare::Fit CumulativeRun::Run()
{
    MAContModel analysis(settings_);
    if (analysis.RUN(records_, KXVarList()).IsError())
        return failedFit;
    return {0.0, analysis.GetCumEstES()[0].back(), 0.0};
}

bare::Fit CumulativeRun::Bare() const
{
    return {0.0, bare::PoolPrefixes(studies_.effectSizes, studies_.variances, order_).back()[0], 0.0};
}

RegressionRun::RegressionRun(std::size_t count) : records_(std::vector<Record>())
{
    const SimulatedStudies studies = SimulateStudies(count);
    variances_ = studies.variances;
    for (std::size_t i = 0; i < count; ++i) {
        const auto position = static_cast<double>(i);
        rows_.push_back({1.0, std::sin(position), std::cos(1.7 * position), studies.effectSizes[i]});
    }
    records_ = RecordsOf(studies, [this](std::size_t i) {
        return std::vector<double>{rows_[i][1], rows_[i][2]};
    });
    settings_.SetDependent(0);
    settings_.SetOMWVarIndex(1);
    settings_.SetInterceptUse(true);
    settings_.SetEstTauType("REML");
    for (const int covariate : {2, 3}) {
        KXModelEffect effect;
        effect.AddCovariate(covariate);
        settings_.AddCovariate(covariate);
        settings_.AddModelEffect(effect);
    }
}

bare::Fit RegressionRun::Run()
{
    MAREAlgorithm engine(settings_);
    if (engine.BuildModel(records_).IsError())
        return failedFit;
    const MARegOutputStats output(settings_, engine);
    return {output.GetTau(), output.GetEstimation()[0], output.GetResHomoChiSqure()};
}

bare::Fit RegressionRun::Bare() const
{
    const bare::RegressionFit fit = bare::FitRemlRegression(rows_, variances_);
    return {fit.tau2, fit.coefficients[0], fit.residualQ};
}

ManySets::ManySets(std::size_t count)
    : count_(count),
      studies_(SimulateStudies(count * setCount)),
      numbers_(15 * setCount),
      counts_(4 * setCount)
{
    for (std::size_t set = 0; set <= setCount; ++set)
        offsets_.push_back(set * count);
    double* number = numbers_.data();
    for (double** const column :
         {&all_.estimate, &all_.stdError, &all_.statistic, &all_.pValue, &all_.minusLog10P, &all_.ciLower,
          &all_.ciUpper, &all_.tau2, &all_.tau2Lower, &all_.tau2Upper, &all_.q, &all_.qPValue, &all_.i2,
          &all_.predictionLower, &all_.predictionUpper}) {
        *column = number;
        number += setCount;
    }
    int* integer = counts_.data();
    for (int** const column : {&all_.studyCount, &all_.leftOut, &all_.qDf, &all_.status}) {
        *column = integer;
        integer += setCount;
    }
}

MABulkResults ManySets::PointColumns() const
{
    MABulkResults point;
    point.estimate = all_.estimate;
    point.stdError = all_.stdError;
    point.tau2 = all_.tau2;
    point.status = all_.status;
    return point;
}

double ManySets::SumOf(const double* column) const
{
    return std::accumulate(column, column + setCount, 0.0);
}

bool ManySets::Pool(const MABulkModel& model, const MABulkResults& results) const
{
    return PoolSets(MARaggedSets{studies_.effectSizes.data(), studies_.variances.data(), offsets_.data(),
                                 setCount},
                    model, results)
        .IsOK();
}

bare::Fit ManySetsFixed::Run()
{
    const MABulkResults results = PointColumns();
    return Pool(MAFixedEffectChoice(), results) ? bare::Fit{0.0, SumOf(results.estimate), 0.0} : failedFit;
}

bare::Fit ManySetsMoment::Run()
{
    MARandomEffectsChoice choice;
    choice.estimator = MAConst::TAU2_DL;
    const MABulkResults results = PointColumns();
    return Pool(choice, results) ? bare::Fit{SumOf(results.tau2), SumOf(results.estimate), 0.0} : failedFit;
}

bare::Fit ManySetsReml::Run()
{
    MARandomEffectsChoice choice;
    choice.search = MAConst::TAU2_SEARCH_GLOBAL;
    choice.knappHartung = MAConst::KNAPP_HARTUNG_ADJUSTED;
    choice.tau2Interval = MAConst::TAU2_INTERVAL_Q_PROFILE;
    const MABulkResults& results = AllColumns();
    return Pool(choice, results) ? bare::Fit{0.0, 0.0, SumOf(results.q)} : failedFit;
}

bool Agree(const bare::Fit& left, const bare::Fit& right)
{
    const auto agree = [](double a, double b) { return std::abs(a - b) <= 1e-9 * std::abs(b); };
    return agree(left.tau2, right.tau2) && agree(left.mean, right.mean) && agree(left.q, right.q);
}

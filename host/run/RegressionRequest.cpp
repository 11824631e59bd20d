#include "host/run/RegressionRequest.h"

#include "host/cli/Interactions.h"
#include "host/cli/RawOutcomes.h"
#include "host/data/ColumnCoding.h"
#include "host/data/StudyLabels.h"
#include "host/data/Variables.h"
#include "host/run/PredictorValues.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/settings/RegressionSettingsOf.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <new>
#include <set>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// The roles are checked before, so the library refuses a variable or an effect only when memory runs out.
void RequireTaken(bool isTaken)
{
    if (!isTaken)
        throw std::bad_alloc();
}

/// The settings that do not depend on the data.
MARegSettings SettingsOf(const Options& options)
{
    MARegSettings settings = RegressionSettingsOf(options.settings);
    settings.SetTau2Interval(options.settings.GetTau2Interval());
    settings.SetInterceptUse(!options.regression.noIntercept);
    settings.SetInfluence(options.settings.GetInfluence());
    settings.SetMultiDiser(options.regression.dispersion);
    settings.SetTestDistType(options.regression.normalTests ? MAConst::TEST_STANDARD_NORMAL
                                                            : MAConst::TEST_STUDENT_T);
    settings.SetSandwich(options.regression.tests.GetSandwich());
    settings.SetPermutations(options.regression.tests.GetPermutations());
    settings.SetSeed(options.regression.tests.GetSeed());
    return settings;
}

/// The levels of a column of categories, of which `option` needs two.
ColumnCoding CodingOf(const DataTable& table, const std::string& column, const char* option, const char* role)
{
    ColumnCoding coding = CodeColumn(table, table.PositionOf(column));
    if (coding.levels.size() < 2)
        throw UnusableInput(fmt::format("--{}: column '{}' has {}; {} two different values.", option, column,
                                        coding.levels.empty()
                                            ? "no values"
                                            : fmt::format("no other value than '{}'", coding.levels.front()),
                                        role));
    return coding;
}

/// Fills a request column by column: first the roles of the columns, then the model effects.
class RegressionColumnsPicker
{
public:
    RegressionColumnsPicker(const Options& options, const DataTable& table)
        : options_(options), table_(table), variables_(table), settings_(SettingsOf(options))
    {}

    RegressionRequest Pick()
    {
        AddStudies();
        for (const std::string& covariate : options_.regression.covariates)
            AddCovariate(covariate);
        for (const std::string& factor : options_.regression.factors)
            AddFactor(factor);
        AddEffects();
        AddReferences();
        AddHypotheses();
        AddPredictions();
        if (options_.regression.cluster)
            AddCluster(*options_.regression.cluster);
        return {.settings = settings_,
                .variables = variables_.List(),
                .levels = std::move(predictors_.levels),
                .records = variables_.Records(),
                .studyLabels = StudyLabels(options_.study, table_),
                .lines = RecordLines(table_),
                .rawEffects = std::move(rawEffects_),
                .hasPictures = options_.htmlPath || options_.plotsFolder,
                .bubblePoints = options_.settings.GetBubbleCurveNPoints(),
                .forest = MakeForestRequest(options_, table_)};
    }

private:
    void AddStudies();
    void AddCovariate(const std::string& column);
    void AddFactor(const std::string& column);
    void AddCluster(const std::string& column);
    void AddEffects();
    void AddEffect(const std::vector<std::string>& columns);
    void AddRawEffects();
    void AddReferences();
    void AddHypotheses();
    void AddPredictions();

    const Options& options_;
    const DataTable& table_;
    Variables variables_;
    MARegSettings settings_;
    Predictors predictors_;
    std::optional<RawEffects> rawEffects_;
};

/// The effect sizes of raw data are variables of their own, which no column names.
void RegressionColumnsPicker::AddRawEffects()
{
    rawEffects_ = ComputeRawEffects(options_, table_);
    RequireTaken(settings_.SetDependent(variables_.AddComputed("effect size", rawEffects_->effects)));
    settings_.SetOMWVarIndex(variables_.AddComputed("variance", rawEffects_->variances));
    settings_.SetOMWVarType(MAConst::OMEGA_VARIANCE);
}

void RegressionColumnsPicker::AddStudies()
{
    if (HasRawData(options_))
        return AddRawEffects();
    RequireTaken(settings_.SetDependent(variables_.PositionOf(options_.effectSize)));
    const std::pair<const ColumnName&, MAConst::OMGWeightType> weights[] = {
        {options_.variance, MAConst::OMEGA_VARIANCE},
        {options_.stdError, MAConst::OMEGA_STD_ERROR},
        {options_.weight, MAConst::OMEGA_WEIGHT}};
    for (const auto& [column, type] : weights) {
        if (!column)
            continue;
        settings_.SetOMWVarIndex(variables_.PositionOf(column));
        settings_.SetOMWVarType(type);
    }
}

void RegressionColumnsPicker::AddCovariate(const std::string& column)
{
    const int position = variables_.PositionOf(column);
    RequireTaken(settings_.AddCovariate(position) >= 0);
    predictors_.positions[column] = position;
}

void RegressionColumnsPicker::AddFactor(const std::string& column)
{
    ColumnCoding coding = CodingOf(table_, column, "factor", "a factor needs");
    const int position = variables_.AddCoded(column, std::move(coding.codes));
    RequireTaken(settings_.AddFactor(position, static_cast<int>(coding.levels.size())) >= 0);
    predictors_.positions[column] = position;
    predictors_.levels[position] = std::move(coding.levels);
}

void RegressionColumnsPicker::AddCluster(const std::string& column)
{
    ColumnCoding coding = CodingOf(table_, column, "cluster", "clusters need");
    settings_.SetCluster(variables_.AddCoded(column, std::move(coding.codes)));
}

void RegressionColumnsPicker::AddEffects()
{
    for (const std::string& covariate : options_.regression.covariates)
        AddEffect({covariate});
    for (const std::string& factor : options_.regression.factors)
        AddEffect({factor});
    for (const auto& [first, second] : InteractionsOf(options_.regression))
        AddEffect({first, second});
}

/// A covariate that is named twice enters as its square.
void RegressionColumnsPicker::AddEffect(const std::vector<std::string>& columns)
{
    KXModelEffect effect;
    for (const std::string& column : columns) {
        const int position = predictors_.positions.at(column);
        const bool isFactor = predictors_.levels.contains(position);
        RequireTaken(isFactor ? effect.AddFactor(position) : effect.AddCovariate(position));
    }
    RequireTaken(settings_.AddModelEffect(effect));
}

void RegressionColumnsPicker::AddReferences()
{
    std::set<int> factors;
    for (const std::string& text : options_.regression.references) {
        const FactorWithLevel reference = ParseReference(text, predictors_);
        if (!factors.insert(reference.factor).second)
            throw UnusableInput(fmt::format("--reference '{}': its factor has two references.", text));
        RequireTaken(settings_.SetReferenceLevel(reference.factor, reference.level));
    }
}

void RegressionColumnsPicker::AddHypotheses()
{
    std::vector<std::vector<double>> rows;
    std::vector<double> values;
    for (const std::string& text : options_.regression.hypotheses) {
        Hypothesis hypothesis = ParseHypothesis(text);
        rows.push_back(std::move(hypothesis.weights));
        values.push_back(hypothesis.value);
    }
    settings_.SetHypotheses(std::move(rows), std::move(values));
}

void RegressionColumnsPicker::AddPredictions()
{
    std::vector<Record> records;
    for (const std::string& text : options_.regression.predictions)
        records.push_back(ParsePredictorValues(text, predictors_));
    settings_.SetPredictions(std::move(records));
}

/// The covariates with their powers behind the factors, as a product.
template <class Effect>
std::string ProductOf(std::vector<std::string> factors, const Effect& effect,
                      const RegressionRequest& request)
{
    for (std::size_t i = 0; i < effect.GetCovariates().size(); ++i) {
        const std::string& name = request.variables.GetVarAt(effect.GetCovariates()[i]).name;
        const int power = effect.GetCovMultiplicities()[i];
        factors.push_back(power == 1 ? name : fmt::format("{}^{}", name, power));
    }
    return fmt::format("{}", fmt::join(factors, "*"));
}

} // namespace

RegressionRequest MakeRegressionRequest(const Options& options, const DataTable& table)
{
    return RegressionColumnsPicker(options, table).Pick();
}

std::string ParameterName(const KXRegrParameter& parameter, const RegressionRequest& request)
{
    if (parameter.IsIntercept())
        return "(intercept)";
    std::vector<std::string> factors;
    for (std::size_t i = 0; i < parameter.GetFactors().size(); ++i) {
        const int factor = parameter.GetFactors()[i];
        const auto level = static_cast<std::size_t>(parameter.GetCategories()[i]);
        factors.push_back(
            fmt::format("{}={}", request.variables.GetVarAt(factor).name, request.levels.at(factor)[level]));
    }
    return ProductOf(std::move(factors), parameter, request);
}

std::string EffectName(const KXModelEffect& effect, const RegressionRequest& request)
{
    std::vector<std::string> factors;
    for (const int factor : effect.GetFactors())
        factors.push_back(request.variables.GetVarAt(factor).name);
    return ProductOf(std::move(factors), effect, request);
}

} // namespace host

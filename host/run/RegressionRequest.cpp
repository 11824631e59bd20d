#include "host/run/RegressionRequest.h"

#include "host/cli/Interactions.h"
#include "host/data/ColumnCoding.h"
#include "host/data/StudyLabels.h"
#include "host/data/Variables.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/settings/RegressionSettingsOf.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <new>
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
    return settings;
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
        return {settings_, variables_.List(), std::move(levels_), variables_.Records(),
                StudyLabels(options_.study, table_)};
    }

private:
    void AddStudies();
    void AddCovariate(const std::string& column);
    void AddFactor(const std::string& column);
    void AddEffects();
    void AddEffect(const std::vector<std::string>& columns);

    const Options& options_;
    const DataTable& table_;
    Variables variables_;
    MARegSettings settings_;
    std::map<std::string, int> predictors_; ///< positions by column
    std::map<int, std::vector<std::string>> levels_;
};

void RegressionColumnsPicker::AddStudies()
{
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
    predictors_[column] = position;
}

void RegressionColumnsPicker::AddFactor(const std::string& column)
{
    ColumnCoding coding = CodeColumn(table_, table_.PositionOf(column));
    if (coding.levels.size() < 2)
        throw UnusableInput(fmt::format(
            "--factor: column '{}' has {}; a factor needs two different values.", column,
            coding.levels.empty() ? "no values"
                                  : fmt::format("no other value than '{}'", coding.levels.front())));
    const int position = variables_.AddCoded(column, std::move(coding.codes));
    RequireTaken(settings_.AddFactor(position, static_cast<int>(coding.levels.size())) >= 0);
    predictors_[column] = position;
    levels_[position] = std::move(coding.levels);
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
        const int position = predictors_.at(column);
        const bool isFactor = levels_.contains(position);
        RequireTaken(isFactor ? effect.AddFactor(position) : effect.AddCovariate(position));
    }
    RequireTaken(settings_.AddModelEffect(effect));
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
    std::vector<std::string> parts;
    for (std::size_t i = 0; i < parameter.GetFactors().size(); ++i) {
        const int factor = parameter.GetFactors()[i];
        const auto level = static_cast<std::size_t>(parameter.GetCategories()[i]);
        parts.push_back(
            fmt::format("{}={}", request.variables.GetVarAt(factor).name, request.levels.at(factor)[level]));
    }
    for (std::size_t i = 0; i < parameter.GetCovariates().size(); ++i) {
        const std::string& name = request.variables.GetVarAt(parameter.GetCovariates()[i]).name;
        const int power = parameter.GetCovMultiplicities()[i];
        parts.push_back(power == 1 ? name : fmt::format("{}^{}", name, power));
    }
    return fmt::format("{}", fmt::join(parts, "*"));
}

} // namespace host

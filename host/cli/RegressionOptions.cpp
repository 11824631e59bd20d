#include "host/cli/RegressionOptions.h"

#include "host/cli/OptionKinds.h"

#include <algorithm>
#include <utility>

namespace host {

namespace {

using Columns = std::pair<std::string, std::string>;

/// What a column is to the model, and the option that says so.
struct Role
{
    enum Kind
    {
        EFFECT,
        WEIGHT,
        COVARIATE,
        FACTOR
    };

    Kind kind;
    const char* option;
    std::string column;
};

bool Contains(const std::vector<std::string>& texts, const std::string& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

bool IsPredictor(const RegressionOptions& options, const std::string& column)
{
    return Contains(options.covariates, column) || Contains(options.factors, column);
}

/// In the order of the kinds.
std::vector<Role> RolesOf(const Options& options)
{
    std::vector<Role> roles;
    const auto add = [&roles](Role::Kind kind, const char* option, const ColumnName& column) {
        if (column)
            roles.push_back({kind, option, *column});
    };
    add(Role::EFFECT, "effect-size", options.effectSize);
    add(Role::WEIGHT, "variance", options.variance);
    add(Role::WEIGHT, "std-error", options.stdError);
    add(Role::WEIGHT, "weight", options.weight);
    for (const std::string& covariate : options.regression.covariates)
        add(Role::COVARIATE, "covariate", covariate);
    for (const std::string& factor : options.regression.factors)
        add(Role::FACTOR, "factor", factor);
    return roles;
}

/// What gives a study's weight may explain its effect too: that is how small-study effects are looked for.
bool MayShareColumn(const Role& left, const Role& right)
{
    return left.kind == Role::WEIGHT && right.kind == Role::COVARIATE;
}

void RequireOneRoleEach(const std::vector<Role>& roles)
{
    for (auto right = roles.begin(); right != roles.end(); ++right)
        for (auto left = roles.begin(); left != right; ++left)
            if (left->column == right->column && !MayShareColumn(*left, *right))
                throw UnusableInput(fmt::format("Column '{}' is given to --{} and again to --{}.",
                                                left->column, left->option, right->option));
}

/// Every way to part `text` at a colon into two predictors.
std::vector<Columns> PartingsOf(const std::string& text, const RegressionOptions& options)
{
    std::vector<Columns> partings;
    for (std::size_t colon = text.find(':'); colon != std::string::npos; colon = text.find(':', colon + 1)) {
        Columns columns(text.substr(0, colon), text.substr(colon + 1));
        if (IsPredictor(options, columns.first) && IsPredictor(options, columns.second))
            partings.push_back(std::move(columns));
    }
    return partings;
}

Columns PartedInteraction(const std::string& text, const RegressionOptions& options)
{
    const std::vector<Columns> partings = PartingsOf(text, options);
    if (partings.empty())
        throw UnusableInput(fmt::format("--interaction: '{}' is not A:B with two columns that --covariate or "
                                        "--factor names.",
                                        text));
    if (partings.size() > 1)
        throw UnusableInput(
            fmt::format("--interaction: '{}' can be parted into two columns at more than one colon.", text));
    return partings.front();
}

void RequireNew(Columns columns, const std::vector<Columns>& known, const std::string& text)
{
    for (int order = 0; order < 2; ++order) {
        if (std::find(known.begin(), known.end(), columns) != known.end())
            throw UnusableInput(fmt::format("--interaction: '{}' is in the model already.", text));
        std::swap(columns.first, columns.second);
    }
}

} // namespace

std::vector<OptionDefinition> RegressionColumns(Options& options)
{
    return {
        Required(Column("effect-size", options.effectSize, "effect sizes (of ratios: their logarithms)")),
        ThisOrNext(Column("variance", options.variance, "their variances, or")),
        ThisOrNext(Column("std-error", options.stdError, "their standard errors, or")),
        Column("weight", options.weight, "their weights, the inverses of the variances"),
    };
}

std::vector<OptionDefinition> RegressionTerms(RegressionOptions& options)
{
    return {
        TextList("covariate", "COLUMN", options.covariates, "a column of numbers, repeatable"),
        TextList("factor", "COLUMN", options.factors,
                 "a column of texts or numbers, whose distinct values are its levels, repeatable"),
        TextList("interaction", "A:B", options.interactions,
                 "product of two covariates or factors, repeatable; A:A is the square of a covariate"),
        Flag("no-intercept", options.noIntercept, "fit without an intercept"),
    };
}

std::vector<OptionDefinition> RegressionTests(RegressionOptions& options)
{
    return {
        Flag("dispersion", options.dispersion, "fixed model: multiply variances by the estimated dispersion"),
        Flag("normal-tests", options.normalTests, "standard normal instead of Student's t"),
    };
}

std::vector<Columns> InteractionsOf(const RegressionOptions& options)
{
    std::vector<Columns> interactions;
    for (const std::string& text : options.interactions) {
        Columns columns = PartedInteraction(text, options);
        if (columns.first == columns.second && Contains(options.factors, columns.first))
            throw UnusableInput(fmt::format("--interaction: '{}' is a factor with itself.", text));
        RequireNew(columns, interactions, text);
        interactions.push_back(std::move(columns));
    }
    return interactions;
}

void CheckRegression(const Options& options)
{
    RequireOneRoleEach(RolesOf(options));
    InteractionsOf(options.regression);
    const bool hasPredictor = !options.regression.covariates.empty() || !options.regression.factors.empty();
    if (options.regression.noIntercept && !hasPredictor)
        throw UnusableInput("--no-intercept without a covariate or a factor leaves nothing to estimate.");
}

} // namespace host

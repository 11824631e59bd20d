#include "host/cli/Interactions.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

namespace host {

namespace {

/// The role of a column in the model, and the option that assigns it.
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

/// The column of the weights may be a covariate too: such a regression looks for small-study effects.
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

/// Each column has one role, and there is a model.
void CheckPredictors(const Options& options)
{
    RequireOneRoleEach(RolesOf(options));
    InteractionsOf(options.regression);
    const bool hasPredictor = !options.regression.covariates.empty() || !options.regression.factors.empty();
    if (options.regression.noIntercept && !hasPredictor)
        throw UnusableInput("--no-intercept without a covariate or a factor leaves nothing to estimate.");
}

} // namespace

OptionGroup PredictorOptions(Options& options)
{
    if (options.command != Command::REGRESSION)
        return {};
    RegressionOptions& regression = options.regression;
    return {
        .heading = "Predictors",
        .options =
            {
                TextList("covariate", "COLUMN", regression.covariates, "a column of numbers, repeatable"),
                TextList("factor", "COLUMN", regression.factors,
                         "a column of texts or numbers, whose distinct values are its levels, repeatable"),
                TextList(
                    "interaction", "A:B", regression.interactions,
                    "product of two covariates or factors, repeatable; A:A is the square of a covariate"),
                TextList("reference", "LEVEL", regression.references,
                         "FACTOR=LEVEL: the level that the others of a factor are compared with, repeatable "
                         "(default: the "
                         "last level)"),
                Flag("no-intercept", regression.noIntercept, "fit without an intercept"),
            },
        .complete = [&options] { CheckPredictors(options); }};
}

} // namespace host

#pragma once

#include "support/Compare.h"
#include "support/Data.h"
#include "support/FinishedRun.h"

#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegOutputStats.h"

#include <optional>
#include <random>
#include <utility>

// Meta-regressions of records that hold the effect, its variance, and moderators from position 2 on.

inline KXModelEffect EffectOf(const std::vector<int>& factors, const std::vector<int>& covariates)
{
    KXModelEffect effect;
    for (const int factor : factors)
        effect.AddFactor(factor);
    for (const int covariate : covariates)
        effect.AddCovariate(covariate);
    return effect;
}

/// A model with an intercept, an effect for each covariate, then one for each factor; every factor has
/// `levels` levels. Iterations end below a step of 1e-12.
inline MA_NAMESPACE::MARegSettings RegressionOn(const std::vector<int>& covariates,
                                                const std::vector<int>& factors = {}, int levels = 3)
{
    MA_NAMESPACE::MARegSettings settings;
    settings.SetDependent(0);
    settings.SetOMWVarIndex(1);
    settings.SetInterceptUse(true);
    settings.SetParameterTolerance(1e-12);
    settings.SetMaxIterations(10000);
    for (const int covariate : covariates) {
        settings.AddCovariate(covariate);
        settings.AddModelEffect(EffectOf({}, {covariate}));
    }
    for (const int factor : factors) {
        settings.AddFactor(factor, levels);
        settings.AddModelEffect(EffectOf({factor}, {}));
    }
    return settings;
}

/// Studies with normal moderators, effects about a line in these, and standard errors between 0.1 and 0.7.
inline Rows RandomStudies(unsigned seed, std::size_t count, std::size_t moderators)
{
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> stdError(0.1, 0.7);
    Rows rows(count);
    for (Row& row : rows) {
        const double error = stdError(generator);
        row = {0.4 + std::hypot(error, 0.5) * normal(generator), error * error};
        for (std::size_t j = 0; j < moderators; ++j) {
            row.push_back(normal(generator));
            row[0] += 0.3 * row.back();
        }
    }
    return rows;
}

/// A meta-regression, built once.
template <class Engine>
struct Regression
{
    Regression(const MA_NAMESPACE::MARegSettings& given, const Rows& rows) : settings(given), engine(settings)
    {
        VectorRecordIter records(rows);
        status = engine.BuildModel(records);
        output.emplace(settings, engine);
    }

    std::vector<int> WarningCodes() const { return CodesOf(engine.GetWarnings()); }

    MA_NAMESPACE::MARegSettings settings;
    Engine engine;
    KXStatus status;
    std::optional<MA_NAMESPACE::MARegOutputStats> output;
};

using FERegression = Regression<MA_NAMESPACE::MAFEAlgorithm>;
using RERegression = Regression<MA_NAMESPACE::MAREAlgorithm>;

/// The seven values of a record's score, in the order of the operation's arguments.
struct Scores
{
    template <class Engine>
    Scores(const Engine& engine, const Row& row)
        : status(engine.Score(Record(row), fit, stdError, lower, upper, residual, residualStdError, leverage))
    {}

    std::vector<double> Values() const
    {
        return {fit, stdError, lower, upper, residual, residualStdError, leverage};
    }

    double fit = notANumber, stdError = notANumber, lower = notANumber, upper = notANumber;
    double residual = notANumber, residualStdError = notANumber, leverage = notANumber;
    KXStatus status;
};

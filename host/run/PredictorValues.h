#pragma once

#include "meta_analysis/platform/common/Record.h"

#include <map>
#include <string>
#include <vector>

namespace host {

/// The covariates and factors of a regression.
struct Predictors
{
    std::map<std::string, int> positions;           ///< of the variables, by column
    std::map<int, std::vector<std::string>> levels; ///< of each factor by its position, in the order coded
};

/// A factor and the position of one of its levels.
struct FactorWithLevel
{
    int factor;
    int level;
};

/// Reads "FACTOR=LEVEL". Throws UnusableInput that names what does not occur.
FactorWithLevel ParseReference(const std::string& text, const Predictors& predictors);

/// Reads "NAME=VALUE,NAME=VALUE,..." with each predictor once, in any order; names and levels may hold commas
/// and equals signs. Throws UnusableInput that names what is unknown, or which predictors lack a value.
Record ParsePredictorValues(const std::string& text, const Predictors& predictors);

/// The weights and the value of a hypothesis "L1,L2,...=r".
struct Hypothesis
{
    std::vector<double> weights;
    double value = 0;
};

Hypothesis ParseHypothesis(const std::string& text);

} // namespace host

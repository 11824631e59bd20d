#pragma once

#include <string>
#include <utility>
#include <vector>

namespace host {

struct OptionDefinition;
struct Options;

/// What the command `regression` has beyond the other commands.
struct RegressionOptions
{
    std::vector<std::string> covariates;
    std::vector<std::string> factors;
    std::vector<std::string> interactions; ///< as given, "A:B"
    bool noIntercept = false;
    bool dispersion = false; ///< multiplicative, for the fixed model
    bool normalTests = false;
};

std::vector<OptionDefinition> RegressionColumns(Options& options);
std::vector<OptionDefinition> RegressionTerms(RegressionOptions& options);
std::vector<OptionDefinition> RegressionTests(RegressionOptions& options);

/// The two columns of each interaction. The names may hold colons themselves, as long as only one of the
/// colons parts two columns that are covariates or factors. Throws UnusableInput.
std::vector<std::pair<std::string, std::string>> InteractionsOf(const RegressionOptions& options);

/// Checks that every column has one role, and that there is a model. Throws UnusableInput.
void CheckRegression(const Options& options);

} // namespace host

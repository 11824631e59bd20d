#include "host/cli/Interactions.h"

#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>

namespace host {

namespace {

using Columns = std::pair<std::string, std::string>;

bool Contains(const std::vector<std::string>& texts, const std::string& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

bool IsPredictor(const RegressionOptions& options, const std::string& column)
{
    return Contains(options.covariates, column) || Contains(options.factors, column);
}

/// All ways to divide `text` at a colon into two predictors.
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

} // namespace host

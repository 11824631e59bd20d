#include "host/run/PredictorValues.h"

#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

namespace host {

namespace {

std::optional<double> NumberIn(std::string_view text)
{
    try {
        return ParseNumber(text);
    } catch (const UnusableInput&) {
        return std::nullopt;
    }
}

/// A level is found by its text, and one of numbers by the number too.
int LevelOf(const std::vector<std::string>& levels, const std::string& name, std::string_view text)
{
    const auto byText = std::find(levels.begin(), levels.end(), text);
    if (byText != levels.end())
        return static_cast<int>(byText - levels.begin());
    const std::optional<double> number = NumberIn(text);
    const auto byNumber = std::find_if(levels.begin(), levels.end(), [&](const std::string& level) {
        return number && NumberIn(level) == number;
    });
    if (byNumber == levels.end())
        throw UnusableInput(
            fmt::format("'{}' is no level of '{}', which has {}.", text, name, fmt::join(levels, ", ")));
    return static_cast<int>(byNumber - levels.begin());
}

/// The longest predictor that stands before an equals sign at the start of the text; null for none.
const std::pair<const std::string, int>* PredictorBefore(std::string_view text, const Predictors& predictors)
{
    const std::pair<const std::string, int>* found = nullptr;
    for (const auto& predictor : predictors.positions) {
        const std::string_view name = predictor.first;
        const bool leads = text.starts_with(name) && Trimmed(text.substr(name.size())).starts_with('=');
        if (leads && (found == nullptr || name.size() > found->first.size()))
            found = &predictor;
    }
    return found;
}

std::string_view WithoutBlanksBefore(std::string_view text)
{
    return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

struct Assignment
{
    std::string name;
    int position;
    std::string value;
};

/// Divides the text at the commas behind which a predictor is named; other commas belong to a value.
std::vector<Assignment> AssignmentsIn(const std::string& text, const Predictors& predictors)
{
    std::vector<Assignment> assignments;
    for (std::size_t start = 0; start <= text.size();) {
        const std::string_view rest = WithoutBlanksBefore(std::string_view(text).substr(start));
        const auto* const predictor = PredictorBefore(rest, predictors);
        // Behind a predictor's name the next comma divides; the name itself may hold some.
        const std::size_t from = text.size() - rest.size() + (predictor ? predictor->first.size() : 0);
        const std::size_t comma = std::min(text.find(',', from), text.size());
        const std::string piece = text.substr(from, comma - from);
        const bool continues =
            !assignments.empty() && predictors.levels.contains(assignments.back().position);
        if (predictor != nullptr)
            assignments.push_back({predictor->first, predictor->second, piece.substr(piece.find('=') + 1)});
        else if (continues)
            assignments.back().value += ',' + text.substr(start, comma - start);
        else
            throw UnusableInput(fmt::format("'{}' is not NAME=VALUE with a covariate or a factor.", piece));
        start = comma + 1;
    }
    return assignments;
}

double ValueOf(const Assignment& assignment, const Predictors& predictors)
{
    const auto levels = predictors.levels.find(assignment.position);
    return levels == predictors.levels.end()
               ? ParseNumber(assignment.value)
               : LevelOf(levels->second, assignment.name, Trimmed(assignment.value));
}

void RequireAll(const std::map<int, double>& values, const Predictors& predictors)
{
    std::vector<std::string> lacking;
    for (const auto& [name, position] : predictors.positions)
        if (!values.contains(position))
            lacking.push_back(name);
    if (!lacking.empty())
        throw UnusableInput(fmt::format("a value is lacking for {}.", fmt::join(lacking, ", ")));
}

/// Adds what was read to the sentence of a problem.
template <class Read>
auto Named(const char* option, const std::string& text, const Read& read)
{
    try {
        return read();
    } catch (const UnusableInput& problem) {
        throw UnusableInput(fmt::format("--{} '{}': {}", option, text, problem.what()));
    }
}

Record ValuesIn(const std::string& text, const Predictors& predictors)
{
    std::map<int, double> values;
    for (const Assignment& assignment : AssignmentsIn(text, predictors))
        if (!values.emplace(assignment.position, ValueOf(assignment, predictors)).second)
            throw UnusableInput(fmt::format("'{}' has two values.", assignment.name));
    RequireAll(values, predictors);
    const std::size_t size = values.empty() ? 0 : static_cast<std::size_t>(values.rbegin()->first) + 1;
    std::vector<double> record(size, KXMV::Missing());
    for (const auto& [position, value] : values)
        record[static_cast<std::size_t>(position)] = value;
    return Record(std::move(record));
}

} // namespace

FactorWithLevel ParseReference(const std::string& text, const Predictors& predictors)
{
    return Named("reference", text, [&]() -> FactorWithLevel {
        const auto* const predictor = PredictorBefore(text, predictors);
        const auto levels =
            predictor == nullptr ? predictors.levels.end() : predictors.levels.find(predictor->second);
        if (levels == predictors.levels.end())
            throw UnusableInput("it is not FACTOR=LEVEL with a column that --factor names.");
        const std::string_view behind = std::string_view(text).substr(predictor->first.size());
        const std::string_view level = Trimmed(behind.substr(behind.find('=') + 1));
        return {predictor->second, LevelOf(levels->second, predictor->first, level)};
    });
}

Record ParsePredictorValues(const std::string& text, const Predictors& predictors)
{
    return Named("predict", text, [&] { return ValuesIn(text, predictors); });
}

Hypothesis ParseHypothesis(const std::string& text)
{
    return Named("hypothesis", text, [&] {
        Hypothesis hypothesis;
        const std::size_t equals = std::min(text.find('='), text.size());
        if (equals < text.size())
            hypothesis.value = ParseNumber(std::string_view(text).substr(equals + 1));
        for (const std::string_view weight : PartsOfList(std::string_view(text).substr(0, equals)))
            hypothesis.weights.push_back(ParseNumber(weight));
        return hypothesis;
    });
}

} // namespace host

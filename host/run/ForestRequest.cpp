#include "host/run/ForestRequest.h"

#include "host/cli/GroupColumns.h"
#include "host/text/NumberText.h"
#include "host/text/PlainText.h"
#include "host/text/TextParsing.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <string_view>
#include <utility>

namespace host {

namespace {

using Kind = WantedColumn::Kind;
using Numbers = std::vector<double>;

Numbers NumbersOf(const ColumnName& column, const DataTable& table)
{
    Numbers numbers;
    if (!column)
        return numbers;
    const std::size_t position = table.PositionOf(*column);
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        numbers.push_back(table.Number(row, position));
    return numbers;
}

/// Entry by entry, where both have a value; empty without one of the lists.
template <class Combine>
Numbers Combined(const Numbers& one, const Numbers& other, const Combine& combine)
{
    Numbers combined;
    for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i)
        combined.push_back(HasValue(one[i]) && HasValue(other[i]) ? combine(one[i], other[i])
                                                                  : KXMV::Missing());
    return combined;
}

GroupFigures FiguresOf(const GroupColumns& columns, const DataTable& table)
{
    GroupFigures figures = {.events = NumbersOf(columns.events, table),
                            .sizes = NumbersOf(columns.size, table),
                            .times = NumbersOf(columns.time, table),
                            .means = NumbersOf(columns.mean, table),
                            .stdDevs = NumbersOf(columns.stdDev, table)};
    if (figures.sizes.empty())
        figures.sizes = Combined(figures.events, NumbersOf(columns.nonEvents, table), std::plus());
    if (figures.stdDevs.empty() && columns.variance != nullptr)
        figures.stdDevs = SquareRoots(NumbersOf(*columns.variance, table));
    return figures;
}

bool HasFigures(const GroupFigures& figures)
{
    return !figures.events.empty() || !figures.sizes.empty() || !figures.means.empty();
}

/// Of two groups, or of the only one.
std::vector<GroupFigures> GroupsOf(const Options& options, const DataTable& table)
{
    const auto& [treatment, control, only] = GroupColumnsOf(options);
    std::vector<GroupFigures> groups = {FiguresOf(treatment, table), FiguresOf(control, table)};
    if (!HasFigures(groups.front()))
        groups = {FiguresOf(only, table)};
    return HasFigures(groups.front()) ? groups : std::vector<GroupFigures>();
}

/// A word of --forest-columns, and whether a group has what it stands for.
struct SummaryWord
{
    std::string_view word;
    Kind kind;
    bool (*isIn)(const GroupFigures&);
};

constexpr std::array SUMMARY_WORDS{
    SummaryWord{"events", Kind::EVENTS, [](const GroupFigures& group) { return !group.events.empty(); }},
    SummaryWord{"n", Kind::SIZE, [](const GroupFigures& group) { return !group.sizes.empty(); }},
    SummaryWord{"mean-sd", Kind::MEAN_AND_SD,
                [](const GroupFigures& group) { return !group.means.empty() && !group.stdDevs.empty(); }},
};

WantedColumn ColumnOfFile(const std::string& name, const DataTable& table)
{
    const std::size_t position = table.PositionOf(name);
    WantedColumn column = {Kind::TEXTS, LabelText(name), {}, table.HoldsNumbers(position)};
    for (std::size_t row = 0; row < table.RowCount(); ++row)
        column.texts.push_back(LabelText(std::string(table.TrimmedText(row, position))));
    return column;
}

/// The data's own figures go before a column of the file that has the word as its name.
WantedColumn ColumnOf(const std::string& name, const ForestRequest& request, const DataTable& table)
{
    const auto* const summary = std::ranges::find(SUMMARY_WORDS, name, &SummaryWord::word);
    const bool isWord = summary != SUMMARY_WORDS.end();
    if (isWord && !request.groups.empty() && summary->isIn(request.groups.front()))
        return {summary->kind};
    try {
        return ColumnOfFile(name, table);
    } catch (const UnusableInput& problem) {
        const std::string lack =
            isWord ? fmt::format("The columns of this analysis give no '{}', and ", name) : "";
        throw UnusableInput(fmt::format("--forest-columns: {}{}", lack, problem.what()));
    }
}

bool HasColumn(const DataTable& table, const std::string& name)
{
    try {
        table.PositionOf(name);
        return true;
    } catch (const UnusableInput&) {
        return false;
    }
}

/// An argument is one name, commas included, or a list of them.
std::vector<std::string> NamesIn(const std::string& argument, const DataTable& table)
{
    if (HasColumn(table, argument))
        return {argument};
    const std::vector<std::string_view> names = PartsOfList(argument);
    return {names.begin(), names.end()};
}

/// The place of each record among the sorted ones; equal ones have the same.
template <class IsBefore>
std::vector<std::size_t> RanksBy(std::size_t count, const IsBefore& isBefore)
{
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(), isBefore);
    std::vector<std::size_t> ranks(count);
    for (std::size_t i = 1; i < count; ++i)
        ranks[order[i]] = ranks[order[i - 1]] + (isBefore(order[i - 1], order[i]) ? 1 : 0);
    return ranks;
}

/// By numbers where the column holds such, else by texts. Missing values come last.
std::vector<std::size_t> RanksOf(const std::string& column, const DataTable& table)
{
    const std::size_t position = table.PositionOf(column);
    const bool hasNumbers = table.HoldsNumbers(position);
    return RanksBy(table.RowCount(), [&](std::size_t one, std::size_t other) {
        const bool isMissing = table.IsMissing(one, position);
        const bool isOtherMissing = table.IsMissing(other, position);
        if (isMissing || isOtherMissing)
            return !isMissing && isOtherMissing;
        return hasNumbers ? table.Number(one, position) < table.Number(other, position)
                          : table.TrimmedText(one, position) < table.TrimmedText(other, position);
    });
}

/// Sizes stand beside events already.
void LeaveOutSizesOfEvents(ForestRequest& request)
{
    auto& columns = request.columns;
    const bool hasEvents = std::any_of(columns.begin(), columns.end(), [](const WantedColumn& column) {
        return column.kind == Kind::EVENTS;
    });
    if (hasEvents)
        std::erase_if(columns, [](const WantedColumn& column) { return column.kind == Kind::SIZE; });
}

bool IsSortedByColumn(const std::string& sort)
{
    return sort != "file" && sort != "effect" && sort != "weight";
}

} // namespace

ForestRequest MakeForestRequest(const Options& options, const DataTable& table)
{
    ForestRequest request = {.options = options.picture, .digits = options.report.digits};
    if (!options.htmlPath && !options.plotsFolder)
        return request;
    request.groups = GroupsOf(options, table);
    for (const std::string& argument : options.picture.forestColumns)
        for (const std::string& name : NamesIn(argument, table))
            request.columns.push_back(ColumnOf(name, request, table));
    LeaveOutSizesOfEvents(request);
    if (IsSortedByColumn(options.picture.forestSort))
        request.ranks = RanksOf(options.picture.forestSort, table);
    return request;
}

} // namespace host

#include "host/plots/ForestLimit.h"

#include "host/plots/PlotGroups.h"
#include "host/text/NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace host {

namespace {

using Kind = ForestRow::Kind;
using Rows = std::vector<ForestRow>;

constexpr std::size_t MOST_STUDIES = 1000; // twenty pages of paper

/// A row that is larger is kept rather.
double RankOf(const ForestRow& row, bool hasWeights)
{
    if (row.kind != Kind::STUDY)
        return 0;
    return hasWeights && IsNumber(row.weight) ? row.weight : !hasWeights;
}

/// The positions with the largest numbers, marked; of equal numbers the first.
std::vector<bool> Largest(const std::vector<double>& numbers, std::size_t count)
{
    std::vector<std::size_t> order(numbers.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    count = std::min(count, order.size());
    std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(count), order.end(),
                      [&](std::size_t a, std::size_t b) {
                          return numbers[a] != numbers[b] ? numbers[a] > numbers[b] : a < b;
                      });
    std::vector<bool> largest(numbers.size());
    for (std::size_t i = 0; i < count; ++i)
        largest[order[i]] = true;
    return largest;
}

/// `count` positions at even distances, the last included.
std::vector<bool> EvenlySpaced(std::size_t size, std::size_t count)
{
    std::vector<bool> chosen(size);
    for (std::size_t i = 0; i < size; ++i)
        chosen[i] = (i + 1) * count / size > i * count / size;
    return chosen;
}

/// The group of each row, from 1; 0 for the rows outside groups.
std::vector<std::size_t> GroupsOf(const Rows& rows)
{
    std::vector<std::size_t> groups;
    std::size_t count = 0;
    bool isInGroup = false;
    for (const ForestRow& row : rows) {
        isInGroup = isInGroup || row.kind == Kind::HEADING;
        count += static_cast<std::size_t>(row.kind == Kind::HEADING);
        groups.push_back(isInGroup ? count : 0);
        isInGroup = isInGroup && row.kind != Kind::GAP;
    }
    return groups;
}

/// Keeps the rows that `isKept` says, and returns how many groups, or studies, it leaves out.
template <class IsKept>
std::size_t Keep(Rows& rows, Kind counted, const IsKept& isKept)
{
    Rows kept;
    std::size_t leftOut = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (isKept(i))
            kept.push_back(std::move(rows[i]));
        else
            leftOut += static_cast<std::size_t>(rows[i].kind == counted);
    }
    rows = std::move(kept);
    return leftOut;
}

std::size_t LimitGroups(Forest& forest)
{
    const std::vector<std::size_t> groups = GroupsOf(forest.rows);
    std::vector<double> weights(1 + *std::max_element(groups.begin(), groups.end()));
    if (weights.size() <= 1 + MOST_SHOWN_GROUPS)
        return 0;
    for (std::size_t i = 0; i < groups.size(); ++i)
        if (groups[i] > 0)
            weights[groups[i]] += RankOf(forest.rows[i], forest.hasWeights);
    weights[0] = -1; // no group
    const std::vector<bool> largest = Largest(weights, MOST_SHOWN_GROUPS);
    return Keep(forest.rows, Kind::HEADING,
                [&](std::size_t i) { return groups[i] == 0 || largest[groups[i]]; });
}

std::size_t LimitStudies(Forest& forest)
{
    std::vector<double> weights;
    for (const ForestRow& row : forest.rows)
        if (row.kind == Kind::STUDY)
            weights.push_back(RankOf(row, forest.hasWeights));
    if (weights.size() <= MOST_STUDIES)
        return 0;
    const std::vector<bool> chosen =
        forest.hasWeights ? Largest(weights, MOST_STUDIES) : EvenlySpaced(weights.size(), MOST_STUDIES);
    std::size_t study = 0;
    return Keep(forest.rows, Kind::STUDY,
                [&](std::size_t i) { return forest.rows[i].kind != Kind::STUDY || chosen[study++]; });
}

std::string SentenceOf(std::size_t groups, std::size_t studies, bool hasWeights)
{
    std::string sentence;
    if (groups > 0)
        sentence = fmt::format("{} groups of less weight are left out, with their studies. ", groups);
    if (studies > 0)
        sentence += hasWeights ? fmt::format("{} studies of less weight are left out. ", studies)
                               : fmt::format("{} steps between those shown are left out. ", studies);
    return sentence + "They count in the pooled effects.";
}

} // namespace

Forest WithReadableRows(Forest forest)
{
    if (forest.rows.empty())
        return forest;
    const std::size_t groups = LimitGroups(forest);
    const std::size_t studies = LimitStudies(forest);
    if (groups == 0 && studies == 0)
        return forest;
    forest.notes.push_back(SentenceOf(groups, studies, forest.hasWeights));
    forest.description += ' ' + forest.notes.back();
    return forest;
}

} // namespace host

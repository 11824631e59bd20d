#include "host/plots/ForestColumns.h"

#include "host/plots/ForestNumbers.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>

namespace host {

namespace {

using Align = PictureText::Align;
using RowKind = ForestRow::Kind;
using Columns = std::vector<ForestColumn>;
using Wanted = WantedColumn::Kind;

constexpr double LONGEST_LABEL = 30;  // in units of the font's size
constexpr double LONGEST_REMARK = 14; // likewise, as of columns of the file

template <class ToText>
std::vector<std::string> TextsOfRows(const Forest& forest, const ToText& toText)
{
    std::vector<std::string> texts;
    texts.reserve(forest.rows.size());
    for (const ForestRow& row : forest.rows)
        texts.push_back(toText(row));
    return texts;
}

// Estimates.

bool HasNegative(const Forest& forest)
{
    return std::any_of(forest.rows.begin(), forest.rows.end(), [](const ForestRow& row) {
        return row.HasInterval() && HasValue(row.shown.lower) && row.shown.lower < 0;
    });
}

std::string EffectText(const ForestRow& row, const ForestNumbers& numbers, const char* format,
                       const char* limits)
{
    if (!row.HasInterval())
        return {};
    const std::string lower = NumberText(row.shown.lower, numbers);
    const std::string upper = NumberText(row.shown.upper, numbers);
    if (row.kind == RowKind::PREDICTION)
        return fmt::format(fmt::runtime(limits), lower, upper);
    const std::string estimate = NumberText(row.shown.estimate, numbers);
    return HasValue(row.shown.lower) || HasValue(row.shown.upper)
               ? fmt::format(fmt::runtime(format), estimate, lower, upper)
               : estimate;
}

/// The part of an estimate's format about its limits.
std::string LimitsOf(const char* format)
{
    return std::string(format).substr(3);
}

ForestColumn EffectColumn(const ForestScale& scale, const Forest& forest)
{
    const ForestStyle& style = *scale.style;
    const ForestNumbers numbers = NumbersOf(scale, forest);
    const char* const format = HasNegative(forest) ? style.signedEstimate : style.estimate;
    const std::string limits = LimitsOf(format);
    ForestColumn column = {.header = WithNames(style.effectHeader, scale.names)};
    column.texts = TextsOfRows(
        forest, [&](const ForestRow& row) { return EffectText(row, numbers, format, limits.c_str()); });
    return column;
}

// Weights.

/// One, or as many as show a digit of three studies in four, because of thousands none weighs 0.1%.
int DecimalsOfWeights(const Forest& forest, double ForestRow::*weight)
{
    constexpr int MOST_DECIMALS = 3;
    std::vector<double> weights;
    for (const ForestRow& row : forest.rows)
        if (row.kind == RowKind::STUDY && IsNumber(row.*weight) && row.*weight > 0)
            weights.push_back(100 * row.*weight);
    if (weights.empty())
        return 1;
    const auto quartile = weights.begin() + static_cast<std::ptrdiff_t>(weights.size() / 4);
    std::nth_element(weights.begin(), quartile, weights.end());
    return std::clamp(static_cast<int>(-std::floor(std::log10(*quartile))), 1, MOST_DECIMALS);
}

ForestColumn WeightColumn(const ForestScale& scale, const Forest& forest, double ForestRow::*weight,
                          const std::string& header)
{
    ForestColumn column = {.header = header};
    const int decimals = DecimalsOfWeights(forest, weight);
    column.texts = TextsOfRows(forest, [&](const ForestRow& row) -> std::string {
        const bool hasWeight = row.kind == RowKind::STUDY || row.kind == RowKind::POOLED;
        if (!hasWeight || !IsNumber(row.*weight))
            return {};
        return FixedText(100 * row.*weight, decimals) + scale.style->percentSign;
    });
    return column;
}

/// Of the model, or of the fixed effect and of random effects.
Columns WeightColumns(const ForestScale& scale, const Forest& forest)
{
    const std::string header = scale.style->weightHeader;
    if (!forest.hasWeights)
        return {};
    if (!scale.hasBothModels)
        return {WeightColumn(scale, forest, &ForestRow::weight, header)};
    const bool isRandom = scale.isRandom;
    const auto fixed = isRandom ? &ForestRow::otherWeight : &ForestRow::weight;
    const auto random = isRandom ? &ForestRow::weight : &ForestRow::otherWeight;
    return {WeightColumn(scale, forest, fixed, header + "\nfixed"),
            WeightColumn(scale, forest, random, header + "\nrandom")};
}

// Figures of the groups.

/// The list that a figure is in.
using Figure = std::vector<double> GroupFigures::*;

/// One or two figures that belong together.
struct FigurePair
{
    Figure first;
    Figure second; ///< null for one
    FigureHeaders headers;
    const char* format; ///< when they are joined
    bool isSummed;      ///< in the rows of models
    bool isCount;
};

FigurePair PairOf(Wanted kind, const GroupFigures& group, const ForestStyle& style)
{
    const bool hasTimes = group.sizes.empty() && !group.times.empty();
    FigureHeaders events = style.events;
    if (hasTimes)
        events = {style.timeHeader, style.events.first, "Time"};
    switch (kind) {
    case Wanted::SIZE:
        return {&GroupFigures::sizes, nullptr, style.sizes, "{}", true, true};
    case Wanted::MEAN_AND_SD:
        return {&GroupFigures::means, &GroupFigures::stdDevs, style.means, "{} ({})", false, false};
    case Wanted::EVENTS:
    case Wanted::TEXTS:
        break;
    }
    return {&GroupFigures::events,
            hasTimes ? &GroupFigures::times : &GroupFigures::sizes,
            events,
            "{}/{}",
            true,
            true};
}

/// The decimals of the file's numbers, but no more than two.
int DecimalsOfFigures(const std::vector<double>& numbers, const ForestScale& scale, bool areCounts)
{
    constexpr int MOST = 2;
    if (scale.request.digits && !areCounts)
        return *scale.request.digits;
    int decimals = 0;
    for (const double number : numbers)
        while (decimals < MOST && IsNumber(number) &&
               std::abs(number - std::round(number * std::pow(10, decimals)) / std::pow(10, decimals)) > 1e-9)
            ++decimals;
    return decimals;
}

/// A figure of each row: of studies as reported, of models the sum.
std::vector<std::string> FigureTexts(const ForestScale& scale, const Forest& forest, const FigurePair& pair,
                                     const std::vector<double>& figures)
{
    const int decimals = DecimalsOfFigures(figures, scale, pair.isCount);
    return TextsOfRows(forest, [&](const ForestRow& row) -> std::string {
        const bool hasFigure = row.kind == RowKind::STUDY || (row.kind == RowKind::POOLED && pair.isSummed);
        if (!hasFigure || row.records.empty())
            return {};
        double sum = 0;
        for (const int record : row.records) {
            const double figure = figures[static_cast<std::size_t>(record)];
            if (!IsNumber(figure))
                return NO_VALUE;
            sum += figure;
        }
        return WithMinusSign(FixedText(sum, decimals));
    });
}

std::vector<std::string> JoinedTexts(const char* format, const std::vector<std::string>& first,
                                     const std::vector<std::string>& second)
{
    std::vector<std::string> joined;
    for (std::size_t i = 0; i < first.size(); ++i)
        joined.push_back(first[i].empty() ? "" : fmt::format(fmt::runtime(format), first[i], second[i]));
    return joined;
}

/// The columns of a kind of figures of one group.
Columns FigureColumns(const ForestScale& scale, const Forest& forest, Wanted kind, std::size_t group)
{
    const GroupFigures& figures = scale.request.groups[group];
    const FigurePair pair = PairOf(kind, figures, *scale.style);
    const std::vector<std::string> first = FigureTexts(scale, forest, pair, figures.*pair.first);
    const std::vector<std::string> second =
        pair.second ? FigureTexts(scale, forest, pair, figures.*pair.second) : std::vector<std::string>();
    const std::string name = scale.request.groups.size() > 1 ? scale.groupNames[group] : std::string();
    if (!scale.style->joinsFigures && pair.second)
        return {{.texts = first, .header = pair.headers.first, .groupHeader = name},
                {.texts = second, .header = pair.headers.second, .groupHeader = name}};
    const std::vector<std::string> texts = pair.second ? JoinedTexts(pair.format, first, second) : first;
    if (!scale.style->joinsFigures)
        return {{.texts = texts, .header = pair.headers.first, .groupHeader = name}};
    if (name.empty())
        return {{.texts = texts, .header = pair.headers.joined}};
    return {{.texts = texts, .header = name, .groupHeader = pair.headers.joined}};
}

void Append(Columns& columns, Columns more)
{
    for (ForestColumn& column : more)
        columns.push_back(std::move(column));
}

/// Joined figures of one kind stand beside each other, split ones of one group.
Columns ColumnsOfFigures(const ForestScale& scale, const Forest& forest, const std::vector<Wanted>& kinds)
{
    Columns columns;
    const std::size_t groups = scale.request.groups.size();
    if (scale.style->joinsFigures) {
        for (const Wanted kind : kinds)
            for (std::size_t group = 0; group < groups; ++group)
                Append(columns, FigureColumns(scale, forest, kind, group));
        return columns;
    }
    for (std::size_t group = 0; group < groups; ++group)
        for (const Wanted kind : kinds)
            Append(columns, FigureColumns(scale, forest, kind, group));
    return columns;
}

/// What a layout shows of the groups without being asked.
std::vector<Wanted> UsualFigures(const ForestScale& scale)
{
    if (!scale.style->showsFigures || scale.request.groups.empty())
        return {};
    const GroupFigures& group = scale.request.groups.front();
    if (!group.events.empty())
        return {Wanted::EVENTS};
    if (!group.means.empty() && !group.stdDevs.empty())
        return {Wanted::MEAN_AND_SD, Wanted::SIZE};
    return group.sizes.empty() ? std::vector<Wanted>() : std::vector{Wanted::SIZE};
}

ForestColumn TextColumn(const Forest& forest, const WantedColumn& wanted)
{
    ForestColumn column = {.header = wanted.header,
                           .align = wanted.isNumeric ? Align::RIGHT : Align::LEFT,
                           .longest = LONGEST_REMARK};
    column.texts = TextsOfRows(forest, [&](const ForestRow& row) -> std::string {
        if (row.kind != RowKind::STUDY || row.records.empty())
            return {};
        const std::string& text = wanted.texts[static_cast<std::size_t>(row.records.front())];
        return wanted.isNumeric ? WithMinusSign(text) : text;
    });
    return column;
}

/// Figures of the groups and columns of the file, in the order in which they are asked for. Where no figures
/// are asked for, those that the layout has come first.
Columns WantedColumns(const ForestScale& scale, const Forest& forest)
{
    if (!forest.hasColumns)
        return {};
    Columns columns;
    std::vector<Wanted> figures;
    const auto addFigures = [&] {
        Append(columns, ColumnsOfFigures(scale, forest, std::exchange(figures, {})));
    };
    const auto& wanted = scale.request.columns;
    if (std::all_of(wanted.begin(), wanted.end(),
                    [](const WantedColumn& column) { return column.kind == Wanted::TEXTS; }))
        figures = UsualFigures(scale);
    for (const WantedColumn& column : wanted) {
        if (column.kind != Wanted::TEXTS) {
            figures.push_back(column.kind);
            continue;
        }
        addFigures();
        columns.push_back(TextColumn(forest, column));
    }
    addFigures();
    return columns;
}

// Labels.

/// A note is not in its column: it stands over several.
ForestColumn LabelColumn(const ForestScale& scale, const Forest& forest)
{
    return {.texts = TextsOfRows(
                forest,
                [](const ForestRow& row) { return row.kind == RowKind::NOTE ? std::string() : row.label; }),
            .header = scale.style->labelHeader,
            .align = Align::LEFT,
            .longest = LONGEST_LABEL};
}

Columns RemarkColumns(const Forest& forest)
{
    if (forest.remarkHeader.empty())
        return {};
    return {{.texts = TextsOfRows(forest, [](const ForestRow& row) { return row.remark; }),
             .header = forest.remarkHeader,
             .align = Align::LEFT,
             .longest = LONGEST_REMARK}};
}

Columns ColumnsOf(ForestPart part, const ForestScale& scale, const Forest& forest)
{
    switch (part) {
    case ForestPart::LABELS:
        return {LabelColumn(scale, forest)};
    case ForestPart::REMARKS:
        return RemarkColumns(forest);
    case ForestPart::COLUMNS:
        return WantedColumns(scale, forest);
    case ForestPart::FRAME:
        return {{.header = WithNames(scale.style->frameHeader, scale.names),
                 .align = Align::CENTER,
                 .isFrame = true}};
    case ForestPart::EFFECTS:
        return {EffectColumn(scale, forest)};
    case ForestPart::WEIGHTS:
        return WeightColumns(scale, forest);
    }
    return {};
}

} // namespace

std::vector<ForestColumn> ForestColumns(const ForestScale& scale, const Forest& forest)
{
    Columns columns;
    for (const ForestPart part : scale.style->parts)
        Append(columns, ColumnsOf(part, scale, forest));
    return columns;
}

} // namespace host

#include "host/cli/Choices.h"
#include "host/report/EffectRows.h"
#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::string ImputedSentence(const AnalysisData& data)
{
    const bool isLargest = data.analysis.trimmedSide == MAConst::TRIM_SIDE_LARGEST;
    const bool isChosen = data.settings.GetTrimFillSide() == MAConst::TRIM_SIDE_AUTO;
    return fmt::format("Studies imputed by the {} estimator, as mirror images of the {} effects{}: {}.",
                       NameOf(TRIM_FILL_CHOICES, data.settings.GetTrimFillMethod()),
                       isLargest ? "largest" : "smallest",
                       isChosen ? " (the side that the data suggest)" : "", data.base.GetTFImputedN0());
}

/// The pooled effect of all studies, without and with the imputed ones.
EffectRows ObservedAndFilled(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const EffectRows pooled = PooledRows(data);
    const auto both = [](const std::vector<double>& observed, double filled) {
        return std::vector<double>{observed.back(), filled};
    };
    EffectRows rows = {.effects = {both(pooled.effects.values, base.GetOverallTFEffectSize()),
                                   both(pooled.effects.lower, base.GetOverallTFCILower()),
                                   both(pooled.effects.upper, base.GetOverallTFCIUpper())},
                       .stdErrors = both(pooled.stdErrors, base.GetOverallTFStdError()),
                       .statistics = both(pooled.statistics, base.GetOverallTFZVal()),
                       .significances = both(pooled.significances, base.GetOverallTFSig())};
    if (data.natural) {
        const Estimates& filled = data.natural->filled;
        rows.naturals = {both(pooled.naturals.values, filled.values.front()),
                         both(pooled.naturals.lower, filled.lower.front()),
                         both(pooled.naturals.upper, filled.upper.front())};
    }
    return rows;
}

ReportSections ImputedStudies(const AnalysisData& data)
{
    const std::vector<double> effects = data.base.GetTFImputedEffectSize();
    if (effects.empty())
        return {};
    std::vector<std::string> numbers;
    numbers.reserve(effects.size());
    for (std::size_t i = 1; i <= effects.size(); ++i)
        numbers.push_back(std::to_string(i));
    const auto toText = [&](double value) { return data.EffectText(value); };
    return {{"Imputed studies",
             {{"", numbers},
              {data.measure.AnalysisSymbol(), TextsOf(effects, toText)},
              {"SE", TextsOf(data.base.GetTFImputedStdError(), toText)}},
             {}}};
}

} // namespace

ReportSections TrimAndFillSections(const AnalysisData& data)
{
    if (KXMV::IsMissing(data.base.GetOverallTFEffectSize()))
        return {};
    ReportSection section = {"Trim-and-fill", {{"", {"Observed studies", "With imputed studies"}, true}}, {}};
    AppendEffects(section.table, ObservedAndFilled(data), HeadersOf(data.measure), data);
    section.sentences = {ImputedSentence(data),
                         fmt::format("Trimmed under the {}.", WordingOfTrimmingModel(data.settings))};
    ReportSections sections = {section};
    Append(sections, ImputedStudies(data));
    return sections;
}

} // namespace host

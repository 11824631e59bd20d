#include "host/report/EffectRows.h"
#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// What the pooled values are: of the natural scale where the analysis has another.
std::string NameOfPooled(const AnalysisData& data)
{
    return data.natural ? data.measure.name : data.measure.AnalysisName();
}

/// The last entry of each part, which is of all studies.
struct EstimateOfAll
{
    double value;
    double lower;
    double upper;
};

EstimateOfAll EstimateOfAllIn(const Estimates& estimates)
{
    const auto last = [](const std::vector<double>& values) {
        return values.empty() ? KXMV::Missing() : values.back();
    };
    return {last(estimates.values), last(estimates.lower), last(estimates.upper)};
}

std::string RangeText(const AnalysisData& data, const EstimateOfAll& overall)
{
    return fmt::format("{} to {}", data.PooledText(overall.lower), data.PooledText(overall.upper));
}

std::string PooledSentence(const AnalysisData& data)
{
    const EffectRows rows = PooledRows(data);
    const EstimateOfAll overall = EstimateOfAllIn(data.natural ? rows.naturals : rows.effects);
    const std::string studies = CountOfStudies(data.base.GetNonMissingStudyID().size());
    if (!HasValue(overall.value))
        return fmt::format("{} without a pooled {}.", studies, NameOfPooled(data));
    // A test against the value 0 of one group's outcome answers no question.
    const std::string test =
        data.measure.hasNoEffect ? ", p " + EqualsText(rows.significances.back()) : std::string();
    return fmt::format("{} of {}: {} ({} CI {}{}).", Capitalised(NameOfPooled(data)), studies,
                       data.PooledText(overall.value), data.level, RangeText(data, overall), test);
}

std::string PredictionSentence(const AnalysisData& data)
{
    const EstimateOfAll overall =
        EstimateOfAllIn(data.natural ? data.natural->predictions
                                     : Estimates{{}, data.base.GetPILower(), data.base.GetPIUpper()});
    if (!HasValue(overall.lower))
        return {};
    return fmt::format("{} prediction interval, of the true effect of a new study: {}.", data.level,
                       RangeText(data, overall));
}

std::string GroupsSentence(const AnalysisData& data)
{
    const int df = data.base.GetGDQbDf();
    if (df == 0)
        return {};
    return fmt::format("Test of differences between the {} groups: p {}.", df + 1,
                       EqualsText(data.base.GetGDQbSig()));
}

} // namespace

ReportSections ResultSection(const AnalysisData& data)
{
    ReportSection section = {"Result", {}, {}};
    for (const std::string& sentence : {PooledSentence(data), PredictionSentence(data), GroupsSentence(data)})
        if (!sentence.empty())
            section.sentences.push_back(sentence);
    return {section};
}

} // namespace host

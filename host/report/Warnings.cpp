#include "host/report/Warnings.h"

#include "host/run/StudyNotes.h"
#include "host/text/PlainText.h"
#include "host/text/StatusText.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

constexpr std::size_t MOST_NAMED_STUDIES = 20; // by one sentence

/// tau² by the scoring steps and by the global search.
struct FoundTau2
{
    std::string model; ///< empty where there is only one
    double byScoring;
    double byGlobalSearch;
};

/// Names both values of each model whose values differ as shown. When no model's do, as when the doubt is
/// about a small-study test, the general sentence is returned.
std::string SentenceOfDoubt(const std::vector<FoundTau2>& found)
{
    std::vector<std::string> places;
    for (const FoundTau2& one : found) {
        const std::string left = NumberText(one.byScoring);
        const std::string right = NumberText(one.byGlobalSearch);
        if (left != right)
            places.push_back(fmt::format("at {} in place of {}{}", left, right,
                                         one.model.empty() ? "" : " (" + one.model + ")"));
    }
    if (places.empty())
        return SentenceOf(MAStatusCode::TAU2_DOUBTFUL);
    return fmt::format("The scoring steps ended at another tau² than the one that the estimator defines: {}. "
                       "Set --tau2-search global, which finds the latter.",
                       fmt::join(places, ", "));
}

std::vector<ShownWarning> Shown(const std::vector<KXStatus>& warnings, const std::vector<FoundTau2>& found)
{
    std::vector<ShownWarning> shown;
    for (const KXStatus& warning : warnings) {
        const int code = warning.GetCode();
        const bool isDoubt = code == MAStatusCode::TAU2_DOUBTFUL;
        shown.push_back({code, isDoubt ? SentenceOfDoubt(found) : SentenceOf(code)});
    }
    return shown;
}

/// The labels of the records; of many the first.
std::string WordingOfStudies(const std::vector<std::string>& labelsOfRecords, std::vector<int> records)
{
    const std::size_t count = records.size();
    records.resize(std::min(count, MOST_NAMED_STUDIES));
    return fmt::format("{}: {}{}.", count == 1 ? "Study" : "Studies",
                       fmt::join(LabelTexts(labelsOfRecords, records), ", "),
                       count > records.size() ? fmt::format(" and {} more", count - records.size()) : "");
}

/// Names the studies of the warnings that are of single ones.
void NameStudies(std::vector<ShownWarning>& warnings, const StudyNotes& notes,
                 const std::vector<std::string>& labelsOfRecords)
{
    for (ShownWarning& warning : warnings) {
        const auto found = notes.warnedRecords.find(warning.code);
        if (found == notes.warnedRecords.end())
            continue;
        warning.sentence += ' ' + WordingOfStudies(labelsOfRecords, found->second);
    }
}

} // namespace

std::vector<ShownWarning> WarningsOf(const AnalysisData& data)
{
    const std::vector<double> byScoring = data.base.GetTau2Var();
    const std::vector<double>& byGlobalSearch = data.analysis.globalTau2;
    const std::vector<std::string> labels = data.RowLabels(byScoring.size());
    std::vector<FoundTau2> found;
    for (std::size_t i = 0; i < std::min(byScoring.size(), byGlobalSearch.size()); ++i)
        found.push_back({labels.size() > 1 ? labels[i] : "", byScoring[i], byGlobalSearch[i]});
    std::vector<ShownWarning> shown = Shown(data.base.GetWarnings(), found);
    NameStudies(shown, StudyNotesOf(data.base), data.request.studyLabels);
    return shown;
}

std::vector<ShownWarning> WarningsOf(const RegressionRequest& request, const RegressionAnalysis& analysis)
{
    std::vector<FoundTau2> found;
    if (analysis.globalTau2)
        found.push_back({"", analysis.output->GetTau(), *analysis.globalTau2});
    std::vector<ShownWarning> shown = Shown(analysis.warnings, found);
    if (request.rawEffects)
        NameStudies(shown, request.rawEffects->notes, request.studyLabels);
    return shown;
}

ReportSections WarningsSection(const std::vector<ShownWarning>& warnings)
{
    if (warnings.empty())
        return {};
    ReportSection section = {"Warnings", {}, {}};
    for (const ShownWarning& warning : warnings)
        section.sentences.push_back(fmt::format("{}: {}", warning.code, warning.sentence));
    return {section};
}

} // namespace host

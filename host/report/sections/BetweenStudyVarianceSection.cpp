#include "host/report/ReportColumns.h"
#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <vector>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// The label of the model and a colon where there are several models; else empty.
std::string Opening(const std::vector<std::string>& labels, std::size_t model)
{
    return labels.size() > 1 ? labels[model] + ": " : "";
}

/// Names the method of the intervals, and explains those that are empty.
void AppendIntervalSentences(ReportSection& section, const AnalysisData& data)
{
    const std::vector<double> upper = data.base.GetTau2CIUpper();
    const MAConst::TAU2INTERVAL method = data.settings.GetTau2Interval();
    if (!HasAnyValue(upper))
        return;
    section.sentences.push_back(fmt::format("The intervals of tau², tau, I² and H² are {} intervals.",
                                            WordingOfTau2Interval(method)));
    const std::vector<std::string> labels = data.RowLabels(upper.size());
    for (std::size_t i = 0; i < upper.size(); ++i)
        if (upper[i] == 0 && method == MAConst::TAU2_INTERVAL_Q_PROFILE)
            section.sentences.push_back(Opening(labels, i) + EMPTY_Q_PROFILE);
}

/// Without the 0 by which a single study is pooled: nothing shows how effects vary there, unless the groups
/// share one tau².
std::vector<double> EstimatedTau2(const AnalysisData& data)
{
    std::vector<double> tau2 = data.base.GetTau2Var();
    const std::vector<double> df = data.base.GetHomoTestdf();
    if (!data.settings.GetCommonTau2() || data.groupLabels.empty())
        for (std::size_t i = 0; i < std::min(tau2.size(), df.size()); ++i)
            if (!(df[i] > 0))
                tau2[i] = KXMV::Missing();
    return tau2;
}

} // namespace

ReportSections BetweenStudyVarianceSection(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const Estimates tau2 = {EstimatedTau2(data), base.GetTau2CILower(), base.GetTau2CIUpper()};
    if (!HasAnyValue(tau2.values))
        return {};
    ReportSection section = {
        "Variance between studies", {{"", data.RowLabels(tau2.values.size()), true}}, {}};
    section.table.push_back(EstimateColumn("tau²", data, tau2));
    section.table.push_back(EstimateColumn(
        "tau", data, {SquareRoots(tau2.values), SquareRoots(tau2.lower), SquareRoots(tau2.upper)}));
    if (HasAnyValue(base.GetLogLikelihood())) {
        section.table.push_back({"log-likelihood", TextsOf(base.GetLogLikelihood(), data.numbers)});
        section.table.push_back({"AIC", TextsOf(base.GetAIC(), data.numbers)});
    }
    if (data.settings.GetCommonTau2() && !data.groupLabels.empty())
        section.sentences.emplace_back("The groups share one tau², that of the model with the groups as a "
                                       "factor, and with it all of these figures.");
    AppendIntervalSentences(section, data);
    return {section};
}

} // namespace host

#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/PlainText.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <algorithm>
#include <cstddef>

namespace host {

namespace {

using Texts = std::vector<std::string>;

std::size_t CountOfValues(const std::vector<double>& values)
{
    return static_cast<std::size_t>(
        std::count_if(values.begin(), values.end(), [](double value) { return !KXMV::IsMissing(value); }));
}

} // namespace

/// Shows the line of each covariate. Its points are for the plot.
ReportSections BubblePlotsSection(const AnalysisData& data)
{
    const std::vector<std::vector<double>> lines = data.base.GetBubbleCoefs();
    if (lines.empty())
        return {};
    const std::vector<std::vector<double>> x = data.base.GetBubbleXs();
    Texts labels = data.VariableLabelsOf(data.request.bubbleCovariates);
    labels.resize(lines.size()); // an error ends the plots early
    Texts intercepts;
    Texts slopes;
    Texts counts;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const bool isFitted = !lines[i].empty();
        intercepts.push_back(isFitted ? data.numbers(lines[i].front()) : NO_VALUE);
        slopes.push_back(isFitted ? data.numbers(lines[i].back()) : NO_VALUE);
        counts.push_back(isFitted ? std::to_string(CountOfValues(x[i])) : NO_VALUE);
    }
    ReportSection section = {
        "Bubble plots",
        {{"Covariate", labels, true}, {"Studies", counts}, {"Intercept", intercepts}, {"Slope", slopes}},
        {}};
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i].empty())
            section.sentences.push_back(labels[i] + ": no line can be fitted.");
    if (data.settings.GetCenterBubblePlot())
        section.sentences.push_back("The covariates are centred: an intercept is the effect at the mean.");
    return {section};
}

} // namespace host

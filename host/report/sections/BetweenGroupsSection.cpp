#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Explains the weights of the test where they differ from what the pooled effects suggest.
std::vector<std::string> BetweenGroupsSentences(const AnalysisData& data)
{
    std::vector<std::string> sentences;
    if (PoolsTables(data.settings))
        sentences.push_back("This test weighs the studies by the inverse of their variance, unlike the "
                            "pooled effects above, whose differences it need not match.");
    return sentences;
}

/// The F test of the same groups, by their variances after Knapp and Hartung.
ReportSection MeansTestSection(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    ReportSection section = {"Test of the groups' means after Knapp and Hartung", {}, {}};
    section.table.push_back({"F", {data.numbers(base.GetGDQbF())}});
    section.table.push_back({"df", {fmt::format("{:g}", base.GetGDQbFDf1())}});
    section.table.push_back({"residual df", {data.numbers(base.GetGDQbFDf2())}});
    section.table.push_back({"p", {PValueText(base.GetGDQbFSig())}});
    section.sentences.emplace_back(data.settings.GetCommonTau2()
                                       ? "The model test of the meta-regression with the groups as a factor."
                                       : "Welch's test: each group has its own variance.");
    return section;
}

} // namespace

ReportSections BetweenGroupsSection(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    if (base.GetGDQbDf() == 0)
        return {};
    ReportSection section = {"Heterogeneity between the groups", {}, {}};
    section.table.push_back({"Q", {data.numbers(base.GetGDQbVal())}});
    section.table.push_back({"df", {std::to_string(base.GetGDQbDf())}});
    section.table.push_back({"p", {PValueText(base.GetGDQbSig())}});
    section.sentences = BetweenGroupsSentences(data);
    if (!HasValue(base.GetGDQbF()))
        return {section};
    return {section, MeansTestSection(data)};
}

} // namespace host

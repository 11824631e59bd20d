#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Explains the weights of the test where they differ from what the pooled effects suggest.
std::vector<std::string> BetweenGroupsSentences(const AnalysisData& data)
{
    const std::vector<int> sizes = data.base.GetGroupN();
    const bool hasSingle = std::find(sizes.begin(), sizes.end(), 1) != sizes.end();
    std::vector<std::string> sentences;
    if (hasSingle && IsRandom(data.settings) && !data.settings.GetCommonTau2())
        sentences.push_back("A group of one study has no between-study variance of its own: it enters this "
                            "test with its within-study variance alone, and so with a large weight.");
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
    section.table.push_back({"F", {NumberText(base.GetGDQbF())}});
    section.table.push_back({"df", {fmt::format("{:g}", base.GetGDQbFDf1())}});
    section.table.push_back({"residual df", {NumberText(base.GetGDQbFDf2())}});
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
    section.table.push_back({"Q", {NumberText(base.GetGDQbVal())}});
    section.table.push_back({"df", {std::to_string(base.GetGDQbDf())}});
    section.table.push_back({"p", {PValueText(base.GetGDQbSig())}});
    section.sentences = BetweenGroupsSentences(data);
    if (!HasValue(base.GetGDQbF()))
        return {section};
    return {section, MeansTestSection(data)};
}

} // namespace host

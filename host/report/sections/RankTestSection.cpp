#include "host/report/Sections.h"
#include "host/text/NumberText.h"
#include "host/text/Wording.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Explains the correlation by the p-value that is the better one, without a claim about its cause.
std::string SentenceOf(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const double tau = base.GetRankTestTau();
    const bool isExact = !KXMV::IsMissing(base.GetRankTestExactSig());
    const double p = isExact ? base.GetRankTestExactSig() : base.GetRankTestSig();
    if (tau == 0)
        return "Effects and variances are not correlated.";
    return fmt::format("{} effects go with larger variances ({} p {}).", tau > 0 ? "Larger" : "Smaller",
                       isExact ? "exact" : "normal", EqualsText(p));
}

} // namespace

ReportSections RankTestSection(const AnalysisData& data)
{
    if (!data.settings.GetRankTest())
        return {};
    const MABaseModel& base = data.base;
    const double tau = base.GetRankTestTau();
    if (KXMV::IsMissing(tau))
        return {{"Rank correlation test",
                 {},
                 {"It could not be computed: all effects or all variances are equal, or too large."}}};
    ReportSection section = {"Rank correlation test", {}, {SentenceOf(data)}};
    section.table.push_back({"Kendall's tau", {data.numbers(tau)}});
    section.table.push_back({"p (normal)", {PValueText(base.GetRankTestSig())}});
    section.table.push_back({"p (exact)", {PValueText(base.GetRankTestExactSig())}});
    return {section};
}

} // namespace host

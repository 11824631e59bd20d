#include "host/report/ReportColumns.h"
#include "host/report/Sections.h"
#include "host/text/NumberText.h"

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

ReportColumn I2Column(const AnalysisData& data)
{
    const int decimals = data.numbers.PercentDecimals(2);
    const Estimates percent = {InPercent(data.base.GetI2Index()), InPercent(data.base.GetI2CILower()),
                               InPercent(data.base.GetI2CIUpper())};
    if (HasAnyValue(percent.lower))
        return {data.IntervalHeader("I² %"), EstimateTexts(percent, decimals)};
    return {"I² %", TextsOf(percent.values, [decimals](double value) { return FixedText(value, decimals); })};
}

/// Whether a fixed-effect model has an I² interval [0, 0], which follows when Q is far below its degrees of
/// freedom.
bool HasI2WithoutWidth(const MABaseModel& base)
{
    const std::vector<double> upper = base.GetI2CIUpper();
    return base.GetModelType() == MAConst::MODEL_FIXED &&
           std::find(upper.begin(), upper.end(), 0.0) != upper.end();
}

} // namespace

ReportSections HeterogeneitySection(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const std::vector<double> q = base.GetHomoTestChisquareQ();
    const auto asCount = [](double value) { return FixedText(value, 0); };
    ReportSection section = {
        "Heterogeneity",
        {{"", data.RowLabels(q.size()), true},
         {"Q", TextsOf(q, data.numbers)},
         {"df", TextsOf(base.GetHomoTestdf(), asCount)},
         {"p", TextsOf(base.GetHomoTestSig(), PValueText)},
         I2Column(data),
         EstimateColumn("H²", data, {base.GetH2Index(), base.GetH2CILower(), base.GetH2CIUpper()})},
        {}};
    if (HasI2WithoutWidth(base))
        section.sentences.push_back(
            "An I² of 0 with the interval [0, 0] is no certainty: where Q is far below its degrees of "
            "freedom, the formula of the interval gives nothing else.");
    return {section};
}

} // namespace host

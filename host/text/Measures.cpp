#include "host/text/Measures.h"

#include "meta_analysis/settings/MAMeasures.h"

#include <algorithm>
#include <iterator>

using namespace MA_NAMESPACE;

namespace host {

namespace {

const char* PrefixOf(MAScale scale)
{
    switch (scale) {
    case MAScale::Natural:
        return "";
    case MAScale::Log:
        return "log ";
    case MAScale::Logit:
        return "logit ";
    case MAScale::Arcsine:
        return "arcsine ";
    case MAScale::SquareRoot:
        return "root ";
    case MAScale::FisherZ:
        return "Fisher z of ";
    case MAScale::FreemanTukeyProportion:
    case MAScale::FreemanTukeyRate:
        return "Freeman-Tukey ";
    }
    return "";
}

Measure MeasureOf(MAConst::OUTCOMEMEASURE type)
{
    const OutcomeMeasure& measure = RowOf(OUTCOME_MEASURES, type);
    const MAScale scale = ScaleOf(type);
    return {measure.title, measure.symbol, scale == MAScale::Log, scale, measure.hasNoEffect};
}

} // namespace

std::string Measure::OnAnalysisScale(const std::string& text) const
{
    return PrefixOf(scale) + text;
}

std::vector<OutcomeMeasure> OutcomeMeasuresOf(MAOutcomeData data)
{
    std::vector<OutcomeMeasure> measures;
    std::copy_if(
        OUTCOME_MEASURES.begin(), OUTCOME_MEASURES.end(), std::back_inserter(measures),
        [data](const OutcomeMeasure& measure) { return allOutcomeMeasures[measure.value].data == data; });
    return measures;
}

bool IsMeasured(const MAModelSettings& settings)
{
    return settings.GetOutcomesType() == MAConst::OUTCOME_MEASURED;
}

bool IsBinary(const MAModelSettings& settings)
{
    return settings.GetOutcomesType() == MAConst::OUTCOME_BINARY;
}

Measure MeasureOf(MAConst::BINESTYPE type)
{
    const BinaryMeasure& measure = RowOf(BINARY_MEASURES, type);
    const bool isRatio = IsOnLogScale(type);
    return {measure.title, measure.symbol, isRatio, isRatio ? MAScale::Log : MAScale::Natural};
}

Measure MeasureOf(const MAModelSettings& settings)
{
    if (IsMeasured(settings))
        return MeasureOf(settings.GetOutcomeMeasure());
    if (IsBinary(settings))
        return MeasureOf(settings.GetBinaryEstType());
    const ContinuousMeasure& measure = RowOf(CONTINUOUS_MEASURES, settings.GetContinousEstType());
    return {measure.title, measure.symbol, false, MAScale::Natural};
}

std::string MeasureName(const MAModelSettings& settings)
{
    if (IsMeasured(settings))
        return NameOf(OUTCOME_MEASURES, settings.GetOutcomeMeasure());
    return IsBinary(settings) ? NameOf(BINARY_MEASURES, settings.GetBinaryEstType())
                              : NameOf(CONTINUOUS_MEASURES, settings.GetContinousEstType());
}

void SetMeasure(MAModelSettings& settings, std::string_view name)
{
    if (IsBinary(settings))
        settings.SetBinaryEstType(ValueOf(BINARY_MEASURES, name));
    else
        settings.SetContinousEstType(ValueOf(CONTINUOUS_MEASURES, name));
}

} // namespace host

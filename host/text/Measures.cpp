#include "host/text/Measures.h"

#include "meta_analysis/settings/MAMeasures.h"

using namespace MA_NAMESPACE;

namespace host {

bool IsBinary(const MAModelSettings& settings)
{
    return settings.GetOutcomesType() == MAConst::OUTCOME_BINARY;
}

Measure MeasureOf(MAConst::BINESTYPE type)
{
    const BinaryMeasure& measure = RowOf(BINARY_MEASURES, type);
    return {measure.title, measure.symbol, IsOnLogScale(type)};
}

Measure MeasureOf(const MAModelSettings& settings)
{
    if (IsBinary(settings))
        return MeasureOf(settings.GetBinaryEstType());
    const ContinuousMeasure& measure = RowOf(CONTINUOUS_MEASURES, settings.GetContinousEstType());
    return {measure.title, measure.symbol, false};
}

std::string MeasureName(const MAModelSettings& settings)
{
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

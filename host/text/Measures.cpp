#include "host/text/Measures.h"

using namespace MA_NAMESPACE;

namespace host {

bool IsBinary(const MAModelSettings& settings)
{
    return settings.GetOutcomesType() == MAConst::OUTCOME_BINARY;
}

Measure MeasureOf(const MAModelSettings& settings)
{
    return IsBinary(settings) ? RowOf(BINARY_MEASURES, settings.GetBinaryEstType()).measure
                              : RowOf(CONTINUOUS_MEASURES, settings.GetContinousEstType()).measure;
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

#include "host/Analysis.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

Analysis NewAnalysis(const MAModelSettings& settings)
{
    if (settings.GetOutcomesType() == MAConst::OUTCOME_BINARY)
        return {MABinModel(settings), KXStatus()};
    return {MAContModel(settings), KXStatus()};
}

} // namespace

const MABaseModel& Analysis::Base() const
{
    return std::visit([](const MABaseModel& base) -> const MABaseModel& { return base; }, model);
}

Analysis RunAnalysis(Request& request)
{
    Analysis analysis = NewAnalysis(request.settings);
    analysis.status = std::visit(
        [&request](auto& model) { return model.RUN(request.records, request.variables); }, analysis.model);
    return analysis;
}

} // namespace host

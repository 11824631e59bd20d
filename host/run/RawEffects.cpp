#include "host/run/RawEffects.h"

#include "host/run/Analysis.h"
#include "host/run/AnalysisRequest.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <cstddef>
#include <new>

using namespace MA_NAMESPACE;

namespace host {

RawEffects ComputeRawEffects(const Options& options, const DataTable& table)
{
    AnalysisRequest request = MakeAnalysisRequest(options, table);
    const Analysis analysis = ComputeEffectSizes(request);
    if (analysis.status.IsError()) // records in memory can be read
        throw std::bad_alloc();
    const MABaseModel& base = analysis.Base();
    const std::vector<double> missing(table.RowCount(), KXMV::Missing());
    RawEffects raw = {missing, missing, analysis.Records(table.RowCount()), base.GetWarnings(),
                      StudyNotesOf(base)};
    const std::vector<double> effects = base.GetEffectSize();
    const std::vector<double> variances = base.GetVariance();
    for (std::size_t study = 0; study < raw.records.used.size(); ++study) {
        const auto record = static_cast<std::size_t>(raw.records.used[study]);
        raw.effects[record] = effects[study];
        raw.variances[record] = variances[study];
    }
    return raw;
}

} // namespace host

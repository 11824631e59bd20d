#include "meta_analysis/regression/design/MADPStrategy.h"

#include <cmath>

namespace MA_NAMESPACE {

IMADPStrategy::~IMADPStrategy() = default;

bool MADPSingle::check(const Record& record) const
{
    const double value = record.Get(dependentIndex_);
    return !KXMV::IsMissing(value) && !std::isnan(value) && !(nonNegative_ && value < 0.0);
}

void MADPSingle::apply(const Record& record, MADesignRow& row) const
{
    row.dependent = record.Get(dependentIndex_);
}

} // namespace MA_NAMESPACE

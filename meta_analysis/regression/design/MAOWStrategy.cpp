#include "meta_analysis/regression/design/MAOWStrategy.h"

namespace MA_NAMESPACE {

IMAOWStrategy::~IMAOWStrategy() = default;

bool MAOWNone::check(const Record& /*record*/) const
{
    return true;
}

void MAOWNone::apply(const Record& /*record*/, MADesignRow& /*row*/) const {}

bool MAOWVar::check(const Record& record) const
{
    return record.Get(variableIndex_) > 0.0; // neither missing, which is negative, nor NaN
}

void MAOWVar::apply(const Record& record, MADesignRow& row) const
{
    const double value = record.Get(variableIndex_);
    switch (type_) {
    case MAConst::OMEGA_WEIGHT:
        row.omegaWeight = value;
        return;
    case MAConst::OMEGA_VARIANCE:
        row.omegaWeight = value == 0.0 ? KXMV::Missing() : 1.0 / value;
        return;
    case MAConst::OMEGA_STD_ERROR:
        row.omegaWeight = value == 0.0 ? KXMV::Missing() : 1.0 / (value * value);
        return;
    }
    // A type outside the enumeration leaves the weight of the row, 1.
}

} // namespace MA_NAMESPACE

#include "meta_analysis/analysis/studies/MADoubtfulCounts.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

void WarnOfFractions(std::initializer_list<double> values, int recordNumber, MARecordCounts& counts)
{
    const auto hasFraction = [](double value) { return std::isfinite(value) && value != std::floor(value); };
    if (std::any_of(values.begin(), values.end(), hasFraction))
        counts.warnings.push_back({recordNumber, MAStatusCode::NON_INTEGER_COUNTS});
}

} // namespace

void WarnOfCounts(const MATable& table, int recordNumber, MARecordCounts& counts)
{
    WarnOfFractions({table.a, table.b, table.c, table.d}, recordNumber, counts);
    if (table.TreatmentSize() == 0.0 || table.ControlSize() == 0.0)
        counts.warnings.push_back({recordNumber, MAStatusCode::EMPTY_GROUP});
}

void WarnOfCounts(const MAMeans& means, int recordNumber, MARecordCounts& counts)
{
    WarnOfFractions({means.nt, means.nc}, recordNumber, counts);
}

void WarnOfCounts(const MAProportion& study, int recordNumber, MARecordCounts& counts)
{
    WarnOfFractions({study.events, study.nonEvents}, recordNumber, counts);
}

void WarnOfCounts(const MARate& study, int recordNumber, MARecordCounts& counts)
{
    WarnOfFractions({study.events}, recordNumber, counts);
}

void WarnOfCounts(const MACorrelation& study, int recordNumber, MARecordCounts& counts)
{
    WarnOfFractions({study.size}, recordNumber, counts);
}

void WarnOfCounts(const MAMean& study, int recordNumber, MARecordCounts& counts)
{
    WarnOfFractions({study.size}, recordNumber, counts);
}

void WarnOfCounts(const MAGroupRates& study, int recordNumber, MARecordCounts& counts)
{
    WarnOfFractions({study.a, study.c}, recordNumber, counts);
}

} // namespace MA_NAMESPACE

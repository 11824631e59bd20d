#pragma once

#include "meta_analysis/analysis/studies/MAReading.h"
#include "meta_analysis/effectsize/MAMeans.h"
#include "meta_analysis/effectsize/MAOneGroup.h"
#include "meta_analysis/effectsize/MARates.h"
#include "meta_analysis/effectsize/MATable.h"

#include <initializer_list>

namespace MA_NAMESPACE {

// Each overload adds the warnings of a study's counts to those of its record: NON_INTEGER_COUNTS when a
// number of events, of persons without one, or the size of a group has a fraction, and EMPTY_GROUP when
// nobody is in a group of a table. The study keeps its counts: rounded percentages, clusters divided by their
// design effect and counts that somebody corrected have fractions as well.

void WarnOfCounts(const MATable& table, int recordNumber, MARecordCounts& counts);
void WarnOfCounts(const MAMeans& means, int recordNumber, MARecordCounts& counts);
void WarnOfCounts(const MAProportion& study, int recordNumber, MARecordCounts& counts);
void WarnOfCounts(const MARate& study, int recordNumber, MARecordCounts& counts);
void WarnOfCounts(const MACorrelation& study, int recordNumber, MARecordCounts& counts);
void WarnOfCounts(const MAMean& study, int recordNumber, MARecordCounts& counts);
void WarnOfCounts(const MAGroupRates& study, int recordNumber, MARecordCounts& counts);

} // namespace MA_NAMESPACE

#include "meta_analysis/platform/common/MultiPassRecordIter.h"

RecordIterator::~RecordIterator() = default;

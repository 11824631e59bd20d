#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// The host's records, each followed by the effect size and the variance of its study: how an analysis hands
/// its studies to a meta-regression.
///
/// Every record has as many values as the variable list: the host's variables in their order (longer host
/// records are cut, shorter ones filled up with missing values), then "$effectSize$" and "$variance$".
/// Source and vectors are the caller's and must outlive the object.
class META_ANALYSIS_EXPORT MAIterator : public MultiPassRecordIter
{
public:
    /// `effectSizes` and `variances` have an entry per record, in record order; a record beyond them gets
    /// missing values. Throws std::bad_alloc when memory runs out for the variable list.
    MAIterator(MultiPassRecordIter& source, const KXVarList& variables,
               const std::vector<double>& effectSizes, const std::vector<double>& variances);
    ~MAIterator() override;

    /// The host's variables and the two that are added.
    const KXVarList& GetVarList() const { return variables_; }
    /// Positions of the two added variables in the list and in the records.
    int GetEffectSizeIndex() const { return sourceSize_; }
    int GetVarianceIndex() const { return sourceSize_ + 1; }

    bool Start() override;
    bool Reset() override;
    const Record* Next() override;
    /// The source's error, or `RECORD_NOT_RESIZED`.
    int GetError() const override;

private:
    MultiPassRecordIter* source_;
    KXVarList variables_;
    int sourceSize_;
    const std::vector<double>* effectSizes_;
    const std::vector<double>* variances_;
    std::size_t position_ = 0;
    Record record_;
    int error_ = 0;
};

} // namespace MA_NAMESPACE

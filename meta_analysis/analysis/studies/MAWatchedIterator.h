#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <new>
#include <type_traits>

namespace MA_NAMESPACE {

/// The host's records, and the first failure of reading them. A computation on the records reports its own
/// failures with the same codes; `Failure` tells the two apart.
class MAWatchedIterator : public MultiPassRecordIter
{
public:
    /// `recordCount`: number of records that every pass must have; negative for any number.
    MAWatchedIterator(MultiPassRecordIter& source, int recordCount)
        : source_(&source), recordCount_(recordCount)
    {}

    bool Start() override
    {
        read_ = 0;
        const bool isStarted = Watch([this] { return source_->Start(); });
        if (!isStarted)
            Remember(MAStatusCode::ITERATOR_NOT_STARTED);
        return isStarted;
    }

    bool Reset() override
    {
        read_ = 0;
        const bool isRewound = Watch([this] { return source_->Reset(); });
        if (!isRewound)
            Remember(MAStatusCode::ITERATOR_FAILED);
        return isRewound;
    }

    const Record* Next() override
    {
        const Record* record = Watch([this] { return source_->Next(); });
        if (record != nullptr)
            ++read_;
        else if (recordCount_ >= 0 && read_ != recordCount_)
            Remember(MAStatusCode::ITERATOR_FAILED);
        return record;
    }

    int GetError() const override
    {
        const int error = Watch([this] { return source_->GetError(); });
        if (error != 0)
            Remember(MAStatusCode::ITERATOR_FAILED);
        return error;
    }

    /// The first failure: ITERATOR_NOT_STARTED the records could not be started; ITERATOR_FAILED they could
    /// not be rewound, gave an error, threw, or had another number. OK without one.
    const KXStatus& Failure() const { return failure_; }

private:
    void Remember(int code) const
    {
        if (!failure_.IsError())
            failure_ = KXStatus(code);
    }

    /// Passes exceptions on. Memory that runs out is no failure of the records.
    template <class Operation>
    std::invoke_result_t<Operation> Watch(Operation operation) const
    {
        try {
            return operation();
        } catch (const std::bad_alloc&) {
            throw;
        } catch (...) {
            Remember(MAStatusCode::ITERATOR_FAILED);
            throw;
        }
    }

    MultiPassRecordIter* source_;
    int recordCount_;
    int read_ = 0;
    mutable KXStatus failure_; ///< set by `GetError` too, which is const in the interface
};

} // namespace MA_NAMESPACE

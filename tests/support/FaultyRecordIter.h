#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <new>
#include <stdexcept>

/// A host's records that go wrong in one pass over them (the first is 1): before it begins, at its start, or
/// after its first record.
class FaultyRecordIter : public VectorRecordIter
{
public:
    enum Fault
    {
        REPORTS_ERROR,
        THROWS_IN_GET_ERROR,
        REFUSES_START,
        THROWS_IN_START,
        BREAKS_OFF, ///< and reports an error
        THROWS_IN_NEXT,
        THROWS_A_NUMBER,
        RUNS_OUT_OF_MEMORY,
        NO_FAULT
    };

    FaultyRecordIter(const std::vector<std::vector<double>>& rows, Fault fault, int pass)
        : VectorRecordIter(rows), fault_(fault), pass_(pass)
    {}

    /// Of an analysis that reads the pass.
    static KXStatus StatusAfter(int fault)
    {
        using namespace MA_NAMESPACE;
        switch (fault) {
        case NO_FAULT:
            return KXStatus();
        case REFUSES_START:
            return KXStatus(MAStatusCode::ITERATOR_NOT_STARTED);
        case RUNS_OUT_OF_MEMORY:
            return KXStatus(MAStatusCode::OUT_OF_MEMORY);
        default:
            return KXStatus(MAStatusCode::ITERATOR_FAILED);
        }
    }

    bool Start() override
    {
        ++started_;
        read_ = 0;
        if (Happens(THROWS_IN_START))
            throw std::runtime_error("start");
        return !Happens(REFUSES_START) && VectorRecordIter::Start();
    }

    const Record* Next() override
    {
        if (++read_ == 1)
            return VectorRecordIter::Next();
        if (Happens(THROWS_IN_NEXT))
            throw std::runtime_error("next");
        if (Happens(THROWS_A_NUMBER))
            throw 1;
        if (Happens(RUNS_OUT_OF_MEMORY))
            throw std::bad_alloc();
        return Happens(BREAKS_OFF) ? nullptr : VectorRecordIter::Next();
    }

    int GetError() const override
    {
        if (fault_ == THROWS_IN_GET_ERROR && started_ >= pass_ - 1)
            throw std::runtime_error("error");
        const bool isReported = fault_ == REPORTS_ERROR && started_ >= pass_ - 1;
        return isReported || (Happens(BREAKS_OFF) && read_ > 1) ? 5 : 0;
    }

private:
    bool Happens(Fault fault) const { return fault_ == fault && started_ == pass_; }

    Fault fault_;
    int pass_;
    int started_ = 0;
    int read_ = 0;
};

#pragma once

#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/regression/design/MADesignRow.h"

namespace MA_NAMESPACE {

/// Checks a record's dependent value and stores it in a design row.
class IMADPStrategy
{
public:
    virtual ~IMADPStrategy();
    virtual bool check(const Record& record) const = 0;
    virtual void apply(const Record& record, MADesignRow& row) const = 0;
};

/// The dependent is one variable; a missing value is refused, and on request a negative one.
class MADPSingle final : public IMADPStrategy
{
public:
    explicit MADPSingle(int dependentIndex, bool nonNegative = false)
        : dependentIndex_(dependentIndex), nonNegative_(nonNegative)
    {}
    bool check(const Record& record) const override;
    void apply(const Record& record, MADesignRow& row) const override;

private:
    int dependentIndex_;
    bool nonNegative_;
};

} // namespace MA_NAMESPACE

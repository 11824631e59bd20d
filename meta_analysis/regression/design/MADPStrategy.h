#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/regression/design/MADesignRow.h"

namespace MA_NAMESPACE {

/// How a record's dependent value is checked and taken into a design row.
class META_ANALYSIS_EXPORT IMADPStrategy
{
public:
    virtual ~IMADPStrategy();
    virtual bool check(const Record& record) const = 0;
    virtual void apply(const Record& record, MADesignRow& row) const = 0;
};

/// The dependent is one variable, which must be there and, if so asked, not negative.
class META_ANALYSIS_EXPORT MADPSingle final : public IMADPStrategy
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

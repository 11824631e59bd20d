#pragma once

#include "meta_analysis/platform/common/Record.h"
#include "meta_analysis/regression/design/MADesignRow.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// Checks a record's omega weight, the inverse of the study's variance, and stores it in a design row.
class IMAOWStrategy
{
public:
    virtual ~IMAOWStrategy();
    virtual bool check(const Record& record) const = 0;
    virtual void apply(const Record& record, MADesignRow& row) const = 0;
};

/// No omega weight: every row has weight 1.
class MAOWNone : public IMAOWStrategy
{
public:
    bool check(const Record& record) const override;
    void apply(const Record& record, MADesignRow& row) const override;
};

/// A variable holds the weight itself, the variance or the standard error; it must be positive.
class MAOWVar : public IMAOWStrategy
{
public:
    MAOWVar(int variableIndex, MAConst::OMGWeightType type) : variableIndex_(variableIndex), type_(type) {}
    bool check(const Record& record) const override;
    /// A variance or standard error of 0 gives a missing weight.
    void apply(const Record& record, MADesignRow& row) const override;

private:
    int variableIndex_;
    MAConst::OMGWeightType type_;
};

} // namespace MA_NAMESPACE

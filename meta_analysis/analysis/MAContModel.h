#pragma once

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/platform/common/KXVarList.h"

#include <vector>

namespace MA_NAMESPACE {

/// The analysis of studies that report a size, a mean and a standard deviation (or variance) for a
/// treatment and a control group, and of ready-made effect sizes of any kind.
///
/// Calling order: fill an `MAModelSettings`, construct, `RUN`, read the getters and `GetWarnings`.
class META_ANALYSIS_EXPORT MAContModel : public MABaseModel
{
public:
    explicit MAContModel(const MAModelSettings& settings);
    MAContModel(const MAContModel&);
    MAContModel& operator=(const MAContModel&);
    ~MAContModel() override;

    /// The whole analysis of the records, afresh; returns the final status. Errors end it, and leave what was
    /// computed before: INPUT_NOT_GIVEN a group's size is not given, or neither its mean nor its median with
    /// what goes with it, ITERATOR_NOT_STARTED, ITERATOR_FAILED the iterator fails or the passes differ,
    /// NO_ANALYSED_STUDY trim-and-fill without studies, OUT_OF_MEMORY, and those of the pooling classes.
    KXStatus RUN(MultiPassRecordIter& records, const KXVarList& variables);

    /// Effect sizes of the group means. Errors as `RUN`.
    KXStatus ESCalc(MultiPassRecordIter& records) override;

    /// Reads the groups and counts the records that are missing or invalid.
    KXStatus ExtractRawInputData(MultiPassRecordIter& records);

    /// Regression of the effect sizes on their standard errors; its results are in the `GetRegBasedTest...`
    /// getters. The error of a failing test becomes the status: TOO_FEW_FOR_TEST fewer than 3 studies, and
    /// those of `MARegBaseTest`.
    KXStatus RegBasedContTest(MultiPassRecordIter& records, const KXVarList& variables);

    MAConst::CONTESTYPE GetESType() const { return settings_->GetContinousEstType(); }
};

} // namespace MA_NAMESPACE

// Reading of the studies: ready-made effect sizes, and the variables that give each study its group, its
// place in a cumulative analysis and its contrast coefficients.

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAPoolable.h"
#include "meta_analysis/effectsize/MARatio.h"
#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>

namespace MA_NAMESPACE {

KXStatus MABaseModel::ExtractModelInputData(MultiPassRecordIter& records)
{
    return ForgetIfBroken(Guarded(status_, [&] { return status_ = ExtractModelInput(records); }));
}

KXStatus MABaseModel::ExtractModelInput(MultiPassRecordIter& records)
{
    const KXStatus started = StartPass(records);
    if (started.IsError())
        return started;
    alpha_ = 1.0 - settings_->GetCILevel();
    ForgetStudyRoles();
    const std::vector<int> contrastIndices = settings_->GetContrastCoefIndex();
    KXStatus status;
    if (settings_->GetInputESType() == MAConst::INPUT_READY_MADE) {
        ForgetStudies();
        effectType_ = settings_->GetBinaryEstType();
        studies_.contrastCoefficients.resize(contrastIndices.size());
        const double quantile = TwoSidedNormalQuantile(alpha_);
        status = ReadPass(records, recordCount_, [&](const Record& record, int recordNumber) {
            if (ReadReadyMadeStudy(record, recordNumber, quantile))
                ReadStudyRoles(record, contrastIndices);
        });
    } else {
        studies_.contrastCoefficients.resize(contrastIndices.size());
        status = ReviewComputedStudies(records, contrastIndices);
    }
    if (status.IsError())
        return status;
    if (settings_->GetInputContrastCoef().size() != static_cast<std::size_t>(recordCount_))
        AddWarning(MAStatusCode::CONTRAST_COUNT_MISMATCH);
    return status;
}

/// Goes once more through the records and drops the studies whose computed effect size cannot be pooled.
/// Record numbers of records and of studies both ascend, so one index moves along. A pass of another length
/// than the one from which the effect sizes were computed is a failure of the iterator.
KXStatus MABaseModel::ReviewComputedStudies(MultiPassRecordIter& records,
                                            const std::vector<int>& contrastIndices)
{
    const std::size_t computedCount = studies_.recordNumber.size();
    studies_.groupValue.reserve(computedCount);
    std::vector<bool> kept(computedCount, false);
    std::size_t keptCount = 0;
    std::size_t next = 0;
    const int computedFrom = recordCount_;
    const KXStatus status = ReadPass(records, recordCount_, [&](const Record& record, int recordNumber) {
        if (next == computedCount || studies_.recordNumber[next] != recordNumber)
            return;
        kept[next] = CanPool(next);
        if (kept[next]) {
            ++keptCount;
            ReadStudyRoles(record, contrastIndices);
        } else {
            ++invalidCount_;
        }
        ++next;
    });
    if (!status.IsError() && computedFrom != unread && recordCount_ != computedFrom)
        return KXStatus(MAStatusCode::ITERATOR_FAILED);
    if (!status.IsError() && keptCount != computedCount) {
        studies_.Keep(kept);
        AddWarning(MAStatusCode::STUDIES_REMOVED);
    }
    return status;
}

/// A measure outside the enumeration has no effect sizes at all.
bool MABaseModel::CanPool(std::size_t study) const
{
    return study < studies_.Count() &&
           IsPoolable(studies_.effects.effectSize[study], studies_.effects.variance[study]);
}

void MABaseModel::ForgetStudies()
{
    studies_ = MAStudies();
    groups_.clear();
    recordCount_ = unread;
    missingCount_ = 0;
    invalidCount_ = 0;
    droppedCount_ = 0;
}

void MABaseModel::RequireEffectCopies() const
{
    const MAEffectColumns& effects = studies_.effects;
    RequireLength(effects.effectSize.size(), effects.variance, effects.stdError, effects.ciLower,
                  effects.ciUpper, studies_.zValue, studies_.significance);
}

KXStatus MABaseModel::ForgetIfBroken(const KXStatus& result)
{
    if (result.GetCode() == MAStatusCode::OUT_OF_MEMORY)
        ForgetStudies();
    else if (result.IsError() && studies_.Count() != studies_.recordNumber.size())
        studies_ = MAStudies();
    return result;
}

void MABaseModel::ForgetStudyRoles()
{
    studies_.groupValue.clear();
    studies_.cumulativeValue.clear();
    studies_.contrastCoefficients.clear();
    groups_.clear();
}

/// Reads and classifies one ready-made effect size; true when it is a valid study.
bool MABaseModel::ReadReadyMadeStudy(const Record& record, int recordNumber, double quantile)
{
    const bool hasVariance = settings_->GetInputVaranceVarIndex() != -1;
    const bool hasStdError = settings_->GetInputStdErrorIndex() != -1;
    const double effectSize = ReadStudyValue(record, settings_->GetInputEffectsizeIndex());
    const double dispersion = ReadStudyValue(record, hasVariance ? settings_->GetInputVaranceVarIndex()
                                                                 : settings_->GetInputStdErrorIndex());
    const bool dispersionGiven = hasVariance || hasStdError;
    // Missing is tested on what was read, before anything is derived from it.
    if (KXMV::IsMissing(effectSize) || (dispersionGiven && KXMV::IsMissing(dispersion))) {
        ++missingCount_;
        return false;
    }
    const bool isImpossibleDifference = std::abs(effectSize) > 1.0 &&
                                        settings_->GetBinaryEstType() == MAConst::BIN_RISK_DIFFERENCE &&
                                        settings_->GetOutcomesType() == MAConst::OUTCOME_BINARY;
    const double variance = hasVariance ? dispersion : dispersion * dispersion;
    const double stdError = hasVariance ? std::sqrt(dispersion) : dispersion;
    if (!dispersionGiven || !(stdError > 0.0) || !IsPoolable(effectSize, variance) ||
        isImpossibleDifference) {
        ++invalidCount_;
        return false;
    }
    studies_.recordNumber.push_back(recordNumber);
    AppendReadyMadeStudy(effectSize, variance, stdError, quantile);
    return true;
}

/// On the ratio scale the variance and the standard error are exponentiated as they stand: they serve
/// display, not computation.
void MABaseModel::AppendReadyMadeStudy(double effectSize, double variance, double stdError, double quantile)
{
    const double z = effectSize / stdError;
    const double lower = effectSize - quantile * stdError;
    const double upper = effectSize + quantile * stdError;

    studies_.effects.effectSize.push_back(effectSize);
    studies_.effects.variance.push_back(variance);
    studies_.effects.stdError.push_back(stdError);
    studies_.effects.ciLower.push_back(lower);
    studies_.effects.ciUpper.push_back(upper);
    studies_.zValue.push_back(z);
    studies_.significance.push_back(TwoSidedNormalPValue(z).value);

    studies_.ratioEffects.effectSize.push_back(RatioOf(effectSize));
    studies_.ratioEffects.variance.push_back(RatioOf(variance));
    studies_.ratioEffects.stdError.push_back(RatioOf(stdError));
    studies_.ratioEffects.ciLower.push_back(RatioOf(lower));
    studies_.ratioEffects.ciUpper.push_back(RatioOf(upper));
}

/// Contrast coefficients are taken as they are: a NaN among them is a non-zero coefficient.
void MABaseModel::ReadStudyRoles(const Record& record, const std::vector<int>& contrastIndices)
{
    for (std::size_t i = 0; i < contrastIndices.size(); ++i)
        studies_.contrastCoefficients[i].push_back(record.Get(contrastIndices[i]));
    const int groupIndex = settings_->GetSubGroupIndex();
    studies_.groupValue.push_back(groupIndex == -1 ? -1.0 : ReadStudyValue(record, groupIndex));
    const int cumulativeIndex = settings_->GetCummulativeIndex();
    if (cumulativeIndex != -1)
        studies_.cumulativeValue.push_back(ReadStudyValue(record, cumulativeIndex));
}

} // namespace MA_NAMESPACE

#include "meta_analysis/bulk/MABulkRegression.h"

#include "meta_analysis/bulk/MABulkRegressionColumns.h"
#include "meta_analysis/bulk/MABulkWork.h"
#include "meta_analysis/bulk/MAGatheredSet.h"
#include "meta_analysis/bulk/MASetRegression.h"
#include "meta_analysis/regression/design/MADesignRow.h"
#include "meta_analysis/settings/MAEstimators.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

namespace MA_NAMESPACE {

namespace {

/// The caller's design in the order of a regression, the intercept first.
class SharedDesign
{
public:
    SharedDesign(const MABulkDesign& design, std::size_t studyCount);

    bool HasIntercept() const { return hasIntercept_; }
    const std::vector<std::size_t>& Positions() const { return positions_; }
    const double* Row(std::size_t study) const { return cells_.data() + study * positions_.size(); }
    /// Whether a fit can sum the weighted squares of the row; false for one with a NaN.
    bool HasFiniteSquares(std::size_t study, double weight) const
    {
        return std::isfinite(largest_[study] * largest_[study] * weight);
    }

private:
    std::vector<std::size_t> positions_;
    std::vector<double> cells_;
    std::vector<double> largest_; ///< magnitude of the row; NaN for one that has a NaN
    bool hasIntercept_ = false;
};

/// Infinite for a row with an infinite value.
double LargestMagnitude(const double* values, std::size_t count)
{
    double largest = 0.0;
    for (std::size_t j = 0; j < count; ++j) {
        if (std::isnan(values[j]))
            return values[j];
        largest = std::max(largest, std::abs(values[j]));
    }
    return largest;
}

bool IsIntercept(const MABulkDesign& design, std::size_t studyCount, std::size_t column)
{
    for (std::size_t study = 0; study < studyCount; ++study) {
        if (design.At(study, column) != 1.0)
            return false;
    }
    return studyCount > 0;
}

SharedDesign::SharedDesign(const MABulkDesign& design, std::size_t studyCount)
    : positions_(design.columnCount), cells_(design.columnCount * studyCount), largest_(studyCount)
{
    const std::size_t p = design.columnCount;
    std::iota(positions_.begin(), positions_.end(), std::size_t{0});
    const auto intercept = std::find_if(positions_.begin(), positions_.end(), [&](std::size_t column) {
        return IsIntercept(design, studyCount, column);
    });
    hasIntercept_ = intercept != positions_.end();
    if (hasIntercept_)
        std::rotate(positions_.begin(), intercept, intercept + 1);
    for (std::size_t study = 0; study < studyCount; ++study) {
        double* const row = cells_.data() + study * p;
        std::transform(positions_.begin(), positions_.end(), row,
                       [&](std::size_t column) { return design.At(study, column); });
        largest_[study] = LargestMagnitude(row, p);
    }
}

/// One call: what all of its threads share.
struct BulkCall
{
    const MABlockSets& sets;
    const MABulkRegression& model;
    const MABulkRegressionResults& results;
    const SharedDesign& design;
    const MARegSettings& settings;
    MAWantedRegression wanted;
};

/// What one thread regresses with.
class SetWorker
{
public:
    explicit SetWorker(const BulkCall& call)
        : call_(call),
          regression_(call.settings, call.model, call.wanted, call.design.Positions().size(),
                      call.sets.studyCount)
    {
        rows_.columnCount = call.design.Positions().size();
        rows_.cells.reserve(call.sets.studyCount * (rows_.columnCount + 1));
        rows_.weights.reserve(call.sets.studyCount);
        rows_.variances.reserve(call.sets.studyCount);
    }

    void operator()(std::size_t set)
    {
        Gather(set);
        const MARegressionPlace place{call_.results, set, call_.sets.setCount, call_.design.Positions()};
        if (rows_.Count() == 0) {
            PutCounts(place, 0, leftOut_);
            PutMissing(place, MAStatusCode::NO_USABLE_STUDY);
            return;
        }
        const MASetRegression::Model& model = regression_.Regress(rows_);
        PutCounts(place, rows_.Count(), leftOut_);
        if (model.isFitted)
            PutModel(place, regression_, model);
        else
            PutMissing(place, model.status);
    }

private:
    void Gather(std::size_t set);
    bool AddRow(std::size_t study, double effectSize, double variance);

    const BulkCall& call_;
    MASetRegression regression_;
    MADesignRows rows_;
    std::size_t leftOut_ = 0;
};

void SetWorker::Gather(std::size_t set)
{
    rows_.cells.clear();
    rows_.weights.clear();
    rows_.variances.clear();
    leftOut_ = 0;
    for (std::size_t study = 0; study < call_.sets.studyCount; ++study) {
        const double effectSize = call_.sets.effectSizes.At(study, set);
        const double variance = call_.sets.variances.At(study, set);
        if (std::isnan(effectSize) || std::isnan(variance))
            continue;
        leftOut_ += AddRow(study, effectSize, variance) ? 0 : 1;
    }
}

/// By the rules of `MADesignMatrix`. False, and nothing added, for a study that a fit cannot use.
bool SetWorker::AddRow(std::size_t study, double effectSize, double variance)
{
    MADesignRow values;
    values.dependent = effectSize;
    values.omegaWeight = 1.0 / variance;
    if (!(variance > 0.0) || !values.HasStudy() || !call_.design.HasFiniteSquares(study, values.omegaWeight))
        return false;
    const double* const row = call_.design.Row(study);
    rows_.cells.insert(rows_.cells.end(), row, row + rows_.columnCount);
    rows_.cells.push_back(effectSize);
    rows_.weights.push_back(values.omegaWeight);
    rows_.variances.push_back(1.0 / values.omegaWeight);
    return true;
}

bool IsBetween(int value, int first, int last)
{
    return value >= first && value <= last;
}

bool IsKnown(const MABulkRegression& model)
{
    using namespace MAConst;
    const bool hasTolerances = model.redundancyTolerance >= 0.0 && model.redundancyTolerance < 1.0 &&
                               model.tau2.limits.tolerance > 0.0 && model.tau2.limits.maxStepHalving > 0;
    return hasTolerances && IsEstimator(model.tau2.estimator) && std::isfinite(model.tau2.limits.tolerance) &&
           IsBetween(model.knappHartung, KNAPP_HARTUNG_NONE, KNAPP_HARTUNG_IF_HETEROGENEOUS) &&
           IsBetween(model.tau2.search, TAU2_SEARCH_SCORING, TAU2_SEARCH_GLOBAL) &&
           IsBetween(model.tau2Interval, TAU2_INTERVAL_NONE, TAU2_INTERVAL_PROFILE_LIKELIHOOD) &&
           IsBetween(model.tests, TEST_STUDENT_T, TEST_STANDARD_NORMAL);
}

KXStatus Check(const MABlockSets& sets, const MABulkDesign& design, const MABulkRegression& model)
{
    const bool needsDesign = sets.setCount > 0 && sets.studyCount > 0 && design.columnCount > 0;
    if (!AreUsable(sets) || (needsDesign && design.values == nullptr))
        return KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
    if (!(model.alpha > 0.0 && model.alpha < 1.0))
        return KXStatus(MAStatusCode::BULK_ALPHA_OUTSIDE);
    return IsKnown(model) ? KXStatus() : KXStatus(MAStatusCode::BULK_CHOICE_UNKNOWN);
}

} // namespace

KXStatus RegressSets(const MABlockSets& sets, const MABulkDesign& design, const MABulkRegression& model,
                     const MABulkRegressionResults& results, int threadCount) noexcept
{
    KXStatus status;
    return Guarded(status, [&]() -> KXStatus {
        const KXStatus checked = Check(sets, design, model);
        if (checked.IsError() || sets.setCount == 0)
            return checked;
        const SharedDesign shared(design, sets.studyCount);
        const MARegSettings settings = SettingsOf(model, shared.HasIntercept());
        const BulkCall call{sets, model, results, shared, settings, WantedBy(results)};
        return WorkOnSets<SetWorker>(call, sets.setCount, EndOfChunk(sets, 0), threadCount);
    });
}

} // namespace MA_NAMESPACE

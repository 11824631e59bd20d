#include "meta_analysis/bulk/MABulkRegression.h"

#include "meta_analysis/bulk/MABulkChecks.h"
#include "meta_analysis/bulk/MABulkRegressionColumns.h"
#include "meta_analysis/bulk/MABulkWork.h"
#include "meta_analysis/bulk/MAGatheredSet.h"
#include "meta_analysis/bulk/MALaneEvaluations.h"
#include "meta_analysis/bulk/MASetRegression.h"
#include "meta_analysis/bulk/lanes/MALaneCode.h"
#include "meta_analysis/regression/design/MADesignRow.h"
#include "meta_analysis/settings/MAStatusCode.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>
#include <cmath>
#include <deque>
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

/// The rows of one set.
struct GatheredRows
{
    MADesignRows rows;
    std::size_t leftOut = 0;
};

/// What one thread regresses with: as many sets at a time as are evaluated side by side.
class SetWorker
{
public:
    explicit SetWorker(const BulkCall& call);

    void operator()(std::size_t first, std::size_t end)
    {
        for (std::size_t set = first; set < end; set += gathered_.size())
            RegressGroup(set, std::min(gathered_.size(), end - set));
    }

private:
    void RegressGroup(std::size_t first, std::size_t count);
    void Finish(std::size_t set, const GatheredRows& gathered, MASetRegression& regression);
    void Gather(std::size_t set, GatheredRows& gathered) const;
    bool AddRow(std::size_t study, double effectSize, double variance, MADesignRows& rows) const;

    const BulkCall& call_;
    MALaneEvaluations evaluations_;
    std::deque<MASetRegression> memory_; ///< they cannot be moved
    std::vector<MASetRegression*> regressions_;
    std::vector<MASetRegression*> begun_;
    std::vector<GatheredRows> gathered_;
};

SetWorker::SetWorker(const BulkCall& call)
    : call_(call), evaluations_(WidestLaneCode().fits), gathered_(WidestLaneCode().fits.laneCount)
{
    const std::size_t p = call.design.Positions().size();
    for (GatheredRows& gathered : gathered_) {
        gathered.rows.columnCount = p;
        gathered.rows.cells.reserve(call.sets.studyCount * (p + 1));
        gathered.rows.weights.reserve(call.sets.studyCount);
        gathered.rows.variances.reserve(call.sets.studyCount);
        regressions_.push_back(
            &memory_.emplace_back(call.settings, call.model, call.wanted, p, call.sets.studyCount));
    }
    begun_.reserve(regressions_.size());
}

void SetWorker::RegressGroup(std::size_t first, std::size_t count)
{
    begun_.clear();
    for (std::size_t i = 0; i < count; ++i) {
        Gather(first + i, gathered_[i]);
        if (gathered_[i].rows.Count() == 0)
            continue;
        regressions_[i]->Begin(gathered_[i].rows);
        if (regressions_[i]->HasBegun())
            begun_.push_back(regressions_[i]);
    }
    if (!begun_.empty())
        evaluations_.Evaluate(begun_);
    for (std::size_t i = 0; i < count; ++i)
        Finish(first + i, gathered_[i], *regressions_[i]);
}

void SetWorker::Finish(std::size_t set, const GatheredRows& gathered, MASetRegression& regression)
{
    const MARegressionPlace place{call_.results, set, call_.sets.setCount, call_.design.Positions()};
    PutCounts(place, gathered.rows.Count(), gathered.leftOut);
    if (gathered.rows.Count() == 0) {
        PutMissing(place, MAStatusCode::NO_USABLE_STUDY);
        return;
    }
    const MASetRegression::Model& model = regression.Finish();
    if (model.isFitted)
        PutModel(place, regression, model);
    else
        PutMissing(place, model.status);
}

void SetWorker::Gather(std::size_t set, GatheredRows& gathered) const
{
    MADesignRows& rows = gathered.rows;
    rows.cells.clear();
    rows.weights.clear();
    rows.variances.clear();
    gathered.leftOut = 0;
    for (std::size_t study = 0; study < call_.sets.studyCount; ++study) {
        const double effectSize = call_.sets.effectSizes.At(study, set);
        const double variance = call_.sets.variances.At(study, set);
        if (std::isnan(effectSize) || std::isnan(variance))
            continue;
        gathered.leftOut += AddRow(study, effectSize, variance, rows) ? 0 : 1;
    }
}

/// By the rules of `MADesignMatrix`. False, and nothing added, for a study that a fit cannot use.
bool SetWorker::AddRow(std::size_t study, double effectSize, double variance, MADesignRows& rows) const
{
    MADesignRow values;
    values.dependent = effectSize;
    values.omegaWeight = 1.0 / variance;
    if (!(variance > 0.0) || !values.HasStudy() || !call_.design.HasFiniteSquares(study, values.omegaWeight))
        return false;
    const double* const row = call_.design.Row(study);
    rows.cells.insert(rows.cells.end(), row, row + rows.columnCount);
    rows.cells.push_back(effectSize);
    rows.weights.push_back(values.omegaWeight);
    rows.variances.push_back(1.0 / values.omegaWeight);
    return true;
}

/// Of tolerances and limits `MARegSettings` takes no others.
bool AreKnown(const MABulkRegression& model)
{
    const MAIterationLimits& limits = model.tau2.limits;
    return IsKnown(model.tau2.estimator) && IsKnown(model.tau2.search) && IsKnown(model.knappHartung) &&
           IsKnown(model.tau2Interval) &&
           IsBetween(model.tests, MAConst::TEST_STUDENT_T, MAConst::TEST_STANDARD_NORMAL) &&
           std::isfinite(limits.tolerance) && limits.tolerance > 0.0 && limits.maxStepHalving > 0 &&
           model.redundancyTolerance >= 0.0 && model.redundancyTolerance < 1.0;
}

KXStatus Check(const MABlockSets& sets, const MABulkDesign& design, const MABulkRegression& model)
{
    const bool needsDesign = sets.setCount > 0 && sets.studyCount > 0 && design.columnCount > 0;
    if (!AreUsable(sets) || (needsDesign && design.values == nullptr))
        return KXStatus(MAStatusCode::INPUT_NOT_GIVEN);
    return CheckChoices(model.alpha, AreKnown(model));
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
        return WorkOnSets<SetWorker>(call, threadCount);
    });
}

} // namespace MA_NAMESPACE

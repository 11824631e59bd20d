#pragma once

#include "meta_analysis/analysis/steps/MABubbleRows.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/settings/MAConst.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <vector>

namespace MA_NAMESPACE {

/// Computes bubble plots from records that hold each study's effect size and variance.
///
/// Estimator, adjustment, dispersion, test distribution, intercept use, confidence level and limits come from
/// the settings; their own effects and factors play no part. Settings and variable list are the caller's and
/// must outlive the object.
class META_ANALYSIS_EXPORT MABubblePlot
{
public:
    MABubblePlot(const MARegSettings& settings, const KXVarList& variables);
    MABubblePlot(const MABubblePlot&);
    MABubblePlot& operator=(const MABubblePlot&);
    ~MABubblePlot();

    void SetEffectSizeIndex(int index) { effectSizeIndex_ = index; }
    void SetVarianceIndex(int index) { varianceIndex_ = index; }
    /// Fixed effects weight a study by 1 / variance, random effects by 1 / (variance + tau²).
    void SetModelType(MAConst::MODELTYPE type) { model_ = type; }
    /// Subtracts the covariate's unweighted mean over the usable studies: moves x, the curve's x and the
    /// intercept, and nothing else. Without an intercept it would change the line, and is not done.
    void SetCenter(bool center) { isCentered_ = center; }
    /// Points of the confidence band; one point is the smallest x, less than one none.
    void SetCurveNPoints(int count) { curvePointCount_ = count; }

    /// The plot of one covariate, by its index in the variable list. Errors: INPUT_NOT_GIVEN no such
    /// variable, or invalid settings, TAU2_FAILED unknown estimator under random effects,
    /// ITERATOR_NOT_STARTED, ITERATOR_FAILED the iterator fails or the host cancels, OUT_OF_MEMORY. A
    /// regression that cannot be fitted (no usable study, a constant covariate) is no error: the rows say so.
    KXStatus Compute(MultiPassRecordIter& records, int covariate);

    const MABubbleRows& GetRows() const { return rows_; }
    /// Warnings of the regression of the last plot.
    const std::vector<KXStatus>& GetWarnings() const { return warnings_; }

private:
    struct Study;

    KXStatus ComputeRows(MultiPassRecordIter& records, int covariate);
    KXStatus CheckSettings() const;
    static void Center(std::vector<Study>& studies);
    MARegSettings SimpleRegression() const;
    template <class Engine>
    KXStatus Fit(const std::vector<Study>& studies);
    template <class Engine>
    void DescribeStudies(const Engine& engine, const std::vector<Study>& studies, double tau2);
    template <class Engine>
    void DrawCurve(const Engine& engine);

    const MARegSettings* settings_;
    const KXVarList* variables_;
    int effectSizeIndex_ = -1;
    int varianceIndex_ = -1;
    MAConst::MODELTYPE model_ = MAConst::MODEL_RANDOM;
    bool isCentered_ = false;
    int curvePointCount_ = 100;
    MABubbleRows rows_;
    std::vector<KXStatus> warnings_;
};

} // namespace MA_NAMESPACE

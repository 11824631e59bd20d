#pragma once

#include "meta_analysis/inference/MAKnappHartung.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/MARegResults.h"
#include "meta_analysis/regression/MARegTests.h"
#include "meta_analysis/settings/MAWarnings.h"

#include <memory>
#include <vector>

namespace MA_NAMESPACE {

/// Records a status on the way of a build: a warning joins the list unless it is there already; an error
/// becomes the status. True when the build can go on.
inline bool RecordStatus(const KXStatus& passed, KXStatus& status, std::vector<KXStatus>& warnings)
{
    AppendNewWarning(passed, warnings);
    if (passed.IsError())
        status = passed;
    return !passed.IsError();
}

/// How much of a model a build yields.
enum class MARegUse
{
    Model,          ///< all results
    SmallStudyTest, ///< the coefficients and their tests
    BubblePlot,     ///< the coefficients
    Statistics      ///< the fit and its scale, from which test statistics follow
};

/// What is to be fitted. The settings are the design's.
struct MARegTask
{
    const MADesignMatrix& design;
    MARegUse use;

    const MARegSettings& Settings() const { return design.GetSettings(); }
};

/// Whether a model with residual degrees of freedom and tau² is adjusted after Knapp and Hartung.
inline bool IsAdjusted(const MARegSettings& settings, double residualDf, double tau2)
{
    return settings.IsKnapHartAdjust() &&
           (!settings.IsKnapHartIfHeterogeneous() || IsHeterogeneous(residualDf, tau2));
}

/// Whether the coefficients are tested by Student's t: always under the adjustment.
inline bool UsesStudentT(const MARegSettings& settings, bool isAdjusted)
{
    return isAdjusted || settings.GetTestDistType() == MAConst::TEST_STUDENT_T;
}

/// A fitted model: its results, and what predicts from it. The fit refers to the design of the task.
struct MARegBuild
{
    KXStatus status; ///< an error leaves the results incomplete
    std::vector<KXStatus> warnings;
    MARegResults results;
    std::unique_ptr<MARegFit> fit;
    double scale = 1.0;         ///< of the covariance of the coefficients
    double criticalValue = 0.0; ///< of predictions

    bool Passed(const KXStatus& passed) { return RecordStatus(passed, status, warnings); }

    /// Fits, and stores the coefficients.
    bool Fit(const MADesignMatrix& design, MAWeightMode mode, double tau2)
    {
        fit = std::make_unique<MARegFit>(design, mode, tau2);
        if (!Passed(fit->Fit()))
            return false;
        results.goodRecords = fit->GoodRecordCount();
        results.badRecords = fit->BadRecordCount();
        results.coefficients = fit->Coefficients();
        results.nonRedundant = fit->NonRedundant();
        return true;
    }
};

/// What an engine fits a task by.
using MARegFitFunction = MARegBuild(const MARegTask&);

} // namespace MA_NAMESPACE

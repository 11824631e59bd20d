#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/MARegResults.h"
#include "meta_analysis/regression/MARegTests.h"

#include <memory>
#include <vector>

namespace MA_NAMESPACE {

/// How much of a model a build yields.
enum class MARegUse
{
    Model,          ///< all results
    SmallStudyTest, ///< the coefficients and their tests
    BubblePlot      ///< the coefficients
};

/// What is to be fitted. The settings are the design's.
struct MARegTask
{
    const MADesignMatrix& design;
    MARegUse use;

    const MARegSettings& Settings() const { return design.GetSettings(); }
};

/// A fitted model: its results, and what predicts from it. The fit refers to the design of the task.
struct MARegBuild
{
    KXStatus status; ///< an error leaves the results incomplete
    std::vector<KXStatus> warnings;
    MARegResults results;
    std::unique_ptr<MARegFit> fit;
    double scale = 1.0;         ///< of the covariance of the coefficients
    double criticalValue = 0.0; ///< of predictions

    /// Adds a warning; an error becomes the status. True when the build can go on.
    bool Passed(const KXStatus& passed)
    {
        if (passed.IsWarning())
            warnings.push_back(passed);
        if (passed.IsError())
            status = passed;
        return !passed.IsError();
    }

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

} // namespace MA_NAMESPACE

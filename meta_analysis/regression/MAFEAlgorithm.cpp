#include "meta_analysis/regression/MAFEAlgorithm.h"

#include "meta_analysis/inference/MAHeterogeneity.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/settings/Memory.h"

#include <cmath>
#include <memory>

namespace MA_NAMESPACE {

namespace {

/// A residual Q below it, which is of the order of its degrees of freedom otherwise, counts as no
/// heterogeneity: the fit is exact.
constexpr double negligibleQ = 1e-12;

} // namespace

MAFEAlgorithm::MAFEAlgorithm(const MARegSettings& settings) : MARegAlgorithm(settings) {}
MAFEAlgorithm::~MAFEAlgorithm() = default;

KXStatus MAFEAlgorithm::BuildModel(MultiPassRecordIter& records)
{
    const KXStatus built = Guarded(status_, [&] { return BuildFrom(records); });
    if (built.IsError())
        ForgetModel();
    return built;
}

KXStatus MAFEAlgorithm::BuildFrom(MultiPassRecordIter& records)
{
    if (!Passed(PrepareRows(records)))
        return status_;
    WarnOfSettings(false);
    if (!Passed(FitModel()))
        return status_;
    // Scores use the settings' distribution; the Knapp-Hartung flag plays no part in them.
    FinishBuild(settings_->GetTestDistType() == MAConst::TEST_STUDENT_T);
    return status_;
}

KXStatus MAFEAlgorithm::FitModel()
{
    fit_ = std::make_unique<MARegFit>(*design_);
    if (!Passed(fit_->Fit()))
        return status_;
    if (settings_->HasMultiDisper() && !Passed(fit_->ComputeDispersion()))
        return status_;
    if (usedByBubblePlot_)
        return status_;
    const bool useStudentT =
        settings_->IsKnapHartAdjust() || settings_->GetTestDistType() == MAConst::TEST_STUDENT_T;
    fit_->ComputeCoefficientTests(useStudentT);
    if (usedByRegBaseTest_)
        return status_;
    TestModel(false);
    if (!Passed(fit_->ComputeResidualHeterogeneity()))
        return status_;
    MeasureHeterogeneity();
    return status_;
}

void MAFEAlgorithm::MeasureHeterogeneity()
{
    residualQ_ = fit_->ResidualQ();
    residualQPValue_ = fit_->ResidualQPValue();
    residualDf_ = fit_->ResidualDf();
    residualH2_ = 1.0;
    residualI2_ = 0.0;
    if (residualDf_ != 0 && std::abs(residualQ_) >= negligibleQ) {
        const MAHeterogeneityMeasures measures = HeterogeneityFromQ(residualQ_, residualDf_);
        residualH2_ = measures.h2;
        residualI2_ = measures.i2;
    }
}

KXStatus MAFEAlgorithm::Score(const Record& record, double& fit, double& stdError, double& lower,
                              double& upper, double& residual, double& residualStdError,
                              double& leverage) const
{
    return ScoreRecord(record, fit, stdError, lower, upper, residual, residualStdError, leverage);
}

} // namespace MA_NAMESPACE

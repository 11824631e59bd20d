#include "meta_analysis/regression/MAFEAlgorithm.h"

#include "meta_analysis/regression/MARegBuild.h"
#include "meta_analysis/regression/MARegHeterogeneity.h"
#include "meta_analysis/settings/MAStatusCode.h"

namespace MA_NAMESPACE {

namespace {

/// Estimates, tests and heterogeneity, as far as the use asks for them.
void Describe(const MARegTask& task, MARegBuild& build)
{
    const MARegSettings& settings = task.Settings();
    const MARegFit& fit = *build.fit;
    if (settings.HasMultiDisper()) {
        const MADispersion dispersion = DispersionOf(fit);
        build.Passed(dispersion.warning);
        build.results.dispersion = build.scale = dispersion.value;
    }
    if (task.use == MARegUse::BubblePlot || task.use == MARegUse::Statistics)
        return;
    build.results.tests = TestCoefficients(
        fit, build.scale, UsesStudentT(settings, IsAdjusted(settings, fit.ResidualDf(), 0.0)));
    if (task.use == MARegUse::SmallStudyTest)
        return;
    build.results.wald = WaldTest(fit, build.results.dispersion);
    build.results.residual = ResidualHeterogeneity(fit);
    if (fit.ResidualDf() == 0)
        build.Passed(KXStatus(MAStatusCode::NO_RESIDUAL_DF, true));
}

MARegBuild FitFixedEffects(const MARegTask& task)
{
    MARegBuild build;
    if (!build.Fit(task.design, MAWeightMode::FixedEffect, 0.0))
        return build;
    Describe(task, build);
    if (task.use == MARegUse::Statistics)
        return build;
    // Predictions use the settings' distribution; the Knapp-Hartung flag plays no part in them.
    build.criticalValue =
        CriticalValue(*build.fit, task.Settings().GetTestDistType() == MAConst::TEST_STUDENT_T);
    return build;
}

} // namespace

MAFEAlgorithm::MAFEAlgorithm(const MARegSettings& settings) : MARegAlgorithm(settings) {}
MAFEAlgorithm::~MAFEAlgorithm() = default;

KXStatus MAFEAlgorithm::BuildModel(MultiPassRecordIter& records)
{
    return Build(records, false, FitFixedEffects);
}

} // namespace MA_NAMESPACE

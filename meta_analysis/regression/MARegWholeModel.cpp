#include "meta_analysis/regression/MARegWholeModel.h"

#include "meta_analysis/regression/MAHypotheses.h"
#include "meta_analysis/regression/MAPermutationTest.h"
#include "meta_analysis/regression/MARegInfluence.h"
#include "meta_analysis/regression/MARobustVariance.h"
#include "meta_analysis/regression/MAVarianceInflation.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <utility>

namespace MA_NAMESPACE {

namespace {

bool AddTestsOfCoefficients(const MARegTask& task, bool isRandom, MARegBuild& build)
{
    const MARegFit& fit = *build.fit;
    const bool isAdjusted =
        IsAdjusted(task.Settings(), fit.ResidualDf(), isRandom ? build.results.tau2 : 0.0);
    MATestedHypotheses tested = TestHypotheses(fit, build.scale, UsesStudentT(task.Settings(), isAdjusted));
    build.results.hypotheses = std::move(tested.tests);
    build.results.effectTests = TestEffects(fit, build.scale, isRandom && isAdjusted);
    build.results.varianceInflation = VarianceInflation(fit);
    return build.Passed(tested.status);
}

bool AddRobustTests(const MARegTask& task, MARegBuild& build)
{
    if (task.Settings().GetCluster() < 0)
        return true;
    build.results.robust = TestRobustly(*build.fit);
    return build.Passed(build.results.robust.status);
}

bool AddInfluence(const MARegTask& task, bool isRandom, MARegBuild& build)
{
    if (!task.Settings().GetInfluence())
        return true;
    MARegInfluence measured = MeasureInfluence(task.design, isRandom, build.results.tau2);
    if (!measured.table.isComplete)
        build.Passed(KXStatus(MAStatusCode::DELETION_UNDEFINED, true));
    build.results.influence = std::move(measured.table);
    return build.Passed(measured.status);
}

bool AddPermutationTests(const MARegTask& task, MARegFitFunction* fitModel, MARegBuild& build)
{
    if (task.Settings().GetPermutations() <= 0)
        return true;
    build.results.permutation = TestByPermutation(task.design, fitModel);
    return build.Passed(build.results.permutation.status);
}

void AddPredictions(const MARegTask& task, const MAPredictionChoice& choice, MARegBuild& build)
{
    for (const Record& values : task.Settings().GetPredictions()) {
        build.results.predictions.push_back(PredictEffectOf(*build.fit, choice, values));
        if (KXMV::IsMissing(build.results.predictions.back().effect))
            build.Passed(KXStatus(MAStatusCode::PREDICTION_UNAVAILABLE, true));
    }
}

} // namespace

bool CompleteModel(const MARegTask& task, MARegFitFunction* fitModel, bool isRandom,
                   const MAPredictionChoice& prediction, MARegBuild& build)
{
    if (!AddTestsOfCoefficients(task, isRandom, build))
        return false;
    AddPredictions(task, prediction, build);
    return AddRobustTests(task, build) && AddInfluence(task, isRandom, build) &&
           AddPermutationTests(task, fitModel, build);
}

} // namespace MA_NAMESPACE

#include "meta_analysis/pooling/MATau2Inference.h"

#include "meta_analysis/pooling/MATau2Interval.h"

namespace MA_NAMESPACE {

void InferTau2(MALikelihoodCurve& curve, double tau2, const MATau2Question& question, MAQuantiles& quantiles,
               MATau2Results& results)
{
    const double t = tau2 / curve.Unit();
    if (question.wantsLikelihood && HasLikelihood(question.estimator))
        results.information =
            InformationCriteria(curve.LogLikelihood(t), question.rank + 1.0, curve.Bounds().traceSize);
    const MATau2Bounds bounds = Tau2Interval(curve, question.interval, question.estimator, t, quantiles);
    results.lower = bounds.lower;
    results.upper = bounds.upper;
}

} // namespace MA_NAMESPACE

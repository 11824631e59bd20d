#include "meta_analysis/bulk/MABulkColumns.h"

#include "meta_analysis/bulk/MAPutNumber.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// Effects from some 1e150 on, whose squares overflow, give closed formulas an infinite tau².
int StatusOf(const MAPooledModel& model)
{
    return model.tau2Results.isDoubtful || std::isinf(model.tau2) ? MAStatusCode::TAU2_DOUBTFUL : 0;
}

void PutAll(const MABulkResults& results, std::size_t set, const MAPooledModel& model, int status)
{
    Put(results.estimate, set, OrNaN(model.effect.estimate));
    Put(results.stdError, set, OrNaN(model.effect.stdError));
    Put(results.statistic, set, OrNaN(model.effect.statistic));
    Put(results.pValue, set, OrNaN(model.effect.pValue.value));
    PutLog10(results.minusLog10P, set, model.effect.pValue);
    Put(results.ciLower, set, OrNaN(model.effect.ciLower));
    Put(results.ciUpper, set, OrNaN(model.effect.ciUpper));
    Put(results.tau2, set, OrNaN(model.tau2));
    Put(results.tau2Lower, set, OrNaN(model.tau2Results.lower));
    Put(results.tau2Upper, set, OrNaN(model.tau2Results.upper));
    Put(results.q, set, OrNaN(model.homogeneity.q));
    Put(results.qDf, set, model.homogeneity.df);
    Put(results.qPValue, set, OrNaN(model.homogeneity.pValue.value));
    Put(results.i2, set, OrNaN(model.heterogeneity.i2));
    Put(results.predictionLower, set, OrNaN(model.prediction.lower));
    Put(results.predictionUpper, set, OrNaN(model.prediction.upper));
    Put(results.status, set, status);
}

} // namespace

/// The likelihood and the bounds of H² and I² have no column.
MAWantedResults WantedBy(const MABulkResults& results)
{
    MAWantedResults wanted;
    wanted.pValue = results.pValue != nullptr || results.minusLog10P != nullptr;
    wanted.interval = results.ciLower != nullptr || results.ciUpper != nullptr;
    wanted.prediction = results.predictionLower != nullptr || results.predictionUpper != nullptr;
    wanted.homogeneityPValue = results.qPValue != nullptr;
    wanted.homogeneity = results.q != nullptr || wanted.homogeneityPValue;
    wanted.heterogeneity = results.i2 != nullptr;
    wanted.heterogeneityBounds = false;
    wanted.tau2Interval = results.tau2Lower != nullptr || results.tau2Upper != nullptr;
    wanted.likelihood = false;
    return wanted;
}

void PutMissing(const MABulkResults& results, std::size_t set, int status)
{
    PutAll(results, set, MAPooledModel(), status);
}

void PutModel(const MABulkResults& results, std::size_t set, const MAPooledModel& model)
{
    if (model.status.IsError())
        PutMissing(results, set, model.status.GetCode());
    else
        PutAll(results, set, model, StatusOf(model));
}

void PutCounts(const MABulkResults& results, std::size_t set, std::size_t studies, std::size_t leftOut)
{
    Put(results.studyCount, set, static_cast<int>(studies));
    Put(results.leftOut, set, static_cast<int>(leftOut));
}

} // namespace MA_NAMESPACE

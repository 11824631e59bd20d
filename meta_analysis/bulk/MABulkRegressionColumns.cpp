#include "meta_analysis/bulk/MABulkRegressionColumns.h"

#include "meta_analysis/bulk/MAPutNumber.h"

#include <algorithm>
#include <initializer_list>

namespace MA_NAMESPACE {

namespace {

bool IsAnyWanted(std::initializer_list<const void*> columns)
{
    return std::any_of(columns.begin(), columns.end(), [](const void* column) { return column != nullptr; });
}

/// Tests of the model by chi-square have no second degrees of freedom.
void PutModelResults(const MARegressionPlace& place, const MASetRegression::Model& model)
{
    const auto& [results, set, setCount, positions] = place;
    Put(results.tau2, set, OrNaN(model.tau2));
    Put(results.tau2Lower, set, OrNaN(model.tau2Results.lower));
    Put(results.tau2Upper, set, OrNaN(model.tau2Results.upper));
    Put(results.q, set, OrNaN(model.residual.q));
    Put(results.qPValue, set, OrNaN(model.residual.qPValue.value));
    Put(results.i2, set, OrNaN(model.residual.i2));
    Put(results.rSquare, set, OrNaN(model.rSquare));
    Put(results.dispersion, set, OrNaN(model.dispersion));
    Put(results.modelStatistic, set, OrNaN(model.modelTest.statistic));
    Put(results.modelDf1, set, model.modelTest.df1);
    Put(results.modelDf2, set, model.isAdjusted ? model.modelTest.df2 : 0);
    Put(results.modelPValue, set, OrNaN(model.modelTest.pValue.value));
    PutLog10(results.modelMinusLog10P, set, model.modelTest.pValue);
    Put(results.status, set, model.status);
}

void PutTest(const MABulkRegressionResults& results, std::size_t position, double coefficient,
             const MACoefficientTest& test, const MAPValue& pValue)
{
    Put(results.coefficients, position, OrNaN(coefficient));
    Put(results.stdErrors, position, OrNaN(test.stdError));
    Put(results.statistics, position, OrNaN(test.statistic));
    Put(results.pValues, position, OrNaN(pValue.value));
    PutLog10(results.minusLog10Ps, position, pValue);
    Put(results.ciLowers, position, OrNaN(test.lowerLimit));
    Put(results.ciUppers, position, OrNaN(test.upperLimit));
}

void PutNoCovariance(const MARegressionPlace& place)
{
    const std::size_t p = place.positions.size();
    for (std::size_t i = 0; i < p && place.results.covariance != nullptr; ++i) {
        for (std::size_t j = 0; j < p; ++j)
            place.results.covariance[place.CovarianceAt(i, j)] = OrNaN(KXMV::Missing());
    }
}

/// Redundant coefficients keep these.
void PutNoTests(const MARegressionPlace& place)
{
    for (std::size_t j = 0; j < place.positions.size(); ++j)
        PutTest(place.results, place.CoefficientAt(j), KXMV::Missing(), {}, {});
    PutNoCovariance(place);
}

void PutCovariance(const MARegressionPlace& place, const MASetRegression& regression, double scale)
{
    const std::vector<std::size_t>& estimated = regression.Fit().EstimatedColumns();
    for (std::size_t i = 0; i < estimated.size(); ++i) {
        for (std::size_t j = 0; j < estimated.size(); ++j)
            place.results.covariance[place.CovarianceAt(place.positions[estimated[i]],
                                                        place.positions[estimated[j]])] =
                scale * regression.UnscaledCovariance(i, j);
    }
}

} // namespace

MAWantedRegression WantedBy(const MABulkRegressionResults& results)
{
    MAWantedRegression wanted;
    wanted.pValues = IsAnyWanted({results.pValues, results.minusLog10Ps});
    wanted.tests = wanted.pValues || IsAnyWanted({results.stdErrors, results.statistics, results.ciLowers,
                                                  results.ciUppers, results.covariance});
    wanted.modelTest = IsAnyWanted({results.modelStatistic, results.modelDf1, results.modelDf2,
                                    results.modelPValue, results.modelMinusLog10P});
    wanted.heterogeneity = IsAnyWanted({results.q, results.qPValue, results.i2});
    wanted.rSquare = IsAnyWanted({results.rSquare});
    wanted.tau2Interval = IsAnyWanted({results.tau2Lower, results.tau2Upper});
    wanted.status = IsAnyWanted({results.status});
    return wanted;
}

void PutMissing(const MARegressionPlace& place, int status)
{
    MASetRegression::Model model;
    model.tau2 = model.dispersion = KXMV::Missing();
    model.status = status;
    PutNoTests(place);
    PutModelResults(place, model);
    Put(place.results.rank, place.set, 0);
    Put(place.results.qDf, place.set, 0);
}

void PutModel(const MARegressionPlace& place, const MASetRegression& regression,
              const MASetRegression::Model& model)
{
    const MARegFit& fit = regression.Fit();
    const std::vector<std::size_t>& estimated = fit.EstimatedColumns();
    PutModelResults(place, model);
    Put(place.results.rank, place.set, fit.NonRedundantCount());
    Put(place.results.qDf, place.set, fit.ResidualDf());
    if (estimated.size() < place.positions.size())
        PutNoTests(place);
    for (std::size_t i = 0; i < estimated.size(); ++i)
        PutTest(place.results, place.CoefficientAt(place.positions[estimated[i]]),
                fit.Coefficients()[estimated[i]], regression.Tests()[i], regression.PValues()[i]);
    if (place.results.covariance == nullptr)
        return;
    if (KXMV::IsMissing(model.scale))
        PutNoCovariance(place);
    else
        PutCovariance(place, regression, model.scale);
}

void PutCounts(const MARegressionPlace& place, std::size_t studies, std::size_t leftOut)
{
    Put(place.results.studyCount, place.set, static_cast<int>(studies));
    Put(place.results.leftOut, place.set, static_cast<int>(leftOut));
}

} // namespace MA_NAMESPACE

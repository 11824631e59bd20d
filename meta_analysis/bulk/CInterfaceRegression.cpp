#include "meta_analysis/bulk/CInterfaceOptions.h"
#include "meta_analysis/bulk/CInterfaceStruct.h"
#include "meta_analysis/bulk/MABulkRegression.h"
#include "meta_analysis/settings/Alpha.h"

using namespace MA_NAMESPACE;

namespace {

MABulkRegression ModelOf(const ma_regression_options& options)
{
    MABulkRegression model;
    model.isRandom = options.model == MA_MODEL_RANDOM;
    model.tau2.estimator = static_cast<MAConst::TAU2ESTIMATOR>(options.tau2);
    model.tau2.limits = {options.max_iterations, options.max_step_halving, options.tolerance};
    model.tau2.search = static_cast<MAConst::TAU2SEARCH>(options.tau2_search);
    model.knappHartung = static_cast<MAConst::KNAPPHADJTYPE>(options.knapp_hartung);
    model.tau2Interval = static_cast<MAConst::TAU2INTERVAL>(options.tau2_interval);
    model.tests = static_cast<MAConst::TESTDISTTYPE>(options.tests);
    model.hasDispersion = options.dispersion != 0;
    model.alpha = AlphaOf(options.level);
    return model;
}

void TakeCoefficients(const ma_regression_results& columns, MABulkRegressionResults& results)
{
    results.coefficients = columns.coefficient;
    results.stdErrors = columns.std_error;
    results.statistics = columns.statistic;
    results.pValues = columns.p;
    results.minusLog10Ps = columns.mlog10p;
    results.ciLowers = columns.ci_lower;
    results.ciUppers = columns.ci_upper;
    results.covariance = columns.covariance;
}

MABulkRegressionResults ResultsOf(const ma_regression_results& columns)
{
    MABulkRegressionResults results;
    TakeCoefficients(columns, results);
    results.studyCount = columns.k;
    results.leftOut = columns.left_out;
    results.rank = columns.rank;
    results.tau2 = columns.tau2;
    results.tau2Lower = columns.tau2_lower;
    results.tau2Upper = columns.tau2_upper;
    results.q = columns.q;
    results.qDf = columns.q_df;
    results.qPValue = columns.q_p;
    results.i2 = columns.i2;
    results.rSquare = columns.r2;
    results.dispersion = columns.dispersion;
    results.modelStatistic = columns.model_statistic;
    results.modelDf1 = columns.model_df1;
    results.modelDf2 = columns.model_df2;
    results.modelPValue = columns.model_p;
    results.modelMinusLog10P = columns.model_mlog10p;
    results.status = columns.status;
    return results;
}

} // namespace

int32_t ma_regress_block(ma_matrix effects, ma_matrix variances, ma_matrix design, size_t study_count,
                         size_t set_count, size_t coefficient_count,
                         const ma_regression_options* givenOptions, const ma_regression_results* givenResults)
{
    ma_regression_options options;
    if (const KXStatus status = ReadOptions(givenOptions, options); status.IsError())
        return status.GetCode();
    ma_regression_results results{};
    if (const KXStatus status = ReadResults(givenResults, results); status.IsError())
        return status.GetCode();
    const MABlockSets sets{BlockOf(effects), BlockOf(variances), study_count, set_count};
    const MABulkDesign predictors{design.values, design.row_stride, design.column_stride, coefficient_count};
    return RegressSets(sets, predictors, ModelOf(options), ResultsOf(results), options.threads).GetCode();
}

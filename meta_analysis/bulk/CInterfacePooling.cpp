#include "meta_analysis/bulk/CInterfaceOptions.h"
#include "meta_analysis/bulk/CInterfaceStruct.h"
#include "meta_analysis/bulk/MABulkPooling.h"
#include "meta_analysis/settings/Alpha.h"

using namespace MA_NAMESPACE;

namespace {

MABulkModel ModelOf(const ma_pool_options& options)
{
    const double alpha = AlphaOf(options.level);
    if (options.model == MA_MODEL_FIXED)
        return MAFixedEffectChoice{options.null_effect, alpha};
    MARandomEffectsChoice choice;
    choice.estimator = static_cast<MAConst::TAU2ESTIMATOR>(options.tau2);
    choice.knappHartung = static_cast<MAConst::KNAPPHADJTYPE>(options.knapp_hartung);
    choice.limits = {options.max_iterations, options.max_step_halving, options.tolerance};
    choice.search = static_cast<MAConst::TAU2SEARCH>(options.tau2_search);
    choice.tau2Interval = static_cast<MAConst::TAU2INTERVAL>(options.tau2_interval);
    choice.prediction = static_cast<MAConst::PREDICTIONTYPE>(options.prediction);
    choice.alpha = alpha;
    return choice;
}

MABulkResults ResultsOf(const ma_pool_results& columns)
{
    MABulkResults results;
    results.studyCount = columns.k;
    results.leftOut = columns.left_out;
    results.estimate = columns.estimate;
    results.stdError = columns.std_error;
    results.statistic = columns.statistic;
    results.pValue = columns.p;
    results.minusLog10P = columns.mlog10p;
    results.ciLower = columns.ci_lower;
    results.ciUpper = columns.ci_upper;
    results.tau2 = columns.tau2;
    results.tau2Lower = columns.tau2_lower;
    results.tau2Upper = columns.tau2_upper;
    results.q = columns.q;
    results.qDf = columns.q_df;
    results.qPValue = columns.q_p;
    results.i2 = columns.i2;
    results.predictionLower = columns.pi_lower;
    results.predictionUpper = columns.pi_upper;
    results.status = columns.status;
    return results;
}

template <class Sets>
int32_t Pool(const Sets& sets, const ma_pool_options* givenOptions, const ma_pool_results* givenResults)
{
    ma_pool_options options;
    if (const KXStatus status = ReadOptions(givenOptions, options); status.IsError())
        return status.GetCode();
    ma_pool_results results{};
    if (const KXStatus status = ReadResults(givenResults, results); status.IsError())
        return status.GetCode();
    return PoolSets(sets, ModelOf(options), ResultsOf(results), options.threads).GetCode();
}

} // namespace

int32_t ma_pool_ragged(const double* effects, const double* variances, const size_t* offsets,
                       size_t set_count, const ma_pool_options* options, const ma_pool_results* results)
{
    return Pool(MARaggedSets{effects, variances, offsets, set_count}, options, results);
}

int32_t ma_pool_block(ma_matrix effects, ma_matrix variances, size_t study_count, size_t set_count,
                      const ma_pool_options* options, const ma_pool_results* results)
{
    return Pool(MABlockSets{BlockOf(effects), BlockOf(variances), study_count, set_count}, options, results);
}

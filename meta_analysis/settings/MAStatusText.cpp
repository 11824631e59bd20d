#include "meta_analysis/settings/MAStatusText.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <iterator>

namespace MA_NAMESPACE {

namespace {

struct StatusSentence
{
    int code;
    const char* sentence;
};

constexpr StatusSentence sentences[] = {
    {MAStatusCode::LENGTH_MISMATCH, "An input has another length than there are studies."},
    {MAStatusCode::PARAMETER_COUNT_MISMATCH,
     "A matrix or a list has another size than there are parameters."},
    {MAStatusCode::INPUT_NOT_GIVEN,
     "A required variable or input is not given, or the settings are invalid."},
    {MAStatusCode::TOO_MANY_NONREDUNDANT, "There are more non-redundant parameters than parameters."},
    {MAStatusCode::ITERATOR_NOT_STARTED, "The data cannot be read from their first record on."},
    {MAStatusCode::ITERATOR_FAILED, "Reading the data failed."},
    {MAStatusCode::TOO_FEW_ROWS, "There are no more usable records than parameters to estimate."},
    {MAStatusCode::TEST_DEPENDENT_REFUSED, "The regression-based test cannot take its dependent variable."},
    {MAStatusCode::TEST_TYPE_UNDEFINED, "There is no regression-based test of this type."},
    {MAStatusCode::TEST_COVARIATE_REFUSED, "The regression-based test cannot take its covariate."},
    {MAStatusCode::TEST_WITHOUT_OUTPUT, "The regression of the regression-based test gave no results."},
    {MAStatusCode::RECORD_NOT_RESIZED, "A record cannot be extended by the values of a test or a plot."},
    {MAStatusCode::TOO_FEW_FOR_TEST, "A regression-based test needs three usable studies."},
    {MAStatusCode::ONE_USABLE_STUDY,
     "Only one study could be used, which leaves no variance between studies to estimate."},
    {MAStatusCode::TAU2_FAILED, "The between-study variance could not be estimated."},
    {MAStatusCode::NO_USABLE_STUDY, "No record could be used."},
    {MAStatusCode::NO_ANALYSED_STUDY, "There is no study for trim-and-fill to start from."},
    {MAStatusCode::HYPOTHESIS_UNUSABLE,
     "A hypothesis needs a weight for each parameter, redundant ones included, of which one is not 0."},
    {MAStatusCode::HYPOTHESIS_ON_REDUNDANT,
     "A hypothesis has a weight on a redundant parameter, whose coefficient is not estimated."},
    {MAStatusCode::HYPOTHESES_CONTRADICT, "The hypotheses contradict one another: their weights depend on "
                                          "one another, and their values cannot all "
                                          "hold."},
    {MAStatusCode::REFERENCE_LEVEL_ABSENT, "No usable record has the reference level of a factor."},
    {MAStatusCode::OUT_OF_MEMORY, "Memory ran out; the results hold what was computed before."},
    {MAStatusCode::ONE_CLUSTER,
     "All usable records are in one cluster; a robust variance needs two or more."},
    {MAStatusCode::TOO_FEW_CLUSTERS, "There are no more clusters than coefficients, which leaves CR1 and CR0 "
                                     "no degrees of freedom; CR2 can do "
                                     "with fewer."},
    {MAStatusCode::BULK_ALPHA_OUTSIDE, "The error probability alpha is not between 0 and 1."},
    {MAStatusCode::BULK_CHOICE_UNKNOWN,
     "A choice for the model of all sets is none of its known values, or not a finite number."},
    {MAStatusCode::UNUSABLE_RECORD,
     "Records were left out of a regression: a value that it needs is missing or not usable."},
    {MAStatusCode::CONTRAST_COUNT_MISMATCH,
     "Contrast coefficients outside the data are not as many as the records; this program gives none, and no "
     "result depends on them."},
    {MAStatusCode::TRIM_FILL_NOT_CONVERGED,
     "Trim-and-fill did not settle within its limit of iterations; its result is the last step's."},
    {MAStatusCode::FIXED_MODEL_WITH_CONTRAST,
     "Contrasts are tested under the fixed-effect model, which takes all studies to share one effect."},
    {MAStatusCode::ONE_STUDY, "Only one study could be used: there is nothing to pool."},
    {MAStatusCode::TWO_STUDIES,
     "Only two studies could be used: the pooled effect and, above all, the heterogeneity are uncertain."},
    {MAStatusCode::READY_MADE_EFFECTS, "The effect sizes are ready-made and are analysed as they are given."},
    {MAStatusCode::READY_MADE_EFFECTS_AGAIN,
     "Settings for the computation of effect sizes have no influence on ready-made ones."},
    {MAStatusCode::BINARY_FIXED_INVERSE_VARIANCE,
     "A binary outcome is pooled by inverse variance under the fixed-effect model; where events are rare, "
     "the "
     "methods of Mantel and Haenszel or Peto are more reliable."},
    {MAStatusCode::BINARY_RANDOM_EFFECTS, "A binary outcome is pooled by inverse variance under the "
                                          "random-effects model, whose normal approximation "
                                          "is doubtful where events are rare."},
    {MAStatusCode::TRIM_FILL_NOT_RUN,
     "Trim-and-fill is not available where the fixed-effect model pools the tables themselves."},
    {MAStatusCode::AS_MANY_STUDIES_AS_PARAMETERS,
     "There are as many studies as parameters, which leaves no dispersion to estimate: it is taken as 1."},
    {MAStatusCode::DISPERSION_NEAR_ZERO,
     "The regression fits the studies exactly; the dispersion, estimated as 0, is taken as 1."},
    {MAStatusCode::NO_RESIDUAL_DF,
     "There are as many studies as parameters, which leaves no degrees of freedom for a residual test."},
    {MAStatusCode::CONTRAST_COEFFICIENT_MISSING,
     "A study without contrast coefficient was left out of a contrast."},
    {MAStatusCode::ZERO_CELLS_IN_BOTH_ARMS,
     "A table has a zero cell in both groups and no zero-cell correction was asked for; such tables count as "
     "invalid."},
    {MAStatusCode::STUDIES_REMOVED,
     "Studies whose effect size or variance cannot be pooled were removed; they count as invalid."},
    {MAStatusCode::TAU2_DOUBTFUL,
     "The between-study variance is not proved to be the one that its estimator defines; choose the global "
     "search, where it is not set."},
    {MAStatusCode::CONFIDENCE_LEVEL_OUTSIDE,
     "The confidence level is not between 0 and 1, such as 0.95; the intervals have no meaning."},
    {MAStatusCode::RATIO_NULL_NEGATIVE, "A ratio under the null hypothesis cannot be negative; the test "
                                        "has no result. Zero stands for a ratio of "
                                        "1."},
    {MAStatusCode::CONTRAST_IGNORED,
     "Contrasts are tested under the fixed-effect model alone: this run has none."},
    {MAStatusCode::NULL_IGNORED,
     "The random-effects model tests against no effect: the null value was not used."},
    {MAStatusCode::NO_STUDY_IN_RUN, "No study could be used: there is nothing to pool."},
    {MAStatusCode::NO_ITERATION_ALLOWED,
     "The iteration limit allows no iteration: the between-study variance is the estimate after Hedges, from "
     "which the iterations would start."},
    {MAStatusCode::MODEL_TYPE_UNKNOWN,
     "The model type is neither fixed nor random effects; it is taken as random effects."},
    {MAStatusCode::TAU2_INTERVAL_UNAVAILABLE,
     "There is a profile-likelihood interval for the ML and REML estimators only."},
    {MAStatusCode::INTERVAL_ASYMMETRIC,
     "A confidence interval is not symmetric about its estimate, beyond 5% of its width and what rounding in "
     "print explains: check the figures, their level and whether they are ratios."},
    {MAStatusCode::SUMMARY_SKEWED,
     "Medians and quantiles come from skewed data by the tests of Shi et al. (2023); the means and standard "
     "deviations that they were converted into suppose a normal distribution."},
    {MAStatusCode::STD_DEV_DOUBTFUL,
     "A standard deviation looks like a standard error: the standardised difference is beyond 3, and the "
     "other studies' standard deviations are five times as large or more."},
    {MAStatusCode::DELETION_UNDEFINED,
     "There is no model without one of the studies: diagnostics of its influence are missing."},
    {MAStatusCode::SUBGROUP_VALUE_MISSING,
     "Studies without a value of the subgroup variable are in no group; the model of all studies has them."},
    {MAStatusCode::CUMULATIVE_VALUE_MISSING,
     "Studies without a value of the cumulative variable are in no step of the cumulative analysis; the "
     "model of all studies has them."},
    {MAStatusCode::FEW_STUDIES_FOR_TEST,
     "A test for small-study effects, of all studies or of a group, has fewer than ten studies: too few to "
     "tell a real asymmetry from chance (Sterne et al. 2011, BMJ 343, d4002)."},
    {MAStatusCode::COMMON_TAU2_IGNORED,
     "A common between-study variance was asked for without subgroups under random effects, or for a "
     "cumulative analysis; it has no effect."},
    {MAStatusCode::PREDICTION_UNAVAILABLE,
     "The data determine no prediction at some of the values: no study has such a combination of levels, or "
     "the values break a relation that the predictors of all studies keep."},
    {MAStatusCode::CLUSTER_DECIDES,
     "Clusters alone determine a coefficient, one the whole or each a part, which leaves no robust "
     "variance of it."},
    {MAStatusCode::PERMUTATIONS_LEFT_OUT,
     "Some permuted data had no test statistic; the permutation test is about the others."},
    {MAStatusCode::COUNTS_NOT_POOLED,
     "Mantel-Haenszel weights are for rate ratios and rate differences of raw data under the fixed-effect "
     "model; the effect sizes are pooled by inverse variance."},
    {MAStatusCode::STRUCT_SIZE_UNKNOWN,
     "The size in the first field of a struct of options or results is not one that the struct can have."},
    {MAStatusCode::STRUCT_FIELD_UNKNOWN,
     "A struct of options or results has a field set that this version of the library does not know."},
    {MAStatusCode::OPTION_UNKNOWN, "There is no option of this name."},
    {MAStatusCode::OPTION_VALUE_UNKNOWN, "An option has a value that it cannot have."},
};

} // namespace

const char* StatusText(int code) noexcept
{
    const auto found = std::find_if(std::begin(sentences), std::end(sentences),
                                    [code](const StatusSentence& entry) { return entry.code == code; });
    return found == std::end(sentences) ? nullptr : found->sentence;
}

} // namespace MA_NAMESPACE

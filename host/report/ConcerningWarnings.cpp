#include "host/report/ConcerningWarnings.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <iterator>

using namespace MA_NAMESPACE;

namespace host {

namespace {

struct ConcernRule
{
    int code;
    Concern concern;
};

/// The one place that decides it. The options refuse most of what would have no effect, so that the library
/// warns of a setting only where it was given. The program hands the library no contrast coefficients outside
/// the data, and who gives effect sizes knows that they are ready-made. That inverse variance suits rare
/// events badly is in the caution about zero-cell corrections.
constexpr ConcernRule CONCERNS[] = {
    {MAStatusCode::UNUSABLE_RECORD, Concern::ALWAYS},
    {MAStatusCode::CONTRAST_COUNT_MISMATCH, Concern::NEVER},
    {MAStatusCode::TRIM_FILL_NOT_CONVERGED, Concern::ALWAYS},
    {MAStatusCode::FIXED_MODEL_WITH_CONTRAST, Concern::ALWAYS},
    {MAStatusCode::ONE_STUDY, Concern::ALWAYS},
    {MAStatusCode::TWO_STUDIES, Concern::ALWAYS},
    {MAStatusCode::READY_MADE_EFFECTS, Concern::NEVER},
    {MAStatusCode::READY_MADE_EFFECTS_AGAIN, Concern::NEVER},
    {MAStatusCode::BINARY_FIXED_INVERSE_VARIANCE, Concern::NEVER},
    {MAStatusCode::BINARY_RANDOM_EFFECTS, Concern::NEVER},
    {MAStatusCode::TRIM_FILL_NOT_RUN, Concern::ALWAYS},
    {MAStatusCode::AS_MANY_STUDIES_AS_PARAMETERS, Concern::ALWAYS},
    {MAStatusCode::DISPERSION_NEAR_ZERO, Concern::ALWAYS},
    {MAStatusCode::NO_RESIDUAL_DF, Concern::ALWAYS},
    {MAStatusCode::CONTRAST_COEFFICIENT_MISSING, Concern::ALWAYS},
    {MAStatusCode::ZERO_CELLS_IN_BOTH_ARMS, Concern::ALWAYS},
    {MAStatusCode::STUDIES_REMOVED, Concern::ALWAYS},
    {MAStatusCode::TAU2_DOUBTFUL, Concern::ALWAYS},
    {MAStatusCode::CONFIDENCE_LEVEL_OUTSIDE, Concern::ALWAYS},
    {MAStatusCode::RATIO_NULL_NEGATIVE, Concern::ALWAYS},
    {MAStatusCode::CONTRAST_IGNORED, Concern::ALWAYS},
    {MAStatusCode::NULL_IGNORED, Concern::ALWAYS},
    {MAStatusCode::NO_STUDY_IN_RUN, Concern::ALWAYS},
    {MAStatusCode::NO_ITERATION_ALLOWED, Concern::ALWAYS},
    {MAStatusCode::MODEL_TYPE_UNKNOWN, Concern::ALWAYS},
    {MAStatusCode::TAU2_INTERVAL_UNAVAILABLE, Concern::ALWAYS},
    {MAStatusCode::FEW_STUDIES_FOR_TEST, Concern::ALWAYS},
    {MAStatusCode::COMMON_TAU2_IGNORED, Concern::ALWAYS},
    {MAStatusCode::COUNTS_NOT_POOLED, Concern::ALWAYS},
    {MAStatusCode::INTERVAL_ASYMMETRIC, Concern::ALWAYS},
    {MAStatusCode::SUMMARY_SKEWED, Concern::ALWAYS},
    {MAStatusCode::STD_DEV_DOUBTFUL, Concern::ALWAYS},
    {MAStatusCode::PREDICTION_UNAVAILABLE, Concern::ALWAYS},
    {MAStatusCode::CLUSTER_DECIDES, Concern::ALWAYS},
    {MAStatusCode::PERMUTATIONS_LEFT_OUT, Concern::ALWAYS},
    {MAStatusCode::DELETION_UNDEFINED, Concern::ALWAYS},
    {MAStatusCode::SUBGROUP_VALUE_MISSING, Concern::ALWAYS},
    {MAStatusCode::CUMULATIVE_VALUE_MISSING, Concern::ALWAYS},
    {MAStatusCode::NON_INTEGER_COUNTS, Concern::ALWAYS},
    {MAStatusCode::EMPTY_GROUP, Concern::ALWAYS},
    {MAStatusCode::DATA_INTERPRETED, Concern::ALWAYS},
};

const ConcernRule* RuleOf(int code)
{
    const auto* const found = std::find_if(std::begin(CONCERNS), std::end(CONCERNS),
                                           [code](const ConcernRule& rule) { return rule.code == code; });
    return found == std::end(CONCERNS) ? nullptr : found;
}

} // namespace

bool HasConcernRule(int code)
{
    return RuleOf(code) != nullptr;
}

Concern ConcernOf(int code)
{
    return HasConcernRule(code) ? RuleOf(code)->concern : Concern::ALWAYS;
}

std::vector<ShownWarning> Concerning(const std::vector<ShownWarning>& warnings, const Cautions& cautions)
{
    const std::vector<int>& said = cautions.saidWarnings;
    std::vector<ShownWarning> concerning;
    std::copy_if(warnings.begin(), warnings.end(), std::back_inserter(concerning),
                 [&](const ShownWarning& warning) {
                     return ConcernOf(warning.code) == Concern::ALWAYS &&
                            std::find(said.begin(), said.end(), warning.code) == said.end();
                 });
    return concerning;
}

} // namespace host

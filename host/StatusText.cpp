#include "host/StatusText.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <fmt/format.h>

using namespace MA_NAMESPACE;

namespace host {

namespace {

struct StatusSentence
{
    int code;
    const char* sentence;
};

constexpr StatusSentence SENTENCES[] = {
    {MAStatusCode::LENGTH_MISMATCH, "An input has another length than there are studies."},
    {MAStatusCode::PARAMETER_COUNT_MISMATCH,
     "A matrix or a list has another size than there are parameters."},
    {MAStatusCode::INPUT_NOT_GIVEN,
     "A required variable or input is not given, or the settings are invalid."},
    {MAStatusCode::TOO_MANY_NONREDUNDANT, "There are more non-redundant parameters than parameters."},
    {MAStatusCode::ITERATOR_NOT_STARTED, "The data cannot be read from their first record on."},
    {MAStatusCode::ITERATOR_FAILED, "Reading the data failed."},
    {MAStatusCode::TOO_FEW_ROWS, "There are no more usable records than parameters to estimate."},
    {MAStatusCode::TAU2_FAILED, "The between-study variance could not be estimated."},
    {MAStatusCode::OUT_OF_MEMORY, "Memory ran out; the results hold what was computed before."},
    {MAStatusCode::CONTRAST_COUNT_MISMATCH,
     "Contrast coefficients outside the data are not as many as the records; this program gives none, and no "
     "result depends on them."},
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
    {MAStatusCode::CONTRAST_COEFFICIENT_MISSING,
     "A study without contrast coefficient was left out of a contrast."},
    {MAStatusCode::ZERO_CELLS_IN_BOTH_ARMS,
     "A table has a zero cell in both groups and no zero-cell correction was asked for; such tables count as "
     "invalid."},
    {MAStatusCode::STUDIES_REMOVED,
     "Studies whose effect size or variance cannot be pooled were removed; they count as invalid."},
};

} // namespace

std::string SentenceOf(int statusCode)
{
    for (const StatusSentence& entry : SENTENCES)
        if (entry.code == statusCode)
            return entry.sentence;
    return fmt::format("The library gives no meaning to code {}.", statusCode);
}

} // namespace host

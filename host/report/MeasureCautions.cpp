#include "host/report/CautionedAnalysis.h"
#include "host/report/ZeroCellSentences.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace MA_NAMESPACE;

namespace host {

namespace {

bool IsOddsRatioOfTables(const AnalysisData& data)
{
    return IsBinary(data.settings) && data.settings.GetInputESType() == MAConst::INPUT_RAW &&
           data.settings.GetBinaryEstType() == MAConst::BIN_ODDS_RATIO;
}

/// A ratio above 2 or below one half.
bool IsFarFromOne(const ModelRow& model)
{
    return std::abs(model.estimate) > std::log(2.0);
}

/// The values that a measure on its natural scale can have.
struct Range
{
    MAConst::OUTCOMEMEASURE measure;
    const char* name;
    double least;
    double most;
};

constexpr std::array RANGES{Range{MAConst::PROPORTION_RAW, "proportion", 0, 1},
                            Range{MAConst::RATE_RAW, "rate", 0, HUGE_VAL},
                            Range{MAConst::CORRELATION_RAW, "correlation", -1, 1}};

} // namespace

std::string TestOfOddsRatios(const CautionedAnalysis& subject)
{
    const AnalysisData& data = subject.data;
    const bool isOnStdError = data.analysis.testStatus &&
                              data.settings.GetRegBaseTestType() == MAConst::REG_TEST_EFFECT_ON_STD_ERROR;
    const ModelRow& overall = subject.models.back();
    if (!isOnStdError || !IsOddsRatioOfTables(data) || !IsFarFromOne(overall))
        return {};
    return fmt::format(
        "Pooled odds ratio {}: the standard error of a log odds ratio depends on the odds ratio "
        "itself, so that this small-study test finds asymmetry too often; see "
        "--small-study-test harbord and peters",
        data.numbers(std::exp(overall.estimate)));
}

std::string FarPetoOddsRatio(const CautionedAnalysis& subject)
{
    const bool isPeto = IsBinary(subject.data.settings) &&
                        subject.data.settings.GetInputESType() == MAConst::INPUT_RAW &&
                        subject.data.settings.GetBinaryEstType() == MAConst::BIN_PETO_ODDS_RATIO;
    return OfModels(
        subject, [&](const ModelRow& model) { return isPeto && IsFarFromOne(model); },
        [&](const ModelRow& model) {
            return "Peto odds ratio " + subject.data.numbers(std::exp(model.estimate));
        },
        "Peto's method is biased for odds ratios far from 1, the more so with groups of different sizes");
}

/// What pools the same counts without the constant.
const char* AlternativeToCorrection(const MAModelSettings& settings)
{
    return IsMeasured(settings) && !allOutcomeMeasures[settings.GetOutcomeMeasure()].poolsCounts
               ? "a measure that is defined at 0, such as --effect freeman-tukey"
               : "--weights mantel-haenszel with --model fixed";
}

std::string CorrectedZeros(const CautionedAnalysis& subject)
{
    const int count = CorrectedStudies(subject.data);
    if (PoolsTables(subject.data.settings) || count == 0)
        return {};
    return fmt::format(
        "{} of {} studies {} a zero-cell correction of {}: that constant is part of the result, "
        "and the normal approximation behind inverse variance is doubtful where events are "
        "rare; compare --zero-delta, or {}",
        count, subject.StudyCount(), count == 1 ? "has" : "have", subject.data.settings.GetZeroCountDelta(),
        AlternativeToCorrection(subject.data.settings));
}

/// The sizes are those that the variances 1 / (4n + 2) have.
std::string BackTransformedSizes(const CautionedAnalysis& subject)
{
    const bool isFreemanTukey =
        IsMeasured(subject.data.settings) &&
        subject.data.settings.GetOutcomeMeasure() == MAConst::PROPORTION_FREEMAN_TUKEY;
    if (!isFreemanTukey)
        return {};
    const auto [least, most] = std::minmax_element(subject.stdErrors.begin(), subject.stdErrors.end());
    const auto sizeOf = [](double stdError) { return std::round((1 / (stdError * stdError) - 2) / 4); };
    if (sizeOf(*least) < 10 * sizeOf(*most))
        return {};
    return fmt::format(
        "Sizes from {:.0f} to {:.0f}: the proportion goes back from the Freeman-Tukey scale by "
        "one size, the harmonic mean, and can mislead where sizes differ this much; see "
        "--effect logit",
        sizeOf(*most), sizeOf(*least));
}

std::string ImpossibleLimits(const CautionedAnalysis& subject)
{
    if (!IsMeasured(subject.data.settings))
        return {};
    const auto range = std::find_if(RANGES.begin(), RANGES.end(), [&](const Range& one) {
        return one.measure == subject.data.settings.GetOutcomeMeasure();
    });
    if (range == RANGES.end())
        return {};
    return OfModels(
        subject,
        [&](const ModelRow& model) { return model.ciLower < range->least || model.ciUpper > range->most; },
        [&](const ModelRow& model) { return "interval " + subject.Interval(model.ciLower, model.ciUpper); },
        fmt::format("no {} is there; a transformed scale keeps to what is possible", range->name));
}

} // namespace host

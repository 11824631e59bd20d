#include "meta_analysis/analysis/steps/MATrimAndFill.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// The studies on the scale of the trimmed side, ascending: the largest values are the ones to trim.
struct TrimOrder
{
    double sign;
    std::vector<double> values;
    std::vector<double> variances;
};

TrimOrder OrderForTrimming(const MAStudies& studies, MAConst::TRIMFSIDE side)
{
    TrimOrder ordered;
    ordered.sign = side == MAConst::TRIM_SIDE_LARGEST ? 1.0 : -1.0;
    MASelection order = AllOf(studies);
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return ordered.sign * studies.effectSize[a] < ordered.sign * studies.effectSize[b];
    });
    for (const std::size_t study : order) {
        ordered.values.push_back(ordered.sign * studies.effectSize[study]);
        ordered.variances.push_back(studies.variance[study]);
    }
    return ordered;
}

/// Ranks of deviations by magnitude, of which the estimators need these two figures. Ties are not averaged;
/// of equal magnitudes the negative deviation comes first.
struct DeviationRanks
{
    double positiveRankSum = 0.0;
    double rankOfSmallest = 0.0;
};

/// From ascending values, in one merge of the negative deviations, whose magnitudes descend, with the others.
DeviationRanks RankDeviations(const std::vector<double>& values, double centre)
{
    const std::size_t n = values.size();
    const auto magnitude = [&](std::size_t i) { return std::abs(values[i] - centre); };
    const auto firstOther =
        std::find_if(values.begin(), values.end(), [&](double x) { return !(x - centre < 0.0); });
    const auto negatives = static_cast<std::size_t>(firstOther - values.begin());

    DeviationRanks ranks;
    std::size_t below = 0; // negative deviations that rank below the one at i
    for (std::size_t i = negatives; i < n; ++i) {
        while (below < negatives && magnitude(negatives - 1 - below) <= magnitude(i))
            ++below;
        if (values[i] - centre > 0.0)
            ranks.positiveRankSum += static_cast<double>(i - negatives + below + 1);
    }
    const auto smaller = [&](std::size_t i) { return magnitude(i) < magnitude(0); };
    for (std::size_t i = 0; i < n; ++i)
        ranks.rankOfSmallest += smaller(i) ? 1.0 : 0.0;
    ranks.rankOfSmallest += 1.0;
    return ranks;
}

/// How far trimming came.
struct Trimming
{
    KXStatus status;
    int missing = 0;
    double centre = 0.0; ///< of the last trimmed studies
    bool hasConverged = true;
};

/// Trims and re-estimates until the number of missing studies no longer changes, at most `maxIter` times.
Trimming Trim(const TrimOrder& ordered, const MATrimFillChoice& choice)
{
    Trimming trimming;
    for (int iteration = 1; iteration <= choice.maxIter; ++iteration) {
        const std::size_t kept = ordered.values.size() - static_cast<std::size_t>(trimming.missing);
        const MAPooledModel model =
            PoolEffects({{ordered.values.data(), kept}, {ordered.variances.data(), kept}}, choice.trimming);
        trimming.status = model.status;
        if (model.status.IsError())
            break;
        trimming.centre = model.effect.estimate;
        const int missing = MissingStudies(ordered.values, trimming.centre, choice.method);
        trimming.hasConverged = std::exchange(trimming.missing, missing) == missing;
        if (trimming.hasConverged)
            break;
    }
    return trimming;
}

/// Mirror images of the `count` most extreme studies about the centre.
MAImputedStudies MirrorStudies(const TrimOrder& ordered, int count, double centre)
{
    MAImputedStudies imputed;
    for (std::size_t j = 1; j <= static_cast<std::size_t>(count); ++j) {
        const std::size_t mirrored = ordered.values.size() - j;
        imputed.effectSize.push_back(ordered.sign * (2.0 * centre - ordered.values[mirrored]));
        imputed.variance.push_back(ordered.variances[mirrored]);
        imputed.stdError.push_back(std::sqrt(ordered.variances[mirrored]));
    }
    return imputed;
}

std::vector<double> Joined(std::vector<double> values, const std::vector<double>& more)
{
    values.insert(values.end(), more.begin(), more.end());
    return values;
}

/// Sum of products, about their means, of effect size and standard error, each weighted by 1 / variance. The
/// errors are counted from the first one, so that equal ones give 0 and not the sign of a rounding error.
double PrecisionCovariance(const MAStudies& studies)
{
    const auto n = static_cast<double>(studies.Count());
    const auto weightedEffect = [&](std::size_t i) { return studies.effectSize[i] / studies.variance[i]; };
    const auto weightedError = [&](std::size_t i) {
        return studies.tests[i].stdError / studies.variance[i] -
               studies.tests[0].stdError / studies.variance[0];
    };
    double effectMean = 0.0;
    double errorMean = 0.0;
    for (std::size_t i = 0; i < studies.Count(); ++i) {
        effectMean += weightedEffect(i) / n;
        errorMean += weightedError(i) / n;
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < studies.Count(); ++i)
        sum += (weightedEffect(i) - effectMean) * (weightedError(i) - errorMean);
    return sum;
}

} // namespace

MATrimAndFill TrimAndFillStudies(const MAStudies& studies, const MATrimFillChoice& choice)
{
    const TrimOrder ordered = OrderForTrimming(studies, choice.side);
    const Trimming trimming = Trim(ordered, choice);
    MATrimAndFill result;
    result.status = trimming.status;
    if (result.status.IsError())
        return result;
    result.hasConverged = trimming.hasConverged;
    result.imputedCount = trimming.missing;
    if (trimming.missing == 0)
        return result;
    result.imputed = MirrorStudies(ordered, trimming.missing, trimming.centre);
    const MAPooledModel filled = PoolEffects({Joined(studies.effectSize, result.imputed.effectSize),
                                              Joined(studies.variance, result.imputed.variance)},
                                             choice.filled);
    result.status = filled.status;
    if (!result.status.IsError())
        result.filled = filled;
    return result;
}

MAConst::TRIMFSIDE SuggestedSide(const MAStudies& studies, double slope)
{
    const bool isSlopeKnown = !KXMV::IsMissing(slope) && slope != 0.0;
    return (isSlopeKnown ? slope : PrecisionCovariance(studies)) > 0.0 ? MAConst::TRIM_SIDE_LARGEST
                                                                       : MAConst::TRIM_SIDE_SMALLEST;
}

int MissingStudies(std::vector<double> values, double centre, MAConst::TRIMFMETHOD method)
{
    if (values.empty())
        return 0;
    if (!std::is_sorted(values.begin(), values.end()))
        std::sort(values.begin(), values.end());
    // A mean lies among its values. Rounding may put that of equal ones beside them, and all would deviate.
    const DeviationRanks ranks = RankDeviations(values, std::clamp(centre, values.front(), values.back()));
    const auto n = static_cast<double>(values.size());
    const double t = ranks.positiveRankSum;
    double missing = 0.0;
    if (method == MAConst::TRIM_LINEAR)
        missing = (4.0 * t - n * (n + 1.0)) / (2.0 * n - 1.0);
    else if (method == MAConst::TRIM_RUN)
        missing = n - ranks.rankOfSmallest - 1.0;
    else
        missing = n - 0.5 - std::sqrt(2.0 * (n * n - 2.0 * t) + 0.25);
    // The root is not a number for strongly skewed data: no study is missing then.
    return missing > 0.0 ? static_cast<int>(std::round(missing)) : 0;
}

} // namespace MA_NAMESPACE

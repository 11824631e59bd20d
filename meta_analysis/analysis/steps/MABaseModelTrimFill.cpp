// Trim-and-fill (Duval and Tweedie 2000, Biometrics 56, 455-463).

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/models/MAModelRows.h"
#include "meta_analysis/settings/Guarded.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace MA_NAMESPACE {

namespace {

/// The studies on the scale of the trimmed side, ascending: the largest values are the ones to trim.
struct TrimOrder
{
    std::vector<double> values;
    std::vector<double> variances;
};

TrimOrder OrderForTrimming(const MAEffectColumns& effects, double sign)
{
    std::vector<std::size_t> order(effects.effectSize.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return sign * effects.effectSize[a] < sign * effects.effectSize[b];
    });
    TrimOrder ordered;
    for (const std::size_t study : order) {
        ordered.values.push_back(sign * effects.effectSize[study]);
        ordered.variances.push_back(effects.variance[study]);
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

} // namespace

int MABaseModel::CalcN0(std::vector<double> values, MAConst::TRIMFMETHOD method) const
{
    if (values.empty() || results_.models.empty())
        return 0;
    if (!std::is_sorted(values.begin(), values.end()))
        std::sort(values.begin(), values.end());
    // A mean lies among its values. Rounding may put that of equal ones beside them, and all would deviate.
    const double centre = std::clamp(results_.models.front().estimate, values.front(), values.back());
    const DeviationRanks ranks = RankDeviations(values, centre);
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

MAConst::TRIMFSIDE MABaseModel::GetTRimFillSide() const
{
    return trimmedSide_ == MAConst::TRIM_SIDE_AUTO ? SideToTrim() : trimmedSide_;
}

MAConst::TRIMFSIDE MABaseModel::SideToTrim() const
{
    if (settings_->GetTrimFillSide() != MAConst::TRIM_SIDE_AUTO)
        return settings_->GetTrimFillSide();
    const double slope = regressionTest_.coefficient;
    if (!KXMV::IsMissing(slope) && slope != 0.0)
        return slope > 0.0 ? MAConst::TRIM_SIDE_LARGEST : MAConst::TRIM_SIDE_SMALLEST;
    return PrecisionCovariance() > 0.0 ? MAConst::TRIM_SIDE_LARGEST : MAConst::TRIM_SIDE_SMALLEST;
}

/// Sum of products, about their means, of effect size and standard error, each weighted by 1 / variance. The
/// errors are counted from the first one, so that equal ones give 0 and not the sign of a rounding error.
double MABaseModel::PrecisionCovariance() const
{
    const MAEffectColumns& effects = studies_.effects;
    const auto n = static_cast<double>(studies_.Count());
    const auto weightedEffect = [&](std::size_t i) { return effects.effectSize[i] / effects.variance[i]; };
    const auto weightedError = [&](std::size_t i) {
        return effects.stdError[i] / effects.variance[i] - effects.stdError[0] / effects.variance[0];
    };
    double effectMean = 0.0;
    double errorMean = 0.0;
    for (std::size_t i = 0; i < studies_.Count(); ++i) {
        effectMean += weightedEffect(i) / n;
        errorMean += weightedError(i) / n;
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < studies_.Count(); ++i)
        sum += (weightedEffect(i) - effectMean) * (weightedError(i) - errorMean);
    return sum;
}

KXStatus MABaseModel::TrimFill()
{
    const bool wasRunning = trimFillRunning_;
    trimFillRunning_ = true;
    const KXStatus result = Guarded(status_, [this] { return TrimAndFill(); });
    trimFillRunning_ = wasRunning;
    return result;
}

KXStatus MABaseModel::TrimAndFill()
{
    filledResults_ = results_;
    if (studies_.Count() == 0)
        return SetError(MAStatusCode::NO_ANALYSED_STUDY);
    trimmedSide_ = SideToTrim();
    const double sign = trimmedSide_ == MAConst::TRIM_SIDE_LARGEST ? 1.0 : -1.0;
    const MAEffectColumns& effects = studies_.effects;
    if (results_.models.empty() && BuildModel(effects.effectSize, effects.variance).IsError())
        return status_;

    const TrimOrder ordered = OrderForTrimming(effects, sign);
    if (TrimIteratively(ordered.values, ordered.variances).IsError())
        return status_;
    if (imputedCount_ == 0) {
        results_ = filledResults_;
        return status_;
    }
    return FillAndPool(ordered.values, ordered.variances, sign);
}

/// Trims and re-estimates until the number of missing studies no longer changes; leaves it in `imputedCount_`
/// and the last trimmed model in the lists.
KXStatus MABaseModel::TrimIteratively(const std::vector<double>& values, const std::vector<double>& variances)
{
    modelType_ = settings_->GetTFModelType();
    tau2Estimator_ = settings_->GetTFEstTauType();
    knappHartung_ = settings_->GetTFKnapHartAdjustType();

    const int maxIter = settings_->GetMaxIter();
    int missing = 0;
    for (int iteration = 1; iteration <= maxIter; ++iteration) {
        const auto kept = static_cast<std::ptrdiff_t>(values.size()) - missing;
        ResetEstESStat(true);
        if (BuildModel({values.begin(), values.begin() + kept}, {variances.begin(), variances.begin() + kept})
                .IsError())
            return status_;
        const int previous = std::exchange(missing, CalcN0(values, settings_->GetTrimFillMethod()));
        if (missing == previous)
            break;
        if (iteration == maxIter)
            AddWarning(MAStatusCode::TRIM_FILL_NOT_CONVERGED);
    }
    imputedCount_ = missing;
    modelType_ = settings_->GetModelType();
    tau2Estimator_ = settings_->GetEstTauType();
    knappHartung_ = settings_->GetKnapHartAdjustType();
    return status_;
}

/// Mirrors the trimmed studies about the centre of the rest, and pools them with all others by the model of
/// the run; its results take the place of the overall model's in the trim-and-fill lists.
KXStatus MABaseModel::FillAndPool(const std::vector<double>& values, const std::vector<double>& variances,
                                  double sign)
{
    const double centre = results_.models.front().estimate;
    std::vector<double> filledEffects = studies_.effects.effectSize;
    std::vector<double> filledVariances = studies_.effects.variance;
    for (std::size_t j = 1; j <= static_cast<std::size_t>(imputedCount_); ++j) {
        const std::size_t mirrored = values.size() - j;
        const double effect = sign * (2.0 * centre - values[mirrored]);
        imputed_.effectSize.push_back(effect);
        imputed_.variance.push_back(variances[mirrored]);
        imputed_.stdError.push_back(std::sqrt(variances[mirrored]));
        filledEffects.push_back(effect);
        filledVariances.push_back(variances[mirrored]);
    }
    ResetEstESStat(true);
    if (BuildModel(filledEffects, filledVariances).IsError())
        return status_;
    WarnOfFilledTau2(filledEffects, filledVariances);
    if (settings_->GetBinaryEstType() != MAConst::BIN_RISK_DIFFERENCE &&
        settings_->GetOutcomesType() == MAConst::OUTCOME_BINARY && results_.exponentiated.empty())
        results_.exponentiated.push_back(Exponentiated(results_.models.front()));
    std::swap(results_, filledResults_);
    return status_;
}

/// The filled model is a reported one, unlike those of the trimming.
void MABaseModel::WarnOfFilledTau2(const std::vector<double>& effectSizes,
                                   const std::vector<double>& variances)
{
    if (modelType_ != MAConst::MODEL_RANDOM || settings_->GetTau2Search() == MAConst::TAU2_SEARCH_GLOBAL)
        return;
    MARandomEffectModel model = NewStepModel(effectSizes, variances);
    model.EstimateMeanESStats();
    WarnOfDoubtfulTau2(model);
}

} // namespace MA_NAMESPACE

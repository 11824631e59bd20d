#include "meta_analysis/bulk/MALanePooler.h"

#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/pooling/MATau2Outcome.h"
#include "meta_analysis/settings/MAEstimators.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace MA_NAMESPACE {

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::size_t columnSize = MALanePooler::mostStudies * mostLanes;
constexpr std::size_t registerSize = mostLanes; // in doubles

/// The first entry that begins a register.
double* Aligned(double* values)
{
    const auto address = reinterpret_cast<std::uintptr_t>(values);
    const std::size_t over = address / sizeof(double) % registerSize;
    return over == 0 ? values : values + (registerSize - over);
}

bool IsSearched(const MARandomEffectsChoice& choice)
{
    return IsIterative(choice.estimator) && choice.search == MAConst::TAU2_SEARCH_GLOBAL;
}

bool HasInterval(const MARandomEffectsChoice& choice, const MAWantedResults& wanted)
{
    return wanted.tau2Interval && choice.tau2Interval != MAConst::TAU2_INTERVAL_NONE;
}

} // namespace

bool MALanePooler::Takes(const MAFixedEffectChoice&, const MAWantedResults& wanted)
{
    return !wanted.heterogeneityBounds;
}

/// The others are scored, have sums of another kind, or take the likelihood.
bool MALanePooler::Takes(const MARandomEffectsChoice& choice, const MAWantedResults& wanted)
{
    const bool hasEstimator =
        IsSearched(choice) || choice.estimator == MAConst::TAU2_DL || choice.estimator == MAConst::TAU2_HS;
    const bool takesLikelihood =
        wanted.likelihood ||
        (HasInterval(choice, wanted) && choice.tau2Interval == MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD);
    return hasEstimator && !takesLikelihood && !wanted.heterogeneityBounds;
}

MALanePooler::MALanePooler(const MALaneKernels& kernels)
    : kernels_(kernels),
      memory_(4 * columnSize + registerSize),
      effects_(Aligned(memory_.data())),
      variances_(effects_ + columnSize),
      distances_(variances_ + columnSize),
      otherVariances_(distances_ + columnSize)
{}

void MALanePooler::Load(std::span<const MAGatheredSet> sets)
{
    const std::size_t lanes = kernels_.laneCount;
    sets_ = sets;
    count_ = 0;
    for (const MAGatheredSet& set : sets)
        count_ = std::max(count_, set.Count());
    for (std::size_t lane = 0; lane < lanes; ++lane) {
        const MAEffects studies = lane < sets.size() ? sets[lane].Studies() : MAEffects();
        counts_[lane] = static_cast<double>(studies.Count());
        isLeft_[lane] = studies.Count() < 2;
        for (std::size_t i = 0; i < count_; ++i) {
            const bool isStudy = i < studies.Count();
            effects_[i * lanes + lane] = isStudy ? studies.effectSizes[i] : 0.0;
            variances_[i * lanes + lane] = isStudy ? studies.variances[i] : infinity;
        }
    }
}

/// Sets the model of each lane that is not left to `value(lane)`.
template <class Value>
void MALanePooler::ForEachPooled(Value value)
{
    for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
        if (isLeft_[lane])
            models_[lane].reset();
        else
            models_[lane].emplace(value(lane));
    }
}

/// What is not computed is 0. A lane that comes to no finite number may owe that to the studies of weight 0
/// behind it: 0 times infinity.
bool MALanePooler::IsFinite(std::size_t lane) const
{
    return std::isfinite(mean_[lane]) && std::isfinite(weightSum_[lane]) && std::isfinite(tau2_[lane]) &&
           std::isfinite(residualSum_[lane]) && std::isfinite(q_[lane]) && std::isfinite(fixedTrace_[lane]);
}

const MALanePooler::Models& MALanePooler::Pool(const MAFixedEffectChoice& choice,
                                               const MAWantedResults& wanted, MAQuantiles& quantiles)
{
    const MALaneValues zero{};
    kernels_.weightedMean(Studies(), zero, mean_, weightSum_);
    if (wanted.homogeneity || wanted.heterogeneity)
        kernels_.cochranQ(Studies(), mean_, q_);
    LeaveWhatIsNotFinite();
    ForEachPooled([&](std::size_t lane) {
        return FixedEffectModel({sets_[lane].Count(), mean_[lane], weightSum_[lane], q_[lane]}, choice,
                                wanted, quantiles);
    });
    return models_;
}

void MALanePooler::LeaveWhatIsNotFinite()
{
    for (std::size_t lane = 0; lane < sets_.size(); ++lane)
        isLeft_[lane] = isLeft_[lane] || !IsFinite(lane);
}

const MALanePooler::Models& MALanePooler::Pool(const MARandomEffectsChoice& choice,
                                               const MAWantedResults& wanted, MAQuantiles& quantiles)
{
    const MALaneValues zero{};
    if (IsSearched(choice) || HasInterval(choice, wanted))
        MakeCurves(choice);
    EstimateTau2(choice);
    kernels_.weightedMean(Studies(), tau2_, mean_, weightSum_);
    if (choice.knappHartung != MAConst::KNAPP_HARTUNG_NONE)
        kernels_.residualSum(Studies(), mean_, tau2_, residualSum_);
    if (wanted.homogeneity || wanted.heterogeneity) {
        MALaneValues fixedMean;
        kernels_.weightedMean(Studies(), zero, fixedMean, fixedWeightSum_);
        kernels_.residualSum(Studies(), fixedMean, zero, q_);
        kernels_.pairSum(Studies(), fixedWeightSum_, fixedTrace_);
    }
    LeaveWhatIsNotFinite();
    if (HasInterval(choice, wanted))
        FindIntervals(quantiles);
    ForEachPooled([&](std::size_t lane) {
        MAPooledModel model =
            RandomEffectsModel({sets_[lane].Count(), estimates_[lane], mean_[lane], weightSum_[lane],
                                residualSum_[lane], q_[lane], fixedTrace_[lane]},
                               choice, wanted, quantiles);
        if (HasInterval(choice, wanted)) {
            model.tau2Results.lower = bounds_[lane].lower;
            model.tau2Results.upper = bounds_[lane].upper;
        }
        return model;
    });
    return models_;
}

void MALanePooler::MakeCurves(const MARandomEffectsChoice& choice)
{
    const std::size_t lanes = kernels_.laneCount;
    std::copy_n(variances_, count_ * lanes, otherVariances_);
    std::fill_n(distances_, count_ * lanes, 0.0);
    for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
        if (isLeft_[lane])
            continue;
        const MAPooledCurve& curve = curves_[lane].emplace(CurveOf(sets_[lane].Studies(), choice.estimator));
        unit_[lane] = curve.Unit();
        minVariance_[lane] = curve.Bounds().minVariance;
        otherVariances_[curve.Reference() * lanes + lane] = infinity;
        for (std::size_t i = 0; i < sets_[lane].Count(); ++i)
            distances_[i * lanes + lane] = curve.EffectFromReference(i);
    }
}

/// Leaves a set for which a search has no estimate.
void MALanePooler::EstimateTau2(const MARandomEffectsChoice& choice)
{
    if (!IsSearched(choice)) {
        MALaneValues found;
        const auto compute =
            choice.estimator == MAConst::TAU2_DL ? kernels_.derSimonianLairdTau2 : kernels_.hunterSchmidtTau2;
        compute(Studies(), counts_, found);
        for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
            isLeft_[lane] = isLeft_[lane] || !std::isfinite(found[lane]);
            estimates_[lane] = ClosedFormTau2(found[lane]);
        }
    } else if (HasLikelihood(choice.estimator)) {
        SearchMaxima(LikelihoodOf(choice.estimator));
    } else {
        SearchRoots();
    }
    for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
        tau2_[lane] = estimates_[lane].tau2;
        isLeft_[lane] = isLeft_[lane] || !std::isfinite(tau2_[lane]);
    }
}

MALaneCurves MALanePooler::Curves() const
{
    return {{distances_, otherVariances_, count_}, unit_, minVariance_};
}

void MALanePooler::SearchMaxima(MALikelihoodType type)
{
    for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
        maxima_[lane].reset();
        if (isLeft_[lane])
            continue;
        const MACurveBounds& bounds = curves_[lane]->Bounds();
        if (AreUsable(bounds) && CanRise(bounds))
            maxima_[lane].emplace(bounds, curves_[lane]->MomentEstimate());
        else
            estimates_[lane] = EstimateOf(FindLikelihoodMaximum(*curves_[lane], 0.0), unit_[lane]);
    }
    RunSideBySide<MASoleMaximumSearch, MALikelihoodTerms>(
        std::span(maxima_).first(sets_.size()),
        [&](const MALaneValues& t, MALikelihoodTerms* terms) { kernels_.terms(Curves(), t, type, terms); });
    for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
        if (maxima_[lane])
            estimates_[lane] = EstimateOf(maxima_[lane]->Solution(), unit_[lane]);
    }
}

void MALanePooler::SearchRoots()
{
    std::array<std::optional<MAQRootSearch>, mostLanes> searches;
    for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
        if (!isLeft_[lane])
            searches[lane].emplace(curves_[lane]->Bounds(), curves_[lane]->Bounds().residualDf,
                                   curves_[lane]->MomentEstimate());
    }
    RunQSearches<MAQRootSearch>(searches);
    for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
        if (searches[lane])
            estimates_[lane] = EstimateOf(searches[lane]->Solution(), unit_[lane]);
    }
}

void MALanePooler::FindIntervals(MAQuantiles& quantiles)
{
    std::array<std::optional<MAQProfileSearch>, mostLanes> searches;
    for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
        if (!isLeft_[lane])
            searches[lane].emplace(curves_[lane]->Bounds(), quantiles);
    }
    RunQSearches<MAQProfileSearch>(searches);
    for (std::size_t lane = 0; lane < sets_.size(); ++lane) {
        if (searches[lane])
            bounds_[lane] = searches[lane]->Found(unit_[lane]);
    }
}

template <class Search>
void MALanePooler::RunQSearches(std::span<std::optional<Search>> searches)
{
    RunSideBySide<Search, MAGeneralizedQ>(
        searches, [&](const MALaneValues& t, MAGeneralizedQ* q) { kernels_.generalizedQ(Curves(), t, q); });
}

} // namespace MA_NAMESPACE

#pragma once

#include "meta_analysis/pooling/MALikelihoodCurve.h"
#include "meta_analysis/settings/MAConst.h"

#include <cstddef>

namespace MA_NAMESPACE {

/// The most sets that any processor computes side by side.
constexpr std::size_t mostLanes = 8;

/// A number for each of `laneCount` sets.
using MALaneValues = double[mostLanes];

/// Studies of `laneCount` sets side by side: entry i * laneCount + lane belongs to study i of the set of a
/// lane. Behind the studies of a shorter set stand some of effect 0 and infinite variance, whose weight of 0
/// changes no bit of a sum.
struct MALaneStudies
{
    const double* effectSizes;
    const double* variances;
    std::size_t count;
};

/// What `MAPooledCurve` sums: effects counted from that of the reference study, which has infinite variance
/// here, for it is not among those that are summed.
struct MALaneCurves
{
    MALaneStudies studies;
    const double* unit;
    const double* minVariance;
};

/// The sums of the models of one set, for several sets at once in the vector registers of a processor. Every
/// function computes for each lane what the template of its name computes for one set, to the last bit.
struct MALaneKernels
{
    std::size_t laneCount;
    void (*weightedMean)(const MALaneStudies& studies, const double* tau2, double* mean, double* weightSum);
    void (*residualSum)(const MALaneStudies& studies, const double* mean, const double* tau2, double* sum);
    void (*cochranQ)(const MALaneStudies& studies, const double* mean, double* q);
    void (*pairSum)(const MALaneStudies& studies, const double* weightSum, double* sum);
    void (*hunterSchmidtTau2)(const MALaneStudies& studies, const double* k, double* tau2);
    void (*derSimonianLairdTau2)(const MALaneStudies& studies, const double* k, double* tau2);
    void (*terms)(const MALaneCurves& curves, const double* t, MALikelihoodType type,
                  MALikelihoodTerms* terms);
    void (*generalizedQ)(const MALaneCurves& curves, const double* t, MAGeneralizedQ* q);
};

} // namespace MA_NAMESPACE

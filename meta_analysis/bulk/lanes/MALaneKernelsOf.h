#pragma once

#include "meta_analysis/bulk/lanes/MALaneKernels.h"
#include "meta_analysis/bulk/lanes/MALaneRegister.h"
#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/pooling/MAMomentTau2.h"
#include "meta_analysis/pooling/MAPooledCurveSums.h"

namespace MA_NAMESPACE {

/// The kernels of registers `Lanes`.
template <class Lanes>
struct MALaneKernelsOf : MALaneRegister<Lanes>
{
    using MALaneRegister<Lanes>::laneCount;
    using MALaneRegister<Lanes>::Load;
    using MALaneRegister<Lanes>::Store;

    struct Column
    {
        const double* values;
        Lanes operator[](std::size_t i) const { return Load(values + i * laneCount); }
    };

    /// What the templates take in place of `MAEffects`.
    struct Effects
    {
        explicit Effects(const MALaneStudies& studies)
            : effectSizes{studies.effectSizes}, variances{studies.variances}, count(studies.count)
        {}
        std::size_t Count() const { return count; }

        Column effectSizes;
        Column variances;
        std::size_t count;
    };

    static void PutWeightedMean(const MALaneStudies& studies, const double* tau2, double* mean,
                                double* weightSum)
    {
        const MAWeightedMeanOf<Lanes> sums = WeightedMean(Effects(studies), Load(tau2));
        Store(sums.Mean(), mean);
        Store(sums.weightSum, weightSum);
    }
    static void PutResidualSum(const MALaneStudies& studies, const double* mean, const double* tau2,
                               double* sum)
    {
        Store(ResidualSum(Effects(studies), Load(mean), Load(tau2)), sum);
    }
    static void PutCochranQ(const MALaneStudies& studies, const double* mean, double* q)
    {
        Store(CochranQ(Effects(studies), Load(mean)), q);
    }
    static void PutPairSum(const MALaneStudies& studies, const double* weightSum, double* sum)
    {
        Store(PairSum(Effects(studies), Load(weightSum)), sum);
    }
    static void PutHunterSchmidtTau2(const MALaneStudies& studies, const double* k, double* tau2)
    {
        Store(HunterSchmidtTau2(Effects(studies), Load(k)), tau2);
    }
    static void PutDerSimonianLairdTau2(const MALaneStudies& studies, const double* k, double* tau2)
    {
        Store(DerSimonianLairdTau2(Effects(studies), Load(k)), tau2);
    }

    template <template <class> class Sums>
    static Sums<Lanes> SumOthers(const MALaneCurves& curves, const Lanes& t)
    {
        const Effects others(curves.studies);
        const Lanes unit = Load(curves.unit);
        const Lanes shift = t * unit;
        Sums<Lanes> sums;
        for (std::size_t i = 0; i < others.count; ++i)
            sums.Add(unit / (others.variances[i] + shift), others.effectSizes[i]);
        return sums;
    }
    static Lanes WeightOfReference(const MALaneCurves& curves, const Lanes& t)
    {
        return 1.0 / (Load(curves.minVariance) + t);
    }
    static void PutTerms(const MALaneCurves& curves, const double* t, MALikelihoodType type,
                         MALikelihoodTerms* terms)
    {
        const Lanes at = Load(t);
        const MALikelihoodTermsOf<Lanes> found =
            TermsOf(SumOthers<MASlopeSums>(curves, at), WeightOfReference(curves, at), type);
        for (std::size_t lane = 0; lane < laneCount; ++lane)
            terms[lane] = {found.fit[lane], found.fitSlope[lane], found.trace[lane], found.traceSlope[lane]};
    }
    static void PutGeneralizedQ(const MALaneCurves& curves, const double* t, MAGeneralizedQ* q)
    {
        const Lanes at = Load(t);
        const MAGeneralizedQOf<Lanes> found =
            GeneralizedQOf(SumOthers<MAQSums>(curves, at), WeightOfReference(curves, at));
        for (std::size_t lane = 0; lane < laneCount; ++lane)
            q[lane] = {found.value[lane], found.slope[lane]};
    }

    static constexpr MALaneKernels kernels = {
        laneCount,      PutWeightedMean,      PutResidualSum,          PutCochranQ,
        PutPairSum,     PutHunterSchmidtTau2, PutDerSimonianLairdTau2, PutTerms,
        PutGeneralizedQ};
};

} // namespace MA_NAMESPACE

#pragma once

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAOutcomeMeasures.h"

#include <span>
#include <vector>

namespace MA_NAMESPACE {

/// The value on the natural scale of one on the analysis scale. Values beyond the range of a transformation
/// become the nearest value that has one: 0 or 1 of a proportion, 0 of a rate. A missing value stays missing.
///
/// `size` is that of the study, or of studies pooled their harmonic mean, where the scale depends on it (else
/// it is not used): n for proportions, person-time for rates; without one the value is missing. For
/// proportions this is the inverse of Miller (1978), The American Statistician 32, 138.
double ToNatural(MAScale scale, double value, double size);

/// The value on the analysis scale; infinite for one that the natural scale does not have.
double FromNatural(MAScale scale, double natural, double size);

/// The harmonic mean of the sizes of studies. A study's size follows from its variance, which is 1 / (4n + 2)
/// for proportions and 1 / (4t) for rates, so that mirror images of trim-and-fill have one too.
class MAHarmonicSize
{
public:
    explicit MAHarmonicSize(MAScale scale) : scale_(scale) {}

    void Add(double variance)
    {
        if (DependsOnSize(scale_))
            AddSizeOf(variance);
    }
    void Add(const MAHarmonicSize& others)
    {
        count_ += others.count_;
        inverseSum_ += others.inverseSum_;
    }
    /// Missing without studies, when a variance is none of the scale, and when the scale needs no size.
    double Mean() const
    {
        const double mean = count_ / inverseSum_;
        return mean > 0.0 ? mean : KXMV::Missing();
    }

private:
    void AddSizeOf(double variance);

    MAScale scale_;
    double count_ = 0.0;
    double inverseSum_ = 0.0;
};

double HarmonicSize(MAScale scale, std::span<const double> variances);

/// The same without each of the studies in turn, missing where the scale needs no size.
std::vector<double> HarmonicSizesWithoutEach(MAScale scale, std::span<const double> variances);

} // namespace MA_NAMESPACE

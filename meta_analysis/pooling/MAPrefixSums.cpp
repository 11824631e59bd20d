#include "meta_analysis/pooling/MAPrefixSums.h"

#include "meta_analysis/inference/MAWeightedMean.h"
#include "meta_analysis/pooling/MALikelihoodCurve.h"

#include <algorithm>
#include <cmath>

namespace MA_NAMESPACE {

namespace {

/// How far from its centre a power series is used, relative to the smallest v + t: as in `MADeletionSums`.
constexpr double seriesReach = 1.0 / 64.0;

double LeastOf(std::span<const double> values)
{
    return values.empty() ? 1.0 : *std::min_element(values.begin(), values.end());
}

double MeanOf(std::span<const double> values)
{
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return values.empty() ? 0.0 : sum / static_cast<double>(values.size());
}

} // namespace

MAPrefixSums::MAPrefixSums(const MAEffects& studies)
    : studies_(studies),
      unit_(PowerOf4Below(LeastOf(studies.variances))),
      rootOfUnit_(std::sqrt(unit_)),
      origin_(MeanOf(studies.effectSizes)),
      leastVariance_(LeastOf(studies.variances) / unit_)
{
    centres_.reserve(mostCentres);
}

double MAPrefixSums::Effect(std::size_t study) const
{
    return (studies_.effectSizes[study] - origin_) / rootOfUnit_;
}

void MAPrefixSums::Add(std::size_t study, Centre& centre) const
{
    const double weight = 1.0 / (Variance(study) + centre.at);
    const double effect = Effect(study);
    double power = 1.0;
    for (std::array<double, 3>& sums : centre.series) {
        power *= weight;
        sums[0] += power;
        sums[1] += power * effect;
        sums[2] += power * effect * effect;
    }
}

void MAPrefixSums::Append()
{
    for (Centre& centre : centres_)
        Add(count_, centre);
    ++count_;
}

MAPrefixSums::Centre& MAPrefixSums::NewCentre(double t)
{
    if (centres_.size() == mostCentres)
        centres_.erase(
            std::min_element(centres_.begin(), centres_.end(),
                             [](const Centre& a, const Centre& b) { return a.lastUse < b.lastUse; }));
    centres_.push_back({t, seriesReach * (t + leastVariance_), 0, {}});
    for (std::size_t study = 0; study < count_; ++study)
        Add(study, centres_.back());
    return centres_.back();
}

MAPrefixSums::Centre& MAPrefixSums::CentreFor(double t)
{
    const auto found = std::find_if(centres_.begin(), centres_.end(), [&](const Centre& centre) {
        return std::abs(t - centre.at) <= centre.reach;
    });
    return found == centres_.end() ? NewCentre(t) : *found;
}

/// S_n(c + x) = sum over m of (n + m - 1 over m) (-x)^m S_{n+m}(c), nested, so that the small terms are added
/// first.
MAPrefixMoments MAPrefixSums::At(double t)
{
    Centre& centre = CentreFor(t);
    centre.lastUse = ++uses_;
    const double x = t - centre.at;
    std::array<std::array<double, 3>, MAPrefixMoments::powers> sums{};
    for (std::size_t n = 0; n < sums.size(); ++n)
        for (std::size_t m = terms - n; m-- > 0;) {
            const double ratio = -x * static_cast<double>(n + m + 1) / static_cast<double>(m + 1);
            for (std::size_t j = 0; j < 3; ++j)
                sums[n][j] = centre.series[n + m][j] + ratio * sums[n][j];
        }
    return {{sums[0][0], sums[1][0], sums[2][0]},
            {sums[0][1], sums[1][1], sums[2][1]},
            {sums[0][2], sums[1][2], sums[2][2]}};
}

} // namespace MA_NAMESPACE

#include "SimulatedStudies.h"

#include <cmath>
#include <random>

SimulatedStudies SimulateStudies(std::size_t count)
{
    constexpr double mean = 0.3;
    constexpr double betweenStudyVariance = 0.1;
    std::mt19937_64 generator(20240229);
    std::uniform_real_distribution<double> log10Variance(-2.0, 0.0);
    std::normal_distribution<double> standardNormal;

    SimulatedStudies studies;
    studies.effectSizes.reserve(count);
    studies.variances.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double variance = std::pow(10.0, log10Variance(generator));
        const double deviation = std::sqrt(variance + betweenStudyVariance) * standardNormal(generator);
        studies.variances.push_back(variance);
        studies.effectSizes.push_back(mean + deviation);
    }
    return studies;
}

#pragma once

#include <cstddef>
#include <vector>

struct SimulatedStudies
{
    std::vector<double> effectSizes;
    std::vector<double> variances;
};

/// `count` studies with variances v log-uniform in [0.01, 1] and effects normal with mean 0.3 and variance
/// v + 0.1. The same count gives the same studies.
SimulatedStudies SimulateStudies(std::size_t count);

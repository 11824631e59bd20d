#pragma once

#include "support/Compare.h"

#include <vector>

/// Effect sizes with variances that strain or break the arithmetic.
struct HostileEffects
{
    const char* name;
    std::vector<double> effects;
    std::vector<double> variances;
    bool isPoolable; ///< the pooled results are finite
};

inline const HostileEffects hostileEffects[] = {
    {"huge", {1e60, -3e60, 7e60}, {1e120, 2e120, 3e120}, true},
    {"tiny", {1e-60, -3e-60, 7e-60}, {1e-120, 2e-120, 3e-120}, true},
    {"equal effects", {0.1, 0.1, 0.1}, {1, 2, 3}, true},
    {"weights of all sizes", {0.1, 0.2, 0.3}, {1e-30, 1, 1e30}, true},
    {"far outlier", {0, 0.1, 1e12}, {1, 1, 1}, true},
    {"infinite variance", {0.1, 0.2, 0.3}, {1, infinity, 1}, true},
    {"overflowing squares", {1e200, -1e200, 0}, {1, 1, 1}, false},
    {"zero variance", {0.1, 0.2, 0.3}, {1, 0, 1}, false},
    {"zero variances, equal effects", {0.1, 0.1}, {0, 0}, false},
    {"negative variance", {0.1, 0.2, 0.3}, {1, -1, 1}, false},
    {"infinite effect", {0.1, infinity, 0.3}, {1, 1, 1}, false},
    {"NaN effect", {0.1, notANumber, 0.3}, {1, 1, 1}, false},
    {"NaN variance", {0.1, 0.2, 0.3}, {1, notANumber, 1}, false},
    {"missing effect", {0.1, missing, 0.3}, {1, 1, 1}, false},
    {"one study without precision", {0.1}, {infinity}, false},
};

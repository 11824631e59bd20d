#pragma once

#include "meta_analysis/platform/common/KXMV.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// One row of a meta-regression's data, made from one record. An object serves one record after another.
struct MADesignRow
{
    std::vector<double> predictors; ///< one value per column of the design
    double dependent = KXMV::Missing();
    double omegaWeight = 1.0; ///< inverse of the study's variance
    bool isBad = false;       ///< an effect of the model could not be coded

    /// Whether there is a study to fit: the weight is positive, and its inverse (the variance) and the
    /// weighted square of the dependent are finite. The square of a missing dependent is infinite.
    bool HasStudy() const
    {
        return omegaWeight > 0.0 && std::isfinite(1.0 / omegaWeight) &&
               std::isfinite(dependent * dependent * omegaWeight);
    }

    void Reset(std::size_t columnCount)
    {
        predictors.assign(columnCount, 0.0);
        dependent = KXMV::Missing();
        omegaWeight = 1.0;
        isBad = false;
    }
};

} // namespace MA_NAMESPACE

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

/// The usable rows of a meta-regression in one contiguous block: k rows of p predictors and the dependent.
struct MADesignRows
{
    std::size_t columnCount = 0;   ///< p
    std::vector<double> cells;     ///< row after row; each the p predictors, then the dependent
    std::vector<double> weights;   ///< omega weight of each row: finite and positive
    std::vector<double> variances; ///< their inverses, kept because every iteration needs them
    std::vector<double> clusters;  ///< value of the cluster variable of each row; empty without one

    std::size_t Count() const { return weights.size(); }
    const double* Row(std::size_t i) const { return cells.data() + i * (columnCount + 1); }
    double Dependent(std::size_t i) const { return Row(i)[columnCount]; }

    void Erase(std::size_t row)
    {
        const auto position = static_cast<std::ptrdiff_t>(row);
        const auto width = static_cast<std::ptrdiff_t>(columnCount + 1);
        cells.erase(cells.begin() + position * width, cells.begin() + (position + 1) * width);
        weights.erase(weights.begin() + position);
        variances.erase(variances.begin() + position);
        if (!clusters.empty())
            clusters.erase(clusters.begin() + position);
    }
};

} // namespace MA_NAMESPACE

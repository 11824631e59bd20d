#pragma once

#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/regression/design/MAOrthonormalColumns.h"
#include "meta_analysis/regression/design/MATriangle.h"
#include "meta_analysis/regression/design/MAWeightedFit.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Weight of a row in a fit, from its omega weight w and the fit's tau² t.
enum class MAWeightMode
{
    Unweighted,   ///< 1
    FixedEffect,  ///< w
    ScaledRandom, ///< t / (1/w + t)
    RandomEffects ///< 1 / (1/w + t)
};

/// Weighted least squares over the rows of a design matrix.
///
/// With X the predictors, W the weights and M = (X'WX)⁻ (zero rows and columns for redundant predictors):
/// b = M X'Wy, leverage h_i = w_i x_i'M x_i. The fit works on the design's orthonormal columns Z, X = ZR;
/// coefficients and their standard errors are carried back by R⁻¹ at the end. Calling order: `Fit`, then the
/// const operations. The design matrix must have its rows cached; it is not owned.
class MARegFit
{
public:
    explicit MARegFit(const MADesignMatrix& design, MAWeightMode mode = MAWeightMode::FixedEffect,
                      double tau2 = 0.0);

    /// Error `ITERATOR_FAILED` when the host cancels. O(k p²), without allocation by row.
    KXStatus Fit();
    /// The same by other weights, for what the design's rows are now, in the memory that there is.
    KXStatus Fit(MAWeightMode mode, double tau2);

    const MADesignMatrix& Design() const { return *design_; }
    /// One entry per row; a weight that is not positive and finite is 0, which leaves the row out of the fit.
    const std::vector<double>& Weights() const { return weights_; }
    /// b, missing for a redundant column.
    const std::vector<double>& Coefficients() const { return coefficients_; }
    const KXBitSet& NonRedundant() const { return columns_->NonRedundant(); }
    /// Columns of the estimated coefficients.
    const std::vector<std::size_t>& EstimatedColumns() const { return columns_->Kept(); }
    int NonRedundantCount() const { return static_cast<int>(columns_->Rank()); }
    int GoodRecordCount() const { return goodRecords_; }
    int BadRecordCount() const { return static_cast<int>(design_->GetTotalRecords()) - goodRecords_; }
    int ResidualDf() const { return goodRecords_ - NonRedundantCount(); }

    /// y - x'b of every row.
    void Residuals(std::vector<double>& residuals) const;
    /// 1 - h of every row, with all its digits also where h is all but 1. O(k p²). `workspace` is any fit.
    void LeverageComplements(MAWeightedFit& workspace, std::vector<double>& complements) const;
    /// sum(w_i r_i²).
    double WeightedResidualSum() const;
    /// R with R'R = Z'WZ.
    const MASquareMatrix& Factor() const { return factor_; }
    /// d = R'⁻¹c of the estimated coefficient c'g at a position of `EstimatedColumns`. The products d_i'd_j
    /// are those of M.
    void Direction(std::size_t position, std::vector<double>& direction) const;
    std::vector<double> Direction(std::size_t position) const;
    /// sqrt(M_jj) of the estimated coefficient at a position of `EstimatedColumns`, and its direction.
    double UnscaledStdError(std::size_t position, std::vector<double>& direction) const;
    double UnscaledStdError(std::size_t position) const;
    /// b₁'M₁⁻¹b₁ of the coefficients other than the intercept, and their number.
    double WaldStatistic() const;
    int TestedCount() const;

    /// l'b for weights l of all parameters, and u with l'Ml = u'u. The parts u of several combinations have
    /// the products of M. Weights of redundant parameters do not count.
    struct Combination
    {
        double value;
        std::vector<double> root;
    };
    Combination Combine(const std::vector<double>& weights) const;

    /// The fit at a row: x'b, its standard error before scaling, and the weight of the row.
    struct Point
    {
        double value;
        double unscaledStdError;
        double weight;
    };
    Point At(const MADesignRow& row) const;

private:
    void WeighRows();
    void ComputeCoefficients();
    std::size_t FirstTested() const { return design_->HasIntercept() && columns_->Rank() > 0 ? 1 : 0; }

    const MADesignMatrix* design_;
    const MAOrthonormalColumns* columns_; ///< the design's
    MAWeightMode mode_;
    double tau2_;
    MAWeightedFit fit_;
    std::vector<double> weights_;
    std::vector<double> coordinates_; ///< g with x'b = z'g, beside the dependent's centre
    MASquareMatrix factor_;           ///< upper triangle R with R'R = Z'WZ
    std::vector<double> coefficients_;
    std::vector<double> direction_; ///< memory for those of the coefficients
    int goodRecords_ = 0;
};

} // namespace MA_NAMESPACE

#pragma once

#include "meta_analysis/effectsize/MAPValue.h"
#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/KXSymMatrix.h"
#include "meta_analysis/regression/MADesignMatrix.h"
#include "meta_analysis/regression/MAProgress.h"

#include <algorithm>
#include <array>
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

/// Overall test of a model's parameters other than the intercept.
struct MAModelTest
{
    double statistic = KXMV::Missing();
    MAPValue pValue;
    int df1 = 0;
    int df2 = 0; ///< of an F test
};

/// A prediction for one record.
struct MAPrediction
{
    double fit = KXMV::Missing();
    double stdError = KXMV::Missing();
    double ciLower = KXMV::Missing();
    double ciUpper = KXMV::Missing();
    double residual = KXMV::Missing();
    double residualStdError = KXMV::Missing();
    double leverage = KXMV::Missing();
};

/// A stretch of a fit's rows, one entry each.
struct MAFittedRows
{
    std::size_t first; ///< number of its first row
    std::size_t count;
    const double* weights;
    const double* residuals;
    const double* leverageComplements; ///< 1 - h; null unless asked for
};

/// Weighted least squares over the rows of a design matrix: what both meta-regression engines and the
/// between-study variance estimators fit.
///
/// With X the predictors, W the weights and M = (X'WX)⁻ (zero rows and columns for redundant predictors):
/// b = M X'Wy, covariance V = scale M, leverage h_i = w_i x_i'M x_i. Calling order: `Fit`, then what is
/// wanted of it. The design matrix must have its rows cached; it is not owned.
class MARegFit
{
public:
    explicit MARegFit(const MADesignMatrix& design, MAWeightMode mode = MAWeightMode::FixedEffect,
                      double tau2 = 0.0);

    /// Takes another tau² for the next fit.
    void SetTau2(double tau2) { tau2_ = tau2; }

    /// Forms and sweeps the cross products. Error 460012 when the host cancels. O(k p²), without allocation
    /// by row.
    KXStatus Fit();
    /// As `Fit`, and also forms X'W²X, for `SquaredHatTrace`.
    KXStatus FitWithSquares();

    /// Corrects the coefficients by the regression of their own residuals, which gives them nearly the digits
    /// of an orthogonalization of the rows, whatever the condition of the cross products.
    void RefineCoefficients();

    /// One entry per row; a weight that is not a finite number is 0, which leaves the row out of the fit.
    const std::vector<double>& Weights() const { return weights_; }
    /// 1 - h of every row, with all its digits also where h is all but 1.
    std::vector<double> LeverageComplements() const;

    /// Calls `visit(rows)` for stretch after stretch, in the order of the rows, of a length at which the
    /// fastest cache holds them. Leverages cost O(p²) a row; each that is more than a half, of which there
    /// are less than 2p, O(k p²), so that its complement has all its digits.
    template <class Visit>
    void VisitRows(bool withLeverages, Visit visit) const;

    /// sum(w_i² g_i) with g_i = x_i'M (X'W²X) M x_i, the diagonal of the squared hat quantity; after
    /// `FitWithSquares`.
    double SquaredHatTrace() const;
    /// sum(w_i r_i²).
    double WeightedResidualSum() const;
    /// sum(w_i (1 - h_i)).
    double WeightedResidualTrace() const;

    /// Dispersion: weighted residual variance, which becomes the scale of the covariance. Warnings 460047
    /// as many good records as parameters, 460048 near zero (1 in both cases).
    KXStatus ComputeDispersion();
    void SetScale(double scale) { scale_ = scale; }
    /// Standard errors, tests and intervals of the coefficients; normal tests unless `useStudentT`.
    void ComputeCoefficientTests(bool useStudentT);
    /// Wald chi-square over the dispersion, or with `asF` the F test with the covariance's scale.
    MAModelTest TestModel(bool asF) const;
    /// Residual heterogeneity Q and its p-value. Warning 460049 without degrees of freedom.
    KXStatus ComputeResidualHeterogeneity();
    /// Residual, its standard error and leverage only for a row with a study.
    MAPrediction Predict(const MADesignRow& row, bool hasStudy, double criticalValue) const;
    /// Half the width of an interval, in standard errors.
    double CriticalValue(bool useStudentT) const;

    const std::vector<double>& Coefficients() const { return coefficients_; }
    const std::vector<double>& StdErrors() const { return stdErrors_; }
    const std::vector<double>& Statistics() const { return statistics_; }
    const std::vector<MAPValue>& PValues() const { return pValues_; }
    const std::vector<double>& LowerLimits() const { return lowerLimits_; }
    const std::vector<double>& UpperLimits() const { return upperLimits_; }
    const KXBitSet& NonRedundant() const { return nonRedundant_; }
    int NonRedundantCount() const { return static_cast<int>(nonRedundant_.Count()); }
    int GoodRecordCount() const { return goodRecords_; }
    int BadRecordCount() const { return static_cast<int>(design_->GetTotalRecords()) - goodRecords_; }
    int ResidualDf() const { return goodRecords_ - NonRedundantCount(); }
    double Dispersion() const { return dispersion_; }
    double ResidualQ() const { return residualQ_; }
    const MAPValue& ResidualQPValue() const { return residualQPValue_; }

private:
    static constexpr std::size_t stretch = 256;

    KXStatus FitRows(bool withSquares);
    void WeighRows(std::size_t first, std::size_t count);
    void AddSquares(std::size_t first, std::size_t count);
    void Solve();
    void SetCoefficients(std::vector<double> coefficients);
    void ComputeResiduals(std::size_t first, std::size_t count, double* residuals) const;
    void ComputeLeverageComplements(std::size_t first, std::size_t count, double* complements) const;
    double ComplementFromOtherRows(std::size_t row) const;
    double FittedValue(const double* predictors) const;
    double ResidualStdError(double leverage, double weight) const;

    const MADesignMatrix* design_;
    MAWeightMode mode_;
    double tau2_;
    MAProgress progress_;
    std::vector<std::size_t> columns_;
    KXSymMatrix crossProducts_;
    KXSymMatrix squaredCrossProducts_; ///< with squared weights, the dependent included
    KXSymMatrix inverse_;              ///< M
    KXBitSet nonRedundant_;
    std::vector<double> weights_;
    std::vector<double> coefficients_; ///< missing for a redundant column
    std::vector<double> effective_;    ///< as above, 0 for a redundant column
    int goodRecords_ = 0;
    double dispersion_ = 1.0;
    double scale_ = 1.0;
    double residualQ_ = KXMV::Missing();
    MAPValue residualQPValue_;
    std::vector<double> stdErrors_;
    std::vector<double> statistics_;
    std::vector<MAPValue> pValues_;
    std::vector<double> lowerLimits_;
    std::vector<double> upperLimits_;
};

template <class Visit>
void MARegFit::VisitRows(bool withLeverages, Visit visit) const
{
    std::array<double, stretch> residuals;
    std::array<double, stretch> complements;
    for (std::size_t first = 0; first < weights_.size(); first += stretch) {
        const std::size_t count = std::min(stretch, weights_.size() - first);
        ComputeResiduals(first, count, residuals.data());
        if (withLeverages)
            ComputeLeverageComplements(first, count, complements.data());
        visit(MAFittedRows{first, count, weights_.data() + first, residuals.data(),
                           withLeverages ? complements.data() : nullptr});
    }
}

} // namespace MA_NAMESPACE

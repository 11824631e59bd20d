#pragma once

#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/regression/design/MAProgress.h"
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

/// Weighted least squares over the rows of a design matrix, with the tests and predictions of a model: what
/// both meta-regression engines fit.
///
/// With X the predictors, W the weights and M = (X'WX)⁻ (zero rows and columns for redundant predictors):
/// b = M X'Wy, covariance V = scale M, leverage h_i = w_i x_i'M x_i. The fit works on the design's
/// orthonormal columns Z, X = ZR; coefficients and their covariance are carried back by R⁻¹ at the end.
/// Calling order: `Fit`, then what is wanted of it. The design matrix must have its rows cached; it is not
/// owned.
class MARegFit
{
public:
    explicit MARegFit(const MADesignMatrix& design, MAWeightMode mode = MAWeightMode::FixedEffect,
                      double tau2 = 0.0);

    /// Error 460012 when the host cancels. O(k p²), without allocation by row.
    KXStatus Fit();

    /// One entry per row; a weight that is not positive and finite is 0, which leaves the row out of the fit.
    const std::vector<double>& Weights() const { return weights_; }
    /// y - x'b of every row.
    std::vector<double> Residuals() const;
    /// 1 - h of every row, with all its digits also where h is all but 1. O(k p²).
    std::vector<double> LeverageComplements() const;
    /// sum(w_i r_i²).
    double WeightedResidualSum() const;

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
    const KXBitSet& NonRedundant() const { return columns_->NonRedundant(); }
    int NonRedundantCount() const { return static_cast<int>(columns_->Rank()); }
    int GoodRecordCount() const { return goodRecords_; }
    int BadRecordCount() const { return static_cast<int>(design_->GetTotalRecords()) - goodRecords_; }
    int ResidualDf() const { return goodRecords_ - NonRedundantCount(); }
    double Dispersion() const { return dispersion_; }
    double ResidualQ() const { return residualQ_; }
    const MAPValue& ResidualQPValue() const { return residualQPValue_; }

private:
    void WeighRows();
    void ComputeCoefficients();
    double StdErrorOf(std::vector<double> direction) const;
    double ResidualStdError(double leverage, double weight) const;

    const MADesignMatrix* design_;
    const MAOrthonormalColumns* columns_; ///< the design's
    MAWeightMode mode_;
    double tau2_;
    MAProgress progress_;
    MAWeightedFit fit_;
    std::vector<double> weights_;
    std::vector<double> coordinates_;  ///< g with x'b = z'g, beside the dependent's centre
    MASquareMatrix factor_;            ///< upper triangle R with R'R = Z'WZ
    std::vector<double> coefficients_; ///< missing for a redundant column
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

} // namespace MA_NAMESPACE

#pragma once

#include "meta_analysis/bulk/MABulkRegression.h"
#include "meta_analysis/inference/MAQuantiles.h"
#include "meta_analysis/pooling/MATau2Results.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/MARegResults.h"
#include "meta_analysis/regression/MARegTests.h"
#include "meta_analysis/regression/MAResidualTau2.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <vector>

namespace MA_NAMESPACE {

/// What of a regression is wanted beside its coefficients and tau².
struct MAWantedRegression
{
    bool tests = true; ///< standard errors, statistics and intervals, and what the covariance takes
    bool pValues = true;
    bool modelTest = true;
    bool heterogeneity = true; ///< Q, I²
    bool rSquare = true;
    bool tau2Interval = true;
    bool status = true; ///< whether tau² is doubtful
};

/// The settings of the model, of which `MASetRegression` makes a design for each thread.
MARegSettings SettingsOf(const MABulkRegression& model, bool hasIntercept);

/// Regresses one set after the other in the same memory, as `MAREAlgorithm` and `MAFEAlgorithm` do one: by
/// the same fits in the same order, but without what is not wanted.
class MASetRegression
{
public:
    /// The settings must outlive the object. `mostRows` is the length of the largest set, by which the
    /// quantiles are remembered.
    MASetRegression(const MARegSettings& settings, const MABulkRegression& model,
                    const MAWantedRegression& wanted, std::size_t columnCount, std::size_t mostRows);

    /// The results of the last set; missing where there are none.
    struct Model
    {
        int status = 0; ///< an error, or else the first warning
        bool isFitted = false;
        double tau2 = 0.0;
        MATau2Results tau2Results;
        bool isAdjusted = false; ///< after Knapp and Hartung
        double scale = 1.0;      ///< of the covariance
        double dispersion = 1.0;
        MAModelTest modelTest;
        MAResidualHeterogeneity residual;
        double rSquare = KXMV::Missing();
    };

    /// Of at least one row.
    const Model& Regress(const MADesignRows& rows);

    const MARegFit& Fit() const { return fit_; }
    /// By the positions of `MARegFit::EstimatedColumns`; of the tests only as far as they are wanted.
    const std::vector<MACoefficientTest>& Tests() const { return tests_; }
    const std::vector<MAPValue>& PValues() const { return pValues_; }
    /// M, whose product with the scale is the covariance.
    double UnscaledCovariance(std::size_t first, std::size_t second) const;

private:
    void RegressRandomEffects();
    void RegressFixedEffects();
    void TestCoefficients(bool useStudentT);
    void TestModel();
    void DescribeHeterogeneity(MAConst::TAU2CONVERGENCE convergence);
    void Warn(int code);

    MABulkRegression choice_;
    MAWantedRegression wanted_;
    std::vector<MAQuantiles::Remembered> remembered_;
    MAQuantiles quantiles_;
    MADesignMatrix design_;
    MAResidualTau2 tau2_;
    MARegFit fit_;
    Model model_;
    std::vector<MACoefficientTest> tests_;
    std::vector<MAPValue> pValues_;
    std::vector<std::vector<double>> directions_;
};

} // namespace MA_NAMESPACE

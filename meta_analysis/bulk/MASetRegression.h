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

    /// Begins with at least one row, up to where the curve is evaluated for the first time.
    void Begin(const MADesignRows& rows);
    const Model& Finish();

    /// After `Begin`, of random effects: the curve that `Finish` evaluates, where its search starts, in its
    /// units, and which evaluations it takes.
    MARegressionCurve& Curve() { return tau2_.Curve(); }
    MAConst::TAU2ESTIMATOR Estimator() const { return choice_.tau2.estimator; }
    /// Whether there is a curve to be evaluated; not after an error of the start.
    bool HasBegun() const { return choice_.isRandom && !(IsSearched() && start_.status.IsError()); }
    bool IsSearched() const;
    double StartOfSearch() { return start_.tau2 / tau2_.Curve().Unit(); }
    bool TakesProfileOfQ() const;
    bool TakesSumsAtZero() const;
    MAQuantiles& Quantiles() { return quantiles_; }

    const MARegFit& Fit() const { return fit_; }
    /// By the positions of `MARegFit::EstimatedColumns`; of the tests only as far as they are wanted.
    const std::vector<MACoefficientTest>& Tests() const { return tests_; }
    const std::vector<MAPValue>& PValues() const { return pValues_; }
    /// M, whose product with the scale is the covariance.
    double UnscaledCovariance(std::size_t first, std::size_t second) const;

private:
    MATau2Estimate EstimateTau2();
    void RegressRandomEffects();
    void RegressFixedEffects();
    void TestCoefficients(bool useStudentT);
    void TestModel();
    bool KeepsCurve() const; ///< for what follows the estimate of tau²
    void DescribeHeterogeneity(MAConst::TAU2CONVERGENCE convergence);
    void Warn(int code);

    MABulkRegression choice_;
    MAWantedRegression wanted_;
    std::vector<MAQuantiles::Remembered> remembered_;
    MAQuantiles quantiles_;
    MADesignMatrix design_;
    MAResidualTau2 tau2_;
    MATau2Estimate start_; ///< of the search, or why there is none
    MARegFit fit_;
    Model model_;
    std::vector<MACoefficientTest> tests_;
    std::vector<MAPValue> pValues_;
    std::vector<std::vector<double>> directions_;
};

} // namespace MA_NAMESPACE

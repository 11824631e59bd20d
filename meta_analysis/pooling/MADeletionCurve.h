#pragma once

#include "meta_analysis/pooling/MADeletionSums.h"
#include "meta_analysis/pooling/MALikelihoodCurve.h"
#include "meta_analysis/regression/design/MATriangle.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// The fit of a regression at some tau², in the units of the data.
struct MADeletionFit
{
    bool isExact = false;       ///< whether all that follows has its digits
    std::vector<double> fitted; ///< coefficients of the dependent on the coordinates
    MASquareMatrix factor;      ///< upper triangle R with R'R = Z'WZ
    double weightSum = 0.0;
    double residualSum = 0.0; ///< sum(w r²)
    double trace = 0.0;       ///< tr P
};

/// The likelihood of the between-study variance of all rows but one, for one row after another.
///
/// The deleted row's own terms are subtracted from sums that all deletions share, `MADeletionSums`, so that
/// an evaluation costs O(p³) instead of O(k p²). Where such a difference, or one of those that the likelihood
/// is made of, keeps less than a 32nd of what it is taken from, the curve is not a number, `IsExact` becomes
/// false, and the caller refits the rows that are left. So a result has lost ten bits at most.
///
/// All deletions have the bounds of all rows, which hold for fewer: the search then looks at the same t for
/// each, and proves each.
class MADeletionCurve : public MALikelihoodCurve
{
public:
    /// `rows` in the units of the data, as the tau² near which the curve is looked at most, such as that of
    /// all rows; the dependent best as residuals of the fit of all rows.
    MADeletionCurve(const MADeletionRows& rows, std::vector<double> centres, MALikelihoodType type);

    /// Puts the row deleted before back, and deletes this one.
    void Delete(std::size_t row);
    /// Whether everything since `Delete` had its digits.
    bool IsExact() const { return isExact_; }

    MALikelihoodTerms At(double t) override;
    MAGeneralizedQ QAt(double t) override;
    double LogLikelihood(double t) override;

    /// The fit without the row. `tau2` is in the units of the data, as the result.
    MADeletionFit FitAt(double tau2);
    /// The fit of all rows, with the factor and the sum of weights alone.
    MADeletionFit FitOfAllAt(double tau2);

private:
    void MeasureBounds();
    bool Solve(double t);
    bool SumOthers(double t);
    bool Factorize(double least);
    bool SolveDependent();
    bool FormTraces();
    double CubicForm();
    MADeletionFit FitInDataUnits() const;

    std::size_t Rank() const { return sums_.Rows().rank; }

    MADeletionSums sums_;
    MALikelihoodType type_;
    std::size_t row_ = 0;
    bool isExact_ = true;

    // At the last t, in the curve's units.
    MAMomentSums others_;
    MASquareMatrix factor_;
    std::vector<double> fitted_;
    std::vector<double> work_;
    MASquareMatrix hat_; ///< (Z'WZ)⁻¹ Z'W²Z
    double yPy_ = 0.0;
    double yPPy_ = 0.0;
    double yPPPy_ = 0.0;
    double traceP_ = 0.0;
    double tracePP_ = 0.0;
};

} // namespace MA_NAMESPACE

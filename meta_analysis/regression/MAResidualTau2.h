#pragma once

#include "meta_analysis/pooling/MARegressionCurve.h"
#include "meta_analysis/pooling/MARegressionTau2.h"
#include "meta_analysis/pooling/MATau2Estimate.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/regression/design/MADesignMatrix.h"

#include <optional>
#include <vector>

namespace MA_NAMESPACE {

/// tau² of a design's rows, by the estimator of its settings. One object serves the rows that the design has
/// one after the other, in the same memory. The design is not owned.
class MAResidualTau2
{
public:
    explicit MAResidualTau2(const MADesignMatrix& design) : design_(&design), fit_(design) {}

    /// tau² that the predictors leave; 0 for a code that is no estimator.
    /// Errors: `ONE_USABLE_STUDY` (Sidik-Jonkman), `TOO_FEW_ROWS`, `ITERATOR_FAILED`.
    MATau2Estimate Estimate();
    /// The two parts of `Estimate` for an iterative estimator that is searched: where the search starts, on a
    /// curve that begins afresh, and the search.
    MATau2Estimate StartOfSearch();
    MATau2Estimate Search(double start);
    /// tau² of the same studies without predictors.
    MATau2Estimate EstimateWithoutPredictors();
    /// The curve of the rows. After an estimate by the global search it is that of the search, with what the
    /// search evaluated last.
    MARegressionCurve& Curve();

private:
    MATau2Fit FitOf() const;
    KXStatus Fit(MAWeightMode mode, double tau2);
    MATau2Estimate EstimateByFit(MAWeightMode mode, double tau2 = 0.0);
    MATau2Estimate EstimateBySidikJonkman();

    const MADesignMatrix* design_;
    MARegFit fit_;
    MAWeightedFit fitOfLeverages_{design_->Columns()};
    std::vector<double> residuals_;
    std::vector<double> leverageComplements_;
    std::vector<double> effectSizes_;
    std::optional<MARegressionCurve> curve_;
};

/// The same for one design.
MATau2Estimate EstimateResidualTau2(const MADesignMatrix& design);
MATau2Estimate EstimateTau2WithoutPredictors(const MADesignMatrix& design);

} // namespace MA_NAMESPACE

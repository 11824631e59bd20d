#pragma once

#include "meta_analysis/pooling/MAPoolingChoice.h"
#include "meta_analysis/pooling/MATau2Estimate.h"

#include <span>

namespace MA_NAMESPACE {

class MADesignMatrix;
class MARegressionCurve;

/// A fit of a meta-regression, from whose residuals an estimator takes the between-study variance. Every
/// estimator has its own fit: unweighted for HE, HS and the iterative ones, which start from HE; with weights
/// 1 / v for DL; with those of the crude variance of the effects for SJ.
struct MATau2Fit
{
    const MADesignMatrix& design;                ///< ready
    std::span<const double> residuals;           ///< one per row
    std::span<const double> leverageComplements; ///< 1 - h, one per row; HS and SJ take none
    std::span<const double> weights;             ///< one per row, for SJ alone
    int rank;                                    ///< number of coefficients that are not redundant
};

/// The residual between-study variance. Errors: INPUT_NOT_GIVEN for leverages or weights of another length
/// than the rows, TOO_FEW_ROWS for no more rows than coefficients, ITERATOR_FAILED when the host cancels, and
/// TAU2_FAILED for an estimator outside the enumeration. O(k p²) an iteration.
MATau2Estimate EstimateTau2(const MATau2Fit& fit, const MATau2Choice& choice);
/// The same by an iterative estimator, which starts from the Hedges estimate, on a curve of the design. It
/// begins afresh; after a search it has the estimator's likelihood.
MATau2Estimate IterateTau2(const MATau2Fit& fit, const MATau2Choice& choice, MARegressionCurve& curve);
/// The global search of it from a start, on a curve with the estimator's likelihood. The host may cancel
/// before it.
MATau2Estimate SearchTau2(const MATau2Fit& fit, const MATau2Choice& choice, double start,
                          MARegressionCurve& curve);

} // namespace MA_NAMESPACE

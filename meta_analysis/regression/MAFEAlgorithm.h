#pragma once

#include "meta_analysis/regression/MARegAlgorithm.h"

namespace MA_NAMESPACE {

/// Fixed-effect meta-regression: weighted least squares of the studies' effect sizes on the predictors of
/// the settings, each study weighted by its omega weight (the inverse of its variance).
///
/// Calling order: fill an `MARegSettings` (which must outlive this object), construct, `BuildModel`, read
/// the results through `MARegOutputStats`, `Score`, the getters and `GetWarnings`. With multiplicative
/// dispersion the covariance of the coefficients is scaled by the weighted residual variance.
class META_ANALYSIS_EXPORT MAFEAlgorithm final : public MARegAlgorithm
{
public:
    explicit MAFEAlgorithm(const MARegSettings& settings);
    ~MAFEAlgorithm();

    KXStatus BuildModel(MultiPassRecordIter& records) override;
};

} // namespace MA_NAMESPACE

#pragma once

#include "meta_analysis/inference/MAEffects.h"
#include "meta_analysis/inference/MAEstimate.h"
#include "meta_analysis/platform/common/KXStatus.h"

#include <span>

namespace MA_NAMESPACE {

/// A linear contrast of the studies' effects with its z test against 0. The status is OK, or the warning
/// CONTRAST_COEFFICIENT_MISSING.
struct MAContrastTest
{
    KXStatus status;
    MAEstimate contrast;
};

/// The contrast sum(g y) with variance sum(g² v), one coefficient g per study. A study whose coefficient is
/// missing is left out. With a variance of 0 there is no test. Error: LENGTH_MISMATCH.
MAContrastTest TestContrast(const MAEffects& studies, std::span<const double> coefficients, double alpha);

/// As `TestContrast`, for the effects of tables, some of which are missing: the contrast is missing when a
/// study without an effect or without a finite variance has a coefficient other than 0.
MAContrastTest TestTableContrast(const MAEffects& tables, std::span<const double> coefficients, double alpha);

} // namespace MA_NAMESPACE

#pragma once

#include "meta_analysis/platform/common/KXMV.h"

namespace MA_NAMESPACE {

/// What a meta-regression predicts at given values x of its predictors, on the scale of the effect sizes.
///
/// Effect x'b with standard error √(x'Vx); confidence limits x'b ∓ c √(x'Vx) of the mean effect at x;
/// prediction limits x'b ∓ c √(x'Vx + tau²) of the true effect of a new study at x. The critical value c is
/// that of the coefficients' intervals: Student's t with k - p degrees of freedom, or the standard normal.
/// Limits are missing for Student's t without degrees of freedom, and prediction limits for fixed effects.
/// Everything is missing where the data determine no prediction: a predictor is missing, a combination of
/// levels did not occur, or the values break a linear relation that all studies keep.
/// Higgins, Thompson and Spiegelhalter (2009), J. R. Stat. Soc. A 172, 137-159.
struct MAPredictedEffect
{
    double effect = KXMV::Missing();
    double stdError = KXMV::Missing();
    double ciLower = KXMV::Missing();
    double ciUpper = KXMV::Missing();
    double piLower = KXMV::Missing();
    double piUpper = KXMV::Missing();
};

} // namespace MA_NAMESPACE

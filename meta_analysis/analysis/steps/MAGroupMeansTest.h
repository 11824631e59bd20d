#pragma once

#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/pooling/MAPooledModel.h"

#include <span>

namespace MA_NAMESPACE {

/// F test that the groups have one mean; missing where it is not made.
struct MAGroupMeansTest
{
    double f = KXMV::Missing();
    double df1 = KXMV::Missing();
    double df2 = KXMV::Missing(); ///< a fraction for groups with tau² of their own
    MAPValue pValue;
};

/// The Wald-type test of the means m of G groups by their variances V after Knapp and Hartung, with u = 1 / V
/// and U = sum(u): Q = sum(u (m - sum(u m) / U)²).
///
/// With a common tau² the groups are one model of k studies: F = Q / (G - 1) with G - 1 and k - G degrees of
/// freedom, the model test of the meta-regression with the groups as a factor. Knapp and Hartung (2003),
/// Statistics in Medicine 22, 2693-2710.
///
/// With tau² of their own each V has k - 1 degrees of freedom of its group, and the test is that of Welch for
/// means of unequal variances: L = sum((1 - u / U)² / df), F = Q / (G - 1) / (1 + 2 (G - 2) L / (G² - 1))
/// with G - 1 and (G² - 1) / (3 L) degrees of freedom. Welch (1951), Biometrika 38, 330-336.
///
/// Missing unless a group is adjusted, and for a group without residual degrees of freedom or variance.
MAGroupMeansTest TestGroupMeans(std::span<const MAPooledModel> groups, bool haveCommonTau2);

} // namespace MA_NAMESPACE

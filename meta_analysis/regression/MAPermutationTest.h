#pragma once

#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXStatus.h"

#include <vector>

namespace MA_NAMESPACE {

class MADesignMatrix;
struct MARegBuild;
struct MARegTask;

/// P-values of a permutation test.
struct MAPermutationTests
{
    KXStatus status;
    std::vector<double> coefficients; ///< one per parameter, missing for a redundant one
    double model = KXMV::Missing();
    int count = 0; ///< permutations with a statistic
    bool isExact = false;
};

/// Tests the coefficients and the model of a design by permutations of its rows, or of the signs of its
/// effect sizes (`MAPermutations`), as many as its settings ask for. Each is fitted by `fit`, an engine's,
/// with its own tau²; the statistic of a coefficient is |b| over its standard error, that of the model test
/// is Wald's over the scale (Follmann and Proschan 1999, Biometrics 55, 732-737; Higgins and Thompson 2004,
/// Statistics in Medicine 23, 1663-1682). With drawn permutations the data count as one more, which keeps the
/// level of the test (Phipson and Smyth 2010, Statistical Applications in Genetics and Molecular Biology 9,
/// article 39).
///
/// A fit that fails, or an exact one whose standard errors vanish, has no statistic and is left out with
/// warning `PERMUTATIONS_LEFT_OUT`. Error `ITERATOR_FAILED` when the host cancels.
MAPermutationTests TestByPermutation(const MADesignMatrix& design, MARegBuild (*fit)(const MARegTask&));

} // namespace MA_NAMESPACE

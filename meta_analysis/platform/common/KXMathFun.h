#pragma once

#include "meta_analysis/platform/common/KXSymMatrix.h"

#include <vector>

/// Expressions of vectors and matrices.
class KXMathFun
{
public:
    /// v'Sv; missing when the sizes differ.
    static double VSV(const std::vector<double>& v, const KXSymMatrix& s) noexcept
    {
        return s.QuadraticForm(v);
    }
};

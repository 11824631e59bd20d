#pragma once

#include "meta_analysis/pooling/MAPooledModel.h"

namespace MA_NAMESPACE {

/// The getters that every pooling class has. Those of heterogeneity are missing for fewer than two studies.
class MAPooledModelGetters
{
public:
    /// All results on the scale of the analysis; of the last estimation, and until then missing.
    const MAPooledModel& GetPooledModel() const { return model_; }

    /// Cochran's Q = sum(w (y - mean)²) with fixed-effect weights and mean, its degrees of freedom, and its
    /// chi-square p-value with the decimal logarithm, which is right also where the p-value underflows.
    double GetHomogeneityTestQ() const { return model_.homogeneity.q; }
    int GetHomogeneityTestDf() const { return model_.homogeneity.df; }
    double GetHomogeneityTestPVal() const { return model_.homogeneity.pValue.value; }
    double GetHomogeneityTestLog10PVal() const { return model_.homogeneity.pValue.Log10(); }

    /// H² and I², a fraction, with bounds at the confidence level. Of fixed-effect models they come from Q,
    /// and the bounds are missing for two studies with Q <= 2. Of random-effects models they come from tau²
    /// and the typical within-study variance, and the bounds from those of tau², where these are asked for.
    /// Higgins and Thompson (2002), Statistics in Medicine 21, 1539-1558.
    double GetHeterogeneityTestH2() const { return model_.heterogeneity.h2; }
    double GetHeterogeneityTestH2CILower() const { return model_.heterogeneity.h2Lower; }
    double GetHeterogeneityTestH2CIUpper() const { return model_.heterogeneity.h2Upper; }
    double GetHeterogeneityTestI2() const { return model_.heterogeneity.i2; }
    double GetHeterogeneityTestI2CILower() const { return model_.heterogeneity.i2Lower; }
    double GetHeterogeneityTestI2CIUpper() const { return model_.heterogeneity.i2Upper; }

protected:
    ~MAPooledModelGetters() = default;
    MAPooledModelGetters() = default;
    MAPooledModelGetters(const MAPooledModelGetters&) = default;
    MAPooledModelGetters& operator=(const MAPooledModelGetters&) = default;

    MAPooledModel model_;
};

} // namespace MA_NAMESPACE

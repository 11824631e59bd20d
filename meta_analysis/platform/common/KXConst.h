#pragma once

/// Enumerations of the regression settings. The numeric values are fixed: hosts store and pass them as
/// numbers. The underlying type is int, so that a value outside the list is well defined.
namespace KXConst {

enum KXRegModelType : int
{
    REG_MODEL_NONE = 0,
    REG_MODEL_LINEAR = 1
};

enum KXDependentType : int
{
    DEPENDENT_NONE = 0,
    DEPENDENT_SINGLE = 1 ///< one continuous variable
};

/// Estimator of the covariance matrix of the coefficients.
enum KXCovbType : int
{
    COVB_MODEL_BASED = 0,
    COVB_ROBUST = 1
};

} // namespace KXConst

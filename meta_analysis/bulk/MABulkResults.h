#pragma once

namespace MA_NAMESPACE {

/// Columns of results in arrays of the caller, an entry a set. A null pointer is a column that is not wanted;
/// what only unwanted columns need is not computed. What a model does not define is NaN.
struct MABulkResults
{
    int* studyCount = nullptr; ///< studies that were pooled
    int* leftOut = nullptr;    ///< studies that are not missing but cannot be pooled
    double* estimate = nullptr;
    double* stdError = nullptr;
    double* statistic = nullptr;   ///< z, or t under the adjustment of Knapp and Hartung
    double* pValue = nullptr;      ///< two-sided
    double* minusLog10P = nullptr; ///< of the p-value, right also where that underflows
    double* ciLower = nullptr;
    double* ciUpper = nullptr;
    double* tau2 = nullptr;
    double* tau2Lower = nullptr;
    double* tau2Upper = nullptr;
    double* q = nullptr; ///< Cochran's
    int* qDf = nullptr;
    double* qPValue = nullptr;
    double* i2 = nullptr; ///< a fraction
    double* predictionLower = nullptr;
    double* predictionUpper = nullptr;
    /// 0, or an error or warning of the set alone: NO_STUDY_IN_RUN, TAU2_FAILED, TAU2_DOUBTFUL.
    int* status = nullptr;
};

} // namespace MA_NAMESPACE

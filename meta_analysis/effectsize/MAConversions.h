#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

// Effect sizes, means and counts from what studies report in place of them. An analysis converts by these
// functions what the variables of `MAInputSettings` hold; a host can call them by themselves.

/// An effect size and its standard error on the analysis scale, that of logarithms for ratios.
struct MAConvertedEffect
{
    MAConst::EXCLUSION status = MAConst::EXCLUSION_MISSING_VALUE; ///< `EXCLUSION_NONE`: converted
    double effectSize = KXMV::Missing();                          ///< missing unless converted, as `stdError`
    double stdError = KXMV::Missing();
    bool isAsymmetric = false; ///< see `EffectOfInterval`
};

/// From an estimate with its confidence interval: (upper - lower) / (2 z), z the two-sided normal quantile
/// of `level`, a fraction; estimate and limits are logarithms of those given when `isRatio` (Higgins, Li and
/// Deeks in the Cochrane Handbook, section 6.3.2).
///
/// The interval is asymmetric when upper - estimate and estimate - lower differ by more than 5 % of the width
/// and no values that print as these with `decimals` are symmetric. Missing decimals are the most that one of
/// the three needs (`DecimalsOf`).
///
/// Status, the first that applies: `EXCLUSION_MISSING_VALUE`, `EXCLUSION_LEVEL_OUTSIDE`,
/// `EXCLUSION_RATIO_NOT_POSITIVE`, `EXCLUSION_LIMITS_NOT_ASCENDING`, `EXCLUSION_OUTSIDE_LIMITS`,
/// `EXCLUSION_NOT_POOLABLE` (infinite).
META_ANALYSIS_EXPORT MAConvertedEffect EffectOfInterval(double estimate, double lower, double upper,
                                                        double level, bool isRatio,
                                                        double decimals = KXMV::Missing()) noexcept;

/// From an estimate with its two-sided p-value: |estimate| / z, z the normal quantile with p beyond ±z; the
/// logarithm of the estimate when `isRatio` (Cochrane Handbook, section 6.3.1). A p-value of a t test gives a
/// standard error that is too small where its degrees of freedom are few.
///
/// Status: `EXCLUSION_MISSING_VALUE`, `EXCLUSION_RATIO_NOT_POSITIVE`, `EXCLUSION_P_VALUE_OUTSIDE` (0 and 1
/// too), `EXCLUSION_ESTIMATE_ZERO`, `EXCLUSION_NOT_POOLABLE` (infinite).
META_ANALYSIS_EXPORT MAConvertedEffect EffectOfPValue(double estimate, double pValue, bool isRatio) noexcept;

/// Decimals of the shortest decimal number that reads back as `value`: 2 for 0.25, 0 for 100. It has the
/// digits printed where `value` was read, but for trailing zeros.
META_ANALYSIS_EXPORT int DecimalsOf(double value) noexcept;

/// What a study reports of a group in place of mean and standard deviation; missing where it does not.
struct MAGroupSummary
{
    double size = KXMV::Missing();
    double minimum = KXMV::Missing();
    double q1 = KXMV::Missing(); ///< lower quartile
    double median = KXMV::Missing();
    double q3 = KXMV::Missing();
    double maximum = KXMV::Missing();
};

/// Mean and standard deviation of a group.
struct MAConvertedMean
{
    MAConst::EXCLUSION status = MAConst::EXCLUSION_MISSING_VALUE; ///< `EXCLUSION_NONE`: converted
    MAConst::CONVERSION from = MAConst::CONVERSION_NONE;          ///< what was used
    double mean = KXMV::Missing();                                ///< missing unless converted, as `stdDev`
    double stdDev = KXMV::Missing();
    bool isSkewed = false; ///< see `MeanOfSummary`
};

/// From the size n, the median m and the quartiles q1, q3, or the extremes a, b, or all of them, of normally
/// distributed data. With P the normal quantile:
///
/// - m, a, b: mean w (a + b) / 2 + (1 - w) m with w = 4 / (4 + n^0.75), standard deviation (b - a) / x with
///   x = 2 P((n - 0.375) / (n + 0.25));
/// - m, q1, q3: mean w (q1 + q3) / 2 + (1 - w) m with w = 0.7 + 0.39 / n, standard deviation
///   (q3 - q1) / y with y = 2 P((0.75 n - 0.125) / (n + 0.25));
/// - all: mean u (a + b) / 2 + w (q1 + q3) / 2 + (1 - u - w) m with u = 2.2 / (2.2 + n^0.75) and
///   w = 0.7 - 0.72 / n^0.55, standard deviation ((b - a) / x + (q3 - q1) / y) / 2.
///
/// Means: Luo, Wan, Liu and Tong (2018), Statistical Methods in Medical Research 27, 1785-1805. Standard
/// deviations: Wan, Wang, Liu and Tong (2014), BMC Medical Research Methodology 14, 135.
///
/// Data are skewed, by tests at 5 % of Shi et al. (2023), Statistical Methods in Medical Research 32,
/// 1338-1360, when for n >= 5 the statistic is above its critical value; s = |a + b - 2 m| / (b - a) and
/// t = |q1 + q3 - 2 m| / (q3 - q1):
///
/// - m, a, b: s above 1.01 / ln(n + 9) + 2.43 / (n + 1);
/// - m, q1, q3: t above 2.66 / √n - 5.92 / n²;
/// - all: max(2.65 ln(0.6 n) / √n s, t) above 2.97 / √n - 39.1 / n³.
///
/// Status: `EXCLUSION_MISSING_VALUE` (size or median, or neither both quartiles nor both extremes),
/// `EXCLUSION_GROUP_TOO_SMALL` (n < 2), `EXCLUSION_SUMMARY_NOT_ASCENDING`, `EXCLUSION_SPREAD_NOT_POSITIVE`
/// (all values equal), `EXCLUSION_NOT_POOLABLE` (infinite).
META_ANALYSIS_EXPORT MAConvertedMean MeanOfSummary(const MAGroupSummary& summary) noexcept;

/// Persons without the event in a group of `size`, negative for more events than persons; missing when either
/// is.
META_ANALYSIS_EXPORT double NonEventsOf(double events, double size) noexcept;

} // namespace MA_NAMESPACE

#pragma once

/// Enumerations of the settings. The numeric values are fixed: hosts store and pass them as numbers.
/// Every enumeration has the underlying type int, so that a value outside the list is well defined;
/// what an operation does with one is said there.
namespace MAConst {

enum OUTCOMETYPE : int
{
    OUTCOME_BINARY = 0,
    OUTCOME_CONTINUOUS = 1,
    OUTCOME_MEASURED = 2 ///< of a measure of `OUTCOMEMEASURE`, for `MAOutcomeModel`
};

enum INPUTESTYPE : int
{
    INPUT_RAW = 0,       ///< effect sizes are computed from the raw study data
    INPUT_READY_MADE = 1 ///< effect sizes and their variances or standard errors are read from the data
};

enum WEIGHTYPE : int
{
    WEIGHT_INVERSE_VARIANCE = 0,
    WEIGHT_BINARY_FIXED = 1 ///< Mantel-Haenszel, or Peto for the Peto odds ratio
};

enum MODELTYPE : int
{
    MODEL_FIXED = 0,
    MODEL_RANDOM = 1
};

/// Estimators of the between-study variance.
enum TAU2ESTIMATOR : int
{
    TAU2_HE = 0,   ///< Hedges
    TAU2_HS = 1,   ///< Hunter-Schmidt
    TAU2_DL = 2,   ///< DerSimonian-Laird
    TAU2_SJ = 3,   ///< Sidik-Jonkman
    TAU2_ML = 4,   ///< maximum likelihood
    TAU2_REML = 5, ///< restricted maximum likelihood
    TAU2_EB = 6    ///< empirical Bayes
};

/// How the iterative estimators (ML, REML, EB) find the between-study variance.
enum TAU2SEARCH : int
{
    TAU2_SEARCH_SCORING = 0, ///< scoring steps within the iteration limits, which can miss the maximum
    TAU2_SEARCH_GLOBAL = 1   ///< the global maximum (ML, REML) or the root (EB), proved up to rounding
};

/// How an estimate of the between-study variance ended.
enum TAU2CONVERGENCE : int
{
    TAU2_CLOSED_FORM = 0,          ///< no iteration was needed
    TAU2_GLOBAL_OPTIMUM = 1,       ///< the global maximum, or the root, proved up to rounding
    TAU2_STEP_BELOW_TOLERANCE = 2, ///< a stationary point, which need not be the global maximum
    TAU2_STEP_HALVING_FAILED = 3,  ///< no halving kept the step from leaving tau² negative
    TAU2_ITERATION_LIMIT = 4,
    TAU2_STEP_NOT_FINITE = 5
};

/// Confidence interval of the between-study variance.
enum TAU2INTERVAL : int
{
    TAU2_INTERVAL_NONE = 0,
    TAU2_INTERVAL_Q_PROFILE = 1,
    TAU2_INTERVAL_PROFILE_LIKELIHOOD = 2 ///< for ML and REML only
};

/// Distribution of the prediction interval and of the probability beyond a threshold.
enum PREDICTIONTYPE : int
{
    PREDICTION_T_K_MINUS_2 = 0, ///< Student's t with k - 2 degrees of freedom
    PREDICTION_T_K_MINUS_1 = 1,
    PREDICTION_NORMAL = 2
};

/// Correction of the counts that Mantel-Haenszel and Peto pool; the studies' own effects have `ZEROADJTYPE`.
enum POOLEDZEROCELLS : int
{
    POOLED_ZERO_CELLS_AS_STUDIES = 0, ///< the counts as the zero-cell correction of the studies left them
    POOLED_ZERO_CELLS_IF_NEEDED = 1, ///< as read, unless the pooled effect of a model is undefined without it
    POOLED_ZERO_CELLS_NONE = 2       ///< as read
};

enum CONTESTYPE : int
{
    CONT_MEAN_DIFFERENCE = 0,
    CONT_COHENS_D = 1,
    CONT_HEDGES_G = 2,
    CONT_GLASS_DELTA = 3
};

/// All but the risk difference are analysed on the log scale.
enum BINESTYPE : int
{
    BIN_ODDS_RATIO = 0,
    BIN_PETO_ODDS_RATIO = 1,
    BIN_RISK_RATIO = 2,
    BIN_RISK_DIFFERENCE = 3
};

/// Measures of one group, and of the rates of two groups. `MAOutcomeMeasures.h` has the kind of data, the
/// scale of the analysis and the zero rule of each.
enum OUTCOMEMEASURE : int
{
    PROPORTION_LOGIT = 0,
    PROPORTION_FREEMAN_TUKEY = 1, ///< half the sum of two arcsines
    PROPORTION_ARCSINE = 2,
    PROPORTION_LOG = 3,
    PROPORTION_RAW = 4,
    RATE_LOG = 5,
    RATE_SQUARE_ROOT = 6,
    RATE_FREEMAN_TUKEY = 7, ///< half the sum of two roots
    RATE_RAW = 8,
    CORRELATION_FISHER_Z = 9,
    CORRELATION_RAW = 10,
    MEAN_RAW = 11,
    MEAN_LOG = 12,
    RATES_RATIO = 13, ///< of two groups, analysed on the log scale
    RATES_DIFFERENCE = 14,
    RATES_ROOT_DIFFERENCE = 15 ///< of the square roots of two rates
};

enum STUDYGROUPTYPE : int
{
    GROUP_TREATMENT = 0,
    GROUP_CONTROL = 1
};

/// Adjustment of the random-effects model after Knapp and Hartung. Any value outside the enumeration adjusts.
enum KNAPPHADJTYPE : int
{
    KNAPP_HARTUNG_NONE = 0,      ///< normal test and interval
    KNAPP_HARTUNG_ADJUSTED = 1,  ///< scaled variance, Student's t with k - 1 degrees of freedom
    KNAPP_HARTUNG_TRUNCATED = 2, ///< as above, the scale factor never below 1
    /// Adjusted where k > 2 and tau² > 0 (in a meta-regression: k - p > 1), else normal; for each model anew.
    KNAPP_HARTUNG_IF_HETEROGENEOUS = 3
};

/// Which 2x2 tables receive the zero-count constant in all four cells.
enum ZEROADJTYPE : int
{
    ZERO_ADJUST_EACH = 0,       ///< each table that has a zero cell
    ZERO_ADJUST_ALL_IF_ANY = 1, ///< every table, when at least one has a zero cell
    ZERO_ADJUST_ALL = 2,
    ZERO_ADJUST_NONE = 3
};

/// Trim-and-fill: which studies are trimmed (their mirror images are filled in on the other side).
enum TRIMFSIDE : int
{
    TRIM_SIDE_AUTO = 0,    ///< decided from the data
    TRIM_SIDE_LARGEST = 1, ///< the largest effect sizes are trimmed
    TRIM_SIDE_SMALLEST = 2 ///< the smallest effect sizes are trimmed
};

/// Trim-and-fill: estimator of the number of missing studies.
enum TRIMFMETHOD : int
{
    TRIM_LINEAR = 0,
    TRIM_RUN = 1,
    TRIM_QUADRATIC = 2
};

/// Order of the studies in a cumulative analysis.
enum SORTYPE : int
{
    SORT_ASCENDING = 0,
    SORT_DESCENDING = 1
};

/// Vertical axis of the funnel plot.
enum FunnelYType : int
{
    FUNNEL_STD_ERROR = 0,
    FUNNEL_PRECISION = 1,
    FUNNEL_VARIANCE = 2,
    FUNNEL_INVERSE_VARIANCE = 3
};

/// Test behind the significance contours of the funnel plot.
enum FunnelConTourTesType : int
{
    CONTOUR_NONE = 0,
    CONTOUR_TWO_SIDED = 1,
    CONTOUR_UPPER = 2,
    CONTOUR_LOWER = 3
};

/// Regression-based small-study tests.
enum RegBaseTestType : int
{
    REG_TEST_EFFECT_ON_STD_ERROR = 0,
    REG_TEST_SCORE_VARIANCE = 1,
    REG_TEST_SCORE_CONTROL = 2,
    REG_TEST_EFFECT_ON_SIZE = 3
};

/// Meta-regression: distribution of the coefficient tests and confidence intervals. Any value but 0 means
/// the standard normal.
enum TESTDISTTYPE : int
{
    TEST_STUDENT_T = 0, ///< with the residual degrees of freedom
    TEST_STANDARD_NORMAL = 1
};

/// Meta-regression: cluster-robust (sandwich) variance of the coefficients.
enum SANDWICHTYPE : int
{
    SANDWICH_CR2 = 0, ///< unbiased under the working model, Student's t with Satterthwaite degrees of freedom
    SANDWICH_CR1 = 1, ///< CR0 times m / (m - p), Student's t with m - p degrees of freedom, m the clusters
    SANDWICH_CR0 = 2  ///< residuals as they are, Student's t with m - p degrees of freedom
};

/// Meta-regression: what the omega-weight variable holds. A study's weight is the inverse of its variance.
enum OMGWeightType : int
{
    OMEGA_WEIGHT = 0,
    OMEGA_VARIANCE = 1,
    OMEGA_STD_ERROR = 2
};

/// Rules by which a study stands out in the deletion diagnostics. A study has the sum of those that it meets;
/// docs/methods.md has the cut-offs.
enum INFLUENCERULE : int
{
    INFLUENCE_RESIDUAL = 1, ///< an outlier; the others tell of influence
    INFLUENCE_DFFITS = 2,
    INFLUENCE_COOK = 4,
    INFLUENCE_HAT = 8,
    INFLUENCE_DFBETAS = 16 ///< of a meta-regression
};

/// How an effect size, or the mean and standard deviation of a group, came from what a study reports.
enum CONVERSION : int
{
    CONVERSION_NONE = 0,         ///< it is reported
    CONVERSION_QUARTILES = 1,    ///< median and quartiles
    CONVERSION_EXTREMES = 2,     ///< median, minimum and maximum
    CONVERSION_FIVE_NUMBERS = 3, ///< all five
    CONVERSION_INTERVAL = 4,     ///< the standard error from a confidence interval
    CONVERSION_P_VALUE = 5       ///< the standard error from a p-value
};

/// Why a record is no study, and why values cannot be converted.
enum EXCLUSION : int
{
    EXCLUSION_NONE = 0,
    EXCLUSION_MISSING_VALUE = 1,
    EXCLUSION_NOT_POOLABLE = 2, ///< effect size, variance or weight not finite, or the last two not positive
    EXCLUSION_NEGATIVE_COUNT = 3,
    EXCLUSION_EVENTS_ABOVE_SIZE = 4, ///< more events than persons in a group
    EXCLUSION_NO_PERSONS = 5,        ///< a table, or a group, of nobody
    EXCLUSION_ZERO_CELLS = 6,        ///< zero cells in both groups, and no zero-cell correction
    EXCLUSION_DROPPED = 7, ///< by the setting that drops tables with events, or non-events, in neither group
    EXCLUSION_GROUP_TOO_SMALL = 8,        ///< fewer than two persons in a group of which a spread is needed
    EXCLUSION_SPREAD_NOT_POSITIVE = 9,    ///< a standard deviation, variance or standard error of 0 or less
    EXCLUSION_SUMMARY_NOT_ASCENDING = 10, ///< minimum, quartiles, median and maximum out of order
    EXCLUSION_LIMITS_NOT_ASCENDING = 11,  ///< a lower confidence limit that is not below the upper one
    EXCLUSION_OUTSIDE_LIMITS = 12,        ///< an estimate outside its confidence interval
    EXCLUSION_LEVEL_OUTSIDE = 13,         ///< an interval whose confidence level is not between 0 and 1
    EXCLUSION_P_VALUE_OUTSIDE = 14,       ///< a p-value that is not between 0 and 1
    EXCLUSION_ESTIMATE_ZERO = 15,         ///< no effect at all, from which a p-value gives no standard error
    EXCLUSION_RATIO_NOT_POSITIVE = 16,
    EXCLUSION_DIFFERENCE_IMPOSSIBLE = 17, ///< a risk difference beyond -1 ... 1
    EXCLUSION_NO_SPREAD_GIVEN = 18,       ///< no variable of a variance, standard error, interval or p-value
    EXCLUSION_TIME_NOT_POSITIVE = 19,
    EXCLUSION_CORRELATION_OUTSIDE = 20 ///< a correlation that is not between -1 and 1
};

/// The group label of the model of all studies, where results of subgroups and of all studies stand together.
inline constexpr double overallGroup = -1.0;

} // namespace MAConst

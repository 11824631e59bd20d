#pragma once

/// The numeric codes of the library's statuses: errors end the operation, warnings are recorded.
namespace MA_NAMESPACE::MAStatusCode {

// Errors.
constexpr int LENGTH_MISMATCH = 460001;          ///< an input vector's length differs from the study count
constexpr int PARAMETER_COUNT_MISMATCH = 460002; ///< a matrix or list has another size than the parameters
constexpr int INPUT_NOT_GIVEN =
    460009; ///< a required variable or input is not given, or settings are invalid
constexpr int TOO_MANY_NONREDUNDANT = 460010; ///< more non-redundant parameters than parameters
constexpr int ITERATOR_NOT_STARTED = 460011; ///< the record iterator cannot be positioned at its first record
constexpr int ITERATOR_FAILED = 460012; ///< the record iterator fails (its passes differ, it throws), the
                                        ///< host cancels, or rows are not ready
constexpr int TOO_FEW_ROWS = 460015;    ///< no more rows than parameters
constexpr int TEST_DEPENDENT_REFUSED = 460022; ///< by the regression settings of a small-study test
constexpr int TEST_TYPE_UNDEFINED = 460023;    ///< regression-based test type 4
constexpr int TEST_COVARIATE_REFUSED = 460024; ///< the test covariate cannot be added
constexpr int TEST_WITHOUT_OUTPUT = 460025;    ///< the test's meta-regression produced no output statistics
constexpr int RECORD_NOT_RESIZED = 460026;     ///< a record cannot be resized
constexpr int TOO_FEW_FOR_TEST = 460028;       ///< fewer than 3 studies for a regression-based test
constexpr int ONE_USABLE_STUDY = 460029;       ///< exactly one, where a variance must be formed
constexpr int TAU2_FAILED = 460060; ///< between-study variance estimation failed, or an engine cannot be made
constexpr int NO_USABLE_STUDY = 460073;   ///< but some unusable ones
constexpr int NO_ANALYSED_STUDY = 460075; ///< for trim-and-fill
constexpr int OUT_OF_MEMORY = 460099;     ///< memory ran out; the results hold what was stored before
constexpr int HYPOTHESIS_UNUSABLE =
    460135; ///< not one finite weight a parameter, all weights 0, or not one value a hypothesis
constexpr int HYPOTHESIS_ON_REDUNDANT = 460136; ///< a hypothesis has weight on a redundant parameter
constexpr int HYPOTHESES_CONTRADICT = 460137;   ///< dependent hypotheses whose values cannot all hold
constexpr int REFERENCE_LEVEL_ABSENT = 460138;  ///< no usable record has the reference level of a factor
constexpr int ONE_CLUSTER = 460140;             ///< all usable studies are in one cluster: no robust variance
constexpr int TOO_FEW_CLUSTERS = 460141;        ///< no more clusters than coefficients, for CR1 and CR0
constexpr int BULK_ALPHA_OUTSIDE = 460146;      ///< the alpha of a call for many sets is not between 0 and 1
constexpr int BULK_CHOICE_UNKNOWN = 460147; ///< another choice of it is outside its enumeration or not finite
constexpr int STRUCT_SIZE_UNKNOWN = 460155; ///< of the C interface: no struct of its kind has this size
constexpr int STRUCT_FIELD_UNKNOWN = 460156; ///< of the C interface: a field of a newer header is set
constexpr int OPTION_UNKNOWN = 460157;       ///< no option has this name
constexpr int OPTION_VALUE_UNKNOWN = 460158; ///< an option cannot have this value

// Warnings.
constexpr int UNUSABLE_RECORD = 460031;         ///< in a meta-regression
constexpr int CONTRAST_COUNT_MISMATCH = 460037; ///< as many contrast coefficients as records were expected
constexpr int TRIM_FILL_NOT_CONVERGED = 460038;
constexpr int FIXED_MODEL_WITH_CONTRAST = 460039;
constexpr int ONE_STUDY = 460040;
constexpr int TWO_STUDIES = 460041;
constexpr int READY_MADE_EFFECTS = 460042;       ///< first notice; always followed by the second
constexpr int READY_MADE_EFFECTS_AGAIN = 460043; ///< second notice
constexpr int BINARY_FIXED_INVERSE_VARIANCE = 460044;
constexpr int BINARY_RANDOM_EFFECTS = 460045;
constexpr int TRIM_FILL_NOT_RUN = 460046; ///< requested on the binary fixed-effect path
constexpr int AS_MANY_STUDIES_AS_PARAMETERS = 460047;
constexpr int DISPERSION_NEAR_ZERO = 460048; ///< and set to 1
constexpr int NO_RESIDUAL_DF = 460049;       ///< zero residual degrees of freedom
constexpr int CONTRAST_COEFFICIENT_MISSING = 460050;
constexpr int ZERO_CELLS_IN_BOTH_ARMS = 460051;   ///< and no zero-cell correction
constexpr int STUDIES_REMOVED = 460074;           ///< after their effect sizes were computed
constexpr int TAU2_DOUBTFUL = 460100;             ///< scoring is off the tau² that the global search proves
constexpr int CONFIDENCE_LEVEL_OUTSIDE = 460101;  ///< the confidence level is not between 0 and 1
constexpr int RATIO_NULL_NEGATIVE = 460102;       ///< a negative null hypothesis of a ratio
constexpr int CONTRAST_IGNORED = 460103;          ///< contrast coefficients under a random-effects model
constexpr int NULL_IGNORED = 460104;              ///< a null hypothesis under a random-effects model
constexpr int NO_STUDY_IN_RUN = 460105;           ///< a run of which no study is usable
constexpr int NO_ITERATION_ALLOWED = 460106;      ///< iteration limit below 1 for an iterative estimator
constexpr int MODEL_TYPE_UNKNOWN = 460107;        ///< a model type outside the enumeration
constexpr int TAU2_INTERVAL_UNAVAILABLE = 460108; ///< profile likelihood for an estimator other than ML, REML
constexpr int FEW_STUDIES_FOR_TEST = 460110;      ///< a small-study test of fewer than ten studies
constexpr int COMMON_TAU2_IGNORED = 460111;       ///< asked for without subgroups under random effects
constexpr int COUNTS_NOT_POOLED = 460115; ///< Mantel-Haenszel weights in an analysis that cannot pool counts
constexpr int INTERVAL_ASYMMETRIC = 460125; ///< of a study's confidence interval about its estimate
constexpr int SUMMARY_SKEWED = 460126;   ///< medians and quantiles that were converted come from skewed data
constexpr int STD_DEV_DOUBTFUL = 460127; ///< a standard deviation that looks like a standard error
constexpr int PREDICTION_UNAVAILABLE = 460139; ///< values for which the data determine no prediction
constexpr int CLUSTER_DECIDES =
    460142; ///< clusters determine parts of a coefficient alone: no robust variance of it
constexpr int PERMUTATIONS_LEFT_OUT = 460143; ///< some permuted data had no test statistic
constexpr int DELETION_UNDEFINED =
    460145; ///< a model without one of the studies; its diagnostics are missing
constexpr int SUBGROUP_VALUE_MISSING = 460148;   ///< studies without one are in no group
constexpr int CUMULATIVE_VALUE_MISSING = 460149; ///< studies without one are in no cumulative step

} // namespace MA_NAMESPACE::MAStatusCode

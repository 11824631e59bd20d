#include "host/cli/OptionRules.h"

#include "host/cli/ReportOutputOptions.h"
#include "host/text/Measures.h"
#include "host/text/UnusableInput.h"
#include "host/text/Wording.h"

#include "meta_analysis/settings/MAOutcomeMeasures.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <vector>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// When options have an effect, and what is said where they have none: "--NAME ", then the sentence, in which
/// {effect} is the word of --effect. Options that no rule names always have an effect, are refused by the
/// `complete` of their group, or are accepted everywhere: the iteration controls, --tau2-search and
/// --threads.
struct OptionRule
{
    std::vector<std::string_view> options;
    bool (*hasEffect)(const Options&);
    const char* sentence;
};

bool IsRandomModel(const Options& options)
{
    return IsRandom(options.settings);
}

bool IsFixedModel(const Options& options)
{
    return !IsRandomModel(options);
}

bool HasOnlyReadyMadeOrMeans(const Options& options)
{
    return options.settings.GetInputESType() == MAConst::INPUT_READY_MADE ||
           options.settings.GetOutcomesType() == MAConst::OUTCOME_CONTINUOUS;
}

bool AsksForMantelHaenszel(const Options& options)
{
    return options.settings.GetWeightType() == MAConst::WEIGHT_BINARY_FIXED;
}

/// Whether the weights are those of every measure, or the measure has sums of counts to pool.
bool HasMeasureOfWeights(const Options& options)
{
    if (!AsksForMantelHaenszel(options))
        return true;
    return IsMeasured(options.settings) ? allOutcomeMeasures[options.settings.GetOutcomeMeasure()].poolsCounts
                                        : !HasOnlyReadyMadeOrMeans(options);
}

bool HasModelOfWeights(const Options& options)
{
    return !AsksForMantelHaenszel(options) || IsFixedModel(options);
}

bool HasNullHypothesis(const Options& options)
{
    return IsFixedModel(options) || options.settings.GetNullHypothesis() == 0;
}

bool HasModelOfKnappHartung(const Options& options)
{
    return IsRandomModel(options) || options.settings.GetKnapHartAdjustType() == MAConst::KNAPP_HARTUNG_NONE;
}

bool MayTestByNormal(const Options& options)
{
    const MAConst::KNAPPHADJTYPE adjustment = options.settings.GetKnapHartAdjustType();
    return IsFixedModel(options) ||
           (adjustment != MAConst::KNAPP_HARTUNG_ADJUSTED && adjustment != MAConst::KNAPP_HARTUNG_TRUNCATED);
}

bool CorrectsZeroCells(const Options& options)
{
    return !IsMeasured(options.settings) || CorrectsZeros(options.settings.GetOutcomeMeasure());
}

bool AddsZeroDelta(const Options& options)
{
    return options.settings.GetBinZeroAdjType() != MAConst::ZERO_ADJUST_NONE;
}

bool IsMeanDifference(const Options& options)
{
    return options.settings.GetContinousEstType() == MAConst::CONT_MEAN_DIFFERENCE;
}

bool IsDOrG(const Options& options)
{
    const MAConst::CONTESTYPE type = options.settings.GetContinousEstType();
    return type == MAConst::CONT_COHENS_D || type == MAConst::CONT_HEDGES_G;
}

bool HasSmallStudyTest(const Options& options)
{
    return options.settings.GetIsTRIMFILL() || options.runsSmallStudyTest;
}

bool TrimsByRandomModel(const Options& options)
{
    return options.settings.GetTFModelType() == MAConst::MODEL_RANDOM;
}

bool HasCoordinates(const Options& options)
{
    return options.htmlPath || options.plotsFolder || options.jsonPath;
}

bool HasPictures(const Options& options)
{
    return options.htmlPath || options.plotsFolder;
}

/// The names of the groups head the columns of their figures.
bool HasFiguresOfTwoGroups(const Options& options)
{
    const Command command = options.command;
    return (command == Command::BINARY || command == Command::CONTINUOUS || command == Command::RATES) &&
           (options.picture.layout != ForestLayout::PLAIN || !options.picture.forestColumns.empty());
}

bool HasReport(const Options& options)
{
    return WritesReportToStandardOutput(options) || options.report.output || options.htmlPath;
}

bool HasRoundedNumbers(const Options& options)
{
    return HasReport(options) || options.report.tablePath || options.plotsFolder;
}

bool IsOneFile(const Options& options)
{
    return options.batch.files.size() == 1;
}

/// A batch computes the results of its columns alone.
bool HasBatchColumn(const Options& options, std::string_view first, std::string_view second)
{
    const std::vector<BatchColumn>& columns = options.batch.columns;
    return options.command != Command::BATCH ||
           std::any_of(columns.begin(), columns.end(), [&](const BatchColumn& column) {
               return column.name == first || column.name == second;
           });
}

/// The rules in the order in which they are tried.
const std::vector<OptionRule>& Rules()
{
    static const std::vector<OptionRule> rules = {
        // Effect sizes
        {{"ci-level"},
         [](const Options& options) { return options.ciLower && options.ciUpper; },
         "needs --ci-lower and --ci-upper, the limits that it is the level of."},
        {{"zero-cells", "zero-delta"},
         CorrectsZeroCells,
         "has no effect with --effect {effect}, which needs no correction of zeros."},
        {{"zero-delta"},
         AddsZeroDelta,
         "has no effect with --zero-cells none, which adds no constant to any count."},
        {{"equal-variances"},
         IsMeanDifference,
         "needs --effect mean-difference, whose variance has this choice; {effect} has not."},
        {{"variance-adjustment"},
         IsDOrG,
         "needs --effect cohens-d or hedges-g, which have an adjusted variance; {effect} has not."},
        {{"glass-group"},
         [](const Options& options) {
             return options.settings.GetContinousEstType() == MAConst::CONT_GLASS_DELTA;
         },
         "needs --effect glass-delta, which divides by one group's standard deviation; {effect} does not."},

        // Model
        {{"weights"},
         HasMeasureOfWeights,
         "mantel-haenszel pools the events of two groups: it is for 2x2 tables, rate ratios and rate "
         "differences. {effect} has inverse-variance weights."},
        {{"weights"},
         HasModelOfWeights,
         "mantel-haenszel needs --model fixed: the random-effects model weights by inverse variance."},
        {{"pooled-zero-cells"},
         [](const Options& options) { return PoolsTables(options.settings); },
         "needs --weights mantel-haenszel and --model fixed, which pool the counts of the tables."},
        {{"tau2"}, IsRandomModel, "is for the random-effects model: the fixed one has no tau²."},
        {{"knapp-hartung"},
         HasModelOfKnappHartung,
         "is for the random-effects model: it adjusts the standard error of that model."},
        {{"tau2-interval", "prediction", "probability-above", "probability-below", "common-tau2"},
         IsRandomModel,
         "is for the random-effects model: the fixed one has no tau²."},
        {{"null"}, HasNullHypothesis, "needs --model fixed: the random model tests against no effect."},
        {{"contrast"}, IsFixedModel, "needs --model fixed: contrasts are of studies that share one effect."},
        {{"dispersion"},
         IsFixedModel,
         "needs --model fixed: tau² stands for it in the random-effects model."},
        {{"normal-tests"},
         MayTestByNormal,
         "has no effect with --knapp-hartung, whose tests are by Student's t."},
        {{"prediction"},
         [](const Options& options) { return HasBatchColumn(options, "pi_lower", "pi_upper"); },
         "needs pi_lower or pi_upper among the --columns: nothing else depends on it."},
        {{"tau2-interval"},
         [](const Options& options) {
             return options.settings.GetTau2Interval() == MAConst::TAU2_INTERVAL_NONE ||
                    HasBatchColumn(options, "tau2_lower", "tau2_upper");
         },
         "needs tau2_lower or tau2_upper among the --columns: nothing else depends on it."},

        // Groups and order
        {{"common-tau2"},
         [](const Options& options) { return options.subgroup.has_value(); },
         "needs --subgroup: it is the tau² of all groups."},
        {{"descending"},
         [](const Options& options) { return options.cumulative.has_value(); },
         "needs --cumulative, the column by which the studies are ordered."},

        {{"keep-missing-groups"},
         [](const Options& options) { return options.subgroup.has_value(); },
         "needs --subgroup, whose missing values it is about."},

        // Regression
        {{"sandwich"},
         [](const Options& options) { return options.regression.cluster.has_value(); },
         "needs --cluster, the column whose values are the clusters."},
        {{"seed"},
         [](const Options& options) { return options.regression.tests.GetPermutations() != 0; },
         "needs --permutations, which it selects."},

        // Small-study effects
        {{"side", "trim-fill-model", "trim-fill-tau2", "trim-fill-knapp-hartung"},
         [](const Options& options) { return options.settings.GetIsTRIMFILL(); },
         "needs --trim-fill, which names the estimator of the number of missing studies."},
        {{"trim-fill-tau2"},
         TrimsByRandomModel,
         "has no effect with --trim-fill-model fixed, which has no tau²."},
        {{"trim-fill-knapp-hartung"},
         TrimsByRandomModel,
         "has no effect with --trim-fill-model fixed, which has nothing to adjust."},
        {{"test-intercept", "test-dispersion"},
         HasSmallStudyTest,
         "needs --small-study-test or --trim-fill, which run the regression-based test."},
        {{"test-dispersion"},
         IsFixedModel,
         "needs --model fixed: tau² stands for it in the random-effects model."},

        // Plots
        {{"contour-level"},
         [](const Options& options) {
             return options.settings.GetFunnelConTourTesType() != MAConst::CONTOUR_NONE;
         },
         "needs --contours, which names the test of the level."},
        {{"center-bubble", "bubble-points"},
         [](const Options& options) { return !HasSteps(options.command) || !options.bubbles.empty(); },
         "needs --bubble, the covariate of the plot."},
        {{"funnel-y", "funnel-points", "contours", "contour-level", "bubble-points"},
         HasCoordinates,
         "needs --plots, --html or --json, which show it: the text report has no picture."},

        // Pictures
        {{"drapery", "prediction-band", "layout", "forest-columns", "forest-sort", "axis-limits", "favours",
          "title", "group-names", "forest-models", "forest-prediction"},
         HasPictures,
         "needs --plots or --html, which have the picture that it is about."},
        {{"prediction-band"},
         [](const Options& options) {
             return !options.bubbles.empty() || !options.regression.covariates.empty();
         },
         "needs a bubble plot: --bubble, in a regression --covariate."},
        {{"prediction-band"}, IsRandomModel, "needs --model random: a fixed effect does not vary."},
        {{"group-names"},
         HasFiguresOfTwoGroups,
         "needs the figures of two groups in the forest plot: 2x2 tables, means or rates, and --layout or "
         "--forest-columns."},
        {{"forest-prediction"},
         [](const Options& options) {
             return IsRandomModel(options) || options.picture.models == ForestModels::BOTH;
         },
         "is for the random-effects model: the fixed one has no prediction interval."},
        {{"favours"},
         [](const Options& options) {
             return !HasSteps(options.command) || MeasureOf(options.settings).hasNoEffect;
         },
         "is for effects that compare: {effect} has no value of no effect."},
        {{"plot-format", "picture-size", "resolution"},
         [](const Options& options) { return options.plotsFolder.has_value(); },
         "needs --plots, the folder of the pictures."},
        {{"resolution"},
         [](const Options& options) { return options.plotFormat == PictureFormat::PNG; },
         "needs --plot-format png: other pictures have no pixels."},

        // Report
        {{"citation"}, HasReport, "stands behind the report, which is not written here."},
        {{"digits"}, HasRoundedNumbers, "has no effect on the JSON, which has all digits."},

        // Batch
        {{"sorted"},
         [](const Options& options) { return !IsOneFile(options); },
         "has no effect on one file, whose rows of a key are together."},
        {{"unsorted"}, IsOneFile, "has no effect on several files, whose keys may be in any order."},
    };
    return rules;
}

} // namespace

void RefuseOptionsWithoutEffect(const Options& options)
{
    const std::string effect = MeasureName(options.settings);
    for (const OptionRule& rule : Rules())
        for (const std::string_view option : rule.options)
            if (options.given.contains(std::string(option)) && !rule.hasEffect(options))
                throw UnusableInput(fmt::format(
                    "--{} {}", option, fmt::format(fmt::runtime(rule.sentence), fmt::arg("effect", effect))));
}

} // namespace host

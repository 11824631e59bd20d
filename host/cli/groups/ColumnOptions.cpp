#include "host/cli/ColumnChecks.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"
#include "host/cli/OutcomeOptions.h"
#include "host/cli/RawOutcomes.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

OptionDefinitions BinaryColumns(Options& options)
{
    return {
        Required(Column("treatment-events", options.treatmentEvents, "events in the treatment group")),
        ThisOrNext(Column("treatment-nonevents", options.treatmentNonEvents, "non-events in it, or")),
        Column("treatment-n", options.treatmentSize, "its size"),
        Required(Column("control-events", options.controlEvents, "events in the control group")),
        ThisOrNext(Column("control-nonevents", options.controlNonEvents, "non-events in it, or")),
        Column("control-n", options.controlSize, "its size"),
    };
}

OptionDefinitions ContinuousColumns(Options& options)
{
    return {
        Required(Column("treatment-n", options.treatmentSize, "size of the treatment group")),
        Column("treatment-mean", options.treatmentMean, "its mean"),
        Column("treatment-sd", options.treatmentStdDev, "its standard deviation, or"),
        Column("treatment-variance", options.treatmentVariance, "its variance"),
        Column("treatment-median", options.treatmentSummary.median,
               "its median, for studies without mean and standard deviation, with"),
        Column("treatment-q1", options.treatmentSummary.q1, "its lower and"),
        Column("treatment-q3", options.treatmentSummary.q3, "upper quartile, or with"),
        Column("treatment-min", options.treatmentSummary.minimum, "its minimum and"),
        Column("treatment-max", options.treatmentSummary.maximum, "maximum, or with all"),
        Required(Column("control-n", options.controlSize, "size of the control group")),
        Column("control-mean", options.controlMean, "its mean"),
        Column("control-sd", options.controlStdDev, "its standard deviation, or"),
        Column("control-variance", options.controlVariance, "its variance"),
        Column("control-median", options.controlSummary.median,
               "its median, for studies without mean and standard deviation, with"),
        Column("control-q1", options.controlSummary.q1, "its lower and"),
        Column("control-q3", options.controlSummary.q3, "upper quartile, or with"),
        Column("control-min", options.controlSummary.minimum, "its minimum and"),
        Column("control-max", options.controlSummary.maximum, "maximum, or with all"),
    };
}

OptionDefinitions EffectsColumns(Options& options)
{
    MAInputSettings& input = options.settings;
    return {
        Required(Column("effect-size", options.effectSize,
                        "effect sizes (of ratios: their logarithms, or --ratio)")),
        Column("variance", options.variance, "their variances, or"),
        Column("std-error", options.stdError, "their standard errors; for studies without either:"),
        Column("ci-lower", options.ciLower, "their lower and"),
        Column("ci-upper", options.ciUpper, "upper confidence limits, or"),
        Level("ci-level", options.notes, input, &MAInputSettings::GetInputCILevel,
              &MAInputSettings::SetInputCILevel,
              "level of these limits, a fraction, or a percentage from 50 on"),
        Column("p-value", options.pValue, "their two-sided p-values"),
    };
}

OptionDefinitions RegressionColumns(Options& options)
{
    return {
        Required(Column("effect-size", options.effectSize,
                        "effect sizes (of ratios: their logarithms, or --ratio)")),
        ThisOrNext(Column("variance", options.variance, "their variances, or")),
        ThisOrNext(Column("std-error", options.stdError, "their standard errors, or")),
        Column("weight", options.weight, "their weights, the inverses of the variances"),
    };
}

OptionDefinitions BatchColumns(Options& options)
{
    BatchOptions& batch = options.batch;
    return {
        Required(Column("key", batch.key, "key of the analysis that a row belongs to")),
        Required(Column("effect-size", options.effectSize, "effect sizes (of ratios: their logarithms)")),
        ThisOrNext(Column("variance", options.variance, "their variances, or")),
        Column("std-error", options.stdError, "their standard errors"),
        Column("effect-allele", batch.effectAllele, "allele that the effect is of, with"),
        Column("other-allele", batch.otherAllele,
               "the other one: effects are of the alleles that a key has first"),
        Flag("unsorted", batch.isUnsorted,
             "one file: the rows of a key need not be together (holds the numbers in memory)"),
        Flag("sorted", batch.isSorted,
             "several files: sorted by the bytes of the keys (holds no numbers in memory)"),
    };
}

} // namespace

OptionDefinitions ColumnsOfData(Options& options, Command data)
{
    switch (data) {
    case Command::BINARY:
        return BinaryColumns(options);
    case Command::CONTINUOUS:
        return ContinuousColumns(options);
    case Command::EFFECTS:
        return EffectsColumns(options);
    case Command::REGRESSION:
        return RegressionColumns(options);
    case Command::BATCH:
        return BatchColumns(options);
    case Command::RATES:
    case Command::PROPORTION:
    case Command::RATE:
    case Command::CORRELATION:
    case Command::MEAN:
        return OutcomeColumns(options, data);
    }
    return {};
}

OptionGroup ColumnOptions(Options& options)
{
    OptionGroup group = {.heading = "Columns", .options = ColumnsOf(options), .complete = [&options] {
                             CheckColumns(options);
                         }};
    if (options.command != Command::BATCH)
        group.options.push_back(
            Column("study", options.study, "labels of the studies (default: record numbers from 1)"));
    return group;
}

} // namespace host

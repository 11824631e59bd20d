#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"
#include "host/cli/OutcomeOptions.h"

namespace host {

namespace {

OptionDefinitions BinaryColumns(Options& options)
{
    return {
        Required(Column("treatment-events", options.treatmentEvents, "events in the treatment group")),
        Required(Column("treatment-nonevents", options.treatmentNonEvents, "non-events in it")),
        Required(Column("control-events", options.controlEvents, "events in the control group")),
        Required(Column("control-nonevents", options.controlNonEvents, "non-events in it")),
    };
}

OptionDefinitions ContinuousColumns(Options& options)
{
    return {
        Required(Column("treatment-n", options.treatmentSize, "size of the treatment group")),
        Required(Column("treatment-mean", options.treatmentMean, "its mean")),
        ThisOrNext(Column("treatment-sd", options.treatmentStdDev, "its standard deviation, or")),
        Column("treatment-variance", options.treatmentVariance, "its variance"),
        Required(Column("control-n", options.controlSize, "size of the control group")),
        Required(Column("control-mean", options.controlMean, "its mean")),
        ThisOrNext(Column("control-sd", options.controlStdDev, "its standard deviation, or")),
        Column("control-variance", options.controlVariance, "its variance"),
    };
}

OptionDefinitions EffectsColumns(Options& options)
{
    return {
        Required(Column("effect-size", options.effectSize, "effect sizes (of ratios: their logarithms)")),
        ThisOrNext(Column("variance", options.variance, "their variances, or")),
        Column("std-error", options.stdError, "their standard errors"),
    };
}

OptionDefinitions RegressionColumns(Options& options)
{
    return {
        Required(Column("effect-size", options.effectSize, "effect sizes (of ratios: their logarithms)")),
        ThisOrNext(Column("variance", options.variance, "their variances, or")),
        ThisOrNext(Column("std-error", options.stdError, "their standard errors, or")),
        Column("weight", options.weight, "their weights, the inverses of the variances"),
    };
}

OptionDefinitions ColumnsOf(Options& options)
{
    switch (options.command) {
    case Command::BINARY:
        return BinaryColumns(options);
    case Command::CONTINUOUS:
        return ContinuousColumns(options);
    case Command::EFFECTS:
        return EffectsColumns(options);
    case Command::REGRESSION:
        return RegressionColumns(options);
    case Command::RATES:
    case Command::PROPORTION:
    case Command::RATE:
    case Command::CORRELATION:
    case Command::MEAN:
        return OutcomeColumns(options);
    }
    return {};
}

} // namespace

OptionGroup ColumnOptions(Options& options)
{
    OptionGroup group = {.heading = "Columns", .options = ColumnsOf(options)};
    group.options.push_back(
        Column("study", options.study, "labels of the studies (default: record numbers from 1)"));
    return group;
}

} // namespace host

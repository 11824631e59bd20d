#include "host/cli/ColumnChecks.h"

#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <string>

namespace host {

namespace {

/// Two columns of which one alone means nothing. True when both are named.
bool AreBothNamed(const ColumnName& one, const std::string& oneName, const ColumnName& other,
                  const std::string& otherName)
{
    if (one.has_value() != other.has_value())
        throw UnusableInput(fmt::format("--{} and --{} go together.", oneName, otherName));
    return one.has_value();
}

/// The columns of a group of means. Its options begin with `group`.
struct GroupColumns
{
    std::string group;
    const ColumnName& mean;
    const ColumnName& stdDev;
    const ColumnName& variance;
    const SummaryColumns& summary;
};

/// True when the columns of means are named.
bool CheckMean(const GroupColumns& columns)
{
    const std::string& group = columns.group;
    if (!columns.mean && (columns.stdDev || columns.variance))
        throw UnusableInput(fmt::format("--{0}-sd and --{0}-variance need --{0}-mean.", group));
    if (columns.mean && columns.stdDev.has_value() == columns.variance.has_value())
        throw UnusableInput(fmt::format("Exactly one of --{0}-sd and --{0}-variance is required.", group));
    return columns.mean.has_value();
}

/// True when the columns of medians are named.
bool CheckSummary(const GroupColumns& columns)
{
    const std::string& group = columns.group;
    const SummaryColumns& summary = columns.summary;
    const bool hasQuartiles = AreBothNamed(summary.q1, group + "-q1", summary.q3, group + "-q3");
    const bool hasExtremes = AreBothNamed(summary.minimum, group + "-min", summary.maximum, group + "-max");
    if (summary.median && !hasQuartiles && !hasExtremes)
        throw UnusableInput(
            fmt::format("--{0}-median needs --{0}-q1 and --{0}-q3, or --{0}-min and --{0}-max.", group));
    if (!summary.median && (hasQuartiles || hasExtremes))
        throw UnusableInput(fmt::format("--{0}-{1} needs --{0}-median.", group, hasQuartiles ? "q1" : "min"));
    return summary.median.has_value();
}

void CheckGroup(const GroupColumns& columns)
{
    const bool hasMean = CheckMean(columns);
    const bool hasMedian = CheckSummary(columns);
    if (!hasMean && !hasMedian)
        throw UnusableInput(fmt::format("--{0}-mean is required, or --{0}-median.", columns.group));
}

void CheckEffects(const Options& options)
{
    if (options.variance && options.stdError)
        throw UnusableInput("Only one of --variance and --std-error can be given.");
    const bool hasInterval = AreBothNamed(options.ciLower, "ci-lower", options.ciUpper, "ci-upper");
    if (!options.variance && !options.stdError && !hasInterval && !options.pValue)
        throw UnusableInput("One of --variance, --std-error, --ci-lower with --ci-upper, and --p-value is "
                            "required.");
}

void CheckBatch(const BatchOptions& batch)
{
    AreBothNamed(batch.effectAllele, "effect-allele", batch.otherAllele, "other-allele");
}

} // namespace

void CheckColumns(const Options& options)
{
    switch (options.outcome.value_or(options.command)) {
    case Command::CONTINUOUS:
        CheckGroup({"treatment", options.treatmentMean, options.treatmentStdDev, options.treatmentVariance,
                    options.treatmentSummary});
        CheckGroup({"control", options.controlMean, options.controlStdDev, options.controlVariance,
                    options.controlSummary});
        break;
    case Command::EFFECTS:
        CheckEffects(options);
        break;
    case Command::BATCH:
        CheckBatch(options.batch);
        break;
    case Command::BINARY:
    case Command::RATES:
    case Command::PROPORTION:
    case Command::RATE:
    case Command::CORRELATION:
    case Command::MEAN:
    case Command::REGRESSION:
        break;
    }
}

} // namespace host

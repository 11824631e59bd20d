#pragma once

#include "host/cli/RegressionOptions.h"
#include "host/draw/PictureFormat.h"

#include "meta_analysis/settings/MAModelSettings.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace host {

enum class Command
{
    BINARY,     ///< 2x2 tables
    CONTINUOUS, ///< group sizes, means and standard deviations
    EFFECTS,    ///< ready-made effect sizes
    REGRESSION  ///< ready-made effect sizes on covariates and factors
};

/// The name of a column; none when the option is not given.
using ColumnName = std::optional<std::string>;

/// What the command line asks for, complete with defaults. What the library has settings for stands in
/// `settings`, with the library's defaults but for those that the constructor sets; missing there are the
/// positions of the columns alone, which depend on the data.
struct Options
{
    explicit Options(Command ofCommand);

    Command command;
    std::vector<std::string> arguments; ///< as given
    std::set<std::string> given;        ///< names of the options that the command line has
    std::optional<std::string> preset;
    std::string dataPath;
    std::optional<std::string> jsonPath; ///< "-" for standard output
    std::optional<std::string> htmlPath;
    std::optional<std::string> plotsFolder;
    PictureFormat plotFormat = PictureFormat::SVG;

    ColumnName study;
    ColumnName treatmentEvents;
    ColumnName treatmentNonEvents;
    ColumnName controlEvents;
    ColumnName controlNonEvents;
    ColumnName treatmentSize;
    ColumnName treatmentMean;
    ColumnName treatmentStdDev;
    ColumnName treatmentVariance;
    ColumnName controlSize;
    ColumnName controlMean;
    ColumnName controlStdDev;
    ColumnName controlVariance;
    ColumnName effectSize;
    ColumnName variance;
    ColumnName stdError;
    ColumnName weight;

    ColumnName subgroup;
    ColumnName cumulative;
    std::vector<std::string> contrasts; ///< columns
    std::vector<std::string> bubbles;   ///< columns
    std::vector<double> contourLevels;  ///< as given; empty for the library's own
    bool runsSmallStudyTest = false;    ///< of the type in the settings

    /// Kind of a ready-made effect size as given; which names there are depends on the outcome.
    std::optional<std::string> readyMadeEffect;

    RegressionOptions regression;

    MA_NAMESPACE::MAModelSettings settings;
};

/// Checks what depends on several options, and completes the settings. Throws UnusableInput.
void Resolve(Options& options);

} // namespace host

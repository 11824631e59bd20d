#pragma once

#include "host/cli/BatchColumns.h"
#include "host/cli/ForestChoices.h"
#include "host/data/ColumnName.h"
#include "host/draw/DrawingMedium.h"
#include "host/draw/PictureFormat.h"

#include "meta_analysis/settings/MAModelSettings.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace host {

enum class Command
{
    BINARY,     ///< 2x2 tables
    CONTINUOUS, ///< group sizes, means and standard deviations
    EFFECTS,    ///< ready-made effect sizes
    REGRESSION, ///< effect sizes, ready-made or of raw data, on covariates and factors
    RATES,      ///< events and person-time of two groups; the next ones are of one group
    PROPORTION,
    RATE,
    CORRELATION,
    MEAN,
    BATCH ///< ready-made effect sizes of many analyses
};

/// Whether the command pools one set of studies, with the steps of an analysis around it.
constexpr bool HasSteps(Command command)
{
    return command != Command::REGRESSION && command != Command::BATCH;
}

/// The columns of what a group reports in place of mean and standard deviation.
struct SummaryColumns
{
    ColumnName median;
    ColumnName q1;
    ColumnName q3;
    ColumnName minimum;
    ColumnName maximum;
};

/// What the command `regression` has beyond the other commands.
struct RegressionOptions
{
    std::vector<std::string> covariates;
    std::vector<std::string> factors;
    std::vector<std::string> interactions; ///< as given, "A:B"
    bool noIntercept = false;
    bool dispersion = false; ///< multiplicative, for the fixed model
    bool normalTests = false;
    std::vector<std::string> references;  ///< as given, "FACTOR=LEVEL"
    std::vector<std::string> hypotheses;  ///< as given, "L1,L2,...=r"
    std::vector<std::string> predictions; ///< as given, "latitude=30,allocation=random"
    std::optional<std::string> rawEffect; ///< the measure of raw data, whose outcome says which it has
    ColumnName cluster;
    MA_NAMESPACE::MARegSettings tests; ///< the sandwich and the permutation test alone
};

/// What the command `batch` has beyond the other commands.
struct BatchOptions
{
    std::vector<std::string> files; ///< "-" for standard input
    ColumnName key;
    ColumnName effectAllele;
    ColumnName otherAllele;
    bool isUnsorted = false; ///< one file, whose rows of a key need not be together
    bool isSorted = false;   ///< several files, sorted by the bytes of the key
    int threadCount = 1;     ///< 0 for one for each processor
    std::vector<BatchColumn> columns{BATCH_COLUMNS.begin(), BATCH_COLUMNS.end()};
    std::optional<std::string> output; ///< "-" for standard output, as none
    std::optional<std::string> rejects;
};

/// How the data file is written.
struct FileFormat
{
    std::optional<char> separator;   ///< comma, semicolon or tab; by the header line without
    std::optional<char> decimalMark; ///< point or comma; by the fields without
    std::vector<std::string> missing = {"", "NA", "N/A", "NaN",
                                        "."}; ///< texts of missing values, in any case
};

/// How the text report and the table of studies are written, and where.
struct ReportOptions
{
    std::optional<std::string> output;    ///< "-" for standard output, as none
    std::optional<std::string> tablePath; ///< "-" for standard output
    std::optional<int> digits;            ///< behind the point, of reports, tables and pictures
    bool isQuiet = false;                 ///< no report
    bool hasCitation = false;             ///< the methods sentence and its references behind the report
};

/// What the forest plot shows, and how all pictures are made.
struct PictureOptions
{
    std::vector<std::string> forestColumns; ///< as given: names, or lists of them separated by commas
    std::string forestSort = "file";        ///< "file", "effect", "weight" or a column
    ForestModels models = ForestModels::ANALYSED;
    PredictionLook prediction = PredictionLook::BAR;
    std::optional<std::pair<double, double>> axisLimits; ///< on the natural scale
    std::string title;
    std::optional<std::pair<std::string, std::string>> favours;    ///< left and right of no effect
    std::optional<std::pair<std::string, std::string>> groupNames; ///< of treatment and control
    ForestLayout layout = ForestLayout::PLAIN;
    std::optional<PictureSize> size;
    std::optional<int> resolution;  ///< of PNG, in pixels an inch
    bool hasDrapery = false;        ///< p-value functions of the studies and the pooled effect
    bool hasPredictionBand = false; ///< about the lines of bubble plots
};

/// What the command line asks for, complete with defaults. `settings` holds what the library has settings
/// for, with the library's defaults but for those that the constructor sets. The positions of the columns
/// are not in it, because they depend on the data.
struct Options
{
    explicit Options(Command ofCommand);

    /// Sets what the data are: those of another command for the regression of raw data.
    void SetOutcome(Command ofData);

    Command command;
    /// The command that has these data. A regression learns it from the columns that are given; it is
    /// REGRESSION for ready-made effect sizes.
    std::optional<Command> outcome;
    std::vector<std::string> arguments; ///< as given
    std::set<std::string> given;        ///< names of the options that the command line has
    std::vector<std::string> notes;     ///< sentences on how options are read, for the report
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
    ColumnName treatmentTime;
    ColumnName controlTime;
    ColumnName events; ///< of one group, as the next ones
    ColumnName nonEvents;
    ColumnName time;
    ColumnName size;
    ColumnName correlation;
    ColumnName mean;
    ColumnName stdDev;
    ColumnName effectSize;
    ColumnName variance;
    ColumnName stdError;
    ColumnName weight;
    SummaryColumns treatmentSummary;
    SummaryColumns controlSummary;
    ColumnName ciLower;
    ColumnName ciUpper;
    ColumnName pValue;

    ColumnName subgroup;
    ColumnName cumulative;
    std::vector<std::string> contrasts; ///< columns
    std::vector<std::string> bubbles;   ///< columns
    std::vector<double> contourLevels;  ///< as given; empty for the library's own
    bool runsSmallStudyTest = false;    ///< of the type in the settings

    /// The measure of ready-made effect sizes as given. The outcome decides which names are allowed.
    std::optional<std::string> readyMadeEffect;

    /// What reports and pictures call the measure of ready-made effect sizes; by --effect without it.
    std::optional<std::string> label;

    FileFormat file;
    ReportOptions report;
    PictureOptions picture;
    bool keepsMissingGroups = false; ///< a subgroup of the studies without a value
    RegressionOptions regression;
    BatchOptions batch;

    MA_NAMESPACE::MAModelSettings settings;
};

} // namespace host

#include "host/Program.h"

#include "host/batch/Batch.h"
#include "host/cli/CommandLine.h"
#include "host/cli/NamedColumns.h"
#include "host/data/DataTable.h"
#include "host/output/OutputPlaces.h"
#include "host/output/OutputWriting.h"
#include "host/output/WriteOutput.h"
#include "host/plots/Plots.h"
#include "host/plots/RegressionPlots.h"
#include "host/report/AnalysisReport.h"
#include "host/report/AnalysisResults.h"
#include "host/report/Cautions.h"
#include "host/report/JsonReport.h"
#include "host/report/RegressionReport.h"
#include "host/report/RegressionResults.h"
#include "host/run/Analysis.h"
#include "host/run/AnalysisRequest.h"
#include "host/system/AtomicFile.h"
#include "host/system/Progress.h"
#include "host/table/RenderTable.h"
#include "host/text/PlainText.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <csignal>
#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <utility>
#include <variant>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// The parameters that the weights of a hypothesis are of, when an error is about these.
std::string ParametersOfHypotheses(const RegressionData& data)
{
    const int code = data.analysis.status.GetCode();
    if (code != MAStatusCode::HYPOTHESIS_UNUSABLE && code != MAStatusCode::HYPOTHESIS_ON_REDUNDANT)
        return {};
    return fmt::format("The parameters are {}.", fmt::join(data.ParameterNames(), ", "));
}

/// The texts of the file go as soon as nothing needs them: a million studies have some 50 MB.
using OwnedTable = std::unique_ptr<const DataTable>;

int AnalyseRegression(const Options& options, OwnedTable table)
{
    const RegressionRequest request = MakeRegressionRequest(options, *table);
    table.reset();
    const RegressionAnalysis analysis = WithProgress(
        "Fitting the model", [&] { return RunRegression(request, options.settings.GetModelType()); });
    const auto makeReport = [&] { return MakeRegressionReport(options, request, analysis); };
    const auto makeJson = [&] {
        return RenderJson(options, {request.studyLabels, request.lines, analysis.records, analysis.status,
                                    WarningsOf(request, analysis), ResultsOf(request, analysis),
                                    CautionsOf(RegressionData(options, request, analysis)).sentences});
    };
    const auto makePictures = [&] {
        return MakeRegressionPictures(RegressionData(options, request, analysis));
    };
    const auto makeTable = [&](TableKind kind) {
        return RenderTable(StudyTableOf(RegressionData(options, request, analysis)), kind);
    };
    return WriteOutput(options,
                       {analysis.status, makeReport, makeJson, KXStatus(), makePictures,
                        ParametersOfHypotheses(RegressionData(options, request, analysis)), makeTable});
}

int AnalyseStudies(const Options& options, OwnedTable table)
{
    AnalysisRequest request = MakeAnalysisRequest(options, *table);
    const std::size_t read = table->RowCount();
    if (!options.report.tablePath)
        table.reset();
    const Analysis analysis = WithProgress("Analysing the studies", [&] { return RunAnalysis(request); });
    const auto makeReport = [&] { return MakeAnalysisReport(options, request, analysis); };
    const auto makeJson = [&] {
        return RenderJson(options,
                          {request.studyLabels, request.lines, analysis.Records(read), analysis.FinalStatus(),
                           WarningsOf(AnalysisData(request, analysis)), ResultsOf(analysis),
                           CautionsOf(AnalysisData(request, analysis)).sentences});
    };
    const auto makePictures = [&] { return MakePictures(request, analysis); };
    const auto makeTable = [&](TableKind kind) {
        return RenderTable(StudyTableOf(options, *table, AnalysisData(request, analysis)), kind);
    };
    return WriteOutput(
        options,
        {analysis.status, makeReport, makeJson, analysis.FinalStatus(), makePictures, {}, makeTable});
}

OwnedTable ReadTable(const Options& options)
{
    FileFormat format = options.file;
    format.numberColumns = NumberColumnsOf(options);
    return std::make_unique<const DataTable>(DataTable::Read(options.dataPath, format));
}

int Analyse(const Options& options)
{
    if (options.command == Command::BATCH)
        return RunBatch(options);
    CheckOutputPlaces(options);
    OwnedTable table =
        WithProgress("Reading " + LabelText(DataName(options.dataPath)), [&] { return ReadTable(options); });
    return options.command == Command::REGRESSION ? AnalyseRegression(options, std::move(table))
                                                  : AnalyseStudies(options, std::move(table));
}

int Run(int argc, const char* const* argv)
{
    const std::variant<Options, TextToShow> commandLine = ParseCommandLine(argc, argv);
    if (const auto* const shown = std::get_if<TextToShow>(&commandLine)) {
        WriteStandardOutput(shown->text);
        return EXIT_RAN;
    }
    return Analyse(std::get<Options>(commandLine));
}

int Complain(const char* problem) noexcept
{
    WriteToStandardError(problem);
    return EXIT_UNUSABLE;
}

} // namespace

int RunProgram(int argc, const char* const* argv) noexcept
{
    RemoveTemporaryFilesOnSignals();
    std::signal(SIGPIPE, SIG_IGN); // the files are written even when nobody reads the whole report
    try {
        return Run(argc, argv);
    } catch (const std::bad_alloc&) {
        return Complain("Memory ran out.");
    } catch (const std::exception& problem) {
        return Complain(problem.what());
    }
}

} // namespace host

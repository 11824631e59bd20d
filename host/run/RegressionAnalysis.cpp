#include "host/run/RegressionAnalysis.h"

#include "host/run/UnusableRecords.h"
#include "host/system/Progress.h"
#include "host/text/StatusText.h"

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/ProgressListener.h"
#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAREAlgorithm.h"

#include <algorithm>
#include <cstddef>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// Passes the library's progress on to the terminal.
class ShownProgress : public ProgressListener
{
public:
    ShownProgress(Progress& progress, const char* step) : progress_(progress), step_(step) {}
    void Report(long done, long total) override { progress_.Show(step_, done, total); }

private:
    Progress& progress_;
    const char* step_;
};

template <class Engine>
std::optional<Score> ScoreOf(const Engine& engine, const Record& record)
{
    Score score{};
    const KXStatus status = engine.Score(record, score.fit, score.stdError, score.lower, score.upper,
                                         score.residual, score.residualStdError, score.leverage);
    return status.IsOK() ? std::optional(score) : std::nullopt;
}

/// Sorts the records into used and excluded ones. A record with a leverage is one that the engine used. After
/// an early error the engine has used none, and those that it could use are in neither list.
void SortRecords(const RegressionRequest& request, const RegressionAnalysis& analysis, RecordSummary& use)
{
    for (std::size_t i = 0; i < request.records.size(); ++i) {
        const int number = static_cast<int>(i);
        if (analysis.scores[i] && !KXMV::IsMissing(analysis.scores[i]->leverage)) {
            use.used.push_back(number);
            continue;
        }
        if (request.rawEffects && KXMV::IsMissing(request.rawEffects->effects[i]))
            continue;
        if (const std::optional<std::string> reason = ReasonOfUnusable(request, request.records[i]))
            use.Exclude(number, *reason);
        else if (!analysis.status.IsError())
            use.Exclude(number, "value beyond what the regression can use");
        use.missing += HasMissing(request.records[i]) ? 1 : 0;
    }
    std::sort(
        use.excluded.begin(), use.excluded.end(),
        [](const ExcludedRecord& one, const ExcludedRecord& other) { return one.record < other.record; });
}

/// The engine counts the records that it could not use, those without an effect size of raw data included.
RecordSummary UseOf(const RegressionRequest& request, const RegressionAnalysis& analysis)
{
    RecordSummary use = request.rawEffects ? request.rawEffects->records : RecordSummary();
    use.read = request.records.size();
    use.used.clear();
    const int leftOut = use.missing + use.invalid + use.dropped;
    const int missingBefore = use.missing;
    SortRecords(request, analysis, use);
    const int missing = use.missing - missingBefore;
    // After an early error the engine has counted no record.
    use.invalid += std::max(0, analysis.output->GetNBadRecords() - leftOut - missing);
    return use;
}

/// The engine lets the host read its coordinates only while it has the model.
template <class Engine>
void Plot(const Engine& engine, const RegressionRequest& request, RegressionAnalysis& analysis)
{
    VectorRecordIter records(request.records);
    engine.ForestPlot(records, analysis.forest);
    for (const int covariate : request.settings.GetCovariates())
        engine.BubblePlot(records, covariate, request.bubblePoints, analysis.bubbles[covariate]);
}

/// Those of the effect sizes come before those of the regression.
std::vector<KXStatus> WarningsOf(const RegressionRequest& request, const std::vector<KXStatus>& ofEngine)
{
    std::vector<KXStatus> warnings;
    if (request.rawEffects)
        warnings = request.rawEffects->warnings;
    for (const KXStatus& warning : ofEngine)
        MABaseModel::AddNewWarning(warning, warnings);
    return warnings;
}

template <class Engine>
double Tau2ByGlobalSearch(const RegressionRequest& request)
{
    MARegSettings settings = request.settings;
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    Engine engine(settings);
    VectorRecordIter records(request.records);
    engine.BuildModel(records);
    return MARegOutputStats(settings, engine).GetTau();
}

template <class Engine>
RegressionAnalysis Run(const RegressionRequest& request)
{
    Progress progress("Fitting the model");
    ShownProgress reading(progress, "Reading record");
    ShownProgress iterations(progress, "Fitting the model, iteration");
    MARegSettings settings = request.settings;
    settings.SetRecProgressListener(&reading);
    settings.SetIterProgressListener(&iterations);
    Engine engine(settings);
    VectorRecordIter records(request.records);
    RegressionAnalysis analysis;
    analysis.status = engine.BuildModel(records);
    analysis.warnings = WarningsOf(request, engine.GetWarnings());
    analysis.output = std::make_unique<const MARegOutputStats>(request.settings, engine);
    analysis.scores.reserve(request.records.size());
    for (const Record& record : request.records) {
        progress.Show("Scoring record", static_cast<long>(analysis.scores.size() + 1),
                      static_cast<long>(request.records.size()));
        analysis.scores.push_back(ScoreOf(engine, record));
    }
    if (HasTau2Doubt(analysis.warnings))
        analysis.globalTau2 = Tau2ByGlobalSearch<Engine>(request);
    analysis.records = UseOf(request, analysis);
    if (request.hasPictures)
        Plot(engine, request, analysis);
    return analysis;
}

} // namespace

RegressionAnalysis RunRegression(const RegressionRequest& request, MAConst::MODELTYPE model)
{
    return model == MAConst::MODEL_FIXED ? Run<MAFEAlgorithm>(request) : Run<MAREAlgorithm>(request);
}

} // namespace host

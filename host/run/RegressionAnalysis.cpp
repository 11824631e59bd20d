#include "host/run/RegressionAnalysis.h"

#include "host/text/Progress.h"
#include "host/text/StatusText.h"

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

bool HasMissing(const Record& record)
{
    for (std::size_t i = 0; i < record.Size(); ++i)
        if (KXMV::IsMissing(record.Get(static_cast<int>(i))))
            return true;
    return false;
}

template <class Engine>
std::optional<Score> ScoreOf(const Engine& engine, const Record& record)
{
    Score score{};
    const KXStatus status = engine.Score(record, score.fit, score.stdError, score.lower, score.upper,
                                         score.residual, score.residualStdError, score.leverage);
    return status.IsOK() ? std::optional(score) : std::nullopt;
}

/// The engine counts the records that it could not use. A record with a leverage is one that it used.
RecordSummary UseOf(const std::vector<Record>& records, const RegressionAnalysis& analysis)
{
    RecordSummary use;
    use.read = records.size();
    for (std::size_t i = 0; i < records.size(); ++i)
        if (analysis.scores[i] && !KXMV::IsMissing(analysis.scores[i]->leverage))
            use.used.push_back(static_cast<int>(i));
    use.missing = static_cast<int>(std::count_if(records.begin(), records.end(), HasMissing));
    // After an early error the engine has counted no record.
    use.invalid = std::max(0, analysis.output->GetNBadRecords() - use.missing);
    return use;
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
    Progress progress;
    ShownProgress reading(progress, "Reading record");
    ShownProgress iterations(progress, "Fitting the model, iteration");
    MARegSettings settings = request.settings;
    settings.SetRecProgressListener(&reading);
    settings.SetIterProgressListener(&iterations);
    Engine engine(settings);
    VectorRecordIter records(request.records);
    RegressionAnalysis analysis;
    analysis.status = engine.BuildModel(records);
    analysis.warnings = engine.GetWarnings();
    analysis.output = std::make_unique<const MARegOutputStats>(request.settings, engine);
    analysis.scores.reserve(request.records.size());
    for (const Record& record : request.records) {
        progress.Show("Scoring record", static_cast<long>(analysis.scores.size() + 1),
                      static_cast<long>(request.records.size()));
        analysis.scores.push_back(ScoreOf(engine, record));
    }
    if (HasTau2Doubt(analysis.warnings))
        analysis.globalTau2 = Tau2ByGlobalSearch<Engine>(request);
    analysis.records = UseOf(request.records, analysis);
    return analysis;
}

} // namespace

RegressionAnalysis RunRegression(const RegressionRequest& request, MAConst::MODELTYPE model)
{
    return model == MAConst::MODEL_FIXED ? Run<MAFEAlgorithm>(request) : Run<MAREAlgorithm>(request);
}

} // namespace host

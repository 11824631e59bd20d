#include "host/run/Analysis.h"

#include "host/text/Exclusions.h"
#include "host/text/Measures.h"
#include "host/text/StatusText.h"

#include "meta_analysis/settings/RegressionSettingsOf.h"

#include <algorithm>
#include <type_traits>

using namespace MA_NAMESPACE;

namespace host {

namespace {

template <class Model>
Analysis NewAnalysisBy(const MAModelSettings& settings)
{
    return {.model = Model(settings),
            .status = {},
            .testStatus = {},
            .bubbleStatus = {},
            .globalTau2 = {},
            .other = {}};
}

Analysis NewAnalysis(const MAModelSettings& settings)
{
    if (IsMeasured(settings))
        return NewAnalysisBy<MAOutcomeModel>(settings);
    return IsBinary(settings) ? NewAnalysisBy<MABinModel>(settings) : NewAnalysisBy<MAContModel>(settings);
}

KXStatus TestOverall(MABinModel& model, AnalysisRequest& request)
{
    return model.RegBasedBinTest(request.records, request.variables, request.settings.GetRegBaseTestType());
}

/// Continuous outcomes have one type of test.
KXStatus TestOverall(MAContModel& model, AnalysisRequest& request)
{
    return model.RegBasedContTest(request.records, request.variables);
}

KXStatus TestOverall(MAOutcomeModel& model, AnalysisRequest& request)
{
    return model.RegBasedOutcomeTest(request.records, request.variables);
}

/// Runs the test of all studies, then the tests of each group and of all studies with all parameters.
template <class Model>
KXStatus RunSmallStudyTest(Model& model, AnalysisRequest& request)
{
    const KXStatus status = TestOverall(model, request);
    if (status.IsError())
        return status;
    return model.RegBasedTest(request.records, request.variables, SmallStudyTestSettingsOf(request.settings));
}

/// The settings of the models alone.
MAModelSettings WithoutSteps(MAModelSettings settings)
{
    settings.SetIsTRIMFILL(false);
    settings.SetCommulativeIndex(-1);
    settings.SetContrastCoefIndex({});
    settings.SetLeaveOneOut(false);
    settings.SetInfluence(false);
    settings.SetRankTest(false);
    return settings;
}

/// Random effects weigh by inverse variance, whatever the fixed effect does.
MAModelSettings SettingsOfOtherModel(const MAModelSettings& analysed)
{
    MAModelSettings settings = WithoutSteps(analysed);
    const bool isFixed = settings.GetModelType() == MAConst::MODEL_FIXED;
    settings.SetModelType(isFixed ? MAConst::MODEL_RANDOM : MAConst::MODEL_FIXED);
    settings.SetWeightType(MAConst::WEIGHT_INVERSE_VARIANCE);
    settings.SetCommonTau2(false);
    return settings;
}

/// Runs the same models by the global search, without the steps beyond them.
template <class Model>
std::vector<double> Tau2ByGlobalSearch(AnalysisRequest& request)
{
    MAModelSettings settings = WithoutSteps(request.settings);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    Model model(settings);
    model.RUN(request.records, request.variables);
    return model.GetTau2Var();
}

template <class Model>
std::shared_ptr<const OtherModel> RunOtherModel(AnalysisRequest& request)
{
    const MAModelSettings settings = SettingsOfOtherModel(request.settings);
    auto other = std::make_shared<OtherModel>(OtherModel{settings, NewAnalysisBy<Model>(settings)});
    Model& model = std::get<Model>(other->analysis.model);
    other->analysis.status = model.RUN(request.records, request.variables);
    return other->analysis.status.IsError() ? nullptr : other;
}

KXStatus PlotBubbles(MABaseModel& model, AnalysisRequest& request)
{
    MARegSettings settings = RegressionSettingsOf(request.settings);
    for (const int covariate : request.bubbleCovariates)
        settings.AddCovariate(covariate);
    return model.BubblePlot(request.records, request.variables, settings);
}

} // namespace

const MABaseModel& Analysis::Base() const
{
    return std::visit([](const MABaseModel& base) -> const MABaseModel& { return base; }, model);
}

KXStatus Analysis::FinalStatus() const
{
    if (status.IsError())
        return status;
    if (HasFailedTest())
        return *testStatus;
    return bubbleStatus.IsError() ? bubbleStatus : status;
}

RecordSummary Analysis::Records(std::size_t read) const
{
    const MABaseModel& base = Base();
    RecordSummary records = {.read = read,
                             .used = base.GetNonMissingStudyID(),
                             .missing = base.GetNMissing(),
                             .invalid = base.GetNInvalid(),
                             .dropped = base.GetNDropped()};
    const std::vector<int> excluded = base.GetExcludedRecord();
    const std::vector<int> reasons = base.GetExclusionReason();
    for (std::size_t i = 0; i < std::min(excluded.size(), reasons.size()); ++i)
        records.Exclude(excluded[i], NameOf(EXCLUSIONS, static_cast<MAConst::EXCLUSION>(reasons[i])));
    return records;
}

Analysis ComputeEffectSizes(AnalysisRequest& request)
{
    Analysis analysis = NewAnalysis(request.settings);
    std::visit(
        [&](auto& model) {
            if (request.settings.GetInputESType() == MAConst::INPUT_RAW)
                analysis.status = model.ESCalc(request.records);
            if (!analysis.status.IsError())
                analysis.status = model.ExtractModelInputData(request.records);
        },
        analysis.model);
    return analysis;
}

Analysis RunAnalysis(AnalysisRequest& request)
{
    Analysis analysis = NewAnalysis(request.settings);
    std::visit(
        [&](auto& model) {
            using Model = std::remove_reference_t<decltype(model)>;
            analysis.status = model.RUN(request.records, request.variables);
            if (analysis.status.IsError())
                return;
            analysis.trimmedSide = model.GetTRimFillSide();
            if (request.runsSmallStudyTest)
                analysis.testStatus = RunSmallStudyTest(model, request);
            if (!request.bubbleCovariates.empty())
                analysis.bubbleStatus = PlotBubbles(model, request);
            if (HasTau2Doubt(model.GetWarnings()))
                analysis.globalTau2 = Tau2ByGlobalSearch<Model>(request);
            if (request.forest.options.models == ForestModels::BOTH)
                analysis.other = RunOtherModel<Model>(request);
        },
        analysis.model);
    return analysis;
}

} // namespace host

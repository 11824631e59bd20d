#include "host/cli/Choices.h"
#include "host/report/ZeroCellSentences.h"
#include "host/report/citation/Methods.h"
#include "host/text/PlainText.h"
#include "host/text/SmallStudyTests.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Keys = std::vector<std::string>;

Keys KeysOfTables(MAConst::BINESTYPE measure, bool arePooled)
{
    switch (measure) {
    case MAConst::BIN_ODDS_RATIO:
        return arePooled ? Keys{"Mantel1959", "Robins1986"} : Keys{"Woolf1955"};
    case MAConst::BIN_PETO_ODDS_RATIO:
        return {"Yusuf1985"};
    case MAConst::BIN_RISK_RATIO:
        return arePooled ? Keys{"Mantel1959", "Greenland1985"} : Keys{"Katz1978"};
    case MAConst::BIN_RISK_DIFFERENCE:
        return arePooled ? Keys{"Mantel1959", "Greenland1985"} : Keys{};
    }
    return {};
}

Keys KeysOfMeans(MAConst::CONTESTYPE measure)
{
    switch (measure) {
    case MAConst::CONT_COHENS_D:
    case MAConst::CONT_GLASS_DELTA:
        return {"HedgesOlkin1985"};
    case MAConst::CONT_HEDGES_G:
        return {"Hedges1981"};
    case MAConst::CONT_MEAN_DIFFERENCE:
        return {};
    }
    return {};
}

Keys KeysOfOutcome(MAConst::OUTCOMEMEASURE measure, bool arePooled)
{
    if (arePooled)
        return {"Greenland1985"};
    switch (allOutcomeMeasures[measure].scale) {
    case MAScale::FreemanTukeyProportion:
        return {"Freeman1950", "Miller1978"};
    case MAScale::FreemanTukeyRate:
        return {"Freeman1950"};
    case MAScale::FisherZ:
        return {"Fisher1921"};
    case MAScale::Natural:
    case MAScale::Log:
    case MAScale::Logit:
    case MAScale::Arcsine:
    case MAScale::SquareRoot:
        return {};
    }
    return {};
}

/// Of effect sizes that the program computes. Ready-made ones have been computed elsewhere.
Keys KeysOfMeasure(const MAModelSettings& settings)
{
    if (settings.GetInputESType() != MAConst::INPUT_RAW)
        return {};
    if (IsMeasured(settings))
        return KeysOfOutcome(settings.GetOutcomeMeasure(), PoolsTables(settings));
    return IsBinary(settings) ? KeysOfTables(settings.GetBinaryEstType(), PoolsTables(settings))
                              : KeysOfMeans(settings.GetContinousEstType());
}

Method Pooling(const AnalysisData& data)
{
    const bool isTransformed = data.natural && !PoolsTables(data.settings);
    const std::string name = data.natural ? data.measure.name : data.measure.AnalysisName();
    const bool isOfPerson = name.find('\'') != std::string::npos; // "Hedges' g"
    return {fmt::format("{}{} was pooled from {}{} under a {}", isOfPerson ? "" : "The ", name,
                        CountOfStudies(data.base.GetNonMissingStudyID().size()),
                        isTransformed ? " as " + data.measure.AnalysisName() : std::string(),
                        IsRandom(data.settings) ? "random-effects model with weights by inverse variance"
                                                : WordingOfModel(data.settings)),
            KeysOfMeasure(data.settings)};
}

Method Zeros(const AnalysisData& data)
{
    const int corrected = CorrectedStudies(data);
    if (corrected == 0)
        return {};
    return {fmt::format("For the effects of {} with zero counts, {} was added to all counts",
                        CountOfStudies(static_cast<std::size_t>(corrected)),
                        data.settings.GetZeroCountDelta()),
            {"Sweeting2004"}};
}

Method Conversions(const AnalysisData& data)
{
    return MethodOfConversions(StudyNotesOf(data.base));
}

Method Tau2(const AnalysisData& data)
{
    return IsRandom(data.settings) ? MethodOfTau2(data.settings.GetEstTauType()) : Method();
}

Method Tau2Interval(const AnalysisData& data)
{
    return IsRandom(data.settings) ? MethodOfTau2Interval(data.settings.GetTau2Interval()) : Method();
}

Method Intervals(const AnalysisData& data)
{
    return MethodOfKnappHartung(IsRandom(data.settings) ? data.settings.GetKnapHartAdjustType()
                                                        : MAConst::KNAPP_HARTUNG_NONE);
}

Method Heterogeneity(const AnalysisData& /*data*/)
{
    return {"Heterogeneity was tested by Cochran's Q and described by I²", {"Cochran1954", "Higgins2002"}};
}

Method Prediction(const AnalysisData& data)
{
    if (!IsRandom(data.settings) || !HasAnyValue(data.base.GetPILower()))
        return {};
    const std::string rule = WordingOfPrediction(data.settings.GetPrediction());
    return {"Prediction intervals are by " +
                (rule.empty() ? "Student's t with k - 2 degrees of freedom" : "the " + rule),
            {"Higgins2009"}};
}

Method Subgroups(const AnalysisData& data)
{
    if (data.groupLabels.empty())
        return {};
    const bool isCommon = IsRandom(data.settings) && data.settings.GetCommonTau2();
    return {fmt::format("Subgroups by {} were fitted with {} and compared by the Q between them",
                        LabelText(data.request.subgroup.column),
                        isCommon ? "one between-study variance" : "a model each"),
            {}};
}

Method MeansOfGroups(const AnalysisData& data)
{
    const bool isWelchs = HasValue(data.base.GetGDQbF()) && !data.settings.GetCommonTau2();
    return isWelchs ? Method{"The subgroups' means were also compared by Welch's test", {"Welch1951"}}
                    : Method();
}

Method Cumulative(const AnalysisData& data)
{
    if (data.base.GetCumEstES().empty())
        return {};
    return {fmt::format("A cumulative analysis added the studies in order of {}",
                        LabelText(data.request.cumulative.column)),
            {"Lau1992"}};
}

Method LeaveOneOut(const AnalysisData& data)
{
    return data.settings.GetLeaveOneOut() ? Method{"For sensitivity, each study was left out in turn", {}}
                                          : Method();
}

Method Influence(const AnalysisData& data)
{
    return MethodOfInfluence(data.settings);
}

Method TrimAndFill(const AnalysisData& data)
{
    if (!data.settings.GetIsTRIMFILL())
        return {};
    return {fmt::format("Asymmetry of the funnel plot was examined by trim-and-fill with the {} estimator",
                        NameOf(TRIM_FILL_CHOICES, data.settings.GetTrimFillMethod())),
            {"Duval2000"}};
}

Method RankTest(const AnalysisData& data)
{
    return data.settings.GetRankTest()
               ? Method{"Effects and variances were tested for a rank correlation", {"Begg1994"}}
               : Method();
}

Keys KeysOfTest(MAConst::RegBaseTestType type)
{
    switch (type) {
    case MAConst::REG_TEST_EFFECT_ON_STD_ERROR:
        return {"Egger1997"};
    case MAConst::REG_TEST_SCORE_VARIANCE:
    case MAConst::REG_TEST_SCORE_CONTROL:
        return {"Harbord2006"};
    case MAConst::REG_TEST_EFFECT_ON_SIZE:
        return {"Peters2006"};
    }
    return {};
}

Method SmallStudyTest(const AnalysisData& data)
{
    if (!data.analysis.testStatus || data.analysis.testStatus->IsError())
        return {};
    const MAConst::RegBaseTestType type = data.settings.GetRegBaseTestType();
    return {fmt::format("Small-study effects were tested by the regression of {}",
                        RowOf(SMALL_STUDY_TESTS, type).description),
            KeysOfTest(type)};
}

using MethodMaker = Method (*)(const AnalysisData&);

constexpr MethodMaker METHODS[] = {Pooling,
                                   Zeros,
                                   Conversions,
                                   Tau2,
                                   Tau2Interval,
                                   Intervals,
                                   MethodOfLevel<AnalysisData>,
                                   Heterogeneity,
                                   Prediction,
                                   Subgroups,
                                   MeansOfGroups,
                                   Cumulative,
                                   LeaveOneOut,
                                   Influence,
                                   TrimAndFill,
                                   RankTest,
                                   SmallStudyTest};

} // namespace

ReportSections MethodsSections(const AnalysisData& data)
{
    return SectionsBy(METHODS, data);
}

} // namespace host

#include "faults/RunChecks.h"
#include "support/Compare.h"

#include "meta_analysis/platform/common/VectorRecordIter.h"
#include "meta_analysis/settings/MAOutcomeMeasures.h"

#include <array>
#include <numeric>
#include <set>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

/// What an analysis and what may follow it returned, and all that they leave.
struct Outcome
{
    KXStatus status;
    KXStatus tested;
    KXStatus plotted;
    Results results;
};

template <class Driver>
Outcome OutcomeOf(const AnalysisCase& made, int runs)
{
    Driver model(made.settings);
    Outcome outcome;
    for (int run = 0; run < runs; ++run) {
        VectorRecordIter records(made.rows);
        outcome.status = model.RUN(records, made.variables);
        outcome.tested = model.RegBasedTest(records, made.variables, made.regression);
        outcome.plotted = model.BubblePlot(records, made.variables, made.regression);
    }
    outcome.results = ResultsOf(model);
    return outcome;
}

/// ... of the last of several runs of one object.
Outcome OutcomeOf(const AnalysisCase& made, int runs = 1)
{
    if (made.isMeasured)
        return OutcomeOf<MAOutcomeModel>(made, runs);
    return made.isBinary ? OutcomeOf<MABinModel>(made, runs) : OutcomeOf<MAContModel>(made, runs);
}

/// Results with as many rows of the same lengths.
const Names companions[] = {
    {"GetEffectSize", "GetVariance", "GetStdError", "GetZVal", "GetSig", "GetNonMissingStudyID"},
    {"GetEstEffectSize", "GetEstStdError", "GetEstZVal", "GetEstSig"},
    {"GetEstDf", "GetHomoTestdf"},
    {"GetHomoTestChisquareQ", "GetHomoTestdf", "GetHomoTestSig", "GetPILower", "GetPIUpper"},
    {"GetHomoTestChisquareQ", "GetTau2CILower", "GetTau2CIUpper", "GetTau2Convergence", "GetAIC"},
    {"GetContrastEstES", "GetContrastEstStdError", "GetContrastEstZVal", "GetContrastEstSig"},
    {"GetCumEstES", "GetCumEstStdErr", "GetCumEstZval", "GetCumEstSig", "GetCumEstCiLower"},
    {"GetLeaveOneOutEffectSize", "GetLeaveOneOutSig", "GetLeaveOneOutTau2Var", "GetLeaveOneOutI2Index"},
    {"GetInfluenceHat", "GetInfluenceDFFITS", "GetInfluenceTau2Deleted", "GetInfluenceRules", "GetBaujatY"},
    {"GetFunnelX", "GetFunnelY"},
    {"GetFunnelCIX", "GetFunnelCIY"},
    {"GetGalbPlotX", "GetGalbPlotY"},
    {"GetGalbRegrIntercept", "GetGalbRegrSlope"},
    {"GetBubbleXs", "GetBubblePredVals", "GetBubbleW", "GetBubbleCILower", "GetBubbleCIUpper"},
    {"GetBubbleCICurveX", "GetBubbleCICurveLower", "GetBubbleCICurveUpper", "GetBubblePICurveUpper"},
    {"GetBubbleFlags", "GetBubbleSlopeSig", "GetBubbleSlopeCIUpper"},
    {"GetRegrTestCoefficient", "GetRegrTestBetaStandErr", "GetRegrBetaTestVal", "GetRegrBetaTestPValue"},
};

const std::pair<const char*, const char*> logarithmsOfPValues[] = {
    {"GetSig", "GetLog10Sig"},
    {"GetEstSig", "GetEstLog10Sig"},
    {"GetHomoTestSig", "GetHomoTestLog10Sig"},
    {"GetContrastEstSig", "GetContrastLog10Sig"},
    {"GetCumEstSig", "GetCumEstLog10Sig"},
};

/// A result between its bounds.
const std::array<const char*, 3> intervals[] = {
    {"GetCILower", "GetEffectSize", "GetCIUpper"},
    {"GetEstCILower", "GetEstEffectSize", "GetEstCIUpper"},
    {"GetH2CILower", "GetH2Index", "GetH2CIUpper"},
    {"GetI2CILower", "GetI2Index", "GetI2CIUpper"},
    {"GetContrastEstCILower", "GetContrastEstES", "GetContrastEstCIUpper"},
    {"GetCumEstCiLower", "GetCumEstES", "GetCumEstCiUpper"},
    {"GetLeaveOneOutCILower", "GetLeaveOneOutEffectSize", "GetLeaveOneOutCIUpper"},
    {"GetOverallTFCILower", "GetOverallTFEffectSize", "GetOverallTFCIUpper"},
    {"GetBubbleCILower", "GetBubblePredVals", "GetBubbleCIUpper"},
    {"GetRegBasedTestCILower", "GetRegBasedTestCoef", "GetRegBasedTestCIUpper"},
    {"GetRegBasedTestLimitCILower", "GetRegBasedTestLimit", "GetRegBasedTestLimitCIUpper"},
};
/// ... of `MAOutcomeModel`.
const std::array<const char*, 3> naturalIntervals[] = {
    {"GetNaturalCILower", "GetNaturalEffectSize", "GetNaturalCIUpper"},
    {"GetNaturalEstCILower", "GetNaturalEstEffectSize", "GetNaturalEstCIUpper"},
    {"GetCumNaturalEstCiLower", "GetCumNaturalEstES", "GetCumNaturalEstCiUpper"},
    {"GetLeaveOneOutNaturalCILower", "GetLeaveOneOutNaturalEffectSize", "GetLeaveOneOutNaturalCIUpper"},
    {"GetOverallTFNaturalCILower", "GetOverallTFNaturalEffectSize", "GetOverallTFNaturalCIUpper"},
};

using Positions = std::vector<std::size_t>;

/// Whether the groups of a measured analysis can be exchanged.
bool IsOfTwoGroups(const AnalysisCase& made)
{
    return allOutcomeMeasures[made.settings.GetOutcomeMeasure()].data == MAOutcomeData::Rates;
}

double SumOf(const std::vector<double>& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0);
}

class AnalysisCheck
{
public:
    explicit AnalysisCheck(const AnalysisCase& made)
        : made_(made), run_(OutcomeOf(made)), expect_(Of(run_.results))
    {}

    void CheckStatus();
    void CheckShapes();
    void CheckCounts();
    void CheckWeights();
    void CheckRepetition();
    void CheckUnit();
    void CheckNegation();
    void CheckOrder();

private:
    bool HasConverged() const;
    void ExpectFollowsIn(const AnalysisCase& changed, const Change& change, bool withOrdered);

    Expectations Of(const Results& results) const { return {results, made_.settings.GetCILevel()}; }
    double Number(const char* name) const { return expect_.Values(name).at(0); }
    std::size_t StudyCount() const { return expect_.Values("GetEffectSize").size(); }

    const AnalysisCase& made_;
    Outcome run_;
    Expectations expect_;
};

void AnalysisCheck::CheckStatus()
{
    ExpectKnownStatus(run_.status);
    ExpectKnownStatus(run_.tested);
    ExpectKnownStatus(run_.plotted);
    EXPECT_TRUE(!HasRepeats(expect_.Values("GetWarnings"))) << "no warning comes twice";
    if (made_.isTame && StudyCount() >= 3) {
        EXPECT_TRUE(!run_.status.IsError()) << "ordinary data can be analysed";
        expect_.Numbers({"GetPILower", "GetPIUpper", "GetExpPILower", "GetExpPIUpper", // of two studies
                         "GetNaturalPILower", "GetNaturalPIUpper"});
    }
}

void AnalysisCheck::CheckShapes()
{
    CheckShapesAndRanges(expect_);
    Expectations ofRegression = expect_;
    ofRegression.level = made_.regression.GetConfidenceLevel();
    ofRegression.Ordered("GetRegrBetaConfInterValLower", "GetRegrTestCoefficient",
                         "GetRegrBetaConfInterValUpper");
    if (made_.isMeasured)
        for (const auto& [lower, middle, upper] : naturalIntervals)
            expect_.Ordered(lower, middle, upper);
    if (made_.settings.GetCummulativeIndex() == -1 && !run_.status.IsError()) {
        expect_.SameShape({"GetEstEffectSize", "GetTau2Var"});
        expect_.Ordered("GetPILower", "GetEstEffectSize", "GetPIUpper");
    }
}

void AnalysisCheck::CheckCounts()
{
    const std::vector<double> ids = expect_.Values("GetNonMissingStudyID");
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end(), std::less_equal<>())) << "study numbers ascend";
    const auto imputed = static_cast<std::size_t>(Number("GetTFImputedN0"));
    EXPECT_TRUE(imputed == 0 || imputed < StudyCount()) << "fewer studies are imputed than there are";
    if (run_.status.IsError())
        return;
    const double accounted = Number("GetNMissing") + Number("GetNInvalid") + Number("GetNDropped") +
                             static_cast<double>(StudyCount());
    EXPECT_TRUE(accounted == static_cast<double>(made_.rows.size())) << "every record is a study or counted";
    std::vector<double> records = expect_.Values("GetExcludedRecord");
    EXPECT_TRUE(std::is_sorted(records.begin(), records.end())) << "excluded records ascend";
    records.insert(records.end(), ids.begin(), ids.end());
    EXPECT_TRUE(std::set(records.begin(), records.end()).size() == made_.rows.size())
        << "every record is a study or has a reason";
    expect_.SameShape({"GetExcludedRecord", "GetExclusionReason"});
    std::vector<double> placed = expect_.Values("GetSubgroupMissing");
    for (const std::vector<double>& more : expect_.Rows("GetSubGroupStudyID"))
        placed.insert(placed.end(), more.begin(), more.end());
    const std::vector<double> unordered = expect_.Values("GetCumulativeMissing");
    placed.insert(placed.end(), unordered.begin(), unordered.end());
    EXPECT_TRUE(std::set(placed.begin(), placed.end()) == std::set(ids.begin(), ids.end()))
        << "every study is in a group, or among those that are in none";
    for (const char* const name : {"GetTFImputedEffectSize", "GetTFImputedStdError"})
        EXPECT_TRUE(expect_.Values(name).size() == imputed) << "every imputed study is there";
}

/// Of ordinary data, where no weight is lost beside a larger one.
void AnalysisCheck::CheckWeights()
{
    constexpr double tolerance = 16 * machineEpsilon;
    const std::vector<double> weights = expect_.Values("GetNormalizedWeight");
    EXPECT_TRUE(weights.size() == StudyCount()) << "every study has a weight";
    EXPECT_TRUE(weights.empty() || (Close(SumOf(weights), 1.0, tolerance))) << "weights sum to 1";
    EXPECT_TRUE(SumOf(expect_.Values("GetGroupN")) == static_cast<double>(weights.size()))
        << "every study is in one group";
    for (const std::vector<double>& percent : expect_.Rows("GetBubbleW"))
        EXPECT_TRUE(percent.empty() || (Close(SumOf(percent), 100.0, tolerance)))
            << "weights in percent sum to 100";
}

void AnalysisCheck::CheckRepetition()
{
    AnalysisCase longer = made_;
    longer.rows.emplace_back();
    longer.settings.SetInputContrastCoef(std::vector<double>(longer.rows.size()));
    expect_.Repeated(OutcomeOf(made_, 2).results, OutcomeOf(longer).results, "GetNMissing");
}

/// The first is not of Mantel-Haenszel tables, which are weighted by the control group.
const Trait traits[] = {
    {0, 1, {"GetNormalizedWeight"}},
    {0, 1, {"GetEstSig", "GetHomoTestChisquareQ", "GetHomoTestSig", "GetH2Index", "GetI2Index"}},
    {0, 1, {"GetI2CIUpper", "GetUniGroup", "GetGDQbVal", "GetGDQbSig", "GetContrastEstSig"}},
    {0, -1, {"GetEstZVal"}},
    {1, 1, {"GetEstStdError"}},
    {1, -1, {"GetEffectSize", "GetCILower", "GetPILower", "GetContrastEstES"}},
    {1, -1, {"GetEstEffectSize", "GetEstCILower", "GetEstCIUpper"}},
    {2, 1, {"GetVariance", "GetTau2Var"}},
};
const Trait orderedTraits[] = {
    {0, 1, {"GetTFImputedN0", "GetOverallTFSig", "GeRegBasedTestSig"}},
    {0, -1, {"GetRegBasedTestCoef"}},
    {1, -1, {"GetCumEstES", "GetCumEstCiUpper", "GetTFImputedEffectSize", "GetOverallTFEffectSize"}},
};

/// `withOrdered`: also the results that depend on the order of studies with equal values, and the small-study
/// test, which may fit exactly.
void AnalysisCheck::ExpectFollowsIn(const AnalysisCase& changed, const Change& change, bool withOrdered)
{
    const Results results = OutcomeOf(changed).results;
    const bool isByTable =
        made_.data == StudyData::Tables && made_.settings.GetWeightType() == WEIGHT_BINARY_FIXED;
    expect_.Followed(change, std::span(traits).subspan(isByTable ? 1 : 0), results);
    if (withOrdered)
        expect_.Followed(change, orderedTraits, results);
}

/// In a unit of a power of two every rounding is the same, so that the results are, to the last digit.
void AnalysisCheck::CheckUnit()
{
    const bool isDifference = made_.settings.GetContinousEstType() == CONT_MEAN_DIFFERENCE;
    const bool isImpossible = made_.isBinary && made_.settings.GetBinaryEstType() == BIN_RISK_DIFFERENCE;
    if (made_.data == StudyData::Tables || isImpossible ||
        (made_.data == StudyData::Means && (made_.isMeasured || !isDifference)))
        return;
    constexpr double unit = 4.0;
    const bool areEffects = made_.data == StudyData::Effects;
    const bool areVariances = areEffects || made_.settings.GetTreatMentVarianceIndex() != -1;
    AnalysisCase changed = made_;
    for (Row& row : changed.rows) {
        for (const std::size_t effect : areEffects ? Positions{0} : Positions{1, 4}) {
            row[effect] *= unit;
            row[effect + 1] *= areVariances ? unit * unit : unit;
        }
    }
    changed.settings.SetConvergenceTol(made_.settings.GetConnvergenceTol() * unit * unit);
    ExpectFollowsIn(changed, {"another unit", unit, false, 0.0}, true);
}

/// Rounding is symmetric about 0, so that results of differences are the same to the last digit. The
/// logarithm of an inverted ratio differs in its last one; a weighted sum of twelve such effects of less than
/// 10 and weights within a factor of 1000 carries that to less than 1e-9, and no iteration stops elsewhere.
void AnalysisCheck::CheckNegation()
{
    const bool areTables = made_.data == StudyData::Tables;
    if (made_.isMeasured && made_.data != StudyData::Effects && !IsOfTwoGroups(made_))
        return;
    const int half = columnCountOf[static_cast<std::size_t>(made_.data)] / 2;
    AnalysisCase changed = made_;
    for (Row& row : changed.rows) {
        if (made_.data == StudyData::Effects)
            row[0] = -row[0];
        else
            std::swap_ranges(row.begin(), row.begin() + half, row.begin() + half);
    }
    MAModelSettings& settings = changed.settings;
    settings.SetGlassDsVarDependentGroup(
        settings.GetGlassDsVarDependentGroup() == GROUP_CONTROL ? GROUP_TREATMENT : GROUP_CONTROL);
    if (settings.GetTrimFillSide() != TRIM_SIDE_AUTO)
        settings.SetTrimFillSide(settings.GetTrimFillSide() == TRIM_SIDE_LARGEST ? TRIM_SIDE_SMALLEST
                                                                                 : TRIM_SIDE_LARGEST);
    const bool decidesTies = settings.GetTrimFillSide() == TRIM_SIDE_AUTO || areTables;
    ExpectFollowsIn(changed, {"exchanging the groups", 1.0, true, areTables ? 1e-9 : 0.0}, !decidesTies);
}

/// Whether no iteration was ended by its limit: where that leaves it is a matter of rounding.
bool AnalysisCheck::HasConverged() const
{
    AnalysisCase longer = made_;
    longer.settings.SetMaxIter(longer.settings.GetMaxIter() + 1);
    longer.regression.SetMaxIterations(longer.regression.GetMaxIterations() + 1);
    const Results results = OutcomeOf(longer).results;
    return std::equal(results.begin(), results.end(), run_.results.begin(), run_.results.end(),
                      [](const Result& left, const Result& right) { return left.rows == right.rows; });
}

/// Sums in another order differ by rounding alone. Iterations stop at a step of 1e-6 and are steered by
/// comparisons, which rounding can turn; both runs are within a few such steps of the same root.
void AnalysisCheck::CheckOrder()
{
    const std::vector<double> q = expect_.Values("GetHomoTestChisquareQ");
    const bool isRounding = std::any_of(q.begin(), q.end(), [](double value) { return value < exactFit; });
    if (made_.settings.GetCummulativeIndex() != -1 || isRounding || !HasConverged())
        return; // the order is what it is about, or decides through rounding
    AnalysisCase changed = made_;
    std::reverse(changed.rows.begin(), changed.rows.end());
    Results results = OutcomeOf(changed).results;
    for (Result& result : results) {
        if (result.name == "GetEffectSize" || result.name == "GetVariance" || result.name == "GetCILower" ||
            result.name == "GetNormalizedWeight")
            std::reverse(result.rows[0].begin(), result.rows[0].end());
    }
    const bool isIterative =
        made_.settings.GetModelType() == MODEL_RANDOM && made_.settings.GetEstTauType() >= TAU2_ML;
    expect_.Followed({"another order", 1.0, false, isIterative ? 1e-4 : 1e-9}, traits, results);
}

} // namespace

void CheckShapesAndRanges(const Expectations& expect)
{
    for (const Names& names : companions)
        expect.SameShape(names);
    for (const auto& [lower, middle, upper] : intervals)
        expect.Ordered(lower, middle, upper);
    expect.Significances();
    for (const auto& [pValues, logarithms] : logarithmsOfPValues)
        expect.Logarithms(pValues, logarithms);
    expect.Between({"GetVariance", "GetTau2Var", "GetHomoTestChisquareQ", "GetHomoTestdf", "GetH2Index",
                    "GetH2CILower", "GetTau2Evaluations", "GetGDQbVal", "GetRegBasedTestDf"},
                   0.0, infinity);
    expect.Between({"GetI2Index", "GetI2CILower", "GetI2CIUpper", "GetNormalizedWeight", "GetPIProbability"},
                   0.0, 1.0);
    expect.Between({"GetBubbleW"}, 0.0, 100.0);
    expect.Between({"GetRankTestTau"}, -1.0, 1.0);
}

void CheckAnalysis(const AnalysisCase& made)
{
    AnalysisCheck check(made);
    check.CheckStatus();
    check.CheckShapes();
    check.CheckCounts();
    check.CheckRepetition();
    if (!made.isTame)
        return;
    check.CheckWeights();
    check.CheckUnit();
    check.CheckNegation();
    check.CheckOrder();
}

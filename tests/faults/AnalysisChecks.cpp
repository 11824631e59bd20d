#include "faults/RunChecks.h"
#include "faults/Symmetries.h"
#include "support/Compare.h"

#include "meta_analysis/platform/common/VectorRecordIter.h"

#include <numeric>
#include <set>

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

template <class Driver>
struct FullRun
{
    explicit FullRun(const AnalysisCase& made) : model(made.settings) { Run(made); }

    void Run(const AnalysisCase& made)
    {
        VectorRecordIter records(made.rows);
        status = model.RUN(records, made.variables);
        tested = model.RegBasedTest(records, made.variables, made.regression);
        plotted = model.BubblePlot(records, made.variables, made.regression);
    }

    Driver model;
    KXStatus status;
    KXStatus tested;
    KXStatus plotted;
};

bool IsLevel(double level)
{
    return level > 0.0 && level < 1.0;
}

template <class Driver>
class AnalysisCheck
{
public:
    AnalysisCheck(const AnalysisCase& made, Violations& violations)
        : made_(made),
          violations_(violations),
          run_(made),
          results_(ResultsOf(run_.model)),
          expect_(Of(results_))
    {}

    void CheckResults();
    void CheckRepetition();
    void CheckSymmetries();

private:
    void CheckStudies();
    void CheckModels();
    void CheckFurtherAnalyses();
    void CheckPlots();
    void CheckTests();
    void CheckUnit();
    void CheckNegation();
    void CheckOrder();
    void ExpectFollowsIn(const AnalysisCase& changed, const Change& change, bool withOrdered);

    Expectations Of(const Results& results) const
    {
        return {results, IsLevel(made_.settings.GetCILevel()), violations_};
    }
    double Number(const char* name) const { return expect_.Values(name).at(0); }

    const AnalysisCase& made_;
    Violations& violations_;
    FullRun<Driver> run_;
    Results results_;
    Expectations expect_;
};

template <class Driver>
void AnalysisCheck<Driver>::CheckResults()
{
    ExpectKnownStatus(run_.status, "RUN", violations_);
    ExpectKnownStatus(run_.tested, "RegBasedTest", violations_);
    ExpectKnownStatus(run_.plotted, "BubblePlot", violations_);
    if (made_.isTame && run_.model.GetEffectSize().size() >= 3) {
        violations_.Expect(!run_.status.IsError(), "ordinary data can be analysed");
        expect_.Numbers({"GetPILower", "GetPIUpper", "GetExpPILower", "GetExpPIUpper"}); // of two studies
    }
    CheckStudies();
    CheckModels();
    CheckFurtherAnalyses();
    CheckPlots();
    CheckTests();
}

template <class Driver>
void AnalysisCheck<Driver>::CheckStudies()
{
    const std::size_t count = run_.model.GetEffectSize().size();
    expect_.Lengths({"GetVariance", "GetStdError", "GetZVal", "GetSig", "GetCILower", "GetCIUpper",
                     "GetNonMissingStudyID"},
                    count);
    expect_.Between({"GetVariance", "GetStdError"}, 0.0, infinity);
    expect_.Between({"GetSig"}, 0.0, 1.0);
    expect_.Ordered("GetCILower", "GetEffectSize", "GetCIUpper");
    const std::vector<double> ids = expect_.Values("GetNonMissingStudyID");
    violations_.Expect(std::is_sorted(ids.begin(), ids.end(), std::less_equal<>()), "study numbers ascend");
    const auto accounted =
        Number("GetNMissing") + Number("GetNInvalid") + Number("GetNDropped") + static_cast<double>(count);
    violations_.Expect(run_.status.IsError() || accounted == static_cast<double>(made_.rows.size()),
                       "every record is a study or counted");
    const std::vector<double> warnings = expect_.Values("GetWarnings");
    violations_.Expect(std::set<double>(warnings.begin(), warnings.end()).size() == warnings.size(),
                       "no warning comes twice");
}

template <class Driver>
void AnalysisCheck<Driver>::CheckModels()
{
    const std::size_t count = run_.model.GetEstEffectSize().size();
    expect_.Lengths({"GetEstStdError", "GetEstZVal", "GetEstSig"}, count);
    expect_.Ordered("GetEstCILower", "GetEstEffectSize", "GetEstCIUpper");
    expect_.Ordered("GetH2CILower", "GetH2Index", "GetH2CIUpper");
    expect_.Ordered("GetI2CILower", "GetI2Index", "GetI2CIUpper");
    expect_.SameShape(
        {"GetHomoTestChisquareQ", "GetHomoTestdf", "GetHomoTestSig", "GetPILower", "GetPIUpper"});
    expect_.Between({"GetEstStdError", "GetTau2Var", "GetHomoTestChisquareQ", "GetHomoTestdf", "GetH2Index",
                     "GetH2CILower", "GetGDQbVal"},
                    0.0, infinity);
    expect_.Between({"GetEstSig", "GetHomoTestSig", "GetI2Index", "GetI2CILower", "GetI2CIUpper",
                     "GetGDQbSig", "GetNormalizedWeight"},
                    0.0, 1.0);
    if (made_.settings.GetCummulativeIndex() == -1 && !run_.status.IsError()) {
        expect_.Lengths({"GetTau2Var"}, count);
        expect_.Ordered("GetPILower", "GetEstEffectSize", "GetPIUpper");
    }
    if (!made_.isTame)
        return;
    const std::vector<double> weights = expect_.Values("GetNormalizedWeight");
    violations_.Expect(weights.size() == run_.model.GetEffectSize().size(), "every study has a weight");
    const double sum = std::accumulate(weights.begin(), weights.end(), 0.0);
    violations_.Expect(weights.empty() || bool(Close(sum, 1.0, 16 * machineEpsilon)), "weights sum to 1");
    const std::vector<double> sizes = expect_.Values("GetGroupN");
    violations_.Expect(std::accumulate(sizes.begin(), sizes.end(), 0.0) ==
                           static_cast<double>(weights.size()),
                       "every study is in one group");
}

template <class Driver>
void AnalysisCheck<Driver>::CheckFurtherAnalyses()
{
    expect_.Lengths({"GetContrastEstStdError", "GetContrastEstZVal", "GetContrastEstSig"},
                    run_.model.GetContrastEstES().size());
    expect_.Ordered("GetContrastEstCILower", "GetContrastEstES", "GetContrastEstCIUpper");
    expect_.SameShape({"GetCumEstES", "GetCumEstStdErr", "GetCumEstZval", "GetCumEstSig", "GetCumEstCiLower",
                       "GetCumEstCiUpper"});
    expect_.Ordered("GetCumEstCiLower", "GetCumEstES", "GetCumEstCiUpper");
    expect_.Between(
        {"GetContrastEstStdError", "GetCumEstStdErr", "GetOverallTFStdError", "GetTFImputedStdError"}, 0.0,
        infinity);
    expect_.Between({"GetContrastEstSig", "GetCumEstSig", "GetOverallTFSig"}, 0.0, 1.0);
    expect_.Ordered("GetOverallTFCILower", "GetOverallTFEffectSize", "GetOverallTFCIUpper");
    const auto imputed = static_cast<std::size_t>(run_.model.GetTFImputedN0());
    const std::size_t studyCount = run_.model.GetEffectSize().size();
    violations_.Expect(imputed == 0 || imputed < studyCount, "fewer studies are imputed than there are");
    if (!run_.status.IsError())
        expect_.Lengths({"GetTFImputedEffectSize", "GetTFImputedStdError"}, imputed);
}

template <class Driver>
void AnalysisCheck<Driver>::CheckPlots()
{
    expect_.SameShape({"GetFunnelX", "GetFunnelY"});
    expect_.SameShape({"GetFunnelCIX", "GetFunnelCIY"});
    expect_.SameShape({"GetGalbPlotX", "GetGalbPlotY"});
    expect_.Lengths({"GetGalbRegrIntercept"}, run_.model.GetGalbRegrSlope().size());
    expect_.SameShape(
        {"GetBubbleXs", "GetBubblePredVals", "GetBubbleW", "GetBubbleCILower", "GetBubbleCIUpper"});
    expect_.SameShape({"GetBubbleCICurveX", "GetBubbleCICurveLower", "GetBubbleCICurveUpper"});
    expect_.Ordered("GetBubbleCILower", "GetBubblePredVals", "GetBubbleCIUpper");
    expect_.Between({"GetBubbleW"}, 0.0, 100.0);
    for (const std::vector<double>& weights : expect_.Rows("GetBubbleW")) {
        const double sum = std::accumulate(weights.begin(), weights.end(), 0.0);
        violations_.Expect(!made_.isTame || weights.empty() || bool(Close(sum, 100.0, 16 * machineEpsilon)),
                           "weights in percent sum to 100");
    }
}

template <class Driver>
void AnalysisCheck<Driver>::CheckTests()
{
    expect_.Ordered("GetRegBasedTestCILower", "GetRegBasedTestCoef", "GetRegBasedTestCIUpper");
    Expectations ofRegression = expect_;
    ofRegression.hasLevel = IsLevel(made_.regression.GetConfidenceLevel());
    ofRegression.Ordered("GetRegrBetaConfInterValLower", "GetRegrTestCoefficient",
                         "GetRegrBetaConfInterValUpper");
    expect_.SameShape(
        {"GetRegrTestCoefficient", "GetRegrTestBetaStandErr", "GetRegrBetaTestVal", "GetRegrBetaTestPValue"});
    expect_.Between({"GetRegBasedTestStdError", "GetRegBasedTestDf", "GetRegrTestBetaStandErr"}, 0.0,
                    infinity);
    expect_.Between({"GeRegBasedTestSig", "GetRegrBetaTestPValue"}, 0.0, 1.0);
}

/// The results are the same in a second run of the object, of another one, and of data with one more record
/// that has no values, but for the count of the missing.
template <class Driver>
void AnalysisCheck<Driver>::CheckRepetition()
{
    run_.Run(made_);
    violations_.Expect(FirstDifference(results_, ResultsOf(run_.model)).empty(),
                       "a second run gives the same");

    AnalysisCase longer = made_;
    longer.rows.emplace_back();
    longer.settings.SetInputContrastCoef(std::vector<double>(longer.rows.size()));
    Results withMissing = ResultsOf(FullRun<Driver>(longer).model);
    for (Result& result : withMissing) {
        if (result.name == "GetNMissing")
            result.rows[0][0] = std::min(result.rows[0][0], Number("GetNMissing"));
    }
    const std::string difference = FirstDifference(results_, withMissing);
    if (!difference.empty())
        violations_.Add("a record without values changes nothing, but " + difference);
}

constexpr Trait traits[] = {
    {"GetNormalizedWeight", 0, 1}, // not of Mantel-Haenszel tables, which are weighted by the control group
    {"GetEffectSize", 1, -1},
    {"GetVariance", 2, 1},
    {"GetCILower", 1, -1, "GetCIUpper"},
    {"GetEstEffectSize", 1, -1},
    {"GetEstStdError", 1, 1},
    {"GetEstZVal", 0, -1},
    {"GetEstSig", 0, 1},
    {"GetEstCILower", 1, -1, "GetEstCIUpper"},
    {"GetEstCIUpper", 1, -1, "GetEstCILower"},
    {"GetPILower", 1, -1, "GetPIUpper"},
    {"GetTau2Var", 2, 1},
    {"GetHomoTestChisquareQ", 0, 1},
    {"GetHomoTestSig", 0, 1},
    {"GetH2Index", 0, 1},
    {"GetI2Index", 0, 1},
    {"GetI2CIUpper", 0, 1},
    {"GetUniGroup", 0, 1},
    {"GetGDQbVal", 0, 1},
    {"GetGDQbSig", 0, 1},
    {"GetContrastEstES", 1, -1},
    {"GetContrastEstSig", 0, 1},
};
constexpr Trait orderedTraits[] = {
    {"GetCumEstES", 1, -1},
    {"GetCumEstCiUpper", 1, -1, "GetCumEstCiLower"},
    {"GetTFImputedN0", 0, 1},
    {"GetTFImputedEffectSize", 1, -1},
    {"GetOverallTFEffectSize", 1, -1},
    {"GetOverallTFSig", 0, 1},
    {"GetRegBasedTestCoef", 0, -1},
    {"GeRegBasedTestSig", 0, 1},
};

/// `withOrdered`: also the results that depend on the order of studies with equal values, and the small-study
/// test, which may fit exactly.
template <class Driver>
void AnalysisCheck<Driver>::ExpectFollowsIn(const AnalysisCase& changed, const Change& change,
                                            bool withOrdered)
{
    const Results results = ResultsOf(FullRun<Driver>(changed).model);
    const bool isByTable =
        made_.data == StudyData::Tables && made_.settings.GetWeightType() == WEIGHT_BINARY_FIXED;
    ExpectFollows(change, std::span(traits).subspan(isByTable ? 1 : 0), expect_, Of(results));
    if (withOrdered)
        ExpectFollows(change, orderedTraits, expect_, Of(results));
}

template <class Driver>
void AnalysisCheck<Driver>::CheckSymmetries()
{
    if (!made_.isTame)
        return;
    CheckUnit();
    CheckNegation();
    CheckOrder();
}

/// In a unit of a power of two every rounding is the same, so that the results are, to the last digit.
template <class Driver>
void AnalysisCheck<Driver>::CheckUnit()
{
    const bool isDifference = made_.settings.GetContinousEstType() == CONT_MEAN_DIFFERENCE;
    const bool isImpossible = made_.isBinary && made_.settings.GetBinaryEstType() == BIN_RISK_DIFFERENCE;
    if (made_.data == StudyData::Tables || isImpossible || (made_.data == StudyData::Means && !isDifference))
        return;
    constexpr double unit = 4.0;
    AnalysisCase changed = made_;
    for (Row& row : changed.rows) {
        const bool hasVariance =
            made_.data == StudyData::Effects || made_.settings.GetTreatMentVarianceIndex() != -1;
        const double spread = hasVariance ? unit * unit : unit;
        if (made_.data == StudyData::Effects) {
            row[0] *= unit;
            row[1] *= spread;
        } else {
            row[1] *= unit;
            row[4] *= unit;
            row[2] *= spread;
            row[5] *= spread;
        }
    }
    changed.settings.SetConvergenceTol(made_.settings.GetConnvergenceTol() * unit * unit);
    ExpectFollowsIn(changed, {"another unit", unit, false, 0.0}, true);
}

/// Rounding is symmetric about 0, so that results of differences are the same to the last digit. The
/// logarithm of an inverted ratio differs in its last one; a weighted sum of twelve such effects of less than
/// 10 and weights within a factor of 1000 carries that to less than 1e-9, and no iteration stops elsewhere.
template <class Driver>
void AnalysisCheck<Driver>::CheckNegation()
{
    AnalysisCase changed = made_;
    MAModelSettings& settings = changed.settings;
    double tolerance = 0.0;
    if (made_.data == StudyData::Effects) {
        for (Row& row : changed.rows)
            row[0] = -row[0];
    } else if (made_.data == StudyData::Means) {
        for (Row& row : changed.rows)
            std::swap_ranges(row.begin(), row.begin() + 3, row.begin() + 3);
        settings.SetGlassDsVarDependentGroup(
            settings.GetGlassDsVarDependentGroup() == GROUP_CONTROL ? GROUP_TREATMENT : GROUP_CONTROL);
    } else {
        tolerance = 1e-9;
        for (Row& row : changed.rows)
            std::swap_ranges(row.begin(), row.begin() + 2, row.begin() + 2);
    }
    if (settings.GetTrimFillSide() != TRIM_SIDE_AUTO)
        settings.SetTrimFillSide(settings.GetTrimFillSide() == TRIM_SIDE_LARGEST ? TRIM_SIDE_SMALLEST
                                                                                 : TRIM_SIDE_LARGEST);
    const bool decidesTies = settings.GetTrimFillSide() == TRIM_SIDE_AUTO || made_.data == StudyData::Tables;
    ExpectFollowsIn(changed, {"exchanging the groups", 1.0, true, tolerance}, !decidesTies);
}

/// Sums in another order differ by rounding alone. Iterations stop at a step of 1e-6 and are steered by
/// comparisons, which rounding can turn; both runs are within a few such steps of the same root.
template <class Driver>
void AnalysisCheck<Driver>::CheckOrder()
{
    const std::vector<double> q = expect_.Values("GetHomoTestChisquareQ");
    const bool isRounding = std::any_of(q.begin(), q.end(), [](double value) { return value < exactFit; });
    if (made_.settings.GetCummulativeIndex() != -1 || isRounding)
        return; // the order is what it is about, or equal effects leave a variance that is nothing but
                // rounding
    AnalysisCase changed = made_;
    std::reverse(changed.rows.begin(), changed.rows.end());
    const bool isIterative =
        made_.settings.GetModelType() == MODEL_RANDOM && made_.settings.GetEstTauType() >= TAU2_ML;
    FullRun<Driver> reversed(changed);
    Results results = ResultsOf(reversed.model);
    for (Result& result : results) {
        if (result.name == "GetEffectSize" || result.name == "GetVariance" || result.name == "GetCILower" ||
            result.name == "GetNormalizedWeight")
            std::reverse(result.rows[0].begin(), result.rows[0].end());
    }
    ExpectFollows({"another order", 1.0, false, isIterative ? 1e-4 : 1e-9}, traits, expect_, Of(results));
}

} // namespace

template <class Driver>
void CheckAnalysis(const AnalysisCase& made, Violations& violations)
{
    AnalysisCheck<Driver> check(made, violations);
    check.CheckResults();
    check.CheckRepetition();
    check.CheckSymmetries();
}

template void CheckAnalysis<MABinModel>(const AnalysisCase&, Violations&);
template void CheckAnalysis<MAContModel>(const AnalysisCase&, Violations&);

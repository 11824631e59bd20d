#include "faults/RunChecks.h"
#include "faults/Symmetries.h"
#include "support/Regression.h"

#include <set>

using namespace MA_NAMESPACE;

namespace {

constexpr Trait traits[] = {
    {"GetTau", 2, 1},
    {"GetEstimation", 1, -1},
    {"GetBetaStandErr", 1, 1},
    {"GetBetaTest", 0, -1},
    {"GetBetaTestPValue", 0, 1},
    {"GetBetaConfInterValLower", 1, -1, "GetBetaConfInterValUpper"},
    {"GetWaldChiSquareTest", 0, 1},
    {"GetWaldPValue", 0, 1},
    {"GetFTestVal", 0, 1},
    {"GetFPValue", 0, 1},
    {"GetMultiDisper", 0, 1},
    {"GetResHomoChiSqure", 0, 1},
    {"GetResHomoPValue", 0, 1},
    {"GetHresSquare", 0, 1},
    {"GetIresSquare", 0, 1},
    {"GetRSquare", 0, 1},
};

template <class Engine>
class RegressionCheck
{
public:
    RegressionCheck(const RegressionCase& made, Violations& violations)
        : made_(made),
          violations_(violations),
          fit_(made.settings, made.rows),
          results_(ResultsOf(*fit_.output)),
          expect_(Of(results_))
    {}

    void CheckResults();
    void CheckScores();
    void CheckRepetition();
    void CheckSymmetries();

private:
    Expectations Of(const Results& results) const
    {
        const double level = made_.settings.GetConfidenceLevel();
        return {results, level > 0.0 && level < 1.0, violations_};
    }
    void ExpectFollowsIn(const Rows& rows, const Change& change)
    {
        MARegSettings settings = made_.settings;
        settings.SetParameterTolerance(settings.GetParameterTolerance() * change.unit * change.unit);
        const Results results = ResultsOf(*Regression<Engine>(settings, rows).output);
        ExpectFollows(change, traits, expect_, Of(results));
    }

    const RegressionCase& made_;
    Violations& violations_;
    Regression<Engine> fit_;
    Results results_;
    Expectations expect_;
};

template <class Engine>
void RegressionCheck<Engine>::CheckResults()
{
    ExpectKnownStatus(fit_.status, "BuildModel", violations_);
    violations_.Expect(fit_.engine.IsModelBuilt() == !fit_.status.IsError(),
                       "a model is built unless there is an error");
    if (made_.isTame) {
        violations_.Expect(!fit_.status.IsError(), "ordinary data can be regressed");
        expect_.Numbers();
    }
    expect_.Between({"GetTau", "GetBetaStandErr", "GetWaldChiSquareTest", "GetWaldDf", "GetFTestVal",
                     "GetMultiDisper", "GetResHomoChiSqure", "GetResHomoDf", "GetHresSquare"},
                    0.0, infinity);
    expect_.Between({"GetBetaTestPValue", "GetWaldPValue", "GetFPValue", "GetResHomoPValue", "GetIresSquare",
                     "GetRSquare"},
                    0.0, 1.0);
    const std::vector<int> warnings = fit_.WarningCodes();
    violations_.Expect(std::set<int>(warnings.begin(), warnings.end()).size() == warnings.size(),
                       "no warning comes twice");
    if (!fit_.engine.IsModelBuilt())
        return;
    const std::size_t count = fit_.engine.GetParameters().size();
    violations_.Expect(fit_.output->GetRedundancyInfo().Size() == count, "a bit for every parameter");
    expect_.Lengths({"GetEstimation", "GetBetaStandErr", "GetBetaTest", "GetBetaTestPValue"}, count);
    expect_.Ordered("GetBetaConfInterValLower", "GetEstimation", "GetBetaConfInterValUpper");
    const auto records =
        static_cast<std::size_t>(fit_.output->GetNGoodRecords() + fit_.output->GetNBadRecords());
    violations_.Expect(records == made_.rows.size(), "every record is good or bad");
}

/// Leverages sum to the number of estimated parameters. The sweep takes pivots down to its tolerance, by
/// whose inverse a rounding error can grow.
template <class Engine>
void RegressionCheck<Engine>::CheckScores()
{
    const double rounding = machineEpsilon / made_.settings.GetComputationalTolerance();
    double leverages = 0.0;
    for (const Row& row : made_.rows) {
        const Scores scores(fit_.engine, row);
        ExpectKnownStatus(scores.status, "Score", violations_);
        const Results listed = {
            {"lower", {{scores.lower}}}, {"fit", {{scores.fit}}}, {"upper", {{scores.upper}}}};
        Of(listed).Ordered("lower", "fit", "upper");
        leverages += scores.leverage;
        const double fitted = scores.stdError * scores.stdError;
        const double residual = scores.residualStdError * scores.residualStdError;
        if (made_.isTame && !KXMV::IsMissing(scores.residualStdError))
            violations_.Expect(bool(Close(fitted, scores.leverage * (fitted + residual), rounding, residual)),
                               "a leverage is the share of the fit in the variance");
        if (made_.isTame)
            violations_.Expect(scores.leverage >= 0.0 && scores.leverage <= 1.0 + rounding,
                               "a leverage is a fraction");
    }
    const auto estimated = static_cast<double>(fit_.output->GetRedundancyInfo().Count());
    violations_.Expect(!made_.isTame || bool(Close(leverages, estimated, rounding)),
                       "leverages sum to the parameters");
}

template <class Engine>
void RegressionCheck<Engine>::CheckRepetition()
{
    VectorRecordIter records(made_.rows);
    fit_.engine.BuildModel(records);
    const MARegOutputStats again(fit_.settings, fit_.engine);
    violations_.Expect(FirstDifference(results_, ResultsOf(again)).empty(), "a second build gives the same");
    if (!fit_.engine.IsModelBuilt() || made_.rows.empty())
        return; // without records there is nothing to build from, but it makes a difference whether one is
                // unusable
    Rows longer = made_.rows;
    longer.emplace_back();
    Results withMissing = ResultsOf(*Regression<Engine>(made_.settings, longer).output);
    for (Result& result : withMissing) {
        if (result.name == "GetNBadRecords")
            result.rows[0][0] -= 1.0;
    }
    const std::string difference = FirstDifference(results_, withMissing);
    if (!difference.empty())
        violations_.Add("a record without values changes nothing, but " + difference);
}

/// To the last digit, but for another order of the sums: see the checks of analyses.
template <class Engine>
void RegressionCheck<Engine>::CheckSymmetries()
{
    if (!made_.isTame)
        return;
    Rows scaled = made_.rows;
    Rows negated = made_.rows;
    for (std::size_t i = 0; i < made_.rows.size(); ++i) {
        scaled[i][0] *= 4.0;
        scaled[i][1] *= 16.0;
        negated[i][0] *= -1.0;
    }
    ExpectFollowsIn(scaled, {"another unit", 4.0, false, 0.0});
    ExpectFollowsIn(negated, {"the opposite effect", 1.0, true, 0.0});
    if (fit_.output->GetResHomoChiSqure() < exactFit)
        return; // the variance of an exact fit is nothing but rounding
    Rows reversed(made_.rows.rbegin(), made_.rows.rend());
    const std::string code = made_.settings.GetEstTauType();
    const bool isIterative = code == "ML" || code == "REML" || code == "EB";
    ExpectFollowsIn(reversed, {"another order", 1.0, false, isIterative ? 1e-4 : 1e-9});
}

} // namespace

template <class Engine>
void CheckRegression(const RegressionCase& made, Violations& violations)
{
    RegressionCheck<Engine> check(made, violations);
    check.CheckResults();
    if (made.settings.IsValid())
        check.CheckScores();
    check.CheckRepetition();
    check.CheckSymmetries();
}

template void CheckRegression<MAFEAlgorithm>(const RegressionCase&, Violations&);
template void CheckRegression<MAREAlgorithm>(const RegressionCase&, Violations&);

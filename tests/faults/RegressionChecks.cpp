#include "faults/RunChecks.h"
#include "support/Regression.h"

using namespace MA_NAMESPACE;

namespace {

const Trait traits[] = {
    {0, 1, {"GetBetaTestPValue", "GetWaldChiSquareTest", "GetWaldPValue", "GetFTestVal", "GetFPValue"}},
    {0, 1, {"GetMultiDisper", "GetResHomoChiSqure", "GetResHomoPValue"}},
    {0, 1, {"GetHresSquare", "GetIresSquare", "GetRSquare"}},
    {0, -1, {"GetBetaTest"}},
    {1, 1, {"GetBetaStandErr"}},
    {1, -1, {"GetEstimation", "GetBetaConfInterValLower"}},
    {2, 1, {"GetTau"}},
};

template <class Engine>
class RegressionCheck
{
public:
    explicit RegressionCheck(const RegressionCase& made)
        : made_(made),
          fit_(made.settings, made.rows),
          results_(ResultsOf(*fit_.output)),
          expect_(Of(results_))
    {}

    void CheckResults();
    void CheckScores();
    void CheckRepetition();
    void CheckSymmetries();

private:
    bool HasConverged() const;
    double RoundingError() const;
    Expectations Of(const Results& results) const
    {
        return {results, made_.settings.GetConfidenceLevel()};
    }
    void ExpectFollowsIn(const Rows& rows, const Change& change)
    {
        MARegSettings settings = made_.settings;
        settings.SetParameterTolerance(settings.GetParameterTolerance() * change.unit * change.unit);
        const Results results = ResultsOf(*Regression<Engine>(settings, rows).output);
        expect_.Followed(change, traits, results);
    }

    const RegressionCase& made_;
    Regression<Engine> fit_;
    Results results_;
    Expectations expect_;
};

template <class Engine>
void RegressionCheck<Engine>::CheckResults()
{
    const bool isBuilt = fit_.engine.IsModelBuilt();
    ExpectKnownStatus(fit_.status);
    EXPECT_TRUE(isBuilt == !fit_.status.IsError()) << "a model is built unless there is an error";
    EXPECT_TRUE(!HasRepeats(fit_.WarningCodes())) << "no warning comes twice";
    if (made_.isTame) {
        EXPECT_TRUE(isBuilt) << "ordinary data can be regressed";
        expect_.Numbers();
    }
    expect_.Significances();
    expect_.Logarithms("GetBetaTestPValue", "GetBetaTestLog10PValue");
    expect_.Logarithms("GetResHomoPValue", "GetResHomoLog10PValue");
    expect_.Between({"GetTau", "GetWaldChiSquareTest", "GetWaldDf", "GetFTestVal", "GetMultiDisper",
                     "GetResHomoChiSqure", "GetResHomoDf", "GetHresSquare"},
                    0.0, infinity);
    expect_.Between({"GetIresSquare", "GetRSquare"}, 0.0, 1.0);
    if (!isBuilt)
        return;
    const std::size_t count = fit_.engine.GetParameters().size();
    EXPECT_TRUE(fit_.output->GetRedundancyInfo().Size() == count) << "a bit for every parameter";
    EXPECT_TRUE(expect_.Values("GetEstimation").size() == count) << "an estimate for every parameter";
    expect_.SameShape({"GetEstimation", "GetBetaStandErr", "GetBetaTest", "GetBetaTestPValue"});
    expect_.Ordered("GetBetaConfInterValLower", "GetEstimation", "GetBetaConfInterValUpper");
    const int records = fit_.output->GetNGoodRecords() + fit_.output->GetNBadRecords();
    EXPECT_TRUE(static_cast<std::size_t>(records) == made_.rows.size()) << "every record is good or bad";
}

/// Leverages sum to the number of estimated parameters. A column that is kept has more than the computational
/// tolerance of its sum of squares left, by whose inverse root a rounding error can grow.
template <class Engine>
void RegressionCheck<Engine>::CheckScores()
{
    const double rounding = 16 * machineEpsilon / std::sqrt(made_.settings.GetComputationalTolerance());
    double leverages = 0.0;
    for (const Row& row : made_.rows) {
        const Scores scores(fit_.engine, row);
        ExpectKnownStatus(scores.status);
        const Results listed = {
            {"lower", {{scores.lower}}}, {"fit", {{scores.fit}}}, {"upper", {{scores.upper}}}};
        Of(listed).Ordered("lower", "fit", "upper");
        if (!made_.isTame)
            continue;
        leverages += scores.leverage;
        EXPECT_TRUE(scores.leverage >= 0.0 && scores.leverage <= 1.0 + rounding) << "a leverage is a fraction";
        const double fitted = scores.stdError * scores.stdError;
        const double residual = scores.residualStdError * scores.residualStdError;
        if (!KXMV::IsMissing(scores.residualStdError)) {
            EXPECT_TRUE((Close(fitted, scores.leverage * (fitted + residual), rounding, residual))) << "a leverage is the share of the fit in the variance";
        }
    }
    const auto estimated = static_cast<double>(fit_.output->GetRedundancyInfo().Count());
    EXPECT_TRUE(!made_.isTame || (Close(leverages, estimated, rounding))) << "leverages sum to the parameters";
}

template <class Engine>
void RegressionCheck<Engine>::CheckRepetition()
{
    VectorRecordIter records(made_.rows);
    fit_.engine.BuildModel(records);
    const Results again = ResultsOf(MARegOutputStats(fit_.settings, fit_.engine));
    // Without records there is nothing to build from, but it makes a difference whether one is unusable.
    const bool isTold = fit_.engine.IsModelBuilt() && !made_.rows.empty();
    Rows longer = made_.rows;
    longer.emplace_back();
    expect_.Repeated(again, isTold ? ResultsOf(*Regression<Engine>(made_.settings, longer).output) : again,
                     "GetNBadRecords");
}

/// To the last digit, but for another order of the sums: see the checks of analyses.
template <class Engine>
void RegressionCheck<Engine>::CheckSymmetries()
{
    Rows scaled = made_.rows;
    Rows negated = made_.rows;
    for (std::size_t i = 0; i < made_.rows.size(); ++i) {
        scaled[i][0] *= 4.0;
        scaled[i][1] *= 16.0;
        negated[i][0] *= -1.0;
    }
    ExpectFollowsIn(scaled, {"another unit", 4.0, false, 0.0});
    ExpectFollowsIn(negated, {"the opposite effect", 1.0, true, 0.0});
    if (fit_.output->GetResHomoChiSqure() < exactFit || !HasConverged())
        return; // the variance of an exact fit, or where a limit ends an iteration, is a matter of rounding
    Rows reversed(made_.rows.rbegin(), made_.rows.rend());
    const std::string code = made_.settings.GetEstTauType();
    const bool isIterative = code == "ML" || code == "REML" || code == "EB";
    const double tolerance = isIterative ? 1e-4 : 1e-9;
    ExpectFollowsIn(reversed, {"another order", 1.0, false, std::max(tolerance, RoundingError())});
}

template <class Engine>
bool RegressionCheck<Engine>::HasConverged() const
{
    MARegSettings longer = made_.settings;
    longer.SetMaxIterations(longer.GetMaxIterations() + 1);
    return Regression<Engine>(longer, made_.rows).output->GetTau() == fit_.output->GetTau();
}

/// The rounding error of a sum of weighted squares of a column grows by the ratio of that sum to the inverse
/// of the coefficient's variance, which is large for nearly collinear columns. Ordinary records are 15 at
/// most, with weights up to 32 and predictors up to 4.
template <class Engine>
double RegressionCheck<Engine>::RoundingError() const
{
    MARegSettings settings = made_.settings;
    settings.SetKnapHartAdjust(false);
    settings.SetMultiDiser(false);
    double largest = 0.0;
    for (const double stdError : Regression<Engine>(settings, made_.rows).output->GetBetaStandErr())
        largest = std::max(largest, KXMV::IsMissing(stdError) ? 0.0 : stdError * stdError);
    return machineEpsilon * 15.0 * 32.0 * 16.0 * largest;
}

template <class Engine>
void CheckAll(const RegressionCase& made)
{
    RegressionCheck<Engine> check(made);
    check.CheckResults();
    if (made.settings.IsValid())
        check.CheckScores();
    check.CheckRepetition();
    if (made.isTame)
        check.CheckSymmetries();
}

} // namespace

void CheckRegression(const RegressionCase& made)
{
    if (made.isRandom)
        CheckAll<MAREAlgorithm>(made);
    else
        CheckAll<MAFEAlgorithm>(made);
}

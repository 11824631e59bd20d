#include "faults/RunChecks.h"
#include "support/Regression.h"

using namespace MA_NAMESPACE;

namespace {

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

private:
    Expectations Of(const Results& results) const { return {results, made_.settings.GetConfidenceLevel()}; }
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
    expect_.Logarithms("GetHypothesisSig", "GetHypothesisLog10Sig");
    expect_.Logarithms("GetEffectTestSig", "GetEffectTestLog10Sig");
    expect_.Between({"GetHypothesisJointVal", "GetEffectTestVal"}, 0.0, infinity);
    expect_.Between({"GetVarianceInflation"}, 1.0 - 1e-9, infinity);
    expect_.Ordered("GetPredictedPILower", "GetPredictedCILower", "GetPredictedEffect");
    expect_.Ordered("GetPredictedEffect", "GetPredictedCIUpper", "GetPredictedPIUpper");
    if (!isBuilt)
        return;
    const std::size_t count = fit_.engine.GetParameters().size();
    EXPECT_TRUE(fit_.output->GetRedundancyInfo().Size() == count) << "a bit for every parameter";
    EXPECT_TRUE(expect_.Values("GetEstimation").size() == count) << "an estimate for every parameter";
    if (!expect_.Values("GetRobustStdError").empty()) {
        expect_.SameShape(
            {"GetEstimation", "GetRobustStdError", "GetRobustVal", "GetRobustDf", "GetRobustSig"});
        expect_.Ordered("GetRobustCILower", "GetEstimation", "GetRobustCIUpper");
    }
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
        EXPECT_TRUE(scores.leverage >= 0.0 && scores.leverage <= 1.0 + rounding)
            << "a leverage is a fraction";
        const double fitted = scores.stdError * scores.stdError;
        const double residual = scores.residualStdError * scores.residualStdError;
        if (!KXMV::IsMissing(scores.residualStdError)) {
            EXPECT_TRUE((Close(fitted, scores.leverage * (fitted + residual), rounding, residual)))
                << "a leverage is the share of the fit in the variance";
        }
    }
    const auto estimated = static_cast<double>(fit_.output->GetRedundancyInfo().Count());
    EXPECT_TRUE(!made_.isTame || (Close(leverages, estimated, rounding)))
        << "leverages sum to the parameters";
}

template <class Engine>
void CheckAll(const RegressionCase& made)
{
    RegressionCheck<Engine> check(made);
    check.CheckResults();
    if (made.settings.IsValid())
        check.CheckScores();
}

} // namespace

void CheckRegression(const RegressionCase& made)
{
    if (made.isRandom)
        CheckAll<MAREAlgorithm>(made);
    else
        CheckAll<MAFEAlgorithm>(made);
}

#include "support/Compare.h"
#include "support/FinishedRun.h"
#include "support/Published.h"

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/analysis/steps/MARankTest.h"
#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;

namespace {

template <class Driver>
void ExpectReference(const std::string& dataSet, const std::string& figures)
{
    SCOPED_TRACE(dataSet);
    Published published(dataSet);
    published.settings.SetRankTest(true);
    const FinishedRun<Driver> run(published.settings, published.data.rows);
    const nlohmann::json expected = LoadReference(figures).at("rank_test");
    EXPECT_TRUE(Close(run.model.GetRankTestTau(), expected.at("tau"), 1e-13));
    EXPECT_TRUE(Close(run.model.GetRankTestSig(), expected.at("p_normal"), 1e-12));
    if (expected.contains("p_exact")) {
        EXPECT_TRUE(Close(run.model.GetRankTestExactSig(), expected.at("p_exact"), 1e-12));
    }
    EXPECT_FALSE(run.Warns(MAStatusCode::FEW_STUDIES_FOR_TEST));
}

/// step, 2 step, ..., each modulo another number.
Row Multiples(int count, int step, int modulus)
{
    Row values;
    for (int i = 1; i <= count; ++i)
        values.push_back(step * i % modulus);
    return values;
}

} // namespace

TEST(RankTest, MeetsIndependentFigures)
{
    ExpectReference<MABinModel>("bcg_vaccine", "bcg_vaccine_log_risk_ratio_more");
    for (const char* const name : {"passive_smoking", "teacher_expectancy", "writing_to_learn"})
        ExpectReference<MAContModel>(name, std::string(name) + "_more");
}

/// By R 4.2.2, cor.test(method = "kendall"); those of 49 values in order from 60 digits.
TEST(RankTest, HasNormalAndExactPValues)
{
    const struct
    {
        Row x, y;
        double tau, normal, exact;
    } cases[] = {
        {Multiples(13, 1, 14), Multiples(13, 17, 13), -0.23076923076923, 0.27213463937597, 0.30618493967452},
        {Multiples(49, 1, 50), Multiples(49, 17, 49), 0.081632653061224, 0.407951334087456, 0.41485842994176},
        {Multiples(49, 1, 50), Multiples(49, 1, 50), 1, 3.788308817116848e-24, 3.287949416633158e-63},
        {Multiples(50, 1, 51), Multiples(50, 17, 50), 0.2538775510204082, 0.0092824976221717, missing},
        {{1, 1, 2, 3, 3, 3, 4, 5, 6, 6},
         {2, 2, 1, 3, 3, 5, 4, 4, 7, 1},
         0.395091838659836,
         0.137018058005138,
         missing},
        {{1, 2}, {4, 3}, -1, 0.317310507862914, 1},
        {{1, 1, 1}, {1, 2, 3}, missing, missing, missing},
        {{1, 2, notANumber}, {1, 2, 3}, missing, missing, missing},
        {{}, {}, missing, missing, missing}};
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.x.size());
        const MARankCorrelation actual = CorrelateRanks(expected.x, expected.y);
        EXPECT_TRUE(Close(actual.tau, expected.tau, 1e-13));
        EXPECT_TRUE(Close(actual.pValue, expected.normal, 1e-12));
        EXPECT_TRUE(Close(actual.exactPValue, expected.exact, 1e-12));
    }
}

TEST(RankTest, TiesWhatRoundingTellsApart)
{
    const Row v = {0.1, 0.3, 0.7, 1.1, 1.3, 1.7, 1.9, 2.3, 2.9, 3.1};
    EXPECT_EQ(TestRanks({Row(10, 1.0 / 3), v}).tau, missing);
    EXPECT_EQ(TestRanks({v, Row(10, 1.0 / 3)}).tau, missing);
    EXPECT_EQ(TestRanks({Row{1e308, -1e308}, Row{1, 2}}).tau, missing);
    // One study has nearly all weight; the deviates are -0.82, 0.5 and 0.71.
    EXPECT_EQ(TestRanks({Row{1.0, 1.5, 2.0}, Row{1e-22, 1.0, 2.0}}).tau, 1.0);
    MAModelSettings settings = EffectSettings();
    settings.SetRankTest(true);
    const FinishedRun<MAContModel> few(settings, {{1, 1}, {2, 3}, {2, 2}});
    EXPECT_TRUE(few.Warns(MAStatusCode::FEW_STUDIES_FOR_TEST));
    EXPECT_TRUE(Close(few.model.GetRankTestTau(), 1 / 3.0, 1e-15));
}

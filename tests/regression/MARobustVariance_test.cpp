#include "support/Published.h"
#include "support/Regression.h"

#include "meta_analysis/regression/MARobustVariance.h"
#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using nlohmann::json;

namespace {

MARegSettings Clustered(MARegSettings settings, int cluster,
                        MAConst::SANDWICHTYPE type = MAConst::SANDWICH_CR2)
{
    settings.SetCluster(cluster);
    settings.SetSandwich(type);
    settings.SetEstTauType("REML");
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    return settings;
}

/// Random studies with two moderators, and their cluster at the end. Cluster 5 alone has most of the
/// information.
Rows StudiesInClusters(const Row& clusters)
{
    Rows rows = RandomStudies(7, clusters.size(), 2);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i][1] *= clusters[i] == 5 ? 1e-3 : 1.0;
        rows[i].push_back(clusters[i]);
    }
    return rows;
}

const Row unequalClusters = {1, 2, 3, 3, 4, 4, 4, 5, 5, 5, 5, 5, 5, 6, 6, 6};

} // namespace

/// Log risk ratios on latitude and year about their means, each study a cluster.
TEST(MARobustVariance, Cr1AndCr0MeetPublishedData)
{
    const json figures = LoadReference("bcg_vaccine_regression_more");
    Rows rows = CentredTrials();
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].push_back(static_cast<double>(i));
    for (const auto& [key, type] :
         {std::pair("robust_CR1", MAConst::SANDWICH_CR1), std::pair("robust_CR0", MAConst::SANDWICH_CR0)}) {
        const RERegression regression(Clustered(RegressionOn({2, 3}), 4, type), rows);
        const json& expected = figures.at(key);
        // The figures' tau² has 12 digits; a p-value's relative error is some ten times that of its
        // statistic.
        EXPECT_TRUE(Close(regression.output->GetRobustStdError(), expected["se"], 1e-11)) << key;
        EXPECT_TRUE(Close(regression.output->GetRobustVal(), expected["t"], 1e-10)) << key;
        EXPECT_TRUE(Close(regression.output->GetRobustSig(), expected["p"], 1e-9)) << key;
        EXPECT_EQ(regression.output->GetRobustDf(), Row(3, expected["df"].get<double>()));
    }
}

/// Figures of clubSandwich 0.5.8: writing to learn on length, clusters of one to seven studies by year.
TEST(MARobustVariance, Cr2MeetsPublishedData)
{
    const Rows rows = StudiesWith({"length", "year"}, "writing_to_learn");
    const MARegSettings settings = Clustered(RegressionOn({2}), 3);
    const FERegression fixed(settings, rows);
    EXPECT_TRUE(Close(fixed.output->GetRobustStdError(), {0.0666541172136065, 0.0068511506602939}, 1e-12));
    EXPECT_TRUE(Close(fixed.output->GetRobustDf(), {6.3176059123383, 6.8046839446483}, 1e-12));
    EXPECT_TRUE(Close(fixed.output->GetRobustSig(), {0.278984154592, 0.245086252018}, 1e-11));
    const RERegression random(settings, rows);
    EXPECT_TRUE(Close(random.output->GetRobustStdError(), {0.0729075808401103, 0.0063972228892931}, 1e-11));
    EXPECT_TRUE(Close(random.output->GetRobustDf(), {7.7234230497400, 6.8315661705848}, 1e-11));
}

/// The robust variance is a quadratic form in the effects. So its expectation under the model is the sum of v
/// times the variances that unit vectors of effects give; that of CR2 is the variance of the model.
TEST(MARobustVariance, Cr2IsUnbiasedUnderTheModel)
{
    Rows rows = StudiesInClusters(unequalClusters);
    const MARegSettings settings = Clustered(RegressionOn({2, 3}), 4);
    const Row stdErrors = FERegression(settings, rows).output->GetBetaStandErr();
    Row expectations(3);
    for (std::size_t unit = 0; unit < rows.size(); ++unit) {
        for (std::size_t i = 0; i < rows.size(); ++i)
            rows[i][0] = i == unit ? 1.0 : 0.0;
        const FERegression regression(settings, rows);
        for (std::size_t j = 0; j < 3; ++j)
            expectations[j] += rows[unit][1] * regression.output->GetRobustCovariance()[j][j];
    }
    for (std::size_t j = 0; j < 3; ++j)
        EXPECT_TRUE(Close(expectations[j], stdErrors[j] * stdErrors[j], 1e-11)) << j; // variances span 1e5
}

TEST(MARobustVariance, RefusesWhatClustersCannotTell)
{
    Rows rows = StudiesInClusters(unequalClusters);
    rows[3][4] = missing;
    const RERegression regression(Clustered(RegressionOn({2, 3}), 4), rows);
    EXPECT_EQ(regression.output->GetNBadRecords(), 1);
    EXPECT_EQ(regression.output->GetRobustClusters(), 6);

    MARegSettings perGroup = Clustered(RegressionOn({}, {4}, 7), 4);
    for (const bool hasIntercept : {false, true}) { // a coefficient for each cluster, or for its difference
        perGroup.SetInterceptUse(hasIntercept);
        const RERegression decided(perGroup, rows);
        EXPECT_EQ(decided.output->GetRobustDf(), Row(hasIntercept ? 7 : 6, missing));
        EXPECT_EQ(decided.WarningCodes().back(), MAStatusCode::CLUSTER_DECIDES);
    }

    struct Error
    {
        Row clusters;
        MAConst::SANDWICHTYPE type;
        int code;
    };
    for (const Error& error :
         {Error{Row(9, 1.0), MAConst::SANDWICH_CR2, MAStatusCode::ONE_CLUSTER},
          Error{{1, 1, 1, 2, 2, 2, 3, 3, 3}, MAConst::SANDWICH_CR1, MAStatusCode::TOO_FEW_CLUSTERS},
          Error{{1, 1, 1, 2, 2, 2, 3, 3, 3}, MAConst::SANDWICH_CR2, 0}}) {
        const MARegSettings settings = Clustered(RegressionOn({2, 3}), 4, error.type);
        EXPECT_EQ(RERegression(settings, StudiesInClusters(error.clusters)).status, KXStatus(error.code));
    }
}

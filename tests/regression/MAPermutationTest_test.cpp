#include "support/Published.h"
#include "support/Regression.h"

#include "meta_analysis/regression/MAPermutationTest.h"

using namespace MA_NAMESPACE;

namespace {

/// Every `step`-th log risk ratio of BCG vaccination, its latitude, and whether allocation was random.
Rows Vaccine(std::size_t step)
{
    const Rows all = StudiesWith({"latitude", "allocation"});
    Rows rows;
    for (std::size_t i = 0; i < all.size(); i += step) {
        rows.push_back(all[i]);
        rows.back()[3] = all[i][3] == 1 ? 1.0 : 0.0;
    }
    return rows;
}

MARegSettings Permuted(const std::vector<int>& covariates, const char* estimator, int permutations,
                       int seed = 0)
{
    MARegSettings settings = RegressionOn(covariates);
    settings.SetEstTauType(estimator);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetPermutations(permutations);
    settings.SetSeed(seed);
    return settings;
}

} // namespace

/// P-values of metafor 3.8 (permutest, exact), which are whole numbers of permutations: signs of 13 effects,
/// orders of 7 different rows, and orders of 13 rows of two kinds.
TEST(MAPermutationTest, ExactTestsMeetPublishedData)
{
    struct Case
    {
        std::vector<int> covariates;
        std::size_t step;
        int count;
        Row expected;
    };
    for (const Case& one :
         {Case{{}, 1, 8192, {0.00146484375}}, Case{{2}, 2, 5040, {0.775595238095238, 0.584722222222222}},
          Case{{3}, 1, 1716, {0.906759906759907, 0.202214452214452}}}) {
        const RERegression exact(Permuted(one.covariates, "REML", one.count), Vaccine(one.step));
        EXPECT_EQ(exact.output->GetPermutationExact(), 1);
        EXPECT_EQ(exact.output->GetPermutationCount(), one.count);
        EXPECT_TRUE(Close(exact.output->GetPermutationSig(), one.expected, 1e-13));
        const bool hasModelTest = one.expected.size() > 1;
        EXPECT_TRUE(
            Close(exact.output->GetPermutationModelSig(), hasModelTest ? one.expected[1] : missing, 1e-13));
        const RERegression drawn(Permuted(one.covariates, "REML", one.count - 1), Vaccine(one.step));
        EXPECT_EQ(drawn.output->GetPermutationExact(), 0) << "one permutation too few";
        EXPECT_NEAR(drawn.output->GetPermutationSig().back(), one.expected.back(), 2.0 / std::sqrt(one.count))
            << "four standard errors";
    }
    const FERegression fixed(Permuted({2}, "REML", 6000), Vaccine(2));
    EXPECT_TRUE(Close(fixed.output->GetPermutationSig(), {0.790277777777778, 0.520833333333333}, 1e-13));
}

TEST(MAPermutationTest, SeedsDrawDifferentPermutationsAndCountTheData)
{
    const auto pValues = [](int seed) {
        return RERegression(Permuted({2}, "DL", 99, seed), Vaccine(1)).output->GetPermutationSig();
    };
    EXPECT_EQ(pValues(1), pValues(1));
    EXPECT_NE(pValues(1), pValues(2));
    EXPECT_NEAR(std::remainder(pValues(1)[1], 0.01), 0.0, 1e-15)
        << "a hundredth, of 99 permutations and the data";
    EXPECT_GE(pValues(1)[1], 0.01);
}

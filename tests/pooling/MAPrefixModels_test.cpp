#include "support/Compare.h"

#include "meta_analysis/pooling/MAPooling.h"
#include "meta_analysis/pooling/MAPrefixModels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

constexpr std::size_t COUNT = 700;

struct Studies
{
    std::string name;
    std::vector<double> effects;
    std::vector<double> variances;
};

/// Effects far from 0 whose mean drifts; variances over six orders of magnitude; effects with tau² = 0; and
/// effects that are equal for long, where all sums cancel.
std::vector<Studies> Cases()
{
    std::vector<Studies> cases = {
        {"drift", {}, {}}, {"spread", {}, {}}, {"homogeneous", {}, {}}, {"equal", {}, {}}};
    for (std::size_t i = 0; i < COUNT; ++i) {
        const auto x = static_cast<double>(i);
        const double wave = std::sin(2.4 * x) + std::cos(7.1 * x);
        const double variance = 0.02 + 0.05 * (1 + std::sin(5.3 * x));
        cases[0].effects.push_back(300 + 0.6 * wave + x / 500);
        cases[0].variances.push_back(variance);
        cases[1].effects.push_back(1e-3 * wave);
        cases[1].variances.push_back(std::pow(10, -8 + 3 * (1 + std::sin(5.3 * x))));
        cases[2].effects.push_back(0.2 + 0.5 * wave * std::sqrt(variance));
        cases[2].variances.push_back(variance);
        cases[3].effects.push_back(i < 240 ? 0.7 : wave);
        cases[3].variances.push_back(variance);
    }
    return cases;
}

/// Of the bits of a sum that cancels, five are lost at most, and of those of tau² as many again.
void ExpectPlainFits(const Studies& studies, const MARandomEffectsChoice& choice)
{
    MAPrefixModels models({studies.effects, studies.variances}, choice);
    std::size_t shared = 0;
    for (std::size_t count = 1; count <= COUNT; ++count) {
        const std::optional<MAPooledModel> model = models.Next();
        if (!model)
            continue;
        ++shared;
        const MAPooledModel plain =
            PoolRandomEffects({{studies.effects.data(), count}, {studies.variances.data(), count}}, choice);
        const double stdError = plain.effect.stdError;
        ASSERT_TRUE(Close(model->tau2, plain.tau2, 1e-11, plain.typicalVariance)) << count;
        ASSERT_TRUE(Close(model->effect.stdError, stdError, 1e-11)) << count;
        ASSERT_TRUE(Close(model->effect.estimate, plain.effect.estimate, 1e-11, stdError)) << count;
        ASSERT_TRUE(Close(model->effect.pValue.value, plain.effect.pValue.value, 1e-9)) << count;
    }
    EXPECT_GE(shared, COUNT - 256);
}

} // namespace

TEST(MAPrefixModels, EqualThePlainFitsOfTheirStudies)
{
    for (const MAConst::TAU2ESTIMATOR estimator :
         {MAConst::TAU2_REML, MAConst::TAU2_HE, MAConst::TAU2_HS, MAConst::TAU2_DL, MAConst::TAU2_SJ,
          MAConst::TAU2_ML, MAConst::TAU2_EB})
        for (const MAConst::TAU2SEARCH search : {MAConst::TAU2_SEARCH_SCORING, MAConst::TAU2_SEARCH_GLOBAL})
            for (const Studies& studies : Cases()) {
                SCOPED_TRACE(studies.name + " " + std::to_string(estimator) + " " + std::to_string(search));
                MARandomEffectsChoice choice;
                choice.estimator = estimator;
                choice.search = search;
                choice.knappHartung = MAConst::KNAPP_HARTUNG_ADJUSTED;
                ExpectPlainFits(studies, choice);
            }
}

TEST(MAPrefixModels, LeaveScoringThatReachesItsLimitToPlainFits)
{
    const Studies studies = Cases().front();
    MARandomEffectsChoice choice;
    choice.limits.maxIter = 2;
    MAPrefixModels models({studies.effects, studies.variances}, choice);
    for (std::size_t count = 1; count <= COUNT; ++count)
        ASSERT_FALSE(models.Next()) << count;
}

// The search for the global maximum of the likelihood, against scans in extended precision.

#include "Tau2Scan.h"
#include "support/Compare.h"

#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MATau2Search.h"

using namespace MA_NAMESPACE;

namespace {

constexpr MAConst::TAU2ESTIMATOR estimators[] = {MAConst::TAU2_ML, MAConst::TAU2_REML, MAConst::TAU2_EB};

void ExpectFound(const Tau2Analysis& analysis)
{
    constexpr double otherUnit = 1.7e-5;
    const Tau2Verdict verdict = JudgeSearch(analysis, otherUnit);
    EXPECT_FALSE(verdict.isMiss) << verdict.tau2;
    EXPECT_LE(verdict.error, 1e-12) << verdict.tau2;
    EXPECT_LE(verdict.unitError, 1e-12) << verdict.tau2;
    EXPECT_LE(verdict.evaluations, 60);
}

struct HardCase
{
    const char* what;
    std::vector<double> effects;
    std::vector<double> variances;
    double reml; ///< NaN where no closed form or published figure gives it
    double tolerance = 1e-14;
};

const HardCase hardCases[] = {
    // The difference of two effects has variance v1 + v2 + 2 tau².
    {"two studies", {0.3, 2.3}, {0.25, 1.75}, 1.0},
    {"equal effects", {0.7, 0.7, 0.7}, {0.1, 2.0, 0.4}, 0.0},
    {"equal variances", {-1.0, 0.0, 1.0, 4.0}, {0.5, 0.5, 0.5, 0.5}, 14.0 / 3.0 - 0.5},
    {"both sides of the likelihood equation meet at 0", {-1.0, 1.0}, {2.0, 2.0}, 0.0},
    {"one study dominates",
     {0.1, 1.2, -0.7, 2.1, 0.4, -1.9, 0.8, 1.5, -0.3, 0.6},
     {1e-8, 0.9, 1.1, 1.0, 0.95, 1.05, 0.97, 1.2, 0.8, 1.01},
     notANumber},
    {"several likelihood maxima",
     {.2079, .0855, .9889, .4031, .3185, .8067, .5516, .0888, .5623, .8389, .5106, 1.4456, -.0543, .6439},
     {.1763, .2224, .2803, .2341, .0730, .3336, .3613, .2599, .1189, .3848, .2689, .0131, .3649, .1473},
     0.1464,
     5e-5},
};

} // namespace

TEST(Tau2Search, FindsTheMaximumOfHardCases)
{
    for (const HardCase& hard : hardCases) {
        for (const MAConst::TAU2ESTIMATOR estimator : estimators) {
            SCOPED_TRACE(testing::Message() << hard.what << ", estimator " << estimator);
            const Tau2Analysis analysis{hard.effects, hard.variances, {}, estimator};
            ExpectFound(analysis);
            if (estimator == MAConst::TAU2_REML && !std::isnan(hard.reml)) {
                EXPECT_NEAR(JudgeSearch(analysis, 1.0).tau2, hard.reml, hard.tolerance);
            }
        }
    }
}

TEST(Tau2Search, MissesNoMaximumOfRandomAnalyses)
{
    for (const VarianceFamily family : varianceFamilies) {
        Tau2Simulation simulation(4711);
        for (unsigned i = 0; i < Repetitions(150); ++i) {
            SCOPED_TRACE(testing::Message() << "family " << static_cast<int>(family) << ", analysis " << i);
            ExpectFound(simulation.Next(family));
        }
    }
}

// With log-likelihood -6.303409 at 0 and -6.018869 at the greater maximum, found by an independent
// maximisation.
TEST(Tau2Search, FindsTheGreaterOfTwoMaximaOfARegression)
{
    const Tau2Analysis analysis{
        {0.016779, 0.796272, 1.404543, -0.487727, 2.690687, 0.731744, 2.31175, 0.109614, 0.858999, -2.844727},
        {0.001, 0.055928, 0.521481, 0.060657, 3.638258, 0.016879, 0.00968, 0.013116, 2.818472, 10},
        {{-0.564825, 1.527239, 0.662909, -0.897445, 0.708595, 0.445024, 2.888549, 0.014565, 0.855125,
          -0.462562}},
        MAConst::TAU2_ML};
    ExpectFound(analysis);
    EXPECT_NEAR(JudgeSearch(analysis, 1.0).tau2, 0.01144157, 1e-8);
}

// Intervals of the between-study variance, against independent figures and closed forms.

#include "support/Compare.h"
#include "support/Data.h"
#include "support/Published.h"

#include "meta_analysis/pooling/MAPooledCurve.h"
#include "meta_analysis/pooling/MATau2Interval.h"

using namespace MA_NAMESPACE;

namespace {

constexpr double alpha = 0.05;
constexpr double tolerance = 1e-11;

struct Studies
{
    std::vector<double> effects;
    std::vector<double> variances;

    MAPooledCurve Curve(MALikelihoodType type) const
    {
        return {effects.data(), variances.data(), effects.size(), type};
    }
};

MATau2Bounds ProfileLikelihood(const Studies& studies, MALikelihoodType type)
{
    MAPooledCurve curve = studies.Curve(type);
    return ProfileLikelihoodInterval(curve, curve.MomentEstimate(), alpha);
}

MATau2Bounds QProfile(const Studies& studies)
{
    MAPooledCurve curve = studies.Curve(MALikelihoodType::Restricted);
    MAQuantiles quantiles(alpha);
    return QProfileInterval(curve, quantiles);
}

void ExpectBounds(const MATau2Bounds& actual, double lower, double upper)
{
    EXPECT_TRUE(Close(actual.lower, lower, tolerance));
    EXPECT_TRUE(Close(actual.upper, upper, tolerance));
}

void ExpectReference(const Studies& studies, const std::string& name)
{
    SCOPED_TRACE(name);
    const nlohmann::json models = LoadReference(name + "_more");
    const auto expect = [&](const MATau2Bounds& bounds, const nlohmann::json& interval) {
        ExpectBounds(bounds, Number(interval["tau2"]["lower"]), Number(interval["tau2"]["upper"]));
    };
    for (const char* estimator : {"DL", "ML", "REML", "EB"})
        expect(QProfile(studies), models[estimator]["q_profile"]);
    expect(ProfileLikelihood(studies, MALikelihoodType::Full), models["ML"]["profile_likelihood"]);
    expect(ProfileLikelihood(studies, MALikelihoodType::Restricted), models["REML"]["profile_likelihood"]);
}

} // namespace

TEST(Tau2Interval, AgreesWithReference)
{
    for (const std::string name :
         {"teacher_expectancy", "passive_smoking", "writing_to_learn", "bcg_vaccine"}) {
        const Rows studies = StudiesWith({}, name);
        ExpectReference({ColumnOf(studies, 0), ColumnOf(studies, 1)},
                        name == "bcg_vaccine" ? name + "_log_risk_ratio" : name);
    }
}

// Q is 0.02 / (1 + tau²), below both quantiles of two degrees of freedom at every tau² >= 0.
TEST(Tau2Interval, QProfileOfHomogeneousStudiesIsZero)
{
    ExpectBounds(QProfile({{-0.1, 0.0, 0.1}, {1.0, 1.0, 1.0}}), 0.0, 0.0);
    ExpectBounds(QProfile({{0.3, 0.3}, {0.1, 2.0}}), 0.0, 0.0);
}

// With equal effects and variances v the restricted likelihood falls from 0 on as (v + tau²)^(-(k - 1) / 2).
// 3.84145882069412 is the 95% quantile of chi-square with one degree of freedom.
TEST(Tau2Interval, EqualEffectsHaveAProfileLikelihoodInterval)
{
    const MATau2Bounds bounds =
        ProfileLikelihood({{5.0, 5.0, 5.0}, {1e-6, 1e-6, 1e-6}}, MALikelihoodType::Restricted);
    ExpectBounds(bounds, 0.0, 1e-6 * std::expm1(3.84145882069412 / 2.0));
}

// The likelihood is greatest at 0; the set goes to about 1e-4 and goes on from 0.8 to the bound, a root found
// with 50 digits.
TEST(Tau2Interval, ProfileLikelihoodIntervalSpansGaps)
{
    const MATau2Bounds bounds = ProfileLikelihood({{0.0, 3.0}, {1.0, 1.0 / 8192.0}}, MALikelihoodType::Full);
    ExpectBounds(bounds, 0.0, 3.26727438591546);
}

TEST(Tau2Interval, OneStudyHasNone)
{
    ExpectBounds(QProfile({{0.3}, {0.1}}), missing, missing);
    ExpectBounds(ProfileLikelihood({{0.3}, {0.1}}, MALikelihoodType::Full), missing, missing);
}

#include "support/Compare.h"
#include "support/StudyVectors.h"

#include "meta_analysis/pooling/MAContinousFixEffectModel.h"

using namespace MA_NAMESPACE;

namespace {

MAContinousFixEffectModel Fitted(const std::vector<double>& y, const std::vector<double>& v)
{
    MAContinousFixEffectModel model;
    model.SetEffectSizes(&y);
    model.SetVariances(&v);
    EXPECT_TRUE(model.EstimateMeanESStats().IsOK());
    return model;
}

struct Heterogeneity
{
    const char* name;
    std::vector<double> effects; ///< with variance 1
    double q;
    double h2;
    double i2;
    bool hasBounds;
};

const Heterogeneity heterogeneityCases[] = {
    {"one study", {0.5}, missing, missing, missing, false},
    {"two studies, Q = 2", {-1, 1}, 2, 2, 0.5, false}, // the standard error divides by k - 2
    {"two studies, Q > 2", {-2, 2}, 8, 8, 0.875, true},
    {"Q is its expectation", {-1, 0, 1}, 2, 1, 0, true},
    {"Q below its expectation", {-0.5, 0, 0.5}, 0.5, 0.25, 0, true},
    {"equal effects", {0.25, 0.25, 0.25}, 0, 0, 0, true},
};

} // namespace

TEST(MAContinousFixEffectModel, HeterogeneityMeasuresAtTheirLimits)
{
    for (const Heterogeneity& row : heterogeneityCases) {
        SCOPED_TRACE(row.name);
        const MAContinousFixEffectModel model =
            Fitted(row.effects, std::vector<double>(row.effects.size(), 1.0));
        EXPECT_TRUE(Same(model.GetHomogeneityTestQ(), row.q));
        EXPECT_EQ(model.GetHomogeneityTestPVal() == missing, row.q == missing);
        EXPECT_TRUE(Same(model.GetHeterogeneityTestH2(), row.h2));
        EXPECT_TRUE(Same(model.GetHeterogeneityTestI2(), row.i2));
        for (const double bound :
             {model.GetHeterogeneityTestH2CILower(), model.GetHeterogeneityTestH2CIUpper(),
              model.GetHeterogeneityTestI2CILower(), model.GetHeterogeneityTestI2CIUpper()})
            EXPECT_EQ(bound != missing, row.hasBounds);
        if (row.hasBounds) {
            EXPECT_LE(model.GetHeterogeneityTestH2CILower(), row.h2);
            EXPECT_GE(model.GetHeterogeneityTestH2CIUpper(), row.h2);
            EXPECT_GE(model.GetHeterogeneityTestI2CILower(), 0.0);
        }
    }
}

TEST(MAContinousFixEffectModel, ContrastKeepsItsTestWhereThereIsNothingToTest)
{
    const std::vector<double> y = {1, 2, 4};
    const std::vector<double> v = {1, 3, 0.25};
    MAContinousFixEffectModel model = Fitted(y, v);
    EXPECT_TRUE(model.ContrastTest().IsOK()); // no coefficients
    EXPECT_EQ(model.GetContrastGMeans(), missing);

    std::vector<double> coefficients = {1, -1, 0};
    model.SetContrastCoef(&coefficients);
    EXPECT_TRUE(model.ContrastTest().IsOK());
    EXPECT_DOUBLE_EQ(model.GetContrastVariance(), 4.0);
    coefficients = {0, 0, 0};
    EXPECT_TRUE(model.ContrastTest().IsOK());
    EXPECT_EQ(model.GetContrastVariance(), 0.0);
    EXPECT_DOUBLE_EQ(model.GetContrastZVal(), -0.5);

    coefficients = {1, missing, 2};
    EXPECT_EQ(model.ContrastTest(), KXStatus(MAStatusCode::CONTRAST_COEFFICIENT_MISSING, true));
    EXPECT_TRUE(model.EstimateMeanESStats().IsOK()); // the warning is not stored
    coefficients.push_back(1);
    EXPECT_EQ(model.ContrastTest(), KXStatus(MAStatusCode::LENGTH_MISMATCH));
    EXPECT_EQ(model.SetContrastCoef(&coefficients), KXStatus(MAStatusCode::LENGTH_MISMATCH));
    EXPECT_EQ(model.SetNullHypothesis(1), KXStatus(MAStatusCode::LENGTH_MISMATCH));
}

TEST(MAContinousFixEffectModel, StudyVectorsAreChecked)
{
    using C = MAContinousFixEffectModel;
    ExpectStudyVectorsChecked({&C::SetEffectSizes, &C::SetVariances}, &C::EstimateMeanESStats,
                              MAStatusCode::LENGTH_MISMATCH);
}

#include "support/Published.h"
#include "support/Regression.h"

#include "meta_analysis/settings/MAEstimators.h"

#include <gmock/gmock.h>

#include <cmath>

using namespace MA_NAMESPACE;

namespace {

MARegSettings WithInfluence(MARegSettings settings)
{
    settings.SetInfluence(true);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    return settings;
}

/// All diagnostics of a study.
Row DiagnosticsOf(const MARegOutputStats& output, std::size_t i)
{
    Row row = {output.GetInfluenceStudentizedResidual().at(i),
               output.GetInfluenceDFFITS().at(i),
               output.GetInfluenceCookDistance().at(i),
               output.GetInfluenceCovarianceRatio().at(i),
               output.GetInfluenceTau2Deleted().at(i),
               output.GetInfluenceQDeleted().at(i),
               output.GetInfluenceHat().at(i),
               output.GetBaujatX().at(i),
               output.GetBaujatY().at(i)};
    const Row dfbetas = output.GetInfluenceDFBETAS().at(i);
    row.insert(row.end(), dfbetas.begin(), dfbetas.end());
    return row;
}

/// DFFITS is the change of the fitted value over a scale of known parts.
template <class Engine>
void ExpectRefits(const MARegSettings& settings, const Rows& rows, bool isRandom)
{
    const Regression<Engine> all(settings, rows);
    const MARegOutputStats& whole = *all.output;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        Rows others = rows;
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
        const Regression<Engine> rest(settings, others);
        const double change = whole.GetEstimation()[0] - rest.output->GetEstimation()[0] +
                              (whole.GetEstimation()[1] - rest.output->GetEstimation()[1]) * rows[i][2];
        const double tau2 = rest.output->GetTau();
        const double scale = std::sqrt(whole.GetInfluenceHat()[i] * (rows[i][1] + tau2));
        EXPECT_TRUE(Close(whole.GetInfluenceDFFITS()[i] * scale, change, 1e-9, 1e-3)) << i;
        EXPECT_TRUE(Close(whole.GetInfluenceQDeleted()[i], rest.output->GetResHomoChiSqure(), 1e-11)) << i;
        EXPECT_TRUE(Close(whole.GetInfluenceTau2Deleted()[i], isRandom ? tau2 : KXMV::Missing(), 1e-11, 0.1));
    }
}

} // namespace

/// Figures of R's metafor 3.8-1, influence and baujat of rma(yi, vi, mods = ~ ablat + year) with a threshold
/// of 1e-13. Years that are not centred cost its determinants half of their digits.
TEST(MetaRegressionInfluence, MeetsIndependentFigures)
{
    constexpr double figureTolerance = 1e-8;
    const Rows trials = StudiesWith({"latitude", "year"});
    MARegSettings settings = WithInfluence(RegressionOn({2, 3}));
    settings.SetEstTauType("REML");
    settings.SetKnapHartAdjust(true); // which scales nothing
    const RERegression random(settings, trials);
    const std::pair<std::size_t, Row> figures[] = {
        {3,
         {-1.403212430778, -2.941495993358, 7.3180494333614, 3.5224317380605, 0.09056412609345,
          23.18364569245, 0.8082150751714, 0.3394142760424, 1.5688529359119, 2.2248162964530,
          -2.5380609789888, -2.2161197648897}},
        {12,
         {2.130190949139, 0.814975604043, 0.4993732691432, 0.2177640475562, 0.04978011935565, 21.49200936376,
          0.1612451079280, 2.5621990181116, 0.6883692402977, -0.8276155064896, 0.6269295098882,
          0.8278827042716}}};
    for (const auto& [study, row] : figures)
        EXPECT_TRUE(Close(DiagnosticsOf(*random.output, study), row, figureTolerance)) << study;
    EXPECT_THAT(random.output->GetInfluenceRules()[3], MAConst::INFLUENCE_DFFITS + MAConst::INFLUENCE_COOK +
                                                           MAConst::INFLUENCE_HAT +
                                                           MAConst::INFLUENCE_DFBETAS);
    const FERegression fixed(settings, trials);
    EXPECT_TRUE(Close(DiagnosticsOf(*fixed.output, 3)[3], 11.5279668624363, figureTolerance));
    EXPECT_TRUE(Close(fixed.output->GetInfluenceDFBETAS()[3],
                      {5.98932059693794, -6.91461337206189, -5.97384062136423}, figureTolerance));
    EXPECT_TRUE(KXMV::IsMissing(fixed.output->GetInfluenceTau2Deleted()[3]));
}

/// One variance of ten studies that dominates makes the shared sums lose digits.
TEST(MetaRegressionInfluence, EqualsRefits)
{
    Rows rows = RandomStudies(4, 14, 1);
    for (const double dominating : {rows[3][1], 1e-9}) {
        rows[3][1] = dominating;
        for (const MAEstimator& estimator : allEstimators) {
            SCOPED_TRACE(estimator.code);
            MARegSettings settings = WithInfluence(RegressionOn({2}));
            settings.SetEstTauType(estimator.code);
            ExpectRefits<MAREAlgorithm>(settings, rows, true);
        }
        ExpectRefits<MAFEAlgorithm>(WithInfluence(RegressionOn({2})), rows, false);
    }
}

/// The only study of a level determines its coefficient alone.
TEST(MetaRegressionInfluence, IsMissingWhereACoefficientBecomesRedundant)
{
    Rows rows = RandomStudies(9, 10, 1);
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i][2] = i == 6 ? 0.0 : 1.0;
    MARegSettings settings = WithInfluence(RegressionOn({}, {2}, 2));
    settings.SetEstTauType("REML");
    const RERegression fit(settings, rows);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(KXMV::IsMissing(fit.output->GetInfluenceCookDistance()[i]), i == 6) << i;
        EXPECT_EQ(KXMV::IsMissing(fit.output->GetInfluenceDFBETAS()[i][0]), i == 6) << i;
    }
    EXPECT_NEAR(fit.output->GetInfluenceHat()[6], 1.0, 1e-12);
    EXPECT_THAT(fit.WarningCodes(), testing::Contains(MAStatusCode::DELETION_UNDEFINED));
}

#include "support/Reference.h"
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

/// Log risk ratios of the BCG trials with absolute latitude and year.
Rows BcgRows()
{
    const DataSet data("bcg_vaccine");
    const nlohmann::json ratios = LoadReference("bcg_vaccine")["tables"]["RR_only0"];
    const Row effects = ratios["yi"];
    const Row variances = ratios["vi"];
    Rows rows;
    for (std::size_t i = 0; i < effects.size(); ++i)
        rows.push_back({effects[i], variances[i],
                        data.rows[i][static_cast<std::size_t>(data.IndexOf("latitude"))],
                        data.rows[i][static_cast<std::size_t>(data.IndexOf("year"))]});
    return rows;
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

template <class Engine>
void ExpectRefits(const MARegSettings& settings, const Rows& rows, bool isRandom)
{
    const Regression<Engine> all(settings, rows);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        Rows others = rows;
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
        const Regression<Engine> without(settings, others);
        const Row change = {all.output->GetEstimation()[0] - without.output->GetEstimation()[0],
                            all.output->GetEstimation()[1] - without.output->GetEstimation()[1]};
        const Row dfbetas = all.output->GetInfluenceDFBETAS()[i];
        EXPECT_TRUE(
            Close(all.output->GetInfluenceQDeleted()[i], without.output->GetResHomoChiSqure(), 1e-11));
        EXPECT_TRUE(Close(dfbetas[0] / dfbetas[1] * change[1], change[0], 1e-8, 1e-3)) << i;
        if (isRandom) {
            EXPECT_TRUE(
                Close(all.output->GetInfluenceTau2Deleted()[i], without.output->GetTau(), 1e-11, 0.1));
        }
    }
}

} // namespace

/// Figures of R's metafor 3.8-1, influence and baujat of rma(yi, vi, mods = ~ ablat + year), to the tolerance
/// of its iteration.
TEST(MetaRegressionInfluence, MeetsIndependentFigures)
{
    const RERegression random(WithInfluence([] {
                                  MARegSettings settings = RegressionOn({2, 3});
                                  settings.SetEstTauType("REML");
                                  settings.SetKnapHartAdjust(true); // which scales nothing
                                  return settings;
                              }()),
                              BcgRows());
    const std::pair<std::size_t, Row> figures[] = {
        {3,
         {-1.40319882675445, -2.941452936251100, 7.317914071684527, 3.522502035187375, 0.0905675701884774,
          23.1836456924549, 0.808214067188516, 0.339411598723412, 1.568822059670287, 2.224789589817363,
          -2.538025804869608, -2.216093171920285}},
        {12,
         {2.13017466977326, 0.814975540363491, 0.499370065540404, 0.217769652031839, 0.0497820642095697,
          21.4920093637639, 0.161245800697476, 2.562160181563062, 0.688363818178117, -0.827605630191297,
          0.626922126612296, 0.827872865518922}}};
    for (const auto& [study, row] : figures)
        EXPECT_TRUE(Close(DiagnosticsOf(*random.output, study), row, 2e-5)) << study;
    EXPECT_THAT(random.output->GetInfluenceRules()[3], MAConst::INFLUENCE_DFFITS + MAConst::INFLUENCE_COOK +
                                                           MAConst::INFLUENCE_HAT +
                                                           MAConst::INFLUENCE_DFBETAS);
    const FERegression fixed(WithInfluence(RegressionOn({2, 3})), BcgRows());
    EXPECT_TRUE(Close(DiagnosticsOf(*fixed.output, 3)[3], 11.5279668624363, 1e-12));
    EXPECT_TRUE(Close(fixed.output->GetInfluenceDFBETAS()[3],
                      {5.98932059693794, -6.91461337206189, -5.97384062136423}, 1e-12));
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

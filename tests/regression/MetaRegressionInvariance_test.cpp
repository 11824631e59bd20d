// Powers of calendar years as they are, whose columns differ by little more than their rounding: neither
// their origin nor the unit of the effects or the order of the studies makes a difference.

#include "support/Regression.h"

#include <numeric>

using namespace MA_NAMESPACE;

namespace {

const char* const dataSets[] = {
    "bcg_vaccine",   "magnesium",        "passive_smoking",      "teacher_expectancy",    "writing_to_learn",
    "streptokinase", "asthma_education", "medication_adherence", "practice_facilitation", "st_johns_wort"};

/// The log odds ratio of a table with 0.5 in each cell, where a data set has no ready-made effect.
std::pair<double, double> StudyOf(const DataSet& data, const Row& row)
{
    if (std::count(data.columns.begin(), data.columns.end(), "effect") == 1)
        return {row.at(data.IndexOf("effect")), row.at(data.IndexOf("variance"))};
    const auto first = static_cast<std::size_t>(data.IndexOf("treatment_events"));
    const auto cell = [&](std::size_t i) { return row[first + i] + 0.5; };
    return {std::log(cell(0) * cell(3) / (cell(1) * cell(2))),
            1 / cell(0) + 1 / cell(1) + 1 / cell(2) + 1 / cell(3)};
}

/// Effects and variances times powers of `unit`, and powers of the year counted from `origin`.
Rows StudiesSince(const std::string& name, double origin, int powers, double unit = 1.0)
{
    const DataSet data(name);
    Rows rows;
    for (const Row& row : data.rows) {
        const auto [effect, variance] = StudyOf(data, row);
        rows.push_back({effect * unit, variance * unit * unit});
        for (int power = 1; power <= powers; ++power)
            rows.back().push_back(std::pow(row.at(data.IndexOf("year")) - origin, power));
    }
    return rows;
}

RERegression Regress(const Rows& rows, const char* code, bool adjusted)
{
    MARegSettings settings =
        RegressionOn(rows[0].size() == 5 ? std::vector<int>{2, 3, 4} : std::vector<int>{2, 3});
    settings.SetEstTauType(code);
    settings.SetKnapHartAdjust(adjusted);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    return RERegression(settings, rows);
}

/// What depends neither on the origin of the years nor on the unit of the effects, the last fitted values of
/// the studies, which are in the unit 1.
Row InvariantFigures(const RERegression& fit, const Rows& rows, double unit = 1.0)
{
    const MARegOutputStats& output = *fit.output;
    Row figures = {output.GetTau() / (unit * unit),
                   output.GetWaldChiSquareTest(),
                   output.GetFTestVal(),
                   output.GetWaldPValue(),
                   output.GetFPValue(),
                   output.GetResHomoChiSqure(),
                   output.GetIresSquare(),
                   output.GetHresSquare(),
                   output.GetRSquare(),
                   output.GetBetaTestPValue().back(),
                   output.GetBetaTest().back() * (unit < 0 ? -1 : 1)};
    for (Row row : rows) {
        row[0] *= unit;
        row[1] *= unit * unit;
        const Scores scores(fit.engine, row);
        figures.push_back(scores.fit / unit);
        for (const double value : {scores.stdError, scores.residualStdError})
            figures.push_back(value / std::abs(unit));
        figures.push_back(scores.leverage);
    }
    return figures;
}

void ExpectSame(const Row& actual, const Row& expected, double tolerance)
{
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i)
        EXPECT_TRUE(Close(actual[i], expected[i], tolerance, 1.0)) << "figure " << i;
}

} // namespace

/// Cubes are left out where the columns before them leave less than the computational tolerance.
TEST(MetaRegressionInvariance, CalendarYearsNeedNoCentring)
{
    int cubes = 0;
    for (const char* const name : dataSets) {
        const Row all = ColumnOf(StudiesSince(name, 0, 1), 2);
        const double origin =
            std::round(std::accumulate(all.begin(), all.end(), 0.0) / static_cast<double>(all.size()));
        for (const int powers : {2, 3}) {
            const Rows years = StudiesSince(name, 0, powers);
            const Rows centred = StudiesSince(name, origin, powers);
            for (const char* const code : {"HE", "DL", "SJ", "ML", "REML", "EB"}) {
                SCOPED_TRACE(testing::Message() << name << ", powers " << powers << ", " << code);
                const RERegression fit = Regress(years, code, true);
                const RERegression expected = Regress(centred, code, true);
                if (powers == 3 && !fit.output->GetRedundancyInfo().Test(3))
                    continue;
                cubes += powers == 3 ? 1 : 0;
                EXPECT_EQ(fit.output->GetRedundancyInfo(), expected.output->GetRedundancyInfo());
                ExpectSame(InvariantFigures(fit, years), InvariantFigures(expected, centred), 1e-8);
                const Row b = fit.output->GetEstimation();
                const Row c = expected.output->GetEstimation();
                EXPECT_TRUE(Close(b.back(), c.back(), 1e-8));
                if (powers == 2) {
                    EXPECT_TRUE(Close(b[1], c[1] - 2 * origin * c[2], 1e-8));
                    EXPECT_TRUE(Close(b[0], c[0] - origin * c[1] + origin * origin * c[2], 1e-8));
                }
            }
        }
    }
    EXPECT_GE(cubes, 6) << "there must be something to compare";
}

/// No tolerance is one of the effects' unit.
TEST(MetaRegressionInvariance, UnitAndOrderChangeNoFigureWithoutUnit)
{
    for (const char* const name : dataSets) {
        const Rows rows = StudiesSince(name, 0, 2);
        for (const double unit : {1e8, -1e-8}) {
            Rows scaled = StudiesSince(name, 0, 2, unit);
            std::reverse(scaled.begin(), scaled.end());
            for (const char* const code : {"HE", "HS", "DL", "SJ", "ML", "REML", "EB"}) {
                SCOPED_TRACE(testing::Message() << name << ", times " << unit << ", " << code);
                for (const bool adjusted : {false, true}) {
                    const RERegression fit = Regress(scaled, code, adjusted);
                    ExpectSame(InvariantFigures(fit, rows, unit),
                               InvariantFigures(Regress(rows, code, adjusted), rows), 1e-10);
                }
            }
        }
    }
}

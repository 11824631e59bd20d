#include "support/PooledFigures.h"
#include "support/Poolings.h"
#include "support/Published.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

using Records = std::vector<std::vector<int>>;

struct Series
{
    const char* dataSet;
    const char* key;
    MODELTYPE model;
    double tolerance;
};

const Series seriesFigures[] = {
    {"bcg_vaccine", "cumulative_by_year_fixed", MODEL_FIXED, closedFormTolerance},
    {"bcg_vaccine", "cumulative_by_year_REML", MODEL_RANDOM, iterativeTolerance},
    {"magnesium", "cumulative_by_year_REML", MODEL_RANDOM, iterativeTolerance},
};

/// Tables, the group, and the order.
const Rows studies = {{12, 88, 20, 80, 2, 2005}, {15, 85, 25, 75, 1, 2001}, {9, 91, 8, 92, 2, 2003},
                      {5, 95, 9, 91, 1, 2004},   {45, 55, 25, 75, 2, 1999}, {11, 89, 19, 81, 3, 2002}};
const std::vector<int> ascending = {4, 1, 5, 2, 3, 0};

MAModelSettings CumulativeSettings(int group = -1)
{
    MAModelSettings settings = TableSettings();
    settings.SetCommulativeIndex(5);
    settings.SetSubGroupIndex(group);
    return settings;
}

Rows Selected(const std::vector<int>& records)
{
    Rows rows;
    for (const int record : records)
        rows.push_back(studies[static_cast<std::size_t>(record)]);
    return rows;
}

/// Rows of a cumulative analysis, in the order of `estimateColumns`.
std::vector<Rows> CumulativeRows(const MABinModel& model)
{
    return {model.GetCumEstES(),  model.GetCumEstStdErr(),  model.GetCumEstZval(),
            model.GetCumEstSig(), model.GetCumEstCiLower(), model.GetCumEstCiUpper()};
}

/// The rows on the ratio scale, where there is one, and the per-model lists.
void ExpectRatios(const MABinModel& model, bool isRatio)
{
    const auto exponentials = [isRatio](Rows rows) {
        for (Row& row : rows)
            std::transform(row.begin(), row.end(), row.begin(), [](double x) { return std::exp(x); });
        return isRatio ? rows : Rows();
    };
    EXPECT_EQ(model.GetCumExpEstES(), exponentials(model.GetCumEstES()));
    EXPECT_EQ(model.GetCumExpEstCiLower(), exponentials(model.GetCumEstCiLower()));
    EXPECT_EQ(model.GetCumExpEstCiUpper(), exponentials(model.GetCumEstCiUpper()));
    EXPECT_EQ(isRatio ? Rows{model.GetEstExpEffectSize()} : Rows(), exponentials({model.GetEstEffectSize()}));
}

/// A step has to the last digit the results of a run on the studies that have entered so far.
void ExpectSteps(const MABinModel& model, std::size_t row, const MAModelSettings& plain, const Rows& ordered)
{
    const std::vector<Rows> rows = CumulativeRows(model);
    for (std::size_t step = 0; step < ordered.size(); ++step) {
        SCOPED_TRACE(testing::Message() << "row " << row << ", step " << step);
        const auto entered = static_cast<std::ptrdiff_t>(step) + 1;
        const BinRun own(plain, Rows(ordered.begin(), ordered.begin() + entered));
        for (std::size_t c = 0; c < rows.size(); ++c) {
            const Column column = estimateColumns[c];
            ASSERT_EQ(rows[c].at(row).size(), ordered.size());
            EXPECT_TRUE(Same(rows[c][row][step], (own.model.*column)().at(0))) << "column " << c;
        }
    }
}

} // namespace

/// Studies of equal key come in no agreed order: only the steps after which the key changes have figures.
TEST(Cumulative, MeetsTheReferenceFigures)
{
    for (const Series& row : seriesFigures) {
        SCOPED_TRACE(std::string(row.dataSet) + " " + row.key);
        Published published(row.dataSet);
        published.settings.SetCommulativeIndex(published.data.IndexOf("year"));
        published.settings.SetModelType(row.model);
        const BinRun run(published.settings, published.data.rows);
        const nlohmann::json& figures = published.figures.at(row.key);
        const std::vector<Rows> rows = CumulativeRows(run.model);
        ASSERT_EQ(rows[0].size(), 1U);
        ASSERT_EQ(rows[0][0].size(), figures.size());
        for (std::size_t step = 0; step < figures.size(); ++step) {
            const double key = figures[step].at("key");
            EXPECT_EQ(run.model.GetEstCumulative().at(0).at(step), key);
            if (step + 1 < figures.size() && figures[step + 1].at("key") == key)
                continue;
            const char* const names[] = {"estimate", "se", "z", "p", "ci_lower", "ci_upper"};
            for (std::size_t c = 0; c < rows.size(); ++c) {
                const double scale = c == 2 || c == 3 ? 1.0 : figures[step].at("se").get<double>();
                EXPECT_TRUE(Close(rows[c][0][step], figures[step].at(names[c]), row.tolerance, scale))
                    << names[c] << " after " << key;
            }
        }
    }
}

/// The per-model lists then hold the steps, and the heterogeneity of all; the weights are in record order.
TEST(Cumulative, StepsAreRunsOfTheirOwn)
{
    for (const Pooling& pooling : poolings) {
        for (const int order : {0, 1, 7}) { // any but 0 is descending
            SCOPED_TRACE(testing::Message() << pooling.name << ", order " << order);
            MAModelSettings settings = pooling.Of(CumulativeSettings());
            settings.SetSortType(static_cast<SORTYPE>(order));
            const MAModelSettings plain = pooling.Of(TableSettings());
            const BinRun run(settings, studies);
            const MABinModel& model = run.model;

            std::vector<int> records = ascending;
            Row years = {1999, 2001, 2002, 2003, 2004, 2005};
            if (order != 0) {
                std::reverse(records.begin(), records.end());
                std::reverse(years.begin(), years.end());
            }
            EXPECT_EQ(model.GetEstCumulative(), Rows{years});
            EXPECT_EQ(model.GetSubGroupStudyID(), Records{records});
            EXPECT_EQ(model.GetCumulative(), (Row{2005, 2001, 2003, 2004, 1999, 2002}));
            EXPECT_EQ(model.GetGroupN(), std::vector<int>{6});
            EXPECT_EQ(model.GetUniGroup(), Row{-1});
            ExpectSteps(model, 0, plain, Selected(records));

            const BinRun whole(plain, studies);
            EXPECT_EQ(model.GetEstEffectSize(), model.GetCumEstES()[0]);
            EXPECT_EQ(model.GetEstCIUpper(), model.GetCumEstCiUpper()[0]);
            EXPECT_EQ(model.GetHomoTestdf().size(), 1U);
            EXPECT_TRUE(
                SameEntries(heterogeneityColumns, model, 0, BinRun(plain, Selected(records)).model, 0));
            ExpectRatios(model, pooling.IsRatio());
            // The sums of the whole run in another order.
            EXPECT_TRUE(Close(model.GetEstEffectSize().back(), whole.model.GetEstEffectSize()[0], 1e-14));
            EXPECT_TRUE(Close(model.GetWeight(), whole.model.GetWeight(), 1e-14));
        }
    }
}

/// The last row is the model of all; the per-model lists hold it alone, with the heterogeneity of each group.
TEST(Cumulative, GroupsHaveSeriesOfTheirOwn)
{
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const MAModelSettings settings = pooling.Of(CumulativeSettings(4));
        const MAModelSettings plain = pooling.Of(TableSettings());
        MAModelSettings grouped = plain;
        grouped.SetSubGroupIndex(4);
        const BinRun run(settings, studies);
        const BinRun groups(grouped, studies);
        const BinRun whole(plain, studies);
        const MABinModel& model = run.model;
        EXPECT_EQ(model.GetUniGroup(), (Row{1, 2, 3, -1}));
        EXPECT_EQ(model.GetGroupN(), (std::vector<int>{2, 3, 1}));
        EXPECT_EQ(model.GetSubGroupStudyID(), (Records{{1, 3}, {4, 2, 0}, {5}}));
        EXPECT_EQ(model.GetEstCumulative(), (Rows{{2001, 2004}, {1999, 2003, 2005}, {2002}, {}}));
        ASSERT_EQ(model.GetCumEstES().size(), 4U);
        ExpectSteps(model, 0, plain, Selected({1, 3}));
        ExpectSteps(model, 1, plain, Selected({4, 2, 0}));
        ExpectSteps(model, 2, plain, Selected({5}));
        EXPECT_EQ(model.GetCumEstES()[3], whole.model.GetEstEffectSize());
        EXPECT_EQ(model.GetCumEstSig()[3], whole.model.GetEstSig());
        EXPECT_EQ(model.GetEstEffectSize().size(), 1U);
        EXPECT_TRUE(SameEntries(estimateColumns, model, 0, whole.model, 0));
        EXPECT_EQ(model.GetHomoTestChisquareQ().size(), 4U);
        EXPECT_TRUE(SameEntries(heterogeneityColumns, model, 0, groups.model, 0));
        EXPECT_TRUE(SameEntries(heterogeneityColumns, model, 3, whole.model, 0));
        EXPECT_EQ(model.GetWeight(), whole.model.GetWeight());
        EXPECT_TRUE(Close(model.GetGDQbVal(), groups.model.GetGDQbVal(), 1e-13));
        ExpectRatios(model, pooling.IsRatio());
        EXPECT_EQ(model.GetGDQbDf(), 2);
    }
}

/// A missing value of the order comes first when the order ascends; ties are all there.
TEST(Cumulative, MissingValuesAndTies)
{
    Rows rows = studies;
    const double keys[] = {3, missing, 1, 1, notANumber, 1};
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i][5] = keys[i];
    const MAModelSettings settings = CumulativeSettings();
    const BinRun run(settings, rows);
    EXPECT_EQ(run.model.GetEstCumulative(), (Rows{{missing, missing, 1, 1, 1, 3}}));
    std::vector<int> records = run.model.GetSubGroupStudyID().at(0);
    std::sort(records.begin(), records.begin() + 2);
    std::sort(records.begin() + 2, records.end() - 1);
    EXPECT_EQ(records, (std::vector<int>{1, 4, 2, 3, 5, 0}));
}

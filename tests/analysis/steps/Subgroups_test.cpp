#include "support/PooledFigures.h"
#include "support/Poolings.h"
#include "support/Published.h"

#include "meta_analysis/settings/MAStatusCode.h"

using namespace MA_NAMESPACE;
using namespace MAConst;

namespace {

using Records = std::vector<std::vector<int>>;

/// Figures of the analysis by a column; their key ends with the estimator or "fixed".
struct Figures
{
    bool IsFixed() const { return key.find("fixed") != key.npos; }
    double Tolerance() const
    {
        return key.find("REML") == key.npos ? closedFormTolerance : iterativeTolerance;
    }

    std::string dataSet;
    std::string key;
    std::string column;
};

const Figures groupFigures[] = {{"bcg_vaccine", "subgroup_by_allocation_fixed", "allocation"},
                                {"bcg_vaccine", "subgroup_by_allocation_REML", "allocation"},
                                {"teacher_expectancy", "subgroup_by_tester_REML", "tester"},
                                {"writing_to_learn", "subgroup_by_grade_DL", "grade"}};
const Figures seriesFigures[] = {{"bcg_vaccine", "cumulative_by_year_fixed", "year"},
                                 {"bcg_vaccine", "cumulative_by_year_REML", "year"},
                                 {"magnesium", "cumulative_by_year_REML", "year"}};

Published PublishedAs(const Figures& figures)
{
    Published published(figures.dataSet);
    published.settings.SetModelType(figures.IsFixed() ? MODEL_FIXED : MODEL_RANDOM);
    published.settings.SetEstTauType(figures.key.find("DL") == std::string::npos ? TAU2_REML : TAU2_DL);
    return published;
}

/// Tables, the group, and the order. In group 1 no one treated has an event.
const Rows studies = {{12, 88, 20, 80, 2, 2005}, {0, 85, 25, 75, 1, 2001},  {9, 91, 8, 92, 2, 2003},
                      {0, 95, 9, 91, 1, 2004},   {45, 55, 25, 75, 2, 1999}, {11, 89, 19, 81, 3, 2002}};

MAModelSettings SettingsBy(int group, int order)
{
    MAModelSettings settings = TableSettings();
    settings.SetSubGroupIndex(group);
    settings.SetCommulativeIndex(order);
    return settings;
}

Rows Selected(const std::vector<int>& records)
{
    Rows rows;
    for (const int record : records)
        rows.push_back(studies[static_cast<std::size_t>(record)]);
    return rows;
}

Rows WithColumn(std::size_t position, const Row& values)
{
    Rows rows = studies;
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i][position] = values[i];
    return rows;
}

void BuildGroups(MABinModel& model, const Pooling& pooling)
{
    EXPECT_TRUE((pooling.IsBinary() ? model.BuildBinSubGroupModel() : model.BuildSubGroupModel()).IsOK());
}

/// Rows of a cumulative analysis that are not empty, in the order of `estimateColumns`.
std::vector<Rows> CumulativeRows(const MABinModel& model)
{
    std::vector<Rows> rows = {
        model.GetCumEstES(),    model.GetCumEstStdErr(),     model.GetCumEstZval(),
        model.GetCumEstSig(),   model.GetCumEstCiLower(),    model.GetCumEstCiUpper(),
        model.GetCumExpEstES(), model.GetCumExpEstCiLower(), model.GetCumExpEstCiUpper()};
    rows.erase(std::remove(rows.begin(), rows.end(), Rows()), rows.end());
    return rows;
}

/// Each series orders the given records, and a step has to the last digit the results of a run on the studies
/// that have entered so far.
void ExpectSteps(const MABinModel& model, const Records& series, const MAModelSettings& plain)
{
    EXPECT_EQ(model.GetSubGroupStudyID(), series);
    for (std::size_t row = 0; row < series.size(); ++row) {
        EXPECT_EQ(model.GetEstCumulative().at(row), ColumnOf(Selected(series[row]), 5));
        ASSERT_EQ(model.GetCumEstES().at(row).size(), series[row].size());
        for (std::size_t step = 0; step < series[row].size(); ++step) {
            const auto end = series[row].begin() + static_cast<std::ptrdiff_t>(step) + 1;
            const BinRun own(plain, Selected({series[row].begin(), end}));
            Row actual;
            for (const Rows& rows : CumulativeRows(model))
                actual.push_back(rows.at(row).at(step));
            EXPECT_TRUE(Same(actual, EntriesOf(own.model, 0, estimateColumns))) << row << ", step " << step;
        }
    }
}

} // namespace

TEST(Subgroups, MeetTheReferenceFigures)
{
    for (const Figures& row : groupFigures) {
        SCOPED_TRACE(row.key);
        Published published = PublishedAs(row);
        published.settings.SetSubGroupIndex(published.data.IndexOf(row.column));
        const nlohmann::json& figures = published.figures.at(row.key);
        const nlohmann::json& groups = figures.at("groups");
        const BinRun run(published.settings, published.data.rows);
        ASSERT_EQ(run.model.GetUniGroup().size(), groups.size() + 1);
        for (std::size_t g = 0; g <= groups.size(); ++g) {
            SCOPED_TRACE(testing::Message() << "group " << g);
            const nlohmann::json& group = g < groups.size() ? groups[g] : figures.at("overall");
            const double tau2 = row.IsFixed() ? missing : group.at("tau2").get<double>();
            EXPECT_TRUE(Close(run.model.GetEstEffectSize().at(g), group.at("estimate"), row.Tolerance()));
            EXPECT_TRUE(Close(run.model.GetEstStdError().at(g), group.at("se"), row.Tolerance()));
            EXPECT_TRUE(Close(run.model.GetTau2Var().at(g), tau2, row.Tolerance()));
            EXPECT_EQ(run.model.GetUniGroup()[g], group.value("group", -1.0));
        }
        EXPECT_TRUE(Close(run.model.GetGDQbVal(), figures.at("Qb"), row.Tolerance()));
        EXPECT_EQ(run.model.GetGDQbDf(), figures.at("Qb_df"));
        EXPECT_NEAR(run.model.GetGDQbSig(), figures.at("Qb_p"), row.Tolerance());
    }
}

/// Studies of equal key come in no agreed order: only the steps after which the key changes have figures.
TEST(Cumulative, MeetsTheReferenceFigures)
{
    const char* const names[] = {"estimate", "se", "z", "p", "ci_lower", "ci_upper"};
    for (const Figures& row : seriesFigures) {
        SCOPED_TRACE(row.dataSet + " " + row.key);
        Published published = PublishedAs(row);
        published.settings.SetCommulativeIndex(published.data.IndexOf(row.column));
        const nlohmann::json& figures = published.figures.at(row.key);
        BinRun run(published.settings, published.data.rows);
        const std::vector<Rows> rows = CumulativeRows(run.model);
        ASSERT_EQ(rows[0].at(0).size(), figures.size());
        run.settings.SetBinaryEstType(run.model.GetCumExpEstES().empty() ? BIN_ODDS_RATIO
                                                                         : BIN_RISK_DIFFERENCE);
        EXPECT_EQ(CumulativeRows(run.model), rows); // settings of a run to come
        for (std::size_t step = 0; step < figures.size(); ++step) {
            const double key = figures[step].at("key");
            EXPECT_EQ(run.model.GetEstCumulative().at(0).at(step), key);
            if (step + 1 < figures.size() && figures[step + 1].at("key") == key)
                continue;
            for (std::size_t c = 0; c < std::size(names); ++c) {
                const double scale = c == 2 || c == 3 ? 1.0 : figures[step].at("se").get<double>();
                EXPECT_TRUE(Close(rows[c][0][step], figures[step].at(names[c]), row.Tolerance(), scale))
                    << names[c] << " after " << key;
            }
        }
    }
}

/// Every group has the results of a run on its studies, and the overall model those of a run without groups.
/// The test between the groups is of inverse variances, also where tables are pooled otherwise.
TEST(Subgroups, GroupsAreRunsOfTheirOwn)
{
    const Records members = {{1, 3}, {0, 2, 4}, {5}, {0, 1, 2, 3, 4, 5}};
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const MAModelSettings settings = pooling.Of(SettingsBy(4, -1));
        const MAModelSettings plain = pooling.Of(TableSettings());
        BinRun run(settings, studies);
        EXPECT_EQ(run.model.GetUniGroup(), (Row{1, 2, 3, -1}));
        EXPECT_EQ(run.model.GetSubGroupStudyID(), Records(members.begin(), members.begin() + 3));
        for (std::size_t g = 0; g < members.size(); ++g) {
            const BinRun own(plain, Selected(members[g]));
            EXPECT_TRUE(SameModel(run.model, g, own.model)) << "group " << g;
        }
        EXPECT_EQ(run.model.GetEstEffectSize().size(), 4U);
        EXPECT_EQ(run.model.GetWeight(), BinRun(plain, studies).model.GetWeight());

        MAModelSettings inverse = settings;
        inverse.SetWeightType(WEIGHT_INVERSE_VARIANCE);
        const double q = run.model.GetGDQbVal();
        EXPECT_TRUE(Close(q, BinRun(inverse, studies).model.GetGDQbVal(), 1e-14));
        EXPECT_NEAR(run.model.GetGDQbSig(), std::exp(-q / 2), 1e-15); // of two degrees of freedom

        BuildGroups(run.model, pooling); // once more: the calls add up
        EXPECT_DOUBLE_EQ(run.model.GetGDQbVal(), 2 * q);
        EXPECT_EQ(run.model.GetGroupN(), (std::vector<int>{2, 3, 1, 2, 3, 1}));
        EXPECT_EQ(run.model.GetEstEffectSize().size(), 8U);
    }
}

/// Missing values, and those that are the label of the overall model, are groups. In a series missing values
/// come first, and ties are all there.
TEST(Subgroups, MissingValuesAreAGroupAndComeFirst)
{
    const BinRun groups(SettingsBy(4, -1), WithColumn(4, {-1, missing, 4, notANumber, -1, 4}));
    EXPECT_EQ(groups.model.GetUniGroup(), (Row{missing, -1, 4, -1}));
    EXPECT_EQ(groups.model.GetSubGroupStudyID(), (Records{{1, 3}, {0, 4}, {2, 5}}));
    EXPECT_EQ(groups.model.GetLabbePlotX().size(), 2U); // not of the group that is called as the whole

    const BinRun series(SettingsBy(-1, 5), WithColumn(5, {3, missing, 1, 1, notANumber, 1}));
    EXPECT_EQ(series.model.GetEstCumulative(), (Rows{{missing, missing, 1, 1, 1, 3}}));
    std::vector<int> records = series.model.GetSubGroupStudyID().at(0);
    std::sort(records.begin(), records.begin() + 2);
    std::sort(records.begin() + 2, records.end() - 1);
    EXPECT_EQ(records, (std::vector<int>{1, 4, 2, 3, 5, 0}));
}

/// The per-model lists then hold the steps, and the heterogeneity of all; the weights are in record order.
TEST(Cumulative, StepsAreRunsOfTheirOwn)
{
    for (const Pooling& pooling : poolings) {
        const MAModelSettings plain = pooling.Of(TableSettings());
        for (const int order : {0, 1, 7}) { // any but 0 is descending
            SCOPED_TRACE(testing::Message() << pooling.name << ", order " << order);
            MAModelSettings settings = pooling.Of(SettingsBy(-1, 5));
            settings.SetSortType(static_cast<SORTYPE>(order));
            std::vector<int> records = {4, 1, 5, 2, 3, 0};
            if (order != 0)
                std::reverse(records.begin(), records.end());
            const BinRun run(settings, studies);
            const BinRun inOrder(plain, Selected(records));
            ExpectSteps(run.model, {records}, plain);
            EXPECT_EQ(run.model.GetCumulative(), ColumnOf(studies, 5));
            EXPECT_EQ(run.model.GetGroupN(), std::vector<int>{6});
            EXPECT_EQ(run.model.GetUniGroup(), Row{-1});
            EXPECT_EQ(run.model.GetEstEffectSize(), run.model.GetCumEstES()[0]);
            EXPECT_EQ(run.model.GetEstCIUpper(), run.model.GetCumEstCiUpper()[0]);
            EXPECT_TRUE(Same(EntriesOf(run.model, 0, heterogeneityColumns),
                             EntriesOf(inOrder.model, 0, heterogeneityColumns)));
            EXPECT_TRUE(Close(run.model.GetWeight(), BinRun(plain, studies).model.GetWeight(), 1e-14));
        }
    }
}

/// The last row is the model of all; the per-model lists hold it alone, with the heterogeneity of each group.
TEST(Cumulative, GroupsHaveSeriesOfTheirOwn)
{
    for (const Pooling& pooling : poolings) {
        SCOPED_TRACE(pooling.name);
        const BinRun run(pooling.Of(SettingsBy(4, 5)), studies);
        const BinRun groups(pooling.Of(SettingsBy(4, -1)), studies);
        const MABinModel& model = run.model;
        ExpectSteps(model, {{1, 3}, {4, 2, 0}, {5}}, pooling.Of(TableSettings()));
        EXPECT_EQ(model.GetEstCumulative().size(), 4U);
        EXPECT_EQ(model.GetUniGroup(), (Row{1, 2, 3, -1}));
        EXPECT_EQ(model.GetGroupN(), (std::vector<int>{2, 3, 1}));
        EXPECT_EQ(model.GetCumEstES().at(3), model.GetEstEffectSize());
        EXPECT_EQ(model.GetCumEstSig().at(3), model.GetEstSig());
        EXPECT_EQ(model.GetEstEffectSize().size(), 1U);
        EXPECT_TRUE(Same(EntriesOf(model, 0, estimateColumns), EntriesOf(groups.model, 3, estimateColumns)));
        EXPECT_EQ(model.GetHomoTestChisquareQ().size(), 4U);
        for (const std::size_t g : {0U, 3U}) // in the order of the records
            EXPECT_TRUE(Same(EntriesOf(model, g, heterogeneityColumns),
                             EntriesOf(groups.model, g, heterogeneityColumns)));
        EXPECT_EQ(model.GetWeight(), groups.model.GetWeight());
        EXPECT_TRUE(Close(model.GetGDQbVal(), groups.model.GetGDQbVal(), 1e-13));
    }
}

/// What is kept by study stays in step when studies are removed after their effect sizes were computed: an
/// empty arm has no ratio, and a risk difference without variance.
TEST(Subgroups, RemovedStudiesLeaveNoTrace)
{
    const std::vector<std::string> differing = {"Missing",  "Invalid", "StudyID",
                                                "Warnings", "Labbe",   "Exclu"};
    Rows all = studies;
    for (Row& row : all)
        row[0] += 1; // zero cells are not corrected here
    Rows rows = all;
    rows.insert(rows.begin() + 1, {{0, 0, 4, 90, 1, 9}, {4, missing, 4, 90, 1, 9}});
    rows.insert(rows.begin() + 4, {0, 0, 7, 90, 2, 9});
    for (const Pooling& pooling : poolings) {
        for (const int order : {-1, 5}) {
            SCOPED_TRACE(testing::Message() << pooling.name << ", order " << order);
            MAModelSettings settings = pooling.Of(SettingsBy(4, order));
            settings.SetBinZeroAdjType(ZERO_ADJUST_NONE);
            settings.SetContrastCoefIndex({5});
            const BinRun run(settings, rows);
            const BinRun kept(settings, all);
            EXPECT_EQ(FirstDifference(ResultsBut(differing, run.model), ResultsBut(differing, kept.model)),
                      "");
            EXPECT_EQ(run.model.GetNInvalid(), 2);
            EXPECT_EQ(run.model.GetNonMissingStudyID(), (std::vector<int>{0, 3, 5, 6, 7, 8}));
            EXPECT_TRUE(run.Warns(MAStatusCode::STUDIES_REMOVED));
            EXPECT_TRUE(run.model.GetLabbePlotX().empty()); // it has them all or none
        }
    }
}

/// The first model that fails ends the analysis: of a group, of a cumulative step, or of trimmed studies,
/// where the overall model stays.
TEST(Subgroups, FailureOfAModelEndsTheRun)
{
    const auto unknown = static_cast<TAU2ESTIMATOR>(7);
    for (const char analysis : {'g', 'c', 't'}) {
        SCOPED_TRACE(analysis);
        MAModelSettings settings =
            randomEffects.Of(SettingsBy(analysis == 'g' ? 4 : -1, analysis == 'c' ? 5 : -1));
        settings.SetIsTRIMFILL(analysis == 't');
        analysis == 't' ? settings.SetTFEstTauType(unknown) : settings.SetEstTauType(unknown);
        const BinRun run(settings, studies);
        EXPECT_EQ(run.status, KXStatus(MAStatusCode::TAU2_FAILED));
        EXPECT_EQ(run.model.GetEstEffectSize().empty(), analysis != 't');
        EXPECT_TRUE(run.model.GetCumEstES().empty());
        EXPECT_EQ(run.model.GetGroupN().empty(), analysis != 't');
        EXPECT_EQ(run.model.GetUniGroup().back(), analysis == 'g' ? 3 : -1);
        EXPECT_TRUE(run.model.GetFunnelX().empty());
    }
}

// The content and the order of reports. The documents show whole reports, which a test of their own compares.

#include "host/RunProgram.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <fmt/format.h>

#include <regex>

using namespace MA_NAMESPACE;
using testing::ContainsRegex;

namespace {

struct ShownReport
{
    Arguments arguments;
    std::string pattern; ///< a POSIX expression, in which .* matches ends of lines too
};

void ExpectShown(const std::vector<ShownReport>& reports)
{
    for (const ShownReport& one : reports)
        EXPECT_THAT(ReportOf(one.arguments), ContainsRegex(one.pattern));
}

TEST(AnalysisReport, DescribesTheModelAndItsCorrections)
{
    const Arguments fixed = Bcg() + "--model fixed";
    const std::string tables = "--weights mantel-haenszel";
    const TemporaryFolder folder;
    const std::string zeros =
        folder.Write("t.csv", "treatment_events,treatment_nonevents,control_events,control_nonevents,g\n"
                              "0,9,2,7,a\n0,8,3,5,b\n4,9,5,6,b\n");
    const std::string oneSided =
        folder.Write("o.csv", "treatment_events,treatment_nonevents,control_events,control_nonevents\n"
                              "0,100,0,100\n3,97,0,100\n2,98,0,100\n");
    ExpectShown({
        {Bcg() + "--tau2 dl --knapp-hartung truncated",
         "random-effects model \\(DerSimonian-Laird\\), truncated Knapp-Hartung adjustment, .*SE +t +p\n"},
        {fixed + "--null 0.5", "fixed-effect model \\(inverse variance\\), 95%.*SE +z +p\n"
                               ".*The null hypothesis is log OR = 0.5\\."},
        {fixed + tables + "--null 2",
         "fixed-effect model \\(Mantel-Haenszel\\), .*The null hypothesis is OR = 2\\."},
        {Binary(zeros) + "--model fixed" + tables + "--subgroup g",
         "of the counts pooled: 1 table in a; the other rows.*effects: 0.5 added to all cells of 2 "
         "tables\\."},
        {Binary(oneSided) + "--model fixed" + tables + "--pooled-zero-cells none",
         "Overall +- +- +- +- +-\n.*part in the pooled one: 1 table\\. -: the counts have no pooled effect.*"
         "Overall +- +1 +- +- +-\n"},
        {Binary(zeros) + "--model fixed" + tables + "--cumulative g",
         "of the counts pooled: no table\\..*p +Tables corrected\n1 +a [^\n]* 1\n2 +b [^\n]* 2\n3 +b [^\n]* "
         "0\n"},
    });
}

TEST(AnalysisReport, OrdersGroupsByTextAndExplainsUnusualData)
{
    const TemporaryFolder folder;
    const std::string even =
        folder.Write("e.csv", "effect,variance\n1,1\n1.1,1\n0.9,1\n1,1\n1.1,1\n0.9,1\n1,1\n1,1\n");
    const std::string alone = folder.Write("alone.csv", "effect,variance,g\n1,1,a\n2,1,\n3,1,a\n");
    const std::string gaps = folder.Write("t.csv", "effect,variance,g\n1,1,b\n2,1,NA\n3,1,a\n4,1,\n");
    const std::string steps = folder.Write("s.csv", "effect,variance,g,c\n1,1,a,1\n2,1,a,\n5,1,b,2\n");
    const std::string proportions = folder.Write("p.csv", "x,n\n3,10\n12,10\nNA,5\n0,8\n-1,4\n4,0\n5,5\n");
    const std::string unusable = folder.Write("u.csv", "effect,variance\nNA,1\n1,0\n");
    ExpectShown({
        {Effects(unusable), "2 read, 0 used, 1 missing, 1 invalid, 0 dropped\nNo record could be used"},
        {Arguments{"proportion", proportions} + "--events x --n n",
         "0\\.5 added to all counts of 2 studies\\..*7 read, 3 used, 1 missing, 3 invalid, 0 dropped"},
        {Effects(even) + "--model fixed", "Heterogeneity\n[^\n]*\n[^\n]* 0.00 \\[0.00, 0.00\\] [^\n]*\n"
                                          "An I² of 0 with the interval \\[0, 0\\] is no certainty"},
        {Effects(gaps) + "--subgroup g --keep-missing-groups",
         "\n\\(missing\\) +3.0000 .*\na +3.0000 .*\nb +1.0000 .*\nOverall .*\n2 +\\(missing\\) +2.0000"},
        {Effects(gaps) + "--subgroup g",
         "\na +3.0000 .*\nb +1.0000 .*\nOverall +2.5000.*460148: [^\n]*Studies: 2, 4\\..*\n2 +- +2.0000.*"
         "Subgroups: studies without a value of g\nStudy +Line\n2 +3\n4 +5\nLeft out: 2 of the 4 studies"},
        {Effects(steps) + "--subgroup g --cumulative c",
         "Variance between studies\n[^\n]*\na +- .*\nOverall +[0-9.]+ .*Left out: 1 of the 3 studies\\."
         "[^\n]*\nThey are left out of the pooled effects of the groups"},
        {Effects(alone) + "--subgroup g",
         "Left out: 1 of the 3 studies[^\n]*\nThe others have one value of g: "},
        {Effects(gaps) + "--cumulative g", "\nOverall +2.5000 .*460149: .*With g +2.0000"},
        {Effects(unusable),
         "Excluded records\nStudy +Line +Reason\n1 +2 +missing value\n2 +3 +variance, [^\n]*\n2 read, 2 "
         "excluded \\(1 missing value, 1 variance, "},
    });
}

TEST(AnalysisReport, ShowsCumulativeStepsInTheirOrder)
{
    const Arguments byYear = Bcg() + "--effect risk-ratio --cumulative year --descending";
    const Arguments byGenus = Continuous("elevated_co2.csv") + "--cumulative genus --study study";
    ExpectShown({
        {byYear, "Cumulative analysis\nStudy added +year +RR [^\n]*\nTPT Madras +1980 +1.0120 [^\n]*\n"
                 "Hart & Sutherland +1977 "},
        {byGenus, "Study added +genus [^\n]*\n[0-9]+ +ACER "},
    });
}

TEST(AnalysisReport, ShowsContrastsPlotsIntervalsAndPredictions)
{
    const Arguments contrasts = Bcg() + "--contrast allocation --contrast year";
    const TemporaryFolder folder;
    const std::string equal = folder.Write("t.csv", "effect,variance\n1,1\n1,2\n1,1\n");
    ExpectShown({
        {Effects(equal), "\\[0\\.0000, 0\\.0000\\].*Q-profile intervals\\.\n.*interval is empty"},
        {Bcg() + "--effect risk-ratio --prediction normal --probability-above 1.5",
         "95% prediction interval, normal distribution\n[^\n]*P\\(RR > 1.5\\)\nOverall "},
        {contrasts + "--model fixed", "Contrasts\n +exp\\(contrast\\) [^\n]*\nallocation [^\n]*\nyear "},
        {Bcg() + "--funnel-y inverse-variance --contours lower --json /dev/null",
         "\nIts picture has no contours: "},
        {Bcg() + "--effect risk-ratio --bubble year --bubble latitude",
         "Bubble plots\n.*\nyear +13 .*\nlatitude +13 +0.2515 +-0.0291\n"},
    });
}

TEST(AnalysisReport, NamesConvertedStudiesAndTheLabelOfTheMeasure)
{
    const TemporaryFolder folder;
    const std::string group = "--X-n n --X-mean mX --X-sd sX --X-median dX --X-q1 aX --X-q3 bX";
    const std::string medians =
        folder.Write("m.csv", "who,n,mtreatment,streatment,dtreatment,atreatment,btreatment,mcontrol,"
                              "scontrol,dcontrol,acontrol,bcontrol\n"
                              "A,50,9,4,,,,8,4,,,\nB,50,,4,10,7,30,,4,10,7,30\n");
    Arguments converted = {"continuous", medians};
    for (const char* const name : {"treatment", "control"})
        converted = converted + std::regex_replace(group, std::regex("X"), name);
    ExpectShown({
        {Ratios() + "--label" + Arguments{"hazard ratio"},
         "^Meta-analysis: hazard ratio, .* hazard ratio \\[95% CI\\] +log hazard ratio "
         ".*460125: [^\n]*Studies: Cardenas, Wu\\.\n.*Variance between.*Converted studies\n"
         "Study +Standard error from *\nGarfinkel +confidence interval *\n"},
        {Ratios(), "^Meta-analysis: ratio, .* log ratio "},
        {Ratios("--effect risk-ratio"), "^Meta-analysis: risk ratio, "},
        {converted + "--study who", "460126: [^\n]*Study: B\\.\n.*Converted studies\n[^\n]*\n"
                                    "B +median and quartiles +median and quartiles *\n"},
        {Arguments{"binary", folder.Write("t.csv", "who;a;b;c;d\nX;1,5;8;2;9\nY;0;0;3;9\nZ;2;9;3;9\n")} +
             "--study who --treatment-events a --treatment-nonevents b --control-events c "
             "--control-nonevents d",
         "460152: [^\n]*Study: X\\.\n460153: [^\n]*Study: Y\\.\n.*3 used"},
    });
}

TEST(AnalysisReport, ExplainsSmallStudyEffectsWithoutAClaim)
{
    const TemporaryFolder folder;
    const std::string two = folder.Write("t.csv", "effect,variance\n1,1\n2,2\n");
    ExpectShown({
        {Effects(two) + "--trim-fill run", "It could not be computed\\."},
        {Effects("passive_smoking.csv") + "--small-study-test 0 --subgroup country",
         "Small-study test [^\n]*\n[^\n]*\nChina +1.88.*\nGermany +- .*larger values of d "},
        {Bcg() + "--small-study-test 3 --test-intercept off", "Without intercept"},
        {Bcg() + "--preset cochrane --subgroup allocation --common-tau2 --tau2 dl --rank-test",
         "t with 10 degrees of freedom.*share one tau².*F +df +residual df +p\n[0-9.]+ +2 +10.*Kendall's tau "
         "+p \\(normal\\) +p \\(exact\\).*Preset\ncochrane [^\n]*--tau2 dl \\(in place of reml\\)"},
    });
}

/// The REML estimate of the effects is 0.1464, and the ML estimate of the regression 0.0114369.
TEST(AnalysisReport, NamesBothValuesWhenScoringMissesTheEstimate)
{
    const TemporaryFolder folder;
    const std::string effects = folder.Write(
        "y.csv", "effect,variance\n.2079,.1763\n.0855,.2224\n.9889,.2803\n.4031,.2341\n.3185,.0730\n"
                 ".8067,.3336\n.5516,.3613\n.0888,.2599\n.5623,.1189\n.8389,.3848\n.5106,.2689\n"
                 "1.4456,.0131\n-.0543,.3649\n.6439,.1473\n");
    const std::string moderated = folder.Write(
        "x.csv", "effect,variance,x\n0.016779,0.001,-0.564825\n0.796272,0.055928,1.527239\n"
                 "1.404543,0.521481,0.662909\n-0.487727,0.060657,-0.897445\n"
                 "2.690687,3.638258,0.708595\n0.731744,0.016879,0.445024\n2.31175,0.00968,2.888549\n"
                 "0.109614,0.013116,0.014565\n0.858999,2.818472,0.855125\n-2.844727,10,-0.462562\n");
    const Arguments regression = Regression(moderated) + "--covariate x --tau2 ml";
    const std::string doubt = fmt::format("\n{}: [^\n]*: at 0\\.", MAStatusCode::TAU2_DOUBTFUL);
    ExpectShown({
        {Effects(effects) + "--preset library",
         "reached --max-iterations .*" + doubt +
             "00[0-9]+ in place of 0\\.1464\\. Set --tau2-search global"
             ".*Preset\nlibrary: --tau2-search scoring, "},
        {regression + "--tau2-search scoring", doubt + "0000 in place of 0\\.0114\\. Set"},
    });
    EXPECT_THAT(JsonOf(Effects(effects) + "--preset library")["messages"].dump(),
                testing::HasSubstr("in place of 0.1464"));
}

TEST(AnalysisReport, ShowsRegressions)
{
    const Arguments tester = Regression("teacher_expectancy.csv") + "--factor tester --study study";
    ExpectShown({
        {tester + "--knapp-hartung adjusted --tau2 dl",
         "^Meta-regression: random-effects model \\(DerSimonian-Laird\\), Knapp-Hartung adjustment, 95% "
         "level\n\nCoefficients.*tester=1 +- +- +- +-\n-: aliased.*Study +Effect +Fitted \\[95% CI\\] "
         "+Residual +SE +Leverage\nRosenthal et al. +0.0300 "},
        {tester + "--model fixed --dispersion --normal-tests",
         "SE +z +p\n.*Wald chi² +df +p\n.*Q +df +p +I² % +H²\n.*Multiplicative dispersion\n[0-9.]+, by "},
    });
}

} // namespace

// Where the report goes and how: cautions, digits, the table of studies, methods and references.

#include "host/RunProgram.h"

#include "meta_analysis/settings/MAStatusCode.h"

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using namespace MA_NAMESPACE;

namespace {

struct Shown
{
    Arguments arguments;
    std::string text; ///< a POSIX expression
};

/// The BCG trials have 0.4746 [0.3296, 0.6835] with p 6.2e-5, tau² 0.3378 and I² 92.07 %.
TEST(ReportOutput, BeginsWithTheAnswerInTheDigitsAskedFor)
{
    EXPECT_THAT(ReportOf(Bcg() + "--digits 2"),
                ContainsRegex(
                    "level\n\nResult\nOdds ratio of 13 studies: 0\\.47 \\(95% CI 0\\.33 to 0\\.68, p < "
                    "0\\.0001\\)\\.\n95% prediction interval, [^\n]*: 0\\.12 to 1\\.82\\.\n\nPooled .*"
                    " 0\\.19  -4\\.01  < 0\\.0001\n.* 163\\.16  12  < 0\\.0001  92\\.1 \\[81\\.7, 97\\.6\\] "
                    ".*0\\.34 \\[0\\.13, 1\\.18\\].*Aronson +0\\.39 .*\nRecords\n"));
    EXPECT_THAT(ReportOf(Bcg() + "--digits 0"), ContainsRegex("\nOverall  [^\n]*\\]  0\\.2  -4  < 0"))
        << "an SE is not 0";
}

/// Each number that misleads has its sentence, and a large and homogeneous analysis has none.
TEST(ReportOutput, CautionsWhereANumberMisleads)
{
    const TemporaryFolder folder;
    const std::string head = "effect,variance,g\n";
    const Arguments one = Effects(folder.Write("1.csv", head + "1,1,a\n"));
    const Arguments two = Effects(folder.Write("2.csv", head + "1,1,a\n2,1,b\n"));
    const Arguments equal = Effects(folder.Write("e.csv", head + "1,1,a\n1.01,1,a\n.99,1,b\n1,1,b\n"));
    const Arguments four = Effects(folder.Write("4.csv", head + "0,.1,a\n1,.1,a\n2,.1,a\n3,.1,b\n"));
    const Arguments six = Effects(folder.Write("6.csv", head + "0,1,a\n3,1,a\n1,1,a\n3,1,b\n0,1,b\n2,1,b\n"));
    const Arguments raw = Arguments{"proportion", folder.Write("p.csv", "x,n\n1,40\n1,9\n1,10\n")} +
                          "--events x --n n --effect raw --model fixed";
    for (const Shown& shown : std::vector<Shown>{
             {one, "There is one study"},
             {two + "--knapp-hartung adjusted", "2 studies, interval .* 1 degree of freedom"},
             {two, "tau² 0 .*from 2 studies: .*equal, and 2 studies leave no prediction"},
             {two + "--subgroup g", "2 studies in 2 groups, of one study a; b: "},
             {four, "4 studies: the interval and the test.*tau² 1\\.5667 \\(interval up to [0-9.]+\\) from 4 "
                    "studies: so few .*, on which the prediction interval rests"},
             {four + "--model fixed", "Q 50\\.0000 with 3 df, p < 0\\.0001, I² 94\\.0%: the studies differ"},
             {four + "--trim-fill run", "4 studies: trim-and-fill"},
             {equal, "tau² 0 from 4 studies: the model pools as one of a fixed"},
             {six + "--tau2-interval none", "I² [0-9.]+% from 6 studies, without an interval"},
             {equal + "--knapp-hartung adjusted",
              "\\[0\\.98[0-9]+, 1\\.01[0-9]+\\] in place of \\[0\\.02002, 1\\.97998\\]: the "
              "interval after Knapp"},
             {Bcg(), "excludes no effect, the prediction interval, 0\\.1239 to 1\\.8183, includes it"},
             {Bcg() + "--cumulative year",
              "excludes no effect, the prediction interval, 0\\.1239 to 1\\.8183"},
             {Bcg() + "--small-study-test egger", "Pooled odds ratio 0\\.4746: the standard error of a log"},
             {Bcg() + "--tau2-search scoring --max-iterations 1", "reached --max-iterations .*provisional"},
             {raw, "no proportion is there"},
             {Regression("teacher_expectancy.csv") + "--covariate weeks --factor setting",
              "19 studies for 2 coefficients of predictors: with fewer than 10"},
         })
        EXPECT_THAT(ReportOf(shown.arguments), ContainsRegex("\nCautions\n.*" + shown.text));
    EXPECT_THAT(ReportOf(Effects("passive_smoking.csv") + "--model fixed"), Not(HasSubstr("\nCautions\n")));
    for (const auto& [few, facts] :
         std::vector<std::pair<Arguments, std::size_t>>{{one, 1}, {two, 1}, {four, 3}}) {
        EXPECT_EQ(JsonOf(few)["cautions"].size(), facts);
        EXPECT_THAT(ReportOf(few), Not(HasSubstr("\nWarnings\n"))) << "said by a caution";
    }
    EXPECT_THAT(JsonOf(two)["warnings"], testing::Contains(MAStatusCode::TWO_STUDIES));
}

TEST(ReportOutput, TablesRunNothingAndLoseNothing)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write(
        "d.csv",
        "s,effect,variance\n\"=SUM(\"\"A1\"\";1)\",-0.5,0.25\n-0.5,0.125,1\n\"[a_b]|50%\\&<i>--$\",1,1\n");
    const Arguments run = Effects(data) + "--study s --model fixed";
    const std::string csv = ReportOf(run + "--table -");
    EXPECT_THAT(
        csv,
        StartsWith("\"Study\",\"Row\",\"d\",\"d 95% CI lower\",\"d 95% CI upper\",\"SE\",\"Weight (%)\""));
    EXPECT_THAT(csv, HasSubstr("\r\n\"'=SUM(\"\"A1\"\";1)\",\"study\",-0.5,-1.4799"));
    EXPECT_THAT(csv, HasSubstr("\r\n\"-0.5\",\"study\",0.125,"));
    EXPECT_THAT(csv, ContainsRegex("\"Overall\",\"overall\",-0\\.145833333[0-9]*,"));
    EXPECT_THAT(csv, ContainsRegex("\"heterogeneity\",(,)*1\\.88802[0-9]*,2,"));
    const ProgramRun files = RunProgram(run + "-q --table" + Arguments{folder.PathOf("t.tex")});
    EXPECT_EQ(files.output + files.errors, "");
    EXPECT_THAT(folder.Read("t.tex"),
                HasSubstr("\n{[}a\\_b]$|$50\\%\\textbackslash{}\\&$<$i$>$-{}-{}\\$ & 1.0000 {["));
    EXPECT_THAT(folder.Read("t.tex"), HasSubstr(" & $-$0.5000 {[}$-$1.4800, 0.4800] & "));
    ReportOf(run + "--table" + Arguments{folder.PathOf("t.MD")});
    EXPECT_THAT(folder.Read("t.MD"), HasSubstr("\n| \\[a\\_b\\]\\|50%\\\\\\&\\<i\\>--\\$ | 1.0000 \\["));
}

/// Labels of any script keep the columns of the report, and LaTeX has commands for what its fonts lack.
/// Weights that are rounded add up to 100, and a missing interval is shown once.
TEST(ReportOutput, ShowsLettersOfAnyWidth)
{
    const TemporaryFolder folder;
    const Arguments run =
        Effects(folder.Write("u.csv", "s,effect,variance,g\n東京,0,.1,a\nMu\u0308ller,1,.1,b\n"
                                      "α ≤ 5\u202Fmg,2,.1,b\nΑθήνα,3,.3,b\n")) +
        "--study s --subgroup g --level 90";
    const std::string report = ReportOf(run);
    EXPECT_THAT(report, AllOf(HasSubstr("\n東京      a "), HasSubstr("\nMu\u0308ller    b "),
                              HasSubstr("\nα ≤ 5\u202Fmg  b ")));
    EXPECT_THAT(report, AllOf(ContainsRegex("\na  +- +- +- +- +-\n"), Not(ContainsRegex("\\[ *-, +-"))));
    EXPECT_THAT(ReportOf(run + "--table -"), ContainsRegex("\"overall\",\"\",[^\r]*,100,"));
    ReportOf(run + "--table" + Arguments{folder.PathOf("t.tex")});
    EXPECT_THAT(folder.Read("t.tex"),
                AllOf(StartsWith("% needs \\usepackage{booktabs}\n% pdflatex lacks some"),
                      HasSubstr("\n$\\alpha$ $\\leq$ 5\\,mg & b & 2.0"), HasSubstr("\nM\u00FCller & b"),
                      HasSubstr("\nΑθήνα & "), HasSubstr("\n\\multicolumn{5}{@{}p{\\linewidth}@{}}{b: Het")));
}

TEST(ReportOutput, CitesTheMethodsOfTheRun)
{
    const std::string adjusted =
        ReportOf(Bcg() + "--tau2 dl --knapp-hartung adjusted --rank-test --citation");
    EXPECT_THAT(
        adjusted,
        ContainsRegex("\nMethods\nThe odds ratio was pooled from 13 studies as log odds ratio under a "
                      "random-effects model.*\\(DerSimonian and Laird 1986\\).*\nReferences\n"
                      "@article\\{Woolf1955,.*@article\\{Hartung2001,.*@article\\{Begg1994,"));
    EXPECT_THAT(adjusted, Not(HasSubstr("Viechtbauer2005")));
    EXPECT_THAT(ReportOf(Bcg() + "--model fixed --weights mantel-haenszel --citation"),
                AllOf(HasSubstr("@article{Robins1986,"), Not(HasSubstr("Woolf"))));
    EXPECT_THAT(ReportOf(Regression("teacher_expectancy.csv") + "--covariate weeks --citation"),
                HasSubstr("@article{Viechtbauer2005,"));
}

/// Also a study without a group or a place in the order, which the model of all studies has.
TEST(ReportOutput, TheTableHasEveryStudyOnce)
{
    const TemporaryFolder folder;
    const Arguments effects =
        Effects(folder.Write("f.csv", "s,effect,variance,g,o\nA,1,2,x,1\nB,2,2,x,\nC,4,1,,3\nD,5,1,y,4\n")) +
        "--study s --table -";
    for (const char* steps : {"", "--subgroup g", "--cumulative o", "--subgroup g --cumulative o"}) {
        const std::string table = ReportOf(effects + steps);
        for (const std::string study : {"A", "B", "C", "D"}) {
            const std::size_t first = table.find("\"" + study + "\",\"study\",");
            EXPECT_NE(first, std::string::npos) << steps << study;
            EXPECT_EQ(first, table.rfind("\"" + study + "\",\"study\",")) << steps << study;
        }
    }
}

TEST(ReportOutput, WritesTheReportWhereItIsAskedFor)
{
    const TemporaryFolder folder;
    const ProgramRun run = RunProgram(Bcg({"-o", folder.PathOf("r"), "--html", "-"}));
    EXPECT_THAT(run.output, StartsWith("<!DOCTYPE html>"));
    EXPECT_EQ(folder.Read("r"), ReportOf(Bcg()));
    EXPECT_EQ(ReportOf(Bcg() + "-q"), "");
    for (const auto& [arguments, sentence] : std::vector<std::pair<std::string, std::string>>{
             {"--json - --table -", "--json - and --table - cannot both"},
             {"-o - --html -", "--html - and --output - cannot both"},
             {"-q -o r --json -", "--quiet leaves out the report"},
             {"--table t.xlsx", "ends with none of .csv, .md and .tex"},
             {"--digits 16", "--digits: 16 is not from 0 to 15"},
             {"--json - --digits 2", "--digits has no effect on the JSON"},
             {"--json - --citation", "--citation stands behind the report"}}) {
        const ProgramRun refused = RunProgram(Bcg() + arguments);
        EXPECT_EQ(refused.exitStatus, 2) << arguments;
        EXPECT_THAT(refused.errors, HasSubstr(sentence));
    }
}

} // namespace

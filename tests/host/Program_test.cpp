#include "host/RunProgram.h"
#include "support/Compare.h"
#include "support/Reference.h"

#include <filesystem>

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const Arguments toJson = {"--json", "-", "--tolerance", "1e-12"};

/// One figure of a run shows that the choices arrived; the library's own tests look at all of them.
TEST(Program, ReproducesThePublishedData)
{
    const Arguments bcg = Binary("bcg_vaccine.csv");
    const Arguments stroke = Continuous("stroke_length_of_stay.csv");
    const Arguments smoking = Effects("passive_smoking.csv");
    const struct
    {
        const char* dataSet;
        const char* figure;
        Arguments arguments;
        const char* result = "/EstCILower/0";
    } cases[] = {
        {"bcg_vaccine", "/tables/OR_only0/pooled/REML/kh0/ci_lower", bcg},
        {"bcg_vaccine", "/tables/RD_only0/pooled/HE/kh2/ci_lower",
         bcg + Words("--effect risk-difference --tau2 he --knapp-hartung truncated")},
        {"bcg_vaccine", "/tables/PETO_only0/pooled/SJ/kh0/ci_lower", bcg + Words("--effect peto --tau2 sj")},
        {"bcg_vaccine", "/tables/MH_OR/exp/0", bcg + Words("--model fixed --weights mantel-haenszel"),
         "/EstExpEffectSize/0"},
        {"beta_blockers", "/tables/RR_all/yi/0",
         Binary("beta_blockers.csv") + Words("--effect risk-ratio --zero-cells all"), "/EffectSize/0"},
        {"stroke_length_of_stay", "/MD_equal_var/pooled/EB/kh0/ci_lower",
         stroke + Words("--effect mean-difference --equal-variances --tau2 eb")},
        {"stroke_length_of_stay", "/glass_treatment/pooled/HS/kh0/ci_lower",
         stroke + Words("--effect glass-delta --glass-group treatment --tau2 hs")},
        {"stroke_length_of_stay", "/hedges_g_adjusted/pooled/fixed/ci_lower",
         stroke + Words("--effect hedges-g --variance-adjustment --model fixed")},
        {"passive_smoking", "/pooled/DL/kh1/ci_lower", smoking + Words("--tau2 dl --knapp-hartung adjusted")},
        {"passive_smoking", "/pooled/ML/kh0/ci_lower", smoking + Words("--outcome binary --tau2 ml")},
        {"passive_smoking", "/bias/egger_EB/slope", smoking + Words("--tau2 eb --small-study-test 0"),
         "/RegBasedTestCoef"},
    };
    // The figures and the library stop below a step of 1e-12, slowly converging ones before the root.
    constexpr double tolerance = 1e-9;
    for (const auto& one : cases) {
        SCOPED_TRACE(std::string(one.dataSet) + one.figure);
        const ProgramRun run = RunProgram(one.arguments + toJson);
        ASSERT_EQ(run.exitStatus, 0) << run.errors;
        const double figure = LoadReference(one.dataSet).at(json::json_pointer(one.figure));
        EXPECT_TRUE(
            Close(Number(run.Json()["results"].at(json::json_pointer(one.result))), figure, tolerance));
    }
}

TEST(Program, DescribesTheRunInItsJson)
{
    const Arguments arguments =
        Binary("bcg_vaccine.csv") +
        Words("--effect peto --null -0.5 --level=0.9 --study study --drop-double-zero --json -");
    const json report = RunProgram(arguments).Json();
    EXPECT_EQ(report["schema"], 1);
    EXPECT_EQ(report["program"], "meta-analysis");
    EXPECT_EQ(report["command"], arguments);
    EXPECT_EQ(report["status"], json::parse(R"({"code": 0, "kind": "ok"})"));
    EXPECT_EQ(report["warnings"], json::parse("[460037, 460045]"));
    EXPECT_EQ(report["messages"].size(), 2U);
    EXPECT_EQ(report["records"]["used"], 13);
    EXPECT_EQ(report["settings"], json::parse(R"({
        "treatment-events": "treatment_events", "treatment-nonevents": "treatment_nonevents",
        "control-events": "control_events", "control-nonevents": "control_nonevents", "study": "study",
        "effect": "peto", "zero-cells": "each", "zero-delta": 0.5, "drop-double-zero": true,
        "model": "random", "weights": "inverse-variance", "tau2": "reml", "knapp-hartung": "none",
        "level": 0.9, "null": -0.5, "max-iterations": 100, "max-step-halving": 5, "tolerance": 1e-6,
        "subgroup": null, "cumulative": null, "descending": false, "contrast": [], "trim-fill": null,
        "side": "auto", "trim-fill-model": "random", "trim-fill-tau2": "reml",
        "trim-fill-knapp-hartung": "none", "small-study-test": null, "test-intercept": "on",
        "test-dispersion": false, "funnel-y": "std-error", "funnel-points": 100, "contours": "none",
        "contour-level": [0.01, 0.05, 0.1], "bubble": [], "center-bubble": false, "bubble-points": 100})"));
}

/// Every value of every option is told as it was given.
TEST(Program, ResolvesEveryChoice)
{
    const Arguments bcg = Binary("bcg_vaccine.csv");
    const Arguments stroke = Continuous("stroke_length_of_stay.csv");
    const Arguments smoking = Effects("passive_smoking.csv");
    const struct
    {
        Arguments command;
        const char* option;
        Arguments values; ///< the default first
    } options[] = {
        {bcg, "effect", {"odds-ratio", "peto", "risk-ratio", "risk-difference"}},
        {bcg, "zero-cells", {"each", "all-if-any", "all", "none"}},
        {bcg, "weights", {"inverse-variance", "mantel-haenszel"}},
        {stroke, "effect", {"cohens-d", "mean-difference", "hedges-g", "glass-delta"}},
        {stroke, "glass-group", {"control", "treatment"}},
        {smoking, "effect", {"cohens-d", "mean-difference", "hedges-g", "glass-delta"}},
        {smoking + Words("--outcome binary"),
         "effect",
         {"odds-ratio", "peto", "risk-ratio", "risk-difference"}},
        {smoking, "outcome", {"continuous", "binary"}},
        {smoking, "model", {"random", "fixed"}},
        {smoking, "tau2", {"reml", "he", "hs", "dl", "sj", "ml", "eb"}},
        {smoking, "knapp-hartung", {"none", "adjusted", "truncated"}},
    };
    for (const auto& option : options) {
        const json preset = RunProgram(option.command + toJson).Json();
        EXPECT_EQ(preset["settings"][option.option], option.values.front());
        for (const std::string& value : option.values) {
            const ProgramRun run =
                RunProgram(option.command + Arguments{std::string("--") + option.option, value} + toJson);
            EXPECT_EQ(run.Json()["settings"][option.option], value) << run.errors;
        }
    }
}

TEST(Program, PrintsAReport)
{
    const ProgramRun run = RunProgram(Binary("bcg_vaccine.csv") + Words("--study study"));
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_THAT(run.output, StartsWith("Meta-analysis: odds ratio, random-effects model (restricted maximum "
                                       "likelihood), 95% level\n"));
    EXPECT_THAT(run.output, HasSubstr("13 read, 13 used, 0 missing, 0 invalid, 0 dropped\n"));
    EXPECT_THAT(run.output, ContainsRegex("Study +OR \\[95% CI\\] +log OR \\[95% CI\\] +Weight %\n"));
    EXPECT_THAT(run.output,
                ContainsRegex("Aronson +0.3911 \\[0.1212, 1.2619\\] +-0.9387 \\[-2.1100, +0.2326\\]"));
    EXPECT_THAT(run.output,
                ContainsRegex("Overall +0.4746 \\[0.3296, 0.6835\\] +-0.7452 \\[-1.1098, -0.3806\\] +"
                              "0.1860 +-4.0057 +< 0.0001\n"));
    EXPECT_THAT(run.output, ContainsRegex("Overall +\\[0.1239, 1.8183\\] +\\[-2.0883, 0.5979\\]\n"));
    EXPECT_THAT(run.output,
                ContainsRegex("Overall +163.1649 +12 +< 0.0001 +0.3378 +0.5812 +92.07 +12.6146\n"));
    EXPECT_THAT(run.output, ContainsRegex("460045: [A-Z].*\\.\n"));
}

TEST(Program, SaysThatNoRecordCouldBeUsed)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "y,v\nNA,1\n1,0\n");
    const ProgramRun run = RunProgram({"effects", data, "--effect-size", "y", "--variance", "v"});
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.output,
                HasSubstr("2 read, 0 used, 1 missing, 1 invalid, 0 dropped\nNo record could be used"));
}

TEST(Program, ShowsHelpAndVersion)
{
    for (const Arguments& arguments : {Words("--help"), {"-h"}, {"--version"}, {"binary", "--help"}}) {
        const ProgramRun run = RunProgram(arguments);
        EXPECT_EQ(run.exitStatus, 0);
        EXPECT_THAT(run.output, HasSubstr("meta-analysis"));
    }
    EXPECT_THAT(RunProgram({"continuous", "--help"}).output, HasSubstr("--glass-group NAME"));
}

struct Unusable
{
    Arguments arguments;
    std::string message;
};

Unusable BinaryWith(const Arguments& more, const std::string& message)
{
    return {Binary("bcg_vaccine.csv") + more, message};
}

Unusable EffectsWith(const Arguments& more, const std::string& message)
{
    return {Effects("passive_smoking.csv") + more, message};
}

TEST(Program, RefusesUnusableArguments)
{
    const Unusable cases[] = {
        {{}, "No command is given"},
        {{"pool"}, "'pool' is no command"},
        {{"--level", "0.9", "binary"}, "'--level' stands before the command"},
        {{"binary"}, "No data file is given"},
        {{"binary", "/no/file.csv"}, "--treatment-events is required"},
        {{"effects", "/no/file.csv", "--effect-size", "y", "--std-error", "s"},
         "'/no/file.csv' cannot be opened"},
        {{"effects", "t.csv", "--effect-size", "y"}, "Exactly one of --variance and --std-error"},
        {Continuous("stroke_length_of_stay.csv") + Words("--control-variance control_sd"),
         "Exactly one of --control-sd and --control-variance"},
        EffectsWith({"--std-error", "variance"}, "Exactly one of --variance and --std-error"),
        EffectsWith({"--effect", "odds-ratio"},
                    "--effect with --outcome continuous: 'odds-ratio' is none of cohens-d"),
        EffectsWith({"--effect", "cohens-d", "--outcome", "binary"},
                    "--outcome binary: 'cohens-d' is none of odds-ratio"),
        EffectsWith({"--zero-cells", "all"}, "'effects' has no option --zero-cells"),
        EffectsWith({"--effect-size", "study"}, "--effect-size is given 2 times"),
        BinaryWith({"--equal-variances"}, "'binary' has no option --equal-variances"),
        BinaryWith({"--levle", "0.9"}, "'binary' has no option --levle"),
        BinaryWith({"more.csv"}, "'more.csv' is one argument too many"),
        BinaryWith({"--level"}, "--level needs an argument"),
        BinaryWith({"--level", "95"}, "--level: 95 is not between 0 and 1"),
        BinaryWith({"--level", "1"}, "--level: 1 is not between 0 and 1"),
        BinaryWith({"--level", "0.9x"}, "--level: '0.9x' is not a number"),
        BinaryWith({"--null", "nan"}, "--null: 'nan' is not a finite number"),
        BinaryWith({"--tolerance", "0"}, "--tolerance: 0 is not above 0"),
        BinaryWith({"--zero-delta", "-0.5"}, "--zero-delta: -0.5 is not 0 or above"),
        BinaryWith({"--max-iterations", "-1"}, "--max-iterations: -1 is not 0 or above"),
        BinaryWith({"--max-iterations", "2.5"}, "--max-iterations: '2.5' is not a whole number"),
        BinaryWith({"--max-step-halving", "3000000000"},
                   "--max-step-halving: '3000000000' is outside the range"),
        BinaryWith({"--model", "mixed"}, "--model: 'mixed' is none of random, fixed"),
        BinaryWith({"--drop-double-zero=2"}, "--drop-double-zero: a flag takes no argument"),
        BinaryWith({"--study", "author"},
                   "bcg_vaccine.csv has no column 'author'. Its columns are: study, year"),
        BinaryWith({"--json", "/no/folder/out.json"},
                   "'/no/folder/out.json' cannot be written: there is no folder"),
        BinaryWith({"--json", TESTS_DIR "/data/bcg_vaccine.csv"}, "bcg_vaccine.csv' is the data file")};
    for (const Unusable& one : cases)
        ExpectRefused(one.arguments, one.message);
}

TEST(Program, NamesTheLineAndColumnOfBadDataAndReadsNoColumnInVain)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "who,y,v\n\"A\nB\",1,2\nC,x,2\n");
    const Arguments command = {"effects", data, "--effect-size", "y", "--variance", "v"};
    const ProgramRun run = RunProgram(command + Arguments{"--json", folder.PathOf("out.json")});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.errors, "meta-analysis: " + data + ", line 4, column 'y': 'x' is not a number.\n");
    EXPECT_FALSE(std::filesystem::exists(folder.PathOf("out.json")));

    const ProgramRun good =
        RunProgram({"effects", data, "--effect-size", "v", "--variance", "v", "--study", "who"});
    EXPECT_EQ(good.exitStatus, 0) << good.errors;
    EXPECT_THAT(good.output, HasSubstr("\nA B    2.0000 ["));
}

TEST(Program, NoticesThatItsOutputCannotBeWritten)
{
    const ProgramRun run = RunProgram(Effects("passive_smoking.csv"), "/dev/full");
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.errors, HasSubstr("Standard output cannot be written"));
}

} // namespace

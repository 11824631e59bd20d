// Data and arguments that the command `regression` cannot use, or the library not fit.

#include "host/RunProgram.h"

#include <fmt/format.h>

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;

namespace {

TEST(RegressionInput, TellsWhatTheLibraryWarnsOfAndWhyItFailed)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "y,v,x,n\n1,1,1,NA\n2,1,2,NA\nNA,1,3,NA\n");
    const Arguments command = {"regression", data, "--effect-size", "y", "--variance", "v"};
    const Arguments line = {"--covariate", "x"};
    const ProgramRun exact = RunProgram(command + line + Words("--model fixed"));
    EXPECT_EQ(exact.exitStatus, 0);
    EXPECT_THAT(exact.output, ContainsRegex("\nWarnings\n460031: [A-Z].*\\.\n460049: [A-Z].*\\.\n$"));

    const struct
    {
        Arguments arguments;
        int code;
    } errors[] = {{command + line, 460015}, {command + Words("--covariate n"), 460073}};
    for (const auto& error : errors) {
        const ProgramRun run = RunProgram(error.arguments + Arguments{"--json", folder.PathOf("out.json")});
        EXPECT_EQ(run.exitStatus, 1);
        EXPECT_EQ(run.output, "");
        EXPECT_THAT(run.errors,
                    ContainsRegex(fmt::format("^meta-analysis: error {}: [A-Z].*\\.\n$", error.code)));
        const json report = json::parse(folder.Read("out.json"));
        EXPECT_EQ(report["status"]["code"], error.code);
        EXPECT_EQ(report["records"]["used"], 0);
    }
}

TEST(RegressionInput, RefusesUnusableArgumentsAndData)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "y,v,x,g,one,none,a:b,a,b:a\n1,1,1,p,5,NA,1,1,2\n"
                                                   "2,1,2,q,5,NA,2,2,1\n3,1,4,q,NA,NA,5,3,3\n");
    const Arguments effects = {"regression", data, "--effect-size", "y"};
    const Arguments command = effects + Words("--variance v");
    const struct
    {
        Arguments arguments;
        std::string message;
    } cases[] = {
        {{"regression", data, "--variance", "v"}, "--effect-size is required"},
        {effects, "Exactly one of --variance, --std-error and --weight is required"},
        {command + Words("--weight x"), "Exactly one of --variance, --std-error and --weight"},
        {command + Words("--covariate z"), "has no column 'z'. Its columns are: y, v, x"},
        {command + Words("--covariate g"), "t.csv, line 2, column 'g': 'p' is not a number"},
        {command + Words("--factor one"), "--factor: column 'one' has no other value than '5'"},
        {command + Words("--factor none"), "--factor: column 'none' has no values"},
        {command + Words("--covariate y"), "Column 'y' is given to --effect-size and again to --covariate"},
        {command + Words("--factor v"), "Column 'v' is given to --variance and again to --factor"},
        {effects + Words("--weight y"), "Column 'y' is given to --effect-size and again to --weight"},
        {command + Words("--covariate x --factor x"), "to --covariate and again to --factor"},
        {command + Words("--covariate x --covariate x"), "to --covariate and again to --covariate"},
        {command + Words("--covariate x --interaction x"), "'x' is not A:B with two columns"},
        {command + Words("--covariate x --interaction x:g"), "'x:g' is not A:B with two columns"},
        {command + Words("--factor g --interaction g:g"), "'g:g' is a factor with itself"},
        {command + Words("--covariate x --factor g --interaction x:g --interaction g:x"),
         "--interaction: 'g:x' is in the model already"},
        {command + Words("--covariate a --covariate b:a --covariate a:b --interaction a:b:a"),
         "'a:b:a' can be parted into two columns at more than one colon"},
        {command + Words("--no-intercept"), "leaves nothing to estimate"},
        {command + Words("--no-intercept=1"), "--no-intercept: a flag takes no argument"},
        {command + Words("--null 1"), "'regression' has no option --null"},
        {Effects("passive_smoking.csv") + Words("--covariate year"), "'effects' has no option --covariate"},
    };
    for (const auto& one : cases)
        ExpectRefused(one.arguments, one.message);
}

} // namespace

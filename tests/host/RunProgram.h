#pragma once

#include "host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>

#include <cstdlib>
#include <iterator>
#include <sstream>
#include <vector>

// Runs the program as its users do: as a process.

using Arguments = std::vector<std::string>;

struct ProgramRun
{
    int exitStatus;
    std::string output;
    std::string errors;

    nlohmann::json Json() const { return nlohmann::json::parse(output); }
};

inline std::string ShellQuoted(const std::string& text)
{
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

/// The program with its arguments, for a shell.
inline std::string CommandLine(const Arguments& arguments)
{
    std::string command = ShellQuoted(META_ANALYSIS_PROGRAM);
    for (const std::string& argument : arguments)
        command += ' ' + ShellQuoted(argument);
    return command;
}

/// Runs the program; standard output goes to `outputPlace` if that is given, and is not read then. `before`
/// is what the shell does first: assignments to variables, or a command.
inline ProgramRun RunProgram(const Arguments& arguments, const std::string& outputPlace = "",
                             const std::string& before = "")
{
    const TemporaryFolder folder;
    std::string command = before + ' ' + CommandLine(arguments);
    command += " >" + ShellQuoted(outputPlace.empty() ? folder.PathOf("output") : outputPlace);
    command += " 2>" + ShellQuoted(folder.PathOf("errors"));
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.Read("output"), folder.Read("errors")};
}

/// The program tells in a sentence what it cannot use, and writes nothing.
inline void ExpectRefused(const Arguments& arguments, const std::string& message)
{
    const ProgramRun run = RunProgram(arguments);
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(run.errors, testing::StartsWith("meta-analysis: "));
    EXPECT_THAT(run.errors, testing::HasSubstr(message));
    EXPECT_THAT(run.errors, testing::EndsWith(".\n"));
}

inline Arguments operator+(Arguments left, const Arguments& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// The words of a command line, parted by blanks.
inline Arguments Words(const std::string& line)
{
    std::istringstream words(line);
    return {std::istream_iterator<std::string>(words), {}};
}

/// The commands on the data sets of the tests, which name their columns alike.
inline Arguments Binary(const std::string& data)
{
    return Arguments{"binary", TESTS_DIR "/data/" + data} +
           Words("--treatment-events treatment_events --treatment-nonevents treatment_nonevents "
                 "--control-events control_events --control-nonevents control_nonevents");
}

inline Arguments Bcg(const Arguments& more = {})
{
    return Binary("bcg_vaccine.csv") + Arguments{"--study", "study"} + more;
}

inline Arguments Continuous(const std::string& data)
{
    return Arguments{"continuous", TESTS_DIR "/data/" + data} +
           Words("--treatment-n treatment_n --treatment-mean treatment_mean --treatment-sd treatment_sd "
                 "--control-n control_n --control-mean control_mean --control-sd control_sd");
}

inline Arguments Effects(const std::string& data)
{
    return {"effects", TESTS_DIR "/data/" + data, "--effect-size", "effect", "--variance", "variance"};
}

inline const Arguments riskRatio = {"--effect", "risk-ratio"};

inline nlohmann::json ResultsOf(const Arguments& arguments)
{
    const ProgramRun run = RunProgram(arguments + Arguments{"--json", "-", "--tolerance", "1e-12"});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    return run.Json()["results"];
}

inline std::string ReportOf(const Arguments& arguments)
{
    const ProgramRun run = RunProgram(arguments);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    return run.output;
}

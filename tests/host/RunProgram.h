#pragma once

#include "host/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>

#include <cstdlib>
#include <iterator>
#include <sstream>
#include <vector>

// Runs the program as a process, as its users do.

using Texts = std::vector<std::string>;
using Arguments = Texts;

struct ProgramRun
{
    int exitStatus;
    std::string output;
    std::string errors;
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

/// Runs the program. If `outputPlace` is given, standard output goes there and is not read. The shell
/// executes `before` first: assignments to variables, or a command.
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

inline std::string ReportOf(const Arguments& arguments)
{
    const ProgramRun run = RunProgram(arguments);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    return run.output;
}

inline Arguments operator+(Arguments left, const Arguments& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// Appends the words of a line, which blanks separate.
inline Arguments operator+(const Arguments& left, const std::string& line)
{
    std::istringstream words(line);
    return left + Arguments(std::istream_iterator<std::string>(words), {});
}

inline nlohmann::json JsonOf(const Arguments& arguments)
{
    return nlohmann::json::parse(ReportOf(arguments + "--json -"));
}

/// Iterations run to their end.
inline nlohmann::json ResultsOf(const Arguments& arguments)
{
    return JsonOf(arguments + "--tolerance 1e-12 --max-iterations 10000 --max-step-halving 100")["results"];
}

/// The path of a data set of the tests. An absolute path stays as it is.
inline std::string DataFile(const std::string& name)
{
    return (std::filesystem::path(TESTS_DIR "/data") / name).string();
}

// The commands, for data with the column names of the data sets.

inline Arguments Binary(const std::string& data)
{
    return Arguments{"binary", DataFile(data)} +
           "--treatment-events treatment_events --treatment-nonevents treatment_nonevents "
           "--control-events control_events --control-nonevents control_nonevents";
}

inline Arguments Bcg(const Arguments& more = {})
{
    return Binary("bcg_vaccine.csv") + "--study study" + more;
}

inline Arguments Continuous(const std::string& data)
{
    return Arguments{"continuous", DataFile(data)} +
           "--treatment-n treatment_n --treatment-mean treatment_mean --treatment-sd treatment_sd "
           "--control-n control_n --control-mean control_mean --control-sd control_sd";
}

inline Arguments Effects(const std::string& data)
{
    return Arguments{"effects", DataFile(data)} + "--effect-size effect --variance variance";
}

/// The studies of passive_smoking.csv as published.
inline Arguments Ratios(const std::string& more = "")
{
    return Arguments{"effects", DataFile("passive_smoking_ratios.csv")} +
           "--study study --effect-size or --ci-lower or_lower --ci-upper or_upper --ratio" + more;
}

inline Arguments Regression(const std::string& data)
{
    return Arguments{"regression", DataFile(data)} + "--effect-size effect --variance variance";
}

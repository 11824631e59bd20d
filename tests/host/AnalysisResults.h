#pragma once

#include "host/RunProgram.h"
#include "support/Compare.h"
#include "support/Reference.h"

#include <cmath>
#include <string>
#include <vector>

// What the program gives for an analysis, and its comparison with the figures.

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

/// A result, as a JSON pointer, and the key of the figure that it has to match.
struct Figure
{
    std::string result;
    const char* key;
};

/// Iterations on either side stop at a step of 1e-12 in tau², which the slowest estimators reach a millionth
/// of tau² off the root. Figures that are a difference of others match to the same part of `scale`.
inline void ExpectFigures(const nlohmann::json& results, const nlohmann::json& figures,
                          const std::vector<Figure>& pairs, double scale = 0)
{
    constexpr double figureTolerance = 2e-6;
    for (const Figure& pair : pairs)
        EXPECT_TRUE(Close(Number(results.at(nlohmann::json::json_pointer(pair.result))),
                          Number(figures.at(pair.key)), figureTolerance, std::abs(scale)))
            << pair.result;
}

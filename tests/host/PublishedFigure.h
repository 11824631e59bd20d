#pragma once

#include "host/RunProgram.h"
#include "support/Compare.h"
#include "support/Reference.h"

/// A result of a run, and where the reference figures have it, both as JSON pointers. One figure of a run
/// shows that the choices arrived; the library's own tests look at all of them.
struct PublishedFigure
{
    const char* dataSet;
    const char* figure;
    Arguments arguments;
    const char* result;
};

inline void ExpectPublished(const std::vector<PublishedFigure>& figures)
{
    // The figures and the library stop below a step of 1e-12, slowly converging ones before the root.
    constexpr double tolerance = 1e-9;
    for (const PublishedFigure& one : figures) {
        SCOPED_TRACE(std::string(one.dataSet) + one.figure);
        const double expected = LoadReference(one.dataSet).at(nlohmann::json::json_pointer(one.figure));
        const nlohmann::json actual = ResultsOf(one.arguments).at(nlohmann::json::json_pointer(one.result));
        EXPECT_TRUE(Close(Number(actual), expected, tolerance));
    }
}

#pragma once

#include "host/RunProgram.h"
#include "support/Compare.h"
#include "support/Reference.h"

/// A result of a run and the reference figure for it, both as JSON pointers. One figure a run shows that the
/// options reach the library, whose own tests compare all figures.
struct PublishedFigure
{
    const char* dataSet;
    const char* figure;
    Arguments arguments;
    const char* result;
};

inline void ExpectPublished(const std::vector<PublishedFigure>& figures)
{
    // Iterations stop below a step of 1e-12, which slow ones reach at a distance from the root.
    constexpr double tolerance = 1e-9;
    for (const PublishedFigure& one : figures) {
        SCOPED_TRACE(std::string(one.dataSet) + one.figure);
        const double expected = LoadReference(one.dataSet).at(nlohmann::json::json_pointer(one.figure));
        const nlohmann::json actual = ResultsOf(one.arguments).at(nlohmann::json::json_pointer(one.result));
        EXPECT_TRUE(Close(Number(actual), expected, tolerance));
    }
}

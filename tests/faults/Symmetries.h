#pragma once

#include "faults/Violations.h"

#include <span>

/// Below it the weighted squares of residuals of ordinary data are rounding errors: the data are multiples of
/// 1/32.
constexpr double exactFit = 1e-9;

/// How a result answers to effects in another unit, and to effects of the opposite sign.
struct Trait
{
    const char* name;
    int degree;                     ///< power of the unit that it has
    int sign;                       ///< -1: it changes its sign with the effects
    const char* opposite = nullptr; ///< the result that it becomes with that change, if not itself
};

/// A change of the data or their order, and how exactly the results follow it.
struct Change
{
    std::string name;
    double unit;
    bool isNegation;
    double tolerance; ///< relative, or absolute for values below 1
};

/// The results after the change are those before it, as their traits say.
void ExpectFollows(const Change& change, std::span<const Trait> traits, const Expectations& before,
                   const Expectations& after);

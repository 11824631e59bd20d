#pragma once

#include <cstddef>

namespace MA_NAMESPACE {

// What is computed in vector registers is compiled once for each width of them, by the templates of
// MALaneKernelsOf.h and MALaneFitKernelsOf.h, for a vector type that no other source has. They must call
// nothing that is no template of that type: the linker keeps one copy of a function that several sources
// have, and that must not be one for registers that are not there.

/// A register with a number for each of several sets: `Lanes`, a vector of doubles (an extension of GCC and
/// Clang).
template <class Lanes>
struct MALaneRegister
{
    static constexpr std::size_t laneCount = sizeof(Lanes) / sizeof(double);

    static Lanes Load(const double* values)
    {
        Lanes lanes;
        __builtin_memcpy(&lanes, values, sizeof lanes);
        return lanes;
    }
    static void Store(const Lanes& lanes, double* values) { __builtin_memcpy(values, &lanes, sizeof lanes); }
};

} // namespace MA_NAMESPACE

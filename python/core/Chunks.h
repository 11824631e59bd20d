#pragma once

#include "python/core/Options.h"

#include <pybind11/pybind11.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace python_module {

/// Calls `call(first, count)` for all sets, some at a time and without the lock of the interpreter, so that
/// other threads of Python run and a signal such as Ctrl-C ends a long run. A piece has twice as many sets as
/// the one before while pieces are short: a thread of the library wants many sets at a time.
template <class Call>
void InChunks(std::size_t setCount, std::size_t firstCount, const Call& call)
{
    constexpr std::chrono::milliseconds shortTime(100);
    std::size_t size = std::max<std::size_t>(firstCount, 1);
    for (std::size_t first = 0; first < setCount;) {
        const std::size_t count = std::min(size, setCount - first);
        const auto start = std::chrono::steady_clock::now();
        int32_t status = MA_STATUS_OK;
        {
            const pybind11::gil_scoped_release unlocked;
            status = call(first, count);
        }
        ThrowUnlessOk(status);
        if (PyErr_CheckSignals() != 0)
            throw pybind11::error_already_set();
        first += count;
        if (std::chrono::steady_clock::now() - start < shortTime)
            size *= 2;
    }
}

/// Sets that take about a hundredth of a second, a study taking about 100 ns.
inline std::size_t FirstCount(std::size_t studiesOfSet)
{
    constexpr std::size_t studies = 100000;
    return std::max<std::size_t>(studies / std::max<std::size_t>(studiesOfSet, 1), 1);
}

} // namespace python_module

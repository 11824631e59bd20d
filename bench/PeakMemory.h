#pragma once

#include <cstddef>

/// Measures the heap memory that the process holds at most, from construction on, beyond what it held
/// then. At most one object at a time, in a process of one thread.
///
/// Linking this replaces the global operator new and delete; while no object lives, they cost a branch more.
class PeakMemory
{
public:
    PeakMemory() noexcept;
    ~PeakMemory();
    PeakMemory(const PeakMemory&) = delete;
    PeakMemory& operator=(const PeakMemory&) = delete;

    std::size_t Bytes() const noexcept;
};

#include "PeakMemory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

bool measuring = false;
std::ptrdiff_t held = 0; // below 0 when memory from before the measurement is freed
std::ptrdiff_t peak = 0;

} // namespace

PeakMemory::PeakMemory() noexcept
{
    held = 0;
    peak = 0;
    measuring = true;
}

PeakMemory::~PeakMemory()
{
    measuring = false;
}

std::size_t PeakMemory::Bytes() const noexcept
{
    return static_cast<std::size_t>(peak);
}

void* operator new(std::size_t size)
{
    void* const block = std::malloc(std::max<std::size_t>(size, 1));
    if (block == nullptr)
        throw std::bad_alloc();
    if (measuring) {
        held += static_cast<std::ptrdiff_t>(malloc_usable_size(block));
        peak = std::max(peak, held);
    }
    return block;
}

void operator delete(void* block) noexcept
{
    if (measuring && block != nullptr)
        held -= static_cast<std::ptrdiff_t>(malloc_usable_size(block));
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

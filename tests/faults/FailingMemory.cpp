#include "faults/FailingMemory.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

bool isArmed = false;
long countdown = 0;
bool isForGood = false;
bool hasFailed = false;
long live = 0;

bool Fails() noexcept
{
    if (!isArmed || (!hasFailed && --countdown > 0))
        return false;
    hasFailed = true;
    isArmed = isForGood;
    return true;
}

void* Allocate(std::size_t size) noexcept
{
    if (Fails())
        return nullptr;
    void* const memory = std::malloc(size == 0 ? 1 : size);
    live += memory != nullptr ? 1 : 0;
    return memory;
}

void Release(void* memory) noexcept
{
    live -= memory != nullptr ? 1 : 0;
    std::free(memory);
}

} // namespace

void FailingMemory::FailAt(long n, bool forGood)
{
    isArmed = true;
    countdown = n;
    isForGood = forGood;
    hasFailed = false;
}

void FailingMemory::Relent()
{
    isArmed = false;
}

bool FailingMemory::HasFailed()
{
    return hasFailed;
}

long FailingMemory::LiveCount()
{
    return live;
}

// The forms for arrays come down to these.

void* operator new(std::size_t size)
{
    if (void* const memory = Allocate(size))
        return memory;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return Allocate(size);
}

void operator delete(void* memory) noexcept
{
    Release(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    Release(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    Release(memory);
}

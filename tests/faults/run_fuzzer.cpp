#include "faults/Checks.h"
#include "faults/Fuzzer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return AbortOnViolations(ViolationsOf(Bytes(data, data + size)));
}

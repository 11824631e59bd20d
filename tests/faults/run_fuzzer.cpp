#include "faults/Fuzzer.h"
#include "faults/RunChecks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CheckCase(Bytes(data, data + size));
    return 0;
}

#include "faults/CsvChecks.h"
#include "faults/Fuzzer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return AbortOnViolations(CsvViolationsOf(Bytes(data, data + size)));
}

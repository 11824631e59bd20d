#include "faults/CsvChecks.h"
#include "faults/Fuzzer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    CheckCsv(Bytes(data, data + size));
    return 0;
}

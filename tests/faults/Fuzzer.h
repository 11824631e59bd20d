#pragma once

#include <gtest/gtest.h>

/// A failed expectation is what the fuzzer takes for a crash; it then writes the bytes to a file.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/)
{
    GTEST_FLAG_SET(break_on_failure, true);
    return 0;
}

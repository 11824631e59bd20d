#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

/// What a fuzzer takes for a crash; it then writes the bytes to a file.
inline int AbortOnViolations(const std::vector<std::string>& violations)
{
    for (const std::string& violation : violations)
        std::fprintf(stderr, "Not so: %s\n", violation.c_str());
    if (!violations.empty())
        std::abort();
    return 0;
}

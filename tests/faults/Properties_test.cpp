#include "faults/Checks.h"
#include "faults/CsvChecks.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

/// Long enough for the settings and the records of most cases.
constexpr std::size_t bytesOfCase = 400;

Bytes ContentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return Bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

template <class Check>
void ReplayCorpus(const std::string& name, Check check)
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(TESTS_DIR "/faults/corpus/" + name)) {
        EXPECT_EQ(check(ContentOf(entry.path())), std::vector<std::string>()) << entry.path();
        ++count;
    }
    EXPECT_GT(count, 0);
}

} // namespace

TEST(Properties, HoldForRandomCases)
{
    for (unsigned seed = 1; seed <= PROPERTY_CASES; ++seed) {
        EXPECT_EQ(ViolationsOf(RandomBytes(seed, bytesOfCase)), std::vector<std::string>())
            << "seed " << seed;
    }
}

TEST(Properties, HoldForTheFuzzersFinds)
{
    ReplayCorpus("run", ViolationsOf);
}

TEST(Properties, CsvReaderHoldsForTheFuzzersFinds)
{
    ReplayCorpus("csv", CsvViolationsOf);
}

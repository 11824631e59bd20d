#include "faults/CsvChecks.h"
#include "faults/RunChecks.h"
#include "support/Compare.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

/// Long enough for the settings and the records of most cases.
constexpr std::size_t bytesOfCase = 400;

template <class Check>
void ReplayCorpus(const std::string& name, Check check)
{
    for (const auto& entry : std::filesystem::directory_iterator(TESTS_DIR "/faults/corpus/" + name)) {
        SCOPED_TRACE(entry.path());
        std::ifstream file(entry.path(), std::ios::binary);
        check(Bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>()));
    }
}

} // namespace

TEST(Properties, HoldForRandomCases)
{
    for (unsigned seed = 1; seed <= Repetitions(5000); ++seed) {
        SCOPED_TRACE(seed);
        CheckCase(RandomBytes(seed, bytesOfCase));
    }
}

TEST(Properties, HoldForTheFuzzersFinds)
{
    ReplayCorpus("run", CheckCase);
}

TEST(Properties, OfCsvHoldForTheFuzzersFinds)
{
    ReplayCorpus("csv", CheckCsv);
}

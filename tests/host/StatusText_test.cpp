#include "host/text/StatusText.h"

#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <string>

namespace {

std::string ProjectFile(const std::string& path)
{
    std::ifstream file(TESTS_DIR "/../" + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(StatusText, EveryCodeOfTheLibraryHasASentenceAndIsDocumented)
{
    const std::string text = ProjectFile("meta_analysis/settings/MAStatusCode.h");
    const std::string document = ProjectFile("docs/embedding.md");
    const std::regex number("\\b460\\d{3}\\b");
    int count = 0;
    for (std::sregex_iterator match(text.begin(), text.end(), number), end; match != end; ++match, ++count) {
        EXPECT_THAT(host::SentenceOf(std::stoi(match->str())),
                    testing::Not(testing::HasSubstr("gives no meaning")));
        EXPECT_THAT(document, testing::HasSubstr(match->str()));
    }
    EXPECT_GE(count, 30);
    EXPECT_EQ(host::SentenceOf(17), "The library gives no meaning to code 17.");
}

} // namespace

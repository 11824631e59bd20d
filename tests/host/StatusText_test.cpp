#include "host/StatusText.h"

#include <gmock/gmock.h>

#include <fstream>
#include <regex>
#include <string>

namespace {

TEST(StatusText, HasASentenceForEveryCodeOfTheLibrary)
{
    std::ifstream header(TESTS_DIR "/../src/settings/MAStatusCode.h");
    const std::string text((std::istreambuf_iterator<char>(header)), std::istreambuf_iterator<char>());
    const std::regex number("\\b460\\d{3}\\b");
    int count = 0;
    for (std::sregex_iterator match(text.begin(), text.end(), number), end; match != end; ++match, ++count)
        EXPECT_THAT(host::SentenceOf(std::stoi(match->str())),
                    testing::Not(testing::HasSubstr("gives no meaning")));
    EXPECT_GE(count, 30);
    EXPECT_EQ(host::SentenceOf(17), "The library gives no meaning to code 17.");
}

} // namespace

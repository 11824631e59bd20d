#include "host/text/NumberText.h"
#include "support/Compare.h"

using namespace host;

namespace {

using Texts = std::vector<std::string>;

TEST(NumberText, KeepsDigitsOfSmallNumbersAndShortensHugeOnes)
{
    const std::vector<double> numbers = {0,    -0.74519, 0.0001234,  -1.5e-9,  123456.78901,
                                         1e10, missing,  notANumber, -infinity};
    Texts texts;
    for (const double number : numbers)
        texts.push_back(NumberText(number));
    EXPECT_EQ(texts,
              (Texts{"0.0000", "-0.7452", "0.000123", "-1.5e-09", "123456.7890", "1e+10", "-", "-", "-inf"}));
}

TEST(NumberText, HasNoSignWhereItShowsZeroAndNeverAProbabilityOfZero)
{
    const std::pair<std::string, const char*> cases[] = {
        {FixedText(-0.00004, 4), "0.0000"}, {FixedText(-0.00006, 4), "-0.0001"},
        {FixedText(-10, 0), "-10"},         {PValueText(0), "< 0.0001"},
        {PValueText(0.99e-4), "< 0.0001"},  {PValueText(1e-4), "0.0001"},
        {PValueText(1), "1.0000"},          {PValueText(missing), "-"},
        {FixedText(1234e9, 1), "1.2e+12"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(text, expected);
}

TEST(NumberText, ShowsThreeDigitsOfTheSmallestStandardError)
{
    EXPECT_EQ(DecimalsFor({12.0, 3.0}), 4);
    EXPECT_EQ(DecimalsFor({0.5, 0.00123}), 5); // 0.00123
    EXPECT_EQ(DecimalsFor({missing, notANumber, 0.0, infinity}), 4);
    EXPECT_EQ(DecimalsFor({1e-300}), 12);
}

} // namespace

#include "host/plots/PlotAxes.h"
#include "support/Compare.h"

#include <cmath>
#include <string>
#include <vector>

using namespace host;

namespace {

using Texts = std::vector<std::string>;

TEST(PlotAxes, LabelsRatioAxesAtRoundNumbers)
{
    struct Case
    {
        double first;
        double last;
        Texts ticks;
    };
    const std::vector<Case> cases = {
        {0.06, 7.0, {"0.1", "0.2", "0.5", "1", "2", "5"}},
        {0.4, 1.3, {"0.4", "0.6", "0.8", "1", "1.2"}},
        {0.97, 1.04, {"0.98", "1", "1.02", "1.04"}},
        {0.003, 40, {"0.01", "0.1", "1", "10"}},
        {1e-7, 1e5, {"1e-6", "0.0001", "0.01", "1", "100", "10000"}},
        {1e-40, 1e40, {"1e-40", "1e-20", "1", "1e20", "1e40"}},
        {1e-300, 1e300, {"1e-200", "1", "1e200"}},
    };
    for (const Case& one : cases) {
        Extent logarithms;
        // The margin includes a tick at an end despite the rounding of its logarithm.
        logarithms.Cover({std::log(one.first) - 1e-9, std::log(one.last) + 1e-9});
        Texts texts;
        for (const Tick& tick : RatioTicks(logarithms)) {
            texts.push_back(tick.text);
            EXPECT_TRUE(Close(std::exp(tick.at), std::stod(tick.text), 1e-13)); // a logarithm of up to 92
        }
        EXPECT_EQ(texts, one.ticks);
    }
}

TEST(PlotAxes, LabelsCovariatesAtWholeNumbersOrAtTheirTwoValues)
{
    const std::pair<std::vector<double>, Texts> cases[] = {
        {{0, 1, 1, missing}, {"0", "1"}},
        {{1993, 1996, 1995}, {"1993", "1994", "1995", "1996"}},
        {{0, 0.5, 1}, {"0.0", "0.2", "0.4", "0.6", "0.8", "1.0"}},
        {{6 / 13.0, -7 / 13.0, 6 / 13.0}, {"-0.54", "0.46"}}, // centred 0 and 1
        {{2001, 1990}, {"1990", "2001"}},
    };
    for (const auto& [values, expected] : cases) {
        Extent extent;
        extent.Cover(values);
        extent.Pad(0.07);
        Texts texts;
        for (const Tick& tick : CovariateAxis("", values, extent).ticks)
            texts.push_back(tick.text);
        EXPECT_EQ(texts, expected);
    }
}

TEST(PlotAxes, LabelsNumberAxesAtRoundNumbersWithTheDigitsTheyNeed)
{
    const auto texts = [](const std::vector<double>& covered) {
        Extent extent;
        extent.Cover(covered);
        Texts found;
        for (const Tick& tick : NumberTicks(extent))
            found.push_back(tick.text);
        return found;
    };
    EXPECT_EQ(texts({-0.31, missing, 0.31, infinity, notANumber}),
              (Texts{"-0.3", "-0.2", "-0.1", "0.0", "0.1", "0.2", "0.3"}));
    EXPECT_EQ(texts({0.3, 1.6}), (Texts{"0.4", "0.6", "0.8", "1.0", "1.2", "1.4", "1.6"}));
    EXPECT_EQ(texts({1234567.1, 1234569}), (Texts{"1234567.5", "1234568.0", "1234568.5", "1234569.0"}));
    EXPECT_EQ(texts({0, 4e-9}), (Texts{"0", "1e-9", "2e-9", "3e-9", "4e-9"}));
    EXPECT_EQ(texts({0, 1.6e8}), (Texts{"0", "0.5e8", "1.0e8", "1.5e8"}));
    // Steps are lost in such large numbers. Any ticks will do, but their number must be bounded.
    EXPECT_LE(texts({1e17, 1e17 + 16}).size(), 15U);
}

} // namespace

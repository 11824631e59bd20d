#include "support/Compare.h"

#include "meta_analysis/platform/common/KXDisplay_940.h"

#include <thread>

namespace {

struct Listing : KXDisplay_940::Sink
{
    void Line(const std::string& line) override { lines.push_back(line); }
    std::vector<std::string> lines;
};

void DisplayOneOfEach()
{
    KXDisplay_940::DisplayText("display start");
    KXDisplay_940::DisplayIV("factors", {2, 0, 7});
    KXDisplay_940::DisplayIV("covariates", {});
    KXDisplay_940::DisplayB("intercept", true);
    KXDisplay_940::DisplayDF("longest", -std::numeric_limits<double>::min());
    KXDisplay_940::DisplayDF("tau2", missing);
}

} // namespace

TEST(KXDisplay_940, WritesOneItemALineToTheSinkOfTheThread)
{
    Listing listing;
    DisplayOneOfEach(); // to no sink yet
    KXDisplay_940::SetSink(&listing);
    DisplayOneOfEach();
    std::thread(DisplayOneOfEach).join(); // a thread without sink
    KXDisplay_940::SetSink(nullptr);
    DisplayOneOfEach(); // and not any more
    EXPECT_EQ(listing.lines,
              (std::vector<std::string>{"display start", "factors 2 0 7", "covariates", "intercept true",
                                        "longest -2.2250738585072014e-308", "tau2 missing"}));
}

#include "meta_analysis/platform/common/KXDisplay_940.h"
#include "meta_analysis/platform/common/KXMV.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Lines : KXDisplay_940::Sink
{
    void Line(const std::string& line) override { received.push_back(line); }
    std::vector<std::string> received;
};

} // namespace

TEST(KXDisplay_940, WritesOneItemALineToTheSinkOfTheThread)
{
    Lines lines;
    KXDisplay_940::DisplayText("no sink yet");
    KXDisplay_940::SetSink(&lines);
    KXDisplay_940::DisplayText("display start");
    KXDisplay_940::DisplayI("count", -3);
    KXDisplay_940::DisplayIV("factors", {2, 0, 7});
    KXDisplay_940::DisplayIV("covariates", {});
    KXDisplay_940::DisplayB("intercept", true);
    KXDisplay_940::DisplayC("directory: ", "/tmp");
    KXDisplay_940::DisplayDF("level", 0.95);
    KXDisplay_940::DisplayDF("longest", -std::numeric_limits<double>::min());
    KXDisplay_940::DisplayDF("tau2", KXMV::Missing());
    std::thread([] { KXDisplay_940::DisplayText("no sink in this thread"); }).join();
    KXDisplay_940::SetSink(nullptr);
    KXDisplay_940::DisplayText("no sink any more");

    const std::vector<std::string> expected = {
        "display start",  "count -3",        "factors 2 0 7", "covariates",
        "intercept true", "directory: /tmp", "level 0.95",    "longest -2.2250738585072014e-308",
        "tau2 missing"};
    EXPECT_EQ(lines.received, expected);
}

#include "support/Compare.h"
#include "support/DisplayOf.h"

#include <thread>

namespace {

struct OneOfEach
{
    void Display() const
    {
        KXDisplay_940::DisplayText("display start");
        KXDisplay_940::DisplayI("count", -3);
        KXDisplay_940::DisplayIV("factors", {2, 0, 7});
        KXDisplay_940::DisplayIV("covariates", {});
        KXDisplay_940::DisplayB("intercept", true);
        KXDisplay_940::DisplayC("directory: ", "/tmp");
        KXDisplay_940::DisplayDF("level", 0.95);
        KXDisplay_940::DisplayDF("longest", -std::numeric_limits<double>::min());
        KXDisplay_940::DisplayDF("tau2", missing);
        std::thread([] { KXDisplay_940::DisplayText("no sink in this thread"); }).join();
    }
};

} // namespace

TEST(KXDisplay_940, WritesOneItemALineToTheSinkOfTheThread)
{
    OneOfEach().Display(); // to no sink yet
    EXPECT_EQ(DisplayOf(OneOfEach()),
              "display start; count -3; factors 2 0 7; covariates; intercept true; directory: /tmp; "
              "level 0.95; longest -2.2250738585072014e-308; tau2 missing; ");
    OneOfEach().Display(); // and not any more
}

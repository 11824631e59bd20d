#include "host/report/TextReport.h"

#include <gtest/gtest.h>

using namespace host;

namespace {

TEST(TextReport, AlignsColumnsByCharacters)
{
    const Report report = {
        "Title",
        {{"Part", {{"Study", {"Müller", "Ng", "東京"}, true}, {"x", {"1.0", "-12.0", "-"}}}, {}},
         {"Remarks", {}, {"One.", "Two."}}}};
    EXPECT_EQ(RenderText(report), "Title\n"
                                  "\n"
                                  "Part\n"
                                  "Study       x\n"
                                  "Müller    1.0\n"
                                  "Ng      -12.0\n"
                                  "東京          -\n"
                                  "\n"
                                  "Remarks\n"
                                  "One.\n"
                                  "Two.\n");
}

} // namespace

#include "host/RunProgram.h"

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

TEST(WriteOutput, LeavesOutPicturesThatWouldReplaceAnotherFile)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.PathOf("p"));
    std::filesystem::copy_file(DataFile("bcg_vaccine.csv"), folder.PathOf("p/labbe.svg"));
    const ProgramRun run =
        RunProgram(Binary(folder.PathOf("p/labbe.svg")) + Arguments{"--plots", folder.PathOf("p"), "--html",
                                                                    folder.PathOf("p/forest.svg"), "--json",
                                                                    folder.PathOf("p/../p/funnel.svg")});
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.errors, AllOf(HasSubstr("forest.svg' is not written: that is the file of --html."),
                                  HasSubstr("funnel.svg' is not written: that is the file of --json."),
                                  HasSubstr("labbe.svg' is not written: that is the data file.")));
    EXPECT_THAT(run.output, HasSubstr("Pooled effect"));
    EXPECT_THAT(folder.Read("p/forest.svg"), StartsWith("<!DOCTYPE html>"));
    EXPECT_TRUE(json::accept(folder.Read("p/funnel.svg")));
    EXPECT_THAT(folder.Read("p/labbe.svg"), StartsWith("\"study\""));
    EXPECT_THAT(folder.Read("p/galbraith.svg"), StartsWith("<?xml"));
}

TEST(WriteOutput, KeepsTheOtherFilesWhenOneCannotBeWritten)
{
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.PathOf("p/forest.svg"));
    const ProgramRun run = RunProgram(
        Bcg({"--json", folder.PathOf("json"), "--html", "/dev/full", "--plots", folder.PathOf("p")}),
        "/dev/full");
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.errors, "meta-analysis: Standard output cannot be written: No space left on device.\n"
                          "meta-analysis: '/dev/full' cannot be written: No space left on device.\n"
                          "meta-analysis: '" +
                              folder.PathOf("p/forest.svg") + "' cannot be written: Is a directory.\n");
    EXPECT_TRUE(json::accept(folder.Read("json")));
    EXPECT_THAT(folder.Read("p/galbraith.svg"), StartsWith("<?xml"));

    const ProgramRun below = RunProgram(Bcg({"--plots", folder.PathOf("json/below")}));
    EXPECT_EQ(below.exitStatus, 2);
    EXPECT_THAT(below.errors, HasSubstr("cannot be made"));
    EXPECT_THAT(below.output, HasSubstr("Pooled effect"));
}

TEST(WriteOutput, WritesItsFilesWhenNobodyReadsTheReport)
{
    const TemporaryFolder folder;
    const std::string command = "set -o pipefail; " + CommandLine(Bcg({"--html", folder.PathOf("page")})) +
                                " 2>" + folder.PathOf("errors") + " | true";
    EXPECT_EQ(std::system(("bash -c " + ShellQuoted(command)).c_str()), 0);
    EXPECT_EQ(folder.Read("errors"), "");
    EXPECT_THAT(folder.Read("page"), HasSubstr("</html>"));
}

} // namespace

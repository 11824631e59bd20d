#include "host/RunProgram.h"

using testing::HasSubstr;

namespace {

/// The report without the line that names the file.
std::string ReportBut(const Arguments& arguments, const std::string& path)
{
    std::string report = ReportOf(arguments);
    const std::size_t at = report.find(path);
    return at == std::string::npos ? report : report.erase(at, path.size());
}

/// What the program says of a published data set does not depend on the program that wrote the file.
TEST(DataFiles, GiveOneReportForCommasDecimalCommasGzipAndStandardInput)
{
    const TemporaryFolder folder;
    const std::string data = DataFile("passive_smoking.csv");
    const std::string german = folder.PathOf("german.csv");
    const std::string zipped = folder.PathOf("zipped");
    const std::string toGerman = "sed 's/,/;/g; s/\\./,/g' " + ShellQuoted(data) + " >" + ShellQuoted(german);
    ASSERT_EQ(std::system(toGerman.c_str()), 0);
    ASSERT_EQ(std::system(("gzip -c " + ShellQuoted(data) + " >" + ShellQuoted(zipped)).c_str()), 0);
    const std::string report = ReportBut(Effects(data), data);
    EXPECT_EQ(ReportBut(Effects(german), german), report);
    EXPECT_EQ(ReportBut(Effects(zipped), zipped), report);
    Arguments fromInput = Effects(data);
    fromInput[1] = "-";
    const ProgramRun run = RunProgram(fromInput, "", "cat " + ShellQuoted(data) + " |");
    const std::size_t name = run.output.find("standard input:");
    ASSERT_NE(name, std::string::npos) << run.errors;
    EXPECT_EQ(run.output.substr(0, name) + run.output.substr(name + std::string("standard input").size()),
              report);
    EXPECT_THAT(JsonOf(Effects(german))["settings"]["missing"].dump(), HasSubstr("\"N/A\""));
}

TEST(DataFiles, SayInReportAndJsonWhatWasConverted)
{
    const TemporaryFolder folder;
    const std::string data = folder.Write("t.csv", "study;effect;variance\nBj\xF6rk;0,5;1,5\nB;0,1;2,5\n");
    EXPECT_THAT(ReportOf(Effects(data) + "--study study"),
                testing::AllOf(HasSubstr("\nBj\u00F6rk "), HasSubstr("460154: The data file is no UTF-8; ")));
    const nlohmann::json json = JsonOf(Effects(data));
    EXPECT_EQ(json["warnings"].back(), 460154);
    EXPECT_THAT(json["messages"].back().get<std::string>(), HasSubstr("Windows-1252"));
    const ProgramRun refused = RunProgram(Effects(data) + "--decimal point");
    EXPECT_EQ(refused.exitStatus, 2);
    EXPECT_THAT(refused.errors, HasSubstr("line 2, column 'effect': '0,5' is not a number"));
}

} // namespace

// Drawing by gnuplot, and its failures.

#include "host/RunProgram.h"

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>

using nlohmann::json;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// A folder for PATH with a shell script as the program gnuplot.
class FakeGnuplot
{
public:
    explicit FakeGnuplot(const std::string& shellScript)
    {
        chmod(folder_.Write("gnuplot", "#!/bin/sh\n" + shellScript + '\n').c_str(), S_IRWXU);
    }
    std::string OnPath() const { return "PATH=" + ShellQuoted(folder_.PathOf("")) + ":\"$PATH\""; }

private:
    TemporaryFolder folder_;
};

/// Draws with the real gnuplot, but fails when the script of a picture has the word.
std::string FailingOn(const std::string& word)
{
    return "script=$(cat; echo .)\ncase $script in *" + word +
           "*) echo '  no memory' >&2; exit 1;; esac\nprintf %s \"${script%.}\" | PATH=${PATH#*:} gnuplot -d";
}

/// The PNG has contours, which gnuplot itself would cut wrongly.
TEST(Drawing, WritesTheFormatThatIsAskedFor)
{
    const Arguments groups = Effects("passive_smoking.csv") +
                             "--outcome binary --subgroup country --contours two-sided --plot-format";
    const TemporaryFolder folder;
    for (const auto& [format, signature] : {std::pair("png", "\x89PNG"), std::pair("pdf", "%PDF-")}) {
        const std::string plots = std::string("a/") + format;
        ReportOf(groups + Arguments{format, "--plots", folder.PathOf(plots)});
        EXPECT_EQ(folder.Files(plots).size(), 13U);
        EXPECT_THAT(folder.Read(plots + "/forest." + format), StartsWith(signature));
    }
}

TEST(Drawing, IgnoresTheInheritedTerminalAndSignals)
{
    const TemporaryFolder folder;
    for (const char* before : {"GNUTERM=none", "trap '' CHLD;", "trap '' PIPE;"}) {
        const ProgramRun run = RunProgram(Bcg({"--plots", folder.PathOf("plots")}), "", before);
        EXPECT_EQ(run.exitStatus, 0) << before << run.errors;
    }
}

TEST(Drawing, NamesTheReasonWhenGnuplotFails)
{
    const struct
    {
        const char* script; ///< null when gnuplot is not installed
        const char* format;
        const char* reason;
    } cases[] = {
        {nullptr, "pdf", "Pictures could not be drawn: the program gnuplot is not installed (on Debian, "},
        {"exit 3", "svg", "forest.svg could not be drawn: gnuplot failed without a message, exit status 3."},
        {"printf 'plot x\\n     ^\\n  \"-\", line 1: undefined\\n\\n' >&2; exit 1", "svg",
         "gnuplot failed (\"-\", line 1: undefined)."},
        {"echo text", "svg", "gnuplot wrote no SVG."},
        {"printf '\\211PNG\\r\\n\\032\\n'", "png", "gnuplot wrote no whole png file."},
    };
    for (const auto& one : cases) {
        const TemporaryFolder folder;
        const FakeGnuplot gnuplot(one.script ? one.script : "");
        const ProgramRun run = RunProgram(Bcg({"--plots", folder.PathOf("plots"), "--plot-format", one.format,
                                               "--json", folder.PathOf("json")}),
                                          "", one.script ? gnuplot.OnPath() : "PATH=/nonexistent");
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.errors, HasSubstr(one.reason));
        EXPECT_THAT(run.output, HasSubstr("Pooled effect"));
        EXPECT_EQ(json::parse(folder.Read("json"))["records"]["used"], 13);
    }
}

TEST(Drawing, KeepsTheOtherPicturesWhenOneFails)
{
    const TemporaryFolder folder;
    const FakeGnuplot gnuplot(FailingOn("'1 / standard error'"));
    for (const std::string format : {"svg", "png"}) {
        const ProgramRun run = RunProgram(
            Bcg({"--plots", folder.PathOf(format), "--plot-format", format, "--html", folder.PathOf("page")}),
            "", gnuplot.OnPath());
        EXPECT_EQ(run.exitStatus, 2);
        EXPECT_THAT(run.errors,
                    HasSubstr("The picture galbraith.svg could not be drawn: gnuplot failed (no memory)."));
        EXPECT_EQ(folder.Files(format), (Texts{"forest." + format, "funnel." + format, "labbe." + format}));
        EXPECT_THAT(folder.Read("page"), AllOf(HasSubstr("<p>The picture galbraith.svg could not be drawn"),
                                               HasSubstr("Figure 3.")));
    }
}

/// A funnel of 60,000 studies on a grid of 300 places, two of them apart.
TEST(Drawing, LeavesOutWhatCannotBeSeen)
{
    std::string data = "effect,variance\n-9,0.5\n9,0.5\n";
    for (int i = 0; i < 60000; ++i)
        data += std::to_string(i % 20) + ",0." + std::to_string(10 + i % 15) + '\n';
    TemporaryFolder folder;
    const std::string file = folder.Write("data.csv", data);
    const ProgramRun run = RunProgram(Effects(file) + Arguments{"--html", folder.PathOf("page")});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    const std::string page = folder.Read("page");
    EXPECT_THAT(page, HasSubstr(" 62 marks stand for 60002: "));
    EXPECT_THAT(page, HasSubstr("100 or more at a place"));
    EXPECT_THAT(page,
                HasSubstr("59002 studies of less weight are left out. They count in the pooled effects."));
    EXPECT_THAT(page, HasSubstr("The page has the first 10000 of 60002 rows"));
    EXPECT_LT(page.size(), 10'000'000U);
}

/// The limit is 32767 pixels, and a row is 19 pixels high.
TEST(Drawing, FitsTallPicturesIntoThePngFormat)
{
    for (const int count : {900, 1800}) {
        std::string data = "effect,variance\n";
        for (int i = 0; i < count; ++i)
            data += std::to_string(i % 7) + ".5,0." + std::to_string(1 + i % 9) + '\n';
        const TemporaryFolder folder;
        const ProgramRun run = RunProgram(Effects(folder.Write("data.csv", data)) +
                                          Arguments{"--plots", folder.PathOf("p"), "--plot-format", "png"});
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
        EXPECT_EQ(folder.Files("p").size(), 3U);
    }
}

TEST(Drawing, ShowsProgressOnATerminalOnly)
{
    const TemporaryFolder folder;
    const FakeGnuplot slowly("sleep 1.3; PATH=${PATH#*:} exec gnuplot -d");
    const Arguments arguments = Bcg({"--plots", folder.PathOf("plots")});
    EXPECT_EQ(RunProgram(arguments, "", slowly.OnPath()).errors, "");
    const std::string command = slowly.OnPath() + ' ' + CommandLine(arguments) + " >/dev/null";
    const std::string onTerminal = "script -qec " + ShellQuoted(command) + " " +
                                   ShellQuoted(folder.PathOf("typescript")) + " >/dev/null";
    ASSERT_EQ(std::system(onTerminal.c_str()), 0);
    const std::string shown = folder.Read("typescript");
    EXPECT_THAT(shown, ContainsRegex("\rDrawing picture [1-4] of 4"));
    EXPECT_THAT(shown, HasSubstr("\r                      \r")); // erased
}

/// Starts the program, and ends it by the signal as soon as its gnuplot has told its number.
int StatusAfter(int signal, const std::string& command, const TemporaryFolder& folder)
{
    const pid_t program = fork();
    if (program == 0)
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    while (folder.Read("started").find('\n') == std::string::npos)
        usleep(20000);
    kill(program, signal);
    int status = 0;
    waitpid(program, &status, 0);
    return status;
}

/// Of a process that has ended, what its parent has not asked for remains, without a command line.
bool HasEnded(const std::string& process)
{
    std::string line;
    std::getline(std::ifstream("/proc/" + process + "/cmdline"), line);
    return line.empty();
}

TEST(Drawing, EndsGnuplotWithTheProgram)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGKILL}) {
        TemporaryFolder folder;
        folder.Write("started", "");
        const std::string page = folder.Write("page", "of yesterday");
        const FakeGnuplot endless("echo $$ >> " + ShellQuoted(folder.PathOf("started")) + "; exec sleep 600");
        const std::string command = endless.OnPath() + " exec " + CommandLine(Bcg({"--html", page}));
        const int status = StatusAfter(signal, command, folder);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal;
        std::istringstream processes(folder.Read("started"));
        for (std::string process; processes >> process;) {
            for (int i = 0; i < 100 && !HasEnded(process); ++i)
                usleep(50000);
            EXPECT_TRUE(HasEnded(process)) << signal;
        }
        EXPECT_EQ(folder.Files("."), (Texts{"page", "started"}));
        EXPECT_EQ(folder.Read("page"), "of yesterday");
    }
}

} // namespace

#include "host/draw/GnuplotProcess.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace host {

namespace {

constexpr std::chrono::milliseconds BETWEEN_LOOKS(2);

/// A picture of usual size takes a tenth of a second, and a megabyte of script ten.
std::chrono::seconds TimeLimit(const std::string& script)
{
    constexpr std::chrono::seconds LEAST(120);
    constexpr std::chrono::seconds MEGABYTE(120);
    return LEAST + MEGABYTE * static_cast<long>(script.size() >> 20U);
}

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A file without a name, which is deleted when it is closed. The streams of the process are such files and
/// not pipes, because one pipe may fill up while the program waits for the other.
class StreamFile
{
public:
    StreamFile() : file_(std::tmpfile())
    {
        if (!file_)
            throw NoGnuplot(fmt::format("no temporary file ({})", std::strerror(errno)));
    }

    int Descriptor() const { return fileno(file_.get()); }

    void Write(const std::string& text)
    {
        if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size() ||
            std::fflush(file_.get()) != 0)
            throw DrawingFailure(
                fmt::format("a temporary file cannot be written ({})", std::strerror(errno)));
        std::rewind(file_.get());
    }

    std::string Read()
    {
        std::rewind(file_.get());
        std::string text;
        std::array<char, 65536> buffer{};
        for (std::size_t count = 1; count > 0;) {
            count = std::fread(buffer.data(), 1, buffer.size(), file_.get());
            text.append(buffer.data(), count);
        }
        return text;
    }

private:
    std::unique_ptr<std::FILE, CloseFile> file_;
};

/// The environment of this process without the variable that chooses gnuplot's terminal. That terminal may
/// be missing, or may write to a window.
std::vector<char*> EnvironmentOfGnuplot()
{
    std::vector<char*> variables;
    for (char** variable = environ; *variable != nullptr; ++variable)
        if (!std::string_view(*variable).starts_with("GNUTERM="))
            variables.push_back(*variable);
    variables.push_back(nullptr);
    return variables;
}

/// The descriptors that a new process has as its standard streams.
struct Streams
{
    int input;
    int output;
    int errors;
};

/// A pipe that says why a new process does not start: it is closed without a word when one does.
class StartReport
{
public:
    StartReport()
    {
        if (pipe2(ends_.data(), O_CLOEXEC) != 0)
            throw NoGnuplot(fmt::format("no pipe ({})", std::strerror(errno)));
    }
    ~StartReport()
    {
        close(ends_[0]);
        CloseWriting();
    }
    StartReport(const StartReport&) = delete;
    StartReport& operator=(const StartReport&) = delete;

    /// Called in the new process.
    void Send(int error) const { std::ignore = write(ends_[1], &error, sizeof error); }

    /// 0 for a process that has started.
    int Receive()
    {
        CloseWriting();
        int error = 0;
        ssize_t count = 0;
        do
            count = read(ends_[0], &error, sizeof error);
        while (count < 0 && errno == EINTR);
        return count == sizeof error ? error : 0;
    }

private:
    void CloseWriting()
    {
        if (ends_[1] >= 0)
            close(std::exchange(ends_[1], -1));
    }

    std::array<int, 2> ends_{};
};

/// Becomes gnuplot, in the process that `fork` has made; returns when it cannot. The system ends gnuplot when
/// the thread that started it ends. That thread waits for gnuplot, so that only the end of this program comes
/// before, for whatever reason, a signal that nobody can handle included: gnuplot itself takes an interrupt
/// for the end of a command alone. `fork` and `exec` it is, because no action of `posix_spawn` asks for that.
/// Another thread may have held a lock at the fork, so that nothing here takes one or memory of the heap.
void BecomeGnuplot(const Streams& streams, pid_t parent, char* const* arguments, char* const* environment)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) // it ended before the call
        _exit(EXIT_FAILURE);
    if (dup2(streams.input, STDIN_FILENO) >= 0 && dup2(streams.output, STDOUT_FILENO) >= 0 &&
        dup2(streams.errors, STDERR_FILENO) >= 0)
        execvpe(arguments[0], arguments, environment);
}

pid_t Start(const Streams& streams)
{
    std::string program = "gnuplot";
    std::string withoutInitFiles = "-d";
    const std::array<char*, 3> arguments = {program.data(), withoutInitFiles.data(), nullptr};
    const std::vector<char*> environment = EnvironmentOfGnuplot();
    StartReport report;
    const pid_t parent = getpid();
    const pid_t process = fork();
    if (process == 0) {
        BecomeGnuplot(streams, parent, arguments.data(), environment.data());
        report.Send(errno);
        _exit(EXIT_FAILURE);
    }
    const int error = process < 0 ? errno : report.Receive();
    if (process > 0 && error != 0)
        waitpid(process, nullptr, 0);
    if (error == ENOENT)
        throw NoGnuplot("the program gnuplot is not installed (on Debian, the package gnuplot-nox)");
    if (error != 0)
        throw NoGnuplot(fmt::format("gnuplot does not start ({})", std::strerror(error)));
    return process;
}

void Kill(pid_t process)
{
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
}

/// Waits for the process to end, and returns its status. It polls, because no system call waits with a time
/// limit.
int StatusOf(pid_t process, std::chrono::seconds timeLimit)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + timeLimit;
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(process, &status, WNOHANG)) == 0 && Clock::now() < deadline)
        std::this_thread::sleep_for(BETWEEN_LOOKS);
    if (ended == 0) {
        Kill(process);
        throw DrawingFailure(fmt::format("gnuplot did not end within {} seconds", timeLimit.count()));
    }
    if (ended < 0)
        throw NoGnuplot(fmt::format("gnuplot cannot be waited for ({})", std::strerror(errno)));
    return status;
}

/// The message of gnuplot, which shows the command, a pointer into it and the mistake.
std::string LastLine(const std::string& text)
{
    constexpr const char* BLANKS = " \t\n";
    const std::size_t end = text.find_last_not_of(BLANKS) + 1;
    const std::string upToEnd = text.substr(0, end);
    const std::string line = upToEnd.substr(upToEnd.rfind('\n') + 1);
    return line.substr(std::min(line.find_first_not_of(BLANKS), line.size()));
}

std::string ReasonOfFailure(int status, const std::string& message)
{
    if (!message.empty())
        return fmt::format("gnuplot failed ({})", message);
    if (WIFSIGNALED(status))
        return fmt::format("gnuplot was ended by signal {}", WTERMSIG(status));
    return fmt::format("gnuplot failed without a message, exit status {}", WEXITSTATUS(status));
}

} // namespace

std::string RunGnuplot(const std::string& script)
{
    StreamFile input;
    StreamFile output;
    StreamFile errors;
    input.Write(script);
    std::signal(SIGCHLD, SIG_DFL); // when it is inherited as ignored, the system keeps no status
    const int status =
        StatusOf(Start({input.Descriptor(), output.Descriptor(), errors.Descriptor()}), TimeLimit(script));
    if (status != 0)
        throw DrawingFailure(ReasonOfFailure(status, LastLine(errors.Read())));
    return output.Read();
}

} // namespace host

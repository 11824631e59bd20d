#include "host/draw/GnuplotProcess.h"

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>
#include <thread>
#include <vector>

namespace host {

namespace {

constexpr std::chrono::seconds TIME_LIMIT(120); // pictures of thousands of studies take a few
constexpr std::chrono::milliseconds BETWEEN_LOOKS(2);

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

/// Which descriptors a new process has as its standard streams.
class StreamRedirection
{
public:
    StreamRedirection(const StreamFile& input, const StreamFile& output, const StreamFile& errors)
    {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_adddup2(&actions_, input.Descriptor(), STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, output.Descriptor(), STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions_, errors.Descriptor(), STDERR_FILENO);
    }
    ~StreamRedirection() { posix_spawn_file_actions_destroy(&actions_); }
    StreamRedirection(const StreamRedirection&) = delete;
    StreamRedirection& operator=(const StreamRedirection&) = delete;

    const posix_spawn_file_actions_t* Actions() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
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

pid_t Start(const StreamRedirection& streams)
{
    std::string program = "gnuplot";
    std::string withoutInitFiles = "-d";
    const std::array<char*, 3> arguments = {program.data(), withoutInitFiles.data(), nullptr};
    pid_t process = 0;
    const int error = posix_spawnp(&process, program.c_str(), streams.Actions(), nullptr, arguments.data(),
                                   EnvironmentOfGnuplot().data());
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
int StatusOf(pid_t process)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + TIME_LIMIT;
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(process, &status, WNOHANG)) == 0 && Clock::now() < deadline)
        std::this_thread::sleep_for(BETWEEN_LOOKS);
    if (ended == 0) {
        Kill(process);
        throw NoGnuplot(fmt::format("gnuplot did not end within {} seconds", TIME_LIMIT.count()));
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
    const int status = StatusOf(Start(StreamRedirection(input, output, errors)));
    if (status != 0)
        throw DrawingFailure(ReasonOfFailure(status, LastLine(errors.Read())));
    return output.Read();
}

} // namespace host

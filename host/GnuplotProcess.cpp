#include "host/GnuplotProcess.h"

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <memory>

namespace host {

namespace {

[[noreturn]] void Fail(const std::string& reason)
{
    throw DrawingFailure(fmt::format("The pictures could not be drawn: {}.", reason));
}

struct CloseFile
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// A file without a name, gone when it is closed. The streams of the process are such files rather than
/// pipes, of which one may fill up while the other is waited for.
class StreamFile
{
public:
    StreamFile() : file_(std::tmpfile())
    {
        if (!file_)
            Fail(fmt::format("no temporary file ({})", std::strerror(errno)));
    }

    int Descriptor() const { return fileno(file_.get()); }

    void Write(const std::string& text)
    {
        if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size() ||
            std::fflush(file_.get()) != 0)
            Fail(fmt::format("a temporary file cannot be written ({})", std::strerror(errno)));
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

pid_t Start(const StreamRedirection& streams)
{
    std::string program = "gnuplot";
    std::string withoutInitFiles = "-d";
    const std::array<char*, 3> arguments = {program.data(), withoutInitFiles.data(), nullptr};
    pid_t process = 0;
    const int error =
        posix_spawnp(&process, program.c_str(), streams.Actions(), nullptr, arguments.data(), environ);
    if (error == ENOENT)
        Fail("the program gnuplot is not installed (on Debian, the package gnuplot-nox)");
    if (error != 0)
        Fail(fmt::format("gnuplot does not start ({})", std::strerror(error)));
    return process;
}

bool EndsWell(pid_t process)
{
    int status = 0;
    while (waitpid(process, &status, 0) < 0)
        if (errno != EINTR)
            return false;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// The message of gnuplot, which shows the command, a pointer into it and what is wrong with it.
std::string LastLine(std::string text)
{
    while (!text.empty() && (text.back() == '\n' || text.back() == ' '))
        text.pop_back();
    return text.substr(text.rfind('\n') + 1);
}

} // namespace

std::string RunGnuplot(const std::string& script)
{
    StreamFile input;
    StreamFile output;
    StreamFile errors;
    input.Write(script);
    const bool isDrawn = EndsWell(Start(StreamRedirection(input, output, errors)));
    std::string picture = output.Read();
    if (!isDrawn || picture.empty())
        Fail(fmt::format("gnuplot failed ({})", LastLine(errors.Read())));
    return picture;
}

} // namespace host

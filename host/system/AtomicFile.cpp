#include "host/system/AtomicFile.h"

#include "host/text/UnusableInput.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace host {

namespace {

/// What a signal handler can read: it must not meet a text or a list that changes. Names are used again, and
/// never removed.
struct TemporaryName
{
    std::array<char, PATH_MAX> path;
    std::atomic<bool> isUsed = false;
    TemporaryName* next = nullptr;
};

std::atomic<TemporaryName*> temporaryNames = nullptr;

TemporaryName& UnusedName()
{
    for (TemporaryName* name = temporaryNames; name != nullptr; name = name->next)
        if (!name->isUsed)
            return *name;
    auto* const added = new TemporaryName;
    added->next = temporaryNames;
    temporaryNames = added;
    return *added;
}

/// A path of PATH_MAX bytes or more opens no file.
void Remember(const std::string& path)
{
    TemporaryName& name = UnusedName();
    std::memcpy(name.path.data(), path.c_str(), path.size() + 1);
    name.isUsed = true;
}

void Forget(const std::string& path)
{
    for (TemporaryName* name = temporaryNames; name != nullptr; name = name->next)
        if (name->isUsed && path == name->path.data())
            name->isUsed = false;
}

extern "C" void RemoveAndEnd(int signal)
{
    for (const TemporaryName* name = temporaryNames; name != nullptr; name = name->next)
        if (name->isUsed)
            unlink(name->path.data());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

std::string Resolved(const std::string& path)
{
    std::error_code unreadable;
    const std::filesystem::path resolved = std::filesystem::weakly_canonical(path, unreadable);
    return unreadable ? path : resolved.string();
}

/// The permissions that the file has, or that a new one gets.
mode_t ModeOf(const std::string& path)
{
    struct stat status
    {};
    if (stat(path.c_str(), &status) == 0)
        return status.st_mode & 0777U;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666U & ~mask;
}

/// Whether there is something at the path that a file cannot replace.
bool IsNoRegularFile(const std::string& path)
{
    struct stat status
    {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

} // namespace

AtomicFile::AtomicFile(const std::string& path) : name_(fmt::format("'{}'", path)), path_(Resolved(path))
{
    if (path == "-") {
        name_ = "Standard output";
        file_ = STDOUT_FILENO;
        return;
    }
    if (IsNoRegularFile(path_))
        file_ = open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    else if (access(path_.c_str(), W_OK) == 0 || errno == ENOENT)
        OpenTemporary();
    if (file_ < 0 && errno == EACCES) // a folder without room for another name may have one for this
        file_ = open(path_.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (file_ < 0)
        Fail();
}

void AtomicFile::OpenTemporary()
{
    std::string name = path_ + ".XXXXXX";
    file_ = mkostemp(name.data(), O_CLOEXEC);
    if (file_ < 0)
        return;
    temporary_ = name;
    Remember(temporary_);
    if (fchmod(file_, ModeOf(path_)) != 0)
        Fail();
}

AtomicFile::~AtomicFile()
{
    if (file_ >= 0 && file_ != STDOUT_FILENO)
        close(file_);
    if (temporary_.empty())
        return;
    unlink(temporary_.c_str());
    Forget(temporary_);
}

void AtomicFile::Fail() const
{
    throw UnusableInput(fmt::format("{} cannot be written: {}.", name_, std::strerror(errno)));
}

void AtomicFile::Write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = write(file_, bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno == EPIPE)
            throw ReaderIsGone();
        else if (errno != EINTR)
            Fail();
    }
}

bool AtomicFile::IsTerminal() const
{
    return isatty(file_) == 1;
}

void AtomicFile::Commit()
{
    if (file_ == STDOUT_FILENO)
        return;
    const int file = std::exchange(file_, -1);
    if (close(file) != 0)
        Fail();
    if (temporary_.empty())
        return;
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0)
        Fail();
    Forget(temporary_);
    temporary_.clear();
}

void RemoveTemporaryFilesOnSignals()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        if (std::signal(signal, RemoveAndEnd) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // a file that is too large fails to be written
}

} // namespace host

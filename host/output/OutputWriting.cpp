#include "host/output/OutputWriting.h"

#include "host/system/AtomicFile.h"
#include "host/text/ProgramInfo.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace host {

namespace {

[[noreturn]] void FailToWrite(const std::string& place)
{
    throw UnusableInput(fmt::format("{} cannot be written: {}.", place, std::strerror(errno)));
}

} // namespace

void WriteFile(const std::string& path, const std::string& bytes)
{
    AtomicFile file(path);
    try {
        file.Write(bytes);
    } catch (const ReaderIsGone&) {
        FailToWrite(fmt::format("'{}'", path));
    }
    file.Commit();
}

void MakeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw UnusableInput(fmt::format("'{}' cannot be made: {}.", folder, error.message()));
}

void WriteStandardOutput(const std::string& text)
{
    const bool isWritten =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!isWritten && errno != EPIPE)
        FailToWrite("Standard output");
}

void WriteToStandardError(const char* sentence) noexcept
{
    std::fprintf(stderr, "%s: %s\n", PROGRAM_NAME, sentence);
}

} // namespace host

#pragma once

#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// The reader of standard output has had enough, such as `head`.
class ReaderIsGone : public std::exception
{};

/// A file that has its name when it is whole: until `Commit` it is a temporary one beside it, which the
/// destructor and the signals that end the program remove. What is no regular file, such as a pipe, is
/// written as it is. What cannot be written throws UnusableInput.
class AtomicFile
{
public:
    /// "-" is standard output.
    explicit AtomicFile(const std::string& path);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    /// Throws ReaderIsGone for a closed pipe.
    void Write(std::string_view bytes);
    bool IsTerminal() const;

    void Commit();

private:
    void OpenTemporary();
    [[noreturn]] void Fail() const;

    std::string name_;      ///< in messages
    std::string path_;      ///< with links resolved
    std::string temporary_; ///< empty for none
    int file_ = -1;
};

/// From now on SIGINT, SIGTERM, SIGHUP and SIGQUIT remove the temporary files before they end the program,
/// unless they were ignored.
void RemoveTemporaryFilesOnSignals();

} // namespace host

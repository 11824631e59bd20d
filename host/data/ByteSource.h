#pragma once

#include <isa-l/igzip_lib.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The bytes of a file, or of standard input for the path "-". Those that gzip has compressed, as the first
/// bytes tell, are decompressed; one gzip file may stand behind the other. What cannot be read throws
/// UnusableInput.
class ByteSource
{
public:
    explicit ByteSource(const std::string& path);
    ~ByteSource();
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;

    /// Reads up to `size` bytes, and none at the end alone.
    std::size_t Read(char* to, std::size_t size);

    /// The bytes of a file that is not compressed; 0 where that is not known.
    std::size_t SizeHint() const;

    /// What messages call the file.
    const std::string& Name() const { return name_; }

private:
    std::string_view Start() const { return {ahead_.data(), aheadEnd_}; }
    std::size_t ReadFile(char* to, std::size_t size);
    bool Refill();
    void Sniff();
    std::size_t ReadCompressed(char* to, std::size_t size);
    bool StartsMember();

    std::string name_;
    int file_ = -1;
    std::vector<char> ahead_; ///< bytes as they are in the file
    std::size_t aheadBegin_ = 0;
    std::size_t aheadEnd_ = 0;
    std::unique_ptr<inflate_state> gzip_; ///< none for plain text
    bool isInMember_ = false;             ///< between the start of a gzip file and its checksum
};

} // namespace host

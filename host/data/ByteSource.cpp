#include "host/data/ByteSource.h"

#include "host/data/FileKinds.h"
#include "host/text/UnusableInput.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace host {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t AHEAD_SIZE = 1 << 16;
constexpr std::string_view GZIP_START = "\x1f\x8b"sv;

/// Workbooks among the archives are told by more than their first bytes.
bool IsArchive(std::string_view start)
{
    return start.starts_with("PK\x03\x04");
}

std::string NameOf(const std::string& path)
{
    return path == "-" ? "standard input" : fmt::format("'{}'", path);
}

} // namespace

ByteSource::ByteSource(const std::string& path) : name_(NameOf(path)), ahead_(AHEAD_SIZE)
{
    file_ = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file_ < 0)
        throw UnusableInput(fmt::format("{} cannot be opened: {}.", name_, std::strerror(errno)));
    try {
        Sniff();
    } catch (...) {
        if (file_ != STDIN_FILENO)
            close(file_);
        throw;
    }
}

ByteSource::~ByteSource()
{
    if (file_ != STDIN_FILENO)
        close(file_);
}

std::size_t ByteSource::SizeHint() const
{
    struct stat status = {};
    const bool isKnown = !gzip_ && fstat(file_, &status) == 0 && S_ISREG(status.st_mode);
    return isKnown ? static_cast<std::size_t>(status.st_size) : 0;
}

std::size_t ByteSource::Read(char* to, std::size_t size)
{
    if (gzip_)
        return ReadCompressed(to, size);
    if (aheadBegin_ == aheadEnd_)
        return ReadFile(to, size);
    const std::size_t taken = std::min(size, aheadEnd_ - aheadBegin_);
    std::memcpy(to, ahead_.data() + aheadBegin_, taken);
    aheadBegin_ += taken;
    return taken;
}

std::size_t ByteSource::ReadFile(char* to, std::size_t size)
{
    for (;;) {
        const ssize_t count = read(file_, to, size);
        if (count >= 0)
            return static_cast<std::size_t>(count);
        if (errno != EINTR)
            throw UnusableInput(fmt::format("{} cannot be read: {}.", name_, std::strerror(errno)));
    }
}

/// Whether there are more bytes of the file.
bool ByteSource::Refill()
{
    aheadBegin_ = 0;
    aheadEnd_ = ReadFile(ahead_.data(), ahead_.size());
    return aheadEnd_ > 0;
}

/// A pipe may give less bytes at a time than it takes to know the kind.
void ByteSource::Sniff()
{
    constexpr std::size_t ENOUGH = 64;
    while (aheadEnd_ < ENOUGH || (IsArchive(Start()) && aheadEnd_ < ahead_.size())) {
        const std::size_t count = ReadFile(ahead_.data() + aheadEnd_, ahead_.size() - aheadEnd_);
        if (count == 0)
            break;
        aheadEnd_ += count;
    }
    RefuseOtherKinds(Start(), name_);
    if (!Start().starts_with(GZIP_START))
        return;
    gzip_ = std::make_unique<inflate_state>();
    isal_inflate_init(gzip_.get());
    gzip_->crc_flag = ISAL_GZIP;
    isInMember_ = true;
}

/// Behind the end of a gzip file: whether another one follows. Zeros there are the padding of tapes.
bool ByteSource::StartsMember()
{
    while (aheadBegin_ < aheadEnd_ || Refill()) {
        if (ahead_[aheadBegin_] != '\0') {
            if (ahead_[aheadBegin_] != GZIP_START[0])
                throw UnusableInput(
                    fmt::format("{} has bytes behind its gzip data that are no gzip data.", name_));
            isal_inflate_reset(gzip_.get());
            return true;
        }
        ++aheadBegin_;
    }
    return false;
}

std::size_t ByteSource::ReadCompressed(char* to, std::size_t size)
{
    for (;;) {
        if (!isInMember_) {
            isInMember_ = StartsMember();
            if (!isInMember_)
                return 0;
        }
        const bool hasInput = aheadBegin_ < aheadEnd_ || Refill();
        gzip_->next_in = reinterpret_cast<std::uint8_t*>(ahead_.data() + aheadBegin_);
        gzip_->avail_in = static_cast<std::uint32_t>(aheadEnd_ - aheadBegin_);
        gzip_->next_out = reinterpret_cast<std::uint8_t*>(to);
        gzip_->avail_out = static_cast<std::uint32_t>(size);
        if (isal_inflate(gzip_.get()) < 0)
            throw UnusableInput(fmt::format("{} is damaged: its gzip data cannot be decompressed.", name_));
        aheadBegin_ = aheadEnd_ - gzip_->avail_in;
        isInMember_ = gzip_->block_state != ISAL_BLOCK_FINISH;
        const std::size_t produced = size - gzip_->avail_out;
        if (produced > 0)
            return produced;
        if (!hasInput && isInMember_)
            throw UnusableInput(fmt::format("{} ends in the middle of its gzip data.", name_));
    }
}

} // namespace host

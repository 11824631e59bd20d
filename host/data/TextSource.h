#pragma once

#include "host/data/ByteSource.h"
#include "host/data/Encodings.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The text of a file in UTF-8, read piece by piece: the encodings are those of DecodeText(), and CR alone
/// becomes LF in a file whose first lines end so. A mark and the first bytes say which encoding of wide
/// characters it is. Whether other bytes are UTF-8 is decided by the first that are not ASCII and the few
/// thousand behind them, because what is read is gone.
class TextSource
{
public:
    explicit TextSource(const std::string& path);

    /// Reads up to `size` bytes, which is at least a few, and none at the end alone. Throws UnusableInput for
    /// what cannot be read or converted.
    std::size_t Read(char* to, std::size_t size);

    const std::string& Name() const { return source_.Name(); }

    /// A sentence on the encoding where it is not UTF-8; else empty.
    const std::string& Note() const { return note_; }

private:
    void Start();
    void ConvertBy(const Encoding& encoding);
    std::size_t ReadBytes(char* to, std::size_t size);
    std::size_t ReadConverted(char* to, std::size_t size);
    std::size_t KeepBack(const char* from, std::size_t size);
    void FillAhead(std::size_t size);
    std::string_view Ahead() const { return std::string_view(ahead_).substr(aheadBegin_); }

    ByteSource source_;
    std::string ahead_; ///< bytes that are read and not given
    std::size_t aheadBegin_ = 0;
    bool hasMacLines_ = false;
    bool isDecided_ = false; ///< whether bytes that are not ASCII need no look
    std::string note_;

    const Encoding* encoding_ = nullptr; ///< none for UTF-8
    Converter from_;
    Converter to_;
    bool isConvertedWhole_ = false;
    std::vector<char16_t> pivot_; ///< what the converter has read and not written
    char16_t* pivotBegin_ = nullptr;
    char16_t* pivotEnd_ = nullptr;
};

} // namespace host

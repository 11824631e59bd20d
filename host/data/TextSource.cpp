#include "host/data/TextSource.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

/// Enough bytes for a guess.
constexpr std::size_t SAMPLE = 4096;

/// The text without a character that its end cuts.
std::string_view WithoutCutCharacter(std::string_view text)
{
    std::size_t tail = 0;
    while (tail < std::min<std::size_t>(text.size(), 3) && (text[text.size() - 1 - tail] & 0xC0) == 0x80)
        ++tail;
    const bool hasLead = tail < text.size() && (text[text.size() - 1 - tail] & 0xC0) == 0xC0;
    text.remove_suffix(hasLead ? tail + 1 : 0);
    return text;
}

} // namespace

TextSource::TextSource(const std::string& path) : source_(path)
{
    Start();
}

void TextSource::Start()
{
    FillAhead(SAMPLE);
    std::string start(Ahead());
    if (const Encoding* const wide = WideEncodingOf(start)) {
        aheadBegin_ += wide->mark.size();
        std::erase(start, '\0');
        ConvertBy(*wide);
    } else if (start.starts_with(UTF_8_MARK)) {
        aheadBegin_ += UTF_8_MARK.size();
        isDecided_ = true;
    }
    hasMacLines_ = HasMacLines(start);
}

void TextSource::ConvertBy(const Encoding& encoding)
{
    constexpr Encoding UTF_8 = {"UTF-8", "UTF-8"};
    isDecided_ = true;
    encoding_ = &encoding;
    note_ = NoteOfConversion(encoding);
    from_ = OpenConverter(encoding);
    to_ = OpenConverter(UTF_8);
    pivot_.resize(SAMPLE);
    pivotBegin_ = pivotEnd_ = pivot_.data();
}

/// Reads until there are `size` bytes, or all.
void TextSource::FillAhead(std::size_t size)
{
    ahead_.erase(0, aheadBegin_);
    aheadBegin_ = 0;
    while (ahead_.size() < size) {
        const std::size_t had = ahead_.size();
        ahead_.resize(size);
        ahead_.resize(had + source_.Read(ahead_.data() + had, size - had));
        if (ahead_.size() == had)
            break;
    }
}

std::size_t TextSource::ReadBytes(char* to, std::size_t size)
{
    if (Ahead().empty())
        return source_.Read(to, size);
    const std::size_t taken = std::min(size, Ahead().size());
    std::memcpy(to, Ahead().data(), taken);
    aheadBegin_ += taken;
    return taken;
}

/// Takes the bytes from the first one that is not ASCII back, and decides by them. Returns how many are left.
std::size_t TextSource::KeepBack(const char* from, std::size_t size)
{
    const auto* const strange =
        std::find_if(from, from + size, [](char c) { return (static_cast<unsigned char>(c) & 0x80U) != 0; });
    const auto kept = static_cast<std::size_t>(strange - from);
    ahead_.erase(0, aheadBegin_);
    aheadBegin_ = 0;
    ahead_.insert(0, strange, size - kept);
    FillAhead(SAMPLE);
    isDecided_ = true;
    const bool isWhole = Ahead().size() < SAMPLE;
    if (CensusOf(isWhole ? Ahead() : WithoutCutCharacter(Ahead().substr(0, SAMPLE))).IsOtherEncoding())
        ConvertBy(ByteEncodingOf(hasMacLines_));
    return kept;
}

std::size_t TextSource::ReadConverted(char* to, std::size_t size)
{
    char* target = to;
    while (target == to && !isConvertedWhole_) {
        if (Ahead().empty())
            FillAhead(SAMPLE);
        const bool isEnd = Ahead().empty();
        RequireDefined(Ahead(), *encoding_, Name());
        const char* first = Ahead().data();
        const char* const begin = first;
        UErrorCode error = U_ZERO_ERROR;
        ucnv_convertEx(to_.get(), from_.get(), &target, to + size, &first, first + Ahead().size(),
                       pivot_.data(), &pivotBegin_, &pivotEnd_, pivot_.data() + pivot_.size(), 0,
                       isEnd ? 1 : 0, &error);
        aheadBegin_ += static_cast<std::size_t>(first - begin);
        if (U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR)
            FailToConvert(Name(), *encoding_);
        isConvertedWhole_ = isEnd && error != U_BUFFER_OVERFLOW_ERROR;
    }
    return static_cast<std::size_t>(target - to);
}

std::size_t TextSource::Read(char* to, std::size_t size)
{
    std::size_t count = 0;
    if (encoding_ == nullptr)
        count = ReadBytes(to, size);
    if (!isDecided_ && !IsAscii({to, count}))
        count = KeepBack(to, count);
    if (count == 0 && (encoding_ != nullptr || !Ahead().empty()))
        count = encoding_ != nullptr ? ReadConverted(to, size) : ReadBytes(to, size);
    if (hasMacLines_)
        std::replace(to, to + count, '\r', '\n');
    return count;
}

} // namespace host

#include "host/batch/FieldCutter.h"

#include <bit>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace host {

namespace {

constexpr std::size_t STRIDE = 16;

/// A bit for each of the 16 bytes that is `wanted`.
inline std::uint32_t MaskOf(const char* bytes, char wanted)
{
#ifdef __SSE2__
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(block, _mm_set1_epi8(wanted))));
#else
    std::uint32_t mask = 0;
    for (std::size_t i = 0; i < STRIDE; ++i)
        mask |= static_cast<std::uint32_t>(bytes[i] == wanted) << i;
    return mask;
#endif
}

/// The bits of the bytes before the end of the line.
inline std::uint32_t InsideOf(std::size_t left)
{
    return left < STRIDE ? (1U << left) - 1 : 0xFFFFU;
}

} // namespace

std::size_t FieldCutter::Cut(char* line, std::size_t size, bool mayHaveQuotes)
{
    if (mayHaveQuotes && std::memchr(line, '"', size) != nullptr)
        return CutQuoted(line, size);
    return separator_ == ' ' ? CutAtBlanks(line, size) : CutAtSeparator(line, size);
}

std::size_t FieldCutter::CutAtSeparator(const char* line, std::size_t size)
{
    std::size_t count = 0;
    starts_[0] = 0;
    for (std::size_t base = 0; base < size; base += STRIDE) {
        std::uint32_t mask = MaskOf(line + base, separator_) & InsideOf(size - base);
        for (; mask != 0; mask &= mask - 1) {
            const auto end =
                static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(std::countr_zero(mask));
            if (count < Capacity()) {
                ends_[count] = end;
                starts_[count + 1] = end + 1;
            }
            ++count;
        }
    }
    if (count < Capacity())
        ends_[count] = static_cast<std::uint32_t>(size);
    return count + 1;
}

/// A field starts and ends where a byte is blank and its neighbour is not.
std::size_t FieldCutter::CutAtBlanks(const char* line, std::size_t size)
{
    std::size_t edges = 0;
    std::uint32_t wasBlank = 1;
    for (std::size_t base = 0; base < size; base += STRIDE) {
        const std::uint32_t inside = InsideOf(size - base);
        const std::uint32_t blanks = (MaskOf(line + base, ' ') | MaskOf(line + base, '\t')) & inside;
        std::uint32_t mask = (blanks ^ ((blanks << 1) | wasBlank)) & inside;
        wasBlank = (blanks >> (STRIDE - 1)) & 1U;
        for (; mask != 0; mask &= mask - 1) {
            const auto edge =
                static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(std::countr_zero(mask));
            if (edges / 2 < Capacity())
                (edges % 2 == 0 ? starts_ : ends_)[edges / 2] = edge;
            ++edges;
        }
    }
    if (edges % 2 == 1 && edges / 2 < Capacity())
        ends_[edges / 2] = static_cast<std::uint32_t>(size);
    return (edges + 1) / 2;
}

/// Takes a field in quotes, from behind the first one. Returns its end, which two quotes for one move to the
/// front; null when it is not closed before a separator or the end of the line.
char* FieldCutter::CloseQuotes(char*& read, const char* lineEnd) const
{
    char* end = read;
    for (;; *end++ = *read++) {
        if (read >= lineEnd)
            return nullptr;
        if (*read == '"' && (++read >= lineEnd || *read != '"'))
            break;
    }
    while (IsStrict() && read < lineEnd && *read == ' ')
        ++read;
    return read < lineEnd && !Separates(*read) ? nullptr : end;
}

/// Takes a field that does not start with a quote. Returns its end; null when there is a quote that may not
/// be.
char* FieldCutter::EndPlain(char*& read, const char* lineEnd) const
{
    for (; read < lineEnd && !Separates(*read); ++read)
        if (*read == '"' && IsStrict())
            return nullptr;
    return read;
}

/// Behind the blanks that separate, or that stand before a quote.
char* FieldCutter::SkipBlanks(char* read, const char* lineEnd) const
{
    char* next = read;
    while (next < lineEnd && (*next == ' ' || (separator_ == ' ' && *next == '\t')))
        ++next;
    const bool isQuote = next < lineEnd && *next == '"';
    return separator_ == ' ' || (IsStrict() && isQuote) ? next : read;
}

/// Where blanks separate, there is no field behind the last ones.
std::size_t FieldCutter::CutQuoted(char* line, std::size_t size)
{
    const char* const lineEnd = line + size;
    char* read = line;
    std::size_t count = 0;
    do {
        read = SkipBlanks(read, lineEnd);
        if (separator_ == ' ' && read == lineEnd)
            break;
        const bool isQuoted = read < lineEnd && *read == '"';
        const char* const start = isQuoted ? ++read : read;
        const char* const end = isQuoted ? CloseQuotes(read, lineEnd) : EndPlain(read, lineEnd);
        if (end == nullptr)
            return 0;
        if (count < Capacity()) {
            starts_[count] = static_cast<std::uint32_t>(start - line);
            ends_[count] = static_cast<std::uint32_t>(end - line);
        }
        ++count;
    } while (read++ < lineEnd);
    return count;
}

} // namespace host

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

std::size_t FieldCutter::Cut(char* line, std::size_t size)
{
    switch (separator_) {
    case Separator::TAB:
        return CutAt('\t', line, size);
    case Separator::COMMA:
        return std::memchr(line, '"', size) == nullptr ? CutAt(',', line, size) : CutQuoted(line, size);
    case Separator::BLANKS:
        return CutAtBlanks(line, size);
    }
    return 0;
}

std::size_t FieldCutter::CutAt(char separator, const char* line, std::size_t size)
{
    std::size_t count = 0;
    starts_[0] = 0;
    for (std::size_t base = 0; base < size; base += STRIDE) {
        std::uint32_t mask = MaskOf(line + base, separator) & InsideOf(size - base);
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

std::size_t FieldCutter::CutQuoted(char* line, std::size_t size)
{
    std::size_t count = 0;
    std::size_t read = 0;
    for (;;) {
        std::size_t start = read;
        std::size_t end = read;
        if (read < size && line[read] == '"') {
            start = end = ++read;
            for (;; line[end++] = line[read++]) {
                if (read >= size)
                    return 0;
                if (line[read] != '"')
                    continue;
                if (++read >= size || line[read] != '"')
                    break;
            }
            if (read < size && line[read] != ',')
                return 0;
        } else {
            while (read < size && line[read] != ',')
                if (line[read++] == '"')
                    return 0;
            end = read;
        }
        if (count < Capacity()) {
            starts_[count] = static_cast<std::uint32_t>(start);
            ends_[count] = static_cast<std::uint32_t>(end);
        }
        ++count;
        if (read++ >= size)
            return count;
    }
}

} // namespace host

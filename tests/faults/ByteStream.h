#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

/// Choices drawn from bytes, be they a fuzzer's or a random generator's. Zeros follow the last byte.
class ByteStream
{
public:
    explicit ByteStream(const Bytes& bytes) : bytes_(&bytes) {}

    int Below(int bound) { return Next() % bound; }
    /// False once the bytes have come to their end.
    bool OneIn(int n) { return Below(n) == n - 1; }
    template <class T, std::size_t N>
    const T& Pick(const T (&choices)[N])
    {
        return choices[static_cast<std::size_t>(Below(static_cast<int>(N)))];
    }

private:
    int Next() { return position_ < bytes_->size() ? (*bytes_)[position_++] : 0; }

    const Bytes* bytes_;
    std::size_t position_ = 0;
};

inline Bytes RandomBytes(unsigned seed, std::size_t count)
{
    std::mt19937 generator(seed);
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(generator() >> 24);
    return bytes;
}

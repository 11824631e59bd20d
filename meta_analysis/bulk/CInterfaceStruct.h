#pragma once

#include "meta_analysis/bulk/MABulkSets.h"
#include "meta_analysis/bulk/meta_analysis.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace MA_NAMESPACE {

// The structs of the C interface have their size as the caller knows it in their first field. A caller's
// struct can be shorter than the library's, which has got fields since, or longer.

/// The bytes that the caller's struct and the library's have both.
template <class Struct>
std::size_t SharedSize(std::size_t size)
{
    return std::min(size, sizeof(Struct));
}

/// Whether a struct that begins as this one can have the size. One without an initial value is found so, most
/// likely, before it is read beyond its end.
template <class Struct>
bool IsSizeOf(std::size_t size)
{
    constexpr std::size_t largest = 4096; // far above all structs
    return size >= sizeof(std::size_t) && size <= largest && size % alignof(Struct) == 0;
}

/// Copies the fields that the caller's struct has; the others keep their values. Errors:
/// STRUCT_SIZE_UNKNOWN; STRUCT_FIELD_UNKNOWN for one behind the library's that is not 0.
template <class Struct>
KXStatus ReadStruct(const Struct& given, Struct& known)
{
    if (!IsSizeOf<Struct>(given.size))
        return KXStatus(MAStatusCode::STRUCT_SIZE_UNKNOWN);
    const auto* bytes = reinterpret_cast<const unsigned char*>(&given);
    const std::size_t shared = SharedSize<Struct>(given.size);
    if (std::any_of(bytes + shared, bytes + given.size, [](unsigned char byte) { return byte != 0; }))
        return KXStatus(MAStatusCode::STRUCT_FIELD_UNKNOWN);
    std::memcpy(&known, bytes, shared);
    return {};
}

/// Results are wanted, or there is nothing to do. Error INPUT_NOT_GIVEN for a null pointer; those above.
template <class Results>
KXStatus ReadResults(const Results* given, Results& known)
{
    return given == nullptr ? KXStatus(MAStatusCode::INPUT_NOT_GIVEN) : ReadStruct(*given, known);
}

/// Studies are the rows, and sets the columns.
inline MAStridedBlock BlockOf(const ma_matrix& matrix)
{
    return {matrix.values, matrix.row_stride, matrix.column_stride};
}

} // namespace MA_NAMESPACE

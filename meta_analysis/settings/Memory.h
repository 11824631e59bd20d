#pragma once

// What the library does when memory runs out. No exception leaves an operation:
//
// - An operation that returns a status runs in `Guarded`. Inside it values throw as standard containers do;
//   its status is `MAStatusCode::OUT_OF_MEMORY`, and results that were stored before can be read.
// - An operation that returns a bool or a position returns false or -1, and has changed nothing.
// - A getter has neither. It returns `CopyOf` or `FieldOf`, which are empty when the copy cannot be made; a
//   host that is short of memory compares the length with that of another result. Inside the library results
//   are passed on as values, not through getters.
// - A setter takes a vector or a text by value and moves it, so that nothing in it can fail.
//
// Constructors and copies, of settings, engines, analyses and lists of variables, have no status to return.
// They throw std::bad_alloc, as those of standard containers do.

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cstddef>
#include <functional>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace MA_NAMESPACE {

/// The copy of a result that a getter returns; empty when memory runs out.
template <class Value>
Value CopyOf(const Value& value) noexcept
{
    try {
        return value;
    } catch (...) {
        return Value();
    }
}

/// One field of every row; throws std::bad_alloc, so for use inside guarded operations. The field is a
/// member, or a function of the row.
template <class Row, class Field>
auto ValuesOf(const std::vector<Row>& rows, Field field)
{
    std::vector<std::decay_t<std::invoke_result_t<Field, const Row&>>> values;
    values.reserve(rows.size());
    for (const Row& row : rows)
        values.push_back(std::invoke(field, row));
    return values;
}

/// The same as a getter returns it: empty when memory runs out.
template <class Row, class Field>
auto FieldOf(const std::vector<Row>& rows, Field field) noexcept -> decltype(ValuesOf(rows, field))
{
    try {
        return ValuesOf(rows, field);
    } catch (...) {
        return {};
    }
}

/// Runs an operation that returns a status, turns what it throws into an error, and stores that error as the
/// object's status.
///
/// The library's own code throws std::bad_alloc alone. Any other exception comes from an object of the host
/// (an iterator, a listener, a display sink), and is reported as `MAStatusCode::ITERATOR_FAILED`.
template <class Operation>
KXStatus Guarded(KXStatus& stored, Operation&& operation) noexcept
{
    try {
        return std::forward<Operation>(operation)();
    } catch (const std::bad_alloc&) {
        stored = KXStatus(MAStatusCode::OUT_OF_MEMORY);
    } catch (...) {
        stored = KXStatus(MAStatusCode::ITERATOR_FAILED);
    }
    return stored;
}

/// Throws std::bad_alloc when an operation inside a guarded one reports that memory ran out.
inline void RequireMemory(bool sufficed)
{
    if (!sufficed)
        throw std::bad_alloc();
}
inline void RequireMemory(const KXStatus& status)
{
    RequireMemory(status.GetCode() != MAStatusCode::OUT_OF_MEMORY);
}

/// Throws std::bad_alloc unless each vector, taken through a getter inside a guarded operation, has the
/// length of the result.
template <class... Vectors>
void RequireLength(std::size_t length, const Vectors&... copies)
{
    RequireMemory(((copies.size() == length) && ...));
}

} // namespace MA_NAMESPACE

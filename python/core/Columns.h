#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>
#include <vector>

namespace python_module {

/// A result by its name, and where a struct of the C interface has the pointer to it.
template <class Results>
struct Column
{
    const char* name;
    std::variant<double * Results::*, int32_t * Results::*> member;
};

/// Whether the column is among `wanted`, which is None for all.
inline bool IsWanted(const char* name, const pybind11::object& wanted)
{
    return wanted.is_none() || wanted.contains(name);
}

template <class AnyColumn>
pybind11::tuple NamesOf(std::span<const AnyColumn> columns)
{
    pybind11::tuple names(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i)
        names[i] = columns[i].name;
    return names;
}

/// New arrays of NumPy for the wanted columns of a struct of results, an entry a set.
template <class Results>
class SetColumns
{
public:
    SetColumns(std::span<const Column<Results>> columns, const pybind11::object& wanted, std::size_t count,
               pybind11::dict& arrays)
    {
        results_.size = sizeof results_;
        for (const Column<Results>& column : columns)
            if (IsWanted(column.name, wanted)) {
                std::visit([&](auto member) { arrays[column.name] = NewArray(member, count); },
                           column.member);
                members_.push_back(column.member);
            }
    }

    /// The pointers of the sets from `first` on.
    Results From(std::size_t first) const
    {
        Results results = results_;
        for (const auto& member : members_)
            std::visit([&](auto pointer) { results.*pointer += first; }, member);
        return results;
    }

private:
    template <class Number>
    pybind11::array NewArray(Number* Results::*member, std::size_t count)
    {
        pybind11::array_t<Number> array(static_cast<pybind11::ssize_t>(count));
        results_.*member = array.mutable_data();
        return array;
    }

    Results results_{};
    std::vector<decltype(Column<Results>::member)> members_;
};

} // namespace python_module

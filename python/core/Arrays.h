#pragma once

#include "meta_analysis/bulk/meta_analysis.h"

#include <pybind11/numpy.h>

#include <cstddef>

namespace python_module {

/// An array of float64 with any strides, which is not converted.
using Floats = pybind11::array_t<double, 0>;

/// Strides of NumPy count bytes.
inline std::ptrdiff_t Stride(const Floats& array, int axis)
{
    return array.strides(axis) / static_cast<std::ptrdiff_t>(sizeof(double));
}

inline std::size_t Length(const Floats& array, int axis)
{
    return static_cast<std::size_t>(array.shape(axis));
}

inline ma_vector AsVector(const Floats& array)
{
    return {array.data(), Stride(array, 0)};
}

/// An array of one dimension is one column.
inline ma_matrix AsMatrix(const Floats& array)
{
    return {array.data(), Stride(array, 0), array.ndim() > 1 ? Stride(array, 1) : 0};
}

inline std::size_t ColumnCount(const Floats& array)
{
    return array.ndim() > 1 ? Length(array, 1) : 1;
}

/// The columns from `first` on.
inline ma_matrix From(const ma_matrix& matrix, std::size_t first)
{
    return {matrix.values + static_cast<std::ptrdiff_t>(first) * matrix.column_stride, matrix.row_stride,
            matrix.column_stride};
}

} // namespace python_module

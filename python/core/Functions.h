#pragma once

#include "python/core/Arrays.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>

namespace python_module {

// What the package in Python calls after it has checked shapes. Results are dictionaries of arrays; options,
// dictionaries of words and numbers; `wanted`, a collection of columns or None.

using Offsets = pybind11::array_t<std::size_t, pybind11::array::c_style>;

/// An array of one dimension is one set.
pybind11::dict PoolBlock(const Floats& effects, const Floats& variances, const pybind11::dict& options,
                         const pybind11::object& wanted);
/// Arrays without strides.
pybind11::dict PoolRagged(const Floats& effects, const Floats& variances, const Offsets& offsets,
                          const pybind11::dict& options, const pybind11::object& wanted);

pybind11::dict RegressBlock(const Floats& effects, const Floats& variances, const Floats& design,
                            const pybind11::dict& options, const pybind11::object& wanted);

pybind11::dict EffectsOfTables(const Floats& treatmentEvents, const Floats& treatmentNonEvents,
                               const Floats& controlEvents, const Floats& controlNonEvents,
                               const pybind11::dict& options);
pybind11::dict EffectsOfMeans(const Floats& treatmentSizes, const Floats& treatmentMeans,
                              const Floats& treatmentStdDevs, const Floats& controlSizes,
                              const Floats& controlMeans, const Floats& controlStdDevs,
                              const pybind11::dict& options);

/// Names of the columns of results, in their order.
pybind11::tuple PoolColumns();
pybind11::tuple RegressionColumns();

} // namespace python_module

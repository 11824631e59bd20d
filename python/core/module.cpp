#include "python/core/Functions.h"

#include "meta_analysis/bulk/meta_analysis.h"

#include <pybind11/pybind11.h>

namespace py = pybind11;
using namespace python_module;

PYBIND11_MODULE(_core, module)
{
    module.doc() = "The C interface of the library on arrays of NumPy.";
    const auto in_place = [](const char* name) { return py::arg(name).noconvert(); };
    module.def("pool_block", &PoolBlock, in_place("effects"), in_place("variances"), py::arg("options"),
               py::arg("wanted"));
    module.def("pool_ragged", &PoolRagged, in_place("effects"), in_place("variances"), py::arg("offsets"),
               py::arg("options"), py::arg("wanted"));
    module.def("regress_block", &RegressBlock, in_place("effects"), in_place("variances"), in_place("design"),
               py::arg("options"), py::arg("wanted"));
    module.def("effects_of_tables", &EffectsOfTables, in_place("treatment_events"),
               in_place("treatment_nonevents"), in_place("control_events"), in_place("control_nonevents"),
               py::arg("options"));
    module.def("effects_of_means", &EffectsOfMeans, in_place("treatment_n"), in_place("treatment_mean"),
               in_place("treatment_sd"), in_place("control_n"), in_place("control_mean"),
               in_place("control_sd"), py::arg("options"));
    module.def("status_text", &ma_status_text, py::arg("status"));
    module.def("exclusion_text", &ma_exclusion_text, py::arg("exclusion"));
    module.attr("version") = ma_version();
    module.attr("pool_columns") = PoolColumns();
    module.attr("regression_columns") = RegressionColumns();
    module.attr("EXCLUSION_NONE") = static_cast<int>(MA_EXCLUSION_NONE);
    module.attr("EXCLUSION_MISSING_VALUE") = static_cast<int>(MA_EXCLUSION_MISSING_VALUE);
    module.attr("EXCLUSION_DROPPED") = static_cast<int>(MA_EXCLUSION_DROPPED);
    module.attr("TAU2_DOUBTFUL") = static_cast<int>(MA_STATUS_TAU2_DOUBTFUL);
}

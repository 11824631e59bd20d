#include "python/core/Columns.h"
#include "python/core/Functions.h"
#include "python/core/Options.h"

#include <array>

namespace python_module {

namespace py = pybind11;

namespace {

using Results = ma_effect_results;

constexpr std::array columns{
    Column<Results>{"effect", &Results::effect},       Column<Results>{"variance", &Results::variance},
    Column<Results>{"std_error", &Results::std_error}, Column<Results>{"ci_lower", &Results::ci_lower},
    Column<Results>{"ci_upper", &Results::ci_upper},   Column<Results>{"exclusion", &Results::exclusion},
};

/// Arrays for all columns, filled by `compute(results)` without the lock of the interpreter.
template <class Compute>
py::dict Computed(std::size_t studyCount, const Compute& compute)
{
    py::dict arrays;
    const Results results = SetColumns<Results>(columns, py::none(), studyCount, arrays).From(0);
    int32_t status = MA_STATUS_OK;
    {
        const py::gil_scoped_release unlocked;
        status = compute(results);
    }
    ThrowUnlessOk(status);
    return arrays;
}

} // namespace

py::dict EffectsOfTables(const Floats& treatmentEvents, const Floats& treatmentNonEvents,
                         const Floats& controlEvents, const Floats& controlNonEvents, const py::dict& options)
{
    const ma_table_options choice = OptionsFrom(tableOptions, options);
    const std::size_t studyCount = Length(treatmentEvents, 0);
    return Computed(studyCount, [&](const Results& results) {
        return ma_effects_of_tables(AsVector(treatmentEvents), AsVector(treatmentNonEvents),
                                    AsVector(controlEvents), AsVector(controlNonEvents), studyCount, &choice,
                                    &results);
    });
}

py::dict EffectsOfMeans(const Floats& treatmentSizes, const Floats& treatmentMeans,
                        const Floats& treatmentStdDevs, const Floats& controlSizes,
                        const Floats& controlMeans, const Floats& controlStdDevs, const py::dict& options)
{
    const ma_means_options choice = OptionsFrom(meansOptions, options);
    const std::size_t studyCount = Length(treatmentSizes, 0);
    const ma_group_summaries treatment{AsVector(treatmentSizes), AsVector(treatmentMeans),
                                       AsVector(treatmentStdDevs)};
    const ma_group_summaries control{AsVector(controlSizes), AsVector(controlMeans),
                                     AsVector(controlStdDevs)};
    return Computed(studyCount, [&](const Results& results) {
        return ma_effects_of_means(treatment, control, studyCount, &choice, &results);
    });
}

} // namespace python_module

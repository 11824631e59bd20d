#include "python/core/Columns.h"
#include "python/core/Functions.h"
#include "python/core/Options.h"

#include <array>

namespace python_module {

namespace py = pybind11;

namespace {

using EffectResults = ma_effect_results;

constexpr std::array effectColumns{
    Column<EffectResults>{"effect", &EffectResults::effect},
    Column<EffectResults>{"variance", &EffectResults::variance},
    Column<EffectResults>{"std_error", &EffectResults::std_error},
    Column<EffectResults>{"ci_lower", &EffectResults::ci_lower},
    Column<EffectResults>{"ci_upper", &EffectResults::ci_upper},
    Column<EffectResults>{"exclusion", &EffectResults::exclusion},
};

/// Arrays for all columns, filled by `compute(results)` without the lock of the interpreter.
template <class Compute>
py::dict Computed(std::size_t studyCount, const Compute& compute)
{
    py::dict arrays;
    const EffectResults results =
        SetColumns<EffectResults>(effectColumns, py::none(), studyCount, arrays).From(0);
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
    return Computed(studyCount, [&](const EffectResults& results) {
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
    return Computed(studyCount, [&](const EffectResults& results) {
        return ma_effects_of_means(treatment, control, studyCount, &choice, &results);
    });
}

} // namespace python_module

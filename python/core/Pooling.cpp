#include "python/core/Chunks.h"
#include "python/core/Columns.h"
#include "python/core/Functions.h"

#include <array>

namespace python_module {

namespace py = pybind11;

namespace {

using Results = ma_pool_results;

constexpr std::array columns{
    Column<Results>{"k", &Results::k},
    Column<Results>{"estimate", &Results::estimate},
    Column<Results>{"std_error", &Results::std_error},
    Column<Results>{"statistic", &Results::statistic},
    Column<Results>{"p", &Results::p},
    Column<Results>{"mlog10p", &Results::mlog10p},
    Column<Results>{"ci_lower", &Results::ci_lower},
    Column<Results>{"ci_upper", &Results::ci_upper},
    Column<Results>{"tau2", &Results::tau2},
    Column<Results>{"tau2_lower", &Results::tau2_lower},
    Column<Results>{"tau2_upper", &Results::tau2_upper},
    Column<Results>{"q", &Results::q},
    Column<Results>{"q_df", &Results::q_df},
    Column<Results>{"q_p", &Results::q_p},
    Column<Results>{"i2", &Results::i2},
    Column<Results>{"pi_lower", &Results::pi_lower},
    Column<Results>{"pi_upper", &Results::pi_upper},
    Column<Results>{"status", &Results::status},
    Column<Results>{"left_out", &Results::left_out},
};

} // namespace

py::dict PoolBlock(const Floats& effects, const Floats& variances, const py::dict& options,
                   const py::object& wanted)
{
    const ma_pool_options choice = OptionsFrom(poolOptions, options);
    const std::size_t studyCount = Length(effects, 0);
    const std::size_t setCount = ColumnCount(effects);
    py::dict arrays;
    const SetColumns<Results> results(columns, wanted, setCount, arrays);
    const ma_matrix y = AsMatrix(effects);
    const ma_matrix v = AsMatrix(variances);
    InChunks(setCount, FirstCount(studyCount), [&](std::size_t first, std::size_t count) {
        const Results rows = results.From(first);
        return ma_pool_block(From(y, first), From(v, first), studyCount, count, &choice, &rows);
    });
    return arrays;
}

py::dict PoolRagged(const Floats& effects, const Floats& variances, const Offsets& offsets,
                    const py::dict& options, const py::object& wanted)
{
    const ma_pool_options choice = OptionsFrom(poolOptions, options);
    const std::size_t setCount = static_cast<std::size_t>(offsets.size()) - 1;
    py::dict arrays;
    const SetColumns<Results> results(columns, wanted, setCount, arrays);
    const double* const y = effects.data();
    const double* const v = variances.data();
    const std::size_t* const bounds = offsets.data();
    const std::size_t meanCount = Length(effects, 0) / std::max<std::size_t>(setCount, 1);
    InChunks(setCount, FirstCount(meanCount), [&](std::size_t first, std::size_t count) {
        const Results rows = results.From(first);
        return ma_pool_ragged(y, v, bounds + first, count, &choice, &rows);
    });
    return arrays;
}

py::tuple PoolColumns()
{
    return NamesOf<Column<Results>>(columns);
}

} // namespace python_module

#include "python/core/Chunks.h"
#include "python/core/Columns.h"
#include "python/core/Functions.h"

#include <array>

namespace python_module {

namespace py = pybind11;

namespace {

using PoolResults = ma_pool_results;

constexpr std::array poolColumns{
    Column<PoolResults>{"k", &PoolResults::k},
    Column<PoolResults>{"estimate", &PoolResults::estimate},
    Column<PoolResults>{"std_error", &PoolResults::std_error},
    Column<PoolResults>{"statistic", &PoolResults::statistic},
    Column<PoolResults>{"p", &PoolResults::p},
    Column<PoolResults>{"mlog10p", &PoolResults::mlog10p},
    Column<PoolResults>{"ci_lower", &PoolResults::ci_lower},
    Column<PoolResults>{"ci_upper", &PoolResults::ci_upper},
    Column<PoolResults>{"tau2", &PoolResults::tau2},
    Column<PoolResults>{"tau2_lower", &PoolResults::tau2_lower},
    Column<PoolResults>{"tau2_upper", &PoolResults::tau2_upper},
    Column<PoolResults>{"q", &PoolResults::q},
    Column<PoolResults>{"q_df", &PoolResults::q_df},
    Column<PoolResults>{"q_p", &PoolResults::q_p},
    Column<PoolResults>{"i2", &PoolResults::i2},
    Column<PoolResults>{"pi_lower", &PoolResults::pi_lower},
    Column<PoolResults>{"pi_upper", &PoolResults::pi_upper},
    Column<PoolResults>{"status", &PoolResults::status},
    Column<PoolResults>{"left_out", &PoolResults::left_out},
};

} // namespace

py::dict PoolBlock(const Floats& effects, const Floats& variances, const py::dict& options,
                   const py::object& wanted)
{
    const ma_pool_options choice = OptionsFrom(poolOptions, options);
    const std::size_t studyCount = Length(effects, 0);
    const std::size_t setCount = ColumnCount(effects);
    py::dict arrays;
    const SetColumns<PoolResults> results(poolColumns, wanted, setCount, arrays);
    const ma_matrix y = AsMatrix(effects);
    const ma_matrix v = AsMatrix(variances);
    InChunks(setCount, FirstCount(studyCount), [&](std::size_t first, std::size_t count) {
        const PoolResults rows = results.From(first);
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
    const SetColumns<PoolResults> results(poolColumns, wanted, setCount, arrays);
    const double* const y = effects.data();
    const double* const v = variances.data();
    const std::size_t* const bounds = offsets.data();
    const std::size_t meanCount = Length(effects, 0) / std::max<std::size_t>(setCount, 1);
    InChunks(setCount, FirstCount(meanCount), [&](std::size_t first, std::size_t count) {
        const PoolResults rows = results.From(first);
        return ma_pool_ragged(y, v, bounds + first, count, &choice, &rows);
    });
    return arrays;
}

py::tuple PoolColumns()
{
    return NamesOf<Column<PoolResults>>(poolColumns);
}

} // namespace python_module

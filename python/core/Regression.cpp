#include "python/core/Chunks.h"
#include "python/core/Columns.h"
#include "python/core/Functions.h"

#include <algorithm>
#include <array>
#include <vector>

namespace python_module {

namespace py = pybind11;

namespace {

using Results = ma_regression_results;

constexpr std::array setColumns{
    Column<Results>{"k", &Results::k},
    Column<Results>{"rank", &Results::rank},
    Column<Results>{"tau2", &Results::tau2},
    Column<Results>{"tau2_lower", &Results::tau2_lower},
    Column<Results>{"tau2_upper", &Results::tau2_upper},
    Column<Results>{"q", &Results::q},
    Column<Results>{"q_df", &Results::q_df},
    Column<Results>{"q_p", &Results::q_p},
    Column<Results>{"i2", &Results::i2},
    Column<Results>{"r2", &Results::r2},
    Column<Results>{"dispersion", &Results::dispersion},
    Column<Results>{"model_statistic", &Results::model_statistic},
    Column<Results>{"model_df1", &Results::model_df1},
    Column<Results>{"model_df2", &Results::model_df2},
    Column<Results>{"model_p", &Results::model_p},
    Column<Results>{"model_mlog10p", &Results::model_mlog10p},
    Column<Results>{"status", &Results::status},
    Column<Results>{"left_out", &Results::left_out},
};

/// A result of each coefficient, or of each pair of coefficients, in each set.
struct CoefficientColumn
{
    const char* name;
    double* Results::*member;
    bool isOfPairs = false;
};

constexpr std::array coefficientColumns{
    CoefficientColumn{"coefficient", &Results::coefficient},
    CoefficientColumn{"std_error", &Results::std_error},
    CoefficientColumn{"statistic", &Results::statistic},
    CoefficientColumn{"p", &Results::p},
    CoefficientColumn{"mlog10p", &Results::mlog10p},
    CoefficientColumn{"ci_lower", &Results::ci_lower},
    CoefficientColumn{"ci_upper", &Results::ci_upper},
    CoefficientColumn{"covariance", &Results::covariance, true},
};

/// New arrays for the wanted columns, sets last. A call on some of the sets has rows as long as these are
/// many, so that it writes to memory of its own and is copied from there.
class CoefficientArrays
{
public:
    CoefficientArrays(const py::object& wanted, std::size_t coefficientCount, std::size_t setCount,
                      py::dict& arrays)
        : setCount_(setCount)
    {
        for (const CoefficientColumn& column : coefficientColumns)
            if (IsWanted(column.name, wanted)) {
                std::vector<std::size_t> shape(column.isOfPairs ? 2 : 1, coefficientCount);
                const std::size_t rowCount =
                    column.isOfPairs ? coefficientCount * coefficientCount : coefficientCount;
                shape.push_back(setCount);
                py::array_t<double> array(shape);
                targets_.push_back({column.member, array.mutable_data(), rowCount, {}});
                arrays[column.name] = array;
            }
    }

    void PointAt(Results& results, std::size_t count)
    {
        for (Target& target : targets_) {
            target.piece.resize(target.rowCount * count);
            results.*target.member = target.piece.data();
        }
    }

    void CopyFrom(std::size_t first, std::size_t count)
    {
        for (const Target& target : targets_)
            for (std::size_t row = 0; row < target.rowCount; ++row)
                std::copy_n(target.piece.data() + row * count, count,
                            target.values + row * setCount_ + first);
    }

private:
    struct Target
    {
        double* Results::*member;
        double* values;
        std::size_t rowCount;
        std::vector<double> piece;
    };

    std::size_t setCount_;
    std::vector<Target> targets_;
};

} // namespace

py::dict RegressBlock(const Floats& effects, const Floats& variances, const Floats& design,
                      const py::dict& options, const py::object& wanted)
{
    const ma_regression_options choice = OptionsFrom(regressionOptions, options);
    const std::size_t studyCount = Length(effects, 0);
    const std::size_t setCount = ColumnCount(effects);
    const std::size_t coefficientCount = Length(design, 1);
    py::dict arrays;
    CoefficientArrays coefficients(wanted, coefficientCount, setCount, arrays);
    const SetColumns<Results> results(setColumns, wanted, setCount, arrays);
    const ma_matrix y = AsMatrix(effects);
    const ma_matrix v = AsMatrix(variances);
    const ma_matrix x = AsMatrix(design);
    InChunks(setCount, FirstCount(studyCount * coefficientCount), [&](std::size_t first, std::size_t count) {
        Results rows = results.From(first);
        coefficients.PointAt(rows, count);
        const int32_t status = ma_regress_block(From(y, first), From(v, first), x, studyCount, count,
                                                coefficientCount, &choice, &rows);
        coefficients.CopyFrom(first, count);
        return status;
    });
    return arrays;
}

py::tuple RegressionColumns()
{
    const py::tuple ofCoefficients = NamesOf<CoefficientColumn>(coefficientColumns);
    return ofCoefficients + NamesOf<Column<Results>>(setColumns);
}

} // namespace python_module

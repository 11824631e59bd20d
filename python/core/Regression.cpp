#include "python/core/Chunks.h"
#include "python/core/Columns.h"
#include "python/core/Functions.h"

#include <algorithm>
#include <array>
#include <vector>

namespace python_module {

namespace py = pybind11;

namespace {

using RegressionResults = ma_regression_results;

constexpr std::array regressionColumns{
    Column<RegressionResults>{"k", &RegressionResults::k},
    Column<RegressionResults>{"rank", &RegressionResults::rank},
    Column<RegressionResults>{"tau2", &RegressionResults::tau2},
    Column<RegressionResults>{"tau2_lower", &RegressionResults::tau2_lower},
    Column<RegressionResults>{"tau2_upper", &RegressionResults::tau2_upper},
    Column<RegressionResults>{"q", &RegressionResults::q},
    Column<RegressionResults>{"q_df", &RegressionResults::q_df},
    Column<RegressionResults>{"q_p", &RegressionResults::q_p},
    Column<RegressionResults>{"i2", &RegressionResults::i2},
    Column<RegressionResults>{"r2", &RegressionResults::r2},
    Column<RegressionResults>{"dispersion", &RegressionResults::dispersion},
    Column<RegressionResults>{"model_statistic", &RegressionResults::model_statistic},
    Column<RegressionResults>{"model_df1", &RegressionResults::model_df1},
    Column<RegressionResults>{"model_df2", &RegressionResults::model_df2},
    Column<RegressionResults>{"model_p", &RegressionResults::model_p},
    Column<RegressionResults>{"model_mlog10p", &RegressionResults::model_mlog10p},
    Column<RegressionResults>{"status", &RegressionResults::status},
    Column<RegressionResults>{"left_out", &RegressionResults::left_out},
};

/// A result of each coefficient, or of each pair of coefficients, in each set.
struct CoefficientColumn
{
    const char* name;
    double* RegressionResults::*member;
    bool isOfPairs = false;
};

constexpr std::array coefficientColumns{
    CoefficientColumn{"coefficient", &RegressionResults::coefficient},
    CoefficientColumn{"std_error", &RegressionResults::std_error},
    CoefficientColumn{"statistic", &RegressionResults::statistic},
    CoefficientColumn{"p", &RegressionResults::p},
    CoefficientColumn{"mlog10p", &RegressionResults::mlog10p},
    CoefficientColumn{"ci_lower", &RegressionResults::ci_lower},
    CoefficientColumn{"ci_upper", &RegressionResults::ci_upper},
    CoefficientColumn{"covariance", &RegressionResults::covariance, true},
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

    void PointAt(RegressionResults& results, std::size_t count)
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
        double* RegressionResults::*member;
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
    const SetColumns<RegressionResults> results(regressionColumns, wanted, setCount, arrays);
    const ma_matrix y = AsMatrix(effects);
    const ma_matrix v = AsMatrix(variances);
    const ma_matrix x = AsMatrix(design);
    InChunks(setCount, FirstCount(studyCount * coefficientCount), [&](std::size_t first, std::size_t count) {
        RegressionResults rows = results.From(first);
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
    return ofCoefficients + NamesOf<Column<RegressionResults>>(regressionColumns);
}

} // namespace python_module

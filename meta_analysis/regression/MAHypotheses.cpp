#include "meta_analysis/regression/MAHypotheses.h"

#include "meta_analysis/inference/MATestPValues.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace MA_NAMESPACE {

namespace {

using Values = std::vector<double>;

/// Rows made orthonormal one after another, each with a value that undergoes the same combinations: row'b =
/// value keeps its meaning. Gram-Schmidt is applied twice, after which rounding leaves no dependence.
class OrthonormalRows
{
public:
    enum class Outcome
    {
        INDEPENDENT,
        DEPENDENT,    ///< on the rows before it, and so is its value
        CONTRADICTING ///< its value is another one
    };

    /// `smallest` is the part of its length that an independent row has beside the others.
    Outcome Add(Values row, double value, double smallest);

    int Count() const { return static_cast<int>(rows_.size()); }
    /// y'(AA')⁻¹y of the independent rows A and their values y.
    double SumOfSquares() const { return Dot(values_.data(), values_.data(), values_.size()); }

private:
    std::vector<Values> rows_;
    Values values_;
};

double LargestOf(const Values& row)
{
    double largest = 0.0;
    for (const double element : row)
        largest = std::max(largest, std::abs(element));
    return largest;
}

void Divide(Values& row, double divisor)
{
    for (double& element : row)
        element /= divisor;
}

/// Elements are taken relative to the largest, so that no square overflows.
double LengthOf(Values row)
{
    const double largest = LargestOf(row);
    if (largest == 0.0)
        return 0.0;
    Divide(row, largest);
    return largest * std::sqrt(Dot(row.data(), row.data(), row.size()));
}

/// The row is first divided by its largest element, as the lengths of rows may differ without limit.
OrthonormalRows::Outcome OrthonormalRows::Add(Values row, double value, double smallest)
{
    const double largest = LargestOf(row);
    Divide(row, largest);
    value /= largest;
    const double length = LengthOf(row);
    double size = std::abs(value);
    for (int pass = 0; pass < 2; ++pass) {
        for (std::size_t j = 0; j < rows_.size(); ++j) {
            const double share = Dot(rows_[j].data(), row.data(), row.size());
            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] -= share * rows_[j][i];
            value -= share * values_[j];
            size += std::abs(share * values_[j]);
        }
    }
    const double left = LengthOf(row);
    if (!(left > smallest * length)) {
        // Values that follow from decimal fractions agree to a few roundings.
        constexpr double agreement = 1e-12;
        return std::abs(value) <= agreement * size ? Outcome::DEPENDENT : Outcome::CONTRADICTING;
    }
    Divide(row, left);
    rows_.push_back(std::move(row));
    values_.push_back(value / left);
    return Outcome::INDEPENDENT;
}

/// A chi-square over the scale, or an F; missing without a row or a scale.
MAModelTest JointTest(const OrthonormalRows& roots, double scale, int residualDf, bool isF)
{
    MAModelTest test;
    test.df1 = roots.Count();
    test.df2 = isF ? residualDf : 0;
    if (test.df1 == 0 || !(scale > 0.0)) // a missing scale is negative
        return test;
    test.statistic = roots.SumOfSquares() / scale;
    if (!isF) {
        test.pValue = ChiSquarePValue(test.statistic, test.df1);
        return test;
    }
    test.statistic /= test.df1;
    if (test.df2 != 0)
        test.pValue = FPValue(test.statistic, test.df1, test.df2);
    return test;
}

bool IsNumber(double value)
{
    return std::isfinite(value) && !KXMV::IsMissing(value);
}

bool IsUsableRow(const Values& row, std::size_t parameterCount)
{
    return row.size() == parameterCount && std::all_of(row.begin(), row.end(), IsNumber) &&
           std::any_of(row.begin(), row.end(), [](double weight) { return weight != 0.0; });
}

/// The values r, one a row; empty when their number is another.
Values ValuesOfRows(const MARegSettings& settings)
{
    const std::size_t count = settings.GetHypothesisRows().size();
    const Values& given = settings.GetHypothesisValues();
    if (given.empty())
        return Values(count);
    return given.size() == count && std::all_of(given.begin(), given.end(), IsNumber) ? given : Values();
}

bool AreUsable(const MARegFit& fit, const Values& values)
{
    const std::vector<Values>& rows = fit.Design().GetSettings().GetHypothesisRows();
    return values.size() == rows.size() && std::all_of(rows.begin(), rows.end(), [&](const Values& row) {
               return IsUsableRow(row, fit.Coefficients().size());
           });
}

bool HasRedundantWeight(const Values& row, const KXBitSet& nonRedundant)
{
    for (std::size_t j = 0; j < row.size(); ++j)
        if (row[j] != 0.0 && !nonRedundant.Test(j))
            return true;
    return false;
}

/// Appends the test of one hypothesis.
void TestOne(const MARegFit::Combination& combined, double value, const MARegFit& fit, double scale,
             bool useStudentT, MAHypothesisTests& tests)
{
    double stdError = KXMV::Missing();
    double statistic = KXMV::Missing();
    MAPValue pValue;
    if (!KXMV::IsMissing(scale))
        stdError = std::sqrt(scale) * LengthOf(combined.root);
    if (stdError > 0.0) { // 0 for an exact fit under Knapp and Hartung
        statistic = (combined.value - value) / stdError;
        if (!useStudentT)
            pValue = TwoSidedNormalPValue(statistic);
        else if (fit.ResidualDf() != 0)
            pValue = TwoSidedTPValue(statistic, fit.ResidualDf());
    }
    tests.estimates.push_back(combined.value);
    tests.stdErrors.push_back(stdError);
    tests.statistics.push_back(statistic);
    tests.pValues.push_back(pValue);
}

} // namespace

/// The rank of L is judged on L itself, so that it does not depend on the data; the statistic is formed from
/// the independent rows.
MATestedHypotheses TestHypotheses(const MARegFit& fit, double scale, bool useStudentT)
{
    const MARegSettings& settings = fit.Design().GetSettings();
    const std::vector<Values>& rows = settings.GetHypothesisRows();
    const Values values = ValuesOfRows(settings);
    if (!AreUsable(fit, values))
        return {KXStatus(MAStatusCode::HYPOTHESIS_UNUSABLE), {}};
    // A row that others determine keeps this part of its length at most.
    constexpr double rounding = 64.0 * std::numeric_limits<double>::epsilon();
    MAHypothesisTests tests;
    OrthonormalRows independent;
    OrthonormalRows roots;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (HasRedundantWeight(rows[i], fit.NonRedundant()))
            return {KXStatus(MAStatusCode::HYPOTHESIS_ON_REDUNDANT), {}};
        const OrthonormalRows::Outcome outcome = independent.Add(rows[i], values[i], rounding);
        if (outcome == OrthonormalRows::Outcome::CONTRADICTING)
            return {KXStatus(MAStatusCode::HYPOTHESES_CONTRADICT), {}};
        const MARegFit::Combination combined = fit.Combine(rows[i]);
        TestOne(combined, values[i], fit, scale, useStudentT, tests);
        if (outcome == OrthonormalRows::Outcome::INDEPENDENT)
            roots.Add(combined.root, combined.value - values[i], 0.0);
    }
    tests.joint = JointTest(roots, scale, fit.ResidualDf(), useStudentT && !rows.empty());
    return {KXStatus(), std::move(tests)};
}

std::vector<MAModelTest> TestEffects(const MARegFit& fit, double scale, bool isF)
{
    std::vector<MAModelTest> tests;
    for (const MADesignMatrixEffect& effect : fit.Design().GetEffects()) {
        OrthonormalRows roots;
        const auto start = static_cast<std::size_t>(effect.GetStart());
        for (std::size_t j = start; j < start + static_cast<std::size_t>(effect.GetSize()); ++j) {
            if (!fit.NonRedundant().Test(j))
                continue;
            Values row(fit.Coefficients().size());
            row[j] = 1.0;
            MARegFit::Combination combined = fit.Combine(row);
            roots.Add(std::move(combined.root), combined.value, 0.0);
        }
        tests.push_back(JointTest(roots, scale, fit.ResidualDf(), isF));
    }
    return tests;
}

} // namespace MA_NAMESPACE

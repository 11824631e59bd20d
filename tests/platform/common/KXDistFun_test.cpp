#include "support/Compare.h"
#include "support/Data.h"

#include "meta_analysis/platform/common/KXDistFun.h"

#include <cfloat>
#include <fstream>

namespace {

struct ReferenceValue
{
    std::string line; ///< of the file
    std::string function;
    double first, second, third; ///< arguments
    double value;
};

/// Of the last column, which is never empty.
std::vector<ReferenceValue> ReferenceFile(const std::string& name = "distributions")
{
    std::ifstream file(TESTS_DIR "/reference/" + name + ".csv");
    std::vector<ReferenceValue> rows;
    std::string line;
    std::getline(file, line); // the header
    while (std::getline(file, line)) {
        const std::vector<std::string> fields = SplitLine(line);
        const auto number = [&](std::size_t i) { return std::strtod(fields.at(i).c_str(), nullptr); };
        rows.push_back({line, fields[0], number(1), number(2), number(3), number(fields.size() - 1)});
    }
    return rows;
}

double Evaluate(const ReferenceValue& row)
{
    using D = KXDistFun;
    const auto& [line, name, x, a, b, value] = row;
    return name == "CdfStdNorm"    ? D::CdfStdNorm(x)
           : name == "IdfStdNorm"  ? D::IdfStdNorm(x)
           : name == "CdfChi"      ? D::CdfChi(x, a)
           : name == "IdfChi"      ? D::IdfChi(x, a)
           : name == "IdfChiUpper" ? D::IdfChiUpper(x, a)
           : name == "CdfT"        ? D::CdfT(x, a)
           : name == "IdfT"        ? D::IdfT(x, a)
                                   : D::CdfF(x, a, b);
}

// A small probability is essentially exp of a number that is rounded on the way: a unit in its last place is
// |log p| units of p. Far from the centre that number is the difference of two up to five times its size.
// Besides, the functions do a few dozen roundings; P(T > t) is taken from 1/2 as long as it exceeds 1/140,
// which magnifies them by up to 70.
double ProbabilityTolerance(double probability, double roundings)
{
    return machineEpsilon * (roundings - 5.0 * std::log(std::max(probability, DBL_MIN)));
}

double Tolerance(const ReferenceValue& row)
{
    if (row.function == "CdfStdNorm")
        return 4.0 * machineEpsilon; // erfc, and the rounding of its argument taken out
    if (row.function == "IdfStdNorm")
        return 1e-15;
    if (row.function == "IdfT")
        return 1e-12; // what the default argument asks for
    if (row.function.starts_with("IdfChi"))
        return 1e-13; // the lower tail divides the error of log p by df / 2
    return ProbabilityTolerance(row.value, row.function == "CdfT" ? 200.0 : 50.0);
}

} // namespace

TEST(KXDistFun, AgreesWithReference)
{
    const std::vector<ReferenceValue> rows = ReferenceFile();
    ASSERT_EQ(rows.size(), 404u);
    for (const ReferenceValue& row : rows) {
        if (row.value != 0.0 && std::abs(row.value) < DBL_MIN)
            continue; // too few digits left to compare
        EXPECT_TRUE(Close(Evaluate(row), row.value, Tolerance(row))) << row.line;
    }
}

// A tail's relative error is the absolute one of its logarithm.
TEST(KXDistFun, TailsAndTheirLogarithmsAgreeWithReference)
{
    using D = KXDistFun;
    const std::vector<ReferenceValue> rows = ReferenceFile("tails");
    ASSERT_EQ(rows.size(), 66u);
    for (const auto& [line, distribution, x, df1, df2, log10Tail] : rows) {
        const auto [tail, logarithm] =
            distribution == "StdNorm" ? std::pair(D::TailStdNorm(x), D::Log10TailStdNorm(x))
            : distribution == "Chi"   ? std::pair(D::TailChi(x, df1), D::Log10TailChi(x, df1))
            : distribution == "T"     ? std::pair(D::TailT(x, df1), D::Log10TailT(x, df1))
                                      : std::pair(D::TailF(x, df1, df2), D::Log10TailF(x, df1, df2));
        EXPECT_TRUE(Close(logarithm, log10Tail, 2e-14)) << line;
        const std::string printed = SplitLine(line).at(4);
        if (!printed.empty()) {
            EXPECT_TRUE(Close(tail, std::strtod(printed.c_str(), nullptr), 1e-12)) << line;
        }
    }
}

TEST(KXDistFun, QuantileOfTHasTheAccuracyAskedFor)
{
    for (const ReferenceValue& row : ReferenceFile()) {
        if (row.function != "IdfT")
            continue;
        for (const double accuracy : {1e-2, 1e-6, 0.0, -1.0}) {
            const double t = KXDistFun::IdfT(row.first, row.second, 0.0, accuracy);
            EXPECT_TRUE(Close(t, row.value, std::max(accuracy, 50.0 * machineEpsilon)))
                << row.line << accuracy;
        }
    }
}

// The distribution function of a quantile. An error e of t is one of t f(t) / P of the probability in the
// smaller tail, and that quotient is at most df and at most 2 + 2 |log P|.
TEST(KXDistFun, QuantileOfTInvertsTheDistributionFunction)
{
    for (const double df : {0.07, 0.4, 1.0, 1.9, 2.0, 2.7, 5.5, 14.0, 63.3, 400.0, 2e4, 1e6, 3e9}) {
        for (const double tail : {0.4999999, 0.47, 0.3, 0.12, 0.025, 1e-3, 1e-6, 1e-10, 1e-20}) {
            SCOPED_TRACE(testing::Message() << tail << ' ' << df);
            const double tolerance = 1e-12 * (2.0 - 2.0 * std::log(tail)) + ProbabilityTolerance(tail, 200.0);
            EXPECT_TRUE(Close(KXDistFun::CdfT(KXDistFun::IdfT(tail, df), df), tail, tolerance));
            const double p = 1.0 - tail;
            EXPECT_EQ(KXDistFun::IdfT(p, df), -KXDistFun::IdfT(1.0 - p, df));
        }
    }
}

TEST(KXDistFun, ProbabilitiesKeepWithinTheirBounds)
{
    const std::vector<double> values = {5e-324, 1e-160, 1e-9, 0.3, 1.0, 5.0, 80.0, 1e4, 1e12, 1.7e308};
    const auto isWithin = [](double value, double lower) { return value >= lower && value <= 1.0; };
    for (const double x : values) {
        for (const double df : values) {
            SCOPED_TRACE(testing::Message() << x << ' ' << df);
            EXPECT_TRUE(isWithin(KXDistFun::CdfChi(x, df), 0.0));
            EXPECT_TRUE(isWithin(KXDistFun::CdfT(x, df), 0.5));
            EXPECT_LE(KXDistFun::Log10TailChi(x, df), 0.0);
            EXPECT_LE(KXDistFun::Log10TailT(x, df), 0.0);
            for (const double df2 : values) {
                EXPECT_TRUE(isWithin(KXDistFun::CdfF(x, df, df2), 0.0)) << df2;
                EXPECT_LE(KXDistFun::Log10TailF(x, df, df2), 0.0) << df2;
            }
        }
    }
}

TEST(KXDistFun, HasLimitsAndNoNumberOutsideTheDomain)
{
    using D = KXDistFun;
    const std::pair<double, Row> cases[] = {
        {0.0,
         {D::CdfStdNorm(-infinity), D::CdfChi(3.0, infinity), D::CdfT(-infinity, 3.0), D::CdfF(0.0, 3.0, 4.0),
          D::CdfF(0.99, infinity, infinity), D::IdfT(0.5, 3.0), D::TailChi(infinity, 3.0),
          D::Log10TailChi(-1.0, 3.0), D::Log10TailT(-infinity, 3.0), D::IdfChi(0.0, 3.0),
          D::IdfChi(1e-300, 0.5)}},
        {1.0, {D::CdfT(infinity, 3.0), D::CdfF(infinity, 3.0, 4.0), D::CdfF(1.01, infinity, infinity)}},
        {infinity, {D::IdfStdNorm(1.0), D::IdfChi(1.0, 3.0), D::IdfChiUpper(0.2, infinity)}},
        {-infinity,
         {D::IdfStdNorm(0.0), D::IdfT(0.0, 3.0), D::IdfT(1e-10, 0.01), // about -1e1000
          D::Log10TailStdNorm(infinity), D::Log10TailT(infinity, 3.0), D::Log10TailF(infinity, 3.0, 4.0)}},
        {D::CdfStdNorm(-1.3), {D::CdfT(-1.3, infinity)}},
        {D::IdfStdNorm(0.2), {D::IdfT(0.2, infinity)}},
        {3.0 + 2.0 * D::IdfStdNorm(0.975), {D::IdfNorm(0.975, 3.0, 2.0)}},
        {notANumber,
         {D::CdfStdNorm(notANumber), D::IdfStdNorm(-1e-300), D::IdfNorm(0.5, 3.0, 0.0), D::CdfChi(3.0, 0.0),
          D::CdfT(1.0, -2.0), D::IdfT(1.5, 3.0), D::IdfT(0.2, 3.0, notANumber), D::IdfChi(-0.1, 3.0),
          D::CdfF(1.0, 0.0, 4.0), D::CdfF(notANumber, 3.0, 4.0), D::Log10TailChi(1e200, -1.0)}},
    };
    for (const auto& [expected, values] : cases)
        EXPECT_TRUE(Same(values, Row(values.size(), expected))) << "of " << expected;
}

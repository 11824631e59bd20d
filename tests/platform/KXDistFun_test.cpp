#include "support/Compare.h"

#include "meta_analysis/platform/common/KXDistFun.h"

#include <array>
#include <cfloat>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

struct ReferenceValue
{
    std::string function;
    std::array<double, 3> arguments;
    double value;
};

void PrintTo(const ReferenceValue& row, std::ostream* out)
{
    const auto [first, second, third] = row.arguments;
    *out << row.function << '(' << first << ", " << second << ", " << third << ')';
}

std::vector<ReferenceValue> ReferenceFile()
{
    std::ifstream file(TESTS_DIR "/reference/distributions.csv");
    std::vector<ReferenceValue> rows;
    std::string line;
    std::getline(file, line); // the header
    while (std::getline(file, line)) {
        std::istringstream fields(line);
        std::array<std::string, 5> field;
        for (std::string& text : field)
            std::getline(fields, text, ',');
        const auto number = [&](std::size_t i) { return std::strtod(field[i].c_str(), nullptr); };
        rows.push_back({field[0], {number(1), number(2), number(3)}, number(4)});
    }
    return rows;
}

// What the file leaves out: large degrees of freedom in every function, parts of whole ones, both sides of
// the switch of CdfT at t^2 = 6, and the far tails. Computed with 60-digit arithmetic.
const std::vector<ReferenceValue> furtherValues = {
    {"CdfChi", {0.5, 0.1}, 0.94770882017331865963},
    {"CdfChi", {3.7, 2.5}, 0.77669914967530735308},
    {"CdfChi", {1e-12, 0.25}, 0.030792077290037399845},
    {"CdfChi", {95.0, 40.7}, 0.99999687523168277923},
    {"CdfChi", {1990.0, 2005.0}, 0.41023768227979806402},
    {"CdfChi", {2210.0, 2005.0}, 0.99916542985052082602},
    {"CdfChi", {1700.0, 2500.0}, 7.9238810003160094945e-38},
    {"CdfChi", {1000500.0, 1000000.0}, 0.6383177682896956337},
    {"CdfChi", {997000.0, 1000000.0}, 0.016878021126839673782},
    {"CdfT", {-2.4, 18.5}, 0.013553531772806506158},
    {"CdfT", {-50.0, 3.0}, 8.808576020635987078e-6},
    {"CdfT", {-1e200, 0.5}, 3.2070097541422290519e-101},
    {"CdfT", {-0.2, 0.3}, 0.45538038240422798917},
    {"CdfT", {-37.0, 1e8}, 5.7524998884114574917e-300},
    {"CdfT", {-2.4494897, 300.5}, 0.00743829426259903598},
    {"CdfT", {-2.45, 300.5}, 0.0074279721759759802407},
    {"CdfF", {1.01, 3000.0, 5000.0}, 0.62076605349509358664},
    {"CdfF", {0.9, 3000.0, 5000.0}, 0.00066766161493245997981},
    {"CdfF", {0.998, 1e6, 1e6}, 0.15841316210047910131},
    {"CdfF", {4.0, 2.5, 7.3}, 0.93851587086644043453},
    {"CdfF", {1e-5, 0.3, 12.0}, 0.14184428679561647202},
    {"CdfF", {30.0, 1.0, 1e6}, 0.99999995678500777746},
    {"CdfF", {0.5, 1e6, 3.0}, 0.11161095487666178119},
    {"CdfF", {7.0, 1.5, 0.25}, 0.4095664968804077828},
};

double Evaluate(const ReferenceValue& row)
{
    const auto [first, second, third] = row.arguments;
    if (row.function == "CdfStdNorm")
        return KXDistFun::CdfStdNorm(first);
    if (row.function == "IdfStdNorm")
        return KXDistFun::IdfStdNorm(first);
    if (row.function == "CdfChi")
        return KXDistFun::CdfChi(first, second);
    if (row.function == "CdfT")
        return KXDistFun::CdfT(first, second);
    if (row.function == "IdfT")
        return KXDistFun::IdfT(first, second);
    return row.function == "CdfF" ? KXDistFun::CdfF(first, second, third) : notANumber;
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
    return ProbabilityTolerance(row.value, row.function == "CdfT" ? 200.0 : 50.0);
}

} // namespace

TEST(KXDistFun, AgreesWithReference)
{
    std::vector<ReferenceValue> rows = ReferenceFile();
    ASSERT_EQ(rows.size(), 351u);
    rows.insert(rows.end(), furtherValues.begin(), furtherValues.end());
    for (const ReferenceValue& row : rows) {
        if (row.value != 0.0 && std::abs(row.value) < DBL_MIN)
            continue; // too few digits left to compare
        EXPECT_TRUE(Close(Evaluate(row), row.value, Tolerance(row))) << testing::PrintToString(row);
    }
}

TEST(KXDistFun, QuantileOfTHoldsTheAccuracyAskedFor)
{
    for (const ReferenceValue& row : ReferenceFile()) {
        if (row.function != "IdfT")
            continue;
        const auto [p, df, unused] = row.arguments;
        for (const double accuracy : {1e-2, 1e-6, 0.0, -1.0}) {
            EXPECT_TRUE(Close(KXDistFun::IdfT(p, df, 0.0, accuracy), row.value,
                              std::max(accuracy, 50.0 * machineEpsilon)))
                << testing::PrintToString(row) << " to " << accuracy;
        }
        EXPECT_NEAR(KXDistFun::IdfT(p, df, 1e-3, 0.0), row.value, 1e-3) << testing::PrintToString(row);
    }
}

// The distribution function of a quantile. An error e of t is one of t f(t) / P of the probability in the
// smaller tail, and that quotient is at most df and at most 2 + 2 |log P|.
TEST(KXDistFun, QuantileOfTInvertsTheDistributionFunction)
{
    for (const double df : {0.07, 0.4, 1.0, 1.9, 2.0, 2.7, 5.5, 14.0, 63.3, 400.0, 2e4, 1e6, 3e9}) {
        for (const double tail : {0.4999999, 0.47, 0.3, 0.12, 0.025, 1e-3, 1e-6, 1e-10, 1e-20}) {
            const double logTail = std::abs(std::log(tail));
            const double t = KXDistFun::IdfT(tail, df);
            EXPECT_TRUE(Close(KXDistFun::CdfT(t, df), tail,
                              1e-12 * (2.0 + 2.0 * logTail) + ProbabilityTolerance(tail, 200.0)))
                << tail << ' ' << df;
            const double p = 1.0 - tail;
            EXPECT_EQ(KXDistFun::IdfT(p, df), -KXDistFun::IdfT(1.0 - p, df)) << p << ' ' << df;
        }
    }
}

// Each pair is computed along different ways.
TEST(KXDistFun, DistributionsAgreeWhereTheyCoincide)
{
    for (const double t : {0.03, 0.5, 1.0, 1.6, 2.3, 2.5, 6.0, 30.0}) {
        for (const double df : {0.3, 1.0, 4.0, 9.5, 77.0, 2500.0, 1e7}) {
            const double tail = 2.0 * KXDistFun::CdfT(-t, df);
            EXPECT_TRUE(Close(KXDistFun::CdfF(1.0 / (t * t), df, 1.0), tail,
                              ProbabilityTolerance(tail, 250.0 + t * t)))
                << t << ' ' << df;
        }
        EXPECT_EQ(KXDistFun::CdfT(-t, infinity), KXDistFun::CdfStdNorm(-t));
        EXPECT_TRUE(
            Close(KXDistFun::CdfChi(t * t, 1.0), std::erf(t / std::sqrt(2.0)), 50.0 * machineEpsilon));
        for (const double df : {0.3, 3.0, 50.0, 4000.0}) {
            const double f = 1.0 + (t - 1.0) / std::sqrt(df);
            const double chi = KXDistFun::CdfChi(df * f, df);
            EXPECT_TRUE(Close(KXDistFun::CdfF(f, df, infinity), chi, ProbabilityTolerance(chi, 200.0)));
        }
    }
}

TEST(KXDistFun, ProbabilitiesKeepWithinTheirBounds)
{
    const std::vector<double> values = {5e-324, 1e-160, 1e-9, 0.3, 1.0, 5.0, 80.0, 1e4, 1e12, 1.7e308};
    for (const double x : values) {
        for (const double df : values) {
            for (const double df2 : values) {
                const double f = KXDistFun::CdfF(x, df, df2);
                EXPECT_TRUE(f >= 0.0 && f <= 1.0) << f << " at " << x << ' ' << df << ' ' << df2;
            }
            const double chi = KXDistFun::CdfChi(x, df);
            EXPECT_TRUE(chi >= 0.0 && chi <= 1.0) << chi << " at " << x << ' ' << df;
            const double t = KXDistFun::CdfT(x, df);
            EXPECT_TRUE(t >= 0.5 && t <= 1.0) << t << " at " << x << ' ' << df;
        }
    }
}

TEST(KXDistFun, LimitsAndDomain)
{
    const struct
    {
        double actual;
        double expected;
    } cases[] = {
        {KXDistFun::CdfStdNorm(-infinity), 0.0},
        {KXDistFun::CdfStdNorm(notANumber), notANumber},
        {KXDistFun::IdfStdNorm(0.0), -infinity},
        {KXDistFun::IdfStdNorm(1.0), infinity},
        {KXDistFun::IdfStdNorm(-1e-300), notANumber},
        {KXDistFun::IdfNorm(0.5, 3.0, 2.0), 3.0},
        {KXDistFun::IdfNorm(0.975, 3.0, 2.0), 3.0 + 2.0 * KXDistFun::IdfStdNorm(0.975)},
        {KXDistFun::IdfNorm(0.5, 3.0, 0.0), notANumber},
        {KXDistFun::CdfChi(infinity, 3.0), 1.0},
        {KXDistFun::CdfChi(3.0, infinity), 0.0},
        {KXDistFun::CdfChi(3.0, 0.0), notANumber},
        {KXDistFun::CdfChi(notANumber, 3.0), notANumber},
        {KXDistFun::CdfT(0.0, 3.0), 0.5},
        {KXDistFun::CdfT(-infinity, 3.0), 0.0},
        {KXDistFun::CdfT(infinity, 3.0), 1.0},
        {KXDistFun::CdfT(1.0, -2.0), notANumber},
        {KXDistFun::CdfT(notANumber, 3.0), notANumber},
        {KXDistFun::IdfT(0.0, 3.0), -infinity},
        {KXDistFun::IdfT(0.5, 3.0), 0.0},
        {KXDistFun::IdfT(0.2, infinity), KXDistFun::IdfStdNorm(0.2)},
        {KXDistFun::IdfT(1e-10, 0.01), -infinity}, // about -1e1000
        {KXDistFun::IdfT(1.5, 3.0), notANumber},
        {KXDistFun::IdfT(0.2, 0.0), notANumber},
        {KXDistFun::IdfT(0.2, 3.0, notANumber), notANumber},
        {KXDistFun::IdfT(0.2, 3.0, 1e-20, notANumber), notANumber},
        {KXDistFun::CdfF(0.0, 3.0, 4.0), 0.0},
        {KXDistFun::CdfF(infinity, 3.0, 4.0), 1.0},
        {KXDistFun::CdfF(0.99, infinity, infinity), 0.0},
        {KXDistFun::CdfF(1.01, infinity, infinity), 1.0},
        {KXDistFun::CdfF(1.0, 0.0, 4.0), notANumber},
        {KXDistFun::CdfF(notANumber, 3.0, 4.0), notANumber},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_TRUE(Same(cases[i].actual, cases[i].expected)) << "case " << i;
}

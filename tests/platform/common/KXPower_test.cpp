#include "support/Compare.h"

#include "meta_analysis/platform/common/KXPower.h"

namespace {

constexpr double largest = std::numeric_limits<double>::max();
constexpr double untouched = 12345.0; // the target before the call, and after one that failed

KXStatus Exponent(double x, double, double& out)
{
    return KXPower::Exponent(x, out);
}

struct Case
{
    KXStatus (*operation)(double, double, double&);
    double left;
    double right;
    double expected; ///< `untouched` for a result that cannot be represented
};

const Case cases[] = {
    {Exponent, 0, 0, 1},
    {Exponent, -infinity, 0, 0},
    {Exponent, -746, 0, 0}, // below the smallest subnormal number
    {Exponent, 710, 0, untouched},
    {Exponent, infinity, 0, untouched},
    {Exponent, notANumber, 0, notANumber},
    {Exponent, missing, 0, missing},
    {KXPower::Power, -2, 3, -8},
    {KXPower::Power, -8, 1.0 / 3, untouched}, // no real result
    {KXPower::Power, 0, -1, untouched},
    {KXPower::Power, 10, 309, untouched},
    {KXPower::Power, 10, -400, 0},
    {KXPower::Power, infinity, 2, infinity},
    {KXPower::Power, notANumber, 0, notANumber},
    {KXPower::Power, 1, notANumber, notANumber},
    {KXPower::Power, missing, 0, missing},
    {KXPower::Power, notANumber, missing, missing},
    {KXPower::Multiply, 3, -4, -12},
    {KXPower::Multiply, largest, 2, untouched},
    {KXPower::Multiply, largest / 2, -2, untouched}, // would read as missing
    {KXPower::Multiply, infinity, -1, -infinity},
    {KXPower::Multiply, infinity, 0, notANumber},
    {KXPower::Multiply, missing, 0, missing},
};

} // namespace

TEST(KXPower, MissingUndefinedAndUnrepresentableValues)
{
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::Message() << "row " << &row - cases << ": " << row.left << ", " << row.right);
        double result = untouched;
        const KXStatus status = row.operation(row.left, row.right, result);
        EXPECT_EQ(status, row.expected == untouched ? KXStatus(KXPower::OVERFLOW_CODE) : KXStatus());
        EXPECT_TRUE(Same(result, row.expected));
    }
}

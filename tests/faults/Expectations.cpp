#include "faults/Expectations.h"

#include "support/Compare.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <stdexcept>

using namespace MA_NAMESPACE;

namespace {

/// A lower bound for an upper one, and the reverse; other names as they are.
std::string OppositeOf(std::string name)
{
    for (const auto& [end, opposite] : {std::pair("Lower", "Upper"), std::pair("Upper", "Lower")}) {
        if (name.ends_with(end))
            return name.substr(0, name.size() - 5) + opposite;
    }
    return name;
}

std::vector<double> Scaled(std::vector<double> values, double factor)
{
    for (double& value : values)
        value *= KXMV::IsMissing(value) ? 1.0 : factor;
    return values;
}

bool IsNumber(double value)
{
    return std::isfinite(value) && !KXMV::IsMissing(value);
}

} // namespace

void ExpectKnownStatus(const KXStatus& status)
{
    const int code = status.GetCode();
    const bool isKnown = code >= MAStatusCode::LENGTH_MISMATCH && code <= MAStatusCode::TOO_FEW_CLUSTERS;
    EXPECT_TRUE(!status.IsError() || isKnown) << code;
}

const std::vector<std::vector<double>>& Expectations::Rows(const std::string& name) const
{
    const auto found = std::find_if(results.begin(), results.end(),
                                    [&](const Result& result) { return result.name == name; });
    if (found == results.end())
        throw std::invalid_argument("no result " + name);
    return found->rows;
}

std::vector<double> Expectations::Values(const std::string& name) const
{
    std::vector<double> values;
    for (const std::vector<double>& row : Rows(name))
        values.insert(values.end(), row.begin(), row.end());
    return values;
}

void Expectations::Numbers(const Names& except) const
{
    for (const Result& result : results) {
        if (std::find(except.begin(), except.end(), result.name) != except.end())
            continue;
        const bool mayBeInfinite = result.name.ends_with("ZVal") || result.name.ends_with("Zval") ||
                                   result.name.find("Log10") != std::string::npos; // of an exact fit
        for (const double value : Values(result.name))
            EXPECT_TRUE(mayBeInfinite ? !std::isnan(value) : std::isfinite(value)) << result.name;
    }
}

void Expectations::SameShape(const Names& names) const
{
    const auto& first = Rows(names.front());
    for (const std::string& name : names) {
        const auto& rows = Rows(name);
        EXPECT_TRUE(std::equal(rows.begin(), rows.end(), first.begin(), first.end(),
                               [](const auto& a, const auto& b) { return a.size() == b.size(); }))
            << name << " has the rows of " << names.front();
    }
}

void Expectations::Between(const Names& names, double least, double most) const
{
    for (const std::string& name : names) {
        for (const double value : Values(name))
            EXPECT_FALSE(!KXMV::IsMissing(value) && (value < least || value > most))
                << name << " is " << value;
    }
}

void Expectations::Significances() const
{
    for (const Result& result : results) {
        const auto endsWith = [&](const char* ending) { return result.name.ends_with(ending); };
        if (endsWith("Log10Sig") || endsWith("Log10PValue"))
            Between({result.name}, -infinity, 0.0);
        else if (endsWith("Sig") || endsWith("PValue"))
            Between({result.name}, 0.0, 1.0);
        else if (endsWith("StdError") || endsWith("StdErr") || endsWith("StandErr"))
            Between({result.name}, 0.0, infinity);
    }
}

void Expectations::Logarithms(const std::string& pValues, const std::string& logarithms) const
{
    SameShape({pValues, logarithms});
    const std::vector<double> expected = Values(pValues);
    const std::vector<double> values = Values(logarithms);
    for (std::size_t i = 0; i < std::min(expected.size(), values.size()); ++i) {
        const double p = expected[i];
        const bool agree = KXMV::IsMissing(p) ? KXMV::IsMissing(values[i])
                           : p > 1e-300       ? Close(values[i], std::log10(p), 1e-12)
                                              : !(values[i] > -300.0);
        EXPECT_TRUE(agree || std::isnan(p)) << logarithms;
    }
}

void Expectations::Repeated(const Results& second, Results withMissing, const std::string& count) const
{
    EXPECT_EQ(FirstDifference(results, second), "") << "differs in a second run";
    for (Result& result : withMissing) {
        if (result.name == count)
            result.rows[0][0] = std::min(result.rows[0][0], Values(count).at(0));
        if (result.name == "GetExcludedRecord" || result.name == "GetExclusionReason")
            result.rows[0].resize(std::min(result.rows[0].size(), Values(result.name).size()));
    }
    EXPECT_EQ(FirstDifference(results, withMissing), "") << "differs with a record without values";
}

void Expectations::Ordered(const std::string& lower, const std::string& middle,
                           const std::string& upper) const
{
    const std::vector<double> least = Values(lower);
    const std::vector<double> values = Values(middle);
    const std::vector<double> most = Values(upper);
    ASSERT_TRUE(least.size() == values.size() && most.size() == values.size()) << middle;
    if (!(level > 0.0 && level < 1.0))
        return;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (IsNumber(values[i]) && IsNumber(least[i]) && IsNumber(most[i])) {
            EXPECT_TRUE(least[i] <= values[i] && values[i] <= most[i])
                << std::setprecision(17) << middle << ": " << least[i] << ' ' << values[i] << ' ' << most[i];
        }
    }
}

void Expectations::Followed(const Change& change, std::span<const Trait> traits, const Results& after) const
{
    const Expectations changed = {after, level};
    for (const Trait& trait : traits) {
        const bool isNegated = change.isNegation && trait.sign < 0;
        const double factor = std::pow(change.unit, trait.degree) * (isNegated ? -1 : 1);
        for (const std::string& name : trait.names) {
            const std::vector<double> actual = changed.Values(isNegated ? OppositeOf(name) : name);
            EXPECT_TRUE(Close(actual, Scaled(Values(name), factor), change.tolerance, 1.0))
                << name << " after " << change.name;
        }
    }
}

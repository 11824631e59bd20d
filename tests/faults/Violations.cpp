#include "faults/Violations.h"

#include "support/Compare.h"

#include "meta_analysis/settings/MAStatusCode.h"

#include <iomanip>
#include <sstream>
#include <stdexcept>

using namespace MA_NAMESPACE;

namespace {

constexpr int errors[] = {MAStatusCode::LENGTH_MISMATCH,      MAStatusCode::PARAMETER_COUNT_MISMATCH,
                          MAStatusCode::INPUT_NOT_GIVEN,      MAStatusCode::TOO_MANY_NONREDUNDANT,
                          MAStatusCode::ITERATOR_NOT_STARTED, MAStatusCode::ITERATOR_FAILED,
                          MAStatusCode::TOO_FEW_ROWS,         MAStatusCode::TEST_DEPENDENT_REFUSED,
                          MAStatusCode::TEST_TYPE_UNDEFINED,  MAStatusCode::TEST_COVARIATE_REFUSED,
                          MAStatusCode::TEST_WITHOUT_OUTPUT,  MAStatusCode::RECORD_NOT_RESIZED,
                          MAStatusCode::TOO_FEW_FOR_TEST,     MAStatusCode::ONE_USABLE_STUDY,
                          MAStatusCode::TAU2_FAILED,          MAStatusCode::NO_USABLE_STUDY,
                          MAStatusCode::NO_ANALYSED_STUDY,    MAStatusCode::OUT_OF_MEMORY};

std::string Text(double lower, double value, double upper)
{
    std::ostringstream text;
    text << std::setprecision(17) << " lies between its bounds: " << lower << " <= " << value
         << " <= " << upper;
    return text.str();
}

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

bool AreClose(const std::vector<double>& left, const std::vector<double>& right, double tolerance)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [=](double a, double b) { return bool(Close(a, b, tolerance, 1.0)); });
}

bool IsNumber(double value)
{
    return std::isfinite(value) && !KXMV::IsMissing(value);
}

} // namespace

void ExpectKnownStatus(const KXStatus& status, const std::string& operation, Violations& violations)
{
    const bool isKnown =
        std::find(std::begin(errors), std::end(errors), status.GetCode()) != std::end(errors);
    if (status.IsError() && !isKnown)
        violations.Add(operation + " returns the unknown error " + std::to_string(status.GetCode()));
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
        for (const double value : Values(result.name)) {
            if (mayBeInfinite ? std::isnan(value) : !std::isfinite(value))
                violations.Add(result.name + " are numbers for ordinary data");
        }
    }
}

void Expectations::SameShape(const Names& names) const
{
    const auto& first = Rows(names.front());
    for (const std::string& name : names) {
        const auto& rows = Rows(name);
        if (!std::equal(rows.begin(), rows.end(), first.begin(), first.end(),
                        [](const auto& a, const auto& b) { return a.size() == b.size(); }))
            violations.Add(name + " has the rows of " + names.front());
    }
}

void Expectations::Between(const Names& names, double least, double most) const
{
    for (const std::string& name : names) {
        for (const double value : Values(name)) {
            if (!KXMV::IsMissing(value) && (value < least || value > most))
                violations.Add(name + " is " + std::to_string(value) + ", not in its range");
        }
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
        violations.Expect(agree || std::isnan(p), logarithms + " is that of " + pValues);
    }
}

void Expectations::Repeated(const Results& second, Results withMissing, const std::string& count) const
{
    violations.Expect(FirstDifference(results, second).empty(), "a second run gives the same");
    for (Result& result : withMissing) {
        if (result.name == count)
            result.rows[0][0] = std::min(result.rows[0][0], Values(count).at(0));
    }
    const std::string difference = FirstDifference(results, withMissing);
    violations.Expect(difference.empty(), "a record without values changes nothing, but " + difference);
}

void Expectations::Ordered(const std::string& lower, const std::string& middle,
                           const std::string& upper) const
{
    const std::vector<double> least = Values(lower);
    const std::vector<double> values = Values(middle);
    const std::vector<double> most = Values(upper);
    if (least.size() != values.size() || values.size() != most.size())
        violations.Add(middle + " has as many entries as its bounds");
    const bool isLevel = level > 0.0 && level < 1.0;
    for (std::size_t i = 0; isLevel && i < std::min({least.size(), values.size(), most.size()}); ++i) {
        if (!IsNumber(values[i]) || !IsNumber(least[i]) || !IsNumber(most[i]))
            continue;
        if (!(least[i] <= values[i] && values[i] <= most[i]))
            violations.Add(middle + Text(least[i], values[i], most[i]));
    }
}

void Expectations::Followed(const Change& change, std::span<const Trait> traits, const Results& after) const
{
    const Expectations changed = {after, level, violations};
    for (const Trait& trait : traits) {
        const bool isNegated = change.isNegation && trait.sign < 0;
        const double factor = std::pow(change.unit, trait.degree) * (isNegated ? -1 : 1);
        for (const std::string& name : trait.names) {
            const std::vector<double> expected = Scaled(Values(name), factor);
            const std::vector<double> actual = changed.Values(isNegated ? OppositeOf(name) : name);
            if (!AreClose(actual, expected, change.tolerance))
                violations.Add(change.name + " leaves or moves " + name + " as it should: " +
                               testing::PrintToString(actual) + ", not " + testing::PrintToString(expected));
        }
    }
}

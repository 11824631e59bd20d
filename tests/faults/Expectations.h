#pragma once

#include "faults/Results.h"

#include "meta_analysis/platform/common/KXStatus.h"

#include <set>
#include <span>

/// Below it the weighted squares of residuals of ordinary data are rounding errors: the data are multiples of
/// 1/32.
constexpr double exactFit = 1e-9;

using Names = std::vector<std::string>;

/// How results answer to effects in another unit, and to effects of the opposite sign.
struct Trait
{
    int degree; ///< power of the unit that they have
    int sign;   ///< -1: they change their sign with the effects, and bounds change places
    Names names;
};

/// A change of the data or their order, and how exactly the results follow it.
struct Change
{
    std::string name;
    double unit;
    bool isNegation;
    double tolerance; ///< relative, or absolute for values below 1
};

/// What holds for single results.
struct Expectations
{
    /// The results that a name stands for, as one list.
    std::vector<double> Values(const std::string& name) const;
    const std::vector<std::vector<double>>& Rows(const std::string& name) const;

    /// Every result is finite, but for those of some names. The test statistic of equal effects may be
    /// infinite.
    void Numbers(const Names& except = {}) const;
    /// As many rows of the same lengths.
    void SameShape(const Names& names) const;
    void Between(const Names& names, double least, double most) const;
    /// Significances and standard errors, by the ends of their names.
    void Significances() const;
    /// Of p-values, which are in the first, in the second.
    void Logarithms(const std::string& pValues, const std::string& logarithms) const;
    void Ordered(const std::string& lower, const std::string& middle, const std::string& upper) const;
    /// A second run has the same results, and so has one with a record more that has no values, but for the
    /// count of such records.
    void Repeated(const Results& second, Results withMissing, const std::string& count) const;
    /// The results after the change are these, as their traits say.
    void Followed(const Change& change, std::span<const Trait> traits, const Results& after) const;

    const Results& results;
    double level; ///< of confidence; when it is one, intervals hold what they are about
};

template <class Number>
bool HasRepeats(const std::vector<Number>& numbers)
{
    return std::set<Number>(numbers.begin(), numbers.end()).size() < numbers.size();
}

/// The status is OK, a warning or an error of the library.
void ExpectKnownStatus(const KXStatus& status);

#pragma once

#include "faults/Results.h"

#include "meta_analysis/platform/common/KXStatus.h"

#include <algorithm>

/// What was found to be wrong with the results of one analysis.
class Violations
{
public:
    void Expect(bool isTrue, const char* expectation)
    {
        if (!isTrue)
            Add(expectation);
    }
    /// Tells an expectation that was not met.
    void Add(const std::string& expectation)
    {
        if (std::find(texts_.begin(), texts_.end(), expectation) == texts_.end())
            texts_.push_back(expectation);
    }
    const std::vector<std::string>& Texts() const { return texts_; }

private:
    std::vector<std::string> texts_;
};

/// What holds for single results. `hasLevel`: the confidence level is one, so that intervals hold what they
/// are about.
struct Expectations
{
    /// The results that a name stands for, as one list.
    std::vector<double> Values(const std::string& name) const;
    const std::vector<std::vector<double>>& Rows(const std::string& name) const;

    /// Every result is finite, but for those of some names. The test statistic of equal effects may be
    /// infinite.
    void Numbers(const std::vector<std::string>& except = {}) const;
    void Lengths(const std::vector<std::string>& names, std::size_t length) const;
    /// As many rows of the same lengths.
    void SameShape(const std::vector<std::string>& names) const;
    void Between(const std::vector<std::string>& names, double least, double most) const;
    void Ordered(const std::string& lower, const std::string& middle, const std::string& upper) const;

    const Results& results;
    bool hasLevel;
    Violations& violations;
};

/// The status is OK or one of the documented errors.
void ExpectKnownStatus(const KXStatus& status, const std::string& operation, Violations& violations);

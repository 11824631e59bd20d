#pragma once

#include "host/text/NumberText.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// How many decimals the numbers of reports, tables and pictures have: as many as suit each, or those asked
/// for. p-values have four decimals in any case.
struct NumberFormat
{
    std::optional<int> digits = {}; ///< as asked for

    /// A number of any size: NumberText(), or with the decimals asked for. Where these show a small number as
    /// 0, it has its first significant digit instead, because a variance or a ratio of 0 is another result.
    std::string operator()(double value) const;

    /// Decimals of effects with these standard errors.
    int EffectDecimals(const std::vector<double>& stdErrors) const
    {
        return digits.value_or(DecimalsFor(stdErrors));
    }

    /// Decimals of percentages, `usual` unless digits are asked for: one less than those, because a
    /// percentage has two of the digits of its fraction before the point, and readers expect "91.2%" beside
    /// "0.48".
    int PercentDecimals(int usual) const { return digits ? std::max(*digits - 1, 0) : usual; }
};

/// EstimateTexts() of numbers in this format.
CompactTexts EstimateTexts(const Estimates& estimates, const NumberFormat& format);

} // namespace host

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

    /// A standard error beside effects of so many decimals. Unlike an effect, it is not shown as 0.
    std::string StdErrorText(double stdError, int decimals) const
    {
        return digits ? (*this)(stdError) : FixedText(stdError, decimals);
    }

    /// Decimals of percentages, `usual` unless digits are asked for: one less than those, because a
    /// percentage has two of the digits of its fraction before the point, and readers expect "91.2%" beside
    /// "0.48".
    int PercentDecimals(int usual) const { return digits ? std::max(*digits - 1, 0) : usual; }
};

/// Estimates with their intervals, entry by entry, or intervals alone where there are no estimates.
struct Estimates
{
    std::vector<double> values;
    std::vector<double> lower;
    std::vector<double> upper;
};

/// "0.4746 [0.3296, 0.6835]" for each entry, or "[0.3296, 0.6835]"; each part as wide in all entries. A
/// missing interval, or a missing estimate with its interval, is shown once.
CompactTexts EstimateTexts(const Estimates& estimates, int decimals);
CompactTexts EstimateTexts(const Estimates& estimates, const NumberFormat& format);

} // namespace host

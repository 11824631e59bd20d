#pragma once

#include "host/table/StudyTable.h"
#include "host/text/NumberFormat.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

/// What tables of analyses and of meta-regressions have in common. Every column has a cell for each row.

/// The decimals of percentages where digits are asked for.
std::optional<int> PercentDigits(const NumberFormat& format);

/// The estimates by their name, and the limits of their intervals at the level.
void AddEstimates(StudyTable& table, const std::string& name, const std::string& level,
                  const Estimates& cells, const NumberFormat& format);

/// What is known of the heterogeneity of a row's studies, or of the residual one; missing where it is not.
struct Heterogeneity
{
    double q;
    double df;
    double p;
    double i2; ///< a fraction
    double tau2;
};

/// The columns of the rows, with tau² or without.
void AddHeterogeneity(StudyTable& table, const std::vector<Heterogeneity>& rows, bool hasTau2,
                      const NumberFormat& format);

/// "Q = 3.42, df = 2, p = 0.1809, I² = 41.5%, tau² = 0.1133".
std::string HeterogeneityText(const Heterogeneity& heterogeneity, const NumberFormat& format);

} // namespace host

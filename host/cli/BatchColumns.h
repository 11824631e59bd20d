#pragma once

#include "meta_analysis/bulk/MABulkResults.h"

#include <array>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace host {

/// A column of the results of the command `batch`, with its name in the header line.
struct BatchColumn
{
    std::string_view name;
    std::variant<double * MA_NAMESPACE::MABulkResults::*, int * MA_NAMESPACE::MABulkResults::*> values;
};

/// All columns, in the order of the output behind the key.
inline constexpr std::array BATCH_COLUMNS{
    BatchColumn{"k", &MA_NAMESPACE::MABulkResults::studyCount},
    BatchColumn{"estimate", &MA_NAMESPACE::MABulkResults::estimate},
    BatchColumn{"std_error", &MA_NAMESPACE::MABulkResults::stdError},
    BatchColumn{"statistic", &MA_NAMESPACE::MABulkResults::statistic},
    BatchColumn{"p", &MA_NAMESPACE::MABulkResults::pValue},
    BatchColumn{"mlog10p", &MA_NAMESPACE::MABulkResults::minusLog10P},
    BatchColumn{"ci_lower", &MA_NAMESPACE::MABulkResults::ciLower},
    BatchColumn{"ci_upper", &MA_NAMESPACE::MABulkResults::ciUpper},
    BatchColumn{"tau2", &MA_NAMESPACE::MABulkResults::tau2},
    BatchColumn{"tau2_lower", &MA_NAMESPACE::MABulkResults::tau2Lower},
    BatchColumn{"tau2_upper", &MA_NAMESPACE::MABulkResults::tau2Upper},
    BatchColumn{"q", &MA_NAMESPACE::MABulkResults::q},
    BatchColumn{"q_df", &MA_NAMESPACE::MABulkResults::qDf},
    BatchColumn{"q_p", &MA_NAMESPACE::MABulkResults::qPValue},
    BatchColumn{"i2", &MA_NAMESPACE::MABulkResults::i2},
    BatchColumn{"pi_lower", &MA_NAMESPACE::MABulkResults::predictionLower},
    BatchColumn{"pi_upper", &MA_NAMESPACE::MABulkResults::predictionUpper},
    BatchColumn{"status", &MA_NAMESPACE::MABulkResults::status},
};

/// The columns of a list whose names are separated by commas, in the order of the list. Throws UnusableInput
/// for a name that no column has, which suggests the nearest one, and for a name that comes twice.
std::vector<BatchColumn> ParseBatchColumns(std::string_view list);

} // namespace host

#pragma once

#include "host/cli/Options.h"
#include "host/data/DataTable.h"
#include "host/report/AnalysisData.h"
#include "host/report/RegressionData.h"
#include "host/report/Report.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

/// The studies and pooled effects of an analysis, or the coefficients of a meta-regression, as one table for
/// other programs and as one for readers.
struct StudyTable
{
    struct Texts
    {
        std::string header;
        std::vector<std::string> cells;
    };
    struct Numbers
    {
        std::string header;
        std::vector<double> cells;        ///< empty cells are missing
        std::optional<int> decimals = {}; ///< all digits without
    };

    // For other programs.
    std::vector<Texts> texts;
    std::vector<Numbers> numbers;

    // For readers, as journals print it.
    std::vector<ReportColumn> reading;
    std::vector<bool> isSentence; ///< of its rows, whether the texts are one sentence for all columns
};

StudyTable StudyTableOf(const Options& options, const DataTable& table, const AnalysisData& data);
StudyTable StudyTableOf(const RegressionData& data);

} // namespace host

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace host {

/// How the data file is written.
struct FileFormat
{
    std::optional<char> separator;   ///< comma, semicolon or tab; by the header line without
    std::optional<char> decimalMark; ///< point or comma; by the fields without
    /// Texts of missing values in any case, beside empty fields.
    std::vector<std::string> missing = {"NA", "N/A", "NaN", "."};
    /// Names of the columns that are read as numbers, whose fields tell the decimal mark; by those of all
    /// columns without.
    std::vector<std::string> numberColumns = {};
};

} // namespace host

#pragma once

#include "host/batch/FieldCutter.h"
#include "host/cli/Options.h"

#include <cstddef>
#include <optional>
#include <string>

namespace host {

/// Where the rows of a file have what is needed of them, by its header line.
struct RowLayout
{
    Separator separator = Separator::TAB;
    std::size_t fieldCount = 0;
    std::size_t key = 0; ///< fields, from 0
    std::size_t effectSize = 0;
    std::size_t spread = 0; ///< variance, or standard error
    bool hasStdError = false;
    bool hasAlleles = false;
    std::size_t effectAllele = 0;
    std::size_t otherAllele = 0;
};

/// Finds the columns that the options name in a header line, whose fields are separated by tabs if it has
/// one, else by commas if it has one, else by blanks. The line is changed. Throws UnusableInput that names
/// the file.
RowLayout LayoutOf(std::string& header, const Options& options, const std::string& fileName);

} // namespace host

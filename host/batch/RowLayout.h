#pragma once

#include "host/batch/FieldCutter.h"
#include "host/batch/RowNumber.h"
#include "host/cli/Options.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Where the rows of a file have what is needed of them, and how it is written.
struct RowLayout
{
    char separator = '\t'; ///< a blank for runs of blanks
    std::size_t fieldCount = 0;
    std::size_t key = 0; ///< fields, from 0
    std::size_t effectSize = 0;
    std::size_t spread = 0; ///< variance, or standard error
    bool hasStdError = false;
    bool hasAlleles = false;
    std::size_t effectAllele = 0;
    std::size_t otherAllele = 0;
    NumberForm form;
};

/// The first lines of a file.
struct FileHead
{
    std::string header;
    std::string_view rows;              ///< the first ones
    std::optional<char> namedSeparator; ///< by a line before the header
    std::size_t headerLine = 1;
    const std::string& fileName;
};

/// The layout by the options, and without them by the first lines: fields are separated by tabs if the header
/// line has one, else by what SeparatorOf() finds in it, else by blanks; the decimal mark is that of the
/// columns of numbers as far as the first rows show it. `notes` gets sentences on what is a guess. Throws
/// UnusableInput that names the file.
RowLayout LayoutOf(const FileHead& head, const Options& options, std::vector<std::string>& notes);

} // namespace host

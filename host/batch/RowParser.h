#pragma once

#include "host/batch/Alleles.h"
#include "host/batch/LineBlocks.h"
#include "host/batch/RowLayout.h"
#include "host/batch/RowProblem.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace host {

/// A row of a file. One with a problem may lack the key, and has no numbers.
struct Row
{
    const char* keyStart = nullptr;
    double effectSize = 0.0;
    double variance = 0.0;
    std::uint32_t line = 0; ///< from the first of its block on
    std::uint16_t keySize = 0;
    RowProblem problem = RowProblem::NONE;

    bool HasKey() const { return keySize > 0; }
    std::string_view Key() const { return {keyStart, keySize}; }
};

/// The rows of a block of lines, whose texts stay in the block.
struct ParsedRows
{
    TextBlock text;
    std::vector<Row> rows;
    std::vector<Alleles> alleles; ///< one a row where the layout has them, empty ones where they are unusable

    std::size_t firstLine = 0; ///< number of its first line in the file
    std::size_t lineCount = 0;
    std::optional<std::size_t> lineOfZero; ///< first line, from 0, with a byte of value 0, which no text has
    std::optional<std::size_t> lineOfStrange; ///< first line, from 0, with bytes that are no UTF-8
    bool hasQuotes = false;                   ///< anywhere

    std::size_t LineOf(const Row& row) const { return firstLine + row.line; }
};

/// Turns lines into rows.
class RowParser
{
public:
    explicit RowParser(const RowLayout& layout) : layout_(layout) {}

    /// Parses `rows.text` into the rows and what else is known of them but their first line. Blank lines are
    /// no rows, and none are read where a byte is 0.
    void Parse(ParsedRows& rows) const;

private:
    bool HasFields(const FieldCutter& cutter, std::size_t count, std::string_view line) const;
    void ParseLine(FieldCutter& cutter, std::string_view text, char* line, ParsedRows& rows, Row& row) const;
    RowProblem ReadKey(std::string_view key, Row& row) const;
    RowProblem ReadNumbers(std::string_view effectSize, std::string_view spread, Row& row) const;

    RowLayout layout_;
};

} // namespace host

#pragma once

#include "host/batch/Alleles.h"
#include "host/batch/LineBlocks.h"
#include "host/batch/RowLayout.h"
#include "host/batch/RowProblem.h"

#include <cstddef>
#include <cstdint>
#include <string>
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

    std::size_t LineOf(const Row& row) const { return text.firstLine + row.line; }
};

/// Turns lines into rows.
class RowParser
{
public:
    RowParser(const RowLayout& layout, std::string fileName) : layout_(layout), fileName_(std::move(fileName))
    {}

    /// Parses `rows.text` into the rows. Blank lines are none. Throws UnusableInput for a byte of value 0,
    /// which no text has.
    void Parse(ParsedRows& rows) const;

private:
    void ParseLine(FieldCutter& cutter, char* line, std::size_t size, ParsedRows& rows, Row& row) const;
    RowProblem ReadKey(std::string_view key, Row& row) const;
    RowProblem ReadNumbers(std::string_view effectSize, std::string_view spread, Row& row) const;

    RowLayout layout_;
    std::string fileName_;
};

} // namespace host

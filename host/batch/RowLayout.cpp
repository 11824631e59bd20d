#include "host/batch/RowLayout.h"

#include "host/batch/LineBlocks.h"
#include "host/batch/RowNumber.h"
#include "host/data/ColumnName.h"
#include "host/data/DecimalMark.h"
#include "host/data/Separator.h"
#include "host/data/UnknownColumn.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>

#include <algorithm>

namespace host {

namespace {

/// A line whose fields may be cut.
class CutLine
{
public:
    CutLine(std::string_view line, char separator, std::size_t mostFields)
        : text_(line), cutter_(separator, mostFields)
    {
        text_.append(TextBlock::PADDING, '\0');
        count_ = cutter_.Cut(text_.data(), line.size(), true);
    }

    std::size_t Count() const { return count_; }
    std::string_view Field(std::size_t field) const
    {
        return WithoutBlanks(cutter_.Field(text_.data(), field));
    }

private:
    std::string text_;
    FieldCutter cutter_;
    std::size_t count_ = 0;
};

class Header
{
public:
    Header(const FileHead& head, char separator)
        : fileName_(head.fileName), line_(head.header, separator, head.header.size() + 1)
    {
        if (line_.Count() == 0)
            throw UnusableInput(
                fmt::format("{}: a double quote is misplaced in the header line.", fileName_));
        for (std::size_t field = 0; field < line_.Count(); ++field)
            names_.push_back(line_.Field(field));
    }

    std::size_t Count() const { return names_.size(); }

    std::size_t PositionOf(std::string_view column) const
    {
        const auto isWanted = [column](std::string_view name) { return IsSameName(name, column); };
        const auto found = std::find_if(names_.begin(), names_.end(), isWanted);
        if (found == names_.end())
            FailForUnknownColumn(fileName_, column, {names_.begin(), names_.end()});
        if (std::any_of(found + 1, names_.end(), isWanted))
            throw UnusableInput(fmt::format("{}: two columns are named '{}'.", fileName_, column));
        return static_cast<std::size_t>(found - names_.begin());
    }

private:
    const std::string& fileName_;
    CutLine line_;
    std::vector<std::string_view> names_;
};

char FindSeparator(const FileHead& head, const Options& options, std::vector<std::string>& notes)
{
    if (options.file.separator) {
        RequireSeparator(head.header, *options.file.separator, head.fileName);
        return *options.file.separator;
    }
    if (head.namedSeparator)
        return *head.namedSeparator;
    if (head.header.find('\t') != std::string::npos)
        return '\t';
    const FoundSeparator found = SeparatorOf(head.header + "\n" + std::string(head.rows.substr(0, 1 << 16)));
    if (found.isGuess)
        notes.push_back(NoteOfGuess(found.character));
    return found.isThere ? found.character : ' ';
}

/// What the columns of numbers say of their decimal mark.
class NumberSample
{
public:
    NumberSample(const FileHead& head, const RowLayout& layout) : head_(head)
    {
        std::string_view rows = head.rows;
        for (std::size_t row = 1; !rows.empty() && census_.Needs(row); ++row) {
            const std::size_t end = std::min(rows.find('\n'), rows.size() - 1) + 1;
            NoteLine(rows.substr(0, end), row, layout);
            rows.remove_prefix(end);
        }
    }

    char Mark(const Options& options, std::vector<std::string>& notes) const
    {
        if (census_.IsContradictory()) // a few rows that are left out must not turn the others
            return '.';
        const DecimalCensus::Mark mark = census_.Found();
        if (mark.doubt) {
            const auto [row, column] = *mark.doubt;
            const std::string& name = column == 0
                                          ? *options.effectSize
                                          : (options.stdError ? *options.stdError : *options.variance);
            notes.push_back(NoteOfDoubt(mark, fmt::format("'{}' (line {}, column '{}')", doubtful_[column],
                                                          head_.headerLine + row, name)));
        }
        return mark.character;
    }

private:
    void NoteLine(std::string_view line, std::size_t row, const RowLayout& layout)
    {
        line = line.substr(0, line.find_last_not_of("\r\n") + 1);
        const CutLine cut(line, layout.separator, layout.fieldCount);
        if (cut.Count() < layout.fieldCount)
            return;
        const std::string_view fields[] = {cut.Field(layout.effectSize), cut.Field(layout.spread)};
        for (std::size_t column = 0; column < std::size(fields); ++column) {
            if (layout.form.missing.Have(fields[column]))
                continue;
            census_.Note(fields[column], row, column);
            if (doubtful_[column].empty() &&
                EvidenceOf(fields[column]) == DecimalEvidence::POINT_OR_THOUSANDS)
                doubtful_[column] = fields[column];
        }
    }

    const FileHead& head_;
    DecimalCensus census_{{true, true}}; ///< of effect sizes and variances or standard errors
    std::string doubtful_[2];
};

char FindDecimalMark(const FileHead& head, const RowLayout& layout, const Options& options,
                     std::vector<std::string>& notes)
{
    if (options.file.decimalMark)
        return *options.file.decimalMark;
    const NumberSample sample(head, layout);
    if (layout.separator != ',')
        return sample.Mark(options, notes);
    if (std::vector<std::string> unused; sample.Mark(options, unused) == ',')
        notes.emplace_back("Its numbers have decimal commas, and between commas the point is taken for the "
                           "decimal mark: --decimal comma reads them.");
    return '.';
}

} // namespace

RowLayout LayoutOf(const FileHead& head, const Options& options, std::vector<std::string>& notes)
{
    RowLayout layout;
    layout.separator = FindSeparator(head, options, notes);
    const Header header(head, layout.separator);
    layout.fieldCount = header.Count();
    layout.key = header.PositionOf(*options.batch.key);
    layout.effectSize = header.PositionOf(*options.effectSize);
    layout.hasStdError = options.stdError.has_value();
    layout.spread = header.PositionOf(layout.hasStdError ? *options.stdError : *options.variance);
    layout.hasAlleles = options.batch.effectAllele.has_value();
    if (layout.hasAlleles) {
        layout.effectAllele = header.PositionOf(*options.batch.effectAllele);
        layout.otherAllele = header.PositionOf(*options.batch.otherAllele);
    }
    layout.form.missing = MissingTexts(options.file.missing);
    layout.form.decimalMark = FindDecimalMark(head, layout, options, notes);
    return layout;
}

} // namespace host

#include "host/batch/RowLayout.h"

#include "host/batch/FieldNumber.h"
#include "host/batch/LineBlocks.h"
#include "host/text/NearestName.h"
#include "host/text/UnusableInput.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace host {

namespace {

Separator SeparatorOf(std::string_view header)
{
    if (header.find('\t') != std::string_view::npos)
        return Separator::TAB;
    return header.find(',') != std::string_view::npos ? Separator::COMMA : Separator::BLANKS;
}

class Header
{
public:
    Header(std::string& line, const std::string& fileName)
        : separator_(SeparatorOf(line)), fileName_(fileName)
    {
        const std::size_t size = line.size();
        line.append(TextBlock::PADDING, '\0');
        FieldCutter cutter(separator_, size + 1);
        const std::size_t count = cutter.Cut(line.data(), size);
        if (count == 0)
            throw UnusableInput(
                fmt::format("{}: a double quote is misplaced in the header line.", fileName_));
        for (std::size_t field = 0; field < count; ++field)
            names_.push_back(TrimmedField(cutter.Field(line.data(), field)));
        if (count == 1 && names_.front().find(';') != std::string_view::npos)
            throw UnusableInput(
                fmt::format("{}: the header line has semicolons; fields are separated by tabs, commas or "
                            "blanks, and numbers have decimal points.",
                            fileName_));
    }

    Separator FieldSeparator() const { return separator_; }
    std::size_t Count() const { return names_.size(); }

    std::size_t PositionOf(const std::string& column) const
    {
        const auto found = std::find(names_.begin(), names_.end(), column);
        if (found == names_.end())
            throw UnusableInput(fmt::format("{} has no column '{}'.{} Its columns are: {}.", fileName_,
                                            column, DidYouMean(column, {names_.begin(), names_.end()}),
                                            fmt::join(names_, ", ")));
        if (std::find(found + 1, names_.end(), column) != names_.end())
            throw UnusableInput(fmt::format("{}: two columns are named '{}'.", fileName_, column));
        return static_cast<std::size_t>(found - names_.begin());
    }

private:
    Separator separator_;
    const std::string& fileName_;
    std::vector<std::string_view> names_;
};

} // namespace

RowLayout LayoutOf(std::string& line, const Options& options, const std::string& fileName)
{
    const Header header(line, fileName);
    RowLayout layout;
    layout.separator = header.FieldSeparator();
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
    return layout;
}

} // namespace host

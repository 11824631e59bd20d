#include "host/data/MissingTexts.h"

#include "host/data/FieldValue.h"
#include "host/text/AsciiCase.h"

#include <algorithm>
#include <utility>

namespace host {

MissingTexts::MissingTexts(std::vector<std::string> texts) : texts_(std::move(texts))
{
    for (const std::string& text : texts_) {
        longest_ = std::max(longest_, text.size());
        if (double number = 0; ParsePlainNumber(text, number))
            numbers_.push_back(number);
    }
}

bool MissingTexts::HaveShort(std::string_view text) const noexcept
{
    return std::any_of(texts_.begin(), texts_.end(),
                       [text](const std::string& missing) { return EqualInAnyCase(text, missing); });
}

bool MissingTexts::HaveNumber(double number) const noexcept
{
    return std::find(numbers_.begin(), numbers_.end(), number) != numbers_.end();
}

} // namespace host

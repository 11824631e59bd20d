#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What stands for a missing value: nothing, and the texts that a FileFormat names, in any case. A text that
/// is a number stands for that number in any form.
class MissingTexts
{
public:
    explicit MissingTexts(std::vector<std::string> texts);

    /// `text` has no blanks around it.
    bool Have(std::string_view text) const noexcept
    {
        return text.empty() || (text.size() <= longest_ && HaveShort(text));
    }
    bool HaveNumber(double number) const noexcept;
    bool HaveNumbers() const noexcept { return !numbers_.empty(); }

private:
    bool HaveShort(std::string_view text) const noexcept;

    std::vector<std::string> texts_;
    std::vector<double> numbers_;
    std::size_t longest_ = 0;
};

} // namespace host

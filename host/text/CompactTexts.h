#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Texts one behind the other in one string, so that a million of them take little more than their
/// characters. Throws std::bad_alloc beyond 4 GiB.
class CompactTexts
{
public:
    /// Yields the texts as strings of their own.
    class Iterator
    {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = std::string;
        using difference_type = std::ptrdiff_t;
        using pointer = const std::string*;
        using reference = std::string;

        Iterator(const CompactTexts& list, std::size_t position) : list_(&list), position_(position) {}
        std::string operator*() const { return (*list_)[position_]; }
        Iterator& operator++()
        {
            ++position_;
            return *this;
        }
        Iterator operator++(int)
        {
            const Iterator before = *this;
            ++position_;
            return before;
        }
        bool operator==(const Iterator& other) const { return position_ == other.position_; }

    private:
        const CompactTexts* list_;
        std::size_t position_;
    };

    CompactTexts() = default;
    CompactTexts(const std::vector<std::string>& texts); ///< implicit, as are lists of strings from this
    CompactTexts(std::initializer_list<std::string_view> texts);
    operator std::vector<std::string>() const { return {begin(), end()}; }

    void push_back(std::string_view text);
    /// Adds `text` to the last one.
    void Extend(std::string_view text);
    /// Adds blanks to the last one.
    void ExtendBlanks(std::size_t count);
    /// Makes room for texts of this size.
    void Reserve(std::size_t count, std::size_t size);

    std::size_t size() const { return ends_.size(); }
    bool empty() const { return ends_.empty(); }
    std::string operator[](std::size_t i) const { return std::string(View(i)); }
    /// Valid until the list changes.
    std::string_view View(std::size_t i) const
    {
        const std::size_t start = i == 0 ? 0 : ends_[i - 1];
        return std::string_view(characters_).substr(start, ends_[i] - start);
    }

    Iterator begin() const { return {*this, 0}; }
    Iterator end() const { return {*this, size()}; }

    friend bool operator==(const CompactTexts&, const CompactTexts&) = default;

private:
    void SetLastEnd();

    std::string characters_;
    std::vector<std::uint32_t> ends_; ///< of each text
};

} // namespace host

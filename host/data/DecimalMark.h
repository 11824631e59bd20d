#pragma once

#include "host/data/FieldValue.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

/// Finds the decimal mark of a file by its fields. What a text says is DecimalEvidence: "0.5", "-.5e3" and
/// "1,234.5" have a point, "0,5", "1 234,5" and "1.234.567" a comma, "1.234" and "1,234" may have either;
/// texts, percentages, bounds and missing values say nothing.
///
/// The fields of the columns that are read as numbers decide. Where these say nothing, columns in which each
/// field is a number do, which others may be meant for labels like "1.5". A comma decides before a point: in
/// a file that is not separated by commas it is hardly anything else, and a point may separate thousands.
/// Without any, the mark is the point. A number that has the other mark is refused later.
///
/// The first rows decide, and later ones as long as nothing does.
class DecimalCensus
{
public:
    struct Place
    {
        std::size_t row = 0; ///< from 1 on
        std::size_t column = 0;
    };

    struct Mark
    {
        char character = '.';
        std::optional<Place> doubt = {};  ///< a number in which the mark may separate thousands
        std::optional<Place> reason = {}; ///< of another column, by which it does not; none without
    };

    /// `isRead` says of each column whether it is read as numbers.
    explicit DecimalCensus(std::vector<bool> isRead) : isRead_(std::move(isRead)), columns_(isRead_.size()) {}

    /// Takes a field that is not a missing value.
    void Note(std::string_view field, std::size_t row, std::size_t column);

    /// Whether rows from this one on are needed.
    bool Needs(std::size_t row) const;

    Mark Found() const;

    /// Whether the columns that are read have numbers with either mark.
    bool IsContradictory() const;

private:
    /// Rows of 0 where there is none.
    using FirstPlaces = std::array<Place, DECIMAL_EVIDENCES>;

    std::optional<Place> First(DecimalEvidence evidence, bool isRead) const;
    Mark WithDoubt(char character, std::optional<Place> reason) const;

    std::vector<bool> isRead_;
    std::vector<FirstPlaces> columns_;
    bool isDecided_ = false; ///< by a column that is read
};

/// The sentence on a mark in doubt. `doubt` and `reason` are the fields with their places.
std::string NoteOfDoubt(const DecimalCensus::Mark& mark, const std::string& doubt,
                        const std::string& reason = {});

} // namespace host

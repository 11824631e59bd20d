#include "host/data/DecimalMark.h"

#include <fmt/format.h>

namespace host {

namespace {

/// Rows that are read in any case: columns of labels show within them that they are.
constexpr std::size_t SAMPLE_ROWS = 1000;

constexpr std::size_t IndexOf(DecimalEvidence evidence)
{
    return static_cast<std::size_t>(evidence);
}

bool Decides(DecimalEvidence evidence)
{
    return evidence == DecimalEvidence::POINT || evidence == DecimalEvidence::COMMA;
}

} // namespace

void DecimalCensus::Note(std::string_view field, std::size_t row, std::size_t column)
{
    if (row > SAMPLE_ROWS && field.find_first_of(".,") == std::string_view::npos)
        return;
    const DecimalEvidence evidence = EvidenceOf(field);
    Place& first = columns_[column][IndexOf(evidence)];
    if (first.row == 0)
        first = {row, column};
    isDecided_ = isDecided_ || (isRead_[column] && Decides(evidence));
}

bool DecimalCensus::Needs(std::size_t row) const
{
    return row <= SAMPLE_ROWS || !isDecided_;
}

/// The first column with such a field. A column that is not read counts as a whole.
std::optional<DecimalCensus::Place> DecimalCensus::First(DecimalEvidence evidence, bool isRead) const
{
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        const FirstPlaces& places = columns_[column];
        const bool counts = isRead || places[IndexOf(DecimalEvidence::NO_NUMBER)].row == 0;
        if (isRead_[column] == isRead && counts && places[IndexOf(evidence)].row > 0)
            return places[IndexOf(evidence)];
    }
    return {};
}

DecimalCensus::Mark DecimalCensus::WithDoubt(char character, std::optional<Place> reason) const
{
    const DecimalEvidence doubtful =
        character == ',' ? DecimalEvidence::COMMA_OR_THOUSANDS : DecimalEvidence::POINT_OR_THOUSANDS;
    return {character, First(doubtful, true), reason};
}

bool DecimalCensus::IsContradictory() const
{
    return First(DecimalEvidence::COMMA, true) && First(DecimalEvidence::POINT, true);
}

DecimalCensus::Mark DecimalCensus::Found() const
{
    if (First(DecimalEvidence::COMMA, true))
        return {','};
    if (First(DecimalEvidence::POINT, true))
        return {'.'};
    if (const std::optional<Place> comma = First(DecimalEvidence::COMMA, false))
        return WithDoubt(',', comma);
    return WithDoubt('.', First(DecimalEvidence::POINT, false));
}

std::string NoteOfDoubt(const DecimalCensus::Mark& mark, const std::string& doubt, const std::string& reason)
{
    const char* const name = NameOfMark(mark.character);
    const std::string evidence =
        reason.empty()
            ? std::string("and nothing in the file")
            : fmt::format("because of {}; nothing in the columns of numbers that are read", reason);
    return fmt::format("The {0} of {1} is taken for the decimal mark, {2} says whether it separates "
                       "thousands. --decimal {0} confirms it; --decimal {3} refuses it.",
                       name, doubt, evidence, NameOfMark(mark.character == ',' ? '.' : ','));
}

} // namespace host

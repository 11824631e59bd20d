#pragma once

#include "host/batch/Alleles.h"
#include "host/batch/Rejects.h"
#include "host/batch/RowParser.h"
#include "host/batch/RowStream.h"

#include <cstddef>
#include <string>

namespace host {

/// The alleles that a key has first.
class FirstAlleles
{
public:
    void Clear()
    {
        effect_.clear();
        other_.clear();
    }

    /// Compares with them; without any yet, these become them.
    AlleleMatch Match(const Alleles& alleles)
    {
        if (effect_.empty()) {
            effect_ = alleles.effect;
            other_ = alleles.other;
        }
        return MatchAlleles({effect_, other_}, alleles);
    }

private:
    std::string effect_;
    std::string other_;
};

/// A row of a block, at its place.
struct RowAt
{
    const RowStream& file;
    const ParsedRows& block;
    std::size_t index;

    const Row& Values() const { return block.rows[index]; }
    /// Empty without columns of alleles, and where they are unusable.
    Alleles RowAlleles() const { return block.alleles.empty() ? Alleles() : block.alleles[index]; }
};

inline void Reject(const RowAt& row, RowProblem problem, Rejects& rejects)
{
    rejects.Add(row.file.Path(), row.block.LineOf(row.Values()), problem, row.Values().Key());
}

/// Calls use(effectSize, variance) with the numbers of a row that has a key, or else rejects it. `match`
/// compares alleles with the first of the key. Returns whether the row is used.
template <class Match, class Use>
bool UseRow(const RowAt& row, Rejects& rejects, const Match& match, const Use& use)
{
    const Row& values = row.Values();
    const Alleles alleles = row.RowAlleles();
    const AlleleMatch matched = alleles.effect.empty() ? AlleleMatch::SAME : match(alleles);
    RowProblem problem = values.problem;
    if (problem == RowProblem::NONE && matched == AlleleMatch::NONE)
        problem = RowProblem::OTHER_ALLELES;
    if (problem != RowProblem::NONE) {
        Reject(row, problem, rejects);
        return false;
    }
    use(matched == AlleleMatch::SWAPPED ? -values.effectSize : values.effectSize, values.variance);
    return true;
}

} // namespace host

#pragma once

#include "meta_analysis/platform/common/Export.h"

#include <string>
#include <vector>

/// A variable of the host's data.
struct META_ANALYSIS_EXPORT KXVar
{
    enum Type : int
    {
        CONTINUOUS = 0,
        CATEGORICAL = 1
    };

    std::string name;  ///< identifies the variable
    std::string label; ///< describes it to people
    Type type = CONTINUOUS;
};

/// The variables of the host's data, in the order of a record's values: a variable's position here is
/// the index of its value in a `Record`. Copying a list may throw std::bad_alloc.
class META_ANALYSIS_EXPORT KXVarList
{
public:
    int Size() const noexcept;

    /// The variable at a position; a continuous variable without name when there is none (-1 included).
    /// The reference is valid until a variable is added.
    const KXVar& GetVarAt(int position) const noexcept;

    /// Position of the first variable of this name, -1 when there is none.
    int FindVariable(const std::string& name) const noexcept;

    /// Appends a continuous variable. Returns its position, or -1, and the list is unchanged, when memory
    /// runs out.
    int AddContVar(std::string name, std::string label) noexcept;

    /// As AddContVar, for a categorical variable.
    int AddCatVar(std::string name, std::string label) noexcept;

private:
    int Add(KXVar&& variable) noexcept;

    std::vector<KXVar> variables_;
};

#pragma once

#include "meta_analysis/analysis/MABaseModel.h"

#include <map>
#include <vector>

namespace host {

/// What there is to say of single studies whose effect sizes an analysis computed.
struct StudyNotes
{
    std::vector<int> records; ///< of the studies
    /// How the values of the studies came from what was reported; one a study, or none.
    std::vector<int> effectConversions;
    std::vector<int> treatmentConversions;
    std::vector<int> controlConversions;
    std::map<int, std::vector<int>> warnedRecords; ///< by the code of a warning that names studies
};

StudyNotes StudyNotesOf(const MA_NAMESPACE::MABaseModel& base);

} // namespace host

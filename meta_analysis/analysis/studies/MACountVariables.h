#pragma once

#include "meta_analysis/analysis/studies/MARecordPass.h"
#include "meta_analysis/effectsize/MAConversions.h"
#include "meta_analysis/effectsize/MATable.h"

namespace MA_NAMESPACE {

/// The variables of a group's counts; -1 for none.
struct MAGroupVariables
{
    int events = -1;
    int nonEvents = -1;
    int size = -1; ///< serves while the non-events are not given

    bool AreNamed() const { return events != -1 && (nonEvents != -1 || size != -1); }
    bool UsesSize() const { return nonEvents == -1 && size != -1; }

    double ReadNonEvents(const Record& record) const
    {
        return UsesSize() ? NonEventsOf(ReadStudyValue(record, events), ReadStudyValue(record, size))
                          : ReadStudyValue(record, nonEvents);
    }
};

/// The variables of a study's 2x2 table.
struct MACountVariables
{
    MAGroupVariables treatment;
    MAGroupVariables control;

    MATable Read(const Record& record) const
    {
        return {ReadStudyValue(record, treatment.events), treatment.ReadNonEvents(record),
                ReadStudyValue(record, control.events), control.ReadNonEvents(record)};
    }
};

/// Those of the settings of an analysis or of a regression.
template <class Settings>
MACountVariables CountVariablesOf(const Settings& settings)
{
    return {{settings.GetTreatmentSuccessVarIndex(), settings.GetTreatmentFailureVarIndex(),
             settings.GetTreatmentNVarIndex()},
            {settings.GetControlSuccessVarIndex(), settings.GetControlFailureVarIndex(),
             settings.GetControlNVarIndex()}};
}

} // namespace MA_NAMESPACE

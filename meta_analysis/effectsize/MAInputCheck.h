#pragma once

#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/settings/MAStatusCode.h"

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// What every setter of a study vector does: the first vector fixes the study count, a later one of
/// another length is refused with an error that stays, and after an error nothing changes any more.
/// A null pointer means that the vector is not given.
template <class Vector>
KXStatus StoreStudyVector(Vector* given, Vector*& stored, std::size_t& studyCount, KXStatus& status) noexcept
{
    if (status.IsError())
        return status;
    if (given != nullptr) {
        if (studyCount == 0)
            studyCount = given->size();
        else if (given->size() != studyCount)
            return status = KXStatus(MAStatusCode::LENGTH_MISMATCH);
    }
    stored = given;
    return status;
}

/// What every other setter does: stores the value unless an error was met before.
template <class T>
KXStatus StoreSetting(T given, T& stored, const KXStatus& status) noexcept
{
    if (!status.IsError())
        stored = given;
    return status;
}

/// Whether each vector is given and has `studyCount` entries. The setters cannot tell: the first vector
/// may have been empty, and the caller may have changed a vector since.
template <class... Vectors>
bool HaveLength(std::size_t studyCount, const Vectors*... vectors) noexcept
{
    return ((vectors != nullptr && vectors->size() == studyCount) && ...);
}

} // namespace MA_NAMESPACE

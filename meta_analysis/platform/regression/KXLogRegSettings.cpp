#include "meta_analysis/platform/regression/KXLogRegSettings.h"

KXLogRegSettings::KXLogRegSettings() noexcept = default;
KXLogRegSettings::~KXLogRegSettings() = default;

KXConst::KXRegModelType KXLogRegSettings::GetModelType() const
{
    return KXConst::REG_MODEL_LINEAR;
}

KXStatus KXLogRegSettings::IsValidSettings(bool dependentRequired) const
{
    return dependentRequired && GetDependent() < 0 ? KXStatus(DEPENDENT_NOT_GIVEN) : KXStatus();
}

#include "meta_analysis/settings/MAModelSettings.h"

namespace MA_NAMESPACE {

MAModelSettings::MAModelSettings() noexcept = default;
MAModelSettings::MAModelSettings(const MAModelSettings&) noexcept = default;
MAModelSettings& MAModelSettings::operator=(const MAModelSettings&) noexcept = default;
MAModelSettings::~MAModelSettings() = default;

} // namespace MA_NAMESPACE

#include "meta_analysis/settings/MAModelSettings.h"

namespace MA_NAMESPACE {

MAModelSettings::MAModelSettings() = default;
MAModelSettings::MAModelSettings(const MAModelSettings&) = default;
MAModelSettings& MAModelSettings::operator=(const MAModelSettings&) = default;
MAModelSettings::~MAModelSettings() = default;

} // namespace MA_NAMESPACE

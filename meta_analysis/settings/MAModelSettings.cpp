#include "meta_analysis/settings/MAModelSettings.h"

namespace MA_NAMESPACE {

MAModelSettings::~MAModelSettings() = default;

} // namespace MA_NAMESPACE

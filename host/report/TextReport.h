#pragma once

#include "host/report/Report.h"

#include <string>

namespace host {

/// The report as text with aligned columns, for a terminal or a plain-text document.
std::string RenderText(const Report& report);

} // namespace host

#pragma once

#include "host/plots/ForestDrawing.h"

namespace host {

/// The forest with as many rows as can be read: those of the heaviest studies, or steps of a cumulative
/// analysis at even distances with the last, and of very many groups those of the heaviest. A note and the
/// description say what is left out; it counts in the pooled effects. A forest of few rows stays as it is.
Forest WithReadableRows(Forest forest);

} // namespace host

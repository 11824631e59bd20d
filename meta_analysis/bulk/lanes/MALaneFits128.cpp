// For registers that every processor has, or that the compiler puts together.

#include "meta_analysis/bulk/lanes/MALaneFitKernelsOf.h"

namespace MA_NAMESPACE {

using Lanes128 = double __attribute__((vector_size(16)));
const MALaneFitKernels laneFitKernels128 = laneFitKernelsOf<Lanes128>;

} // namespace MA_NAMESPACE

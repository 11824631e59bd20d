// For processors with AVX2.

#include "meta_analysis/bulk/lanes/MALaneFitKernelsOf.h"

#if defined(__x86_64__)
namespace MA_NAMESPACE {

using Lanes256 = double __attribute__((vector_size(32)));
const MALaneFitKernels laneFitKernels256 = laneFitKernelsOf<Lanes256>;

} // namespace MA_NAMESPACE
#endif

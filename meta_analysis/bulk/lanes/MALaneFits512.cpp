// For processors with AVX-512.

#include "meta_analysis/bulk/lanes/MALaneFitKernelsOf.h"

#if defined(__x86_64__)
namespace MA_NAMESPACE {

using Lanes512 = double __attribute__((vector_size(64)));
const MALaneFitKernels laneFitKernels512 = laneFitKernelsOf<Lanes512>;

} // namespace MA_NAMESPACE
#endif

#include "meta_analysis/platform/common/ProgressListener.h"

ProgressListener::~ProgressListener() = default;

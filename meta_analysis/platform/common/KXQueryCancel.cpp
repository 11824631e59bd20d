#include "meta_analysis/platform/common/KXQueryCancel.h"

KXQueryCancel::~KXQueryCancel() = default;

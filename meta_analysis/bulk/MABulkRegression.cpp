#include "meta_analysis/bulk/MABulkRegression.h"

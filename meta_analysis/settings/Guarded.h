#pragma once

#include "meta_analysis/settings/Memory.h"

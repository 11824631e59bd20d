#pragma once

#include "support/FinishedRun.h"

/// 2x2 tables, also to be read as group summaries or effects, and behind them at `firstRole` a group, a rank,
/// a contrast coefficient and a covariate.
inline const Rows fullRecords = {
    {12, 88, 20, 80, 15, 85, 1, 3, 1, 0.2}, {15, 85, 25, 75, 18, 82, 1, 2, -1, 0.5},
    {9, 91, 8, 92, 21, 79, 1, 5, 0, 0.1},   {11, 70, 18, 60, 14, 86, 2, 1, 1, 0.9},
    {25, 85, 15, 75, 19, 81, 2, 6, 0, 0.4}, {5, 31, 8, 40, 16, 84, 2, 4, -1, 0.3}};

enum Role : int
{
    GROUP = 6,
    RANK,
    CONTRAST,
    COVARIATE
};

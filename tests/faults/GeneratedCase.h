#pragma once

#include "faults/ByteStream.h"
#include "support/Data.h"

#include "meta_analysis/platform/common/KXVarList.h"
#include "meta_analysis/settings/MARegSettings.h"

// Analyses made from a stream of bytes, for the property tests and for the fuzzer. In a tame one the data are
// ordinary and the settings sensible; in the others both may be anything that the types can hold.

/// What a record of an analysis holds, from position 0 on, before the variables that all have.
enum class StudyData
{
    Tables,  ///< four counts
    Means,   ///< size, mean, standard deviation of two groups
    Effects, ///< effect size, variance
};

inline constexpr int columnCountOf[] = {4, 6, 2};

struct AnalysisCase
{
    explicit AnalysisCase(ByteStream& bytes);

    bool isTame;
    StudyData data;
    bool isBinary;           ///< which driver; tables are always binary, means continuous
    bool isMeasured = false; ///< whether it is that of the settings' measure instead, on the same columns
    MA_NAMESPACE::MAModelSettings settings;
    /// Of the small-study tests and the bubble plots that follow the run.
    MA_NAMESPACE::MARegSettings regression;
    Rows rows;
    KXVarList variables;
};

struct RegressionCase
{
    explicit RegressionCase(ByteStream& bytes);

    bool isTame;
    bool isRandom; ///< which engine
    MA_NAMESPACE::MARegSettings settings;
    Rows rows; ///< effect size, variance, two covariates, two factors
};

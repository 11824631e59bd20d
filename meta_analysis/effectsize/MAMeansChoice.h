#pragma once

#include "meta_analysis/settings/MAConst.h"

namespace MA_NAMESPACE {

/// A measure of group means, with the choices of its variance.
struct MAMeansChoice
{
    MAConst::CONTESTYPE measure = MAConst::CONT_COHENS_D;
    bool equalVariances = false;  ///< pools the variances of a mean difference
    bool adjustsVariance = false; ///< divides by degrees of freedom in the variances of d and g
    MAConst::STUDYGROUPTYPE glassGroup =
        MAConst::GROUP_CONTROL; ///< whose standard deviation divides in delta
};

} // namespace MA_NAMESPACE

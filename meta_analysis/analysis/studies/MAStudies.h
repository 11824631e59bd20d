#pragma once

#include <cstddef>
#include <vector>

namespace MA_NAMESPACE {

/// Effect sizes of the studies on one scale, with what describes their precision.
struct MAEffectColumns
{
    std::vector<double> effectSize;
    std::vector<double> variance;
    std::vector<double> stdError;
    std::vector<double> ciLower;
    std::vector<double> ciUpper;
};

/// 2x2 tables, one entry a study in each column.
struct MATableColumns
{
    std::vector<double> treatmentEvents;
    std::vector<double> treatmentNonEvents;
    std::vector<double> controlEvents;
    std::vector<double> controlNonEvents;
};

/// Group sizes, means and standard deviations, one entry a study in each column.
struct MAMeansColumns
{
    std::vector<double> treatmentSize;
    std::vector<double> controlSize;
    std::vector<double> treatmentMean;
    std::vector<double> controlMean;
    std::vector<double> treatmentStdDev;
    std::vector<double> controlStdDev;
};

/// The valid studies of an analysis: parallel columns, one entry a study, in record order.
///
/// A column that an analysis does not use is empty; every other has as many entries as there are studies.
struct MAStudies
{
    std::vector<int> recordNumber; ///< position of the study's record in the host's data, from 0
    std::vector<double> sampleSize;

    MATableColumns tables; ///< raw input of binary outcomes, as read
    MAMeansColumns means;  ///< raw input of continuous outcomes

    MAEffectColumns effects; ///< on the analysis scale: log for ratio measures
    std::vector<double> zValue;
    std::vector<double> significance;
    MAEffectColumns ratioEffects; ///< on the ratio scale, where there is one

    std::vector<double> groupValue; ///< of the subgroup variable; -1.0 when there is none
    std::vector<double> cumulativeValue;
    std::vector<std::vector<double>> contrastCoefficients; ///< one column per contrast

    std::size_t Count() const noexcept { return effects.effectSize.size(); }

    /// Removes the studies whose entry in `kept` is false from every column that has them.
    void Keep(const std::vector<bool>& kept);
};

} // namespace MA_NAMESPACE

#include "meta_analysis/analysis/studies/MAStudies.h"

#include <cstddef>

namespace MA_NAMESPACE {

namespace {

template <class T>
void Compact(std::vector<T>& column, const std::vector<bool>& kept)
{
    if (column.size() != kept.size())
        return;
    std::size_t next = 0;
    for (std::size_t i = 0; i < column.size(); ++i) {
        if (kept[i])
            column[next++] = column[i];
    }
    column.resize(next);
}

void Compact(MAEffectColumns& columns, const std::vector<bool>& kept)
{
    for (std::vector<double>* column :
         {&columns.effectSize, &columns.variance, &columns.stdError, &columns.ciLower, &columns.ciUpper})
        Compact(*column, kept);
}

} // namespace

void MAStudies::Keep(const std::vector<bool>& kept)
{
    Compact(recordNumber, kept);
    for (std::vector<double>* column :
         {&sampleSize, &tables.treatmentEvents, &tables.treatmentNonEvents, &tables.controlEvents,
          &tables.controlNonEvents, &means.treatmentSize, &means.controlSize, &means.treatmentMean,
          &means.controlMean, &means.treatmentStdDev, &means.controlStdDev, &zValue, &significance,
          &groupValue, &cumulativeValue})
        Compact(*column, kept);
    for (std::vector<double>& column : contrastCoefficients)
        Compact(column, kept);
    Compact(effects, kept);
    Compact(ratioEffects, kept);
}

} // namespace MA_NAMESPACE

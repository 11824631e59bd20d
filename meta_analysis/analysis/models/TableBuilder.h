#pragma once

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/models/MAModelBuilder.h"
#include "meta_analysis/effectsize/MATable.h"
#include "meta_analysis/pooling/MAPooledCounts.h"

namespace MA_NAMESPACE {

/// Builds the models of an analysis from its 2x2 tables, by Mantel and Haenszel or Peto.
class META_ANALYSIS_HIDDEN MABinModel::TableBuilder : public MAModelBuilder
{
public:
    explicit TableBuilder(MABinModel& analysis) : analysis_(analysis) {}

    KXStatus BuildAll() override;
    KXStatus Build(const MASelection& selection) override;
    KXStatus BuildPrefixes(const MASelection& selection) override;
    KXStatus BuildTest(const MASelection& selection) override;

    static MATable TableOf(const MATableColumns& tables, std::size_t study)
    {
        return {tables.treatmentEvents[study], tables.treatmentNonEvents[study], tables.controlEvents[study],
                tables.controlNonEvents[study]};
    }

private:
    KXStatus BuildTables(MATableColumns tables);
    MATableColumns SelectedTables(const MASelection& selection) const;
    template <class Pooling>
    void AppendPrefixes(const MASelection& selection, MAPooledCounts<Pooling> counts);
    template <class Pooling>
    void AppendRow(const MAPooledEffect& pooled, double quantile);

    MABinModel& analysis_;
};

} // namespace MA_NAMESPACE

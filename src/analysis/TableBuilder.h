#pragma once

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAModelBuilder.h"

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

private:
    KXStatus BuildTables(const MATableColumns& tables);
    MATableColumns SelectedTables(const MASelection& selection) const;
    template <class Pooling>
    void AppendPrefixes(const MASelection& selection, Pooling pooling);
    template <class Pooling>
    void AppendRow(const Pooling& pooling, double quantile);

    MABinModel& analysis_;
};

} // namespace MA_NAMESPACE

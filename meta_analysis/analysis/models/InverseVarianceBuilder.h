#pragma once

#include "meta_analysis/analysis/MABaseModel.h"
#include "meta_analysis/analysis/models/MAModelBuilder.h"

namespace MA_NAMESPACE {

/// Builds the models of an analysis by inverse variance, under the fixed-effect or random-effects model.
class META_ANALYSIS_HIDDEN MABaseModel::InverseVarianceBuilder : public MAModelBuilder
{
public:
    explicit InverseVarianceBuilder(MABaseModel& analysis) : analysis_(analysis) {}

    KXStatus BuildAll() override;
    KXStatus Build(const MASelection& selection) override;
    KXStatus BuildPrefixes(const MASelection& selection) override;
    KXStatus BuildTest(const MASelection& selection) override;

private:
    KXStatus BuildFixedPrefixes(const MASelection& selection);
    KXStatus BuildRandomPrefixes(const MASelection& selection);
    void RecordWeights(const MASelection& selection, double tau2);

    MABaseModel& analysis_;
};

} // namespace MA_NAMESPACE

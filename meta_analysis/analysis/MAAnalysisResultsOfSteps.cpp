// Getters of the further analyses: subgroups, contrasts, cumulative analysis, leave-one-out, influence and
// trim-and-fill.

#include "meta_analysis/analysis/MAAnalysisResults.h"
#include "meta_analysis/analysis/MAAnalysisState.h"
#include "meta_analysis/analysis/MAResultColumns.h"
#include "meta_analysis/settings/Memory.h"

#include <algorithm>

namespace MA_NAMESPACE {

std::vector<double> MAAnalysisResults::GetUniGroup() const
{
    return CopyOf(Results().groups.shownValues);
}

std::vector<int> MAAnalysisResults::GetGroupN() const
{
    return CopyOf(Results().lists.groupSizes);
}

std::vector<std::vector<int>> MAAnalysisResults::GetSubGroupStudyID() const
{
    return CopyOf(Results().lists.recordNumbers);
}

std::vector<int> MAAnalysisResults::GetSubgroupMissing() const
{
    return CopyOf(Results().counts.withoutSubgroup);
}

double MAAnalysisResults::GetGDQbVal() const
{
    return Results().groups.between.q;
}

int MAAnalysisResults::GetGDQbDf() const
{
    return Results().groups.between.df;
}

double MAAnalysisResults::GetGDQbSig() const
{
    return Results().groups.between.pValue.value;
}

double MAAnalysisResults::GetGDQbLog10Sig() const
{
    return Results().groups.between.pValue.Log10();
}

double MAAnalysisResults::GetGDQbF() const
{
    return Results().groups.meansTest.f;
}

double MAAnalysisResults::GetGDQbFDf1() const
{
    return Results().groups.meansTest.df1;
}

double MAAnalysisResults::GetGDQbFDf2() const
{
    return Results().groups.meansTest.df2;
}

double MAAnalysisResults::GetGDQbFSig() const
{
    return Results().groups.meansTest.pValue.value;
}

double MAAnalysisResults::GetGDQbFLog10Sig() const
{
    return Results().groups.meansTest.pValue.Log10();
}

std::vector<double> MAAnalysisResults::GetContrastEstES() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::estimate));
}

std::vector<double> MAAnalysisResults::GetContrastEstStdError() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::stdError));
}

std::vector<double> MAAnalysisResults::GetContrastEstZVal() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::statistic));
}

std::vector<double> MAAnalysisResults::GetContrastEstSig() const
{
    return PValuesOf(Results().contrasts, &MAContrast::effect, &MAPValue::value);
}

std::vector<double> MAAnalysisResults::GetContrastLog10Sig() const
{
    return PValuesOf(Results().contrasts, &MAContrast::effect, &MAPValue::Log10);
}

std::vector<double> MAAnalysisResults::GetContrastEstCILower() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::ciLower));
}

std::vector<double> MAAnalysisResults::GetContrastEstCIUpper() const
{
    return FieldOf(Results().contrasts, Nested(&MAContrast::effect, &MAEstimate::ciUpper));
}

std::vector<int> MAAnalysisResults::GetContrastStatus() const
{
    return CopyOf(Results().contrastStatus);
}

/// Contrasts are tested in the order of their coefficients.
std::vector<std::vector<int>> MAAnalysisResults::GetContrastMissing() const
{
    const MAStudies& studies = Results().studies;
    const std::size_t count = std::min(Results().contrasts.size(), studies.contrastCoefficients.size());
    try {
        std::vector<std::vector<int>> missing(count);
        for (std::size_t contrast = 0; contrast < count; ++contrast)
            for (std::size_t study = 0; study < studies.Count(); ++study)
                if (KXMV::IsMissing(studies.contrastCoefficients[contrast][study]))
                    missing[contrast].push_back(studies.recordNumber[study]);
        return missing;
    } catch (...) {
        return {};
    }
}

std::vector<int> MAAnalysisResults::GetCumulativeMissing() const
{
    return CopyOf(Results().counts.withoutCumulative);
}

std::vector<double> MAAnalysisResults::GetCumulative() const
{
    return CopyOf(Results().studies.cumulativeValue);
}

std::vector<std::vector<double>> MAAnalysisResults::GetEstCumulative() const
{
    return CopyOf(Results().cumulative.values);
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstES() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::estimate));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstStdErr() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::stdError));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstZval() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::statistic));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstSig() const
{
    return CumulativeColumn(Results().cumulative, PValueForm(&MAPooledRow::effect, &MAPValue::value));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstLog10Sig() const
{
    return CumulativeColumn(Results().cumulative, PValueForm(&MAPooledRow::effect, &MAPValue::Log10));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstCiLower() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::ciLower));
}

std::vector<std::vector<double>> MAAnalysisResults::GetCumEstCiUpper() const
{
    return CumulativeColumn(Results().cumulative, Nested(&MAPooledRow::effect, &MAEstimate::ciUpper));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutEffectSize() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::estimate));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutStdError() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::stdError));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutZVal() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::statistic));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutSig() const
{
    return PValuesOf(Results().leaveOneOut, &MAPooledModel::effect, &MAPValue::value);
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutCILower() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::ciLower));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutCIUpper() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::effect, &MAEstimate::ciUpper));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutTau2Var() const
{
    return FieldOf(Results().leaveOneOut, &MAPooledModel::tau2);
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutChisquareQ() const
{
    return FieldOf(Results().leaveOneOut, Nested(&MAPooledModel::homogeneity, &MAHomogeneityTest::q));
}

std::vector<double> MAAnalysisResults::GetLeaveOneOutI2Index() const
{
    return FieldOf(Results().leaveOneOut,
                   Nested(&MAPooledModel::heterogeneity, &MAHeterogeneityMeasures::i2));
}

std::vector<double> MAAnalysisResults::GetInfluenceStudentizedResidual() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::residual);
}

std::vector<double> MAAnalysisResults::GetInfluenceDFFITS() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::dffits);
}

std::vector<double> MAAnalysisResults::GetInfluenceCookDistance() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::cookDistance);
}

std::vector<double> MAAnalysisResults::GetInfluenceCovarianceRatio() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::covarianceRatio);
}

std::vector<double> MAAnalysisResults::GetInfluenceTau2Deleted() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::tau2Deleted);
}

std::vector<double> MAAnalysisResults::GetInfluenceQDeleted() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::qDeleted);
}

std::vector<double> MAAnalysisResults::GetInfluenceHat() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::hat);
}

std::vector<double> MAAnalysisResults::GetInfluenceWeight() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::weight);
}

std::vector<double> MAAnalysisResults::GetBaujatX() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::baujatX);
}

std::vector<double> MAAnalysisResults::GetBaujatY() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::baujatY);
}

std::vector<int> MAAnalysisResults::GetInfluenceRules() const
{
    return FieldOf(Results().influence.studies, &MAStudyInfluence::rules);
}

std::vector<double> MAAnalysisResults::GetInfluenceCutoffs() const
{
    return CopyOf(Results().influence.cutoffs);
}

int MAAnalysisResults::GetTFImputedN0() const
{
    return Results().trimFill.imputedCount;
}

std::vector<double> MAAnalysisResults::GetTFImputedEffectSize() const
{
    return CopyOf(Results().trimFill.imputed.effectSize);
}

std::vector<double> MAAnalysisResults::GetTFImputedStdError() const
{
    return CopyOf(Results().trimFill.imputed.stdError);
}

double MAAnalysisResults::GetOverallTFEffectSize() const
{
    return Results().trimFill.model.value_or(MAEstimate()).estimate;
}

double MAAnalysisResults::GetOverallTFStdError() const
{
    return Results().trimFill.model.value_or(MAEstimate()).stdError;
}

double MAAnalysisResults::GetOverallTFZVal() const
{
    return Results().trimFill.model.value_or(MAEstimate()).statistic;
}

double MAAnalysisResults::GetOverallTFSig() const
{
    return Results().trimFill.model.value_or(MAEstimate()).pValue.value;
}

double MAAnalysisResults::GetOverallTFCILower() const
{
    return Results().trimFill.model.value_or(MAEstimate()).ciLower;
}

double MAAnalysisResults::GetOverallTFCIUpper() const
{
    return Results().trimFill.model.value_or(MAEstimate()).ciUpper;
}

} // namespace MA_NAMESPACE

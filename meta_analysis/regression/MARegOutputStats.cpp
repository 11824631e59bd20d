#include "meta_analysis/regression/MARegOutputStats.h"

#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegResults.h"
#include "meta_analysis/settings/Memory.h"

namespace MA_NAMESPACE {

MARegOutputStats::MARegOutputStats(const MARegSettings& /*settings*/, MAFEAlgorithm& engine) noexcept
    : results_(engine.Results())
{}

MARegOutputStats::MARegOutputStats(const MARegSettings& /*settings*/, MAREAlgorithm& engine) noexcept
    : results_(engine.Results())
{}

MARegOutputStats::~MARegOutputStats() = default;

const MARegResults& MARegOutputStats::Get() const noexcept
{
    static const MARegResults none;
    return results_ == nullptr ? none : *results_;
}

int MARegOutputStats::GetNGoodRecords() const
{
    return Get().goodRecords;
}

int MARegOutputStats::GetNBadRecords() const
{
    return Get().badRecords;
}

double MARegOutputStats::GetTau() const
{
    return Get().tau2;
}

std::vector<double> MARegOutputStats::GetEstimation() const
{
    return CopyOf(Get().coefficients);
}

std::vector<KXRegrParameter> MARegOutputStats::GetParameters() const
{
    const std::shared_ptr<const MARegrParameters>& parameters = Get().parameters;
    return parameters == nullptr ? MARegrParameters() : CopyOf(*parameters);
}

KXBitSet MARegOutputStats::GetRedundancyInfo() const
{
    return CopyOf(Get().nonRedundant);
}

std::vector<double> MARegOutputStats::GetBetaStandErr() const
{
    return CopyOf(Get().tests.stdErrors);
}

std::vector<double> MARegOutputStats::GetBetaTest() const
{
    return CopyOf(Get().tests.statistics);
}

std::vector<double> MARegOutputStats::GetBetaTestPValue() const
{
    return FieldOf(Get().tests.pValues, &MAPValue::value);
}

std::vector<double> MARegOutputStats::GetBetaTestLog10PValue() const
{
    return FieldOf(Get().tests.pValues, &MAPValue::Log10);
}

std::vector<double> MARegOutputStats::GetBetaConfInterValLower() const
{
    return CopyOf(Get().tests.lowerLimits);
}

std::vector<double> MARegOutputStats::GetBetaConfInterValUpper() const
{
    return CopyOf(Get().tests.upperLimits);
}

double MARegOutputStats::GetWaldChiSquareTest() const
{
    return Get().wald.statistic;
}

int MARegOutputStats::GetWaldDf() const
{
    return Get().wald.df1;
}

double MARegOutputStats::GetWaldPValue() const
{
    return Get().wald.pValue.value;
}

double MARegOutputStats::GetFTestVal() const
{
    return Get().f.statistic;
}

double MARegOutputStats::GetFPValue() const
{
    return Get().f.pValue.value;
}

double MARegOutputStats::GetModelTestLog10PValue() const
{
    const double ofWald = Get().wald.pValue.Log10();
    return KXMV::IsMissing(ofWald) ? Get().f.pValue.Log10() : ofWald;
}

int MARegOutputStats::GetFDf1() const
{
    return Get().f.df1;
}

int MARegOutputStats::GetFDf2() const
{
    return Get().f.df2;
}

double MARegOutputStats::GetMultiDisper() const
{
    return Get().dispersion;
}

double MARegOutputStats::GetResHomoChiSqure() const
{
    return Get().residual.q;
}

double MARegOutputStats::GetResHomoDf() const
{
    return Get().residual.df;
}

double MARegOutputStats::GetResHomoPValue() const
{
    return Get().residual.qPValue.value;
}

double MARegOutputStats::GetResHomoLog10PValue() const
{
    return Get().residual.qPValue.Log10();
}

double MARegOutputStats::GetHresSquare() const
{
    return Get().residual.h2;
}

double MARegOutputStats::GetIresSquare() const
{
    return Get().residual.i2;
}

double MARegOutputStats::GetRSquare() const
{
    return Get().rSquare;
}

double MARegOutputStats::GetTau2CILower() const
{
    return Get().tau2Results.lower;
}

double MARegOutputStats::GetTau2CIUpper() const
{
    return Get().tau2Results.upper;
}

int MARegOutputStats::GetTau2Convergence() const
{
    return Get().tau2Results.convergence;
}

int MARegOutputStats::GetTau2Evaluations() const
{
    return Get().tau2Results.evaluations;
}

double MARegOutputStats::GetLogLikelihood() const
{
    return Get().tau2Results.information.logLikelihood;
}

double MARegOutputStats::GetAIC() const
{
    return Get().tau2Results.information.aic;
}

double MARegOutputStats::GetBIC() const
{
    return Get().tau2Results.information.bic;
}

double MARegOutputStats::GetAICc() const
{
    return Get().tau2Results.information.aicc;
}

std::vector<double> MARegOutputStats::GetRobustStdError() const
{
    return CopyOf(Get().robust.stdErrors);
}

std::vector<double> MARegOutputStats::GetRobustVal() const
{
    return CopyOf(Get().robust.statistics);
}

std::vector<double> MARegOutputStats::GetRobustDf() const
{
    return CopyOf(Get().robust.dfs);
}

std::vector<double> MARegOutputStats::GetRobustSig() const
{
    return FieldOf(Get().robust.pValues, &MAPValue::value);
}

std::vector<double> MARegOutputStats::GetRobustCILower() const
{
    return CopyOf(Get().robust.lowerLimits);
}

std::vector<double> MARegOutputStats::GetRobustCIUpper() const
{
    return CopyOf(Get().robust.upperLimits);
}

std::vector<std::vector<double>> MARegOutputStats::GetRobustCovariance() const
{
    return CopyOf(Get().robust.covariance);
}

int MARegOutputStats::GetRobustClusters() const
{
    return Get().robust.clusters;
}

std::vector<double> MARegOutputStats::GetPermutationSig() const
{
    return CopyOf(Get().permutation.coefficients);
}

double MARegOutputStats::GetPermutationModelSig() const
{
    return Get().permutation.model;
}

int MARegOutputStats::GetPermutationCount() const
{
    return Get().permutation.count;
}

int MARegOutputStats::GetPermutationExact() const
{
    return Get().permutation.isExact ? 1 : 0;
}

std::vector<double> MARegOutputStats::GetInfluenceStudentizedResidual() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::residual);
}

std::vector<double> MARegOutputStats::GetInfluenceDFFITS() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::dffits);
}

std::vector<double> MARegOutputStats::GetInfluenceCookDistance() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::cookDistance);
}

std::vector<double> MARegOutputStats::GetInfluenceCovarianceRatio() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::covarianceRatio);
}

std::vector<double> MARegOutputStats::GetInfluenceTau2Deleted() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::tau2Deleted);
}

std::vector<double> MARegOutputStats::GetInfluenceQDeleted() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::qDeleted);
}

std::vector<double> MARegOutputStats::GetInfluenceHat() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::hat);
}

std::vector<double> MARegOutputStats::GetInfluenceWeight() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::weight);
}

std::vector<double> MARegOutputStats::GetBaujatX() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::baujatX);
}

std::vector<double> MARegOutputStats::GetBaujatY() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::baujatY);
}

std::vector<int> MARegOutputStats::GetInfluenceRules() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::rules);
}

std::vector<double> MARegOutputStats::GetInfluenceCutoffs() const
{
    return CopyOf(Get().influence.cutoffs);
}

std::vector<std::vector<double>> MARegOutputStats::GetInfluenceDFBETAS() const
{
    return FieldOf(Get().influence.studies, &MAStudyInfluence::dfbetas);
}

} // namespace MA_NAMESPACE

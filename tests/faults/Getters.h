#pragma once

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/regression/MARegOutputStats.h"

// Calls `visit(name, getter)` for every getter of numbers that an analysis or a regression's output has; the
// second is a pointer to a member function.

#define VISIT(getter) visit(#getter, &Source::getter)

template <class Source, class Visit>
void VisitStudies(Visit& visit)
{
    VISIT(GetNMissing);
    VISIT(GetNInvalid);
    VISIT(GetNDropped);
    VISIT(GetNonMissingStudyID);
    VISIT(GetEffectSize);
    VISIT(GetVariance);
    VISIT(GetStdError);
    VISIT(GetZVal);
    VISIT(GetSig);
    VISIT(GetCILower);
    VISIT(GetCIUpper);
    VISIT(GetSampSize);
    VISIT(GetWeight);
    VISIT(GetNormalizedWeight);
}

template <class Source, class Visit>
void VisitModels(Visit& visit)
{
    VISIT(GetEstEffectSize);
    VISIT(GetEstStdError);
    VISIT(GetEstZVal);
    VISIT(GetEstSig);
    VISIT(GetEstCILower);
    VISIT(GetEstCIUpper);
    VISIT(GetPILower);
    VISIT(GetPIUpper);
    VISIT(GetTau2Var);
    VISIT(GetHomoTestChisquareQ);
    VISIT(GetHomoTestdf);
    VISIT(GetHomoTestSig);
    VISIT(GetH2Index);
    VISIT(GetH2CILower);
    VISIT(GetH2CIUpper);
    VISIT(GetI2Index);
    VISIT(GetI2CILower);
    VISIT(GetI2CIUpper);
    VISIT(GetUniGroup);
    VISIT(GetGroupN);
    VISIT(GetSubGroupStudyID);
    VISIT(GetGDQbVal);
    VISIT(GetGDQbDf);
    VISIT(GetGDQbSig);
}

template <class Source, class Visit>
void VisitFurtherAnalyses(Visit& visit)
{
    VISIT(GetContrastEstES);
    VISIT(GetContrastEstStdError);
    VISIT(GetContrastEstZVal);
    VISIT(GetContrastEstSig);
    VISIT(GetContrastEstCILower);
    VISIT(GetContrastEstCIUpper);
    VISIT(GetContrastStatus);
    VISIT(GetCumulative);
    VISIT(GetEstCumulative);
    VISIT(GetCumEstES);
    VISIT(GetCumEstStdErr);
    VISIT(GetCumEstZval);
    VISIT(GetCumEstSig);
    VISIT(GetCumEstCiLower);
    VISIT(GetCumEstCiUpper);
    VISIT(GetTFImputedN0);
    VISIT(GetTFImputedEffectSize);
    VISIT(GetTFImputedStdError);
    VISIT(GetOverallTFEffectSize);
    VISIT(GetOverallTFStdError);
    VISIT(GetOverallTFZVal);
    VISIT(GetOverallTFSig);
    VISIT(GetOverallTFCILower);
    VISIT(GetOverallTFCIUpper);
}

template <class Source, class Visit>
void VisitPlots(Visit& visit)
{
    VISIT(GetFunnelX);
    VISIT(GetFunnelY);
    VISIT(GetFunnelCIX);
    VISIT(GetFunnelCIY);
    VISIT(GetFunnelContourX);
    VISIT(GetFunnelContourY);
    VISIT(GetGalbPlotX);
    VISIT(GetGalbPlotY);
    VISIT(GetGalbRegrSlope);
    VISIT(GetGalbRegrIntercept);
    VISIT(GetBubbleFlags);
    VISIT(GetBubbleCoefs);
    VISIT(GetBubbleXs);
    VISIT(GetBubblePredVals);
    VISIT(GetBubbleW);
    VISIT(GetBubbleCILower);
    VISIT(GetBubbleCIUpper);
    VISIT(GetBubbleCICurveX);
    VISIT(GetBubbleCICurveLower);
    VISIT(GetBubbleCICurveUpper);
}

template <class Source, class Visit>
void VisitTests(Visit& visit)
{
    VISIT(GetRegBasedTestCoef);
    VISIT(GetRegBasedTestStdError);
    VISIT(GetRegBasedTestVal);
    VISIT(GeRegBasedTestSig);
    VISIT(GetRegBasedTestDf);
    VISIT(GetRegBasedTestCILower);
    VISIT(GetRegBasedTestCIUpper);
    VISIT(GetIfRegrTestPassFlag);
    VISIT(GetRegrTestCoefficient);
    VISIT(GetRegrTestBetaStandErr);
    VISIT(GetRegrBetaTestVal);
    VISIT(GetRegrBetaTestPValue);
    VISIT(GetRegrBetaConfInterValLower);
    VISIT(GetRegrBetaConfInterValUpper);
}

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MAContModel* /*of*/, Visit visit)
{
    using Source = MA_NAMESPACE::MAContModel;
    VisitStudies<Source>(visit);
    VisitModels<Source>(visit);
    VisitFurtherAnalyses<Source>(visit);
    VisitPlots<Source>(visit);
    VisitTests<Source>(visit);
}

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MABinModel* /*of*/, Visit visit)
{
    using Source = MA_NAMESPACE::MABinModel;
    VisitStudies<Source>(visit);
    VisitModels<Source>(visit);
    VisitFurtherAnalyses<Source>(visit);
    VisitPlots<Source>(visit);
    VisitTests<Source>(visit);
    VISIT(GetExpEffectSize);
    VISIT(GetExpVariance);
    VISIT(GetExpStdError);
    VISIT(GetExpCILower);
    VISIT(GetExpCIUpper);
    VISIT(GetEstExpEffectSize);
    VISIT(GetEstExpCILower);
    VISIT(GetEstExpCIUpper);
    VISIT(GetExpPILower);
    VISIT(GetExpPIUpper);
    VISIT(GetContrastExpEstES);
    VISIT(GetContrastExpEstCILower);
    VISIT(GetContrastExpEstCIUpper);
    VISIT(GetCumExpEstES);
    VISIT(GetCumExpEstCiLower);
    VISIT(GetCumExpEstCiUpper);
    VISIT(GetOverallTFExpEffectSize);
    VISIT(GetOverallTFExpCILower);
    VISIT(GetOverallTFExpCIUpper);
    VISIT(GetLabbePlotX);
    VISIT(GetLabbePlotY);
    VISIT(GetLabbePlotW);
}

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MARegOutputStats* /*of*/, Visit visit)
{
    using Source = MA_NAMESPACE::MARegOutputStats;
    VISIT(GetNGoodRecords);
    VISIT(GetNBadRecords);
    VISIT(GetTau);
    VISIT(GetEstimation);
    VISIT(GetBetaStandErr);
    VISIT(GetBetaTest);
    VISIT(GetBetaTestPValue);
    VISIT(GetBetaConfInterValLower);
    VISIT(GetBetaConfInterValUpper);
    VISIT(GetWaldChiSquareTest);
    VISIT(GetWaldDf);
    VISIT(GetWaldPValue);
    VISIT(GetFTestVal);
    VISIT(GetFDf1);
    VISIT(GetFDf2);
    VISIT(GetFPValue);
    VISIT(GetMultiDisper);
    VISIT(GetResHomoChiSqure);
    VISIT(GetResHomoDf);
    VISIT(GetResHomoPValue);
    VISIT(GetHresSquare);
    VISIT(GetIresSquare);
    VISIT(GetRSquare);
}

#undef VISIT

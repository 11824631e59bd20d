#pragma once

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/regression/MARegOutputStats.h"

// Calls `visit(name, getter)` for every getter of numbers that an analysis or a regression's output has; the
// second is a pointer to a member function.

template <class Visit>
void VisitEach(Visit& /*visit*/)
{}

template <class Visit, class Getter, class... Rest>
void VisitEach(Visit& visit, const char* name, Getter getter, Rest... rest)
{
    visit(name, getter);
    VisitEach(visit, rest...);
}

#define NAMED(getter) #getter, &Source::getter

template <class Source, class Visit>
void VisitStudies(Visit& visit)
{
    VisitEach(visit, NAMED(GetNMissing), NAMED(GetNInvalid), NAMED(GetNDropped), NAMED(GetNonMissingStudyID),
              NAMED(GetEffectSize), NAMED(GetVariance), NAMED(GetStdError), NAMED(GetZVal), NAMED(GetSig),
              NAMED(GetCILower), NAMED(GetCIUpper), NAMED(GetSampSize), NAMED(GetWeight),
              NAMED(GetNormalizedWeight));
}

template <class Source, class Visit>
void VisitModels(Visit& visit)
{
    VisitEach(visit, NAMED(GetEstEffectSize), NAMED(GetEstStdError), NAMED(GetEstZVal), NAMED(GetEstSig),
              NAMED(GetEstCILower), NAMED(GetEstCIUpper), NAMED(GetPILower), NAMED(GetPIUpper),
              NAMED(GetTau2Var), NAMED(GetHomoTestChisquareQ), NAMED(GetHomoTestdf), NAMED(GetHomoTestSig),
              NAMED(GetH2Index), NAMED(GetH2CILower), NAMED(GetH2CIUpper), NAMED(GetI2Index),
              NAMED(GetI2CILower), NAMED(GetI2CIUpper), NAMED(GetUniGroup), NAMED(GetGroupN),
              NAMED(GetSubGroupStudyID), NAMED(GetGDQbVal), NAMED(GetGDQbDf), NAMED(GetGDQbSig));
}

template <class Source, class Visit>
void VisitFurtherAnalyses(Visit& visit)
{
    VisitEach(visit, NAMED(GetContrastEstES), NAMED(GetContrastEstStdError), NAMED(GetContrastEstZVal),
              NAMED(GetContrastEstSig), NAMED(GetContrastEstCILower), NAMED(GetContrastEstCIUpper),
              NAMED(GetContrastStatus), NAMED(GetCumulative), NAMED(GetEstCumulative), NAMED(GetCumEstES),
              NAMED(GetCumEstStdErr), NAMED(GetCumEstZval), NAMED(GetCumEstSig), NAMED(GetCumEstCiLower),
              NAMED(GetCumEstCiUpper), NAMED(GetTFImputedN0), NAMED(GetTFImputedEffectSize),
              NAMED(GetTFImputedStdError), NAMED(GetOverallTFEffectSize), NAMED(GetOverallTFStdError),
              NAMED(GetOverallTFZVal), NAMED(GetOverallTFSig), NAMED(GetOverallTFCILower),
              NAMED(GetOverallTFCIUpper));
}

template <class Source, class Visit>
void VisitPlots(Visit& visit)
{
    VisitEach(visit, NAMED(GetFunnelX), NAMED(GetFunnelY), NAMED(GetFunnelCIX), NAMED(GetFunnelCIY),
              NAMED(GetFunnelContourX), NAMED(GetFunnelContourY), NAMED(GetGalbPlotX), NAMED(GetGalbPlotY),
              NAMED(GetGalbRegrSlope), NAMED(GetGalbRegrIntercept), NAMED(GetBubbleFlags),
              NAMED(GetBubbleCoefs), NAMED(GetBubbleXs), NAMED(GetBubblePredVals), NAMED(GetBubbleW),
              NAMED(GetBubbleCILower), NAMED(GetBubbleCIUpper), NAMED(GetBubbleCICurveX),
              NAMED(GetBubbleCICurveLower), NAMED(GetBubbleCICurveUpper));
}

template <class Source, class Visit>
void VisitTests(Visit& visit)
{
    VisitEach(visit, NAMED(GetRegBasedTestCoef), NAMED(GetRegBasedTestStdError), NAMED(GetRegBasedTestVal),
              NAMED(GeRegBasedTestSig), NAMED(GetRegBasedTestDf), NAMED(GetRegBasedTestCILower),
              NAMED(GetRegBasedTestCIUpper), NAMED(GetIfRegrTestPassFlag), NAMED(GetRegrTestCoefficient),
              NAMED(GetRegrTestBetaStandErr), NAMED(GetRegrBetaTestVal), NAMED(GetRegrBetaTestPValue),
              NAMED(GetRegrBetaConfInterValLower), NAMED(GetRegrBetaConfInterValUpper));
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
    VisitEach(visit, NAMED(GetExpEffectSize), NAMED(GetExpVariance), NAMED(GetExpStdError),
              NAMED(GetExpCILower), NAMED(GetExpCIUpper), NAMED(GetEstExpEffectSize), NAMED(GetEstExpCILower),
              NAMED(GetEstExpCIUpper), NAMED(GetExpPILower), NAMED(GetExpPIUpper), NAMED(GetContrastExpEstES),
              NAMED(GetContrastExpEstCILower), NAMED(GetContrastExpEstCIUpper), NAMED(GetCumExpEstES),
              NAMED(GetCumExpEstCiLower), NAMED(GetCumExpEstCiUpper), NAMED(GetOverallTFExpEffectSize),
              NAMED(GetOverallTFExpCILower), NAMED(GetOverallTFExpCIUpper), NAMED(GetLabbePlotX),
              NAMED(GetLabbePlotY), NAMED(GetLabbePlotW));
}

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MARegOutputStats* /*of*/, Visit visit)
{
    using Source = MA_NAMESPACE::MARegOutputStats;
    VisitEach(visit, NAMED(GetNGoodRecords), NAMED(GetNBadRecords), NAMED(GetTau), NAMED(GetEstimation),
              NAMED(GetBetaStandErr), NAMED(GetBetaTest), NAMED(GetBetaTestPValue),
              NAMED(GetBetaConfInterValLower), NAMED(GetBetaConfInterValUpper), NAMED(GetWaldChiSquareTest),
              NAMED(GetWaldDf), NAMED(GetWaldPValue), NAMED(GetFTestVal), NAMED(GetFDf1), NAMED(GetFDf2),
              NAMED(GetFPValue), NAMED(GetMultiDisper), NAMED(GetResHomoChiSqure), NAMED(GetResHomoDf),
              NAMED(GetResHomoPValue), NAMED(GetHresSquare), NAMED(GetIresSquare), NAMED(GetRSquare));
}

#undef NAMED

#pragma once

#include "meta_analysis/analysis/MABinModel.h"
#include "meta_analysis/analysis/MAContModel.h"
#include "meta_analysis/regression/MARegOutputStats.h"

#include <utility>

// Calls `visit(name, getter)` for every getter of numbers that an analysis or a regression's output has; the
// second is a pointer to a member function.

template <class Visit, class... Getters>
void VisitEach(Visit& visit, const std::pair<const char*, Getters>&... named)
{
    (visit(named.first, named.second), ...);
}

#define NAMED(getter) std::pair<const char*, decltype(&Source::getter)>(#getter, &Source::getter)

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MAAnalysisResults* /*of*/, Visit visit)
{
    using Source = MA_NAMESPACE::MAAnalysisResults;
    VisitEach(visit, NAMED(GetNMissing), NAMED(GetNInvalid), NAMED(GetNDropped), NAMED(GetNonMissingStudyID),
              NAMED(GetEffectSize), NAMED(GetVariance), NAMED(GetStdError), NAMED(GetZVal), NAMED(GetSig),
              NAMED(GetLog10Sig), NAMED(GetCILower), NAMED(GetCIUpper), NAMED(GetSampSize), NAMED(GetWeight),
              NAMED(GetNormalizedWeight), NAMED(GetEstEffectSize), NAMED(GetEstStdError), NAMED(GetEstZVal),
              NAMED(GetEstSig), NAMED(GetEstLog10Sig), NAMED(GetEstCILower), NAMED(GetEstCIUpper),
              NAMED(GetPILower), NAMED(GetPIUpper), NAMED(GetTau2Var), NAMED(GetTau2CILower),
              NAMED(GetTau2CIUpper), NAMED(GetTau2Convergence), NAMED(GetTau2Evaluations),
              NAMED(GetLogLikelihood), NAMED(GetAIC), NAMED(GetBIC), NAMED(GetAICc), NAMED(GetPIProbability),
              NAMED(GetHomoTestChisquareQ), NAMED(GetHomoTestdf), NAMED(GetHomoTestSig),
              NAMED(GetHomoTestLog10Sig), NAMED(GetH2Index), NAMED(GetH2CILower), NAMED(GetH2CIUpper),
              NAMED(GetI2Index), NAMED(GetI2CILower), NAMED(GetI2CIUpper), NAMED(GetUniGroup),
              NAMED(GetGroupN), NAMED(GetSubGroupStudyID), NAMED(GetGDQbVal), NAMED(GetGDQbDf),
              NAMED(GetGDQbSig), NAMED(GetGDQbLog10Sig), NAMED(GetContrastEstES),
              NAMED(GetContrastEstStdError), NAMED(GetContrastEstZVal), NAMED(GetContrastEstSig),
              NAMED(GetContrastLog10Sig), NAMED(GetContrastEstCILower), NAMED(GetContrastEstCIUpper),
              NAMED(GetContrastStatus), NAMED(GetCumulative), NAMED(GetEstCumulative), NAMED(GetCumEstES),
              NAMED(GetCumEstStdErr), NAMED(GetCumEstZval), NAMED(GetCumEstSig), NAMED(GetCumEstLog10Sig),
              NAMED(GetCumEstCiLower), NAMED(GetCumEstCiUpper), NAMED(GetTFImputedN0),
              NAMED(GetTFImputedEffectSize), NAMED(GetTFImputedStdError), NAMED(GetOverallTFEffectSize),
              NAMED(GetOverallTFStdError), NAMED(GetOverallTFZVal), NAMED(GetOverallTFSig),
              NAMED(GetOverallTFCILower), NAMED(GetOverallTFCIUpper), NAMED(GetFunnelX), NAMED(GetFunnelY),
              NAMED(GetFunnelCIX), NAMED(GetFunnelCIY), NAMED(GetFunnelContourX), NAMED(GetFunnelContourY),
              NAMED(GetGalbPlotX), NAMED(GetGalbPlotY), NAMED(GetGalbRegrSlope), NAMED(GetGalbRegrIntercept),
              NAMED(GetBubbleFlags), NAMED(GetBubbleCoefs), NAMED(GetBubbleXs), NAMED(GetBubblePredVals),
              NAMED(GetBubbleW), NAMED(GetBubbleCILower), NAMED(GetBubbleCIUpper), NAMED(GetBubbleCICurveX),
              NAMED(GetBubbleCICurveLower), NAMED(GetBubbleCICurveUpper), NAMED(GetRegBasedTestCoef),
              NAMED(GetRegBasedTestStdError), NAMED(GetRegBasedTestVal), NAMED(GeRegBasedTestSig),
              NAMED(GetRegBasedTestLog10Sig), NAMED(GetRegBasedTestDf), NAMED(GetRegBasedTestCILower),
              NAMED(GetRegBasedTestCIUpper), NAMED(GetIfRegrTestPassFlag), NAMED(GetRegrTestCoefficient),
              NAMED(GetRegrTestBetaStandErr), NAMED(GetRegrBetaTestVal), NAMED(GetRegrBetaTestPValue),
              NAMED(GetRegrBetaConfInterValLower), NAMED(GetRegrBetaConfInterValUpper));
}

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MABinModel* model, Visit visit)
{
    using Source = MA_NAMESPACE::MABinModel;
    VisitGetters<Visit&>(static_cast<const MA_NAMESPACE::MAAnalysisResults*>(model), visit);
    VisitEach(visit, NAMED(GetNZeroCorrected), NAMED(GetNUninformative), NAMED(GetNPoolCorrected),
              NAMED(GetCumNPoolCorrected), NAMED(GetExpEffectSize), NAMED(GetExpVariance),
              NAMED(GetExpStdError), NAMED(GetExpCILower), NAMED(GetExpCIUpper), NAMED(GetEstExpEffectSize),
              NAMED(GetEstExpCILower), NAMED(GetEstExpCIUpper), NAMED(GetExpPILower), NAMED(GetExpPIUpper),
              NAMED(GetContrastExpEstES), NAMED(GetContrastExpEstCILower), NAMED(GetContrastExpEstCIUpper),
              NAMED(GetCumExpEstES), NAMED(GetCumExpEstCiLower), NAMED(GetCumExpEstCiUpper),
              NAMED(GetOverallTFExpEffectSize), NAMED(GetOverallTFExpCILower), NAMED(GetOverallTFExpCIUpper),
              NAMED(GetLabbePlotX), NAMED(GetLabbePlotY), NAMED(GetLabbePlotW));
}

template <class Visit>
void VisitGetters(const MA_NAMESPACE::MARegOutputStats* /*of*/, Visit visit)
{
    using Source = MA_NAMESPACE::MARegOutputStats;
    VisitEach(visit, NAMED(GetNGoodRecords), NAMED(GetNBadRecords), NAMED(GetTau), NAMED(GetTau2CILower),
              NAMED(GetTau2CIUpper), NAMED(GetTau2Convergence), NAMED(GetTau2Evaluations),
              NAMED(GetLogLikelihood), NAMED(GetAIC), NAMED(GetBIC), NAMED(GetAICc), NAMED(GetEstimation),
              NAMED(GetBetaStandErr), NAMED(GetBetaTest), NAMED(GetBetaTestPValue),
              NAMED(GetBetaTestLog10PValue), NAMED(GetBetaConfInterValLower), NAMED(GetBetaConfInterValUpper),
              NAMED(GetWaldChiSquareTest), NAMED(GetWaldDf), NAMED(GetWaldPValue), NAMED(GetFTestVal),
              NAMED(GetFDf1), NAMED(GetFDf2), NAMED(GetFPValue), NAMED(GetModelTestLog10PValue),
              NAMED(GetMultiDisper), NAMED(GetResHomoChiSqure), NAMED(GetResHomoDf), NAMED(GetResHomoPValue),
              NAMED(GetResHomoLog10PValue), NAMED(GetHresSquare), NAMED(GetIresSquare), NAMED(GetRSquare));
}

#undef NAMED

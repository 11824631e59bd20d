#include "meta_analysis/regression/MARegOutputStats.h"

#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegFit.h"
#include "meta_analysis/settings/Memory.h"

#include <exception>

namespace MA_NAMESPACE {

struct MARegOutputStats::Results
{
    int goodRecords = 0;
    int badRecords = 0;
    double tau2 = 0.0;
    MATau2Results tau2Results;
    std::vector<double> coefficients;
    std::vector<KXRegrParameter> parameters;
    KXBitSet nonRedundant;
    std::vector<double> stdErrors;
    std::vector<double> statistics;
    std::vector<MAPValue> pValues;
    std::vector<double> lowerLimits;
    std::vector<double> upperLimits;
    MAModelTest wald{0.0, {0.0, KXMV::Missing()}, 0, 0};
    MAModelTest f{0.0, {0.0, KXMV::Missing()}, 0, 0};
    double modelLog10PValue = KXMV::Missing(); ///< of the one that was made
    double dispersion = 1.0;
    double residualQ = KXMV::Missing();
    MAPValue residualQPValue;
    int residualDf = 0;
    double residualH2 = KXMV::Missing();
    double residualI2 = KXMV::Missing();
    double rSquare = 0.0;

    void TakeTest(const MAModelTest& made, MAModelTest& test)
    {
        test = made;
        modelLog10PValue = made.pValue.Log10();
    }
};

MARegOutputStats::MARegOutputStats(const MARegSettings& /*settings*/, MAFEAlgorithm& engine) noexcept
    : MARegOutputStats(static_cast<const MARegAlgorithm&>(engine))
{}

MARegOutputStats::MARegOutputStats(const MARegSettings& /*settings*/, MAREAlgorithm& engine) noexcept
    : MARegOutputStats(static_cast<const MARegAlgorithm&>(engine))
{}

MARegOutputStats::MARegOutputStats(const MARegAlgorithm& engine) noexcept : results_(ResultsOf(engine)) {}

std::unique_ptr<const MARegOutputStats::Results>
MARegOutputStats::ResultsOf(const MARegAlgorithm& engine) noexcept
{
    try {
        auto results = std::make_unique<Results>();
        results->parameters = engine.parameters_;
        results->tau2 = engine.tau2_;
        results->tau2Results = engine.tau2Results_;
        results->rSquare = engine.rSquare_;
        results->residualQ = engine.residualQ_;
        results->residualQPValue = engine.residualQPValue_;
        results->residualDf = engine.residualDf_;
        results->residualH2 = engine.residualH2_;
        results->residualI2 = engine.residualI2_;
        if (engine.waldTest_ != nullptr)
            results->TakeTest(*engine.waldTest_, results->wald);
        if (engine.fTest_ != nullptr)
            results->TakeTest(*engine.fTest_, results->f);
        if (const MARegFit* fit = engine.fit_.get()) {
            results->goodRecords = fit->GoodRecordCount();
            results->badRecords = fit->BadRecordCount();
            results->coefficients = fit->Coefficients();
            results->nonRedundant = fit->NonRedundant();
            results->stdErrors = fit->StdErrors();
            results->statistics = fit->Statistics();
            results->pValues = fit->PValues();
            results->lowerLimits = fit->LowerLimits();
            results->upperLimits = fit->UpperLimits();
            results->dispersion = fit->Dispersion();
        }
        return results;
    } catch (const std::exception&) {
        return nullptr;
    }
}

const MARegOutputStats::Results& MARegOutputStats::Get() const noexcept
{
    static const Results none;
    return results_ == nullptr ? none : *results_;
}

MARegOutputStats::~MARegOutputStats() = default;

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
    return CopyOf(Get().parameters);
}

KXBitSet MARegOutputStats::GetRedundancyInfo() const
{
    try {
        return Get().nonRedundant;
    } catch (const std::exception&) {
        return KXBitSet();
    }
}

std::vector<double> MARegOutputStats::GetBetaStandErr() const
{
    return CopyOf(Get().stdErrors);
}

std::vector<double> MARegOutputStats::GetBetaTest() const
{
    return CopyOf(Get().statistics);
}

std::vector<double> MARegOutputStats::GetBetaTestPValue() const
{
    return FieldOf(Get().pValues, &MAPValue::value);
}

std::vector<double> MARegOutputStats::GetBetaTestLog10PValue() const
{
    return FieldOf(Get().pValues, &MAPValue::Log10);
}

std::vector<double> MARegOutputStats::GetBetaConfInterValLower() const
{
    return CopyOf(Get().lowerLimits);
}

std::vector<double> MARegOutputStats::GetBetaConfInterValUpper() const
{
    return CopyOf(Get().upperLimits);
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
    return Get().modelLog10PValue;
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
    return Get().residualQ;
}

double MARegOutputStats::GetResHomoDf() const
{
    return Get().residualDf;
}

double MARegOutputStats::GetResHomoPValue() const
{
    return Get().residualQPValue.value;
}

double MARegOutputStats::GetResHomoLog10PValue() const
{
    return Get().residualQPValue.Log10();
}

double MARegOutputStats::GetHresSquare() const
{
    return Get().residualH2;
}

double MARegOutputStats::GetIresSquare() const
{
    return Get().residualI2;
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

} // namespace MA_NAMESPACE

#include "meta_analysis/regression/MARegOutputStats.h"

#include "meta_analysis/platform/common/CopyOf.h"
#include "meta_analysis/regression/MAFEAlgorithm.h"
#include "meta_analysis/regression/MAREAlgorithm.h"
#include "meta_analysis/regression/MARegFit.h"

namespace MA_NAMESPACE {

struct MARegOutputStats::Results
{
    int goodRecords = 0;
    int badRecords = 0;
    double tau2 = 0.0;
    std::vector<double> coefficients;
    std::vector<KXRegrParameter> parameters;
    KXBitSet nonRedundant;
    std::vector<double> stdErrors;
    std::vector<double> statistics;
    std::vector<double> significances;
    std::vector<double> lowerLimits;
    std::vector<double> upperLimits;
    MAModelTest wald{0.0, 0.0, 0, 0};
    MAModelTest f{0.0, 0.0, 0, 0};
    double dispersion = 1.0;
    double residualQ = 0.0;
    double residualQSignificance = 0.0;
    int residualDf = 0;
    double residualH2 = 0.0;
    double residualI2 = 0.0;
    double rSquare = 0.0;
};

MARegOutputStats::MARegOutputStats(const MARegSettings& /*settings*/, MAFEAlgorithm& engine)
    : MARegOutputStats(static_cast<const MARegAlgorithm&>(engine))
{}

MARegOutputStats::MARegOutputStats(const MARegSettings& /*settings*/, MAREAlgorithm& engine)
    : MARegOutputStats(static_cast<const MARegAlgorithm&>(engine))
{}

MARegOutputStats::MARegOutputStats(const MARegAlgorithm& engine)
{
    auto results = std::make_unique<Results>();
    results->parameters = engine.parameters_;
    results->tau2 = engine.tau2_;
    results->rSquare = engine.rSquare_;
    results->residualQ = engine.residualQ_;
    results->residualQSignificance = engine.residualQSignificance_;
    results->residualDf = engine.residualDf_;
    results->residualH2 = engine.residualH2_;
    results->residualI2 = engine.residualI2_;
    if (engine.waldTest_ != nullptr)
        results->wald = *engine.waldTest_;
    if (engine.fTest_ != nullptr)
        results->f = *engine.fTest_;
    if (const MARegFit* fit = engine.fit_.get()) {
        results->goodRecords = fit->GoodRecordCount();
        results->badRecords = fit->BadRecordCount();
        results->coefficients = fit->Coefficients();
        results->nonRedundant = fit->NonRedundant();
        results->stdErrors = fit->StdErrors();
        results->statistics = fit->Statistics();
        results->significances = fit->Significances();
        results->lowerLimits = fit->LowerLimits();
        results->upperLimits = fit->UpperLimits();
        results->dispersion = fit->Dispersion();
    }
    results_ = std::move(results);
}

MARegOutputStats::~MARegOutputStats() = default;

int MARegOutputStats::GetNGoodRecords() const
{
    return results_->goodRecords;
}

int MARegOutputStats::GetNBadRecords() const
{
    return results_->badRecords;
}

double MARegOutputStats::GetTau() const
{
    return results_->tau2;
}

std::vector<double> MARegOutputStats::GetEstimation() const
{
    return CopyOf(results_->coefficients);
}

std::vector<KXRegrParameter> MARegOutputStats::GetParameters() const
{
    return CopyOf(results_->parameters);
}

KXBitSet MARegOutputStats::GetRedundancyInfo() const
{
    return results_->nonRedundant;
}

std::vector<double> MARegOutputStats::GetBetaStandErr() const
{
    return CopyOf(results_->stdErrors);
}

std::vector<double> MARegOutputStats::GetBetaTest() const
{
    return CopyOf(results_->statistics);
}

std::vector<double> MARegOutputStats::GetBetaTestPValue() const
{
    return CopyOf(results_->significances);
}

std::vector<double> MARegOutputStats::GetBetaConfInterValLower() const
{
    return CopyOf(results_->lowerLimits);
}

std::vector<double> MARegOutputStats::GetBetaConfInterValUpper() const
{
    return CopyOf(results_->upperLimits);
}

double MARegOutputStats::GetWaldChiSquareTest() const
{
    return results_->wald.statistic;
}

int MARegOutputStats::GetWaldDf() const
{
    return results_->wald.df1;
}

double MARegOutputStats::GetWaldPValue() const
{
    return results_->wald.significance;
}

double MARegOutputStats::GetFTestVal() const
{
    return results_->f.statistic;
}

double MARegOutputStats::GetFPValue() const
{
    return results_->f.significance;
}

int MARegOutputStats::GetFDf1() const
{
    return results_->f.df1;
}

int MARegOutputStats::GetFDf2() const
{
    return results_->f.df2;
}

double MARegOutputStats::GetMultiDisper() const
{
    return results_->dispersion;
}

double MARegOutputStats::GetResHomoChiSqure() const
{
    return results_->residualQ;
}

double MARegOutputStats::GetResHomoDf() const
{
    return results_->residualDf;
}

double MARegOutputStats::GetResHomoPValue() const
{
    return results_->residualQSignificance;
}

double MARegOutputStats::GetHresSquare() const
{
    return results_->residualH2;
}

double MARegOutputStats::GetIresSquare() const
{
    return results_->residualI2;
}

double MARegOutputStats::GetRSquare() const
{
    return results_->rSquare;
}

} // namespace MA_NAMESPACE

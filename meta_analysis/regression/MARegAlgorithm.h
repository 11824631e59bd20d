#pragma once

#include "meta_analysis/inference/MAPValue.h"
#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXBitSet.h"
#include "meta_analysis/platform/common/KXMV.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/platform/regression/KXFactorCounts.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"
#include "meta_analysis/pooling/MATau2Results.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <memory>
#include <vector>

namespace MA_NAMESPACE {

class MADesignMatrix;
class MARegFit;
class MARegOutputStats;
struct MAModelTest;
struct MAPrediction;

/// Columns of one model effect in the design.
struct MAEffectInfo
{
    int effectNumber = 0; ///< from 0
    int startColumn = 0;
    int valueCount = 0;                         ///< number of columns
    std::vector<std::vector<int>> combinations; ///< of factor levels, one per column; empty without factors
};

/// What the fixed-effect and the random-effects meta-regression share: settings, design matrix, parameters,
/// the fit and its results. Not a type of its own: hosts use `MAFEAlgorithm` and `MAREAlgorithm`.
class META_ANALYSIS_EXPORT MARegAlgorithm
{
public:
    virtual const MARegSettings& GetSettings() const;

    /// First pass over the records: statistics, levels of the factors, and one parameter per column.
    /// Errors: 460011 the iterator cannot be started, 460012 it fails or the host cancels, 460009 the
    /// settings are invalid, 460099.
    virtual KXStatus CreateParameters(MultiPassRecordIter& records);
    /// One per column of the design, the intercept first.
    virtual std::vector<KXRegrParameter> GetParameters() const;
    virtual bool AreParamsCreated() const;
    /// Counts over the factors of the settings; empty before the first pass.
    virtual KXFactorCounts GetFactorCounts() const;

    /// Fits the model. Creates the parameters first, unless that was done since the last build: every build
    /// begins afresh. Errors as `CreateParameters`, 460012 also when its passes differ in length, and 460073
    /// no usable study but some unusable ones; after one there are no results. Warnings go to `GetWarnings`.
    virtual KXStatus BuildModel(MultiPassRecordIter& records) = 0;
    virtual bool IsModelBuilt() const;
    virtual KXStatus GetStatus() const;
    virtual std::vector<MAEffectInfo> GetEffectInfo() const;

    /// Prediction for a record: fitted value, its standard error and confidence limits; the residual, its
    /// standard error and the leverage, which need the record's dependent and omega weight. All seven are
    /// missing, and 460031 returned, for a record whose predictors are not usable, and while no model is
    /// built. Error 460099.
    virtual KXStatus Score(const Record& record, double& fit, double& stdError, double& lower, double& upper,
                           double& residual, double& residualStdError, double& leverage) const = 0;

    /// Stored for the host; nothing depends on it.
    virtual void SetNumOfPredictors(int count);
    /// Writes the effect info to the debug display.
    virtual void Display() const;

    /// Of the last fit: records that were not usable.
    int GetNBadRecords() const;
    /// Warnings of the last build, each once, in order of first occurrence.
    const std::vector<KXStatus>& GetWarnings() const { return warnings_; }
    /// The regression-based small-study test needs the coefficients and their tests alone.
    void setUsedByRegBaseTest(bool used) { usedByRegBaseTest_ = used; }
    /// Of the bubble plot, a build yields the coefficients alone; its band needs the covariance that the
    /// small-study test's build scales too.
    void setUsedByBubbPlot(bool used) { usedByBubblePlot_ = used; }

    MARegAlgorithm(const MARegAlgorithm&) = delete;
    MARegAlgorithm& operator=(const MARegAlgorithm&) = delete;

protected:
    explicit MARegAlgorithm(const MARegSettings& settings);
    ~MARegAlgorithm();

    /// Parameters, rows in memory: what comes before any fit.
    KXStatus PrepareRows(MultiPassRecordIter& records);
    /// Adds a warning to the list; an error becomes the status. True when the build can go on.
    bool Passed(const KXStatus& status);
    /// Adds the warnings about the settings to those of the build.
    void WarnOfSettings(bool isRandom);
    /// Takes down the model, so that nothing of it stands beside another's results.
    void ForgetModel();
    /// What comes after a fit: the model is built, and records can be scored.
    void FinishBuild(bool scoresUseStudentT);
    KXStatus ScoreRecord(const Record& record, double& fit, double& stdError, double& lower, double& upper,
                         double& residual, double& residualStdError, double& leverage) const;
    void TestModel(bool asF);

    const MARegSettings* settings_; ///< the host's, not owned
    KXStatus settingsStatus_;       ///< 460009 or 460099 when they could not be used at construction
    KXStatus status_;
    std::unique_ptr<MADesignMatrix> design_;
    std::unique_ptr<MARegFit> fit_;
    std::vector<KXRegrParameter> parameters_;
    std::vector<MAEffectInfo> effectInfo_;
    bool parametersCreated_ = false;
    bool parametersUsed_ = false; ///< by a build
    bool modelBuilt_ = false;
    int predictorCount_ = 0;
    bool usedByRegBaseTest_ = false;
    bool usedByBubblePlot_ = false;
    std::vector<KXStatus> warnings_;

    double tau2_ = 0.0;
    MATau2Results tau2Results_;
    double rSquare_ = 0.0;
    std::unique_ptr<MAModelTest> waldTest_; ///< null until computed
    std::unique_ptr<MAModelTest> fTest_;
    double residualQ_ = KXMV::Missing();
    MAPValue residualQPValue_;
    int residualDf_ = 0;
    double residualH2_ = KXMV::Missing();
    double residualI2_ = KXMV::Missing();

private:
    friend class MARegOutputStats;

    KXStatus CreateParametersFrom(MultiPassRecordIter& records);
    KXStatus Predict(const Record& record, MAPrediction& prediction) const;
    void SaveEffectInfo();
    void AppendParameters(const KXModelEffect& effect, const MAEffectInfo& info);

    double scoreCriticalValue_ = 0.0; ///< one for all records
};

} // namespace MA_NAMESPACE

#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/common/MultiPassRecordIter.h"
#include "meta_analysis/platform/regression/KXFactorCounts.h"
#include "meta_analysis/platform/regression/KXRegrParameter.h"
#include "meta_analysis/regression/MAPredictedEffect.h"
#include "meta_analysis/regression/MARegPlots.h"
#include "meta_analysis/settings/MARegSettings.h"

#include <memory>
#include <vector>

namespace MA_NAMESPACE {

struct MARegBuild;
struct MARegResults;
struct MARegTask;

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
    /// Errors: `ITERATOR_NOT_STARTED`; `ITERATOR_FAILED` it fails or the host cancels; `INPUT_NOT_GIVEN` the
    /// settings are invalid; `OUT_OF_MEMORY`.
    virtual KXStatus CreateParameters(MultiPassRecordIter& records);
    /// One per column of the design, the intercept first.
    virtual std::vector<KXRegrParameter> GetParameters() const;
    virtual bool AreParamsCreated() const;
    /// Counts over the factors of the settings; empty before the first pass.
    virtual KXFactorCounts GetFactorCounts() const;

    /// Fits the model. Creates the parameters first, unless that was done since the last build: every build
    /// begins afresh. Errors as `CreateParameters`; `ITERATOR_FAILED` also when its passes differ in length;
    /// `NO_USABLE_STUDY` no usable study but some unusable ones; with a cluster variable `ONE_CLUSTER`, and
    /// for CR1 and CR0 `TOO_FEW_CLUSTERS`. After an error there are no results. Warnings go to `GetWarnings`.
    virtual KXStatus BuildModel(MultiPassRecordIter& records) = 0;
    virtual bool IsModelBuilt() const;
    virtual KXStatus GetStatus() const;
    virtual std::vector<MAEffectInfo> GetEffectInfo() const;

    /// Prediction for a record: fitted value, its standard error and confidence limits; the residual, its
    /// standard error and the leverage, which need the record's dependent and omega weight. All seven are
    /// missing, with warning `UNUSABLE_RECORD`, for a record whose predictors are not usable, and while no
    /// model is built. Error `OUT_OF_MEMORY`.
    virtual KXStatus Score(const Record& record, double& fit, double& stdError, double& lower, double& upper,
                           double& residual, double& residualStdError, double& leverage) const;

    /// Stored for the host; nothing depends on it.
    virtual void SetNumOfPredictors(int count);
    /// Writes the effect info to the debug display.
    virtual void Display() const;

    /// Records that the last fit could not use.
    int GetNBadRecords() const;
    /// Warnings of the last build, each once, in order of first occurrence.
    const std::vector<KXStatus>& GetWarnings() const;
    /// The build yields the coefficients and their tests alone, which a small-study test needs.
    void setUsedByRegBaseTest(bool used);
    /// The build yields the coefficients alone, without tests and adjustment.
    void setUsedByBubbPlot(bool used);

    /// What `MARegOutputStats` shares with the engine: the parameters once they are created, and the results
    /// of the last build, which later builds do not change. Null before the parameters are created.
    std::shared_ptr<const MARegResults> Results() const noexcept;

    /// The effect that the model predicts at the covariates and factor levels of a record; its other
    /// variables are not read. Interactions and powers follow from these values. Warning
    /// `PREDICTION_UNAVAILABLE`: the data determine none, or no model is built. Error `OUT_OF_MEMORY`.
    KXStatus PredictEffect(const Record& values, MAPredictedEffect& predicted) const;
    /// Coordinates of plots of the fitted model over the records of the build, one row per study used; they
    /// are empty while no model is built. Errors: `ITERATOR_NOT_STARTED`; `ITERATOR_FAILED`; `OUT_OF_MEMORY`.
    KXStatus ForestPlot(MultiPassRecordIter& records, std::vector<MARegForestRow>& rows) const;
    /// `covariate` is a variable of the settings' covariates (`INPUT_NOT_GIVEN` for any other); the line has
    /// `points` points, at least 2. O(points k p).
    KXStatus BubblePlot(MultiPassRecordIter& records, int covariate, int points, MARegBubblePlot& plot) const;

    MARegAlgorithm(const MARegAlgorithm&) = delete;
    MARegAlgorithm& operator=(const MARegAlgorithm&) = delete;

protected:
    explicit MARegAlgorithm(const MARegSettings& settings);
    ~MARegAlgorithm();

    /// Reads the records, fits by `fit`, and stores what it returns.
    KXStatus Build(MultiPassRecordIter& records, bool isRandom, MARegBuild (*fit)(const MARegTask&));

private:
    struct META_ANALYSIS_HIDDEN State;

    std::unique_ptr<State> state_;
};

} // namespace MA_NAMESPACE

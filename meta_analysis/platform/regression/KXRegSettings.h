#pragma once

#include "meta_analysis/platform/common/Export.h"
#include "meta_analysis/platform/common/KXConst.h"
#include "meta_analysis/platform/common/KXStatus.h"
#include "meta_analysis/platform/regression/KXModelEffect.h"

#include <string>
#include <utility>
#include <vector>

class KXQueryCancel;

/// Settings that every regression has: which variable plays which role, the effects of the model, and how
/// it is computed.
///
/// Variables are given by their index in the host's variable list, -1 for none, which is their default. The
/// dependent, the factors and the covariates exclude each other; a weight may be any variable. The order of
/// the virtual operations is part of the interface: hosts are compiled against it.
class META_ANALYSIS_EXPORT KXRegSettings
{
public:
    /// Bits of a variable's role.
    enum VariableRole : int
    {
        ROLE_DEPENDENT = 1,
        ROLE_FACTOR = 2,
        ROLE_COVARIATE = 4,
        ROLE_WEIGHT = 8 ///< frequency or regression weight
    };

    KXRegSettings() noexcept;
    KXRegSettings(const KXRegSettings&) = default;
    KXRegSettings& operator=(const KXRegSettings&) = default;
    virtual ~KXRegSettings();

    virtual KXConst::KXRegModelType GetModelType() const = 0;

    /// An error when the settings cannot be used; with the flag also when there is no dependent.
    virtual KXStatus IsValidSettings(bool dependentRequired) const = 0;

    /// Makes a variable the dependent, in place of the one before. False, and nothing changed, for a negative
    /// index, a factor or a covariate.
    virtual bool SetDependent(int index);

    /// Position of the variable in the covariates, also when it was there before; -1, and nothing changed,
    /// for a negative index, the dependent, a factor, or when memory runs out.
    virtual int AddCovariate(int index);

    /// Appends a copy of an effect to the model. False, and nothing changed, when memory runs out.
    virtual bool AddModelEffect(const KXModelEffect& effect);

    /// Writes the settings to the debug display.
    virtual void Display() const = 0;

    /// Position of the variable in the factors, also when it was there before with the same size; -1, and
    /// nothing changed, for a negative index, a size below 1 or another than before, the dependent, a
    /// covariate, or when memory runs out. The levels of a factor are 0 ... `size` - 1.
    int AddFactor(int index, int size) noexcept;

    int GetDependent() const noexcept { return dependent_; }
    const std::vector<int>& GetFactors() const noexcept { return factors_; }
    /// Number of levels of each factor.
    const std::vector<int>& GetFactorSizes() const noexcept { return factorSizes_; }
    /// Number of levels of the factor with this variable index; 0 when it is no factor.
    int GetFactorSize(int index) const noexcept;
    const std::vector<int>& GetCovariates() const noexcept { return covariates_; }
    const std::vector<KXModelEffect>& GetModelEffects() const noexcept { return modelEffects_; }

    /// All roles of a variable, a sum of `VariableRole`; 0 for none.
    int GetVariableRoles(int index) const noexcept;

    /// Variable that says how many cases a record stands for. Factor counts and data statistics count by it;
    /// a meta-regression does not.
    void SetFreqWeightVar(int index) noexcept { freqWeightVar_ = index; }
    int GetFreqWeightVar() const noexcept { return freqWeightVar_; }
    /// Weight of a record in the regression. A meta-regression keeps statistics of it alone, and takes its
    /// weights from the omega-weight variable.
    void SetRegrWeightVar(int index) noexcept { regrWeightVar_ = index; }
    int GetRegrWeightVar() const noexcept { return regrWeightVar_; }
    /// Whether the model has an intercept; default true, false for meta-regressions. Without one the fit
    /// passes through the origin.
    void SetInterceptUse(bool value) noexcept { interceptUse_ = value; }
    bool GetInterceptUse() const noexcept { return interceptUse_; }
    /// A column of a regression is redundant when those before it leave no more than this part of its sum of
    /// squares; from 0 to below 1, default 1e-12. A larger one drops nearly collinear predictors, a smaller
    /// one keeps them with standard errors that are large and inexact.
    void SetComputationalTolerance(double value) noexcept { computationalTolerance_ = value; }
    double GetComputationalTolerance() const noexcept { return computationalTolerance_; }
    /// Confidence level, a fraction between 0 and 1; default 0.95.
    void SetConfidenceLevel(double value) noexcept { confidenceLevel_ = value; }
    double GetConfidenceLevel() const noexcept { return confidenceLevel_; }
    /// Asked whether to stop, after every record of a pass and every fit; the host's, default null for none.
    /// Asking costs one virtual call a record.
    void SetCancelObject(KXQueryCancel* cancel) noexcept { cancel_ = cancel; }
    KXQueryCancel* GetCancelObject() const noexcept { return cancel_; }
    /// Stored for hosts and shown in the debug display; the library writes no files.
    void SetTempDirectory(std::string directory) noexcept { tempDirectory_ = std::move(directory); }
    const std::string& GetTempDirectory() const noexcept { return tempDirectory_; }

protected:
    /// The largest index of a variable with a role; -1 when there is none.
    int GetMaxVariableIndex() const noexcept;

private:
    int dependent_ = -1;
    std::vector<int> factors_;
    std::vector<int> factorSizes_; ///< parallel to the factors
    std::vector<int> covariates_;
    std::vector<KXModelEffect> modelEffects_;
    std::string tempDirectory_;
    int freqWeightVar_ = -1;
    int regrWeightVar_ = -1;
    bool interceptUse_ = true;
    double computationalTolerance_ = 1e-12;
    double confidenceLevel_ = 0.95;
    KXQueryCancel* cancel_ = nullptr;
};

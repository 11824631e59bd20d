#include "meta_analysis/bulk/CInterfaceOptions.h"
#include "meta_analysis/bulk/CInterfaceStruct.h"
#include "meta_analysis/bulk/MAPutNumber.h"
#include "meta_analysis/effectsize/MAMeans.h"
#include "meta_analysis/effectsize/MAMeansRule.h"
#include "meta_analysis/effectsize/MAPoolable.h"
#include "meta_analysis/effectsize/MATableEffect.h"
#include "meta_analysis/effectsize/MATableRule.h"
#include "meta_analysis/effectsize/MAZeroCorrection.h"
#include "meta_analysis/inference/MAInference.h"
#include "meta_analysis/settings/Alpha.h"
#include "meta_analysis/settings/Memory.h"

#include <cmath>
#include <limits>
#include <vector>

using namespace MA_NAMESPACE;

namespace {

double ValueAt(const ma_vector& vector, std::size_t study)
{
    const double value = vector.values[static_cast<std::ptrdiff_t>(study) * vector.stride];
    return std::isnan(value) ? KXMV::Missing() : value;
}

void PutFinite(double* column, std::size_t study, double value)
{
    const bool isDefined = std::isfinite(value) && !KXMV::IsMissing(value);
    Put(column, study, isDefined ? value : std::numeric_limits<double>::quiet_NaN());
}

/// The results of a study with the effect size, and those of one without.
class Columns
{
public:
    Columns(const ma_effect_results& results, double level)
        : results_(results), quantile_(TwoSidedNormalQuantile(AlphaOf(level)))
    {}

    void PutStudy(std::size_t study, double effect, double variance) const
    {
        const bool isPoolable = IsPoolable(effect, variance);
        PutAll(study, InferNormal(effect, variance, 0.0, quantile_),
               isPoolable ? MAConst::EXCLUSION_NONE : MAConst::EXCLUSION_NOT_POOLABLE);
    }
    void PutExcluded(std::size_t study, MAConst::EXCLUSION reason) const
    {
        PutAll(study, MAEstimate(), reason);
    }

private:
    void PutAll(std::size_t study, const MAEstimate& estimate, MAConst::EXCLUSION reason) const
    {
        PutFinite(results_.effect, study, estimate.estimate);
        PutFinite(results_.variance, study, estimate.variance);
        PutFinite(results_.std_error, study, estimate.stdError);
        PutFinite(results_.ci_lower, study, estimate.ciLower);
        PutFinite(results_.ci_upper, study, estimate.ciUpper);
        Put(results_.exclusion, study, static_cast<int32_t>(reason));
    }

    const ma_effect_results& results_;
    double quantile_;
};

struct TableColumns
{
    ma_vector a;
    ma_vector b;
    ma_vector c;
    ma_vector d;

    bool AreGiven() const { return a.values && b.values && c.values && d.values; }
    MATable At(std::size_t study) const
    {
        return {ValueAt(a, study), ValueAt(b, study), ValueAt(c, study), ValueAt(d, study)};
    }
};

/// The tables that are studies; the others get their reason.
struct JudgedTables
{
    std::vector<std::size_t> studies;
    std::vector<MATable> tables;
};

JudgedTables Judge(const TableColumns& given, std::size_t studyCount, const ma_table_options& options,
                   const Columns& columns)
{
    const MATableRule rule(static_cast<MAConst::ZEROADJTYPE>(options.zero_cells),
                           options.drop_double_zero != 0);
    JudgedTables judged;
    for (std::size_t study = 0; study < studyCount; ++study) {
        const MATable table = given.At(study);
        const MAConst::EXCLUSION reason = ReasonOf(rule.Judge(table), table);
        if (reason != MAConst::EXCLUSION_NONE) {
            columns.PutExcluded(study, reason);
            continue;
        }
        judged.studies.push_back(study);
        judged.tables.push_back(table);
    }
    return judged;
}

template <class Measure>
void PutTable(std::size_t study, const MATable& table, const Columns& columns)
{
    if (!Measure::HasEffect(table)) {
        columns.PutExcluded(study, MAConst::EXCLUSION_NOT_POOLABLE);
        return;
    }
    const MATableEffect effect = EffectBy<Measure>(table);
    columns.PutStudy(study, effect.effect, effect.variance);
}

/// As in an analysis, only studies decide whether one has a zero cell.
void PutTables(const JudgedTables& judged, const ma_table_options& options, const Columns& columns)
{
    const MAZeroCorrection correction =
        MAZeroCorrection{static_cast<MAConst::ZEROADJTYPE>(options.zero_cells), options.zero_delta}
            .ResolvedFor(judged.tables);
    WithMeasure(static_cast<MAConst::BINESTYPE>(options.measure), [&](auto measure) {
        for (std::size_t i = 0; i < judged.tables.size(); ++i)
            PutTable<decltype(measure)>(judged.studies[i], correction.Corrected(judged.tables[i]), columns);
    });
}

struct GroupColumns
{
    const ma_group_summaries& given;

    bool AreGiven() const { return given.sizes.values && given.means.values && given.std_devs.values; }
    double Size(std::size_t study) const { return ValueAt(given.sizes, study); }
    double Mean(std::size_t study) const { return ValueAt(given.means, study); }
    double StdDev(std::size_t study) const { return ValueAt(given.std_devs, study); }
    MAConst::EXCLUSION ReasonAt(std::size_t study) const
    {
        return ReasonOfGroup(Size(study), Mean(study), StdDev(study));
    }
};

void PutMeans(const GroupColumns& treatment, const GroupColumns& control, std::size_t study,
              const MAMeansChoice& choice, const Columns& columns)
{
    const MAConst::EXCLUSION reason = ReasonOfStudy(treatment.ReasonAt(study), control.ReasonAt(study));
    if (reason != MAConst::EXCLUSION_NONE) {
        columns.PutExcluded(study, reason);
        return;
    }
    const MAMeansEffect effect =
        EffectOf({treatment.Size(study), control.Size(study), treatment.Mean(study), control.Mean(study),
                  treatment.StdDev(study), control.StdDev(study)},
                 choice);
    columns.PutStudy(study, effect.effect, effect.variance);
}

MAMeansChoice ChoiceOf(const ma_means_options& options)
{
    return {static_cast<MAConst::CONTESTYPE>(options.measure), options.equal_variances != 0,
            options.variance_adjustment != 0, static_cast<MAConst::STUDYGROUPTYPE>(options.glass_group)};
}

/// Reads options and results, and calls `compute` with both if there are studies, whose values must be given.
template <class Options, class Compute>
int32_t Run(const Options* givenOptions, const ma_effect_results* givenResults, std::size_t studyCount,
            bool areValuesGiven, Compute&& compute)
{
    Options options;
    if (const KXStatus status = ReadOptions(givenOptions, options); status.IsError())
        return status.GetCode();
    ma_effect_results results{};
    if (const KXStatus status = ReadResults(givenResults, results); status.IsError())
        return status.GetCode();
    if (studyCount != 0 && !areValuesGiven)
        return MA_STATUS_INPUT_NOT_GIVEN;
    KXStatus status;
    Guarded(status, [&] {
        compute(options, Columns(results, options.level));
        return KXStatus();
    });
    return status.GetCode();
}

} // namespace

int32_t ma_effects_of_tables(ma_vector treatment_events, ma_vector treatment_non_events,
                             ma_vector control_events, ma_vector control_non_events, size_t study_count,
                             const ma_table_options* options, const ma_effect_results* results)
{
    const TableColumns given{treatment_events, treatment_non_events, control_events, control_non_events};
    return Run(options, results, study_count, given.AreGiven(), [&](const auto& known, const auto& columns) {
        PutTables(Judge(given, study_count, known, columns), known, columns);
    });
}

int32_t ma_effects_of_means(ma_group_summaries treatment, ma_group_summaries control, size_t study_count,
                            const ma_means_options* options, const ma_effect_results* results)
{
    const GroupColumns treated{treatment};
    const GroupColumns controls{control};
    return Run(options, results, study_count, treated.AreGiven() && controls.AreGiven(),
               [&](const auto& known, const auto& columns) {
                   for (std::size_t study = 0; study < study_count; ++study)
                       PutMeans(treated, controls, study, ChoiceOf(known), columns);
               });
}

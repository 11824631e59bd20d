#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/EffectRows.h"
#include "host/text/NumberText.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// An estimate with its interval.
struct ForestInterval
{
    double estimate;
    double lower;
    double upper;

    bool HasLimits() const { return HasValue(lower) && HasValue(upper); }
};

inline constexpr ForestInterval NO_INTERVAL = {KXMV::Missing(), KXMV::Missing(), KXMV::Missing()};

bool IsDrawable(const ForestInterval& place);

/// A line of a forest plot.
struct ForestRow
{
    enum class Kind
    {
        HEADING, ///< a label alone
        STUDY,
        POOLED,
        PREDICTION, ///< the estimate is the centre and is not shown
        NOTE,       ///< a text over the columns left of the frame
        GAP         ///< an empty line
    };

    Kind kind;
    std::string label = {};
    std::string remark = {};   ///< beside the label
    ForestInterval place = {}; ///< where it is drawn: of ratios the logarithms, of others what is shown
    ForestInterval shown = {}; ///< on the natural scale
    double weight = 1;         ///< of a study, or of a model's studies, as a fraction of all
    ForestInterval fitted = NO_INTERVAL;  ///< by a regression, drawn as `place`
    std::vector<int> records = {};        ///< of the study, or of the studies that are pooled
    double otherWeight = KXMV::Missing(); ///< in the model of the other kind

    bool HasInterval() const
    {
        return kind == Kind::STUDY || kind == Kind::POOLED || kind == Kind::PREDICTION;
    }
};

/// The studies with their effects and the models of all studies. Where there are groups, the studies are in
/// blocks that end with the group's pooled models and their heterogeneity. Studies of no group come behind
/// these blocks.
std::vector<ForestRow> ForestRows(const AnalysisData& data);

/// An entry of the effects as the row of a study.
ForestRow EffectRow(const AnalysisData& data, std::string label, const EffectRows& effects,
                    std::size_t entry);

/// The model of all studies, which is the last of a run with groups.
ForestRow OverallRow(const AnalysisData& data);

/// Where the pooled effect of all studies is drawn.
double OverallPlace(const AnalysisData& data);

/// The pooled effect after each study of the cumulative analysis, in blocks where there are groups; empty
/// without a cumulative analysis.
std::vector<ForestRow> CumulativeForestRows(const AnalysisData& data);

} // namespace host

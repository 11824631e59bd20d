#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/Report.h"

namespace host {

/// Makes the sections that show one step of an analysis: none when the step has nothing to show. Each maker
/// is in the file of its name in host/report/sections.
using SectionMaker = ReportSections(const AnalysisData& data);

SectionMaker ResultSection, PooledEffectSection, PredictionIntervalSection, HeterogeneitySection,
    BetweenStudyVarianceSection, BetweenGroupsSection, CumulativeSections, ContrastsSection,
    LeaveOneOutSection, InfluenceSection, TrimAndFillSections, RankTestSection, SmallStudyTestSection,
    FunnelPlotSection, BubblePlotsSection, StudiesSection, ConvertedStudiesSection, PartlyUsedStudiesSection;

// The sections in the order of the report: what the analysis answers, warnings of it, what it rests on.

inline constexpr SectionMaker* RESULT_SECTIONS[] = {ResultSection, PooledEffectSection,
                                                    PredictionIntervalSection};

inline constexpr SectionMaker* FURTHER_SECTIONS[] = {
    HeterogeneitySection, BetweenStudyVarianceSection, BetweenGroupsSection,    CumulativeSections,
    ContrastsSection,     LeaveOneOutSection,          InfluenceSection,        TrimAndFillSections,
    RankTestSection,      SmallStudyTestSection,       FunnelPlotSection,       BubblePlotsSection,
    StudiesSection,       ConvertedStudiesSection,     PartlyUsedStudiesSection};

} // namespace host

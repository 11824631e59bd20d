#pragma once

#include "host/report/AnalysisData.h"
#include "host/report/Report.h"

namespace host {

/// Makes the sections that show one step of an analysis: none when the step has nothing to show. Each maker
/// is in the file of its name in host/report/sections.
using SectionMaker = ReportSections(const AnalysisData& data);

SectionMaker StudiesSection, ConvertedStudiesSection, PooledEffectSection, PredictionIntervalSection,
    HeterogeneitySection, BetweenStudyVarianceSection, BetweenGroupsSection, CumulativeSections,
    ContrastsSection, LeaveOneOutSection, InfluenceSection, TrimAndFillSections, RankTestSection,
    SmallStudyTestSection, FunnelPlotSection, BubblePlotsSection, PartlyUsedStudiesSection;

/// The sections in the order of the report.
inline constexpr SectionMaker* ANALYSIS_SECTIONS[] = {
    StudiesSection,          ConvertedStudiesSection,     PooledEffectSection,  PredictionIntervalSection,
    HeterogeneitySection,    BetweenStudyVarianceSection, BetweenGroupsSection, CumulativeSections,
    ContrastsSection,        LeaveOneOutSection,          InfluenceSection,     TrimAndFillSections,
    RankTestSection,         SmallStudyTestSection,       FunnelPlotSection,    BubblePlotsSection,
    PartlyUsedStudiesSection};

} // namespace host

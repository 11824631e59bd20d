#include "host/Report.h"

#include "host/NumberText.h"
#include "host/StatusText.h"
#include "host/Wording.h"

#include "meta_analysis/platform/common/KXMV.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// The parts of a report need the same things of an analysis.
class ReportMaker
{
public:
    ReportMaker(const Request& request, const Analysis& analysis)
        : settings_(request.settings),
          labels_(request.studyLabels),
          base_(analysis.Base()),
          effect_(WordingOfEffect(settings_)),
          binary_(effect_.isRatio ? analysis.Binary() : nullptr),
          level_(WordingOfLevel(settings_)),
          decimals_(std::max(DecimalsFor(base_.GetStdError()), DecimalsFor(base_.GetEstStdError())))
    {}

    std::string Title() const
    {
        return fmt::format("Meta-analysis: {}, {}, {} level", effect_.name, WordingOfModel(settings_),
                           level_);
    }

    std::size_t StudyCount() const { return base_.GetEffectSize().size(); }

    ReportSection Records(const Options& options, std::size_t recordCount) const;
    ReportSection Studies() const;
    ReportSection PooledEffect() const;
    ReportSection PredictionInterval() const;
    ReportSection Heterogeneity() const;
    ReportSection Warnings() const;

private:
    std::vector<std::string> ModelLabels() const
    {
        return std::vector<std::string>(base_.GetEstEffectSize().size(), "Overall");
    }
    std::string IntervalHeader(const std::string& symbol) const
    {
        return fmt::format("{} [{} CI]", symbol, level_);
    }

    const MAModelSettings& settings_;
    const std::vector<std::string>& labels_;
    const MABaseModel& base_;
    EffectWording effect_;
    const MABinModel* binary_; ///< of a ratio, which has results on the ratio scale; else null
    std::string level_;
    int decimals_; ///< of effects and standard errors
};

using Texts = std::vector<std::string>;

template <class ToText>
Texts TextsOf(const std::vector<double>& values, const ToText& toText)
{
    Texts texts(values.size());
    std::transform(values.begin(), values.end(), texts.begin(), toText);
    return texts;
}

bool HasAnyValue(const std::vector<double>& values)
{
    return std::any_of(values.begin(), values.end(),
                       [](double value) { return !KXMV::IsMissing(value) && !std::isnan(value); });
}

/// One line of text, whatever the field held.
std::string LabelText(std::string label)
{
    std::replace_if(
        label.begin(), label.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return label.empty() ? NO_VALUE : label;
}

std::vector<double> SquareRoots(std::vector<double> values)
{
    for (double& value : values)
        if (!KXMV::IsMissing(value))
            value = std::sqrt(value);
    return values;
}

ReportSection ReportMaker::Records(const Options& options, std::size_t recordCount) const
{
    ReportSection section = {"Records", {}, {}};
    section.sentences.push_back(fmt::format("{}: {} read, {} used, {} missing, {} invalid, {} dropped",
                                            options.dataPath, recordCount, StudyCount(), base_.GetNMissing(),
                                            base_.GetNInvalid(), base_.GetNDropped()));
    if (StudyCount() == 0)
        section.sentences.push_back("No record could be used: there is nothing to analyse.");
    return section;
}

ReportSection ReportMaker::Studies() const
{
    Texts labels;
    for (const int record : base_.GetNonMissingStudyID())
        labels.push_back(LabelText(labels_[static_cast<std::size_t>(record)]));

    ReportSection section = {"Studies", {{"Study", labels, true}}, {}};
    if (binary_)
        section.table.push_back({IntervalHeader(effect_.symbol),
                                 EstimateTexts({binary_->GetExpEffectSize(), binary_->GetExpCILower(),
                                                binary_->GetExpCIUpper()})});
    section.table.push_back(
        {IntervalHeader(effect_.AnalysisSymbol()),
         EstimateTexts({base_.GetEffectSize(), base_.GetCILower(), base_.GetCIUpper()}, decimals_)});
    section.table.push_back({"Weight %", TextsOf(InPercent(base_.GetNormalizedWeight()),
                                                 [](double weight) { return FixedText(weight, 2); })});
    return section;
}

ReportSection ReportMaker::PooledEffect() const
{
    ReportSection section = {"Pooled effect", {{"", ModelLabels(), true}}, {}};
    if (binary_)
        section.table.push_back({IntervalHeader(effect_.symbol),
                                 EstimateTexts({binary_->GetEstExpEffectSize(), binary_->GetEstExpCILower(),
                                                binary_->GetEstExpCIUpper()})});
    section.table.push_back(
        {IntervalHeader(effect_.AnalysisSymbol()),
         EstimateTexts({base_.GetEstEffectSize(), base_.GetEstCILower(), base_.GetEstCIUpper()}, decimals_)});
    section.table.push_back({"SE", TextsOf(base_.GetEstStdError(), [this](double stdError) {
                                 return FixedText(stdError, decimals_);
                             })});
    section.table.push_back({WordingOfStatistic(settings_), TextsOf(base_.GetEstZVal(), NumberText)});
    section.table.push_back({"p", TextsOf(base_.GetEstSig(), PValueText)});
    if (const std::string null = WordingOfNullHypothesis(settings_); !null.empty())
        section.sentences.push_back(null);
    return section;
}

ReportSection ReportMaker::PredictionInterval() const
{
    if (!HasAnyValue(base_.GetPILower()))
        return {};
    ReportSection section = {level_ + " prediction interval", {{"", ModelLabels(), true}}, {}};
    if (binary_)
        section.table.push_back(
            {effect_.symbol, EstimateTexts({{}, binary_->GetExpPILower(), binary_->GetExpPIUpper()})});
    section.table.push_back(
        {effect_.AnalysisSymbol(), EstimateTexts({{}, base_.GetPILower(), base_.GetPIUpper()}, decimals_)});
    return section;
}

ReportSection ReportMaker::Heterogeneity() const
{
    ReportSection section = {"Heterogeneity", {{"", ModelLabels(), true}}, {}};
    const auto asCount = [](double value) { return FixedText(value, 0); };
    const auto asPercent = [](double value) { return FixedText(value, 2); };
    section.table.push_back({"Q", TextsOf(base_.GetHomoTestChisquareQ(), NumberText)});
    section.table.push_back({"df", TextsOf(base_.GetHomoTestdf(), asCount)});
    section.table.push_back({"p", TextsOf(base_.GetHomoTestSig(), PValueText)});
    if (HasAnyValue(base_.GetTau2Var())) {
        section.table.push_back({"tau²", TextsOf(base_.GetTau2Var(), NumberText)});
        section.table.push_back({"tau", TextsOf(SquareRoots(base_.GetTau2Var()), NumberText)});
    }
    if (HasAnyValue(base_.GetI2CILower())) {
        section.table.push_back({IntervalHeader("I² %"), EstimateTexts({InPercent(base_.GetI2Index()),
                                                                        InPercent(base_.GetI2CILower()),
                                                                        InPercent(base_.GetI2CIUpper())},
                                                                       2)});
        section.table.push_back(
            {IntervalHeader("H²"),
             EstimateTexts({base_.GetH2Index(), base_.GetH2CILower(), base_.GetH2CIUpper()})});
    } else {
        section.table.push_back({"I² %", TextsOf(InPercent(base_.GetI2Index()), asPercent)});
        section.table.push_back({"H²", TextsOf(base_.GetH2Index(), NumberText)});
    }
    return section;
}

ReportSection ReportMaker::Warnings() const
{
    ReportSection section = {"Warnings", {}, {}};
    for (const KXStatus& warning : base_.GetWarnings())
        section.sentences.push_back(fmt::format("{}: {}", warning.GetCode(), SentenceOf(warning.GetCode())));
    return section;
}

bool IsEmpty(const ReportSection& section)
{
    return section.table.empty() && section.sentences.empty();
}

} // namespace

Report MakeReport(const Options& options, const DataTable& table, const Request& request,
                  const Analysis& analysis)
{
    const ReportMaker maker(request, analysis);
    std::vector<ReportSection> sections = {maker.Records(options, table.RowCount())};
    if (maker.StudyCount() > 0)
        sections.insert(sections.end(), {maker.Studies(), maker.PooledEffect(), maker.PredictionInterval(),
                                         maker.Heterogeneity()});
    sections.push_back(maker.Warnings());
    std::erase_if(sections, IsEmpty);
    return {maker.Title(), std::move(sections)};
}

} // namespace host

#include "host/report/InfluenceTable.h"

#include "host/report/ReportColumns.h"
#include "host/text/NumberText.h"
#include "host/text/PlainText.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <utility>

using namespace MA_NAMESPACE;

namespace host {

namespace {

/// What analyses and meta-regressions name alike.
template <class Results>
InfluenceTable TableOf(const Results& results, std::vector<std::string> labels, const NumberFormat& numbers)
{
    InfluenceTable table;
    table.numbers = numbers;
    table.labels = std::move(labels);
    table.residuals = results.GetInfluenceStudentizedResidual();
    table.dffits = results.GetInfluenceDFFITS();
    table.cookDistances = results.GetInfluenceCookDistance();
    table.covarianceRatios = results.GetInfluenceCovarianceRatio();
    table.tau2 = results.GetInfluenceTau2Deleted();
    table.q = results.GetInfluenceQDeleted();
    table.hat = results.GetInfluenceHat();
    table.weights = results.GetInfluenceWeight();
    table.baujatX = results.GetBaujatX();
    table.baujatY = results.GetBaujatY();
    table.rules = results.GetInfluenceRules();
    table.cutoffs = results.GetInfluenceCutoffs();
    return table;
}

std::vector<std::string> UsedLabels(const RegressionData& data)
{
    std::vector<std::string> labels;
    for (const int record : data.analysis.records.used)
        labels.push_back(LabelText(data.request.studyLabels[static_cast<std::size_t>(record)]));
    return labels;
}

struct RuleWording
{
    MAConst::INFLUENCERULE rule;
    const char* what; ///< the cut-off follows
};

/// In the order of the cut-offs.
constexpr RuleWording RULES[] = {{MAConst::INFLUENCE_RESIDUAL, "|residual| >"},
                                 {MAConst::INFLUENCE_DFFITS, "|DFFITS| >"},
                                 {MAConst::INFLUENCE_COOK, "Cook's distance >"},
                                 {MAConst::INFLUENCE_HAT, "leverage >"},
                                 {MAConst::INFLUENCE_DFBETAS, "|DFBETAS| >"}};

std::string WordingOfRules(const InfluenceTable& table, int rules)
{
    std::vector<std::string> parts;
    for (std::size_t i = 0; i < table.cutoffs.size(); ++i)
        if ((rules & RULES[i].rule) != 0 && IsNumber(table.cutoffs[i]))
            parts.push_back(fmt::format("{} {:.3g}", RULES[i].what, table.cutoffs[i]));
    return fmt::format("{}", fmt::join(parts, ", "));
}

std::string MarksOf(const InfluenceTable& table, std::size_t study)
{
    return std::string(table.IsOutlier(study) ? "o" : "") + (table.IsInfluential(study) ? "*" : "");
}

std::vector<std::string> MarksOf(const InfluenceTable& table)
{
    std::vector<std::string> marks;
    for (std::size_t i = 0; i < table.rules.size(); ++i)
        marks.push_back(MarksOf(table, i));
    return marks;
}

std::string WordingOfStudy(const InfluenceTable& table, std::size_t study)
{
    const char* const what = !table.IsInfluential(study) ? "an outlier"
                             : table.IsOutlier(study)    ? "influential, and an outlier"
                                                         : "influential";
    return fmt::format("{}: {} ({}).", table.labels[study], what, WordingOfRules(table, table.rules[study]));
}

std::vector<std::string> WordingOfStudies(const InfluenceTable& table)
{
    constexpr std::size_t mostSentences = 20;
    std::vector<std::string> sentences;
    std::size_t others = 0;
    for (std::size_t i = 0; i < table.rules.size(); ++i) {
        if (table.rules[i] == 0)
            continue;
        if (sentences.size() < mostSentences)
            sentences.push_back(WordingOfStudy(table, i));
        else
            ++others;
    }
    if (sentences.empty())
        return {"No study stands out."};
    if (others > 0)
        sentences.push_back(fmt::format("{} more stand out, and are marked in the table.", others));
    return sentences;
}

/// Those that the table has a column for.
int RulesOfInfluence(const InfluenceTable& table)
{
    const int ofModels = MAConst::INFLUENCE_DFFITS | MAConst::INFLUENCE_COOK | MAConst::INFLUENCE_HAT;
    return table.parameters.empty() ? ofModels : ofModels | MAConst::INFLUENCE_DFBETAS;
}

std::vector<std::string> WordingOfTable(const InfluenceTable& table)
{
    return {fmt::format(
        "Each row compares the model of all studies with the one without the study it names, whose "
        "{}. Influential (*): {}. Outlier (o): {}.",
        HasAnyValue(table.tau2) ? "tau² and Q these are" : "Q this is",
        WordingOfRules(table, RulesOfInfluence(table)), WordingOfRules(table, MAConst::INFLUENCE_RESIDUAL))};
}

ReportSection DfbetasSection(const InfluenceTable& table)
{
    ReportSection section = {"DFBETAS", {{"Without", table.labels, true}}, {}};
    for (std::size_t j = 0; j < table.parameters.size(); ++j) {
        std::vector<double> column;
        for (const std::vector<double>& row : table.dfbetas)
            column.push_back(row[j]);
        section.table.push_back({LabelText(table.parameters[j]), TextsOf(column, table.numbers)});
    }
    section.sentences = {"The change of each coefficient by the study, in standard errors."};
    return section;
}

} // namespace

bool InfluenceTable::IsInfluential(std::size_t study) const
{
    return (rules[study] & ~MAConst::INFLUENCE_RESIDUAL) != 0;
}

bool InfluenceTable::IsOutlier(std::size_t study) const
{
    return (rules[study] & MAConst::INFLUENCE_RESIDUAL) != 0;
}

/// The model of all studies is the last one.
InfluenceTable InfluenceTableOf(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    InfluenceTable table = TableOf(base, data.StudyLabelsOf(base.GetNonMissingStudyID()), data.numbers);
    if (table.IsEmpty())
        return table;
    table.tau2OfAll = base.GetTau2Var().empty() ? 0 : base.GetTau2Var().back();
    table.qOfAll = base.GetHomoTestChisquareQ().empty() ? 0 : base.GetHomoTestChisquareQ().back();
    return table;
}

InfluenceTable InfluenceTableOf(const RegressionData& data)
{
    InfluenceTable table = TableOf(data.output, UsedLabels(data), data.numbers);
    if (table.IsEmpty())
        return table;
    table.tau2OfAll = data.output.GetTau();
    table.qOfAll = data.output.GetResHomoChiSqure();
    table.parameterCount = data.output.GetRedundancyInfo().Count();
    for (const KXRegrParameter& parameter : data.output.GetParameters())
        table.parameters.push_back(ParameterName(parameter, data.request));
    table.dfbetas = data.output.GetInfluenceDFBETAS();
    return table;
}

ReportSections SectionsOf(const InfluenceTable& table)
{
    if (table.IsEmpty())
        return {};
    ReportSection section = {"Influence",
                             {{"Without", table.labels, true},
                              {"Residual", TextsOf(table.residuals, table.numbers)},
                              {"DFFITS", TextsOf(table.dffits, table.numbers)},
                              {"Cook", TextsOf(table.cookDistances, table.numbers)},
                              {"Cov. ratio", TextsOf(table.covarianceRatios, table.numbers)}},
                             {}};
    if (HasAnyValue(table.tau2))
        section.table.push_back({"tau²", TextsOf(table.tau2, table.numbers)});
    section.table.push_back({"Q", TextsOf(table.q, table.numbers)});
    section.table.push_back({"Leverage", TextsOf(table.hat, table.numbers)});
    section.table.push_back({"Weight %", TextsOf(table.weights, [&](double weight) {
                                 return FixedText(weight, table.numbers.PercentDecimals(1));
                             })});
    section.table.push_back({"", MarksOf(table), true});
    section.sentences = WordingOfTable(table);
    for (std::string& sentence : WordingOfStudies(table))
        section.sentences.push_back(std::move(sentence));
    ReportSections sections = {std::move(section)};
    if (!table.parameters.empty())
        sections.push_back(DfbetasSection(table));
    return sections;
}

} // namespace host

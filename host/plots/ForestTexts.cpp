#include "host/plots/ForestTexts.h"

#include "host/report/EffectRows.h"
#include "host/text/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::string Subscript(int number)
{
    constexpr std::array DIGITS = {"₀", "₁", "₂", "₃", "₄", "₅", "₆", "₇", "₈", "₉"};
    std::string text;
    for (const char c : std::to_string(number))
        text += DIGITS[static_cast<std::size_t>(c - '0')];
    return text;
}

/// The decimals with which p has a digit and stays on its side of 0.05.
int DecimalsOfP(double p)
{
    constexpr double SIGNIFICANT = 0.05;
    int decimals = 2;
    for (double least = 0.01; p < least && decimals < 6; least /= 10)
        ++decimals;
    const double rounded = std::round(p * 100) / 100;
    return decimals == 2 && p < SIGNIFICANT && rounded >= SIGNIFICANT ? 3 : decimals;
}

std::string WithoutLeadingZero(const std::string& text)
{
    return text.starts_with("0.") ? text.substr(1) : text;
}

/// What p is given as below: the next power of ten of one below 0.0001, but no less than `least`; else 0.
double BoundOf(double p, double least)
{
    constexpr double SMALL = 0.0001;
    if (p < least)
        return least;
    return p < SMALL ? std::pow(10, std::ceil(std::log10(p))) : 0;
}

/// "= 0.03", "< 0.001" or "> 0.99".
std::string SignAndP(double p, const PValueStyle& style)
{
    const auto text = [&](const char* sign, double value, int decimals) {
        const std::string number = FixedText(value, decimals);
        return fmt::format("{}{}{}{}", style.gap, sign, style.gap,
                           style.hasLeadingZero ? number : WithoutLeadingZero(number));
    };
    if (const double bound = BoundOf(p, style.least); p < bound)
        return text("<", bound, static_cast<int>(std::lround(-std::log10(bound))));
    if (style.hasMost && p > 0.99)
        return text(">", 0.99, 2);
    return text("=", p, DecimalsOfP(p));
}

/// Of Q, tau² and test statistics.
std::string StatisticText(const AnalysisData& data, double value)
{
    return WithMinusSign(FixedText(value, data.request.forest.digits.value_or(2)));
}

/// A small tau² needs more decimals to differ from 0.
std::string Tau2Text(const AnalysisData& data, double tau2)
{
    const bool isSmall = tau2 > 0 && tau2 < 0.01 && !data.request.forest.digits;
    return isSmall ? fmt::format("{:.2g}", tau2) : StatisticText(data, tau2);
}

struct Heterogeneity
{
    double q;
    double df;
    double p;
    double i2;
    double tau2; ///< missing for the fixed effect
};

std::string HeterogeneityText(const AnalysisData& data, const Heterogeneity& found)
{
    const ForestStyle& style = StyleOf(data);
    const bool hasTau2 = HasValue(found.tau2);
    const int df = static_cast<int>(found.df);
    return fmt::format(fmt::runtime(hasTau2 ? style.heterogeneity : style.heterogeneityOfFixed),
                       fmt::arg("q", StatisticText(data, found.q)), fmt::arg("df", df),
                       fmt::arg("sub", Subscript(df)), fmt::arg("p", PValueInStyle(found.p, style.p)),
                       fmt::arg("i2", FixedText(100 * found.i2, style.i2Decimals)),
                       fmt::arg("tau2", hasTau2 ? Tau2Text(data, found.tau2) : ""));
}

/// `which` names the model, where there are two.
std::string EffectTestText(const AnalysisData& data, const char* which)
{
    const ForestStyle& style = StyleOf(data);
    const EffectRows rows = PooledRows(data);
    const bool isWanted = *style.effectTest != '\0' && data.measure.hasNoEffect;
    if (!isWanted || !HasValue(rows.significances.back()))
        return {};
    const std::vector<double> df = data.base.GetEstDf();
    const bool isT = !df.empty() && HasValue(df.back());
    return fmt::format(fmt::runtime(style.effectTest), fmt::arg("which", which),
                       fmt::arg("symbol", isT ? "t" : "z"), fmt::arg("upper", isT ? "t" : "Z"),
                       fmt::arg("value", StatisticText(data, rows.statistics.back())),
                       fmt::arg("p", PValueInStyle(rows.significances.back(), style.p)));
}

std::string GroupTestText(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const int df = base.GetGDQbDf();
    if (data.groupLabels.empty() || df == 0 || !HasValue(base.GetGDQbSig()))
        return {};
    const ForestStyle& style = StyleOf(data);
    const double q = base.GetGDQbVal();
    const double i2 = q > df ? 100 * (q - df) / q : 0; // Higgins and Thompson's, of the groups' effects
    return fmt::format(fmt::runtime(style.groupTest), fmt::arg("q", StatisticText(data, q)),
                       fmt::arg("df", df), fmt::arg("sub", Subscript(df)),
                       fmt::arg("i2", FixedText(i2, style.i2Decimals)),
                       fmt::arg("p", PValueInStyle(base.GetGDQbSig(), style.p)));
}

std::string MethodOf(const AnalysisData& data)
{
    if (!PoolsTables(data.settings))
        return "IV";
    const bool isPeto =
        IsBinary(data.settings) && data.settings.GetBinaryEstType() == MAConst::BIN_PETO_ODDS_RATIO;
    return isPeto ? "Peto" : "M-H";
}

/// One model's test, or that of the fixed effect and that of random effects.
std::vector<std::string> EffectTestTexts(const AnalysisData& data, const std::optional<AnalysisData>& other)
{
    if (!other)
        return {EffectTestText(data, "")};
    const bool isRandom = IsRandom(data.settings);
    return {EffectTestText(isRandom ? *other : data, " (fixed effect)"),
            EffectTestText(isRandom ? data : *other, " (random effects)")};
}

/// "Mean Difference"; a letter alone, such as that of "Cohen's d", is a symbol.
std::string InTitleCase(std::string text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool startsWord = i == 0 || text[i - 1] == ' ';
        const bool isAlone = i + 1 == text.size() || text[i + 1] == ' ';
        if (startsWord && !isAlone)
            text[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[i])));
    }
    return text;
}

} // namespace

const ForestStyle& StyleOf(const AnalysisData& data)
{
    return StyleOf(data.request.forest.options.layout);
}

std::string PValueInStyle(double p, const PValueStyle& style)
{
    return HasValue(p) ? style.symbol + SignAndP(p, style) : std::string(NO_VALUE);
}

std::vector<std::string> HeterogeneityTexts(const AnalysisData& data)
{
    const MABaseModel& base = data.base;
    const std::vector<double> q = base.GetHomoTestChisquareQ();
    const std::vector<double> dfs = base.GetHomoTestdf();
    const std::vector<double> p = base.GetHomoTestSig();
    const std::vector<double> i2 = base.GetI2Index();
    std::vector<double> tau2 = base.GetTau2Var();
    tau2.resize(q.size(), KXMV::Missing());
    std::vector<std::string> texts;
    for (std::size_t model = 0; model < q.size(); ++model)
        texts.push_back(
            HasValue(p[model]) && dfs[model] >= 1
                ? HeterogeneityText(data, {q[model], dfs[model], p[model], i2[model], tau2[model]})
                : "");
    return texts;
}

std::optional<AnalysisData> OtherModelOf(const AnalysisData& data)
{
    const OtherModel* const other = data.analysis.other.get();
    if (!other)
        return {};
    return std::optional<AnalysisData>(std::in_place, data.request, other->analysis, other->settings);
}

std::vector<std::string> OverallNotes(const AnalysisData& data)
{
    const std::optional<AnalysisData> other = OtherModelOf(data);
    std::vector<std::string> notes;
    if (StyleOf(data).namesModel)
        notes.push_back(Capitalised(WordingOfModel(data.settings)));
    if (StyleOf(data).namesModel && other)
        notes.push_back(Capitalised(WordingOfModel(other->settings)));
    const AnalysisData& random = other && !IsRandom(data.settings) ? *other : data; // has tau²
    const std::vector<std::string> heterogeneity = HeterogeneityTexts(random);
    if (!heterogeneity.empty())
        notes.push_back(heterogeneity.back());
    for (std::string& test : EffectTestTexts(data, other))
        notes.push_back(std::move(test));
    notes.push_back(GroupTestText(data));
    std::erase(notes, std::string());
    return notes;
}

std::string WithNames(const char* format, const EffectNames& names)
{
    return fmt::format(
        fmt::runtime(format), fmt::arg("name", Capitalised(names.name)),
        fmt::arg("title", InTitleCase(names.name)),
        fmt::arg("symbol", names.symbol == names.name ? Capitalised(names.symbol) : names.symbol),
        fmt::arg("level", names.level), fmt::arg("method", names.method), fmt::arg("model", names.model));
}

EffectNames NamesOfEffect(const AnalysisData& data)
{
    return {.name = data.measure.name,
            .symbol = data.measure.symbol,
            .level = data.level,
            .method = MethodOf(data),
            .model = data.analysis.other       ? "Fixed and Random"
                     : IsRandom(data.settings) ? "Random"
                                               : "Fixed"};
}

} // namespace host

#include "host/report/citation/Methods.h"

#include "host/report/citation/References.h"
#include "host/text/ProgramInfo.h"
#include "host/text/Tau2Estimators.h"
#include "host/text/Wording.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

std::string Cited(const Method& method)
{
    std::vector<std::string> texts;
    for (const std::string& key : method.keys)
        texts.push_back(ReferenceText(key));
    return texts.empty() ? method.sentence + '.'
                         : fmt::format("{} ({}).", method.sentence, fmt::join(texts, "; "));
}

std::vector<std::string> KeysOf(MAConst::TAU2ESTIMATOR estimator)
{
    switch (estimator) {
    case MAConst::TAU2_REML:
        return {"Viechtbauer2005"};
    case MAConst::TAU2_ML:
        return {"Hardy1996"};
    case MAConst::TAU2_HE:
        return {"Hedges1983"};
    case MAConst::TAU2_HS:
        return {"Hunter1990"};
    case MAConst::TAU2_DL:
        return {"DerSimonian1986"};
    case MAConst::TAU2_SJ:
        return {"Sidik2005"};
    case MAConst::TAU2_EB:
        return {"Paule1982", "Morris1983"};
    }
    return {};
}

/// "restricted maximum likelihood", "the estimator of DerSimonian and Laird".
std::string WordingOf(MAConst::TAU2ESTIMATOR estimator)
{
    switch (estimator) {
    case MAConst::TAU2_REML:
    case MAConst::TAU2_ML:
        return RowOf(TAU2_ESTIMATORS, estimator).description;
    case MAConst::TAU2_HE:
    case MAConst::TAU2_HS:
    case MAConst::TAU2_DL:
    case MAConst::TAU2_SJ:
        return fmt::format("the {} method", RowOf(TAU2_ESTIMATORS, estimator).description);
    case MAConst::TAU2_EB:
        return "the empirical Bayes (Paule-Mandel) method";
    }
    return {};
}

bool Holds(const std::vector<int>& conversions)
{
    return std::any_of(conversions.begin(), conversions.end(),
                       [](int conversion) { return conversion != MAConst::CONVERSION_NONE; });
}

} // namespace

Method MethodOfInfluence(const MAModelSettings& settings)
{
    return settings.GetInfluence()
               ? Method{"Influential studies were sought by deletion diagnostics", {"Viechtbauer2010"}}
               : Method();
}

Method MethodOfTau2(MAConst::TAU2ESTIMATOR estimator)
{
    return {"The between-study variance was estimated by " + WordingOf(estimator), KeysOf(estimator)};
}

Method MethodOfTau2Interval(MAConst::TAU2INTERVAL interval)
{
    switch (interval) {
    case MAConst::TAU2_INTERVAL_NONE:
        return {};
    case MAConst::TAU2_INTERVAL_Q_PROFILE:
        return {"Its confidence interval is by the Q-profile method", {"Viechtbauer2007"}};
    case MAConst::TAU2_INTERVAL_PROFILE_LIKELIHOOD:
        return {"Its confidence interval is by the profile likelihood", {"Hardy1996"}};
    }
    return {};
}

Method MethodOfKnappHartung(MAConst::KNAPPHADJTYPE adjustment)
{
    const std::vector<std::string> keys = {"Hartung2001", "Sidik2002", "Knapp2003", "IntHout2014"};
    const std::string sentence = "Tests and confidence intervals are adjusted after Hartung and Knapp";
    switch (adjustment) {
    case MAConst::KNAPP_HARTUNG_NONE:
        return {"Tests and confidence intervals are by the normal distribution", {}};
    case MAConst::KNAPP_HARTUNG_ADJUSTED:
        return {sentence, keys};
    case MAConst::KNAPP_HARTUNG_TRUNCATED:
        return {sentence + ", with a scale factor not below 1", keys};
    case MAConst::KNAPP_HARTUNG_IF_HETEROGENEOUS:
        return {sentence + " where there are more than two studies and the between-study variance is "
                           "estimated above 0, and by the normal distribution otherwise",
                keys};
    }
    return {};
}

Method MethodOfConversions(const StudyNotes& notes)
{
    if (!Holds(notes.treatmentConversions) && !Holds(notes.controlConversions))
        return {};
    return {"Means and standard deviations of studies that report medians were estimated from these",
            {"Luo2018", "Wan2014"}};
}

ReportSections SectionsOf(std::vector<Method> methods)
{
    methods.push_back({fmt::format("Analyses were done with {} {}", PROGRAM_NAME, PROGRAM_VERSION), {}});
    std::string paragraph;
    std::vector<std::string> keys;
    for (const Method& method : methods) {
        if (method.sentence.empty())
            continue;
        paragraph += (paragraph.empty() ? "" : " ") + Cited(method);
        keys.insert(keys.end(), method.keys.begin(), method.keys.end());
    }
    return {{"Methods", {}, {paragraph}}, {"References", {}, {}, BibTexOf(keys)}};
}

} // namespace host

#include "host/cli/Choices.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"
#include "host/text/SmallStudyTests.h"
#include "host/text/Tau2Estimators.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;
using Json = nlohmann::ordered_json;

/// The argument is the method. Naming one asks for the analysis.
OptionDefinition TrimFill(Settings& settings)
{
    return {.name = "trim-fill",
            .argument = "NAME",
            .help = fmt::format("trim-and-fill by this estimator of the number of missing studies: {} "
                                "(default: none)",
                                NamesOf(TRIM_FILL_CHOICES)),
            .choices = ListOfNames(TRIM_FILL_CHOICES),
            .store =
                [&settings](const std::string& text) {
                    settings.SetTrimFillMethod(ValueOf(TRIM_FILL_CHOICES, text));
                    settings.SetIsTRIMFILL(true);
                },
            .value =
                [&settings] {
                    return settings.GetIsTRIMFILL()
                               ? Json(NameOf(TRIM_FILL_CHOICES, settings.GetTrimFillMethod()))
                               : Json();
                }};
}

OptionDefinition SmallStudyTestByNumber(Options& options)
{
    return {.name = "small-study-test",
            .argument = "TYPE",
            .help = "regression-based test (default: none): 0 effect on standard error; of tables also\n"
                    "1 odds-ratio score, 2 risk-ratio score, 3 effect on 1 / sample size",
            .choices = ListOfNames(SMALL_STUDY_TESTS),
            .store =
                [&options](const std::string& text) {
                    options.settings.SetRegBaseTestType(ValueOf(SMALL_STUDY_TESTS, text));
                    options.runsSmallStudyTest = true;
                },
            .value =
                [&options] {
                    return options.runsSmallStudyTest
                               ? Json(static_cast<int>(options.settings.GetRegBaseTestType()))
                               : Json();
                }};
}

/// The words of the tests beside their numbers.
OptionDefinition SmallStudyTestOption(Options& options)
{
    std::vector<OtherWord> words;
    words.reserve(SMALL_STUDY_TESTS.size());
    for (const SmallStudyTest& test : SMALL_STUDY_TESTS)
        words.push_back({test.word, std::string(test.name)});
    return AlsoTaking(words, SmallStudyTestByNumber(options));
}

OptionDefinitions SmallStudyEffects(Options& options)
{
    Settings& settings = options.settings;
    return {
        TrimFill(settings),
        AlsoTaking({{"left", "1"}, {"right", "2"}},
                   OneOf("side", TRIM_SIDE_CHOICES, settings, &Settings::GetTrimFillSide,
                         &Settings::SetTrimFillSide, "trims the largest effects (1) or the smallest (2)")),
        OneOf("trim-fill-model", MODEL_CHOICES, settings, &Settings::GetTFModelType,
              &Settings::SetTFModelType, "pooling model while trimming"),
        AlsoTaking({{PAULE_MANDEL, NameOf(TAU2_ESTIMATORS, MAConst::TAU2_EB)}},
                   OneOf("trim-fill-tau2", TAU2_ESTIMATORS, settings, &Settings::GetTFEstTauType,
                         &Settings::SetTFEstTauType, "between-study variance estimator while trimming")),
        OneOf("trim-fill-knapp-hartung", KNAPP_HARTUNG_CHOICES, settings, &Settings::GetTFKnapHartAdjustType,
              &Settings::SetTFKnapHartAdjustType, "adjustment while trimming"),
        Flag("rank-test", settings, &Settings::GetRankTest, &Settings::SetRankTest,
             "rank correlation of effects and variances"),
        SmallStudyTestOption(options),
        OneOf("test-intercept", SWITCH_CHOICES, settings, &Settings::GetIsUseIntercept,
              &Settings::SetIsUseIntercept, "intercept of the regression-based test"),
        Flag("test-dispersion", settings, &Settings::GetMultiDisper, &Settings::SetMultiDiser,
             "multiplicative dispersion in the regression-based test, fixed model"),
    };
}

/// Only tables have the counts that the other types need.
void CheckSmallStudyTest(const Options& options)
{
    const MAConst::RegBaseTestType type = options.settings.GetRegBaseTestType();
    if (options.command != Command::BINARY && type != MAConst::REG_TEST_EFFECT_ON_STD_ERROR)
        throw UnusableInput(fmt::format("--small-study-test: type {} needs the tables of the command binary.",
                                        NameOf(SMALL_STUDY_TESTS, type)));
}

} // namespace

OptionGroup SmallStudyOptions(Options& options)
{
    if (!HasSteps(options.command))
        return {};
    return {.heading = "Small-study effects", .options = SmallStudyEffects(options), .complete = [&options] {
                CheckSmallStudyTest(options);
            }};
}

} // namespace host

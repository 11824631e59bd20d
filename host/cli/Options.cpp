#include "host/cli/Options.h"

#include "host/cli/Choices.h"
#include "host/cli/OptionDefinition.h"
#include "host/cli/Presets.h"
#include "host/cli/RandomEffectsOptions.h"
#include "host/text/Wording.h"

#include <algorithm>

using namespace MA_NAMESPACE;

namespace host {

namespace {

bool IsGiven(const OptionDefinition& column)
{
    return !column.value().is_null();
}

using Definition = std::vector<OptionDefinition>::const_iterator;

/// Exactly one of the options [first, last).
void RequireOneOf(Definition first, Definition last)
{
    if (std::count_if(first, last, IsGiven) == 1)
        return;
    std::string names = "--" + first->name;
    for (Definition option = first + 1; option != last; ++option)
        names += fmt::format("{}--{}", option + 1 == last ? " and " : ", ", option->name);
    throw UnusableInput(fmt::format("Exactly one of {} is required.", names));
}

void RequireColumns(Options& options)
{
    using Need = OptionDefinition::Need;
    const std::vector<OptionDefinition> definitions = DefineOptions(options);
    for (Definition option = definitions.begin(); option != definitions.end(); ++option) {
        if (option->need == Need::REQUIRED && !IsGiven(*option))
            throw UnusableInput(fmt::format("--{} is required.", option->name));
        if (option->need == Need::THIS_OR_NEXT) {
            const Definition first = option;
            while (option->need == Need::THIS_OR_NEXT)
                ++option;
            RequireOneOf(first, option + 1);
        }
    }
}

void ResolveReadyMadeEffect(const std::string& name, MAModelSettings& settings)
{
    const bool isBinary = settings.GetOutcomesType() == MAConst::OUTCOME_BINARY;
    try {
        if (isBinary)
            settings.SetBinaryEstType(ValueOf(BINARY_EFFECT_CHOICES, name));
        else
            settings.SetContinousEstType(ValueOf(CONTINUOUS_EFFECT_CHOICES, name));
    } catch (const UnusableInput& problem) {
        throw UnusableInput(fmt::format("--effect with --outcome {}: {}",
                                        NameOf(OUTCOME_CHOICES, settings.GetOutcomesType()), problem.what()));
    }
}

/// Only tables have the counts that the other types need.
void CheckSmallStudyTest(const Options& options)
{
    const MAConst::RegBaseTestType type = options.settings.GetRegBaseTestType();
    if (options.command != Command::BINARY && type != MAConst::REG_TEST_EFFECT_ON_STD_ERROR)
        throw UnusableInput(fmt::format("--small-study-test: type {} needs the tables of the command binary.",
                                        NameOf(SMALL_STUDY_TEST_CHOICES, type)));
}

template <class Value>
void RequireDifferent(const std::vector<Value>& values, const char* what)
{
    for (auto value = values.begin(); value != values.end(); ++value)
        if (std::find(values.begin(), value, *value) != value)
            throw UnusableInput(fmt::format("{} '{}' is given twice.", what, *value));
}

void CheckContours(const Options& options)
{
    RequireDifferent(options.contourLevels, "--contour-level:");
    if (!options.contourLevels.empty() && options.settings.GetFunnelConTourTesType() == MAConst::CONTOUR_NONE)
        throw UnusableInput("--contour-level needs --contours, which names the test of the level.");
}

/// A run under random effects tests against no effect, and has no contrasts.
void CheckFixedModelOptions(const Options& options)
{
    const bool isRandom = options.settings.GetModelType() == MAConst::MODEL_RANDOM;
    if (isRandom && !options.contrasts.empty())
        throw UnusableInput(
            "--contrast needs --model fixed: contrasts are of studies that share one effect.");
    if (isRandom && options.settings.GetNullHypothesis() != 0)
        throw UnusableInput("--null needs --model fixed: the random model tests against no effect.");
}

/// Pooled tables have a null hypothesis on the ratio scale, where 0 stands for no effect.
void CheckNullOfRatio(const MAModelSettings& settings)
{
    const bool poolsRatios = PoolsTables(settings) && WordingOfEffect(settings).isRatio;
    if (poolsRatios && settings.GetNullHypothesis() < 0)
        throw UnusableInput(fmt::format("--null: {} cannot be a ratio; with --weights mantel-haenszel it is "
                                        "one (default: no effect).",
                                        settings.GetNullHypothesis()));
}

/// Only where tables are pooled are there counts to correct for it.
void CheckPooledZeroCells(const Options& options)
{
    if (options.given.contains("pooled-zero-cells") && !PoolsTables(options.settings))
        throw UnusableInput(
            "--pooled-zero-cells needs --weights mantel-haenszel and --model fixed, which pool "
            "the counts of the tables.");
}

} // namespace

Options::Options(Command ofCommand) : command(ofCommand)
{
    const bool hasTables = command == Command::BINARY || command == Command::CONTINUOUS;
    settings.SetOutcomesType(command == Command::BINARY ? MAConst::OUTCOME_BINARY
                                                        : MAConst::OUTCOME_CONTINUOUS);
    settings.SetInputESType(hasTables ? MAConst::INPUT_RAW : MAConst::INPUT_READY_MADE);
    settings.SetTau2Search(MAConst::TAU2_SEARCH_GLOBAL);
    settings.SetTau2Interval(MAConst::TAU2_INTERVAL_Q_PROFILE);
    settings.SetPooledZeroCells(MAConst::POOLED_ZERO_CELLS_IF_NEEDED);
}

void Resolve(Options& options)
{
    ApplyPreset(options);
    RequireColumns(options);
    if (options.command == Command::REGRESSION)
        CheckRegression(options);
    CheckSmallStudyTest(options);
    RequireDifferent(options.bubbles, "--bubble: column"); // a column has one plot
    CheckContours(options);
    if (options.readyMadeEffect)
        ResolveReadyMadeEffect(*options.readyMadeEffect, options.settings);
    CheckRandomEffects(options);
    CheckFixedModelOptions(options);
    CheckNullOfRatio(options.settings);
    CheckPooledZeroCells(options);
    CheckIterations(options.settings);
}

} // namespace host

#include "host/Options.h"

#include "host/Choices.h"
#include "host/OptionDefinitions.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

bool IsGiven(const OptionDefinition& column)
{
    return !column.value().is_null();
}

void RequireOneOf(const OptionDefinition& first, const OptionDefinition& second)
{
    if (IsGiven(first) == IsGiven(second))
        throw UnusableInput(
            fmt::format("Exactly one of --{} and --{} is required.", first.name, second.name));
}

void RequireColumns(Options& options)
{
    const std::vector<OptionDefinition> definitions = DefineOptions(options);
    for (std::size_t i = 0; i < definitions.size(); ++i) {
        const OptionDefinition& option = definitions[i];
        if (option.need == OptionDefinition::Need::REQUIRED && !IsGiven(option))
            throw UnusableInput(fmt::format("--{} is required.", option.name));
        if (option.need == OptionDefinition::Need::THIS_OR_NEXT)
            RequireOneOf(option, definitions[i + 1]);
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

} // namespace

Options::Options(Command ofCommand) : command(ofCommand)
{
    settings.SetOutcomesType(command == Command::BINARY ? MAConst::OUTCOME_BINARY
                                                        : MAConst::OUTCOME_CONTINUOUS);
    settings.SetInputESType(command == Command::EFFECTS ? MAConst::INPUT_READY_MADE : MAConst::INPUT_RAW);
}

void Resolve(Options& options)
{
    RequireColumns(options);
    if (options.readyMadeEffect)
        ResolveReadyMadeEffect(*options.readyMadeEffect, options.settings);
}

} // namespace host

#include "host/cli/OutcomeOptions.h"

#include "host/cli/Choices.h"
#include "host/cli/Commands.h"
#include "host/cli/OptionKinds.h"
#include "host/text/Measures.h"
#include "host/text/Wording.h"

using namespace MA_NAMESPACE;

namespace host {

namespace {

using Settings = MAModelSettings;

OptionDefinitions RatesColumns(Options& options)
{
    return {
        Required(Column("treatment-events", options.treatmentEvents, "events in the treatment group")),
        Required(Column("treatment-time", options.treatmentTime, "its person-time")),
        Required(Column("control-events", options.controlEvents, "events in the control group")),
        Required(Column("control-time", options.controlTime, "its person-time")),
    };
}

OptionDefinitions ProportionColumns(Options& options)
{
    return {
        Required(Column("events", options.events, "events")),
        ThisOrNext(Column("n", options.size, "size of the group, or")),
        Column("nonevents", options.nonEvents, "its non-events"),
    };
}

OptionDefinitions RateColumns(Options& options)
{
    return {
        Required(Column("events", options.events, "events")),
        Required(Column("time", options.time, "person-time")),
    };
}

OptionDefinitions CorrelationColumns(Options& options)
{
    return {
        Required(Column("r", options.correlation, "correlation coefficient")),
        Required(Column("n", options.size, "size of the group")),
    };
}

OptionDefinitions MeanColumns(Options& options)
{
    return {
        Required(Column("n", options.size, "size of the group")),
        Required(Column("mean", options.mean, "its mean")),
        Required(Column("sd", options.stdDev, "its standard deviation")),
    };
}

OptionDefinition OutcomeEffect(Settings& settings, MAOutcomeData data)
{
    const std::vector<OutcomeMeasure> measures = OutcomeMeasuresOf(data);
    return {.name = "effect",
            .argument = "NAME",
            .help = fmt::format("effect size: {} (default {}){}", NamesOf(measures), measures.front().name,
                                AbbreviationsOf(measures)),
            .choices = ListOfNames(measures),
            .store = [&settings, measures](
                         const std::string& text) { settings.SetOutcomeMeasure(ValueOf(measures, text)); },
            .value = [&settings] { return nlohmann::ordered_json(MeasureName(settings)); }};
}

bool HasCounts(MAOutcomeData data)
{
    return data == MAOutcomeData::Proportion || data == MAOutcomeData::Rate || data == MAOutcomeData::Rates;
}

bool IsInside(MAScale scale, double value)
{
    switch (scale) {
    case MAScale::Natural:
        return true;
    case MAScale::Log:
        return value > 0;
    case MAScale::SquareRoot:
    case MAScale::FreemanTukeyRate:
        return value >= 0;
    case MAScale::Logit:
    case MAScale::Arcsine:
    case MAScale::FreemanTukeyProportion:
        return value > 0 && value < 1;
    case MAScale::FisherZ:
        return value > -1 && value < 1;
    }
    return true;
}

} // namespace

OptionDefinitions OutcomeColumns(Options& options, Command data)
{
    switch (OutcomeDataOf(data).value()) {
    case MAOutcomeData::Rates:
        return RatesColumns(options);
    case MAOutcomeData::Proportion:
        return ProportionColumns(options);
    case MAOutcomeData::Rate:
        return RateColumns(options);
    case MAOutcomeData::Correlation:
        return CorrelationColumns(options);
    case MAOutcomeData::Mean:
        return MeanColumns(options);
    }
    return {};
}

OptionDefinitions OutcomeEffects(Options& options, Command data)
{
    const MAOutcomeData reported = OutcomeDataOf(data).value();
    OptionDefinitions all = {OutcomeEffect(options.settings, reported)};
    if (HasCounts(reported))
        for (const OptionDefinition& option :
             ZeroCellOptions(options.settings, "studies receive the zero-count "
                                               "constant"))
            all.push_back(option);
    if (reported == MAOutcomeData::Rates)
        all.push_back(PooledZeroCellOption(options.settings));
    return all;
}

OptionDefinitions ZeroCellOptions(Settings& settings, const char* receivers)
{
    const std::string help = fmt::format("which {}", receivers);
    return {OneOf("zero-cells", ZERO_CELL_CHOICES, settings, &Settings::GetBinZeroAdjType,
                  &Settings::SetBinZeroAdjType, help.c_str()),
            Number("zero-delta", NOT_NEGATIVE, settings, &Settings::GetZeroCountDelta,
                   &Settings::SetZeroCountDelta, "zero-count constant")};
}

OptionDefinition PooledZeroCellOption(Settings& settings)
{
    return OneOf("pooled-zero-cells", POOLED_ZERO_CELL_CHOICES, settings, &Settings::GetPooledZeroCells,
                 &Settings::SetPooledZeroCells,
                 "correction of the counts that --weights mantel-haenszel pools");
}

void RequireNatural(const char* option, const Settings& settings, double value)
{
    const Measure measure = MeasureOf(settings);
    if (!IsInside(measure.scale, value))
        throw UnusableInput(fmt::format("--{} is on the natural scale, and {} is outside the range of a {}.",
                                        option, value, measure.name));
}

} // namespace host

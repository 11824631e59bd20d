#include "host/cli/FigureTexts.h"
#include "host/cli/OptionGroups.h"
#include "host/cli/OptionKinds.h"

namespace host {

namespace {

using Json = nlohmann::ordered_json;

/// An option whose argument names a row of a table of choices, stored in a variable.
template <class Value, std::size_t N>
OptionDefinition Choice(const char* name, const std::array<MA_NAMESPACE::MAChoice<Value>, N>& choices,
                        Value& target, const char* help)
{
    return {.name = name,
            .argument = "NAME",
            .help = fmt::format("{}: {} (default {})", help, NamesOf(choices), NameOf(choices, target)),
            .choices = ListOfNames(choices),
            .store = [&target, &choices](const std::string& text) { target = ValueOf(choices, text); },
            .value = [&target, &choices] { return Json(NameOf(choices, target)); }};
}

template <class Value>
Json JsonOf(const std::optional<std::pair<Value, Value>>& pair)
{
    return pair ? Json{pair->first, pair->second} : Json();
}

/// Two texts, separated by a comma.
OptionDefinition TextPair(const char* name, const char* argument,
                          std::optional<std::pair<std::string, std::string>>& target, const char* help)
{
    return {.name = name,
            .argument = argument,
            .help = help,
            .store = [&target](const std::string& text) { target = ParseTextPair(text); },
            .value = [&target] { return JsonOf(target); }};
}

OptionDefinition Title(PictureOptions& picture)
{
    return {.name = "title",
            .argument = "TEXT",
            .help = "title of the forest plot",
            .store = [&picture](const std::string& text) { picture.title = text; },
            .value = [&picture] { return picture.title.empty() ? Json() : Json(picture.title); }};
}

OptionDefinition ForestSort(PictureOptions& picture)
{
    return {.name = "forest-sort",
            .argument = "ORDER",
            .help =
                "order of the studies in the forest plot, within groups: file, effect (ascending), weight "
                "(descending) or a column (ascending) (default file)",
            .store = [&picture](const std::string& text) { picture.forestSort = text; },
            .value = [&picture] { return Json(picture.forestSort); }};
}

OptionDefinition AxisLimits(PictureOptions& picture)
{
    return {.name = "axis-limits",
            .argument = "LIMITS",
            .help = "ends of the axis of the forest plot, LOW,HIGH, on the natural scale",
            .store = [&picture](const std::string& text) { picture.axisLimits = ParseLimits(text); },
            .value = [&picture] { return JsonOf(picture.axisLimits); }};
}

OptionDefinition Size(PictureOptions& picture)
{
    return {.name = "picture-size",
            .argument = "SIZE",
            .help = "size of the pictures of --plots, such as 170mm, 170x120mm, 7x5in or 800x600 (pixels of "
                    "1/96 inch); without height, it follows from the picture",
            .store = [&picture](const std::string& text) { picture.size = ParseSize(text); },
            .value =
                [&picture] {
                    const auto& size = picture.size;
                    return size ? Json{size->width, size->height ? Json(*size->height) : Json()} : Json();
                }};
}

constexpr Domain RESOLUTIONS = {[](double x) { return x >= 30 && x <= 2400; }, "from 30 to 2400"};

OptionDefinition Resolution(PictureOptions& picture)
{
    return {.name = "resolution",
            .argument = "DPI",
            .help = "pixels an inch of --plot-format png (default 192)",
            .store =
                [&picture](const std::string& text) {
                    picture.resolution = RequireInside(RESOLUTIONS, ParseWholeNumber(text));
                },
            .value = [&picture] { return picture.resolution ? Json(*picture.resolution) : Json(); }};
}

OptionDefinitions ForestOptionsOf(PictureOptions& picture)
{
    return {
        Choice("layout", FOREST_LAYOUT_CHOICES, picture.layout, "whose forest plots this one looks like"),
        TextList("forest-columns", "LIST", picture.forestColumns,
                 "columns of the forest plot: columns of the file, or events, n and mean-sd of the groups; "
                 "separated by commas, repeatable"),
        ForestSort(picture),
        AxisLimits(picture),
        TextPair("favours", "LABELS", picture.favours,
                 "what effects left and right of no effect favour, LEFT,RIGHT"),
        Title(picture),
        Size(picture),
        Resolution(picture),
    };
}

/// Of the pooled models, which a regression lacks.
OptionDefinitions ModelOptionsOf(PictureOptions& picture)
{
    return {
        TextPair("group-names", "NAMES", picture.groupNames,
                 "names of the treatment and the control group in the forest plot, separated by a comma"),
        Choice("forest-models", FOREST_MODELS_CHOICES, picture.models,
               "models of the forest plot: that of the analysis, or fixed and random effects"),
        Choice("forest-prediction", PREDICTION_LOOK_CHOICES, picture.prediction,
               "look of the prediction interval in the forest plot"),
    };
}

} // namespace

OptionGroup FigureOptions(Options& options)
{
    if (options.command == Command::BATCH)
        return {};
    OptionDefinitions definitions = ForestOptionsOf(options.picture);
    if (HasSteps(options.command))
        for (OptionDefinition& definition : ModelOptionsOf(options.picture))
            definitions.push_back(std::move(definition));
    return {.heading = "Pictures", .options = definitions};
}

} // namespace host

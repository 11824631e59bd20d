#include "host/report/JsonReport.h"

#include "host/cli/OptionGroups.h"
#include "host/text/ProgramInfo.h"

namespace host {

namespace {

using Json = nlohmann::ordered_json;

constexpr int SCHEMA = 1;

Json SettingsOf(Options options)
{
    Json settings;
    for (const OptionDefinition& definition : DefineOptions(options))
        settings[definition.name] = definition.value();
    return settings;
}

Json RecordsOf(const RecordSummary& records)
{
    return {{"read", records.read},       {"used", records.used.size()}, {"missing", records.missing},
            {"invalid", records.invalid}, {"dropped", records.dropped},  {"numbers", records.used}};
}

Json StatusOf(const KXStatus& status)
{
    const char* const kind = status.IsError() ? "error" : status.IsWarning() ? "warning" : "ok";
    return {{"code", status.GetCode()}, {"kind", kind}};
}

/// An object has a line for each member. Everything else, such as a long array, has one line.
void Append(std::string& text, const Json& value, const std::string& indent = "")
{
    if (!value.is_object()) {
        // Arguments and column names are the user's bytes, which need not be UTF-8.
        text += value.dump(-1, ' ', false, Json::error_handler_t::replace);
        return;
    }
    const char* separator = "{\n";
    for (const auto& [key, member] : value.items()) {
        text += separator + indent + "  " + Json(key).dump() + ": ";
        Append(text, member, indent + "  ");
        separator = ",\n";
    }
    text += '\n' + indent + '}';
}

} // namespace

std::string RenderJson(const Options& options, const JsonParts& parts)
{
    Json codes = Json::array();
    Json sentences = Json::array();
    for (const ShownWarning& warning : parts.warnings) {
        codes.push_back(warning.code);
        sentences.push_back(warning.sentence);
    }
    const Json report = {{"schema", SCHEMA},
                         {"program", PROGRAM_NAME},
                         {"version", PROGRAM_VERSION},
                         {"command", options.arguments},
                         {"settings", SettingsOf(options)},
                         {"records", RecordsOf(parts.records)},
                         {"status", StatusOf(parts.status)},
                         {"warnings", codes},
                         {"messages", sentences},
                         {"cautions", parts.cautions},
                         {"results", parts.results}};
    std::string text;
    Append(text, report);
    return text + '\n';
}

} // namespace host

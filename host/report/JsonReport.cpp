#include "host/report/JsonReport.h"

#include "host/cli/OptionGroups.h"
#include "host/text/ProgramInfo.h"

namespace host {

namespace {

using Json = nlohmann::ordered_json;

constexpr int SCHEMA = 2; // docs/json.md says what raises it

Json SettingsOf(Options options)
{
    Json settings;
    for (const OptionDefinition& definition : DefineOptions(options))
        settings[definition.name] = definition.value();
    return settings;
}

const std::string& LabelOf(const JsonParts& parts, int record)
{
    return parts.studyLabels[static_cast<std::size_t>(record)];
}

/// The labels of the studies, in the order of the lists that have an entry a study.
Json StudiesOf(const JsonParts& parts)
{
    Json studies = Json::array();
    for (const int record : parts.records.used)
        studies.push_back(LabelOf(parts, record));
    return studies;
}

Json ExcludedOf(const JsonParts& parts)
{
    Json excluded = Json::array();
    for (const ExcludedRecord& one : parts.records.excluded)
        excluded.push_back({{"record", one.record},
                            {"study", LabelOf(parts, one.record)},
                            {"line", parts.lines.Of(one.record)},
                            {"reason", parts.records.ReasonOf(one)}});
    return excluded;
}

Json CountsByReason(const RecordSummary& records)
{
    const std::vector<std::size_t> counts = records.CountsByReason();
    Json byReason = Json::object();
    for (std::size_t i = 0; i < counts.size(); ++i)
        byReason[records.reasons[i]] = counts[i];
    return byReason;
}

Json RecordsOf(const JsonParts& parts)
{
    const RecordSummary& records = parts.records;
    return {{"read", records.read},          {"used", records.used.size()},
            {"missing", records.missing},    {"invalid", records.invalid},
            {"dropped", records.dropped},    {"numbers", records.used},
            {"excluded", ExcludedOf(parts)}, {"excludedByReason", CountsByReason(records)}};
}

Json StatusOf(const KXStatus& status)
{
    const char* const kind = status.IsError() ? "error" : status.IsWarning() ? "warning" : "ok";
    return {{"code", status.GetCode()}, {"kind", kind}};
}

/// An object has a line for each member. Everything else, such as a long array, has one line.
void Append(std::string& text, const Json& value, const std::string& indent = "")
{
    if (!value.is_object() || value.empty()) {
        // Arguments and column names are the user's bytes, which need not be UTF-8.
        text += value.dump(-1, ' ', false, Json::error_handler_t::replace);
        return;
    }
    const char* separator = "{\n";
    for (const auto& [key, member] : value.items()) {
        text +=
            separator + indent + "  " + Json(key).dump(-1, ' ', false, Json::error_handler_t::replace) + ": ";
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
                         {"records", RecordsOf(parts)},
                         {"studies", StudiesOf(parts)},
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

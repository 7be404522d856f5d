#include "Output.h"

#include "Program.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <utility>

namespace
{

constexpr int kSchemaVersion = 1;

/// What made the object, where and when.
json DescribeTool(const Arguments &arguments)
{
    json tool = {{"name", "biosconfig"}, {"version", BIOSCONFIG_VERSION}, {"command", arguments.commandName}};
    const std::string machine = Platform::MachineName();
    if (!arguments.dumpPath.empty())
        tool["dump"] = arguments.dumpPath;
    else if (!machine.empty() && !arguments.isRedacted)
        tool["machine"] = machine;
    tool["time"] = TimeNow();
    return tool;
}

std::string Dump(const json &value)
{
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string Head(const Arguments &arguments)
{
    return "{\"schemaVersion\":" + std::to_string(kSchemaVersion) + ",\n\"tool\":" + Dump(DescribeTool(arguments));
}

std::string Tail(const std::vector<json> &errors)
{
    std::string text = ",\n\"errors\":[";
    for (const json &error : errors)
        text += (&error == &errors.front() ? "\n" : ",\n") + Dump(error);
    return text + "]}\n";
}

} // namespace

std::string TimeNow()
{
    const std::time_t now = std::time(nullptr);
    const std::tm *const utc = std::gmtime(&now);
    std::array<char, 32> text = {};
    return utc && std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", utc) != 0 ? text.data() : "";
}

void Tell(const std::string &message)
{
    std::fprintf(stderr, "biosconfig: %s\n", message.c_str());
}

Output::Output(const Arguments &arguments)
    : m_arguments(arguments), m_file(arguments.outputPath),
      m_reader(m_file.IsStandardOutput() ? Terminal(stdout, arguments.color) : Terminal())
{
    if (IsJson())
        m_data = Head(arguments);
}

void Output::StartArray(std::string_view name)
{
    m_data.append(",\n\"").append(name).append("\":[");
    m_hasElements = false;
}

void Output::AddElement(const json &element)
{
    m_data.append(m_hasElements ? ",\n" : "\n").append(Dump(element));
    m_hasElements = true;
}

void Output::EndArray()
{
    m_data += "]";
}

void Output::Record(Severity severity, std::string_view code, const std::string &message, const json &further)
{
    if (!IsJson())
        return;
    json error = {{"severity", SeverityName(severity)}, {"code", code}};
    error.update(further);
    error["message"] = message;
    m_errors.push_back(std::move(error));
}

void Output::TellUnlessQuiet(Severity severity, const std::string &line) const
{
    if (severity == Severity::Error || !m_arguments.isQuiet)
        ::Tell(OneLine(line));
}

void Output::Tell(Severity severity, std::string_view code, const std::string &message, const json &further)
{
    Record(severity, code, message, further);
    TellUnlessQuiet(severity,
                    (severity == Severity::Error ? "" : std::string(SeverityName(severity)) + ": ") + message);
}

void Output::Tell(const Finding &finding, const std::string &templateName)
{
    std::string where;
    json further = json::object();
    if (finding.place.line != 0)
    {
        where =
            templateName + ":" + std::to_string(finding.place.line) + ":" + std::to_string(finding.place.column) + ": ";
        further["line"] = finding.place.line;
        further["column"] = finding.place.column;
    }
    if (!finding.option.empty())
    {
        where += finding.option + ": ";
        further["option"] = finding.option;
    }
    Record(finding.severity, finding.code, finding.message, further);
    TellUnlessQuiet(finding.severity, where + std::string(SeverityName(finding.severity)) + ": " + finding.message);
}

void Output::TellVerbose(const std::string &message) const
{
    if (m_arguments.isVerbose)
        ::Tell(message);
}

void Output::Finish()
{
    if (std::exchange(m_isFinished, true))
        return;
    if (IsJson())
        m_data += Tail(m_errors);
    m_file.Write(m_data);
}

void Output::FinishFailed(const Arguments &arguments, const Failure &failure, std::vector<json> errors)
{
    if (!arguments.isJson)
        return;
    errors.push_back({{"severity", "error"}, {"code", MeaningOf(failure.code).word}, {"message", failure.what()}});
    Platform::StandardOutputAsBytes();
    const std::string text = Head(arguments) + Tail(errors);
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

#pragma once

#include "Arguments.h"
#include "OutputFile.h"
#include "Template.h"
#include "Terminal.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

/// An object whose members keep their order.
using json = nlohmann::ordered_json;

/// Where a command's data and messages go: as text, or as one JSON object of both. The data are put out when the
/// command is done.
class Output
{
public:
    /// Throws Failure when the file of `arguments` cannot be written.
    explicit Output(const Arguments &arguments);

    const Terminal &Reader() const { return m_reader; }
    bool IsJson() const { return m_arguments.isJson; }

    /// Adds to the data that go out as text.
    void Add(std::string_view text) { m_data += text; }

    /// Starts a member of the object that goes out as JSON, an array, adds its elements one by one, and ends it.
    void StartArray(std::string_view name);
    void AddElement(const json &element);
    void EndArray();

    /// Tells the user something, on standard error and in the JSON object. Unless it is an error, not when quiet.
    void Tell(Severity severity, std::string_view code, const std::string &message,
              const json &further = json::object());
    /// The same for what is to be said about a template of that name.
    void Tell(const Finding &finding, const std::string &templateName);
    /// Tells what happens, to those who want to know.
    void TellVerbose(const std::string &message) const;

    /// Has the file that the data go to be for its owner alone, because its values are not for everybody.
    void RestrictToOwner() { m_file.RestrictToOwner(); }

    /// Puts the data out, the first time. Throws Failure when that fails.
    void Finish();

    /// Puts out the JSON object of a command that has ended with a failure; nothing without --json.
    static void FinishFailed(const Arguments &arguments, const Failure &failure, std::vector<json> errors);
    const std::vector<json> &Errors() const { return m_errors; }

private:
    void Record(Severity severity, std::string_view code, const std::string &message, const json &further);
    void TellUnlessQuiet(Severity severity, const std::string &line) const;

    const Arguments &m_arguments;
    OutputFile m_file;
    Terminal m_reader;
    std::string m_data;
    bool m_hasElements = false;
    bool m_isFinished = false;
    std::vector<json> m_errors;
};

/// The time, as JSON has it (ISO 8601, UTC): "2026-03-02T09:12:45Z". Empty when the system does not tell.
std::string TimeNow();

/// A line on standard error: "biosconfig: " and the message.
void Tell(const std::string &message);

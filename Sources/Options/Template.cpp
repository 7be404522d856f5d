#include "Template.h"

#include "TextTemplate.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view Trim(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(kBlanks) == std::string_view::npos;
}

/// Tells the places of ever later parts of a text.
class PlaceCounter
{
public:
    explicit PlaceCounter(std::string_view text) : m_text(text) {}

    /// `part` must stand behind the one before.
    TemplatePlace Of(std::string_view part)
    {
        const auto end = static_cast<std::size_t>(part.data() - m_text.data());
        for (; m_at < end; ++m_at)
            Count(m_text[m_at]);
        return m_place;
    }

private:
    void Count(char character)
    {
        constexpr unsigned kContinuationMask = 0xC0;
        constexpr unsigned kContinuation = 0x80;
        if (character == '\n')
            m_place = {m_place.line + 1, 1};
        else if ((static_cast<unsigned char>(character) & kContinuationMask) != kContinuation)
            ++m_place.column;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    TemplatePlace m_place = {1, 1};
};

/// Adds what one record of a text template holds.
void TakeTextRecord(const TemplateRecord &record, PlaceCounter &places, TemplateContent &content)
{
    const std::string_view name = Trim(record.assignment.name);
    // What is no assignment may be a value that is not to be told.
    const std::string option(record.isAssignment ? name : std::string_view());
    const auto add = [&](Severity severity, TemplatePlace place, std::string_view code, std::string message) {
        content.findings.push_back({severity, place, option, code, std::move(message)});
    };
    if (!record.isAssignment && name.empty())
        return; // behind the last ";"
    const std::string_view before =
        record.assignment.name.substr(0, static_cast<std::size_t>(name.data() - record.assignment.name.data()));
    const TemplatePlace place = places.Of(name);
    if (!record.isAssignment)
        return add(Severity::Error, place, "no-assignment", "this is no assignment: there is no \"=\"");
    if (name.empty())
        return add(Severity::Error, place, "no-name", "the assignment names no option");
    if (before.find('\n') != std::string_view::npos)
        add(Severity::Warning, place, "line-break-in-name",
            "the line break in front of the name is a part of it for the tool; write the \";\" at the start of the "
            "line");
    if (!IsBlank(record.rest))
    {
        const std::string_view rest = Trim(record.rest);
        add(Severity::Error, places.Of(rest), "text-behind-value",
            "what stands here would be left out: a value ends with its line, and a \";\" is missing");
    }
    content.assignments.push_back({name, Trim(record.assignment.value), place});
}

void TakeKnobFileLine(std::string_view line, TemplatePlace place, TemplateContent &content)
{
    line = Trim(line.substr(0, line.find(';')));
    const bool isSection = line.starts_with('[') && line.ends_with(']');
    if (line.empty() || line.front() == '#' || isSection)
        return;
    const std::size_t equals = line.find('=');
    const std::string_view name = Trim(line.substr(0, equals));
    if (equals == std::string_view::npos)
        return content.findings.push_back(
            {Severity::Error, place, "", "no-assignment", "this is neither an assignment, a section nor a comment"});
    const std::size_t width = line.substr(equals).starts_with("==") ? 2 : 1;
    const std::string_view value = Trim(line.substr(equals + width));
    if (!name.empty())
        content.assignments.push_back({name, value, place});
    else if (!value.empty())
        content.findings.push_back({Severity::Error, place, "", "no-name", "the assignment names no option"});
}

} // namespace

std::string_view SeverityName(Severity severity)
{
    constexpr std::string_view kNames[] = {"error", "warning", "note"};
    return kNames[static_cast<std::size_t>(severity)];
}

TemplateContent ReadTemplate(std::string_view text, TemplateKind kind)
{
    TemplateContent content;
    PlaceCounter places(text);
    std::string_view rest = text;
    while (kind == TemplateKind::Text && !rest.empty())
        TakeTextRecord(TakeRecord(rest), places, content);
    while (!rest.empty())
    {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const std::size_t blanks = std::min(line.find_first_not_of(kBlanks), line.size());
        TakeKnobFileLine(line, places.Of(line.substr(blanks)), content);
    }
    return content;
}

TemplateContent ReadAssignments(const std::vector<std::string> &arguments)
{
    TemplateContent content;
    for (std::size_t index = 0; index < arguments.size(); ++index)
    {
        const std::string_view argument = arguments[index];
        const std::size_t equals = argument.find('=');
        const std::string_view name = Trim(argument.substr(0, equals));
        if (equals == std::string_view::npos || name.empty())
            content.findings.push_back({Severity::Error,
                                        {},
                                        "",
                                        "no-assignment",
                                        "assignment " + std::to_string(index + 1) + " is not of the form NAME=VALUE"});
        else
            content.assignments.push_back({name, Trim(argument.substr(equals + 1)), {}});
    }
    return content;
}

std::string WriteTemplate(const std::vector<WrittenAssignment> &assignments, TemplateKind kind)
{
    const bool isText = kind == TemplateKind::Text;
    std::string text = isText ? "" : "[BiosKnobs]\n";
    for (const WrittenAssignment &assignment : assignments)
    {
        text += isText && !text.empty() ? ";" : "";
        text.append(assignment.name).append(isText ? "=" : "==").append(assignment.value).append("\n");
    }
    return text;
}

#include "KnobFile.h"

#include "KnobImage.h"
#include "Number.h"
#include "ToolError.h"

#include <algorithm>
#include <libxml/xmlstring.h>
#include <optional>
#include <unordered_map>
#include <vector>

namespace
{

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::uint32_t kBitsOfByte = 8;

/// A line that is neither blank nor a comment nor a section.
struct AssignmentLine
{
    std::size_t number;
    std::string name;
    /// Nothing when the line has no "=".
    std::optional<std::string> value;
};

using KnobsByName = std::unordered_map<std::string, std::optional<Knob>>;

std::string_view Trim(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

std::string Quoted(const std::string &text)
{
    return "\"" + text + "\"";
}

AssignmentLine SplitAssignment(std::size_t number, std::string_view line)
{
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos)
        return {number, std::string(Trim(line)), std::nullopt};
    const std::size_t value = equals + (line.substr(equals).starts_with("==") ? 2 : 1);
    return {number, std::string(Trim(line.substr(0, equals))), std::string(Trim(line.substr(value)))};
}

bool CarriesNothing(std::string_view line)
{
    const bool isSection = line.starts_with('[') && line.ends_with(']');
    return line.empty() || line.front() == '#' || isSection;
}

std::vector<AssignmentLine> SplitLines(std::string_view text)
{
    if (text.starts_with(kByteOrderMark))
        text.remove_prefix(kByteOrderMark.size());
    std::vector<AssignmentLine> lines;
    for (std::size_t number = 1; !text.empty(); ++number)
    {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view wholeLine = text.substr(0, end);
        const std::string_view line = Trim(wholeLine.substr(0, wholeLine.find(';')));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (CarriesNothing(line))
            continue;
        AssignmentLine assignment = SplitAssignment(number, line);
        if (!assignment.name.empty() || assignment.value != "")
            lines.push_back(std::move(assignment));
    }
    return lines;
}

/// The options that `lines` name, found in one walk over the firmware; nothing for a name that it does not have.
KnobsByName FindKnobs(const std::vector<AssignmentLine> &lines, std::uint32_t knobCount)
{
    KnobsByName knobs;
    for (const AssignmentLine &line : lines)
        knobs.try_emplace(line.name);
    for (std::uint32_t index = 0; index < knobCount; ++index)
    {
        Knob knob = MakeKnob(index);
        const auto wanted = knobs.find(knob.name);
        if (wanted != knobs.end())
            wanted->second = std::move(knob);
    }
    return knobs;
}

std::string ListChoices(const Knob &knob)
{
    std::string list;
    for (const Choice &choice : knob.choices)
        list += (list.empty() ? "" : ", ") + Quoted(choice.text) + " = " + HexText(choice.value);
    return list;
}

/// A text comes before a number: a choice whose text is "2" is meant by "2", whatever its number.
std::string CheckChoice(const Knob &knob, const std::string &value)
{
    const auto byText = std::find_if(knob.choices.begin(), knob.choices.end(),
                                     [&](const Choice &choice) { return choice.text == value; });
    if (byText != knob.choices.end())
        return HexText(byText->value);
    const auto number = ParseNumber(value);
    const bool isListed = number && std::any_of(knob.choices.begin(), knob.choices.end(),
                                                [&](const Choice &choice) { return choice.value == *number; });
    if (!isListed)
        throw std::invalid_argument(Quoted(value) + " is none of " + ListChoices(knob));
    return HexText(*number);
}

std::string CheckNumber(const Knob &knob, const std::string &value)
{
    const auto number = ParseNumber(value);
    if (!number)
        throw std::invalid_argument(Quoted(value) + " is not a number");
    const std::uint32_t bits = knob.size * kBitsOfByte;
    if (bits < 64 && *number >> bits != 0)
        throw std::invalid_argument(value + " is more than " + std::to_string(knob.size) + " byte(s) hold");
    return HexText(*number);
}

std::string CheckText(const Knob &knob, const std::string &value)
{
    if (value.size() > knob.size)
        throw std::invalid_argument("the text is longer than " + std::to_string(knob.size) + " bytes");
    const bool hasControls =
        std::any_of(value.begin(), value.end(), [](unsigned char character) { return character < 0x20; });
    if (hasControls || xmlCheckUTF8(reinterpret_cast<const xmlChar *>(value.c_str())) == 0)
        throw std::invalid_argument("the text is not printable UTF-8");
    return value;
}

std::string CheckValue(const Knob &knob, const std::string &value)
{
    switch (knob.kind)
    {
    case KnobKind::OneOf:
    case KnobKind::CheckBox:
        return CheckChoice(knob, value);
    case KnobKind::Numeric:
        return CheckNumber(knob, value);
    case KnobKind::Text:
        return CheckText(knob, value);
    }
    throw std::logic_error("option of no kind");
}

/// Throws std::invalid_argument with the reason when the line is bad.
void TakeLine(const AssignmentLine &line, const KnobsByName &knobs, KnobValues &values)
{
    if (!line.value)
        throw std::invalid_argument(Quoted(line.name) + " is neither an assignment, a section nor a comment");
    const std::optional<Knob> &knob = knobs.at(line.name);
    if (!knob)
        throw std::invalid_argument("there is no option " + Quoted(line.name));
    std::string value;
    try
    {
        value = CheckValue(*knob, *line.value);
    }
    catch (const std::invalid_argument &reason)
    {
        throw std::invalid_argument(line.name + ": " + reason.what());
    }
    if (!values.emplace(line.name, std::move(value)).second)
        throw std::invalid_argument(line.name + " is assigned a second time");
}

} // namespace

KnobValues ReadAssignments(std::string_view text, std::uint32_t knobCount)
{
    const std::vector<AssignmentLine> lines = SplitLines(text);
    const KnobsByName knobs = FindKnobs(lines, knobCount);
    KnobValues values;
    for (const AssignmentLine &line : lines)
    {
        try
        {
            TakeLine(line, knobs, values);
        }
        catch (const std::invalid_argument &reason)
        {
            throw ToolError(ExitCode::BadInput, "line " + std::to_string(line.number) + ": " + reason.what());
        }
    }
    return values;
}

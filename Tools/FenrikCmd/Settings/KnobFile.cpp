#include "KnobFile.h"

#include "Number.h"

#include <algorithm>
#include <libxml/xmlstring.h>
#include <optional>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

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

using SettingsByName = std::unordered_map<std::string, std::optional<Setting>>;

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

/// The settings that `lines` name, found in one walk over them all; nothing for a name that there is not.
SettingsByName FindSettings(const std::vector<AssignmentLine> &lines, const SettingLister &list)
{
    SettingsByName settings;
    for (const AssignmentLine &line : lines)
        settings.try_emplace(line.name);
    list(
        [&](Setting &setting)
        {
            const auto wanted = settings.find(setting.name);
            if (wanted != settings.end())
                wanted->second = std::move(setting);
            return true;
        });
    return settings;
}

std::string ListChoices(const Setting &setting)
{
    std::string list;
    for (const SettingChoice &choice : setting.choices)
        list += (list.empty() ? "" : ", ") + Quoted(choice.text) + " = " + HexText(choice.number);
    return list;
}

/// A text comes before a number: a choice whose text is "2" is meant by "2", whatever its number.
std::string CheckChoice(const Setting &setting, const std::string &value)
{
    const auto byText = std::find_if(setting.choices.begin(), setting.choices.end(),
                                     [&](const SettingChoice &choice) { return choice.text == value; });
    if (byText != setting.choices.end())
        return HexText(byText->number);
    const auto number = ParseNumber(value);
    const bool isListed = number && std::any_of(setting.choices.begin(), setting.choices.end(),
                                                [&](const SettingChoice &choice) { return choice.number == *number; });
    if (!isListed)
        throw std::invalid_argument(Quoted(value) + " is none of " + ListChoices(setting));
    return HexText(*number);
}

/// Throws std::invalid_argument when `number` is outside the setting's limits.
void CheckLimits(const SettingLimits &limits, std::int64_t number)
{
    const std::int64_t least = limits.minimum.value_or(number);
    const std::int64_t most = limits.maximum.value_or(number);
    if (number < least)
        throw std::invalid_argument(std::to_string(number) + " is less than the least number, " +
                                    std::to_string(least));
    if (number > most)
        throw std::invalid_argument(std::to_string(number) + " is more than the largest number, " +
                                    std::to_string(most));
    const std::uint64_t distance =
        static_cast<std::uint64_t>(number) - static_cast<std::uint64_t>(limits.minimum.value_or(0));
    const bool isBelowStart = number < limits.minimum.value_or(0);
    if (limits.step && (isBelowStart ? 0 - distance : distance) % *limits.step != 0)
        throw std::invalid_argument(std::to_string(number) + " is not one of the steps of " +
                                    std::to_string(*limits.step) + " from " +
                                    std::to_string(limits.minimum.value_or(0)));
}

std::string CheckSigned(const Setting &setting, const std::string &value)
{
    const auto number = ParseSignedNumber(value);
    if (!number)
        throw std::invalid_argument(Quoted(value) + " is not a number");
    CheckLimits(setting.limits, *number);
    return SignedText(*number);
}

std::string CheckNumber(const Setting &setting, const std::string &value)
{
    if (setting.isSigned)
        return CheckSigned(setting, value);
    const auto number = ParseNumber(value);
    if (!number)
        throw std::invalid_argument(Quoted(value) + " is not a number");
    const std::uint32_t bits = setting.size * kBitsOfByte;
    if (bits < 64 && *number >> bits != 0)
        throw std::invalid_argument(value + " is more than " + std::to_string(setting.size) + " byte(s) hold");
    return HexText(*number);
}

/// The characters of a text that is UTF-8.
std::size_t Characters(const std::string &text)
{
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; }));
}

void CheckLength(const SettingLimits &limits, const std::string &value)
{
    const std::size_t length = Characters(value);
    const std::uint64_t least = limits.minLength.value_or(0);
    if (length < least)
        throw std::invalid_argument("the text is shorter than " + std::to_string(least) + " characters");
    if (limits.maxLength && length > *limits.maxLength)
        throw std::invalid_argument("the text is longer than " + std::to_string(*limits.maxLength) + " characters");
}

std::string CheckText(const Setting &setting, const std::string &value)
{
    if (setting.size != 0 && value.size() > setting.size)
        throw std::invalid_argument("the text is longer than " + std::to_string(setting.size) + " bytes");
    const bool hasControls =
        std::any_of(value.begin(), value.end(), [](unsigned char character) { return character < 0x20; });
    if (hasControls || xmlCheckUTF8(reinterpret_cast<const xmlChar *>(value.c_str())) == 0)
        throw std::invalid_argument("the text is not printable UTF-8");
    CheckLength(setting.limits, value);
    return value;
}

std::string CheckValue(const Setting &setting, const std::string &value)
{
    switch (setting.kind)
    {
    case SettingKind::OneOf:
    case SettingKind::CheckBox:
        return CheckChoice(setting, value);
    case SettingKind::Numeric:
        return CheckNumber(setting, value);
    case SettingKind::Text:
        return CheckText(setting, value);
    }
    throw std::logic_error("option of no kind");
}

/// Reads the lines of a knob file one after the other into assignments.
class LineReader
{
public:
    explicit LineReader(const SettingsByName &settings) : m_settings(settings) {}

    /// Throws std::invalid_argument with the reason when the line is bad.
    void Take(const AssignmentLine &line)
    {
        if (!line.value)
            throw std::invalid_argument(Quoted(line.name) + " is neither an assignment, a section nor a comment");
        const std::optional<Setting> &setting = m_settings.at(line.name);
        if (!setting)
            throw std::invalid_argument("there is no option " + Quoted(line.name));
        try
        {
            TakeValue(line.number, *line.value, *setting);
        }
        catch (const std::invalid_argument &reason)
        {
            throw std::invalid_argument(line.name + ": " + reason.what());
        }
        if (!m_names.insert(line.name).second)
            throw std::invalid_argument(line.name + " is assigned a second time");
    }

    std::vector<Assignment> &Assignments() { return m_assignments; }

private:
    void TakeValue(std::size_t line, const std::string &written, const Setting &setting)
    {
        // What nobody can change may still be what was assigned.
        const bool isAsShown = setting.unreadable.empty() && written == setting.currentValue;
        std::string value = setting.isReadOnly && isAsShown ? written : CheckValue(setting, written);
        if (!setting.isReadOnly)
            m_assignments.push_back({line, setting, std::move(value)});
        else if (!setting.unreadable.empty() || value != setting.currentValue)
            throw std::invalid_argument("it is read-only");
    }

    const SettingsByName &m_settings;
    std::unordered_set<std::string> m_names;
    std::vector<Assignment> m_assignments;
};

} // namespace

std::vector<Assignment> ReadAssignments(std::string_view text, const SettingLister &list)
{
    const std::vector<AssignmentLine> lines = SplitLines(text);
    const SettingsByName settings = FindSettings(lines, list);
    LineReader reader(settings);
    for (const AssignmentLine &line : lines)
    {
        try
        {
            reader.Take(line);
        }
        catch (const std::invalid_argument &reason)
        {
            throw ToolError(ExitCode::BadInput, "line " + std::to_string(line.number) + ": " + reason.what());
        }
    }
    return std::move(reader.Assignments());
}

ToolError RefusedAssignment(const Assignment &assignment, const std::string &reason)
{
    return {ExitCode::BadInput,
            "line " + std::to_string(assignment.line) + ": " + assignment.setting.name + ": " + reason};
}

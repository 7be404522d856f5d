#include "KernelSetting.h"

#include "KernelError.h"
#include "Number.h"
#include "Utf8.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <unordered_set>

namespace
{

constexpr std::string_view kModifierEnd = "_modifier";
constexpr std::string_view kFiles[] = {kCurrentValue,     "default_value",    "display_name", "elements",
                                       "max_length",      "max_value",        "min_length",   "min_value",
                                       "possible_values", "scalar_increment", "type"};
constexpr std::string_view kBlanks = " \t\n";
constexpr std::uint32_t kNumberSize = 8;
constexpr std::uint64_t kLongestText = UINT32_MAX;

struct TypeWord
{
    std::string_view word;
    SettingKind kind;
};

constexpr TypeWord kTypes[] = {{"enumeration", SettingKind::OneOf},
                               {"integer", SettingKind::Numeric},
                               {"string", SettingKind::Text},
                               {"ordered-list", SettingKind::Text}};
constexpr std::string_view kOrderedList = "ordered-list";

std::string_view Trim(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// The text of a file that could be read; nothing otherwise.
std::optional<std::string> TextOf(const RawSetting &raw, std::string_view name)
{
    const Platform::FileText *const file = raw.Find(name);
    return file && !file->error ? std::optional(WithoutLineFeed(file->bytes)) : std::nullopt;
}

std::optional<std::int64_t> NumberOf(const RawSetting &raw, std::string_view name)
{
    const std::optional<std::string> text = TextOf(raw, name);
    return text ? ParseSignedNumber(Trim(*text)) : std::nullopt;
}

std::vector<std::string> Split(std::string_view text, char separator)
{
    std::vector<std::string> parts;
    while (!text.empty())
    {
        const std::size_t end = std::min(text.find(separator), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

/// At ";", or where there is none at ",".
std::vector<std::string> SplitList(std::string_view text)
{
    return Split(text, text.find(';') == std::string_view::npos ? ',' : ';');
}

/// What older drivers put behind the value, in its file.
struct ValueMarks
{
    std::string_view value;
    /// The list behind "Optional:"; empty without one.
    std::string_view choices;
    bool isShowOnly = false;
};

ValueMarks SplitMarks(std::string_view text)
{
    constexpr std::string_view kChoices = "[Optional:";
    constexpr std::string_view kShowOnly = "[Status:ShowOnly]";
    const std::size_t choices = text.find(kChoices);
    const std::size_t showOnly = text.find(kShowOnly);
    ValueMarks marks = {text.substr(0, std::min({choices, showOnly, text.size()})), {}, false};
    if (marks.value.size() == text.size())
        return marks;
    if (marks.value.ends_with(';'))
        marks.value.remove_suffix(1);
    marks.isShowOnly = showOnly != std::string_view::npos;
    if (choices != std::string_view::npos)
    {
        marks.choices = text.substr(choices + kChoices.size());
        marks.choices = marks.choices.substr(0, marks.choices.find(']'));
    }
    return marks;
}

/// Every choice once, in their order.
void DropSecondOnes(std::vector<std::string> &values)
{
    std::unordered_set<std::string> seen;
    values.erase(std::remove_if(values.begin(), values.end(),
                                [&](const std::string &value) { return !seen.insert(value).second; }),
                 values.end());
}

/// Whether texts and numbers cannot be taken for each other: what a text template makes of a choice's text is its
/// number "0x1", and that must not be the text of another one.
bool AreDistinct(const std::vector<std::string> &values)
{
    std::unordered_set<std::string> numbers;
    for (std::size_t index = 0; index < values.size(); ++index)
        numbers.insert(HexText(index));
    std::unordered_set<std::string> shown;
    return std::none_of(values.begin(), values.end(),
                        [&](const std::string &value)
                        { return numbers.contains(value) || !shown.insert(ShownText(value)).second; });
}

std::string TypeOf(const RawSetting &raw, bool hasValues)
{
    const std::optional<std::string> type = TextOf(raw, "type");
    const bool isKnown = type && std::any_of(std::begin(kTypes), std::end(kTypes),
                                             [&](const TypeWord &known) { return known.word == Trim(*type); });
    if (isKnown)
        return std::string(Trim(*type));
    if (raw.Find("elements"))
        return std::string(kOrderedList);
    return hasValues ? "enumeration" : raw.Find("min_value") ? "integer" : "string";
}

/// Whether `text`, which is none of the choices, would be taken for the number of one: readers of a dump do without
/// "0x".
bool IsTakenForChoice(const std::vector<std::string> &values, const std::optional<std::string> &text)
{
    if (!text || std::find(values.begin(), values.end(), *text) != values.end())
        return false;
    std::string_view digits = Trim(*text);
    if (digits.starts_with("0x") || digits.starts_with("0X"))
        digits.remove_prefix(2);
    constexpr int kHexadecimal = 16;
    std::uint64_t number = 0;
    const char *const end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, number, kHexadecimal);
    return error == std::errc() && stopped == end && number < values.size();
}

void ReadChoices(const RawSetting &raw, KernelSetting &made)
{
    made.hasChoices = !made.values.empty() && AreDistinct(made.values) &&
                      !IsTakenForChoice(made.values, made.rawValue) &&
                      !IsTakenForChoice(made.values, TextOf(raw, "default_value"));
    if (!made.hasChoices)
    {
        made.setting.kind = SettingKind::Text;
        return;
    }
    made.setting.size = 1;
    for (const std::string &value : made.values)
        made.setting.choices.push_back({ShownText(value), made.setting.choices.size()});
}

void ReadNumberLimits(const RawSetting &raw, Setting &setting)
{
    setting.isSigned = true;
    setting.size = kNumberSize;
    const std::optional<std::int64_t> minimum = NumberOf(raw, "min_value");
    const std::optional<std::int64_t> maximum = NumberOf(raw, "max_value");
    const std::optional<std::int64_t> step = NumberOf(raw, "scalar_increment");
    // Limits that leave no room are none.
    if (!minimum || !maximum || *minimum <= *maximum)
    {
        setting.limits.minimum = minimum;
        setting.limits.maximum = maximum;
    }
    if (step && *step > 1)
        setting.limits.step = static_cast<std::uint64_t>(*step);
}

void ReadLengths(const RawSetting &raw, Setting &setting)
{
    const std::int64_t least = NumberOf(raw, "min_length").value_or(0);
    const std::int64_t most = NumberOf(raw, "max_length").value_or(0);
    if (most <= 0 || least > most || static_cast<std::uint64_t>(most) > kLongestText)
        return;
    setting.limits.maxLength = static_cast<std::uint64_t>(most);
    setting.size = static_cast<std::uint32_t>(most);
    if (least > 0)
        setting.limits.minLength = static_cast<std::uint64_t>(least);
}

void AddNote(Setting &setting, const std::string &note)
{
    setting.help += (setting.help.empty() ? "" : " ") + note;
}

void ReadElements(KernelSetting &made)
{
    made.isOrderedList = true;
    const bool hasComma = std::any_of(made.values.begin(), made.values.end(),
                                      [](const std::string &value) { return value.find(',') != std::string::npos; });
    // A ";" begins a comment in a knob file, so a "," stands for it.
    const std::string &current = made.rawValue ? *made.rawValue : "";
    const bool hasSemicolon = current.find(';') != std::string::npos;
    made.separator = hasSemicolon || current.find(',') == std::string::npos ? ';' : ',';
    if (hasComma && made.separator == ';')
        made.setting.isReadOnly = true;
    std::string list;
    for (const std::string &value : made.values)
        list += (list.empty() ? "" : ", ") + ShownText(value);
    AddNote(made.setting, "An ordered list, the first of highest priority, of: " + list + ".");
}

/// Whether a knob file can name the setting.
bool IsNameable(const std::string &name)
{
    const bool hasBlanksAround = name.empty() || name.front() == ' ' || name.back() == ' ';
    const bool isShownAsItIs = ShownText(name) == name && name.find_first_of("=;\n\t") == std::string::npos;
    return !hasBlanksAround && isShownAsItIs && name.front() != '#' && name.front() != '[';
}

void ReadConditions(const RawSetting &raw, KernelSetting &made)
{
    std::string condition;
    for (const auto &[name, file] : raw.files)
    {
        if (!name.ends_with(kModifierEnd) || file.error)
            continue;
        const std::string text = WithoutLineFeed(file.bytes);
        if (text.empty())
            continue;
        condition += (condition.empty() ? "" : " ") + ShownText(text);
        for (KernelCondition &part : ParseConditions(text))
            made.conditions.push_back(std::move(part));
    }
    if (!condition.empty())
        made.setting.condition = condition;
}

void ReadKind(const RawSetting &raw, KernelSetting &made)
{
    made.setting.sourceKind = TypeOf(raw, !made.values.empty());
    const std::string_view type = made.setting.sourceKind;
    const auto *const known =
        std::find_if(std::begin(kTypes), std::end(kTypes), [&](const TypeWord &word) { return word.word == type; });
    made.setting.kind = known->kind;
    if (type == kOrderedList)
    {
        made.values = SplitList(TextOf(raw, "elements").value_or(""));
        ReadElements(made);
    }
    else if (made.setting.kind == SettingKind::OneOf)
        ReadChoices(raw, made);
    else if (made.setting.kind == SettingKind::Numeric)
        ReadNumberLimits(raw, made.setting);
    else
        ReadLengths(raw, made.setting);
}

void ReadValues(const RawSetting &raw, KernelSetting &made)
{
    Setting &setting = made.setting;
    if (made.rawValue)
        setting.currentValue = ToDump(made, *made.rawValue);
    const std::optional<std::string> byDefault = TextOf(raw, "default_value");
    if (byDefault)
        setting.defaultValue = ToDump(made, *byDefault);
    if (!setting.unreadable.empty())
        AddNote(setting, "The value cannot be read: " + setting.unreadable + ".");
    if (!IsNameable(made.entry))
    {
        setting.isReadOnly = true;
        AddNote(setting, "It cannot be changed here: a knob file has no way to write its name.");
    }
}

} // namespace

const Platform::FileText *RawSetting::Find(std::string_view name) const
{
    const auto found = std::find_if(files.begin(), files.end(), [&](const auto &file) { return file.first == name; });
    return found == files.end() ? nullptr : &found->second;
}

bool RawSetting::Takes(std::string_view name)
{
    return name.ends_with(kModifierEnd) || std::find(std::begin(kFiles), std::end(kFiles), name) != std::end(kFiles);
}

std::string KernelSetting::PathOf(std::string_view file) const
{
    return device + "/attributes/" + entry + "/" + std::string(file);
}

std::string WithoutLineFeed(std::string bytes)
{
    if (bytes.ends_with('\n'))
        bytes.pop_back();
    return bytes;
}

std::string ShownText(const std::string &bytes)
{
    return IsPlainText(bytes) ? bytes : FittingText(bytes);
}

std::string ValueOfFile(const std::string &bytes)
{
    const std::string text = WithoutLineFeed(bytes);
    return std::string(SplitMarks(text).value);
}

KernelSetting MakeKernelSetting(const RawSetting &raw)
{
    KernelSetting made;
    made.device = raw.device;
    made.entry = raw.entry;
    Setting &setting = made.setting;
    setting.name = ShownText(raw.entry);
    const std::optional<std::string> prompt = TextOf(raw, "display_name");
    setting.prompt = prompt && !prompt->empty() ? ShownText(*prompt) : setting.name;
    setting.page = "Firmware/" + ShownText(raw.device);

    const Platform::FileText *const current = raw.Find(kCurrentValue);
    if (!current)
        setting.unreadable = "its driver has no file for it";
    else if (current->error)
        setting.unreadable = ReadFailure(current->error);
    const std::string text = TextOf(raw, kCurrentValue).value_or("");
    const ValueMarks marks = SplitMarks(text);
    if (setting.unreadable.empty())
        made.rawValue = marks.value;
    setting.isReadOnly = !current || !current->isWritable || marks.isShowOnly;
    made.needsRights =
        std::any_of(raw.files.begin(), raw.files.end(), [](const auto &file) { return !file.second.isForEverybody; });

    made.values = SplitList(TextOf(raw, "possible_values").value_or(std::string(marks.choices)));
    if (made.values.empty())
        made.values = SplitList(marks.choices);
    DropSecondOnes(made.values);
    ReadKind(raw, made);
    ReadConditions(raw, made);
    ReadValues(raw, made);
    return made;
}

std::string ToDump(const KernelSetting &setting, const std::string &text)
{
    if (setting.hasChoices)
    {
        const auto found = std::find(setting.values.begin(), setting.values.end(), text);
        return found == setting.values.end() ? ShownText(text)
                                             : HexText(static_cast<std::uint64_t>(found - setting.values.begin()));
    }
    if (setting.setting.kind == SettingKind::Numeric)
    {
        const std::optional<std::int64_t> number = ParseSignedNumber(Trim(text));
        return number ? SignedText(*number) : ShownText(text);
    }
    std::string shown = ShownText(text);
    if (setting.isOrderedList && setting.separator == ';')
        std::replace(shown.begin(), shown.end(), ';', ',');
    return shown;
}

namespace
{

std::string ListToDriver(const KernelSetting &setting, const std::string &value)
{
    std::vector<std::string> elements = Split(value, ',');
    std::string text;
    std::unordered_set<std::string> seen;
    for (const std::string &part : elements)
    {
        const std::string element(Trim(part));
        const bool isListed = std::find(setting.values.begin(), setting.values.end(), element) != setting.values.end();
        if (!isListed)
            throw std::invalid_argument("\"" + element + "\" is no element of the list");
        if (!seen.insert(element).second)
            throw std::invalid_argument("\"" + element + "\" is there a second time");
        text += (text.empty() ? "" : std::string(1, setting.separator)) + element;
    }
    if (seen.size() != setting.values.size())
        throw std::invalid_argument("the list has " + std::to_string(setting.values.size()) +
                                    " elements, and each of them belongs into it");
    return text;
}

} // namespace

std::string ToDriver(const KernelSetting &setting, const std::string &value)
{
    if (setting.isOrderedList)
        return ListToDriver(setting, value);
    if (setting.hasChoices)
    {
        const std::optional<std::uint64_t> number = ParseNumber(value);
        if (!number || *number >= setting.values.size())
            throw std::invalid_argument("\"" + value + "\" is none of the driver's values");
        return setting.values[static_cast<std::size_t>(*number)];
    }
    if (setting.setting.kind == SettingKind::Numeric)
    {
        const std::optional<std::int64_t> number = ParseSignedNumber(value);
        if (!number)
            throw std::invalid_argument("\"" + value + "\" is not a number");
        return std::to_string(*number);
    }
    const bool isListed = setting.values.empty() ||
                          std::find(setting.values.begin(), setting.values.end(), value) != setting.values.end();
    if (!isListed)
        throw std::invalid_argument("\"" + value + "\" is none of the driver's values");
    return value;
}

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// How a setting takes its value; the dump's setupType.
enum class SettingKind
{
    /// One of its choices.
    OneOf,
    /// One of two choices, off and on.
    CheckBox,
    Numeric,
    Text
};

/// One of the values that a setting can take.
struct SettingChoice
{
    /// What people call it, and what a knob file may name it by.
    std::string text;
    /// What stands for it in a dump. Sources whose choices have no numbers of their own count them 0, 1, 2 and so on,
    /// in their own order.
    std::uint64_t number = 0;
};

/// What a value must keep to beyond kind and choices; nothing where the source does not say.
struct SettingLimits
{
    std::optional<std::int64_t> minimum;
    std::optional<std::int64_t> maximum;
    /// A number is the minimum (0 without one) and a multiple of this. Never 0.
    std::optional<std::uint64_t> step;
    /// Of a text, in characters.
    std::optional<std::uint64_t> minLength;
    std::optional<std::uint64_t> maxLength;
};

/// Whether a setting can be changed now, as far as its condition has been judged.
enum class SettingState
{
    /// It can, or nobody has judged.
    Open,
    /// It is shown and keeps its value.
    Locked,
    /// A setup would not show it, and it keeps its value.
    Hidden
};

/// One setting of a machine's firmware, an option of the dump. Owns its texts, which are UTF-8; characters that XML has
/// no place for are replaced when a dump is written.
///
/// A value is a number as HexText gives it ("0x1F"), a negative one in decimal ("-5"), the text of a text option, or,
/// where a setting with choices has none of them, whatever the source says.
struct Setting
{
    SettingKind kind = SettingKind::Text;
    /// The source's own word for the kind, such as "enumeration"; empty where it has none.
    std::string sourceKind;
    /// The source's own identifier, unlike that of every other setting of the machine.
    std::string name;
    std::string prompt;
    std::string help;
    /// Setup page and sub-pages, separated by "/".
    std::string page;
    /// When the setting can be used, in the source's own words.
    std::string condition = "TRUE";
    SettingState state = SettingState::Open;
    /// Empty for numbers and texts.
    std::vector<SettingChoice> choices;
    SettingLimits limits;
    /// Whether a number may be negative; it then has 64 bits.
    bool isSigned = false;
    bool isReadOnly = false;
    /// Nothing where the source knows none.
    std::optional<std::string> defaultValue;
    /// Empty where it is not known.
    std::string currentValue;
    /// Why the current value is not known, a phrase such as "permission denied"; empty where it is known.
    std::string unreadable;
    /// What becomes current with the next restart; nothing where nothing waits, or where the source does not tell.
    std::optional<std::string> pendingValue;
    /// In bytes, of the number or of the longest text; 0 where nothing says how long a text may be.
    std::uint32_t size = 0;
    /// Where the value is kept: the variable store, and the place in it. 0 for a source that has none.
    std::uint32_t varstore = 0;
    std::uint64_t offset = 0;
};

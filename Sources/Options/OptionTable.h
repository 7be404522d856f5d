#pragma once

#include "KnobDump.h"
#include "KnobList.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// BIOS options as people ask for them. All texts are UTF-8, as the dump has them, and views into what the table owns.
/// Nothing here reads or writes anything. May throw std::bad_alloc.

enum class OptionKind
{
    OneOf,
    CheckBox,
    Number,
    Text,
    /// The dump does not say, or something else.
    Unknown
};

/// The word for a kind: "choice", "checkbox", "number", "text", "unknown".
std::string_view KindName(OptionKind kind);

/// One of the values that an option can take.
struct OptionChoice
{
    std::string_view text;
    /// A hexadecimal number.
    std::string_view value;
};

/// What a value must keep to beyond size and choices; nothing where the dump does not say.
struct OptionLimits
{
    std::optional<std::int64_t> minimum;
    std::optional<std::int64_t> maximum;
    /// A number is the minimum (0 without one) and a multiple of this. Never 0.
    std::optional<std::uint64_t> step;
    /// Of a text, in characters.
    std::optional<std::uint64_t> minLength;
    std::optional<std::uint64_t> maxLength;
};

/// One BIOS option. A value is what the dump has: a hexadecimal number, a negative one in decimal ("-5"), or the
/// text of a text option; empty where the dump has none.
struct BiosOption
{
    std::string_view name;
    std::string_view prompt;
    std::string_view help;
    /// The setup page, its parts joined by "/".
    std::string_view page;
    OptionKind kind = OptionKind::Unknown;
    /// By their numbers. Empty where the dump lists none.
    std::vector<OptionChoice> choices;
    /// In bytes, of the number or of the longest text; 0 where the dump does not say.
    std::uint64_t size = 0;
    /// When the option can be changed, in the firmware's own words.
    std::string_view condition;
    std::string_view defaultValue;
    std::string_view currentValue;
    /// The value that waits for a restart; nothing where the dump tells of none.
    std::optional<std::string_view> pendingValue;
    OptionLimits limits;
    /// The source's own word for the kind; empty where the dump has none.
    std::string_view sourceKind;
    /// "locked" or "hidden", what its condition makes of it now; empty where the dump does not say.
    std::string_view state;
    /// Why there is no current value; empty where there is one.
    std::string_view unreadable;
    /// Nobody can give it another value.
    bool isReadOnly = false;
    /// A number may be negative.
    bool isSigned = false;
    /// Whether the dump tells of a default.
    bool hasDefault = false;
    /// Whether the current value is another one than the default, where the dump tells of both.
    bool isChanged = false;
    /// The values are not to be shown, and may have been taken out (Redaction.h).
    bool isRedacted = false;
};

/// The options of one machine in the order of its dump. Not copied; moving it keeps the options where they are.
class OptionTable
{
public:
    OptionTable() = default;
    OptionTable(KnobList &&knobs, const FurtherDetails &further);
    /// Options that come from elsewhere; their texts are views into `texts`.
    OptionTable(std::deque<std::string> &&texts, std::vector<BiosOption> &&options);
    OptionTable(OptionTable &&) = default;
    OptionTable &operator=(OptionTable &&) = delete;

    /// Whether the values are not for everybody: what holds them is to be kept from others.
    bool ValuesNeedRights() const { return m_further.valuesNeedRights; }

    /// Whether the dump tells which values wait for a restart.
    bool TellsPending() const { return m_further.tellsPending || !m_further.pendingValues.empty(); }

    const std::vector<BiosOption> &Options() const { return m_options; }
    std::vector<BiosOption> &Options() { return m_options; }

    /// The first option of that name, or null. The first call costs a walk over the table.
    const BiosOption *Find(std::string_view name) const;

    /// The name that comes nearest to `name`, which the table does not have; empty where none is near. Letters that
    /// differ in case alone are near. A walk over the table.
    std::string_view NearestName(std::string_view name) const;

private:
    KnobList m_knobs;
    std::deque<std::string> m_texts;
    /// Values that the records do not have; by their options' records.
    FurtherDetails m_further;
    std::vector<BiosOption> m_options;
    mutable std::unordered_map<std::string_view, const BiosOption *> m_index;
};

/// Which of `words` comes nearest to `wanted`; empty where none is near.
std::string_view Nearest(std::string_view wanted, const std::vector<std::string_view> &words);

#pragma once

#include <cstdint>
#include <span>
#include <string>

enum class KnobKind
{
    OneOf,
    CheckBox,
    Numeric,
    Text
};

/// One of the values that a one-of or a check box can take.
struct Choice
{
    const char *text;
    std::uint64_t value;
};

/// One option of the firmware's setup. All texts are UTF-8.
struct Knob
{
    KnobKind kind;
    std::string name;
    std::string prompt;
    std::string help;
    /// Setup page and sub-pages, separated by "/".
    std::string page;
    /// When the option can be used.
    std::string depex;
    std::string uniqueId;
    /// A number as HexText gives it, or the text of a text option.
    std::string defaultValue;
    std::uint32_t varstore;
    /// In bytes, of the number or of the longest text.
    std::uint32_t size;
    /// Of the value in its variable store.
    std::uint64_t offset;
    /// Empty for numeric and text options; lives as long as the program.
    std::span<const Choice> choices;
};

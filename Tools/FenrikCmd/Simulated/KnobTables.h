#pragma once

#include "Setting.h"

#include <cstdint>
#include <span>

/// The tables of the built-in firmware: one row per option, one table per setup page, the pages of an area in a file.

/// One of the values that a one-of or a check box can take.
struct Choice
{
    const char *text;
    std::uint64_t value;
};

struct KnobRow
{
    SettingKind kind;
    std::uint32_t size;
    const char *name;
    const char *prompt;
    const char *help;
    const char *depex;
    std::span<const Choice> choices;
    std::uint64_t number;
    const char *text;
};

struct KnobPage
{
    const char *path;
    std::uint32_t varstore;
    std::span<const KnobRow> knobs;
};

inline constexpr Choice kUncheckedChecked[] = {{"Unchecked", 0}, {"Checked", 1}};
inline constexpr Choice kDisabledEnabled[] = {{"Disabled", 0}, {"Enabled", 1}};
inline constexpr Choice kDisabledEnabledAuto[] = {{"Disabled", 0}, {"Enabled", 1}, {"Auto", 2}};
inline constexpr Choice kNoYes[] = {{"No", 0}, {"Yes", 1}};

inline constexpr const char *kAlways = "TRUE";

constexpr KnobRow OneOf(const char *name, const char *prompt, std::span<const Choice> choices, std::uint64_t value,
                        const char *help, const char *depex = kAlways)
{
    return {SettingKind::OneOf, 1, name, prompt, help, depex, choices, value, ""};
}

constexpr KnobRow Check(const char *name, const char *prompt, bool isChecked, const char *help,
                        const char *depex = kAlways)
{
    return {SettingKind::CheckBox, 1, name, prompt, help, depex, kUncheckedChecked, isChecked ? 1U : 0U, ""};
}

constexpr KnobRow Number(const char *name, const char *prompt, std::uint32_t size, std::uint64_t value,
                         const char *help, const char *depex = kAlways)
{
    return {SettingKind::Numeric, size, name, prompt, help, depex, {}, value, ""};
}

constexpr KnobRow Text(const char *name, const char *prompt, std::uint32_t size, const char *text, const char *help,
                       const char *depex = kAlways)
{
    return {SettingKind::Text, size, name, prompt, help, depex, {}, 0, text};
}

extern const std::span<const KnobPage> kBoardPages;
extern const std::span<const KnobPage> kProcessorPages;
extern const std::span<const KnobPage> kMemoryPages;
extern const std::span<const KnobPage> kInputOutputPages;
extern const std::span<const KnobPage> kBootSecurityPages;
extern const std::span<const KnobPage> kManagementPages;

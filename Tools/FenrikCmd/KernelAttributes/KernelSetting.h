#pragma once

#include "AttributeFiles.h"
#include "KernelCondition.h"
#include "Setting.h"

#include <string>
#include <utility>
#include <vector>

/// The folder of a setting as it was read: files and what they gave, those alone that RawSetting::Takes.
struct RawSetting
{
    std::string device;
    std::string entry;
    std::vector<std::pair<std::string, Platform::FileText>> files;

    /// The file of that name, or null where there is none.
    const Platform::FileText *Find(std::string_view name) const;

    /// Whether a setting is described by a file of that name.
    static bool Takes(std::string_view name);
};

/// One setting of the kernel, and how its values go to its driver.
struct KernelSetting
{
    /// Its state is open, its name that of the folder.
    Setting setting;
    /// The names of the folders, bytes of the system's own.
    std::string device;
    std::string entry;
    /// The values that the driver lists: of an enumeration the choices, in the order of their numbers; of an ordered
    /// list its elements.
    std::vector<std::string> values;
    /// Whether the dump has the choices of `values`. Without them, an enumeration whose texts could be taken for each
    /// other's numbers or that has none, a value goes as its text.
    bool hasChoices = false;
    bool isOrderedList = false;
    /// What stands between the elements of an ordered list.
    char separator = ';';
    /// The current value as the driver gave it; nothing where it could not be read.
    std::optional<std::string> rawValue;
    std::vector<KernelCondition> conditions;
    /// Whether it has been read from a file that not everybody may read.
    bool needsRights = false;

    /// The path of a file of its folder.
    std::string PathOf(std::string_view file) const;
};

inline constexpr const char *kCurrentValue = "current_value";

/// What a file holds that the kernel has made: `bytes` without one line feed at the end.
std::string WithoutLineFeed(std::string bytes);

/// A name or a text of the kernel's, made fit to be shown.
std::string ShownText(const std::string &bytes);

KernelSetting MakeKernelSetting(const RawSetting &raw);

/// The text that `bytes`, what was read from a file with a value, gives: without line feed, and without a list or marks
/// that older drivers put behind a value.
std::string ValueOfFile(const std::string &bytes);

/// The value `text` of the driver as a dump has it.
std::string ToDump(const KernelSetting &setting, const std::string &text);

/// The value `value` of an assignment as the driver is to get it. Throws std::invalid_argument, with the reason, for a
/// value that the driver does not list.
std::string ToDriver(const KernelSetting &setting, const std::string &value);

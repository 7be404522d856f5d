#pragma once

#include "Resource.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Redfish
{

/// What a registry of attributes tells of a machine's settings, as records. All texts are UTF-8.

struct RegistryChoice
{
    /// As it is sent.
    std::string name;
    /// For people; empty where there is none.
    std::string displayName;
};

struct RegistryAttribute
{
    std::string name;
    /// "Enumeration", "String", "Integer", "Boolean", "Password".
    std::string type;
    std::string displayName;
    std::string helpText;
    std::string warningText;
    /// "./Menu/Sub".
    std::string menuPath;
    /// A regular expression that a string must match.
    std::string valueExpression;
    WireValue defaultValue;
    std::vector<RegistryChoice> choices;
    std::optional<std::int64_t> lowerBound;
    std::optional<std::int64_t> upperBound;
    std::optional<std::int64_t> scalarIncrement;
    std::optional<std::int64_t> minLength;
    std::optional<std::int64_t> maxLength;
    bool isReadOnly = false;
    bool isImmutable = false;
    bool isHidden = false;
    bool isGrayOut = false;
    bool isWriteOnly = false;
};

struct RegistryMenu
{
    std::string path;
    std::string displayName;
};

/// One of the comparisons that a dependency depends on.
struct RegistryCondition
{
    std::string attribute;
    std::string property;
    /// EQU, NEQ, GTR, GEQ, LSS, LEQ.
    std::string comparison;
    WireValue value;
    /// AND or OR: how it goes together with those before it.
    std::string terms;
};

/// Where the conditions hold, a property of an attribute has the value.
struct RegistryDependency
{
    std::string attribute;
    std::string property;
    WireValue value;
    std::vector<RegistryCondition> conditions;
};

/// Not copied; moving it keeps the attributes where they are.
struct Registry
{
    Registry() = default;
    Registry(Registry &&) = default;
    Registry &operator=(Registry &&) = default;

    /// Where the attribute is among the others; nothing where there is none of that name.
    std::optional<std::size_t> PlaceOf(std::string_view name) const
    {
        const auto found = places.find(name);
        return found == places.end() ? std::nullopt : std::optional(found->second);
    }

    /// The attribute of that name, or null.
    const RegistryAttribute *Find(std::string_view name) const
    {
        const std::optional<std::size_t> place = PlaceOf(name);
        return place ? &attributes[*place] : nullptr;
    }

    std::deque<RegistryAttribute> attributes;
    std::vector<RegistryMenu> menus;
    std::vector<RegistryDependency> dependencies;
    /// Of the attributes, by their names; views into them.
    std::unordered_map<std::string_view, std::size_t> places;
};

/// Reads a registry, an attribute without a name left out and of several of one name the first one kept. False, with
/// `problem` as the end of a sentence and `registry` empty, where the text is not JSON. nlohmann/json hands over piece
/// by piece; no tree is made.
bool ReadRegistry(std::string_view text, Registry &registry, std::string &problem);

} // namespace Redfish

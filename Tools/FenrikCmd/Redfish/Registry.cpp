#include "Registry.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>

namespace Redfish
{

namespace
{

enum class Place : std::uint8_t
{
    /// Something that nobody asks for.
    Elsewhere,
    Outside,
    Root,
    Entries,
    Attributes,
    Attribute,
    Choices,
    Choice,
    Menus,
    Menu,
    Dependencies,
    Dependency,
    Body,
    Conditions,
    Condition
};

/// How one gets from place to place: an element of a list has no key.
struct Step
{
    Place from;
    std::string_view key;
    Place to;
};

constexpr Step kSteps[] = {
    {Place::Outside, "", Place::Root},
    {Place::Root, "RegistryEntries", Place::Entries},
    {Place::Entries, "Attributes", Place::Attributes},
    {Place::Entries, "Menus", Place::Menus},
    {Place::Entries, "Dependencies", Place::Dependencies},
    {Place::Attributes, "", Place::Attribute},
    {Place::Attribute, "Value", Place::Choices},
    {Place::Choices, "", Place::Choice},
    {Place::Menus, "", Place::Menu},
    {Place::Dependencies, "", Place::Dependency},
    {Place::Dependency, "Dependency", Place::Body},
    {Place::Body, "MapFrom", Place::Conditions},
    {Place::Conditions, "", Place::Condition},
};

template <typename Record, typename Value>
struct Field
{
    std::string_view key;
    Value Record::*member;
};

constexpr Field<RegistryAttribute, std::string> kAttributeTexts[] = {
    {"AttributeName", &RegistryAttribute::name},
    {"Type", &RegistryAttribute::type},
    {"DisplayName", &RegistryAttribute::displayName},
    {"HelpText", &RegistryAttribute::helpText},
    {"WarningText", &RegistryAttribute::warningText},
    {"MenuPath", &RegistryAttribute::menuPath},
    {"ValueExpression", &RegistryAttribute::valueExpression},
};

constexpr Field<RegistryAttribute, WireValue> kAttributeValues[] = {{"DefaultValue", &RegistryAttribute::defaultValue}};

constexpr Field<RegistryAttribute, std::optional<std::int64_t>> kAttributeNumbers[] = {
    {"LowerBound", &RegistryAttribute::lowerBound},
    {"UpperBound", &RegistryAttribute::upperBound},
    {"ScalarIncrement", &RegistryAttribute::scalarIncrement},
    {"MinLength", &RegistryAttribute::minLength},
    {"MaxLength", &RegistryAttribute::maxLength},
};

constexpr Field<RegistryAttribute, bool> kAttributeFlags[] = {
    {"ReadOnly", &RegistryAttribute::isReadOnly},   {"Immutable", &RegistryAttribute::isImmutable},
    {"Hidden", &RegistryAttribute::isHidden},       {"GrayOut", &RegistryAttribute::isGrayOut},
    {"WriteOnly", &RegistryAttribute::isWriteOnly},
};

constexpr Field<RegistryChoice, std::string> kChoiceTexts[] = {
    {"ValueName", &RegistryChoice::name},
    {"ValueDisplayName", &RegistryChoice::displayName},
};

constexpr Field<RegistryMenu, std::string> kMenuTexts[] = {
    {"MenuPath", &RegistryMenu::path},
    {"DisplayName", &RegistryMenu::displayName},
};

constexpr Field<RegistryDependency, std::string> kDependencyTexts[] = {
    {"MapToAttribute", &RegistryDependency::attribute},
    {"MapToProperty", &RegistryDependency::property},
};

constexpr Field<RegistryDependency, WireValue> kDependencyValues[] = {{"MapToValue", &RegistryDependency::value}};

constexpr Field<RegistryCondition, std::string> kConditionTexts[] = {
    {"MapFromAttribute", &RegistryCondition::attribute},
    {"MapFromProperty", &RegistryCondition::property},
    {"MapFromCondition", &RegistryCondition::comparison},
    {"MapTerms", &RegistryCondition::terms},
};

constexpr Field<RegistryCondition, WireValue> kConditionValues[] = {{"MapFromValue", &RegistryCondition::value}};

/// The member of `record` that `key` names in `fields`, or null.
template <typename Record, typename Value, std::size_t Count>
Value *MemberOf(Record &record, const Field<Record, Value> (&fields)[Count], std::string_view key)
{
    const auto *const found =
        std::find_if(std::begin(fields), std::end(fields), [key](const auto &field) { return field.key == key; });
    return found == std::end(fields) ? nullptr : &(record.*found->member);
}

/// Takes a registry piece by piece.
class RegistryReader final : public nlohmann::json_sax<Json>
{
public:
    explicit RegistryReader(Registry &registry) : m_registry(registry) { m_places.push_back(Place::Outside); }

    std::size_t ErrorPosition() const { return m_errorPosition; }

    bool null() override { return Take(WireKind::Null, {}); }
    bool boolean(bool value) override { return Take(WireKind::Boolean, value ? "true" : "false"); }
    bool number_integer(number_integer_t value) override { return Take(WireKind::Integer, std::to_string(value)); }
    bool number_unsigned(number_unsigned_t value) override
    {
        const bool fits = value <= static_cast<number_unsigned_t>(std::numeric_limits<std::int64_t>::max());
        return Take(fits ? WireKind::Integer : WireKind::Real, std::to_string(value));
    }
    bool number_float(number_float_t /*value*/, const string_t &digits) override
    {
        return Take(WireKind::Real, digits);
    }
    bool string(string_t &value) override
    {
        if (std::string *const text = Text())
        {
            // Of its own size: the reader's has room for the longest one so far.
            *text = value;
            m_key.clear();
            return true;
        }
        return Take(WireKind::String, value);
    }
    bool binary(binary_t & /*value*/) override { return true; }

    bool key(string_t &value) override
    {
        m_key.swap(value);
        return true;
    }
    bool start_object(std::size_t /*count*/) override { return Enter(); }
    bool end_object() override { return Leave(); }
    bool start_array(std::size_t /*count*/) override { return Enter(); }
    bool end_array() override { return Leave(); }
    bool parse_error(std::size_t position, const std::string & /*token*/,
                     const nlohmann::detail::exception & /*error*/) override
    {
        m_errorPosition = position;
        return false;
    }

private:
    bool Enter()
    {
        const Place here = m_places.back();
        const auto *const step =
            std::find_if(std::begin(kSteps), std::end(kSteps),
                         [&](const Step &possible) { return possible.from == here && possible.key == m_key; });
        const Place there = step == std::end(kSteps) ? Place::Elsewhere : step->to;
        m_places.push_back(there);
        m_key.clear();
        Begin(there);
        return true;
    }

    /// A record for what begins; those above it are the last of their lists.
    void Begin(Place place)
    {
        if (place == Place::Attribute)
            m_registry.attributes.emplace_back();
        else if (place == Place::Choice)
            m_registry.attributes.back().choices.emplace_back();
        else if (place == Place::Menu)
            m_registry.menus.emplace_back();
        else if (place == Place::Dependency)
            m_registry.dependencies.emplace_back();
        else if (place == Place::Condition)
            m_registry.dependencies.back().conditions.emplace_back();
    }

    bool Leave()
    {
        m_places.pop_back();
        m_key.clear();
        return true;
    }

    /// The text that the key names here, or null.
    std::string *Text()
    {
        switch (m_places.back())
        {
        case Place::Attribute:
            return MemberOf(m_registry.attributes.back(), kAttributeTexts, m_key);
        case Place::Choice:
            return MemberOf(m_registry.attributes.back().choices.back(), kChoiceTexts, m_key);
        case Place::Menu:
            return MemberOf(m_registry.menus.back(), kMenuTexts, m_key);
        case Place::Body:
            return MemberOf(m_registry.dependencies.back(), kDependencyTexts, m_key);
        case Place::Condition:
            return MemberOf(m_registry.dependencies.back().conditions.back(), kConditionTexts, m_key);
        default:
            return nullptr;
        }
    }

    WireValue *Value()
    {
        switch (m_places.back())
        {
        case Place::Attribute:
            return MemberOf(m_registry.attributes.back(), kAttributeValues, m_key);
        case Place::Body:
            return MemberOf(m_registry.dependencies.back(), kDependencyValues, m_key);
        case Place::Condition:
            return MemberOf(m_registry.dependencies.back().conditions.back(), kConditionValues, m_key);
        default:
            return nullptr;
        }
    }

    bool Take(WireKind kind, std::string text)
    {
        WireValue value = {kind, std::move(text)};
        if (m_places.back() == Place::Attribute)
            SetLimit(m_registry.attributes.back(), value);
        if (WireValue *const wire = Value())
            *wire = std::move(value);
        m_key.clear();
        return true;
    }

    void SetLimit(RegistryAttribute &attribute, const WireValue &value) const
    {
        if (bool *const flag = MemberOf(attribute, kAttributeFlags, m_key))
            *flag = value.IsTrue();
        else if (std::optional<std::int64_t> *const number = MemberOf(attribute, kAttributeNumbers, m_key))
            *number = value.Number();
    }

    Registry &m_registry;
    std::vector<Place> m_places;
    std::string m_key;
    std::size_t m_errorPosition = 0;
};

/// Keeps the first attribute of each name and finds their places.
void KeepFirstOfName(Registry &registry)
{
    registry.places.reserve(registry.attributes.size());
    std::size_t kept = 0;
    for (RegistryAttribute &attribute : registry.attributes)
    {
        if (attribute.name.empty() || registry.places.contains(attribute.name))
            continue;
        RegistryAttribute &place = registry.attributes[kept];
        if (&place != &attribute)
            place = std::move(attribute);
        registry.places.emplace(place.name, kept++);
    }
    registry.attributes.resize(kept);
}

} // namespace

bool ReadRegistry(std::string_view text, Registry &registry, std::string &problem)
{
    registry = {};
    RegistryReader reader(registry);
    if (!Json::sax_parse(text.data(), text.data() + text.size(), &reader))
    {
        problem = NotJson(reader.ErrorPosition());
        registry = {};
        return false;
    }
    KeepFirstOfName(registry);
    return true;
}

} // namespace Redfish

#include "Resource.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace Redfish
{

namespace
{

constexpr const char *kAttributes = "Attributes";

/// Takes a resource piece by piece: its attributes as records, all else as a tree.
class ResourceReader final : public nlohmann::json_sax<Json>
{
public:
    explicit ResourceReader(AttributeResource &resource) : m_resource(resource) {}

    std::size_t ErrorPosition() const { return m_errorPosition; }

    bool null() override { return Take(WireKind::Null, {}, nullptr); }
    bool boolean(bool value) override { return Take(WireKind::Boolean, value ? "true" : "false", value); }
    bool number_integer(number_integer_t value) override
    {
        return Take(WireKind::Integer, std::to_string(value), value);
    }
    bool number_unsigned(number_unsigned_t value) override
    {
        return Take(WholeNumber(std::to_string(value)) ? WireKind::Integer : WireKind::Real, std::to_string(value),
                    value);
    }
    bool number_float(number_float_t value, const string_t &digits) override
    {
        return Take(WireKind::Real, digits, value);
    }
    bool string(string_t &value) override
    {
        if (IsAttribute())
            AddAttribute(WireKind::String, std::move(value));
        else if (m_skipped == 0)
            Place(std::move(value));
        return true;
    }
    bool binary(binary_t & /*value*/) override { return true; }

    bool start_object(std::size_t /*count*/) override
    {
        if (!m_inAttributes && m_open.size() == 1 && m_key == kAttributes)
            return m_inAttributes = m_resource.hasAttributes = true;
        return Open(Json::object());
    }
    bool end_object() override
    {
        if (m_inAttributes && m_skipped == 0)
            return !(m_inAttributes = false);
        return Close();
    }
    bool start_array(std::size_t /*count*/) override { return Open(Json::array()); }
    bool end_array() override { return Close(); }
    bool key(string_t &value) override
    {
        if (m_skipped == 0)
            m_key = std::move(value);
        return true;
    }
    bool parse_error(std::size_t position, const std::string & /*token*/,
                     const nlohmann::detail::exception & /*error*/) override
    {
        m_errorPosition = position;
        return false;
    }

private:
    bool IsAttribute() const { return m_inAttributes && m_skipped == 0; }

    void AddAttribute(WireKind kind, std::string text)
    {
        m_resource.attributes.push_back({std::exchange(m_key, {}), {kind, std::move(text)}});
    }

    bool Take(WireKind kind, std::string text, Json value)
    {
        if (IsAttribute())
            AddAttribute(kind, std::move(text));
        else if (m_skipped == 0)
            Place(std::move(value));
        return true;
    }

    Json *Place(Json value)
    {
        if (m_open.empty())
            return &(m_resource.other = std::move(value));
        Json &parent = *m_open.back();
        if (parent.is_array())
            return &parent.emplace_back(std::move(value));
        return &(parent[m_key] = std::move(value));
    }

    bool Open(Json structure)
    {
        if (IsAttribute())
            AddAttribute(WireKind::Structure, {});
        if (m_inAttributes)
            ++m_skipped;
        else
            m_open.push_back(Place(std::move(structure)));
        return true;
    }

    bool Close()
    {
        if (m_inAttributes)
            --m_skipped;
        else
            m_open.pop_back();
        return true;
    }

    AttributeResource &m_resource;
    /// The objects and lists that are being read, outermost first.
    std::vector<Json *> m_open;
    std::string m_key;
    bool m_inAttributes = false;
    /// How deep within an attribute that has a structure.
    std::size_t m_skipped = 0;
    std::size_t m_errorPosition = 0;
};

} // namespace

std::optional<std::int64_t> WholeNumber(std::string_view text)
{
    std::int64_t number = 0;
    const char *const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (text.empty() || result.ec != std::errc{} || result.ptr != end)
        return std::nullopt;
    return number;
}

std::optional<std::int64_t> WireValue::Number() const
{
    return kind == WireKind::Integer || kind == WireKind::String ? WholeNumber(text) : std::nullopt;
}

void AttributeResource::MakeIndex()
{
    m_byName.clear();
    m_byName.reserve(attributes.size());
    for (const WireAttribute &attribute : attributes)
        m_byName.insert_or_assign(attribute.name, &attribute.value);
}

const WireValue *AttributeResource::Find(std::string_view name) const
{
    const auto found = m_byName.find(name);
    return found == m_byName.end() ? nullptr : found->second;
}

std::string NotJson(std::size_t position)
{
    return "is not JSON (byte " + std::to_string(position) + ")";
}

bool ReadAttributeResource(std::string_view text, AttributeResource &resource, std::string &problem)
{
    resource = {};
    ResourceReader reader(resource);
    if (!Json::sax_parse(text.data(), text.data() + text.size(), &reader))
    {
        problem = NotJson(reader.ErrorPosition());
        resource = {};
        return false;
    }
    if (!resource.other.is_object())
    {
        problem = "is no JSON object";
        resource = {};
        return false;
    }
    resource.MakeIndex();
    return true;
}

bool ReadJson(std::string_view text, Json &json, std::string &problem)
{
    json = Json::parse(text.begin(), text.end(), nullptr, false);
    if (json.is_object())
        return true;
    problem = json.is_discarded() ? "is not JSON" : "is no JSON object";
    return false;
}

const Json *Find(const Json &json, std::initializer_list<const char *> path)
{
    const Json *place = &json;
    for (const char *const key : path)
    {
        if (!place->is_object())
            return nullptr;
        const auto member = place->find(key);
        if (member == place->end())
            return nullptr;
        place = &*member;
    }
    return place;
}

std::string TextAt(const Json &json, std::initializer_list<const char *> path)
{
    const Json *const found = Find(json, path);
    return found && found->is_string() ? found->get_ref<const std::string &>() : std::string();
}

std::string LinkAt(const Json &json, std::initializer_list<const char *> path)
{
    const Json *const found = Find(json, path);
    return found ? TextAt(*found, {"@odata.id"}) : std::string();
}

std::vector<std::string> MemberLinks(const Json &collection)
{
    std::vector<std::string> links;
    const Json *const members = Find(collection, {"Members"});
    if (!members || !members->is_array())
        return links;
    for (const Json &member : *members)
    {
        std::string link = LinkAt(member, {});
        if (!link.empty())
            links.push_back(std::move(link));
    }
    return links;
}

Json ToJson(const WireValue &value)
{
    switch (value.kind)
    {
    case WireKind::Boolean:
        return value.IsTrue();
    case WireKind::Integer:
    case WireKind::Real:
    {
        Json number = Json::parse(value.text, nullptr, false);
        return number.is_number() ? number : Json(value.text);
    }
    case WireKind::String:
        return value.text;
    default:
        return nullptr;
    }
}

} // namespace Redfish

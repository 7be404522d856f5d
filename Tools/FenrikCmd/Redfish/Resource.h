#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Redfish
{

/// What a service answers, as records. Pure functions; nlohmann/json does the reading. Nothing is thrown but
/// std::bad_alloc: what has not the form that it should have counts as not there.

using Json = nlohmann::json;

enum class WireKind : std::uint8_t
{
    /// There is none.
    Absent,
    Null,
    Boolean,
    Integer,
    /// A number with a fraction or beyond 64 bits.
    Real,
    String,
    /// An object or a list.
    Structure
};

/// A value as it is sent.
struct WireValue
{
    WireKind kind = WireKind::Absent;
    /// "true", "false", the digits of a number, the text of a string; empty for the others.
    std::string text;

    bool operator==(const WireValue &other) const = default;

    bool IsTrue() const
    {
        return kind == WireKind::Boolean ? text == "true"
                                         : kind == WireKind::String && (text == "true" || text == "True");
    }

    /// Whether there is something to show.
    bool HasText() const { return kind >= WireKind::Boolean && kind <= WireKind::String; }

    /// The whole number that it is, also as a string; nothing for everything else.
    std::optional<std::int64_t> Number() const;
};

/// The number that the whole of `text` is, decimal and perhaps negative.
std::optional<std::int64_t> WholeNumber(std::string_view text);

struct WireAttribute
{
    std::string name;
    WireValue value;
};

/// A resource with settings: the current ones, or those that wait. Not copied; moving it keeps the attributes where
/// they are.
struct AttributeResource
{
    AttributeResource() = default;
    AttributeResource(AttributeResource &&) = default;
    AttributeResource &operator=(AttributeResource &&) = default;

    /// The member Attributes in its own order; a name that is there twice counts once, with the last value.
    std::vector<WireAttribute> attributes;
    bool hasAttributes = false;
    /// All other members.
    Json other;

    /// Null where there is none.
    const WireValue *Find(std::string_view name) const;
    /// Has Find answer; for attributes that do not change any more.
    void MakeIndex();

private:
    /// The names are views into the attributes.
    std::unordered_map<std::string_view, const WireValue *> m_byName;
};

/// Reads a resource with settings. False, with `problem` as the end of a sentence and `resource` empty, where the text
/// is not JSON or no object. `problem` holds nothing of the text.
bool ReadAttributeResource(std::string_view text, AttributeResource &resource, std::string &problem);

/// Reads any other answer, likewise.
bool ReadJson(std::string_view text, Json &json, std::string &problem);

/// The member behind `path`, one key after the other, or null.
const Json *Find(const Json &json, std::initializer_list<const char *> path);

/// The text there; empty where there is no string.
std::string TextAt(const Json &json, std::initializer_list<const char *> path);

/// The link there (`@odata.id` of the object); empty where there is none.
std::string LinkAt(const Json &json, std::initializer_list<const char *> path);

/// The links of all members of a collection's page.
std::vector<std::string> MemberLinks(const Json &collection);

/// `value` for a request.
Json ToJson(const WireValue &value);

/// A problem that nlohmann/json has met at `position` of a text.
std::string NotJson(std::size_t position);

} // namespace Redfish

#include "Messages.h"

#include <algorithm>
#include <iterator>

namespace Redfish
{

namespace
{

constexpr std::string_view kMessages = "@Message.ExtendedInfo";

/// What a well-known message means here, and what can be done.
struct Meaning
{
    /// The last part of its name.
    std::string_view name;
    /// Whether something was not done, where the message has no severity.
    bool isFailure;
    const char *cause;
    const char *wayOut;
};

constexpr Meaning kMeanings[] = {
    {"Success", false, "done", ""},
    {"Created", false, "done", ""},
    {"NoOperation", false, "nothing had to be changed", ""},
    {"ResetRequired", false, "it takes effect with the next restart", ""},
    {"PropertyValueNotInList", true, "the value is none of those that the machine takes", "\"savexml\" lists them"},
    {"PropertyValueIncorrect", true, "the machine does not take the value", ""},
    {"PropertyValueError", true, "the machine does not take the value", ""},
    {"PropertyValueFormatError", true, "the value has not the form that the machine wants", ""},
    {"PropertyValueTypeError", true, "the value is of another kind than the machine wants", ""},
    {"PropertyValueOutOfRange", true, "the value is outside the machine's limits", ""},
    {"PropertyValueConflict", true, "the value does not go together with that of another option", ""},
    {"PropertyNotWritable", true, "the machine does not let it be changed", "another option may bar it"},
    {"PropertyNotUpdated", true, "the machine has not taken the value", ""},
    {"PropertyUnknown", true, "the machine does not know it", ""},
    {"InsufficientPrivilege", true, "the user may not do this", "take a user who may configure components"},
    {"AccessDenied", true, "the user may not do this", "take a user who may configure components"},
    {"ResourceInUse", true, "the machine is busy with it", "try again later, or restart the machine first"},
    {"ResourceLocked", true, "the machine has it locked", "try again later"},
    {"ServiceTemporarilyUnavailable", true, "the service is busy", "try again later"},
    {"ServiceShuttingDown", true, "the service is shutting down", "try again later"},
    {"SessionLimitExceeded", true, "all sessions of the service are in use", "end one, or wait until one ends"},
    {"PreconditionFailed", true, "the settings have changed meanwhile", "try again"},
    {"ResourceAtUriUnauthorized", true, "user and password are refused", ""},
    {"NoValidSession", true, "the session has ended", "try again"},
    {"InternalError", true, "the service has failed", "restart the management controller if that goes on"},
};

const Meaning *FindMeaning(const std::string &id)
{
    const std::string_view name = std::string_view(id).substr(id.rfind('.') + 1);
    const auto *const found = std::find_if(std::begin(kMeanings), std::end(kMeanings),
                                           [name](const Meaning &meaning) { return meaning.name == name; });
    return found == std::end(kMeanings) ? nullptr : found;
}

void AddOnce(std::vector<std::string> &options, std::string name)
{
    if (!name.empty() && std::find(options.begin(), options.end(), name) == options.end())
        options.push_back(std::move(name));
}

/// The option that a pointer such as "#/Attributes/BootMode" names; empty where it names none.
std::string OptionOf(std::string_view pointer)
{
    constexpr std::string_view kBefore = "/Attributes/";
    const std::size_t found = pointer.find(kBefore);
    const std::string_view name = found == std::string_view::npos ? "" : pointer.substr(found + kBefore.size());
    return std::string(name.substr(0, name.find('/')));
}

ServiceMessage MessageOf(const Json &json, const std::string &option)
{
    ServiceMessage message;
    message.id = TextAt(json, {"MessageId"});
    message.text = TextAt(json, {"Message"});
    message.severity = TextAt(json, {"MessageSeverity"});
    if (message.severity.empty())
        message.severity = TextAt(json, {"Severity"});
    message.resolution = TextAt(json, {"Resolution"});
    AddOnce(message.options, option);
    const Json *const properties = Find(json, {"RelatedProperties"});
    for (const Json &property : properties && properties->is_array() ? *properties : Json::array())
    {
        if (property.is_string())
            AddOnce(message.options, OptionOf(property.get_ref<const std::string &>()));
    }
    return message;
}

void AddAll(const Json &list, const std::string &option, std::vector<ServiceMessage> &messages)
{
    // Some services give a single message without a list around it.
    for (const Json &message : list.is_array() ? list : Json::array({list}))
    {
        if (message.is_object())
            messages.push_back(MessageOf(message, option));
    }
}

/// Those of the object's members, each of which may be about one property.
void AddAnnotations(const Json &object, bool isOfOptions, std::vector<ServiceMessage> &messages)
{
    if (!object.is_object())
        return;
    for (const auto &[key, value] : object.items())
    {
        const std::string_view name = key;
        if (!name.ends_with(kMessages))
            continue;
        const std::string_view property = name.substr(0, name.size() - kMessages.size());
        const bool isOption = isOfOptions || property != "Attributes";
        AddAll(value, isOption ? std::string(property) : std::string(), messages);
    }
}

} // namespace

bool ServiceMessage::IsFailure() const
{
    if (!severity.empty())
        return severity != "OK";
    const Meaning *const meaning = FindMeaning(id);
    return meaning && meaning->isFailure;
}

std::vector<ServiceMessage> MessagesOf(const Json &answer)
{
    std::vector<ServiceMessage> messages;
    if (!answer.is_object())
        return messages;
    AddAnnotations(answer, false, messages);
    if (const Json *const attributes = Find(answer, {"Attributes"}))
        AddAnnotations(*attributes, true, messages);
    const Json *const error = Find(answer, {"error"});
    if (!error)
        return messages;
    const std::size_t before = messages.size();
    AddAnnotations(*error, false, messages);
    if (messages.size() == before)
        messages.push_back({TextAt(*error, {"code"}), TextAt(*error, {"message"}), "Critical", {}, {}});
    // An error is one whatever its messages call themselves, unless one of them is one already.
    const bool hasFailure = std::any_of(messages.begin(), messages.end(),
                                        [](const ServiceMessage &message) { return message.IsFailure(); });
    if (!hasFailure)
        messages.back().severity = "Critical";
    return messages;
}

std::vector<ServiceMessage> ApplyMessagesOf(const Json &bios)
{
    std::vector<ServiceMessage> messages;
    if (const Json *const list = Find(bios, {"@Redfish.Settings", "Messages"}))
        AddAll(*list, {}, messages);
    return messages;
}

std::string Sentence(const ServiceMessage &message)
{
    const Meaning *const meaning = FindMeaning(message.id);
    std::string text;
    for (const std::string &option : message.options)
        text += (text.empty() ? "" : ", ") + option;
    text += text.empty() ? "" : ": ";
    if (meaning)
        text += meaning->cause;
    else
        text += message.text.empty() ? "the service gives no reason" + (message.id.empty() ? "" : " but " + message.id)
                                     : message.text;
    while (text.ends_with('.'))
        text.pop_back();
    std::string wayOut = meaning && *meaning->wayOut ? meaning->wayOut : message.resolution;
    while (wayOut.ends_with('.'))
        wayOut.pop_back();
    return wayOut.empty() || wayOut == "None" ? text : text + " (" + wayOut + ")";
}

std::string FailureSentences(const std::vector<ServiceMessage> &messages)
{
    std::string sentences;
    for (const ServiceMessage &message : messages)
    {
        if (message.IsFailure())
            sentences += (sentences.empty() ? "" : "; ") + Sentence(message);
    }
    return sentences;
}

} // namespace Redfish

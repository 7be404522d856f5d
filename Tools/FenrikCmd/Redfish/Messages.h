#pragma once

#include "Resource.h"

#include <string>
#include <string_view>
#include <vector>

namespace Redfish
{

/// What a service says of a request or of settings that it has applied. Pure functions.
struct ServiceMessage
{
    /// Such as "Base.1.13.PropertyValueNotInList".
    std::string id;
    std::string text;
    /// "OK", "Warning", "Critical"; empty where it does not say.
    std::string severity;
    std::string resolution;
    /// The options that it is about.
    std::vector<std::string> options;

    /// Whether it tells that something was not done.
    bool IsFailure() const;
};

/// All messages of an answer: of its member `error`, its own and those of single properties (X@Message.ExtendedInfo),
/// also those within Attributes.
std::vector<ServiceMessage> MessagesOf(const Json &answer);

/// What became of the settings that were applied last: the messages of the member @Redfish.Settings.
std::vector<ServiceMessage> ApplyMessagesOf(const Json &bios);

/// A message as a sentence without its full stop: the options, the cause, and the way out where there is one.
/// Well-known messages are translated; others have the service's own words.
std::string Sentence(const ServiceMessage &message);

/// The sentences of those messages that tell of a failure, joined by "; "; empty where there is none.
std::string FailureSentences(const std::vector<ServiceMessage> &messages);

} // namespace Redfish

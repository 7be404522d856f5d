#pragma once

#include "Configuration.h"

#include <optional>
#include <string>
#include <string_view>

namespace Redfish
{

struct Credentials
{
    std::string user;
    std::string password;
};

/// User and password of the configuration: of its file, or of its netrc file for the host of its URL; none where it
/// names neither. Throws ToolError (Unreadable) where the file cannot be used, others than its owner may read it, or a
/// netrc file has nobody for that host. No message tells of what is in it.
Credentials ReadCredentials(const RedfishConfiguration &configuration);

/// Who logs in at `host`, as netrc(5) describes `text`: the first entry of that machine, or the default before it. A
/// word may stand in quotation marks, with \ before a quotation mark or a \ in it; macdef ends with a blank line.
/// Nothing where there is no such entry. Pure.
std::optional<Credentials> FindInNetrc(std::string_view text, const std::string &host);

/// The host of a URL, without brackets. Pure.
std::string HostOf(const std::string &url);

} // namespace Redfish

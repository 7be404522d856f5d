#include "Credentials.h"

#include "Platform.h"
#include "ToolError.h"

#include <algorithm>
#include <vector>

namespace Redfish
{

namespace
{

constexpr const char *kCredentials = "user and password";

bool IsBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

/// Takes the next word off the front of `text`; nothing where there is none.
std::optional<std::string> TakeWord(std::string_view &text)
{
    while (!text.empty() && (IsBlank(text.front()) || text.front() == '#'))
    {
        // A comment goes to the end of its line.
        const std::size_t end = text.front() == '#' ? text.find('\n') : 0;
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    if (text.empty())
        return std::nullopt;
    const bool isQuoted = text.front() == '"';
    std::string word;
    std::size_t place = isQuoted ? 1 : 0;
    for (; place < text.size() && (isQuoted ? text[place] != '"' : !IsBlank(text[place])); ++place)
    {
        if (isQuoted && text[place] == '\\' && place + 1 < text.size())
            ++place;
        word += text[place];
    }
    text.remove_prefix(std::min(place + (isQuoted ? 1 : 0), text.size()));
    return word;
}

/// Takes the words behind a machine's name, up to the next entry.
Credentials TakeEntry(std::string_view &text)
{
    Credentials credentials;
    for (;;)
    {
        std::string_view rest = text;
        const std::optional<std::string> key = TakeWord(rest);
        const bool isOfEntry = key == "login" || key == "password" || key == "account";
        if (!isOfEntry)
            return credentials;
        const std::optional<std::string> value = TakeWord(rest);
        if (value && key != "account")
            (key == "login" ? credentials.user : credentials.password) = *value;
        text = rest;
    }
}

} // namespace

std::optional<Credentials> FindInNetrc(std::string_view text, const std::string &host)
{
    while (const std::optional<std::string> key = TakeWord(text))
    {
        if (key == "macdef")
        {
            const std::size_t end = text.find("\n\n");
            text.remove_prefix(end == std::string_view::npos ? text.size() : end);
            continue;
        }
        const std::optional<std::string> name = key == "machine" ? TakeWord(text) : std::nullopt;
        if (key != "default" && !name)
            continue;
        const Credentials credentials = TakeEntry(text);
        if (key == "default" || name == host)
            return credentials;
    }
    return std::nullopt;
}

std::string HostOf(const std::string &url)
{
    const std::size_t begin = url.find("://");
    std::string_view rest = url;
    rest.remove_prefix(begin == std::string::npos ? 0 : begin + 3);
    rest = rest.substr(0, rest.find('/'));
    if (rest.starts_with('['))
        return std::string(rest.substr(1, rest.find(']') - 1));
    return std::string(rest.substr(0, rest.find(':')));
}

Credentials ReadCredentials(const RedfishConfiguration &configuration)
{
    if (!configuration.credentialsFile.empty())
    {
        const std::vector<std::string> lines = ReadSecretFile(configuration.credentialsFile, kCredentials, 2);
        return {lines[0], lines[1]};
    }
    if (configuration.netrcFile.empty())
        return {};
    RequirePrivateFile(configuration.netrcFile, kCredentials);
    std::string text;
    Platform::ReadTextFile(configuration.netrcFile, text);
    const std::optional<Credentials> found = FindInNetrc(text, HostOf(configuration.url));
    if (!found || found->user.empty())
        throw ToolError(ExitCode::Unreadable, "the file \"" + configuration.netrcFile + "\" with " + kCredentials +
                                                  " has nobody for the machine \"" + HostOf(configuration.url) + "\"");
    return *found;
}

} // namespace Redfish

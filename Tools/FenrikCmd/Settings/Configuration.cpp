#include "Configuration.h"

#include "Number.h"
#include "Platform.h"
#include "ToolError.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <set>
#include <stdexcept>

namespace
{

constexpr const char *kFileName = "FenrikCmd.conf";
constexpr std::uint32_t kLongestTimeout = 3600;

/// By SourceKind.
constexpr std::string_view kSourceNames[] = {"simulated", "kernel", "redfish"};

/// What a key's value is read with.
struct Reading
{
    Configuration &configuration;
    const std::string &directory;
};

/// Each throws std::invalid_argument with the reason when the key cannot take the value.
using KeyReader = void (*)(const Reading &reading, const std::string &value);

struct Key
{
    std::string_view name;
    KeyReader read;
};

std::string Quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

SourceKind ReadSource(const std::string &value)
{
    const auto *const found = std::find(std::begin(kSourceNames), std::end(kSourceNames), value);
    if (found == std::end(kSourceNames))
        throw std::invalid_argument(Quoted(value) + " is no source; there are simulated, kernel and redfish");
    return static_cast<SourceKind>(found - std::begin(kSourceNames));
}

bool ReadYesOrNo(const std::string &value)
{
    if (value != "yes" && value != "no")
        throw std::invalid_argument(Quoted(value) + " is neither yes nor no");
    return value == "yes";
}

std::uint64_t ReadNumber(const std::string &value, std::uint64_t least, std::uint64_t most)
{
    const auto number = ParseNumber(value);
    if (!number || *number < least || *number > most)
        throw std::invalid_argument(Quoted(value) + " is not a number from " + std::to_string(least) + " to " +
                                    std::to_string(most));
    return *number;
}

std::string ReadPath(const Reading &reading, const std::string &value)
{
    const bool isAbsolute = value.starts_with('/') || value.starts_with('\\') || value.substr(1, 1) == ":";
    return isAbsolute ? value : reading.directory + value;
}

std::string ReadUrl(const std::string &value)
{
    constexpr std::string_view kBegins[] = {"https://", "http://"};
    const bool isUrl =
        std::any_of(std::begin(kBegins), std::end(kBegins),
                    [&](std::string_view begin) { return value.starts_with(begin) && value.size() > begin.size(); });
    if (!isUrl)
        throw std::invalid_argument("the address of a Redfish service begins with https://");
    const std::size_t host = value.find("://") + 3;
    if (value.substr(host, value.find('/', host) - host).find('@') != std::string::npos)
        throw std::invalid_argument("user and password do not belong into an address; a file named with "
                                    "credentials-file or netrc-file holds them");
    return value;
}

constexpr Key kKeys[] = {
    {"source",
     [](const Reading &reading, const std::string &value) { reading.configuration.source = ReadSource(value); }},
    {"writing", [](const Reading &reading, const std::string &value)
     { reading.configuration.isWritingAllowed = ReadYesOrNo(value); }},
    {"root", [](const Reading &reading, const std::string &value)
     { reading.configuration.kernel.root = ReadPath(reading, value); }},
    {"password-file", [](const Reading &reading, const std::string &value)
     { reading.configuration.kernel.passwordFile = ReadPath(reading, value); }},
    {"password-descriptor",
     [](const Reading &reading, const std::string &value)
     {
         reading.configuration.kernel.passwordDescriptor =
             static_cast<int>(ReadNumber(value, 0, std::numeric_limits<int>::max()));
     }},
    {"url",
     [](const Reading &reading, const std::string &value) { reading.configuration.redfish.url = ReadUrl(value); }},
    {"credentials-file", [](const Reading &reading, const std::string &value)
     { reading.configuration.redfish.credentialsFile = ReadPath(reading, value); }},
    {"netrc-file", [](const Reading &reading, const std::string &value)
     { reading.configuration.redfish.netrcFile = ReadPath(reading, value); }},
    {"ca-file", [](const Reading &reading, const std::string &value)
     { reading.configuration.redfish.caFile = ReadPath(reading, value); }},
    {"insecure", [](const Reading &reading, const std::string &value)
     { reading.configuration.redfish.isInsecure = ReadYesOrNo(value); }},
    {"system", [](const Reading &reading, const std::string &value) { reading.configuration.redfish.system = value; }},
    {"timeout",
     [](const Reading &reading, const std::string &value) {
         reading.configuration.redfish.timeoutSeconds =
             static_cast<std::uint32_t>(ReadNumber(value, 1, kLongestTimeout));
     }},
    {"language",
     [](const Reading &reading, const std::string &value) { reading.configuration.redfish.language = value; }},
};

/// Two keys of which only one may be there.
constexpr std::string_view kEitherOr[][2] = {{"password-file", "password-descriptor"},
                                             {"credentials-file", "netrc-file"}};

std::string_view Trim(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r";
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// The keys read so far, and what they are read into.
class KeyLines
{
public:
    KeyLines(Configuration &configuration, const std::string &directory) : m_reading{configuration, directory} {}

    /// Reads `line`, which is not blank. Throws std::invalid_argument with the reason when it is bad.
    void Take(std::string_view line)
    {
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos)
            throw std::invalid_argument("it is neither \"key = value\" nor a comment");
        const std::string name(Trim(line.substr(0, equals)));
        const std::string value(Trim(line.substr(equals + 1)));
        const auto *const key =
            std::find_if(std::begin(kKeys), std::end(kKeys), [&](const Key &known) { return known.name == name; });
        if (key == std::end(kKeys))
            throw std::invalid_argument("there is no key " + Quoted(name));
        if (value.empty())
            throw std::invalid_argument(name + " has no value");
        if (value.find('\0') != std::string::npos)
            throw std::invalid_argument(name + " has a value with a NUL in it");
        if (!m_names.insert(name).second)
            throw std::invalid_argument(name + " is there a second time");
        RefuseBoth(name);
        key->read(m_reading, value);
    }

private:
    void RefuseBoth(const std::string &name) const
    {
        for (const auto &[one, other] : kEitherOr)
        {
            const std::string_view rival = name == one ? other : name == other ? one : std::string_view();
            if (!rival.empty() && m_names.contains(std::string(rival)))
                throw std::invalid_argument(name + " and " + std::string(rival) + " exclude each other");
        }
    }

    Reading m_reading;
    std::set<std::string> m_names;
};

bool IsMissing(const std::string &path)
{
    errno = 0;
    return !Platform::OpenStream(path, "rb") && errno == ENOENT;
}

ToolError Refused(const std::string &path, const std::string &what, const std::string &reason)
{
    return {ExitCode::Unreadable, "the file " + Quoted(path) + " with " + what + " " + reason};
}

Platform::StreamOwner OpenPrivateFile(const std::string &path, const std::string &what)
{
    Platform::StreamOwner stream = Platform::OpenStream(path, "rb");
    if (!stream)
        throw Refused(path, what, "cannot be read");
    if (!Platform::IsRestrictedToOwner(stream.get()))
        throw Refused(path, what, "is open to others than its owner; take their rights away (chmod 600)");
    return stream;
}

/// Reads the file, if there is one.
Configuration LoadFile(const std::string &path)
{
    if (IsMissing(path))
        return {};
    std::string text;
    if (!Platform::ReadTextFile(path, text))
        throw ToolError(ExitCode::Unreadable, "the configuration " + Quoted(path) + " cannot be read");
    try
    {
        return ParseConfiguration(text, Platform::ExecutableDirectory());
    }
    catch (const ToolError &error)
    {
        throw ToolError(error.Code(), "the configuration " + Quoted(path) + " is damaged, " + error.what());
    }
}

} // namespace

std::string_view SourceName(SourceKind kind)
{
    return kSourceNames[static_cast<std::size_t>(kind)];
}

std::string ConfigurationPath()
{
    return Platform::ExecutableDirectory() + kFileName;
}

Configuration ParseConfiguration(std::string_view text, const std::string &directory)
{
    Configuration configuration;
    KeyLines lines(configuration, directory);
    for (std::size_t number = 1; !text.empty(); ++number)
    {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = Trim(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.empty() || line.front() == '#' || line.front() == ';')
            continue;
        try
        {
            lines.Take(line);
        }
        catch (const std::invalid_argument &reason)
        {
            throw ToolError(ExitCode::Unreadable, "line " + std::to_string(number) + ": " + reason.what());
        }
    }
    return configuration;
}

void ChooseSource(Configuration &configuration, const std::string &choice)
{
    const std::size_t colon = choice.find(':');
    const std::string argument = colon == std::string::npos ? "" : choice.substr(colon + 1);
    try
    {
        configuration.source = ReadSource(choice.substr(0, colon));
        const bool takesArgument = configuration.source != SourceKind::Simulated;
        if (colon != std::string::npos && (argument.empty() || !takesArgument))
            throw std::invalid_argument("there is nothing to take, or something too much, behind the \":\"");
        if (configuration.source == SourceKind::Kernel && !argument.empty())
            configuration.kernel.root = argument;
        if (configuration.source == SourceKind::Redfish && !argument.empty())
            configuration.redfish.url = ReadUrl(argument);
    }
    catch (const std::invalid_argument &reason)
    {
        throw ToolError(ExitCode::Unreadable, std::string(kSourceVariable) +
                                                  " chooses no source (simulated, kernel, kernel:ROOT or "
                                                  "redfish:URL): " +
                                                  reason.what());
    }
}

Configuration LoadConfiguration()
{
    Configuration configuration = LoadFile(ConfigurationPath());
    std::string choice;
    if (Platform::ReadEnvironmentVariable(kSourceVariable, choice))
        ChooseSource(configuration, choice);
    if (configuration.source == SourceKind::Redfish && configuration.redfish.url.empty())
        throw ToolError(ExitCode::Unreadable, "the configuration " + Quoted(ConfigurationPath()) +
                                                  " says no address of a Redfish service (url = https://...)");
    return configuration;
}

std::vector<std::string> ReadSecretFile(const std::string &path, const std::string &what, std::size_t lineCount)
{
    std::string text;
    if (!Platform::ReadBytes(OpenPrivateFile(path, what).get(), text))
        throw Refused(path, what, "cannot be read");
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size() && lines.size() < lineCount;)
    {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const bool hasReturn = end > start && text[end - 1] == '\r';
        lines.push_back(text.substr(start, end - start - (hasReturn ? 1 : 0)));
        start = end + 1;
    }
    const bool isWhole = lines.size() == lineCount &&
                         std::none_of(lines.begin(), lines.end(), [](const std::string &line) { return line.empty(); });
    if (!isWhole)
        throw Refused(path, what,
                      "lacks a line, or has an empty one; " + std::to_string(lineCount) + " belong into it");
    return lines;
}

void RequirePrivateFile(const std::string &path, const std::string &what)
{
    OpenPrivateFile(path, what);
}

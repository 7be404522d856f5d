#include "Service.h"

#include "Platform.h"

#include <algorithm>
#include <iterator>

namespace Redfish
{

namespace
{

constexpr const char *kRootLink = "/redfish/v1/";
constexpr std::uint32_t kFarewellSeconds = 5;
constexpr std::size_t kLongestText = 2000;
/// Nobody has as many; it only ends a list that leads back to itself.
constexpr int kMostPages = 100;
constexpr long kUnauthorized = 401;
constexpr long kForbidden = 403;

struct StatusText
{
    long status;
    const char *text;
};

constexpr StatusText kStatusTexts[] = {
    {400, "the service does not take the request"},
    {kUnauthorized, "user and password are needed, or not accepted"},
    {kForbidden, "the user may not do this"},
    {404, "there is no such resource"},
    {405, "the service does not allow it"},
    {409, "it is in conflict with something that goes on"},
    {412, "the settings have changed meanwhile; try again"},
    {428, "the service wants an entity tag and gives none"},
    {kTooManyRequests, "the service is busy; try again later"},
    {500, "the service has failed"},
    {501, "the service cannot do it"},
    {kServiceUnavailable, "the service is busy; try again later"},
};

std::string StatusSentence(long status)
{
    const auto *const found = std::find_if(std::begin(kStatusTexts), std::end(kStatusTexts),
                                           [status](const StatusText &text) { return text.status == status; });
    const std::string number = "status " + std::to_string(status);
    return found == std::end(kStatusTexts) ? number : found->text + (" (" + number + ")");
}

/// Which names a registry may have: with its version, and without it.
bool IsNamed(const std::string &found, const std::string &wanted, bool withVersion)
{
    const auto withoutVersion = [](const std::string &name)
    {
        const std::size_t dot = name.find('.');
        return name.substr(0, dot);
    };
    return withVersion ? found == wanted : withoutVersion(found) == withoutVersion(wanted);
}

/// The links of all members of the collection behind `link`, over all its pages.
std::vector<std::string> AllMembers(Service &service, std::string link, const std::string &what)
{
    std::vector<std::string> links;
    for (int page = 0; !link.empty() && page < kMostPages; ++page)
    {
        const Json collection = service.GetJson(link, what);
        std::vector<std::string> found = MemberLinks(collection);
        links.insert(links.end(), std::make_move_iterator(found.begin()), std::make_move_iterator(found.end()));
        link = TextAt(collection, {"Members@odata.nextLink"});
    }
    return links;
}

/// The file of the registry called `name` among those behind `links`; null where there is none. The one whose link says
/// that it is asked for first; only then all others.
Json FindRegistryFile(Service &service, std::vector<std::string> links, const std::string &name)
{
    const auto rank = [&](const std::string &link) {
        return IsNamed(LastPart(link), name, true) ? 0 : IsNamed(LastPart(link), name, false) ? 1 : 2;
    };
    std::stable_sort(links.begin(), links.end(),
                     [&](const std::string &left, const std::string &right) { return rank(left) < rank(right); });
    Json nearly;
    for (const std::string &link : links)
    {
        if (rank(link) == 2 && !nearly.is_null())
            break;
        Json file = service.GetJson(link, "the list of registries");
        for (const char *const key : {"Registry", "Id"})
        {
            if (IsNamed(TextAt(file, {key}), name, true))
                return file;
            if (nearly.is_null() && IsNamed(TextAt(file, {key}), name, false))
                nearly = file;
        }
    }
    return nearly;
}

/// The link of the system that is called so, by its link or else by its Id; empty where there is none.
std::string SystemNamed(Service &service, const std::vector<std::string> &links, const std::string &name)
{
    const auto byLink =
        std::find_if(links.begin(), links.end(), [&](const std::string &link) { return LastPart(link) == name; });
    if (byLink != links.end())
        return *byLink;
    const auto byId = std::find_if(links.begin(), links.end(),
                                   [&](const std::string &link)
                                   { return TextAt(service.GetJson(link, "the system"), {"Id"}) == name; });
    return byId == links.end() ? std::string() : *byId;
}

std::string LastParts(const std::vector<std::string> &links)
{
    std::string names;
    for (const std::string &link : links)
        names += (names.empty() ? "" : ", ") + LastPart(link);
    return names;
}

} // namespace

std::string LastPart(std::string link)
{
    while (link.ends_with('/'))
        link.pop_back();
    return link.substr(link.rfind('/') + 1);
}

Service::Service(const HttpSettings &settings)
    : m_connection(settings), m_user(settings.user), m_password(settings.password)
{
}

Service::~Service()
{
    if (m_session.empty())
        return;
    try
    {
        m_connection.Send({HttpMethod::Delete, m_session, {}, {}, false, true, kFarewellSeconds});
    }
    catch (const std::exception &)
    {
        // It ends by itself when its time is over.
    }
}

std::string Service::Presentable(const std::string &text) const
{
    std::string result = m_connection.Hidden().Without(text);
    std::replace_if(
        result.begin(), result.end(), [](unsigned char character) { return character < 0x20 || character == 0x7F; },
        ' ');
    if (result.size() > kLongestText)
    {
        std::size_t end = kLongestText;
        while (end > 0 && (static_cast<unsigned char>(result[end]) & 0xC0) == 0x80)
            --end;
        result = result.substr(0, end) + " ...";
    }
    return result;
}

ToolError Service::Refusal(const HttpAnswer &answer, const std::string &doing) const
{
    Json json;
    std::string problem;
    std::string sentences;
    if (ReadJson(answer.body, json, problem))
        sentences = FailureSentences(MessagesOf(json));
    const bool isForbidden = answer.status == kUnauthorized || answer.status == kForbidden;
    if (answer.status == kUnauthorized && m_user.empty())
        sentences = "user and password are needed; name a file with them in the configuration (credentials-file)";
    const std::string reason = answer.IsSuccess()  ? sentences
                               : sentences.empty() ? StatusSentence(answer.status)
                                                   : sentences + " (status " + std::to_string(answer.status) + ")";
    return {isForbidden ? ExitCode::InterfaceDisabled : ExitCode::Unreadable,
            doing + " failed at " + m_connection.Name() + ": " + Presentable(reason)};
}

HttpAnswer Service::Get(const std::string &link, const std::string &what)
{
    HttpAnswer answer = m_connection.Send({HttpMethod::Get, link});
    if (!answer.IsSuccess())
        throw Refusal(answer, "reading " + what);
    return answer;
}

Json Service::GetJson(const std::string &link, const std::string &what)
{
    const HttpAnswer answer = Get(link, what);
    Json json;
    std::string problem;
    if (!ReadJson(answer.body, json, problem))
        throw ToolError(ExitCode::Unreadable, "the answer of " + m_connection.Name() + " for " + what + ' ' + problem);
    if (Find(json, {"error"}))
        throw Refusal(answer, "reading " + what);
    return json;
}

void Service::Open()
{
    m_root = GetJson(kRootLink, "the service root");
    if (m_user.empty())
        return;
    std::string sessions = LinkAt(m_root, {"Links", "Sessions"});
    if (sessions.empty() && !LinkAt(m_root, {"SessionService"}).empty())
        sessions = LinkAt(GetJson(LinkAt(m_root, {"SessionService"}), "the session service"), {"Sessions"});
    if (!sessions.empty())
        LogIn(sessions);
    m_connection.UseBasicAuthentication(m_session.empty());
}

void Service::LogIn(const std::string &sessions)
{
    const Json credentials = {{"UserName", m_user}, {"Password", m_password}};
    const std::string body = credentials.dump(-1, ' ', false, Json::error_handler_t::replace);
    const HttpAnswer answer = m_connection.Send({HttpMethod::Post, sessions, body});
    // Asking once more with the same password would only count as a further attempt.
    if (answer.status == kUnauthorized)
        throw Refusal(answer, "logging in");
    if (!answer.IsSuccess() || answer.token.empty())
        return;
    m_connection.UseToken(answer.token);
    m_session = answer.location;
    Json json;
    std::string problem;
    if (m_session.empty() && ReadJson(answer.body, json, problem))
        m_session = LinkAt(json, {});
}

std::string FindSystem(Service &service, const std::string &name, Json &system)
{
    const std::string collection = LinkAt(service.Root(), {"Systems"});
    const std::string where = "the service at " + service.Connection().Name();
    if (collection.empty())
        throw ToolError(ExitCode::InterfaceDisabled, where + " knows no systems");
    const std::vector<std::string> links = AllMembers(service, collection, "the list of systems");
    if (links.empty())
        throw ToolError(ExitCode::InterfaceDisabled, where + " has no system");
    std::string link =
        name.empty() ? links.size() == 1 ? links.front() : std::string() : SystemNamed(service, links, name);
    if (link.empty())
        throw ToolError(
            ExitCode::InterfaceDisabled,
            service.Presentable(where +
                                (name.empty() ? " has several systems; name one in the configuration (system)"
                                              : " has no system \"" + name + "\"; there are") +
                                ": " + LastParts(links)));
    system = service.GetJson(link, "the system");
    return link;
}

std::string LocationFor(const Json &file, const std::string &language)
{
    const Json *const places = Find(file, {"Location"});
    std::string best;
    int bestRank = 0;
    for (const Json &place : places && places->is_array() ? *places : Json::array())
    {
        const Json *const uri = Find(place, {"Uri"});
        const std::string link = uri && uri->is_object() ? LinkAt(place, {"Uri"}) : TextAt(place, {"Uri"});
        if (link.empty())
            continue;
        const std::string found = TextAt(place, {"Language"});
        const auto family = [](const std::string &tag) { return tag.substr(0, tag.find_first_of("-_")); };
        const int rank = found == language ? 3 : family(found) == family(language) ? 2 : 1;
        if (rank > bestRank)
        {
            best = link;
            bestRank = rank;
        }
    }
    return best;
}

std::string FindRegistry(Service &service, const std::string &name, const std::string &language)
{
    const std::string collection = LinkAt(service.Root(), {"Registries"});
    if (name.empty() || collection.empty())
        return {};
    const std::vector<std::string> links = AllMembers(service, collection, "the list of registries");
    return LocationFor(FindRegistryFile(service, links, name), language);
}

} // namespace Redfish

#include "HttpConnection.h"

#include "NativeFolder.h"
#include "Platform.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <curl/curl.h>
#include <thread>

namespace Redfish
{

namespace
{

constexpr int kMostTries = 3;
constexpr int kMostRedirections = 5;
constexpr std::uint32_t kLongestPauseSeconds = 30;
constexpr std::size_t kShortestSecret = 3;
constexpr auto kGlance = std::chrono::milliseconds(50);

constexpr const char *kMethodNames[] = {"GET", "POST", "PATCH", "DELETE"};

constexpr ExitCode kUnusable = ExitCode::Unreadable;

ToolError Unusable(const std::string &message)
{
    return {kUnusable, message};
}

struct FreeUrl
{
    void operator()(CURLU *url) const { curl_url_cleanup(url); }
};
using Url = std::unique_ptr<CURLU, FreeUrl>;

struct FreeText
{
    void operator()(char *text) const { curl_free(text); }
};

Url ParseUrl(const std::string &text)
{
    Url url(curl_url());
    if (!url)
        throw std::bad_alloc();
    return curl_url_set(url.get(), CURLUPART_URL, text.c_str(), 0) == CURLUE_OK ? std::move(url) : nullptr;
}

std::string Part(const Url &url, CURLUPart part)
{
    char *text = nullptr;
    if (curl_url_get(url.get(), part, &text, part == CURLUPART_PORT ? CURLU_DEFAULT_PORT : 0) != CURLUE_OK)
        return {};
    const std::unique_ptr<char, FreeText> owner(text);
    return text;
}

/// Scheme, host and port, as two links have them that lead to one service.
std::string Origin(const Url &url)
{
    std::string host = Part(url, CURLUPART_HOST);
    std::transform(host.begin(), host.end(), host.begin(),
                   [](char letter)
                   { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; });
    return Part(url, CURLUPART_SCHEME) + "://" + host + ':' + Part(url, CURLUPART_PORT);
}

bool IsRedirection(long status)
{
    constexpr long kStatuses[] = {301, 302, 303, 307, 308};
    return std::find(std::begin(kStatuses), std::end(kStatuses), status) != std::end(kStatuses);
}

/// Sleeps, but on through an end of the program only where `goesThrough` says so.
void Pause(std::uint32_t seconds, bool goesThrough)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while ((goesThrough || !Platform::InterruptionHeldBack::IsWaiting()) && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(kGlance);
}

struct FreeList
{
    void operator()(curl_slist *list) const { curl_slist_free_all(list); }
};

struct CauseText
{
    CURLcode code;
    const char *text;
};

/// What a person can do about it; the others have libcurl's own words.
constexpr CauseText kCauses[] = {
    {CURLE_COULDNT_RESOLVE_HOST, "the host's name is not known"},
    {CURLE_COULDNT_CONNECT, "nobody answers there"},
    {CURLE_OPERATION_TIMEDOUT, "the time for the answer is over (timeout in the configuration)"},
    {CURLE_PEER_FAILED_VERIFICATION,
     "its certificate is not trusted; name the file of the certificate that signed it (ca-file in the configuration)"},
    {CURLE_SSL_CACERT_BADFILE,
     "the file of the trusted certificates cannot be used; name one (ca-file in the configuration)"},
    {CURLE_SSL_CONNECT_ERROR, "no encrypted connection comes about"},
    {CURLE_PARTIAL_FILE, "the connection was closed in the middle of the answer"},
    {CURLE_GOT_NOTHING, "the connection was closed without an answer"},
    {CURLE_SEND_ERROR, "the connection was closed while the request was sent"},
    {CURLE_RECV_ERROR, "the connection was closed while the answer was awaited"},
    {CURLE_BAD_CONTENT_ENCODING, "the answer is not compressed as it says"},
    {CURLE_WRITE_ERROR, "the answer is longer than allowed"},
    {CURLE_FILESIZE_EXCEEDED, "the answer is longer than allowed"},
    {CURLE_ABORTED_BY_CALLBACK, "interrupted"},
};

std::string Cause(CURLcode code)
{
    const auto *const found = std::find_if(std::begin(kCauses), std::end(kCauses),
                                           [code](const CauseText &cause) { return cause.code == code; });
    return found == std::end(kCauses) ? curl_easy_strerror(code) : found->text;
}

} // namespace

void Secrets::Add(const std::string &secret)
{
    if (secret.size() >= kShortestSecret)
        m_secrets.push_back(secret);
}

std::string Secrets::Without(std::string text) const
{
    constexpr std::string_view kInstead = "(not shown)";
    for (const std::string &secret : m_secrets)
    {
        for (std::size_t found = text.find(secret); found != std::string::npos;
             found = text.find(secret, found + kInstead.size()))
            text.replace(found, secret.size(), kInstead);
    }
    return text;
}

/// The header lines of a request.
class HttpConnection::HeaderLines
{
public:
    void Add(const std::string &line)
    {
        curl_slist *const longer = curl_slist_append(m_lines.get(), line.c_str());
        if (!longer)
            throw std::bad_alloc();
        static_cast<void>(m_lines.release());
        m_lines.reset(longer);
    }

    curl_slist *Lines() const { return m_lines.get(); }

private:
    std::unique_ptr<curl_slist, FreeList> m_lines;
};

/// libcurl itself, and one of its connections.
struct HttpConnection::Libcurl
{
    Libcurl()
    {
        if (curl_global_init(CURL_GLOBAL_DEFAULT) != CURLE_OK)
            throw Unusable("libcurl cannot be used");
        easy = curl_easy_init();
        if (!easy)
        {
            curl_global_cleanup();
            throw std::bad_alloc();
        }
    }
    ~Libcurl()
    {
        curl_easy_cleanup(easy);
        curl_global_cleanup();
    }
    Libcurl(const Libcurl &) = delete;
    Libcurl &operator=(const Libcurl &) = delete;

    template <typename Value>
    void Set(CURLoption option, Value value)
    {
        if (curl_easy_setopt(easy, option, value) != CURLE_OK)
            throw Unusable("libcurl does not take what the connection needs");
    }

    template <typename Value>
    Value Get(CURLINFO info) const
    {
        Value value = {};
        curl_easy_getinfo(easy, info, &value);
        return value;
    }

    CURL *easy = nullptr;
};

/// What comes in for one request.
struct HttpConnection::Transfer
{
    HttpAnswer answer;
    std::size_t longestAnswer = 0;
    CURL *easy = nullptr;
    bool goesThrough = false;
    bool lacksMemory = false;

    struct Header
    {
        std::string_view name;
        std::string HttpAnswer::*field;
    };
    static constexpr std::array<Header, 3> kHeaders = {
        {{"etag", &HttpAnswer::entityTag}, {"location", &HttpAnswer::location}, {"x-auth-token", &HttpAnswer::token}}};

    static std::size_t TakeBody(char *bytes, std::size_t size, std::size_t count, void *transfer) noexcept
    {
        auto &self = *static_cast<Transfer *>(transfer);
        const std::size_t length = size * count;
        if (length > self.longestAnswer - self.answer.body.size())
            return 0;
        try
        {
            if (self.answer.body.empty())
                self.answer.body.reserve(self.ExpectedLength());
            self.answer.body.append(bytes, length);
        }
        catch (const std::bad_alloc &)
        {
            self.lacksMemory = true;
            return 0;
        }
        return length;
    }

    static std::size_t TakeHeader(char *bytes, std::size_t size, std::size_t count, void *transfer) noexcept
    {
        const std::string_view line(bytes, size * count);
        try
        {
            static_cast<Transfer *>(transfer)->TakeHeaderLine(line);
        }
        catch (const std::bad_alloc &)
        {
            static_cast<Transfer *>(transfer)->lacksMemory = true;
            return 0;
        }
        return line.size();
    }

    static int Watch(void *transfer, curl_off_t, curl_off_t, curl_off_t, curl_off_t) noexcept
    {
        return !static_cast<Transfer *>(transfer)->goesThrough && Platform::InterruptionHeldBack::IsWaiting() ? 1 : 0;
    }

    /// As far as the service says, and no further than is believed without having it.
    std::size_t ExpectedLength() const
    {
        constexpr curl_off_t kMostBelieved = curl_off_t{8} << 20;
        curl_off_t length = 0;
        curl_easy_getinfo(easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
        return static_cast<std::size_t>(std::clamp(length, curl_off_t{0}, kMostBelieved));
    }

    void TakeHeaderLine(std::string_view line)
    {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos)
        {
            // The status line of a further answer, behind one such as "100 Continue".
            if (line.starts_with("HTTP/"))
                answer.entityTag = answer.location = answer.token = {};
            return;
        }
        const auto isNamed = [&](const Header &header)
        {
            return header.name.size() == colon &&
                   std::equal(header.name.begin(), header.name.end(), line.begin(),
                              [](char known, char found)
                              { return known == found || (found >= 'A' && found <= 'Z' && known == found + 32); });
        };
        const auto *const header = std::find_if(kHeaders.begin(), kHeaders.end(), isNamed);
        if (header == kHeaders.end())
            return;
        constexpr std::string_view kBlanks = " \t\r\n";
        const std::string_view rest = line.substr(colon + 1);
        const std::size_t first = rest.find_first_not_of(kBlanks);
        answer.*header->field = first == std::string_view::npos
                                    ? std::string_view()
                                    : rest.substr(first, rest.find_last_not_of(kBlanks) + 1 - first);
    }
};

HttpConnection::HttpConnection(const HttpSettings &settings) : m_settings(settings), m_curl(std::make_unique<Libcurl>())
{
    const Url url = ParseUrl(settings.url);
    const std::string scheme = url ? Part(url, CURLUPART_SCHEME) : "";
    if (scheme != "https" && scheme != "http")
        throw Unusable("\"" + settings.url + "\" is no URL of the form https://HOST");
    if (!Part(url, CURLUPART_USER).empty() || !Part(url, CURLUPART_PASSWORD).empty())
        throw Unusable("the URL of the service must not hold a user or a password");
    m_base = Origin(url);
    if (scheme == "http" && !settings.isInsecure)
        throw Unusable(m_base + " is not encrypted: everybody on the way could read the password; write https, or "
                                "insecure in the configuration");
    m_secrets.Add(settings.password);
}

HttpConnection::~HttpConnection() = default;

void HttpConnection::UseToken(const std::string &token)
{
    m_token = token;
    m_secrets.Add(token);
}

/// The whole URL that `link` means when it stands in the resource `from`.
std::string HttpConnection::Resolve(const std::string &link, const std::string &from) const
{
    const Url url = ParseUrl(from);
    // A fragment, as some links have it, names a place within the resource.
    if (!url || curl_url_set(url.get(), CURLUPART_URL, link.c_str(), 0) != CURLUE_OK ||
        curl_url_set(url.get(), CURLUPART_FRAGMENT, nullptr, 0) != CURLUE_OK)
        throw Unusable("the service at " + m_base + " gives a link that is none: \"" + m_secrets.Without(link) + "\"");
    if (Origin(url) != m_base || !Part(url, CURLUPART_USER).empty())
        throw Unusable("the service at " + m_base + " gives a link that leads elsewhere, which is not followed: \"" +
                       m_secrets.Without(link) + "\"");
    return Part(url, CURLUPART_URL);
}

HttpConnection::HeaderLines HttpConnection::Headers(const HttpRequest &request) const
{
    HeaderLines lines;
    lines.Add("Accept: application/json");
    lines.Add("OData-Version: 4.0");
    lines.Add("Expect:");
    if (!request.body.empty())
        lines.Add("Content-Type: application/json");
    if (!request.ifMatch.empty())
        lines.Add("If-Match: " + request.ifMatch);
    if (!m_token.empty())
        lines.Add("X-Auth-Token: " + m_token);
    return lines;
}

void HttpConnection::SetTrust()
{
    m_curl->Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (m_settings.isInsecure)
    {
        m_curl->Set(CURLOPT_SSL_VERIFYPEER, 0L);
        m_curl->Set(CURLOPT_SSL_VERIFYHOST, 0L);
    }
    else if (!m_settings.caFile.empty())
    {
        m_curl->Set(CURLOPT_CAINFO, m_settings.caFile.c_str());
        m_curl->Set(CURLOPT_CAPATH, static_cast<const char *>(nullptr));
    }
    if (!m_isBasic || !m_token.empty())
        return;
    m_curl->Set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
    m_curl->Set(CURLOPT_USERNAME, m_settings.user.c_str());
    m_curl->Set(CURLOPT_PASSWORD, m_settings.password.c_str());
}

void HttpConnection::SetRequest(const HttpRequest &request)
{
    m_curl->Set(CURLOPT_PROTOCOLS_STR, "http,https");
    m_curl->Set(CURLOPT_CUSTOMREQUEST, kMethodNames[static_cast<std::size_t>(request.method)]);
    // All that libcurl can uncompress.
    m_curl->Set(CURLOPT_ACCEPT_ENCODING, "");
    const auto seconds =
        static_cast<long>(request.timeoutSeconds == 0 ? m_settings.timeoutSeconds : request.timeoutSeconds);
    m_curl->Set(CURLOPT_TIMEOUT, seconds);
    m_curl->Set(CURLOPT_CONNECTTIMEOUT, std::max(seconds / 3, 1L));
    m_curl->Set(CURLOPT_FRESH_CONNECT, request.isOnce ? 1L : 0L);
    if (request.method != HttpMethod::Post && request.body.empty())
        return;
    m_curl->Set(CURLOPT_POSTFIELDS, request.body.c_str());
    m_curl->Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
}

void HttpConnection::SetReceiver(Transfer &transfer)
{
    m_curl->Set(CURLOPT_WRITEFUNCTION, &Transfer::TakeBody);
    m_curl->Set(CURLOPT_WRITEDATA, static_cast<void *>(&transfer));
    m_curl->Set(CURLOPT_HEADERFUNCTION, &Transfer::TakeHeader);
    m_curl->Set(CURLOPT_HEADERDATA, static_cast<void *>(&transfer));
    m_curl->Set(CURLOPT_NOPROGRESS, 0L);
    m_curl->Set(CURLOPT_XFERINFOFUNCTION, &Transfer::Watch);
    m_curl->Set(CURLOPT_XFERINFODATA, static_cast<void *>(&transfer));
}

HttpAnswer HttpConnection::SendOnce(const HttpRequest &request, const std::string &url, std::string &redirection)
{
    if (!request.goesThrough && Platform::InterruptionHeldBack::IsWaiting())
        throw ConnectionError(kUnusable, "interrupted");
    Transfer transfer;
    transfer.longestAnswer = m_settings.longestAnswer;
    transfer.easy = m_curl->easy;
    transfer.goesThrough = request.goesThrough;
    const HeaderLines headers = Headers(request);
    curl_easy_reset(m_curl->easy);
    m_curl->Set(CURLOPT_URL, url.c_str());
    m_curl->Set(CURLOPT_HTTPHEADER, headers.Lines());
    SetRequest(request);
    SetTrust();
    SetReceiver(transfer);
    const CURLcode code = curl_easy_perform(m_curl->easy);
    if (code == CURLE_OUT_OF_MEMORY || transfer.lacksMemory)
        throw std::bad_alloc();
    if (code != CURLE_OK)
        throw ConnectionError(kUnusable, m_base + " cannot be used: " + Cause(code));
    transfer.answer.status = m_curl->Get<long>(CURLINFO_RESPONSE_CODE);
    transfer.answer.retryAfterSeconds = static_cast<std::uint32_t>(
        std::clamp<curl_off_t>(m_curl->Get<curl_off_t>(CURLINFO_RETRY_AFTER), 0, kLongestPauseSeconds));
    const char *const target = m_curl->Get<const char *>(CURLINFO_REDIRECT_URL);
    redirection = target ? target : "";
    return std::move(transfer.answer);
}

HttpAnswer HttpConnection::SendPatiently(const HttpRequest &request, const std::string &url, std::string &redirection)
{
    for (std::uint32_t attempt = 1;; ++attempt)
    {
        HttpAnswer answer = SendOnce(request, url, redirection);
        const bool wantsPatience = answer.status == kServiceUnavailable || answer.status == kTooManyRequests;
        if (!wantsPatience || attempt == kMostTries)
            return answer;
        Pause(std::max(answer.retryAfterSeconds, attempt), request.goesThrough);
    }
}

HttpAnswer HttpConnection::Send(const HttpRequest &request)
{
    std::string url = Resolve(request.link, m_base);
    for (int followed = 0;; ++followed)
    {
        std::string redirection;
        HttpAnswer answer = SendPatiently(request, url, redirection);
        if (!IsRedirection(answer.status))
            return answer;
        const bool keepsRequest = request.method == HttpMethod::Get || answer.status >= 307;
        if (redirection.empty() || !keepsRequest || followed == kMostRedirections)
            throw Unusable("the service at " + m_base + " sends a request on in a way that is not followed");
        url = Resolve(redirection, url);
    }
}

} // namespace Redfish

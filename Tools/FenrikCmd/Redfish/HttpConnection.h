#pragma once

#include "ToolError.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Redfish
{

/// Texts that nobody is to see, such as passwords and tokens.
class Secrets
{
public:
    /// Texts of less than three bytes are not looked for: they stand in every sentence.
    void Add(const std::string &secret);

    /// `text` with "(not shown)" in the place of each secret.
    std::string Without(std::string text) const;

private:
    std::vector<std::string> m_secrets;
};

/// How a service is reached, and as whom.
struct HttpSettings
{
    /// Scheme, host and perhaps a port; a path behind them is not used.
    std::string url;
    /// The file of the certificates that are trusted, PEM; empty for those of the system.
    std::string caFile;
    /// Takes any certificate, and a connection that is not encrypted.
    bool isInsecure = false;
    /// For one answer. The connection must stand after a third of it.
    std::uint32_t timeoutSeconds = 60;
    /// What an answer may have at most, uncompressed.
    std::size_t longestAnswer = std::size_t{64} << 20;
    std::string user;
    std::string password;
};

enum class HttpMethod
{
    Get,
    Post,
    Patch,
    Delete
};

struct HttpRequest
{
    HttpMethod method = HttpMethod::Get;
    /// A path of the service, or a whole URL that leads to it.
    std::string link;
    /// JSON; sent where it is not empty.
    std::string body = {};
    /// The entity tag that the resource must still have; empty for none.
    std::string ifMatch = {};
    /// Goes out on a connection of its own: on one that has died since, it might come to be sent a second time.
    bool isOnce = false;
    /// Goes out, and is not broken off, also when an end of the program waits.
    bool goesThrough = false;
    /// For this answer; 0 for what the settings say.
    std::uint32_t timeoutSeconds = 0;
};

struct HttpAnswer
{
    long status = 0;
    std::string body;
    std::string entityTag;
    std::string location;
    /// Of a session (X-Auth-Token).
    std::string token;
    /// How long the service wishes to be left alone; 0 where it does not say.
    std::uint32_t retryAfterSeconds = 0;

    bool IsSuccess() const { return status >= 200 && status < 300; }
};

/// No answer came, or none that can be used: the service may or may not have done what it was asked to.
class ConnectionError : public ToolError
{
public:
    using ToolError::ToolError;
};

/// A connection to one service by HTTP; libcurl does the work. One thread at a time, one object at a time.
class HttpConnection
{
public:
    /// Throws ToolError (Unreadable) where the URL is none, or asks for an unencrypted connection that the
    /// settings do not allow.
    explicit HttpConnection(const HttpSettings &settings);
    ~HttpConnection();
    HttpConnection(const HttpConnection &) = delete;
    HttpConnection &operator=(const HttpConnection &) = delete;

    /// From now on requests carry the token of a session; an empty one ends that.
    void UseToken(const std::string &token);

    /// From now on requests carry user and password, where there is no token.
    void UseBasicAuthentication(bool isUsed) { m_isBasic = isUsed; }

    /// Sends a request and waits for the answer, which may have any status but 503, 429 and those of a redirection. A
    /// service that asks for patience (503, 429) is asked up to three times with growing pauses, or those that it
    /// wishes for up to 30 s. A redirection is followed up to five times, and only on the same scheme, host and port.
    /// Throws ConnectionError (Unreadable) where no whole answer comes in time, the answer is too long, or an end of
    /// the program waits; ToolError where the link leads elsewhere.
    HttpAnswer Send(const HttpRequest &request);

    /// What is not to stand in any message.
    Secrets &Hidden() { return m_secrets; }
    const Secrets &Hidden() const { return m_secrets; }

    /// The URL without a path, for messages.
    const std::string &Name() const { return m_base; }

private:
    class HeaderLines;
    struct Transfer;
    struct Libcurl;

    std::string Resolve(const std::string &link, const std::string &from) const;
    HeaderLines Headers(const HttpRequest &request) const;
    void SetTrust();
    void SetRequest(const HttpRequest &request);
    void SetReceiver(Transfer &transfer);
    HttpAnswer SendOnce(const HttpRequest &request, const std::string &url, std::string &redirection);
    HttpAnswer SendPatiently(const HttpRequest &request, const std::string &url, std::string &redirection);

    HttpSettings m_settings;
    /// Scheme, host and port.
    std::string m_base;
    Secrets m_secrets;
    std::string m_token;
    bool m_isBasic = false;
    std::unique_ptr<Libcurl> m_curl;
};

/// The numbers of the two answers by which a service asks for patience.
constexpr long kServiceUnavailable = 503;
constexpr long kTooManyRequests = 429;

} // namespace Redfish

#pragma once

#include "HttpConnection.h"
#include "Messages.h"
#include "Resource.h"

#include <functional>
#include <string>

namespace Redfish
{

/// A Redfish service, with somebody logged in as long as the object lives. All functions throw ToolError where the
/// service cannot be used (Unreadable), and no message of theirs holds a secret.
class Service
{
public:
    /// Does not send anything yet.
    explicit Service(const HttpSettings &settings);
    /// Ends the session, also when an end of the program waits.
    ~Service();
    Service(const Service &) = delete;
    Service &operator=(const Service &) = delete;

    /// Reads the service root and opens a session; where the service has none or refuses one, user and password go with
    /// every request. Without a user nobody logs in. InterfaceDisabled where user and password are refused. Once.
    void Open();

    /// The service root.
    const Json &Root() const { return m_root; }

    /// The answer to a GET. `what` is what messages call the resource. Where the service refuses: Unreadable, or
    /// InterfaceDisabled where the user has not the rights.
    HttpAnswer Get(const std::string &link, const std::string &what);

    /// The same as JSON; also fails where the answer is no JSON object, or tells of an error.
    Json GetJson(const std::string &link, const std::string &what);

    /// A failure in the words of the answer that tells of it. `doing` is a phrase such as "reading the settings".
    ToolError Refusal(const HttpAnswer &answer, const std::string &doing) const;

    /// A text of the service as a message may hold it: no secrets, no control characters, not too long.
    std::string Presentable(const std::string &text) const;

    HttpConnection &Connection() { return m_connection; }
    const HttpConnection &Connection() const { return m_connection; }

private:
    void LogIn(const std::string &sessions);

    HttpConnection m_connection;
    std::string m_user;
    std::string m_password;
    Json m_root;
    /// The link of the session; empty where there is none.
    std::string m_session;
};

/// The link of the system called `name` (its Id, or the last part of its link) or, with an empty name, of the only one.
/// `system` is what is there. Fails where there is no such system, or several and no name.
std::string FindSystem(Service &service, const std::string &name, Json &system);

/// The link to the registry called `name`, in `language` if it is there, else in a related or the first one. Empty
/// where the service has no such registry. One that is called so but for its version is found, too.
std::string FindRegistry(Service &service, const std::string &name, const std::string &language);

/// The link for `language` among the places of a registry's file. Pure.
std::string LocationFor(const Json &file, const std::string &language);

/// The last part of a link.
std::string LastPart(std::string link);

} // namespace Redfish

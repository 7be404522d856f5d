#include "Programming.h"

#include "Platform.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace Redfish
{

namespace
{

constexpr long kAccepted = 202;
constexpr long kUnauthorized = 401;
constexpr long kForbidden = 403;
constexpr long kServerFailures = 500;
constexpr long kPreconditionFailed = 412;
/// A task that waits for the restart does not end before it.
constexpr int kMostPolls = 20;
constexpr auto kPollPause = std::chrono::milliseconds(250);
constexpr auto kPollSecond = std::chrono::seconds(1);

constexpr const char *kNotKnown = "; whether anything was programmed is not known, \"pending\" tells of it later";

/// What the service has said of a request to program.
struct Outcome
{
    /// Whether it has said that it is done.
    bool isDone = false;
    /// Whether it has said nothing, and may have done it all the same.
    bool isUnknown = false;
    /// How the tool ends where it is not done, and why: a phrase.
    ExitCode code = ExitCode::CannotWrite;
    std::string reason;
};

Outcome Done()
{
    return {true, false, ExitCode::Success, {}};
}

Outcome Failed(ExitCode code, const std::string &reason)
{
    return {false, false, code, reason};
}

ExitCode CodeOf(long status)
{
    if (status == kUnauthorized || status == kForbidden)
        return ExitCode::InterfaceDisabled;
    return status >= kServerFailures || status == kPreconditionFailed || status < 400 ? ExitCode::CannotWrite
                                                                                      : ExitCode::BadInput;
}

bool IsOneOf(std::string_view text, std::initializer_list<std::string_view> words)
{
    return std::find(words.begin(), words.end(), text) != words.end();
}

Outcome OutcomeOfTask(Service &service, const Json &task)
{
    const std::string state = TextAt(task, {"TaskState"});
    std::vector<ServiceMessage> messages = MessagesOf(task);
    const Json *const list = Find(task, {"Messages"});
    std::vector<ServiceMessage> ofTask = MessagesOf(Json{{"@Message.ExtendedInfo", list ? *list : Json()}});
    messages.insert(messages.end(), ofTask.begin(), ofTask.end());
    const std::string sentences = service.Presentable(FailureSentences(messages));
    if (IsOneOf(state, {"Exception", "Cancelled", "Killed", "Interrupted"}))
        return Failed(ExitCode::CannotWrite, "the service's task has ended as \"" + state + "\"" +
                                                 (sentences.empty() ? "" : ": " + sentences));
    return Done();
}

/// Asks after a task until it has ended or waits for the restart.
Outcome FollowTask(Service &service, const WarningSink &warn, const HttpAnswer &accepted)
{
    HttpAnswer answer = accepted;
    Json task;
    for (int poll = 0; poll < kMostPolls && !accepted.location.empty(); ++poll)
    {
        answer = service.Connection().Send({HttpMethod::Get, accepted.location, {}, {}, false, true});
        std::string problem;
        // A monitor that has done its work may be gone, or have nothing to say any more.
        const bool isTask = ReadJson(answer.body, task, problem);
        const std::string state = isTask ? TextAt(task, {"TaskState"}) : "";
        if (answer.status >= 400 && answer.status != 404 && answer.status != 410)
            return Failed(CodeOf(answer.status), service.Refusal(answer, "programming").what());
        if (answer.status != kAccepted ||
            IsOneOf(state, {"Completed", "Exception", "Cancelled", "Killed", "Interrupted"}))
            return isTask ? OutcomeOfTask(service, task) : Done();
        if (IsOneOf(state, {"Pending", "Suspended", "Service"}))
            break;
        std::this_thread::sleep_for(answer.retryAfterSeconds > 0 ? kPollSecond * answer.retryAfterSeconds
                                                                 : kPollPause * (poll + 1));
    }
    warn("the service has accepted the request and is not done with it; \"pending\" tells of it later");
    return Done();
}

Outcome OutcomeOfAnswer(Service &service, const WarningSink &warn, const HttpAnswer &answer)
{
    Json json;
    std::string problem;
    const std::string sentences =
        ReadJson(answer.body, json, problem) ? service.Presentable(FailureSentences(MessagesOf(json))) : "";
    if (!answer.IsSuccess())
        return Failed(CodeOf(answer.status), service.Refusal(answer, "programming").what());
    if (answer.status == kAccepted)
        return FollowTask(service, warn, answer);
    if (sentences.empty())
        return Done();
    return Failed(ExitCode::CannotWrite, sentences);
}

Outcome Send(Service &service, const WarningSink &warn, const HttpRequest &request)
{
    try
    {
        return OutcomeOfAnswer(service, warn, service.Connection().Send(request));
    }
    catch (const ConnectionError &error)
    {
        return {false, true, ExitCode::CannotWrite, error.what()};
    }
    catch (const ToolError &error)
    {
        return Failed(ExitCode::CannotWrite, error.what());
    }
}

Outcome SendPatch(Service &service, const WarningSink &warn, const Machine &machine, const WireValues &wanted)
{
    const std::string body = PatchBody(machine.settings, wanted).dump(-1, ' ', false, Json::error_handler_t::replace);
    return Send(service, warn, {HttpMethod::Patch, machine.settingsLink, body, machine.entityTag, true, true});
}

std::string Join(const std::vector<std::string> &names)
{
    std::string list;
    for (const std::string &name : names)
        list += (list.empty() ? "" : ", ") + name;
    return list;
}

/// What one setting has after the next restart as far as its service tells, or null.
const WireValue *ValueAfterRestart(const MachineSettings &settings, const std::string &name)
{
    const WireValue *const waiting = settings.waiting.Find(name);
    return waiting && waiting->HasText() ? waiting : settings.bios.Find(name);
}

bool CanBeReadBack(const Machine &machine, const std::string &name)
{
    const RegistryAttribute *const known = machine.settings.registry.Find(name);
    return machine.tellsWaiting && !(known && IsSecret(*known));
}

/// Which settings that can be read back are not as `expected` says.
std::vector<std::string> NotAs(const Machine &machine, const WireValues &expected)
{
    std::vector<std::string> names;
    for (const auto &[name, value] : expected)
    {
        const WireValue *const found = ValueAfterRestart(machine.settings, name);
        if (CanBeReadBack(machine, name) && !(found && IsSameValue(*found, value)))
            names.push_back(name);
    }
    return names;
}

/// What the settings named in `wanted` have now, to be put back.
WireValues ValuesBefore(const Machine &machine, const WireValues &wanted)
{
    WireValues before;
    for (const auto &[name, value] : wanted)
    {
        const WireValue *const found = ValueAfterRestart(machine.settings, name);
        if (found && found->HasText() && CanBeReadBack(machine, name))
            before.emplace(name, *found);
    }
    return before;
}

/// Reads what the service has now.
void ReadBack(Service &service, Machine &machine)
{
    ReadWaiting(service, machine, true);
    ReadCurrent(service, machine, true);
}

/// Puts back what `before` says. Returns the end of a sentence that tells how it went.
std::string PutBack(Service &service, const WarningSink &warn, Machine &machine, const WireValues &before)
{
    const std::vector<std::string> changed = NotAs(machine, before);
    if (changed.empty())
        return "; nothing was programmed";
    WireValues values;
    for (const std::string &name : changed)
        values.emplace(name, before.at(name));
    SendPatch(service, warn, machine, values);
    ReadBack(service, machine);
    const std::vector<std::string> left = NotAs(machine, before);
    return left.empty() ? "; what the service had taken of it was put back, nothing is programmed"
                        : "; these could not be put back and change with the next restart: " + Join(left);
}

} // namespace

void ProgramSettings(Service &service, const WarningSink &warn, Machine &machine, const WireValues &wanted)
{
    if (machine.settingsLink.empty())
        throw ToolError(ExitCode::InterfaceDisabled, "the service at " + service.Connection().Name() +
                                                         " lets nobody change the firmware's settings");
    const WireValues before = ValuesBefore(machine, wanted);
    Outcome outcome = SendPatch(service, warn, machine, wanted);
    std::string rest;
    try
    {
        ReadBack(service, machine);
        const std::vector<std::string> missing = NotAs(machine, wanted);
        if (missing.empty() && (outcome.isDone || (outcome.isUnknown && !before.empty())))
        {
            if (outcome.isUnknown)
                warn(service.Presentable(outcome.reason + "; but the service has taken the request"));
            return;
        }
        if (outcome.isDone)
            outcome =
                Failed(ExitCode::CannotWrite, "the service has accepted the request and not taken " + Join(missing));
        rest = outcome.isUnknown && before.empty() ? kNotKnown : PutBack(service, warn, machine, before);
    }
    catch (const ToolError &error)
    {
        if (outcome.isDone)
        {
            warn(std::string("the service has accepted the request, but it could not be read back: ") + error.what());
            return;
        }
        rest = kNotKnown;
    }
    throw ToolError(outcome.code, service.Presentable(outcome.reason + rest));
}

void ResetSettings(Service &service, const WarningSink &warn, const Machine &machine)
{
    const std::string target = TextAt(machine.settings.bios.other, {"Actions", "#Bios.ResetBios", "target"});
    if (target.empty())
        throw ToolError(ExitCode::InterfaceDisabled, "the service at " + service.Connection().Name() +
                                                         " offers no reset of the firmware's settings");
    const Outcome outcome = Send(service, warn, {HttpMethod::Post, target, "{}", {}, true, true});
    if (!outcome.isDone)
        throw ToolError(outcome.code, service.Presentable(outcome.reason));
}

} // namespace Redfish

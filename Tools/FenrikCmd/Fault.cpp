#include "Fault.h"

#include "Commands.h"
#include "Number.h"
#include "Platform.h"
#include "ToolError.h"

#include <algorithm>
#include <string_view>

namespace
{

constexpr std::string_view kExitPrefix = "exit:";
/// What every system can hand on.
constexpr std::uint64_t kLargestExitCode = 255;

struct FaultName
{
    std::string_view name;
    FaultKind kind;
};

constexpr FaultName kFaultNames[] = {{"crash", FaultKind::Crash},         {"nodump", FaultKind::NoDump},
                                     {"emptydump", FaultKind::EmptyDump}, {"halfdump", FaultKind::HalfDump},
                                     {"wrongroot", FaultKind::WrongRoot}, {"big", FaultKind::BigDump}};

ToolError Unknown(const std::string &setting)
{
    return {ExitCode::UnknownFault,
            std::string(kFaultVariable) + "=\"" + setting +
                "\" is no fault; there are exit:N (N from 0 to 255), crash, nodump, emptydump, halfdump, wrongroot and "
                "big, each after COMMAND= where it is for one command only"};
}

bool IsCommand(std::string_view name)
{
    return std::any_of(kCommands.begin(), kCommands.end(),
                       [name](const Command &command) { return name == command.name; });
}

Fault ParseFault(std::string_view text, const std::string &setting)
{
    if (text.starts_with(kExitPrefix))
    {
        const auto code = ParseNumber(text.substr(kExitPrefix.size()));
        if (!code || *code > kLargestExitCode)
            throw Unknown(setting);
        return {FaultKind::Exit, static_cast<int>(*code)};
    }
    for (const FaultName &fault : kFaultNames)
    {
        if (fault.name == text)
            return {fault.kind, 0};
    }
    throw Unknown(setting);
}

} // namespace

Fault FaultFor(const std::string &command)
{
    std::string setting;
    if (!Platform::ReadEnvironmentVariable(kFaultVariable, setting))
        return {};
    std::string_view text = setting;
    std::string_view onlyIn = command;
    if (const auto equals = text.find('='); equals != std::string_view::npos)
    {
        onlyIn = text.substr(0, equals);
        text.remove_prefix(equals + 1);
        if (!IsCommand(onlyIn))
            throw Unknown(setting);
    }
    const Fault fault = ParseFault(text, setting);
    return onlyIn == command ? fault : Fault{};
}

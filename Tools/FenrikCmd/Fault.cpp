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
/// Windows hands on all of it, other systems the lowest eight bits.
constexpr std::uint64_t kLargestExitCode = 0xFFFFFFFF;

struct FaultName
{
    std::string_view name;
    FaultKind kind;
};

constexpr FaultName kFaultNames[] = {{"crash", FaultKind::Crash},       {"hang", FaultKind::Hang},
                                     {"nodump", FaultKind::NoDump},     {"emptydump", FaultKind::EmptyDump},
                                     {"halfdump", FaultKind::HalfDump}, {"wrongroot", FaultKind::WrongRoot},
                                     {"big", FaultKind::BigDump}};

ToolError Unknown(const std::string &setting)
{
    return {ExitCode::UnknownFault,
            std::string(kFaultVariable) + "=\"" + setting +
                "\" is no fault; there are exit:N (N from 0 to 4294967295), crash and hang, with COMMAND= "
                "in front where they are for one "
                "command only, and for savexml nodump, emptydump, halfdump, wrongroot and big"};
}

bool IsCommand(std::string_view name)
{
    return std::any_of(kCommands.begin(), kCommands.end(),
                       [name](const Command &command) { return name == command.name; });
}

/// Whether `fault` can be seen in `command`.
bool Concerns(const Fault &fault, std::string_view command)
{
    const bool isAnyCommands =
        fault.kind == FaultKind::Exit || fault.kind == FaultKind::Crash || fault.kind == FaultKind::Hang;
    return isAnyCommands || command == "savexml";
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
    const std::string_view text = setting;
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos)
        return ParseFault(text, setting);
    const std::string_view onlyIn = text.substr(0, equals);
    const Fault fault = ParseFault(text.substr(equals + 1), setting);
    if (!IsCommand(onlyIn) || !Concerns(fault, onlyIn))
        throw Unknown(setting);
    return onlyIn == command ? fault : Fault{};
}

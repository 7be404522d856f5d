#pragma once

#include <string>

/// Ways in which the tool can be told to misbehave, one at a time.
enum class FaultKind
{
    None,
    /// Ends with a given exit code and does nothing.
    Exit,
    /// Ends abnormally and does nothing.
    Crash,
    /// Never ends and does nothing.
    Hang,
    // The others are faults of the dump; the exit code is that of success.
    NoDump,
    EmptyDump,
    HalfDump,
    WrongRoot,
    BigDump
};

struct Fault
{
    FaultKind kind = FaultKind::None;
    int exitCode = 0;
};

/// The environment variable that names the fault: "FAULT", or "COMMAND=FAULT" to have it in one command only.
constexpr const char *kFaultVariable = "FENRIKCMD_FAULT";

/// The fault that the environment asks of `command`. Throws ToolError (UnknownFault) for a fault or a command that
/// does not exist and for a fault of the dump in another command than savexml, whichever command is running.
Fault FaultFor(const std::string &command);

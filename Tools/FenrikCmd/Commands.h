#pragma once

#include "Fault.h"

#include <span>
#include <string>

/// What messages begin with.
constexpr const char *kProgramName = "FenrikCmd.exe";

/// What a command is run with.
struct Invocation
{
    /// Empty for a command without an argument.
    std::string argument;
    Fault fault;
};

/// A command of the tool. `run` throws ToolError when it fails.
struct Command
{
    const char *name;
    /// What the argument is called in the help; null for a command without one.
    const char *argument;
    bool isArgumentRequired;
    const char *help;
    void (*run)(const Invocation &invocation);
};

extern const std::span<const Command> kCommands;

#pragma once

#include "Arguments.h"
#include "OptionTable.h"
#include "Output.h"
#include "Steps.h"

#include <string>

/// Where options come from.

/// The options of a machine, or of a dump.
struct LoadedOptions
{
    OptionTable table;
    /// The dump could be read in part only.
    bool isDamaged = false;
};

/// Has the environment variable ProgramFiles be what the user says, if anything.
void UseProgramFiles(const Arguments &arguments);

/// The external tool's directory, with its final separator. Throws Failure when it is not known.
std::string ToolPlace(const Arguments &arguments);

/// A path as the system writes it, for a message.
std::string ShownPath(const std::string &path);

/// Has the external tool make a dump and reads it. Throws Failure when that cannot be done; a damaged dump is told of.
LoadedOptions ReadMachine(const Arguments &arguments, const Steps &steps, Output &output);

/// Reads a dump or, where the name ends in ".json", what "list --json" has written. Throws Failure when that cannot be
/// done; a damaged dump is told of.
LoadedOptions ReadOptionsFile(const std::string &file, Output &output);

/// The options that the user means: of the file of --from, or of the machine.
LoadedOptions ReadOptions(const Arguments &arguments, const Steps &steps, Output &output);

// What a worker does.

/// Has the external tool make its dump.
void MakeDump(const Arguments &arguments);

/// Asks the external tool for its status and says how long that took.
std::string AskStatus(const Arguments &arguments);

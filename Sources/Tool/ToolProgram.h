#pragma once

#include "StatusCode.h"
#include "TraceSource.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The external tool: where it is and how it is run. With KnobDump.h and KnobFile.h this is the knob library, whose
/// state is the module's: used from one thread at a time.

/// Reads the environment variable `variableName` (Platform::ReadEnvironmentVariable) into `path`; for "ProgramFiles"
/// the external tool's directory below it, with a final backslash. Returns Success; Failed when the variable is not set
/// or empty; NoMemory. `path` keeps its content on failure.
Status GetEnvironmentalVaribaleBiosLib(std::string variableName, std::string &path);

/// Finds the external tool, makes the folder "out" in its directory and runs its status command. The arguments have no
/// effect. Returns Success when the BIOS interface can be used; NotFound when the tool ended with exit code 1;
/// ToolFailed for another exit code; Failed when the tool's directory is not known, the folder cannot be made or the
/// tool cannot be started; NoMemory.
Status biosConfigurationLibInit(std::string componentName, std::string &extra);

/// Runs one command line (program first, in quotation marks; ANSI code page on Windows) and waits for it without limit
/// (Platform::RunCommand). Returns Success for exit code 0, NotFound for 1, ToolFailed for another, Failed when the
/// program could not be started, NoMemory.
Status Exec(std::string command);

/// Gives the folder "out" of the tool's directory, with its final backslash. Returns Success; Missing, with `folder`
/// unchanged, when the library has not been initialised; NoMemory.
Status getOutFolder(std::string &folder);

/// Whether a path can stand in a command line of the tool: it holds no double-quote character and no NUL.
bool isPassableToTool(std::string_view path);

/// One run of the tool, for those who tell a user of it.
struct ToolRun
{
    /// Whether the program could be started.
    bool isStarted = false;
    /// As Platform::RunCommand gives it.
    std::uint32_t exitCode = 0;
};

/// The path of the tool's program in `directory` (with final separator). May throw std::bad_alloc.
std::string toolProgram(const std::string &directory);

/// Runs `command` of the tool in `directory`, with `file` as its argument unless that is empty. Leaves the library's
/// state alone and writes no traces. May throw std::bad_alloc.
ToolRun runTool(const std::string &directory, const std::string &command, const std::string &file);

// For the other files of the library.

/// Open from the first initialisation until the library is unloaded.
extern TraceSource knobLibraryTrace;

/// The external tool's directory with its final backslash; empty until the library has been initialised.
extern std::string toolDirectory;

/// The command line that has the tool run `command`, without and with the path of a file. Nothing in a path is escaped.
/// May throw std::bad_alloc.
std::string ToolCommand(const std::string &command);
std::string ToolCommand(const std::string &command, const std::string &file);

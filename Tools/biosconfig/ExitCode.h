#pragma once

#include <stdexcept>
#include <string>

/// What the program's exit code says; part of its contract with scripts.
enum class ExitCode : int
{
    Success = 0,
    NotDone = 1,
    WrongUsage = 2,
    NoModule = 3,
    NotReady = 4,
    NotWritten = 5,
    DamagedDump = 6,
    TimedOut = 7
};

struct ExitCodeMeaning
{
    ExitCode code;
    const char *text;
};

/// As --help shows them.
constexpr ExitCodeMeaning kExitCodeMeanings[] = {
    {ExitCode::Success, "done, and the module recorded no error"},
    {ExitCode::NotDone,
     "no report, one made with errors that the module recorded in Error.xml, or settings not updated"},
    {ExitCode::WrongUsage,
     "wrong command line, an option that the module does not offer, or a template that cannot be read"},
    {ExitCode::NoModule, "the module cannot be loaded or is not such a module"},
    {ExitCode::NotReady, "the tool directory is missing, not writable, or not accepted by the module"},
    {ExitCode::NotWritten, "the output cannot be written"},
    {ExitCode::DamagedDump,
     "a report of what could be read, and written: the external tool's dump of the options is damaged"},
    {ExitCode::TimedOut, "the time limit was over: the external tool and whatever it had started were ended"}};

/// A failure that ends the program's work, with the text for the user and the exit code. Never leaves main.
struct Failure : std::runtime_error
{
    Failure(ExitCode exitCode, const std::string &message) : std::runtime_error(message), code(exitCode) {}

    ExitCode code;
};

#pragma once

#include <stdexcept>
#include <string>

/// What the program's exit code says; part of its contract with scripts.
enum class ExitCode : int
{
    Done = 0,
    Unexpected = 1,
    Different = 2,
    NotFound = 3,
    NotValid = 4,
    InPart = 5,
    ToolFailed = 6,
    NoTool = 7,
    TimedOut = 8,
    NotPermitted = 9,
    Mismatch = 10,
    WrongUsage = 64
};

struct ExitCodeMeaning
{
    ExitCode code;
    /// For programs that read JSON.
    const char *word;
    const char *text;
};

/// Help, manual page and documentation have these texts.
constexpr ExitCodeMeaning kExitCodeMeanings[] = {
    {ExitCode::Done, "done", "done, also where there was nothing to do"},
    {ExitCode::Unexpected, "unexpected", "something unexpected, such as an output that cannot be written"},
    {ExitCode::Different, "different", "there are differences or changes (only with --exit-code)"},
    {ExitCode::NotFound, "not-found", "an option, a page or a file was not found"},
    {ExitCode::NotValid, "not-valid", "a template or a value is not valid; nothing was written"},
    {ExitCode::InPart, "in-part", "made or applied in part, such as a report of a damaged dump"},
    {ExitCode::ToolFailed, "tool-failed", "the external tool refused or failed"},
    {ExitCode::NoTool, "no-tool", "the external tool is missing or cannot be started"},
    {ExitCode::TimedOut, "timed-out", "the time limit was over; the external tool was ended, with what it had started"},
    {ExitCode::NotPermitted, "not-permitted", "the BIOS interface is off, or permission is lacking"},
    {ExitCode::Mismatch, "mismatch", "written, and something else was read back"},
    {ExitCode::WrongUsage, "usage", "wrong command line"}};

/// The line of the table above for `code`.
const ExitCodeMeaning &MeaningOf(ExitCode code);

/// A failure that ends the program's work, with the text for the user and the exit code. Never leaves main.
struct Failure : std::runtime_error
{
    Failure(ExitCode exitCode, const std::string &message) : std::runtime_error(message), code(exitCode) {}

    ExitCode code;
};

#pragma once

#include <stdexcept>
#include <string>

/// How the tool ends. Callers take 1 for an ordinary refusal and everything above it for an interface that cannot be
/// used.
enum class ExitCode
{
    Success = 0,
    BadInput = 1,
    /// The settings, their file or the configuration.
    Unreadable = 2,
    /// There is none, it is switched off, or the configuration does not permit what was asked.
    InterfaceDisabled = 3,
    CannotWrite = 4,
    UnknownFault = 5,
    Internal = 6
};

/// A failure that ends the command; the message is a sentence for the user, without a final full stop.
class ToolError : public std::runtime_error
{
public:
    ToolError(ExitCode code, const std::string &message) : std::runtime_error(message), m_code(code) {}

    ExitCode Code() const { return m_code; }

private:
    ExitCode m_code;
};

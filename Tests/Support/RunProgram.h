#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace TestSupport
{

/// Runs a command line, waits, and gives the exit code, or Platform::kUnknownExitCode when nothing started. In contrast
/// to Platform::RunCommand the program writes to this process's standard output and error on every system.
std::uint32_t RunInSight(const std::string &commandLine);

struct Outcome
{
    std::uint32_t exitCode;
    std::string output;
    std::string messages;
};

/// The same, with what the program wrote.
inline Outcome RunCaptured(const std::string &commandLine)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Outcome outcome = {RunInSight(commandLine), "", ""};
    outcome.output = testing::internal::GetCapturedStdout();
    outcome.messages = testing::internal::GetCapturedStderr();
    return outcome;
}

} // namespace TestSupport

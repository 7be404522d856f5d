#pragma once

#include "Arguments.h"
#include "Output.h"

#include <cstdint>
#include <cstdio>
#include <string>

/// What is done with the external tool or with the module happens in a process of its own, a worker: this program once
/// more. One that waits cannot be called back, and one that crashes takes its process with it; a worker can be ended,
/// and what it had to say is known.
class Steps
{
public:
    /// `commandLine` is what main was given.
    Steps(const Arguments &arguments, char *const *commandLine) : m_arguments(arguments), m_commandLine(commandLine) {}

    /// Has a worker do `step` with `argument` and gives what it has to say. `what` is told on a terminal while it takes
    /// its time. What the tool says goes to standard error where the step fails, where `showsMessages`, and for those
    /// who want to know everything. Throws Failure when the step fails, when it crashes and when the time is up.
    std::string Run(const std::string &step, const std::string &argument, const std::string &what, const Output &output,
                    bool showsMessages = false) const;

private:
    const Arguments &m_arguments;
    char *const *m_commandLine;
};

/// Has a worker make a whole report (ReportInWorker), which goes to `output`, or to standard output for null; gives its
/// exit code. Throws Failure when it crashes and when the time is up.
std::uint32_t RunReportWorker(const Arguments &arguments, char *const *commandLine, std::FILE *output);

/// What a worker is told to do: a step, a blank and its argument; empty for the program itself.
std::string TakeWorkerTask();

/// Does what a worker was told (TakeWorkerTask), and writes what there is to say to standard output.
ExitCode DoStep(const Arguments &arguments, const std::string &task);

/// The steps.
inline constexpr const char *kReadStep = "read";
inline constexpr const char *kProgramStep = "program";
inline constexpr const char *kStatusStep = "status";
inline constexpr const char *kModuleStep = "module";
/// A whole report or list of capabilities, which writes to standard output itself.
inline constexpr const char *kReportStep = "report";

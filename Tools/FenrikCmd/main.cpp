#include "Commands.h"
#include "ToolError.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

namespace
{

constexpr const char *kFooter = R"(
Where the settings come from says FenrikCmd.conf beside the program, or the environment
variable FENRIKCMD_SOURCE:
  simulated    a simulated firmware, also without a configuration; it is kept in
               FenrikFirmware.json beside the program, the first command makes it
  kernel       this machine, through the Linux kernel's firmware attributes; kernel:ROOT
               takes them from the folder ROOT
  redfish:URL  the machine of a Redfish service

Exit codes:
  0  success
  1  bad command line, knob file or number of options
  2  the settings, their file or the configuration is damaged or cannot be read
  3  the BIOS interface is disabled or missing, or the configuration does not permit it
  4  a file or a setting cannot be written
  5  FENRIKCMD_FAULT names no fault
  6  anything else, such as want of memory

For tests, FENRIKCMD_FAULT makes the program misbehave in one way:
  exit:N     end with exit code N (0 to 4294967295) and do nothing
  crash      end abnormally
  hang       never end
  nodump     savexml removes the dump and ends well
  emptydump  savexml writes an empty file
  halfdump   savexml writes the first half of the dump
  wrongroot  savexml writes a root element that is not SYSTEM
  big        savexml writes more than 100 MB
COMMAND= in front, as in savexml=exit:2, limits it to one command.)";

/// `argument` receives the argument of whichever command is given; it must outlive the parsing.
void DescribeCommandLine(CLI::App &app, std::string &argument)
{
    app.footer(kFooter);
    app.require_subcommand(0, 1);
    // A path may begin with a slash on every system.
    app.allow_windows_style_options(false);
    for (const Command &command : kCommands)
    {
        CLI::App *const subcommand = app.add_subcommand(command.name, command.help);
        if (command.argument)
            subcommand->add_option(command.argument, argument)->required(command.isArgumentRequired)->type_name("");
    }
}

int Report(ExitCode code, const std::string &message)
{
    std::cerr << kProgramName << ": " << message << ".\n";
    return static_cast<int>(code);
}

int RunCommand(const Command &command, const std::string &argument)
{
    const Fault fault = FaultFor(command.name);
    if (fault.kind == FaultKind::Crash)
        std::abort();
    while (fault.kind == FaultKind::Hang)
        std::this_thread::sleep_for(std::chrono::hours(1));
    if (fault.kind == FaultKind::Exit)
        return fault.exitCode;
    command.run({argument, fault});
    return static_cast<int>(ExitCode::Success);
}

int RunCommandLine(int argc, char **argv)
{
    CLI::App app("BIOS configuration tool for real machines and for a simulated one", kProgramName);
    std::string argument;
    DescribeCommandLine(app, argument);
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::Success &help)
    {
        return app.exit(help);
    }
    catch (const CLI::ParseError &error)
    {
        return Report(ExitCode::BadInput, std::string(error.what()) + " (--help tells more)");
    }
    for (const Command &command : kCommands)
    {
        if (app.got_subcommand(command.name))
            return RunCommand(command, argument);
    }
    return Report(ExitCode::BadInput, "a command is required (--help lists them)");
}

} // namespace

int main(int argc, char **argv)
{
    try
    {
        return RunCommandLine(argc, argv);
    }
    catch (const ToolError &error)
    {
        return Report(error.Code(), error.what());
    }
    catch (const std::exception &error)
    {
        return Report(ExitCode::Internal, error.what());
    }
}

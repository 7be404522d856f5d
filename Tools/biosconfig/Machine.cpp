#include "Machine.h"

#include "FilesystemPath.h"
#include "KnobDump.h"
#include "LowerAscii.h"
#include "OptionReader.h"
#include "Platform.h"
#include "Program.h"
#include "ToolProgram.h"

#include <cstdint>
#include <filesystem>
#include <new>
#include <utility>

namespace
{

constexpr const char *kProgramFiles = "ProgramFiles";

/// Throws Failure, with what is known, where the tool could not be started.
[[noreturn]] void RefuseTool(const std::string &path)
{
    const std::string program = ShownPath(path);
    std::error_code error;
    const bool exists = std::filesystem::exists(Platform::ToFilesystemPath(program), error);
    if (!exists)
        throw Failure(ExitCode::NoTool, "the external tool is missing: there is no " + program +
                                            "; install it, or say with --program-files where it is installed");
    if (!Platform::IsExecutable(program))
        throw Failure(ExitCode::NoTool, "the external tool " + program +
                                            " is not executable; give it the permission (chmod +x), or run this as "
                                            "somebody who has it");
    throw Failure(ExitCode::NoTool, "the external tool " + program + " cannot be started; it may be no program");
}

/// Runs a command of the tool. Throws Failure with `failed` and the reason where it does not end well.
void RunOrRefuse(const std::string &directory, const std::string &command, const std::string &file, ExitCode failed,
                 const std::string &hint)
{
    const ToolRun run = runTool(directory, command, file);
    const std::string program = ShownPath(toolProgram(directory));
    if (!run.isStarted)
        RefuseTool(program);
    if (run.exitCode == Platform::kUnknownExitCode)
        throw Failure(ExitCode::ToolFailed, "the external tool crashed: " + program + " " + command);
    if (run.exitCode != 0)
        throw Failure(failed, "the external tool ended with exit code " + std::to_string(run.exitCode) + ": " +
                                  program + " " + command + hint);
}

constexpr const char *kStatusHint = "; the BIOS interface cannot be used: it may be off, or this user may not use it";

} // namespace

std::string ShownPath(const std::string &path)
{
    return Platform::FromFilesystemPath(Platform::ToFilesystemPath(path).make_preferred());
}

void UseProgramFiles(const Arguments &arguments)
{
    if (!arguments.programFiles.empty())
        Platform::WriteEnvironmentVariable(kProgramFiles, arguments.programFiles);
}

std::string ToolPlace(const Arguments &arguments)
{
    UseProgramFiles(arguments);
    std::string directory;
    if (GetEnvironmentalVaribaleBiosLib(kProgramFiles, directory) != StatusCode::Success)
        throw Failure(ExitCode::NoTool,
                      "the environment variable ProgramFiles, which locates the external tool, is not "
                      "set; set it, give --program-files, or read a dump with --from");
    return directory;
}

namespace
{

LoadedOptions ReadDumpFile(const std::string &file, Output &output)
{
    const std::string path = ShownPath(file);
    KnobList knobs;
    FurtherDetails further;
    std::int32_t damagedLine = 0;
    switch (readDump(file, knobs, further, damagedLine))
    {
    case DumpOutcome::Read:
        break;
    case DumpOutcome::Unreadable:
        throw Failure(ExitCode::NotFound, "cannot read the dump " + path);
    case DumpOutcome::NoDump:
        throw Failure(ExitCode::NotValid, path + " is no dump of BIOS options: it is no XML with the root SYSTEM");
    case DumpOutcome::NoKnobs:
        throw Failure(ExitCode::NotValid, "there is no option in the dump " + path);
    case DumpOutcome::NoMemory:
        throw std::bad_alloc();
    }
    if (damagedLine != 0)
        output.Tell(Severity::Warning, "damaged-dump",
                    "the dump " + path + " is damaged in line " + std::to_string(damagedLine) +
                        "; options may be missing");
    if (further.valuesNeedRights)
        output.RestrictToOwner();
    return {OptionTable(std::move(knobs), further), damagedLine != 0};
}

LoadedOptions ReadListFile(const std::string &file, Output &output)
{
    LoadedOptions options = ReadOptionList(file);
    if (options.isDamaged)
        output.Tell(Severity::Warning, "damaged-dump",
                    "the list " + ShownPath(file) + " was made of a damaged dump; options may be missing");
    return options;
}

} // namespace

LoadedOptions ReadOptionsFile(const std::string &file, Output &output)
{
    return LowerAscii(file).ends_with(".json") ? ReadListFile(file, output) : ReadDumpFile(file, output);
}

LoadedOptions ReadMachine(const Arguments &arguments, const Steps &steps, Output &output)
{
    const std::string directory = ToolPlace(arguments);
    steps.Run(kReadStep, "", "reading the options with the external tool", output);
    try
    {
        return ReadDumpFile(toolDumpFile(directory), output);
    }
    catch (const Failure &failure)
    {
        throw Failure(ExitCode::ToolFailed,
                      "the external tool ended well, but its dump is of no use: " + std::string(failure.what()));
    }
}

LoadedOptions ReadOptions(const Arguments &arguments, const Steps &steps, Output &output)
{
    return arguments.dumpPath.empty() ? ReadMachine(arguments, steps, output)
                                      : ReadOptionsFile(arguments.dumpPath, output);
}

void MakeDump(const Arguments &arguments)
{
    const Platform::StandardOutputToError keepOutputForResult;
    const std::string directory = ToolPlace(arguments);
    RunOrRefuse(directory, "fenrikstatus", "", ExitCode::NotPermitted, kStatusHint);
    RunOrRefuse(directory, "savexml", toolDumpFile(directory), ExitCode::ToolFailed, "");
}

std::string AskStatus(const Arguments &arguments)
{
    const Platform::StandardOutputToError keepOutputForResult;
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    Platform::MonotonicMilliseconds(start);
    RunOrRefuse(ToolPlace(arguments), "fenrikstatus", "", ExitCode::NotPermitted, kStatusHint);
    Platform::MonotonicMilliseconds(end);
    return "exit code 0 after " + std::to_string(end - start) + " ms";
}

#include "ModuleWork.h"

#include "DebugConfCheck.h"
#include "ErrorFileWatch.h"
#include "FilesystemPath.h"
#include "Machine.h"
#include "ModuleHost.h"
#include "Output.h"
#include "OutputFile.h"
#include "Platform.h"
#include "Program.h"
#include "ReplacedFile.h"
#include "Steps.h"
#include "TemporaryFolder.h"
#include "ToolProgram.h"
#include "ValueFiles.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace
{

constexpr std::uint32_t kLongestWait = 10'000; // milliseconds
constexpr const char *kCapabilitiesFile = "CapsList.json";
constexpr const char *kErrorFile = "Error.xml";
/// Where the module puts its reports, in the tool directory.
constexpr const char *kReportFolder = "ModuleData";
/// For a module that is given no tool directory.
constexpr std::string_view kOwnCapabilities = R"({"Tarnwell": {"CapabilityList": {"BIOS Options": [
    {"Name": "Bios Options", "Description": "All setup options of this machine's BIOS"}]}}})";

/// The user's tool directory as a prefix for file names. Throws Failure when there is no such directory.
std::string ToolDirectory(const Arguments &arguments)
{
    // Before the module records an error in a folder that was not meant.
    if (arguments.toolDirectory.empty() && !Platform::OpenStream(kCapabilitiesFile, "rb"))
        throw Failure(ExitCode::NotFound,
                      "there is no tool directory: name the host's, which holds CapsList.json, with "
                      "--tool-dir");
    const std::string directory = arguments.toolDirectory.empty() ? "." : arguments.toolDirectory;
    if (!Platform::IsDirectory(directory))
        throw Failure(ExitCode::NotFound, "there is no tool directory \"" + directory + "\"");
    return Platform::AsPrefix(directory);
}

/// Throws Failure when the module could not record errors, because then a failed report could not be told from a
/// good one.
void RequireWritable(const std::string &errorFile)
{
    const std::string target = Platform::LinkTarget(errorFile);
    std::error_code error;
    // While another process puts a new file in its place, some systems let nobody open it.
    const Platform::FileLock lock(target, kLongestWait);
    // Where there is none yet, another file is tried: other processes may be making this one.
    const bool exists = std::filesystem::exists(Platform::ToFilesystemPath(target), error);
    if (exists ? !Platform::OpenStream(target, "r+b") : !Platform::ReplacedFile(target + ".trial").Open())
        throw Failure(ExitCode::NotPermitted, "the module could not record errors: cannot write " + errorFile);
}

std::string CapabilityLines(const ModuleHost &module)
{
    std::string lines;
    for (const auto &capability : module.Capabilities())
    {
        for (const std::string &name : capability->names)
            lines += OneLine(name) + "\t" + OneLine(capability->description) + "\n";
    }
    return lines;
}

std::string Report(ModuleHost &module, const Arguments &arguments)
{
    if (!module.Offers(arguments.capability))
        throw Failure(ExitCode::NotFound, "the module does not offer the option \"" + arguments.capability +
                                              "\"; \"biosconfig capabilities\" shows what it offers");
    return module.Report(arguments.capability, arguments.format);
}

/// Has the module do the work and gives the data. Throws Failure when it could not be done.
std::string AskModule(const Arguments &arguments, const std::string &toolDirectory)
{
    const Platform::StandardOutputToError keepOutputForData;
    UseProgramFiles(arguments);
    ModuleHost module(arguments.modulePath);
    module.Initialise(toolDirectory);
    return arguments.command == Command::Report ? Report(module, arguments) : CapabilityLines(module);
}

/// `errorFile` is empty for one that goes again.
void ShowErrors(const std::string &errorFile, const std::vector<RecordedError> &errors)
{
    if (errors.empty())
        return;
    Tell("the module recorded " + std::to_string(errors.size()) + (errors.size() == 1 ? " error" : " errors") +
         (errorFile.empty() ? ":" : " in " + errorFile + ":"));
    for (const RecordedError &error : errors)
        std::fprintf(stderr, "  %s (%s), %s, %s:%s\n", OneLine(error.message).c_str(), OneLine(error.title).c_str(),
                     OneLine(error.time).c_str(), OneLine(error.sourceFile).c_str(), OneLine(error.line).c_str());
}

/// The module's entry for a report that it made from what could be read of a damaged dump.
bool TellsOfDamagedDump(const RecordedError &error)
{
    return error.message.rfind("The dump of the options is damaged", 0) == 0;
}

/// Why the module could not use the tool, as far as can be seen from outside.
ExitCode JudgeTool(const std::vector<RecordedError> &errors)
{
    std::string directory;
    if (GetEnvironmentalVaribaleBiosLib("ProgramFiles", directory) != StatusCode::Success)
    {
        Tell("the environment variable ProgramFiles, which locates the external tool, is not set; set it, or give "
             "--program-files");
        return ExitCode::NoTool;
    }
    const std::string program = ShownPath(toolProgram(directory));
    if (!Platform::IsExecutable(program))
    {
        Tell("the external tool is missing, or is not executable: " + program);
        return ExitCode::NoTool;
    }
    const bool isOff = std::any_of(errors.begin(), errors.end(),
                                   [](const RecordedError &error) { return error.message == "Failed to initialise"; });
    return isOff ? ExitCode::NotPermitted : ExitCode::ToolFailed;
}

/// Whether the module could make the report, from what is there of it and the errors recorded meanwhile.
ExitCode JudgeReport(const Arguments &arguments, const std::string &report, const std::vector<RecordedError> &errors)
{
    if (report.empty())
        Tell("the module made no report of the kind " + arguments.formatName);
    if (!std::all_of(errors.begin(), errors.end(), TellsOfDamagedDump))
        return JudgeTool(errors);
    if (report.empty())
        return ExitCode::Unexpected;
    return errors.empty() ? ExitCode::Done : ExitCode::InPart;
}

/// Has the module do the work and judges the outcome. A report that could be made in part only is stored, too.
ExitCode MakeData(const Arguments &arguments, std::string &data)
{
    const std::string toolDirectory = ToolDirectory(arguments);
    const bool isReport = arguments.command == Command::Report;
    const FilesWithValues files(arguments, toolDirectory + kReportFolder);
    const ErrorFileWatch watch(toolDirectory + kErrorFile);
    for (const std::string &fault : CheckDebugConf())
        Tell(fault);
    for (const std::string &useless : UselessDebugConfSettings())
        Tell(useless);
    if (isReport)
        RequireWritable(watch.Path());
    try
    {
        data = AskModule(arguments, toolDirectory);
    }
    catch (const Failure &failure)
    {
        Tell(failure.what());
        ShowErrors(watch.Path(), watch.NewErrors());
        return failure.code;
    }
    const std::vector<RecordedError> errors = watch.NewErrors();
    ShowErrors(watch.Path(), errors);
    return isReport ? JudgeReport(arguments, data, errors) : ExitCode::Done;
}

/// Whether there is something to store in a file. To standard output goes what there is.
bool IsStored(ExitCode outcome, const Arguments &arguments)
{
    return outcome == ExitCode::Done || outcome == ExitCode::InPart || arguments.outputPath == kStandardOutput;
}

/// Keeps the output from others where the options' values are not for everybody.
void RestrictIfNeeded(const Arguments &arguments, OutputFile &output)
{
    if (arguments.command == Command::Report && ValuesNeedRights(arguments))
        output.RestrictToOwner();
}

ExitCode Make(const Arguments &arguments, OutputFile &output)
{
    std::string data;
    const ExitCode outcome = MakeData(arguments, data);
    RestrictIfNeeded(arguments, output);
    if (IsStored(outcome, arguments))
        output.Write(data);
    return outcome;
}

/// Has a worker do the work, since a module that waits cannot be called back: a process can be ended. Files that only
/// live for a while are this process's, which is not.
ExitCode MakeInTime(const Arguments &arguments, char *const *commandLine, OutputFile &output)
{
    const std::uint32_t exitCode = RunReportWorker(arguments, commandLine, output.Stream());
    const auto outcome = static_cast<ExitCode>(exitCode);
    RestrictIfNeeded(arguments, output);
    if (IsStored(outcome, arguments))
        output.Commit();
    return outcome;
}

} // namespace

ExitCode ReportOrCapabilities(const Arguments &arguments, char *const *commandLine)
{
    OutputFile output(arguments.outputPath);
    // As far as is known already.
    RestrictIfNeeded(arguments, output);
    return arguments.timeLimit == 0 ? Make(arguments, output) : MakeInTime(arguments, commandLine, output);
}

ExitCode ReportInWorker(const Arguments &arguments)
{
    OutputFile output{std::string(kStandardOutput)};
    return Make(arguments, output);
}

std::string MakeModulePlace(TemporaryFolder &folder)
{
    folder.Write(kCapabilitiesFile, kOwnCapabilities);
    folder.PathOf(kErrorFile);
    return folder.Prefix();
}

std::string ProgramTemplate(const Arguments &arguments, const std::string &path)
{
    const Platform::StandardOutputToError keepOutputForData;
    UseProgramFiles(arguments);
    const bool isNamed = !arguments.toolDirectory.empty() || Platform::OpenStream(kCapabilitiesFile, "rb");
    const std::string place = isNamed ? ToolDirectory(arguments) : path.substr(0, path.find_last_of("/\\") + 1);
    const FilesWithValues files(arguments);
    const ErrorFileWatch watch(place + kErrorFile);
    try
    {
        ModuleHost module(arguments.modulePath);
        module.Initialise(place);
        return module.UpdateSettings(path, place);
    }
    catch (const Failure &)
    {
        ShowErrors(isNamed ? watch.Path() : "", watch.NewErrors());
        throw;
    }
}

std::string DescribeModule(const Arguments &arguments, const std::string &place)
{
    const Platform::StandardOutputToError keepOutputForData;
    ModuleHost module(arguments.modulePath);
    module.Initialise(place);
    return arguments.modulePath + ", \"" + module.Name() + "\", offers " +
           std::to_string(module.Capabilities().size()) +
           (module.Capabilities().size() == 1 ? " capability" : " capabilities");
}

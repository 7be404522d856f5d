#include "Arguments.h"
#include "DebugConfCheck.h"
#include "ErrorFileWatch.h"
#include "ExitCode.h"
#include "FilesystemPath.h"
#include "ModuleHost.h"
#include "OutputFile.h"
#include "Platform.h"
#include "Program.h"
#include "ReplacedFile.h"
#include "TemplateForModule.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>

namespace
{

/// Tells a worker that it is one, and the path of the template that the module is to get.
constexpr const char *kWorkerVariable = "BIOSCONFIG_WORKER";
constexpr const char *kNoTemplate = "-";
constexpr std::uint32_t kLongestWait = 10'000; // milliseconds

/// What is asked for, and the template under the path that the module takes.
struct Task
{
    const Arguments &arguments;
    std::string templatePath;
};

void Tell(const std::string &message)
{
    std::fprintf(stderr, "biosconfig: %s\n", message.c_str());
}

/// `text` with a blank for every control character, which would break a line or a column.
std::string OneLine(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](unsigned char character) { return character < ' '; }, ' ');
    return text;
}

/// The user's tool directory as a prefix for file names. Throws Failure when there is no such directory.
std::string ToolDirectory(const Arguments &arguments)
{
    if (!Platform::IsDirectory(arguments.toolDirectory))
        throw Failure(ExitCode::NotReady, "there is no tool directory \"" + arguments.toolDirectory + "\"");
    return Platform::AsPrefix(arguments.toolDirectory);
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
        throw Failure(ExitCode::NotReady, "the module could not record errors: cannot write " + errorFile);
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
    if (!module.Offers(arguments.option))
        throw Failure(ExitCode::WrongUsage, "the module does not offer the option \"" + arguments.option +
                                                "\"; \"biosconfig capabilities\" shows what it offers");
    return module.Report(arguments.option, arguments.format);
}

/// The module would take a template that it cannot read for an empty one.
void RequireReadable(const std::string &templatePath)
{
    if (!Platform::OpenStream(templatePath, "rb"))
        throw Failure(ExitCode::WrongUsage, "cannot read the template " + templatePath);
}

/// Has the module do the work and stores the data. Throws Failure when it could not be done; there may be data then.
void AskModule(const Task &task, const std::string &toolDirectory, std::string &data)
{
    const Arguments &arguments = task.arguments;
    const Platform::StandardOutputToError keepOutputForData;
    if (!arguments.programFiles.empty())
        Platform::WriteEnvironmentVariable("ProgramFiles", arguments.programFiles);
    ModuleHost module(arguments.modulePath);
    module.Initialise(toolDirectory);
    switch (arguments.command)
    {
    case Arguments::Command::Report:
        data = Report(module, arguments);
        return;
    case Arguments::Command::Capabilities:
        data = CapabilityLines(module);
        return;
    case Arguments::Command::Update:
        RequireReadable(arguments.templatePath);
        module.UpdateSettings(task.templatePath, toolDirectory, data);
        return;
    }
}

void ShowErrors(const std::string &errorFile, const std::vector<RecordedError> &errors)
{
    if (errors.empty())
        return;
    Tell("the module recorded " + std::to_string(errors.size()) + (errors.size() == 1 ? " error" : " errors") + " in " +
         errorFile + ":");
    for (const RecordedError &error : errors)
        std::fprintf(stderr, "  %s (%s), %s, %s:%s\n", OneLine(error.message).c_str(), OneLine(error.title).c_str(),
                     OneLine(error.time).c_str(), OneLine(error.sourceFile).c_str(), OneLine(error.line).c_str());
}

/// The module's entry for a report that it made from what could be read of a damaged dump.
bool TellsOfDamagedDump(const RecordedError &error)
{
    return error.message.rfind("The dump of the options is damaged", 0) == 0;
}

/// Whether the module could make the report, from what is there of it and the errors recorded meanwhile.
ExitCode JudgeReport(const Arguments &arguments, const std::string &report, const std::vector<RecordedError> &errors)
{
    std::string programFiles;
    if (report.empty())
        Tell("the module made no report of the kind " + arguments.formatName);
    else if (!errors.empty() && !Platform::ReadEnvironmentVariable("ProgramFiles", programFiles))
        Tell("the environment variable ProgramFiles, which locates the external tool, is not set");
    if (report.empty() || !std::all_of(errors.begin(), errors.end(), TellsOfDamagedDump))
        return ExitCode::NotDone;
    return errors.empty() ? ExitCode::Success : ExitCode::DamagedDump;
}

/// Has the module do the work and judges the outcome. A report that could be made in part only is stored, too.
ExitCode MakeData(const Task &task, std::string &data)
{
    const Arguments &arguments = task.arguments;
    const std::string toolDirectory = ToolDirectory(arguments);
    const bool report = arguments.command == Arguments::Command::Report;
    const ErrorFileWatch watch(toolDirectory + "Error.xml");
    for (const std::string &fault : CheckDebugConf())
        Tell(fault);
    for (const std::string &useless : UselessDebugConfSettings())
        Tell(useless);
    if (report)
        RequireWritable(watch.Path());
    try
    {
        AskModule(task, toolDirectory, data);
    }
    catch (const Failure &failure)
    {
        Tell(failure.what());
        ShowErrors(watch.Path(), watch.NewErrors());
        return failure.code;
    }
    const std::vector<RecordedError> errors = watch.NewErrors();
    ShowErrors(watch.Path(), errors);
    return report ? JudgeReport(arguments, data, errors) : ExitCode::Success;
}

/// Whether there is something to store in a file. To standard output goes what there is.
bool IsStored(ExitCode outcome, const Arguments &arguments)
{
    return outcome == ExitCode::Success || outcome == ExitCode::DamagedDump || arguments.outputPath == kStandardOutput;
}

ExitCode Work(const Task &task, OutputFile &output)
{
    std::string data;
    const ExitCode outcome = MakeData(task, data);
    if (IsStored(outcome, task.arguments))
        output.Write(data);
    return outcome;
}

/// Has a worker do the work, since a module that waits cannot be called back: a process can be ended. Files that only
/// live for a while are this process's, which is not.
ExitCode WorkInTime(const Task &task, char *const *commandLine, OutputFile &output)
{
    const Arguments &arguments = task.arguments;
    Platform::WriteEnvironmentVariable(kWorkerVariable, task.templatePath.empty() ? kNoTemplate : task.templatePath);
    Platform::Worker worker(commandLine, output.Stream());
    if (!worker)
        throw Failure(ExitCode::NotDone, "cannot start the process that does the work");
    std::uint32_t exitCode = 0;
    if (!worker.Wait(arguments.timeLimit, exitCode))
    {
        worker.End();
        throw Failure(ExitCode::TimedOut, "the work has taken more than " + std::to_string(arguments.timeLimit) +
                                              " s; the external tool was ended, with whatever it had started");
    }
    if (exitCode == Platform::kUnknownExitCode)
        throw Failure(ExitCode::NotDone, "the process that did the work has crashed");
    const auto outcome = static_cast<ExitCode>(exitCode);
    if (IsStored(outcome, arguments))
        output.Commit();
    return outcome;
}

ExitCode Run(const Arguments &arguments, char *const *commandLine)
{
    std::string templatePath;
    if (Platform::ReadEnvironmentVariable(kWorkerVariable, templatePath))
    {
        Platform::WriteEnvironmentVariable(kWorkerVariable, "");
        OutputFile output{std::string(kStandardOutput)};
        return Work({arguments, templatePath}, output);
    }
    const Platform::Interruption interruption;
    OutputFile output(arguments.outputPath);
    const TemplateForModule templateFile(arguments.templatePath);
    const Task task = {arguments, templateFile.Path()};
    return arguments.timeLimit == 0 ? Work(task, output) : WorkInTime(task, commandLine, output);
}

} // namespace

int main(int argumentCount, char **arguments)
{
    const Platform::ConsoleInUtf8 console;
    ExitCode exitCode = ExitCode::NotDone;
    try
    {
        const std::optional<Arguments> parsed = ParseArguments(argumentCount, arguments, exitCode);
        if (parsed)
            exitCode = Run(*parsed, arguments);
    }
    catch (const Failure &failure)
    {
        Tell(failure.what());
        exitCode = failure.code;
    }
    catch (const std::exception &failure)
    {
        Tell(failure.what());
    }
    return static_cast<int>(exitCode);
}

#include "Arguments.h"
#include "DebugConfCheck.h"
#include "ErrorFileWatch.h"
#include "ExitCode.h"
#include "FilesystemPath.h"
#include "ModuleHost.h"
#include "OutputFile.h"
#include "Platform.h"
#include "ReplacedFile.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>

namespace
{

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

std::string WithFinalSeparator(const std::string &directory)
{
    return directory.find_last_of("/\\") == directory.size() - 1 ? directory : directory + "/";
}

/// The user's tool directory as a prefix for file names. Throws Failure when there is no such directory.
std::string ToolDirectory(const Arguments &arguments)
{
    std::error_code error;
    if (!std::filesystem::is_directory(Platform::ToFilesystemPath(arguments.toolDirectory), error))
        throw Failure(ExitCode::NotReady, "there is no tool directory \"" + arguments.toolDirectory + "\"");
    return WithFinalSeparator(arguments.toolDirectory);
}

/// Throws Failure when the module could not record errors, because then a failed report could not be told from a
/// good one.
void RequireWritable(const std::string &errorFile)
{
    const std::string target = Platform::LinkTarget(errorFile);
    std::error_code error;
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
void AskModule(const Arguments &arguments, const std::string &toolDirectory, std::string &data)
{
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
        module.UpdateSettings(arguments.templatePath, toolDirectory, data);
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
ExitCode MakeData(const Arguments &arguments, std::string &data)
{
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
        AskModule(arguments, toolDirectory, data);
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

ExitCode Run(const Arguments &arguments)
{
    OutputFile output(arguments.outputPath);
    std::string data;
    const ExitCode outcome = MakeData(arguments, data);
    if (outcome == ExitCode::Success || outcome == ExitCode::DamagedDump || output.IsStandardOutput())
        output.Write(data);
    return outcome;
}

} // namespace

int main(int argumentCount, char **arguments)
{
    ExitCode exitCode = ExitCode::NotDone;
    try
    {
        const std::optional<Arguments> parsed = ParseArguments(argumentCount, arguments, exitCode);
        if (parsed)
            exitCode = Run(*parsed);
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

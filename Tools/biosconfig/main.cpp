#include "Arguments.h"
#include "Commands.h"
#include "ModuleWork.h"
#include "Output.h"
#include "Program.h"
#include "Steps.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <vector>

namespace
{

struct CommandFunction
{
    Command command;
    ExitCode (*run)(const Work &work);
};

constexpr CommandFunction kFunctions[] = {{Command::List, ListOptions},       {Command::Get, GetValues},
                                          {Command::Show, ShowOptions},       {Command::Search, SearchOptions},
                                          {Command::Pages, ListPages},        {Command::Diff, DiffOptions},
                                          {Command::Export, ExportTemplate},  {Command::View, ViewOptions},
                                          {Command::Check, CheckTemplate},    {Command::Update, UpdateFromTemplate},
                                          {Command::Set, SetOptions},         {Command::Reset, ResetOptions},
                                          {Command::Doctor, Doctor},          {Command::Completion, PrintCompletion},
                                          {Command::Complete, CompleteWords}, {Command::Manual, PrintManual}};

/// Runs a command whose data go out when it is done.
ExitCode RunCommand(const Arguments &arguments, char *const *commandLine)
{
    std::optional<Output> output;
    try
    {
        output.emplace(arguments);
        const Steps steps(arguments, commandLine);
        for (const CommandFunction &function : kFunctions)
        {
            if (function.command != arguments.command)
                continue;
            const ExitCode code = function.run({arguments, steps, *output});
            output->Finish();
            return code;
        }
    }
    catch (const Failure &failure)
    {
        Tell(failure.what());
        Output::FinishFailed(arguments, failure, output ? output->Errors() : std::vector<json>());
        return failure.code;
    }
    return ExitCode::Unexpected;
}

ExitCode Run(const Arguments &arguments, char *const *commandLine)
{
    const std::string task = TakeWorkerTask();
    if (!task.empty())
        return DoStep(arguments, task);
    const Platform::Interruption interruption;
    if (arguments.command == Command::Report || arguments.command == Command::Capabilities)
        return ReportOrCapabilities(arguments, commandLine);
    return RunCommand(arguments, commandLine);
}

/// A wrong command line, for those who have asked for JSON.
void FinishRefused(const Failure &failure, const std::vector<std::string> &words)
{
    Arguments arguments;
    arguments.isJson = std::find(words.begin(), words.end(), "--json") != words.end();
    arguments.commandName = words.empty() ? "" : words.front();
    if (failure.code == ExitCode::WrongUsage)
        Output::FinishFailed(arguments, failure, {});
}

} // namespace

int main(int argumentCount, char **arguments)
{
    Platform::OccupyStandardStreams();
    const Platform::ConsoleInUtf8 console;
    ExitCode exitCode = ExitCode::Unexpected;
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
        FinishRefused(failure, {arguments + 1, arguments + argumentCount});
    }
    catch (const std::exception &failure)
    {
        Tell(failure.what());
    }
    return static_cast<int>(exitCode);
}
